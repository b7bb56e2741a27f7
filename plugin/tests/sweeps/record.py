"""How many points a sweep visited, against how many it did when its record was written.

Fewer points than on record mean that a sweep has lost sight of something, or that an operation was made shorter: who did that
looks at the difference and writes the record anew.

MORVESK_RECORD_POINTS=1 has the suites write the record instead.
"""

import atexit
import os
import sys

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "points")
RECORDING = bool(os.environ.get("MORVESK_RECORD_POINTS"))
_visited = {}
_records = {}


def path(sweep):
    """The record of a sweep."""
    return os.path.join(FOLDER, sweep + ".txt")


def read(sweep):
    """The record of a sweep: number by kind and operation."""
    numbers = {}
    if os.path.exists(path(sweep)):
        for line in open(path(sweep)):
            number, kind, operation = line.rstrip("\n").split("\t")
            numbers[kind, operation] = int(number)
    return numbers


def visited(sweep, kind, operation, number):
    """Tells the number of points; AssertionError when it has fallen or is in no record."""
    sys.stdout.write("%6d %s: %s\n" % (number, kind, operation))
    _visited.setdefault(sweep, {})[kind, operation] = number
    if RECORDING:
        return
    if sweep not in _records:
        _records[sweep] = read(sweep)
    on_record = _records[sweep].get((kind, operation))
    if on_record is None or number < on_record:
        raise AssertionError("%s: %d %s visited, on record are %s. If the operation has become shorter, write the record anew "
                             "with MORVESK_RECORD_POINTS=1" % (operation, number, kind, on_record))


def check_operations(sweep, names):
    """AssertionError when an operation is on record that is not there any more."""
    gone = sorted(set(operation for _, operation in read(sweep)) - set(names))
    if gone and not RECORDING:
        raise AssertionError("on record for %s, but no operations: %s" % (sweep, ", ".join(gone)))


@atexit.register
def _write():
    for sweep, numbers in _visited.items():
        for kind in sorted(set(kind for kind, _ in numbers)):
            sys.stdout.write("%s: %d %s in %d operations\n" % (
                sweep, sum(number for key, number in numbers.items() if key[0] == kind), kind,
                len([key for key in numbers if key[0] == kind])))
        if RECORDING:
            there = set(operation for _, operation in numbers)
            kept = [(key, number) for key, number in read(sweep).items() if key[1] in there]
            numbers = dict(kept + numbers.items())
            with open(path(sweep), "w") as stream:
                for key in sorted(numbers, key=lambda key: (key[1], key[0])):
                    stream.write("%d\t%s\t%s\n" % ((numbers[key],) + key))
