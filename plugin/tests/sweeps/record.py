"""How many points a sweep visited, against how many it did when its record was written.

Fewer points than on record mean that a sweep has lost sight of something. MORVESK_RECORD_POINTS=1 writes the record anew.
"""

import atexit
import os
import sys

FOLDER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "points")
_visited = {}


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
    if os.environ.get("MORVESK_RECORD_POINTS"):
        return
    on_record = read(sweep).get((kind, operation), None)
    if on_record is None or number < on_record:
        raise AssertionError("%s: %d %s visited, on record are %s. If the operation has become shorter, write the record anew "
                             "with MORVESK_RECORD_POINTS=1" % (operation, number, kind, on_record))


@atexit.register
def _write():
    for sweep, numbers in _visited.items():
        for kind in sorted(set(kind for kind, _ in numbers)):
            sys.stdout.write("%s: %d %s in %d operations\n" % (
                sweep, sum(number for key, number in numbers.items() if key[0] == kind), kind,
                len([key for key in numbers if key[0] == kind])))
        if os.environ.get("MORVESK_RECORD_POINTS"):
            numbers = dict(read(sweep).items() + numbers.items())
            with open(path(sweep), "w") as stream:
                for key in sorted(numbers, key=lambda key: (key[1], key[0])):
                    stream.write("%d\t%s\t%s\n" % ((numbers[key],) + key))
