"""A fresh host for a test: the real modules, on folders of the test's own.

The host's parts are single instances; `fresh_host` forgets them all, so that
the next import makes new ones.
"""

import os
import shutil
import sys
import tempfile
import unittest

sys.dont_write_bytecode = True

TESTS = os.path.dirname(os.path.abspath(__file__))
HOST = os.path.join(os.path.dirname(os.path.dirname(TESTS)), "host")
if HOST not in sys.path:
    sys.path.insert(0, HOST)


def forget_host():
    """Forget every module of the host."""
    for name, module in list(sys.modules.items()):
        origin = getattr(module, "__file__", None) or ""
        if module is None or os.path.abspath(origin).startswith(HOST + os.sep):
            del sys.modules[name]


class Box(object):
    """The folders of one receiver, and the host that lives on them."""

    def __init__(self):
        forget_host()
        self.root = tempfile.mkdtemp(prefix="receiver-")
        self.config = self.root + "/etc/enigma2/"
        os.makedirs(self.config)
        os.makedirs(self.root + "/usr/lib/enigma2")
        os.symlink(HOST, self.root + "/usr/lib/enigma2/python")
        from native.env import eEnv
        eEnv.variables["sysconfdir"] = self.root + "/etc"
        eEnv.variables["libdir"] = self.root + "/usr/lib"
        self.log = []
        from native.log import log_to
        log_to(self.log.append)
        from Components import Language
        Language.install()

    def put(self, name, content):
        """Write a file of the configuration folder."""
        with open(self.config + name, "wb") as target:
            target.write(content)

    def get(self, name):
        """Read a file of the configuration folder."""
        with open(self.config + name, "rb") as source:
            return source.read()

    def remove(self):
        """Take the folders away, and the guard of the shell commands."""
        from native import guard
        if guard._pipe is not None:
            os.close(guard._pipe)
        shutil.rmtree(self.root)
        forget_host()


class HostCase(unittest.TestCase):
    """A test on a fresh host."""

    def setUp(self):
        self.box = Box()
        self.addCleanup(self.box.remove)

    def settle(self, seconds=10):
        """Run the main loop until nothing is left to be done; a crash fails the test."""
        run_until(_idle, seconds)

    def run_until(self, condition, seconds=10):
        """Run the main loop until `condition()` is true."""
        run_until(condition, seconds)

    def crash(self):
        """Run the main loop until it has crashed; returns the traceback."""
        import mainloop
        mainloop.call_later(10, mainloop.stop)
        mainloop.run()
        self.assertIsNotNone(mainloop.crash(), "the main loop did not crash")
        return mainloop.crash()


class SessionCase(HostCase):
    """A test on a host with a session, whose first dialog is the bare screen `self.first`."""

    def setUp(self):
        HostCase.setUp(self)
        import skin
        from enigma import getDesktop, loadKeymap
        from Screens.Screen import Screen
        from Screens.Session import Session
        from Tools.Directories import SCOPE_SKIN, resolveFilename
        skin.loadSkin("skin.xml")
        loadKeymap(resolveFilename(SCOPE_SKIN, "keymap.xml"))
        self.session = Session(getDesktop(0))
        self.first = self.session.open(Screen)
        del self.box.log[:]

    def press(self, *keys):
        """Each key goes down and up; what it starts is awaited."""
        from enigma import eActionMap
        for key in keys:
            eActionMap.getInstance().keyPressed("KEY_" + key, "m")
            eActionMap.getInstance().keyPressed("KEY_" + key, "b")
            self.settle()


def run_until(condition, seconds):
    """Run the main loop until `condition()` is true; fail after that many seconds."""
    import mainloop
    give_up = mainloop.now() + seconds

    def look():
        if condition():
            mainloop.stop()
        elif mainloop.now() > give_up:
            raise AssertionError("waited %s s in vain" % seconds)
        else:
            mainloop.call_later(0.005, look)

    mainloop.call_later(0, look)
    mainloop.run()
    if mainloop.crash() is not None:
        raise AssertionError("the main loop has crashed:\n" + mainloop.crash())


def _idle():
    import mainloop
    return mainloop.idle()
