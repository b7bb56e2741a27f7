"""The ratios that matter, with margins that noise does not cross: a change that loses one of them fails."""

import os
import sys

import figures
import inputs
import instructions
import memory
import progress
import rounds
import size
from contenders import FLOOR, OURS, PLAIN, SECOND

COUNTED = {
    "catalogue of 100 lines": ("catalogue", [100]),
    "catalogue of 10,000 lines": ("catalogue", [10000]),
    "catalogue without an entry": ("rubbish", [1000000]),
    "list rows": ("rows", [10000]),
    "root file": ("root_file", [5000, 500]),
    "merge": ("merge", [100]),
}
# Only ours, ten times as long as what it is compared with.
LONG = {
    "catalogue of 10,000 lines": ("catalogue", [100000]),
    "root file": ("root_file", [50000, 5000]),
}
MEMORY_LINES = 300000


class Limit(object):
    """A figure with its bound; `at_least` tells on which side of it the figure has to stay."""

    def __init__(self, what, figure, bound, at_least):
        self.what, self.figure, self.bound = what, figure, bound
        self.side = "at least" if at_least else "at most"
        self.holds = figure >= bound if at_least else figure <= bound

    def line(self):
        """What is printed."""
        outcome = "ok" if self.holds else "LOST"
        return "%-4s  %-78s %8.2f  (%s %g)" % (outcome, self.what, self.figure, self.side, self.bound)


def at_least(what, figure, bound):
    """The figure may not sink below the bound."""
    return Limit(what, figure, bound, True)


def at_most(what, figure, bound):
    """The figure may not rise above the bound."""
    return Limit(what, figure, bound, False)


def _by_instructions(place):
    counts = instructions.counted(place, (OURS, PLAIN, FLOOR), COUNTED)
    longer = instructions.counted(place, (OURS,), LONG, load=False)

    def ratio(key, name, base):
        """How many times the instructions of the one the other takes."""
        return float(counts[key][name]) / counts[key][base]

    for key, bound in (("load", 0.9), ("catalogue of 100 lines", 7), ("catalogue of 10,000 lines", 7.5),
                       ("catalogue without an entry", 20), ("list rows", 2), ("root file", 45), ("merge", 1.1)):
        yield at_least("instructions, %s: plain Python / ours" % key, ratio(key, PLAIN, OURS), bound)
    for key, bound in (("load", 2.4), ("catalogue of 100 lines", 2.3), ("catalogue of 10,000 lines", 2.1),
                       ("list rows", 4.6)):
        yield at_most("instructions, %s: ours / floor" % key, ratio(key, OURS, FLOOR), bound)
    for key in LONG:
        yield at_most("instructions, %s and ten times as much: growth per line" % key,
                      longer[key][OURS] / 10.0 / counts[key][OURS], 1.05)


def _timed(place, what, work, base, bound):
    progress.say("timing: " + what)
    series, = rounds.times(place, (OURS, base), [work], 12, 5)
    return at_most(what, figures.median(series.ratios(OURS, base)), bound)


def _by_time(place):
    yield _timed(place, "time, catalogue of 10,000 lines: ours / floor", ("catalogue", [10000]), FLOOR, 1.8)
    yield _timed(place, "time, catalogue without an entry: ours / memchr from line to line",
                 ("rubbish", [4000000]), SECOND, 2.2)
    yield _timed(place, "time, list rows: ours / floor", ("rows", [10000]), FLOOR, 3)
    yield _timed(place, "time, root file: ours / the interpreter's own file objects",
                 ("root_file", [10000, 1000]), SECOND, 1.6)
    progress.say("timing: merge")
    series, = rounds.times(place, (OURS,), [("merge_in_host", [500])], 12, 2, "time_outside")
    # What else the machine does only ever adds to it.
    least = min(outside / whole * 100 for outside, whole in series.values[OURS])
    yield at_most("time, merge: least percentage outside of host and system calls", least, 6)


def _by_bytes(place, build):
    progress.say("measuring memory and size")
    body = len(inputs.Store(place.scratch).catalogue(MEMORY_LINES)[0])
    on_top = memory.on_top(rounds.fresh(place, memory.CONTENDERS, 1, "memory", MEMORY_LINES))
    yield at_most("memory on top of a catalogue's result: ours / body", on_top[OURS][0] / body, 0.1)
    yield at_least("memory on top of a catalogue's result: plain Python / ours", on_top[PLAIN][0] / on_top[OURS][0], 15)
    yield at_most("KiB of the stripped module", size.stripped(os.path.join(build, "Morvesk.so")) / 1024.0,
                  size.LIMIT / 1024.0)


def run(place, build):
    """Checks everything, prints each figure with its bound; gives the number of those that are lost."""
    lost = 0
    for limits in (_by_bytes(place, build), _by_instructions(place), _by_time(place)):
        for limit in limits:
            sys.stdout.write(limit.line() + "\n")
            sys.stdout.flush()
            lost += not limit.holds
    return lost
