"""Loads the module under test: the file that MORVESK_MODULE names, compiled or in Python.

The interpreter keeps a compiled module after its first load, by file: a fresh load in the same process needs a fresh file.
"""

import __builtin__
import atexit
import contextlib
import imp
import os
import shlex
import shutil
import sys
import tempfile
import unittest

import recording_host

ROOT = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", ".."))
PATH = os.path.abspath(os.environ.get("MORVESK_MODULE") or os.path.join(ROOT, "build", "release", "Morvesk.so"))
PLAIN = os.path.join(ROOT, "benchmarks", "plain", "Morvesk.py")
COMPILED = PATH.endswith(".so")
INTERPRETER = shlex.split(os.environ.get("MORVESK_INTERPRETER", "")) or [sys.executable]

sys.dont_write_bytecode = True

compiled_only = unittest.skipUnless(COMPILED, "only a compiled module can show this")

if not os.path.isfile(PATH):
    sys.stderr.write("No module at %s: build it, or name another one in MORVESK_MODULE\n" % PATH)
    shutil.rmtree(recording_host.HOST.root, ignore_errors=True)
    sys.exit(2)

SCRATCH = tempfile.mkdtemp(prefix="morvesk-load-")
PROCESS = os.getpid()


@atexit.register
def _clean_up():
    if os.getpid() == PROCESS:
        shutil.rmtree(SCRATCH, ignore_errors=True)
        shutil.rmtree(recording_host.HOST.root, ignore_errors=True)


def place(folder, path=PATH):
    """Copies the module into a folder, under the name that an import finds."""
    if not os.path.isdir(folder):
        os.makedirs(folder)
    copy = os.path.join(folder, "Morvesk" + os.path.splitext(path)[1])
    shutil.copyfile(path, copy)
    return copy


def fresh_folder():
    """A new folder with a file of the module that was never loaded."""
    folder = tempfile.mkdtemp(dir=SCRATCH)
    place(folder)
    return folder


@contextlib.contextmanager
def search_path(folder):
    """Imports look into this folder first."""
    sys.path.insert(0, folder)
    try:
        yield
    finally:
        sys.path.remove(folder)


def forget(*names):
    """Takes modules out of the interpreter's table."""
    for name in names:
        sys.modules.pop(name, None)


@contextlib.contextmanager
def builtin(name, value):
    """Replaces a built-in; takes it away for the value None."""
    there = hasattr(__builtin__, name)
    old = getattr(__builtin__, name, None)
    if value is not None:
        setattr(__builtin__, name, value)
    elif there:
        delattr(__builtin__, name)
    try:
        yield
    finally:
        if there:
            setattr(__builtin__, name, old)
        elif hasattr(__builtin__, name):
            delattr(__builtin__, name)


def load(opener=None):
    """A fresh load as the top-level module `Morvesk`, through the interpreter's own import.

    With an `opener` in place of the built-in `open`, only while the module loads: nothing else in this process shall see the
    receiver's files.
    """
    forget("Morvesk")
    folder = fresh_folder()
    with search_path(folder):
        if opener is None:
            return __import__("Morvesk")
        with builtin("open", opener):
            return __import__("Morvesk")


def recorded(path=None):
    """The module with all its calls recorded; `path` names another file than the one under test."""
    recording_host.install()
    if path is None:
        made = load(recording_host.recorded_open)
    else:
        made = imp.load_source("Morvesk", path)
    forget("Morvesk")
    vars(made).update(recording_host.STANDARD_LIBRARY)
    if not (path or PATH).endswith(".so"):
        made.open = recording_host.recorded_open
    return made


class ModuleCase(unittest.TestCase):
    """A test on a receiver that has just started, with the recorded module as `self.module`."""

    maxDiff = None
    shared = None

    def setUp(self):
        if ModuleCase.shared is None:
            ModuleCase.shared = recorded()
        self.host = recording_host.HOST
        self.host.reset()
        self.module = ModuleCase.shared
        self.namespace = dict(vars(self.module))

    def tearDown(self):
        vars(self.module).clear()
        vars(self.module).update(self.namespace)

    def screen(self, **attributes):
        """An opened screen, its construction not in the records any more."""
        screen = self.module.Morvesk(recording_host.Session(), "/the/panel")
        screen.__dict__.update({"messagebox_title": "the title", "dest_dir": recording_host.CONFIG})
        screen.__dict__.update(attributes)
        del self.host.calls[:]
        return screen

    def replace(self, **names):
        """Replaces names of the module's namespace until the test ends."""
        vars(self.module).update(names)

    def assertCalls(self, expected):
        """Compares the whole record of calls."""
        calls = self.host.calls
        for index, (got, wanted) in enumerate(zip(calls, expected)):
            if got != wanted:
                self.fail("call %d is\n  %r\nand should be\n  %r\nafter\n  %s" % (
                    index, got, wanted, "\n  ".join(repr(one) for one in calls[:index])))
        self.assertEqual(calls, expected)

    def raised(self, function, *arguments, **keywords):
        """The exception that a call raises."""
        try:
            function(*arguments, **keywords)
        except BaseException as error:
            return error
        self.fail("nothing raised")


class Journal(object):
    """Stands for a function or a method: notes that it was called and gives a set result."""

    def __init__(self, name, result=None):
        self.name, self.result = name, result

    def __call__(self, *arguments, **keywords):
        recording_host.HOST.note(self.name, *arguments, **keywords)
        return self.result


def main():
    """Runs the suite of the calling file; one in which nothing ran has not passed."""
    result = unittest.main(exit=False).result
    if result.testsRun == 0:
        sys.stderr.write("No test ran\n")
    sys.exit(not (result.wasSuccessful() and result.testsRun))
