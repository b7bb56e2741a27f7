"""What the suites of the tools share: where things are, running commands, and saying what could not be checked here."""

from __future__ import print_function

import os
import shutil
import subprocess
import sys
import tempfile
import unittest

TOOLS = os.path.dirname(os.path.dirname(os.path.realpath(__file__)))
CHECKOUT = os.path.dirname(TOOLS)
ROOT = os.path.join(CHECKOUT, ".local", "root")
INTERPRETER = os.path.join(TOOLS, "python")


class Outcome(object):
    """How a command has ended: its exit status and what it wrote."""

    def __init__(self, status, output, errors):
        self.status = status
        self.output = output
        self.errors = errors

    def __repr__(self):
        return "status %d\n--- output\n%s--- errors\n%s---" % (self.status, self.output, self.errors)


def run(command, environment=None, text="", folder=None):
    """Runs a command to its end; the environment is laid over this one's, where None takes a variable away."""
    child = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                             env=surroundings(environment), cwd=folder, close_fds=True)
    output, errors = child.communicate(text)
    return Outcome(child.returncode, output, errors)


def surroundings(changes):
    """This process's environment with some variables changed, and none of the project's own."""
    result = dict((name, value) for name, value in os.environ.items()
                  if not name.startswith("MORVESK_") and name != "LD_LIBRARY_PATH")
    for name, value in (changes or {}).items():
        if value is None:
            result.pop(name, None)
        else:
            result[name] = value
    return result


def scratch_folder():
    """A new folder in the checkout, with a blank in its path."""
    parent = os.path.join(CHECKOUT, "build", "tools tests")
    if not os.path.isdir(parent):
        os.makedirs(parent)
    return tempfile.mkdtemp(dir=parent)


def copy_sources(folder):
    """Copies what the module is built from."""
    os.makedirs(os.path.join(folder, "plugin"))
    for part in ("CMakeLists.txt", "CMakePresets.json", "cmake", "plugin/CMakeLists.txt", "plugin/src"):
        subprocess.check_call(["cp", "-r", os.path.join(CHECKOUT, part), os.path.join(folder, part)])


def remove_folder(folder):
    """Removes a folder, write-protected ones in it too; its files may be links to files that stay."""
    subprocess.call(["find", folder, "-type", "d", "-exec", "chmod", "u+w", "{}", "+"])
    shutil.rmtree(folder)


def not_run(skipped):
    """The lines that tell of (test, reason) pairs; tests of one class with one reason share a line."""
    reasons = {}
    for test, reason in skipped:
        name = test.id().split(".", 1)[1]
        reasons.setdefault((name.partition(".")[0], reason), []).append(name)
    for (group, reason), names in sorted(reasons.items()):
        what = names[0] if len(names) == 1 else "%d checks of %s" % (len(names), group)
        yield "not run: %s: %s" % (what, reason)


def main():
    """Runs the suite of the calling module and tells what this machine does not allow to be checked."""
    program = unittest.main(exit=False, verbosity=2)
    for line in not_run(program.result.skipped):
        print(line)
    sys.exit(not program.result.wasSuccessful())
