"""Where files lie. Imported whole by many modules: what this one imports, they get too."""

import errno
import inspect
import os
from re import compile

from enigma import eEnv

SCOPE_TRANSPONDERDATA = 0
SCOPE_SYSETC = 1
SCOPE_FONTS = 2
SCOPE_SKIN = 3
SCOPE_SKIN_IMAGE = 4
SCOPE_USERETC = 5
SCOPE_CONFIG = 6
SCOPE_LANGUAGE = 7
SCOPE_HDD = 8
SCOPE_PLUGINS = 9
SCOPE_MEDIA = 10
SCOPE_PLAYLIST = 11
SCOPE_CURRENT_SKIN = 12

PATH_CREATE = 0
PATH_DONTCREATE = 1

defaultPaths = {
    SCOPE_TRANSPONDERDATA: (eEnv.resolve("${sysconfdir}/"), PATH_DONTCREATE),
    SCOPE_SYSETC: (eEnv.resolve("${sysconfdir}/"), PATH_DONTCREATE),
    SCOPE_FONTS: (eEnv.resolve("${datadir}/fonts/"), PATH_DONTCREATE),
    SCOPE_SKIN: (eEnv.resolve("${datadir}/enigma2/"), PATH_DONTCREATE),
    SCOPE_SKIN_IMAGE: (eEnv.resolve("${datadir}/enigma2/"), PATH_DONTCREATE),
    SCOPE_USERETC: ("", PATH_DONTCREATE),
    SCOPE_CONFIG: (eEnv.resolve("${sysconfdir}/enigma2/"), PATH_CREATE),
    SCOPE_LANGUAGE: (eEnv.resolve("${datadir}/enigma2/po/"), PATH_DONTCREATE),
    SCOPE_HDD: ("/media/hdd/movie/", PATH_DONTCREATE),
    SCOPE_PLUGINS: (eEnv.resolve("${libdir}/enigma2/python/Plugins/"), PATH_CREATE),
    SCOPE_MEDIA: ("/media/", PATH_DONTCREATE),
    SCOPE_PLAYLIST: (eEnv.resolve("${sysconfdir}/enigma2/playlist/"), PATH_CREATE),
    SCOPE_CURRENT_SKIN: (eEnv.resolve("${datadir}/enigma2/"), PATH_DONTCREATE),
}


def resolveFilename(scope, base="", path_prefix=None):
    """The path of `base` in a scope; an absolute one is taken as it is, a folder ends in a slash."""
    if base.startswith("~/"):
        base = os.path.join(path_prefix or "", base[2:])
    if base.startswith("/"):
        return _with_slash(base)
    folder, flags = defaultPaths[scope]
    if flags == PATH_CREATE and not pathExists(folder) and not _create(folder):
        return None
    return _with_slash(folder + base)


def _with_slash(path):
    return path + "/" if os.path.isdir(path) and not path.endswith("/") else path


def _create(folder):
    try:
        os.makedirs(folder)
    except OSError as error:
        if error.errno != errno.EEXIST:
            print "[Directories] Error: Couldn't create directory %s: %s" % (folder, error.strerror)
            return False
    return True


def pathExists(path):
    """True when there is something at `path`."""
    return os.path.exists(path)


def fileExists(f, mode="r"):
    """An access test: "r" readable, "w" writable, anything else exists."""
    access = {"r": os.R_OK, "w": os.W_OK}.get(mode, os.F_OK)
    return os.access(f, access)


def getRecordingFilename(basename, dirname=None):
    """A file name for a recording: what file systems cannot keep is replaced."""
    forbidden = compile(r'[\x00-\x1f/<>:"|?*\\]')
    return os.path.join(dirname or resolveFilename(SCOPE_HDD), forbidden.sub("_", basename))


def whoCalledMe():
    """The name of the function that asked a helper of this module, for the log."""
    return inspect.stack()[2][3]
