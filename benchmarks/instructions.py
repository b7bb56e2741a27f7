"""Instructions, counted by callgrind: they do not depend on what else the machine does."""

import glob
import os
import re
import shutil
import tempfile

import inputs
import progress
from processes import Process

# Valgrind's own words would be lost among the answers.
VALGRIND = ("valgrind", "--quiet", "--tool=callgrind", "--toggle-collect=measured_region",
            "--dump-after=measured_region")


class Counter(object):
    """One contender under callgrind."""

    def __init__(self, place, name):
        self.folder = tempfile.mkdtemp(dir=place.scratch)
        self.process = Process(place, name, VALGRIND + ("--callgrind-out-file=" + os.path.join(self.folder, "count"),))
        self.seen = 0

    def _new_counts(self):
        """The counts of what was measured since the last time, in their order."""
        dumps = sorted(glob.glob(os.path.join(self.folder, "count.*")), key=lambda path: int(path.rpartition(".")[2]))
        counts = [int(re.search(r"^totals: (\d+)", inputs.read(path), re.MULTILINE).group(1)) for path in dumps]
        new, self.seen = counts[self.seen:], len(counts)
        return new

    def load(self):
        """The instructions of loading the module."""
        self.process.ask("load")
        return self._new_counts()[0]

    def work(self, name, arguments):
        """The instructions of doing a work once, when it has been done before."""
        number = self.process.ask("prepare", name, arguments)
        self.process.ask("time", number)
        self._new_counts()
        self.process.ask("time", number)
        counts = self._new_counts()
        return counts[0] // self.process.ask("repetitions", number) - sum(counts[1:])

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.process.__exit__()
        shutil.rmtree(self.folder, ignore_errors=True)


def counted(place, names, works, load=True):
    """The instructions of works, pairs of name and arguments by key, and of the load: by key and contender."""
    counts = dict((key, {}) for key in works)
    # Under callgrind that would take fifty times as long.
    store = inputs.Store(place.scratch)
    for work in works.values():
        store.make_for(*work)
    for name in names:
        progress.say("counting the instructions of " + name)
        with Counter(place, name) as counter:
            if load:
                counts.setdefault("load", {})[name] = counter.load()
            for key in sorted(works):
                counts[key][name] = counter.work(*works[key])
    return counts
