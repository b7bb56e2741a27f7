# -*- coding: utf-8 -*-
"""The folder of one running virtual receiver: what lies over its root file system, and how it goes away again.

A receiver's folder is locked for as long as any of its processes lives. One that is not locked was left behind by a
receiver that was killed, and is removed by the next one that starts.
"""

import errno
import fcntl
import os
import shutil
import stat
import tempfile

from folders import copy_folder, remove_folder

PLUGIN = "usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel"
PROGRAM = "usr/lib/enigma2/receiver"
_LOCK = "lock"
_HERE = os.path.dirname(os.path.realpath(__file__))


class CannotMake(Exception):
    """The folder of the receiver cannot be made; the text says why."""


class Instance(object):
    """The folder of one virtual receiver below the folder of them all."""

    def __init__(self, receivers):
        try:
            if not os.path.isdir(receivers):
                os.makedirs(receivers)
            with open(os.path.join(receivers, ".lock"), "w") as gate:
                fcntl.flock(gate, fcntl.LOCK_EX)
                _remove_stale(receivers)
                self.path = tempfile.mkdtemp(prefix="%d-" % os.getpid(), dir=receivers)
                self._lock = open(os.path.join(self.path, _LOCK), "w")
                fcntl.flock(self._lock, fcntl.LOCK_EX)
        except EnvironmentError as error:
            raise CannotMake("%s: %s" % (error.filename or receivers, error.strerror))
        for folder in ("etc/enigma2", "etc/opkg", "tmp", "run", "srv/feed"):
            os.makedirs(self.inside(folder))
        os.chmod(self.inside("tmp"), stat.S_ISVTX | 0o777)

    def inside(self, path):
        """Where a path of the receiver lies on the PC."""
        return os.path.join(self.path, path.lstrip("/"))

    def put_programs(self, module):
        """Puts the host's layer, the module and the receiver's own programs in place."""
        copy_folder(os.path.join(_HERE, "host"), self._folder("usr/lib/enigma2/python"))
        self._folder(PLUGIN)
        shutil.copy2(module.path, self.inside(os.path.join(PLUGIN, "Morvesk" + module.kind)))
        copy_folder(os.path.join(_HERE, "display"), self._folder(os.path.join(PROGRAM, "display")))
        for name in ("main.py", "feed_line.py", "feed/server.py"):
            shutil.copy2(os.path.join(_HERE, name), self.inside(PROGRAM))

    def _folder(self, path):
        folder = self.inside(path)
        if not os.path.isdir(folder):
            os.makedirs(folder)
        return folder

    def remove(self):
        """Removes the folder with everything in it."""
        self._lock.close()
        return remove_folder(self.path)


def _remove_stale(receivers):
    for name in os.listdir(receivers):
        folder = os.path.join(receivers, name)
        if os.path.isdir(folder) and not os.path.islink(folder) and not _is_used(folder):
            remove_folder(folder)


def _is_used(folder):
    try:
        with open(os.path.join(folder, _LOCK)) as lock:
            fcntl.flock(lock, fcntl.LOCK_EX | fcntl.LOCK_NB)
    except IOError as error:
        return error.errno != errno.ENOENT
    return False
