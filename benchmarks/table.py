"""Measures the rows of the table."""

import os

import inputs
import instructions
import memory
import progress
import rounds
from contenders import FLOOR, NAMES, OURS, PLAIN, SECOND
from results import Result
from rows import ALL, BY_KEY, OBJECTS, Row

THREE = (OURS, PLAIN, FLOOR)
SHORT, LONG = 10000, 1000000
RUBBISH = 10 * 1000 * 1000
ROOT_FILE = [10000, 1000]
MERGE = [500]
TEN_TIMES = 10
LONG_ROOT_FILE = [TEN_TIMES * size for size in ROOT_FILE]

# Contenders, work, rounds in each generation of processes, generations. Processes differ in how their memory happens to
# lie, which some works feel: these have many generations.
TIMED = {
    "catalogue-100": (NAMES, ("catalogue", [100, 100]), 15, 4),
    "catalogue-10000": (NAMES, ("catalogue", [SHORT]), 15, 4),
    "catalogue-1000000": (NAMES, ("catalogue", [LONG]), 5, 2),
    "rubbish": (NAMES, ("rubbish", [RUBBISH]), 8, 4),
    "rows": (NAMES, ("rows", [SHORT]), 15, 4),
    "rows-and-calls": (THREE, ("rows_and_host_calls", [SHORT]), 15, 4),
    "root-file": (NAMES, ("root_file", ROOT_FILE), 4, 12),
    "merge": (THREE, ("merge", MERGE), 10, 3),
}
LONGEST = "catalogue-1000000"
LOADS = 60

# What is compared with what, and how many times as large it is.
GROWTHS = {
    "growth-catalogue": (LONGEST, "catalogue-10000", LONG // SHORT),
    "growth-root-file": ("root-file-long", "root-file", TEN_TIMES),
}


def _changed(series, names, change):
    made = rounds.Series(names)
    for name in names:
        for values in zip(*[one.values[name] for one in series]):
            made.add(name, change(*values))
    return made


def _in_milliseconds(series, names):
    return _changed([series], names, lambda seconds: seconds * 1e3)


def _growth(place, names, larger, smaller, times, count, generations):
    large, small = rounds.times(place, names, [larger, smaller], count, generations)
    return _changed((large, small), names, lambda one, other: one / other / times)


class Table(object):
    """Measures rows at a place; says what it is at."""

    def __init__(self, place):
        self.place = place
        self.counted = {}

    def count(self):
        """Counts the instructions of the load and of all works but the longest, which only ours does, to see it grow."""
        works = dict((key, TIMED[key][1]) for key in TIMED if key != LONGEST)
        self.counted = instructions.counted(self.place, THREE, works)
        longest = {LONGEST: TIMED[LONGEST][1], "root-file-long": ("root_file", LONG_ROOT_FILE)}
        self.counted.update(instructions.counted(self.place, (OURS,), longest, load=False))

    def result(self, key):
        """Measures a row."""
        progress.say(BY_KEY[key].title)
        special = getattr(self, "_" + key.replace("-", "_"), None)
        series = special() if special else self._timed(key)
        return Result(BY_KEY[key], series, self.counted.get(key), self._instruction_growth(key))

    def _instruction_growth(self, key):
        """How many times the instructions of the larger input ours takes, per line; None where that was not counted."""
        if not self.counted or key not in GROWTHS:
            return None
        larger, smaller, times = GROWTHS[key]
        return float(self.counted[larger][OURS]) / self.counted[smaller][OURS] / times

    def of_catalogue(self, path):
        """Measures how a catalogue of one's own is read."""
        row = Row("own", "catalogue " + os.path.basename(path).decode("utf-8", "replace"), OBJECTS)
        series, = rounds.times(self.place, THREE, [("own_catalogue", [os.path.abspath(path)])], 20, 3)
        return Result(row, _in_milliseconds(series, THREE))

    def results(self):
        """Measures all rows, one after the other."""
        return [self.result(row.key) for row in ALL]

    def _timed(self, key):
        names, work, count, generations = TIMED[key]
        series, = rounds.times(self.place, names, [work], count, generations)
        return _in_milliseconds(series, names)

    def _load(self):
        series = rounds.fresh(self.place, NAMES, LOADS, "load")
        return _in_milliseconds(series, NAMES)

    def _outside(self):
        names = (OURS, PLAIN)
        series, = rounds.times(self.place, names, [("merge_in_host", MERGE)], 10, 3, "time_outside")
        return _changed([series], names, lambda pair: pair[0] / pair[1] * 100)

    def _memory(self):
        """What is on top of what the result itself holds; the floor's own figure is the body."""
        body = len(inputs.Store(self.place.scratch).catalogue(LONG)[0])
        found = memory.on_top(rounds.fresh(self.place, memory.CONTENDERS, 3, "memory", LONG))
        made = rounds.Series(memory.CONTENDERS)
        for ours, plain in zip(found[OURS], found[PLAIN]):
            made.add(OURS, ours / 1e6)
            made.add(PLAIN, plain / 1e6)
            made.add(FLOOR, body / 1e6)
        return made

    def _growth_catalogue(self):
        return _growth(self.place, THREE, ("catalogue", [LONG]), ("catalogue", [SHORT]), LONG // SHORT, 5, 2)

    def _growth_lines(self):
        # The results of all the catalogues are kept: both fill as much memory.
        times = LONG // SHORT
        return _growth(self.place, THREE, ("catalogue", [LONG]), ("catalogue", [SHORT, times]), times, 3, 2)

    def _growth_root_file(self):
        names = (OURS, FLOOR, SECOND)
        return _growth(self.place, names, ("root_file", LONG_ROOT_FILE), ("root_file", ROOT_FILE), TEN_TIMES, 4, 6)
