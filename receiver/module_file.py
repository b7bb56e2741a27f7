# -*- coding: utf-8 -*-
"""The module's file: which one the receiver gets, and what the process needs that loads it."""

import os
import pipes
import re

from display.characters import quoted
from options import Mistake

_ADDRESS_SANITIZER = re.compile(r"libasan\.so\.\d+")
# The sanitizer looks for it once, before any module is loaded.
_WHERE_EXCEPTIONS_ARE_THROWN = "libstdc++.so.6"
_ONLY_FOR_THE_DEBUG_INTERPRETER = "_Py_RefTotal"
_LEAKS_ARE_THE_INTERPRETERS = "detect_leaks=0"


class ModuleFile(object):
    """The module as built: an extension module, or one in plain Python."""

    def __init__(self, built):
        named = os.environ.get("MORVESK_MODULE")
        self.path = os.path.abspath(named or built)
        self.kind = os.path.splitext(self.path)[1]
        if not os.path.isfile(self.path):
            raise Mistake("the module %s is not there: %s" % (
                quoted(self.path), "MORVESK_MODULE must name a built one" if named else "build it, as ./run does"))
        if self.kind not in (".so", ".py"):
            raise Mistake("MORVESK_MODULE: %s is neither a .so nor a .py file" % quoted(self.path))

    def interpreter(self):
        """The words before a script, inside of the sandbox, that start the interpreter which can load the module."""
        with open(self.path, "rb") as source:
            content = source.read()
        debug = "-dbg" if _ONLY_FOR_THE_DEBUG_INTERPRETER in content else ""
        command = 'exec %s"${MORVESK_PYTHON:-/usr/bin/python2.7}%s" -B "$@"' % (_environment(content), debug)
        return ["/bin/sh", "-c", command, "receiver"]


def _environment(content):
    sanitizer = _ADDRESS_SANITIZER.search(content)
    if not sanitizer:
        return ""
    settings = (("LD_PRELOAD", sanitizer.group() + ":" + _WHERE_EXCEPTIONS_ARE_THROWN),
                ("ASAN_OPTIONS", os.environ.get("ASAN_OPTIONS", _LEAKS_ARE_THE_INTERPRETERS)),
                ("UBSAN_OPTIONS", os.environ.get("UBSAN_OPTIONS", "")))
    return "env %s " % " ".join("%s=%s" % (name, pipes.quote(value)) for name, value in settings)
