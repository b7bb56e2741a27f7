"""The contenders as folders to import from: ours, plain Python, the floor and, where one says more, a second floor."""

import os
import py_compile
import shutil
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
OURS, PLAIN, FLOOR, SECOND = "ours", "plain", "floor", "second"
NAMES = (OURS, PLAIN, FLOOR, SECOND)
FLOORS = (FLOOR, SECOND)
TOOLS = "tools"


class Missing(Exception):
    """A contender is not there, or not what it has to be."""


def _copy(source, folder):
    if not os.path.isfile(source):
        raise Missing("no %s: build the preset release first, or name another build with --build" % source)
    os.mkdir(folder)
    shutil.copy2(source, folder)


PLAIN_SOURCE = os.path.join(HERE, "plain", "Morvesk.py")


def lay_out(build, plain_source, folder):
    """Copies the contenders of a build below a folder, one folder each: a build in the meantime changes nothing."""
    floors = os.path.join(build, "benchmarks")
    _copy(os.path.join(build, "Morvesk.so"), os.path.join(folder, OURS))
    _copy(os.path.join(floors, "imports", "Morvesk.so"), os.path.join(folder, FLOOR))
    _copy(os.path.join(floors, "nothing", "Morvesk.so"), os.path.join(folder, SECOND))
    _copy(os.path.join(floors, "floor.so"), os.path.join(folder, TOOLS))
    # As on a receiver: byte code without its source. The interpreters run with -O, which is what makes and takes .pyo.
    os.mkdir(os.path.join(folder, PLAIN))
    try:
        py_compile.compile(plain_source, os.path.join(folder, PLAIN, "Morvesk.pyo"), "Morvesk.py", True)
    except py_compile.PyCompileError as error:
        raise Missing("%s is no Python 2.7: %s" % (plain_source, error.exc_value))


def _import(layout, folder, module):
    sys.path.insert(0, os.path.join(layout, folder))
    try:
        return __import__(module)
    finally:
        del sys.path[0]


def load(layout, name):
    """Imports a contender as the top-level module `Morvesk`."""
    return _import(layout, name, "Morvesk")


def load_copy(layout, name, folder, before_load):
    """Imports a contender afresh, with names of its own: the interpreter knows a compiled module by its file."""
    shutil.copytree(os.path.join(layout, name), folder)
    sys.modules.pop("Morvesk", None)
    before_load()
    return _import(os.path.dirname(folder), os.path.basename(folder), "Morvesk")


def tools(layout):
    """Imports the extension module `floor`."""
    return _import(layout, TOOLS, "floor")
