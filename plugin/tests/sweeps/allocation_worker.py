"""Sweeps allocations in a process of its own, which may crash: `test_allocation.py` starts it and watches where it is.

Arguments: the file in which it keeps its place; operation, sweep and point to begin with; the sweeps that are wanted. Each
finding is a line on standard output, its words separated by tabs: "points", sweep, number, operation, origins; or "failure", text.
"""

import errno
import gc
import mmap
import struct
import sys

import world as receiver
import points
from operations import OPERATIONS
from runs import Run, left_over

# What fails: the n-th allocation, the n-th call of the interpreter that may need memory; once, or from there on.
# And operator new throws what nobody expects: a standard exception, something that is no exception.
SWEEPS = [
    ("memory", False), ("api", False), ("standard", False), ("other", False), ("memory", True), ("api", True)]
# The interpreter keeps a copy of each module that it has imported, which makes it slower and slower.
IMPORT_EVERY = 20
UNEXPECTED = {
    "standard": (RuntimeError, "an exception that nobody expects"), "other": (SystemError, "unknown C++ exception")}
POSITION = struct.Struct("lll")

CLASS_WITHOUT_MEMORY = [(SystemError, "NULL result without error in PyObject_Call"), (SystemError, "None")]


class Sweep(object):
    """One operation, one kind of failure: every point from `first` on."""

    def __init__(self, world, operation, kind, further):
        self.world, self.operation, self.kind, self.further = world, operation, kind, further
        self.name = kind + (" and further" if further else " once")
        self.imports = receiver.Imports(world.module)
        self.imported = self.imports.names()
        self.undisturbed = Run(world, operation, operation(world), kind)

    def run(self, first, visiting):
        """Sweeps; gives the number of points."""
        number = first
        while True:
            visiting(number)
            if not self.visit(number):
                return number - 1
            number += 1

    def visit(self, number):
        """Lets a point fail; whether there was one."""
        left, prepared = left_over(self.world, self.operation, lambda prepared: self.check(number, prepared))
        if left:
            self.fail(number, "%d references are left over" % left)
        again = Run(self.world, self.operation, prepared)
        if again.outcome != self.undisturbed.outcome or again.calls != self.undisturbed.calls:
            self.fail(number, "the next try ends in %r after %r" % (again.value, again.calls))
        if self.operation.entry == "initMorvesk" and number % IMPORT_EVERY == 1:
            self.check_import(number)
        return self.is_there

    def check_import(self, number):
        """An import as a receiver does it works after the failure."""
        if self.imports.names() != self.imported:
            self.fail(number, "the next import gives another module")

    def check(self, number, prepared):
        """What a run may end in: a MemoryError at once, or an outcome that is handled."""
        run = Run(self.world, self.operation, prepared, self.kind, number, None, self.further)
        self.is_there = run.failed > 0
        calls, undisturbed = run.calls, self.undisturbed.calls
        if run.loaded != self.operation.loaded(run.raised, self.undisturbed.loaded):
            self.fail(number, "a module in the interpreter's table: %r, after %r" % (run.loaded, run.value))
        if self.kind in UNEXPECTED and run.raised and run.failed:
            if run.value != UNEXPECTED[self.kind] or calls != undisturbed[:len(calls)]:
                self.fail(number, "the end is %r after %r" % (run.value, calls))
        elif is_for_lack_of_memory(run):
            if calls != undisturbed[:len(calls)] and not self.is_file_closed(calls):
                self.fail(number, "after %r there are more calls: %r" % (run.value, calls))
        elif not self.is_as_undisturbed(run) or calls not in (undisturbed, without_warning(undisturbed)):
            if not self.is_without_title(run):
                self.fail(number, "the end is %r after %r, undisturbed %r after %r" % (
                    run.value, calls, self.undisturbed.value, undisturbed))

    def is_as_undisturbed(self, run):
        """Whether the outcome is that of the undisturbed run; the text of an exception may be missing for lack of memory."""
        undisturbed = self.undisturbed
        return run.outcome == undisturbed.outcome or (
            run.raised and undisturbed.raised and run.value == (undisturbed.value[0], "None"))

    def is_file_closed(self, calls):
        """Whether the one call that is new closes a file that was being read."""
        return calls[-1][0] == "close file" and calls[:-1] == self.undisturbed.calls[:len(calls) - 1]

    def is_without_title(self, run):
        """A screen that could not make its title opens without one."""
        return self.operation.entry == "__init__" and not run.raised and "title" not in run.widgets

    def fail(self, number, text):
        """Tells a failure."""
        say("failure", "%r: %s, %d: %s" % (self.operation, self.name, number, text))


def without_warning(calls):
    """The calls less the warning of another version, which is lost when there is no memory for it."""
    return [record for record in calls if record[0] != "warning"]


def is_for_lack_of_memory(run):
    """A MemoryError, or how the C library's functions and the making of a class report it."""
    return run.raised and (run.value[0] is MemoryError or run.errno == errno.ENOMEM or run.value in CLASS_WITHOUT_MEMORY)


def say(*words):
    """Writes a line for the watching process."""
    sys.__stdout__.write("\t".join(str(word) for word in words) + "\n")
    sys.__stdout__.flush()


def main(place, operation_index, sweep_index, first, *wanted):
    """Sweeps everything from the given place on."""
    gc.disable()
    world = receiver.World()
    points.attach(world.module.__file__)
    with open(place, "r+b") as stream:
        position = mmap.mmap(stream.fileno(), POSITION.size)
    start = (int(operation_index), int(sweep_index))
    for index, which in sorted((index, int(which)) for index in range(len(OPERATIONS)) for which in wanted):
        if (index, which) < start:
            continue
        sweep = Sweep(world, OPERATIONS[index], *SWEEPS[which])

        def visiting(number):
            position[:] = POSITION.pack(index, which, number)

        count = sweep.run(int(first) if (index, which) == start else 1, visiting)
        origins = sweep.undisturbed.about if sweep.kind == "memory" and not sweep.further else ()
        say("points", sweep.name, count, OPERATIONS[index].name, " ".join(map(str, origins)))
        gc.collect()


if __name__ == "__main__":
    main(*sys.argv[1:])
