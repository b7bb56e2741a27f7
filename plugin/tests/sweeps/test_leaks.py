"""Ten thousand rounds of every operation, and as many of its failures: nothing grows.

Flat have to be the interpreter's count of references (where it counts them), the bytes that the process has allocated, and its
resident size. The everyday run does fewer rounds; MORVESK_FULL_SWEEP=1 does them all.
"""

import gc
import os
import sys
import unittest

import world as receiver
import points
from operations import OPERATIONS
from runs import HOST, Run, printing_to, references

ROUNDS = 10000 if os.environ.get("MORVESK_FULL_SWEEP") else 60
WARMING_UP = ROUNDS // 10 + 20
# For what does not grow with the rounds: far less than a byte per round where it matters.
SLACK = 16 * 1024
RESIDENT_SLACK = 256 * 1024


class Ordinary(Exception):
    """An exception that nobody knows."""


def note(name, *arguments, **keywords):
    """In the place of the host's recording, whose records would be all that grows."""
    if name in HOST.failures:
        raise HOST.failures[name]


def resident():
    """The resident size of this process in bytes: counted, since the kernel's running total is a rough one."""
    with open("/proc/self/smaps_rollup") as stream:
        return [int(line.split()[1]) * 1024 for line in stream if line.startswith("Rss:")][0]


def measure():
    """What has to be flat: references, allocated bytes, resident bytes."""
    return references(), points.allocated(), resident()


class Leaks(unittest.TestCase):
    """The rounds, one test an operation."""

    @classmethod
    def setUpClass(cls):
        gc.disable()
        cls.world = receiver.World()
        points.attach(cls.world.module.__file__)
        cls.record, HOST.note = staticmethod(HOST.note), note

    @classmethod
    def tearDownClass(cls):
        HOST.note = cls.record
        gc.enable()

    def round(self, operation, kind="host", failing=0, error=None):
        """One round; gives the number of points."""
        function, arguments = operation(self.world)
        counted = points.run(function, arguments, kind, failing, False, error)[2]
        if self.writing:
            self.world.files.clear()
        operation.finish(self.world)
        return counted

    def is_writing(self, operation):
        """Whether an operation changes files, which then have to be put back for each round."""
        HOST.note = self.record
        Run(self.world, operation, operation(self.world))
        HOST.note = note
        return any(receiver.is_writing(record) for record in HOST.calls)

    def check(self, operation, at_least, one_round):
        """Runs the rounds, and before them as many as fill the interpreter's caches; compares."""
        rounds = max(ROUNDS, at_least)
        with printing_to(self.world.output):
            grown = self.grown(operation, max(WARMING_UP, at_least), rounds, one_round)
        if grown[0] > 0 or grown[1] > SLACK or grown[2] > RESIDENT_SLACK:
            self.fail("%r: after %d rounds there are %d references, %d allocated and %d resident bytes more" % (
                (operation, rounds) + grown))
        return rounds

    def grown(self, operation, warming_up, rounds, one_round):
        """What the rounds have made grow, and by how much."""
        for number in xrange(warming_up):
            one_round(number)
        self.world.reset()
        gc.collect()
        # As many objects hold what was measured now as will in the end.
        before, after = measure(), measure()
        before = measure()
        for number in xrange(rounds):
            one_round(number)
        self.world.reset()
        gc.collect()
        after = measure()
        return tuple(end - start for start, end in zip(before, after))

    def rounds(self, operation):
        """The operation as it is, then failing at each of its points in turn: for lack of memory, by an exception."""
        self.writing = self.is_writing(operation)
        errors = [None, Ordinary("unknown")]
        count = self.round(operation, "api")
        undisturbed = self.check(operation, 0, lambda number: self.round(operation))
        failing = self.check(
            operation, 2 * count,
            lambda number: self.round(operation, "api", number // 2 % count + 1, errors[number % 2]))
        sys.stdout.write("%6d rounds, %d failing: %r\n" % (undisturbed, failing, operation))


for each in OPERATIONS:
    setattr(Leaks, "test " + each.name, lambda self, operation=each: self.rounds(operation))


if __name__ == "__main__":
    unittest.main(verbosity=2)
