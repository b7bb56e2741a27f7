"""The failure sweep over the host: every call that the module makes fails once, in each way in which it can.

The points are counted in an undisturbed run. There are two kinds: the calls that the recording host records, each raising
from inside the host; and all uses of the interpreter that may run code of the host (look-ups, item assignments, truth tests,
iteration, ...), each raising in the place of running it.
"""

import gc
import os
import socket
import sys
import unittest
import urllib2

import world as receiver
import loading
import points
import record
import rules
from operations import OPERATIONS
from runs import HOST, Run, left_over, printing_to, without_screens


class Ordinary(Exception):
    """An exception that nobody knows."""


class OldStyle:
    """Raisable without being an exception."""


def errors():
    """One exception of each kind."""
    return [
        Ordinary("unknown"), urllib2.HTTPError("http://server/", 404, "gone", {}, None), urllib2.URLError("refused"),
        OSError(13, "Permission denied"), IOError(28, "No space left on device"), socket.timeout("timed out"),
        AttributeError("no such thing"), KeyboardInterrupt(), SystemExit(3), OldStyle()]


ERRORS = errors()


class Point(object):
    """Where an operation fails, and how: the n-th `kind` raises `error`, `made` calls having been made until then."""

    def __init__(self, kind, number, error, guard, made, about):
        self.kind, self.number, self.error, self.guard, self.made, self.about = kind, number, error, guard, made, about


class HostSweep(unittest.TestCase):
    """The sweep, one test an operation."""

    maxDiff = None

    @classmethod
    def setUpClass(cls):
        gc.disable()
        cls.world = receiver.World()
        points.attach(cls.world.module.__file__)
        cls.plain = receiver.World(loading.PLAIN)

    @classmethod
    def tearDownClass(cls):
        gc.enable()
        gc.collect()

    def sweep(self, operation):
        """Sweeps an operation; gives the number of calls and of points."""
        self.operation = operation
        self.undisturbed = Run(self.world, operation, operation(self.world))
        function, arguments = operation(self.world)
        with printing_to(self.world.output):
            trace = points.trace(function, arguments, "host", HOST.calls)
        operation.finish(self.world)
        for index in range(len(self.undisturbed.calls)):
            guard = rules.guard_of_call(self.undisturbed.calls, index)
            for error in chosen(guard, index, 2):
                self.check(Point("call", index + 1, error, guard, index + 1, self.undisturbed.calls[index]))
        for index, guard in enumerate(rules.guards_of_points(operation, trace)):
            for error in chosen(guard, index, 1):
                self.check(Point("host", index + 1, error, guard, trace[index][2], trace[index]))
        return len(self.undisturbed.calls), len(trace)

    def check(self, point):
        """Lets one point fail; checks the outcome, the references and the next try."""
        left, prepared = left_over(self.world, self.operation, lambda prepared: self.check_outcome(point, prepared))
        if left:
            self.fail("%s: %d references are left over" % (self.at(point), left))
        self.check_next_try(point, prepared)

    def check_outcome(self, point, prepared):
        """Compares what comes of the run with what the rules say, and with what plain Python does."""
        run = Run(self.world, self.operation, prepared, point.kind, point.number, point.error)
        expected = rules.expected(self.operation, self.undisturbed.calls, point)
        self.same(point, "calls", run.calls, self.undisturbed.calls[:point.made] + without_screens(expected.calls))
        if expected.result is rules.UNDISTURBED:
            self.same(point, "outcome", run.outcome, self.undisturbed.outcome)
        elif expected.result is rules.RAISED:
            self.same(point, "exception, being the one that was raised", (run.is_the_error, run.value[0]), (True, type_of(point.error)))
            self.same(point, "first entry of the traceback", run.entries[:1], [self.operation.entry])
        else:
            self.same(point, "outcome", run.outcome, (expected.raised, expected.result))
        self.same(point, "names in a module in the interpreter's table", run.loaded,
                  self.operation.loaded(run.raised, self.undisturbed.loaded))
        if point.kind == "call" and self.operation.entry != "initMorvesk":
            self.check_against_plain(point, run)

    def check_against_plain(self, point, run):
        """Where the exception comes from inside of the host, the module written in Python has to do the very same."""
        plain = Run(self.plain, self.operation, self.operation(self.plain), point.kind, point.number, point.error)
        for what in ("calls", "outcome", "is_the_error", "entries"):
            self.same(point, what + " against plain Python", getattr(run, what), getattr(plain, what))

    def check_next_try(self, point, prepared):
        """The operation, called again after its failure, does what it always does."""
        again = Run(self.world, self.operation, prepared)
        for what in ("calls", "outcome", "entries"):
            self.same(point, what + " of the next try", getattr(again, what), getattr(self.undisturbed, what))

    def at(self, point):
        """Says which point of which operation it is."""
        return "%r: %s %d, %r, raises %r" % (self.operation, point.kind, point.number, point.about, point.error)

    def same(self, point, what, got, wanted):
        """Compares, and says where."""
        if got == wanted:
            return
        if isinstance(got, list):
            first = [pair for pair in map(None, got, wanted) if pair[0] != pair[1]][0]
            self.fail("%s: of the %s, the first that is another one:\n  %r\nshould be\n  %r" % ((self.at(point), what) + first))
        self.fail("%s: the %s:\n  %r\nshould be\n  %r" % (self.at(point), what, got, wanted))


def chosen(guard, index, count):
    """The errors to raise at a point: all of them inside a guard and in the full sweep, some in turn else."""
    if guard or os.environ.get("MORVESK_FULL_SWEEP"):
        return ERRORS
    return [ERRORS[(index + offset * 3) % len(ERRORS)] for offset in range(count)]


def type_of(error):
    """The class of an exception as the interpreter hands it on."""
    return error.__class__


def as_test(operation):
    """The test of one operation."""
    def test(self):
        for kind, count in zip(("calls", "points"), self.sweep(operation)):
            record.visited("host", kind, operation.name, count)
    return test


class Record(unittest.TestCase):
    """The operations themselves do not get fewer."""

    def test_every_operation_on_record_is_there(self):
        record.check_operations("host", [operation.name for operation in OPERATIONS])


for each in OPERATIONS:
    setattr(HostSweep, "test " + each.name, as_test(each))


if __name__ == "__main__":
    unittest.main(verbosity=2)
