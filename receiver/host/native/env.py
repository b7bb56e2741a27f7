"""Where the host's folders lie."""

import os

_HOST = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


class eEnv(object):
    """The host's path variables, as fixed when its image was built."""

    variables = {
        "sysconfdir": "/etc",
        "libdir": "/usr/lib",
        "datadir": os.path.join(_HOST, "share"),
    }

    @classmethod
    def resolve(cls, path):
        """`path` with each "${variable}" replaced by its folder."""
        for name, folder in cls.variables.items():
            path = path.replace("${%s}" % name, folder)
        return path


def config_folder():
    """The folder of the service database and the bouquets, with its trailing slash."""
    return eEnv.resolve("${sysconfdir}/enigma2/")
