"""The allocation sweep: for every operation, every allocation fails once, and again with all that follow it.

Two kinds of points, both counted: the allocations themselves, of the interpreter as of C++ ("memory"); and the calls of the
interpreter that may need memory ("api"), since it keeps freed objects at hand and often asks for none. What the host's own
Python code allocates does not count, nor does the one reference that a class keeps of those derived from it: there the
interpreter itself does not survive.

The sweep runs in a process of its own. Where that crashes, the sweep goes on behind the point, and fails in the end.
"""

import os
import shlex
import struct
import subprocess
import sys
import tempfile
import unittest

import record
from allocation_worker import POSITION, SWEEPS
from operations import OPERATIONS

FULL = bool(os.environ.get("MORVESK_FULL_SWEEP"))
# Under a sanitizer only its own allocator works.
KINDS = os.environ.get("MORVESK_SWEEP_KINDS", "memory api standard other").split()
# How much is allocated depends on the interpreter and on the build.
FLAVOUR = "" if hasattr(sys, "gettotalrefcount") else ", release"
WORKER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "allocation_worker.py")
LIBRARY = os.environ.get("MORVESK_ALLOCATIONS", "")
INTERPRETER = shlex.split(os.environ.get("MORVESK_INTERPRETER", "")) or [sys.executable]
MOST_CRASHES = 20


class Watched(object):
    """The worker's findings; starts it again behind each point at which it dies."""

    def __init__(self, sweeps):
        self.points, self.origins, self.failures = {}, {}, []
        with tempfile.NamedTemporaryFile() as place:
            place.write(POSITION.pack(0, sweeps[0], 1))
            place.flush()
            crashes = 0
            while crashes < MOST_CRASHES:
                status, errors = self.follow(place.name, sweeps)
                if status == 0:
                    return
                crashes += 1
                place.seek(0)
                operation, sweep, number = POSITION.unpack(place.read(POSITION.size))
                self.failures.append("%r: %s %d: the process ends with status %d\n%s" % (
                    OPERATIONS[operation], SWEEPS[sweep], number, status, errors[-2000:]))
                place.seek(0)
                place.write(POSITION.pack(operation, sweep, number + 1))
                place.flush()

    def follow(self, place, sweeps):
        """Runs the worker from the place on; gives its status and what it wrote to standard error."""
        with open(place, "rb") as stream:
            start = POSITION.unpack(stream.read(POSITION.size))
        command = INTERPRETER + [WORKER, place] + [str(word) for word in start + tuple(sweeps)]
        with tempfile.TemporaryFile() as errors:
            worker = subprocess.Popen(
                command, stdout=subprocess.PIPE, stderr=errors, env=environment(), cwd=os.path.dirname(LIBRARY) or None)
            for line in worker.stdout:
                self.note(line.rstrip("\n").split("\t"))
            status = worker.wait()
            errors.seek(0)
            return status, errors.read()

    def note(self, words):
        """Notes a line of the worker's."""
        if words[0] == "points":
            self.points[words[1], words[3]] = int(words[2])
            self.origins[words[1], words[3]] = words[4]
        elif words[0] == "failure":
            self.failures.append(words[1])
        else:
            self.failures.append("a line that nobody expects: " + "\t".join(words))


def environment():
    """The worker's environment. It runs beside the library, since what is preloaded may have no blank in its path."""
    if "memory" not in KINDS:
        return os.environ
    return dict(os.environ, LD_PRELOAD="./" + os.path.basename(LIBRARY))


class AllocationSweep(unittest.TestCase):
    """The sweep, in one test: its points come from one process."""

    def test_every_allocation_fails(self):
        if not os.path.isfile(LIBRARY):
            self.fail("MORVESK_ALLOCATIONS names no library: '%s'" % LIBRARY)
        sweeps = [index for index, (kind, further) in enumerate(SWEEPS) if kind in KINDS and (FULL or not further)]
        watched = Watched(sweeps)
        if watched.failures:
            self.fail("\n".join(sorted(set(watched.failures))))
        self.assertEqual(len(watched.points), len(OPERATIONS) * len(sweeps))
        for operation in OPERATIONS:
            for kind in sorted(set(kind for kind, _ in watched.points)):
                record.visited("allocation", kind + FLAVOUR, operation.name, watched.points[kind, operation.name])
        record.check_operations("allocation", [operation.name for operation in OPERATIONS])
        if "memory" in KINDS:
            self.check_origins(watched)

    def check_origins(self, watched):
        """Prints who asked for the memory; but for one object of each class that is made, every allocation has failed."""
        of_each = dict((operation, [int(number) for number in origins.split()])
                       for (kind, operation), origins in watched.origins.items() if kind == "memory once")
        sys.stdout.write("allocation: of the memory %d by the interpreter, %d by operator new, %d by others; spared %d\n" % tuple(
            sum(numbers) for numbers in zip(*of_each.values())))
        for operation, numbers in of_each.items():
            self.assertLessEqual(numbers[-1], operation.startswith("initMorvesk"), operation)


if __name__ == "__main__":
    unittest.main(verbosity=2)
