"""Measures the module beside plain Python and beside the floor.

usage: bench.py BUILD PLAIN                  measures everything, writes docs/benchmarks.md and docs/benchmarks.svg
       bench.py BUILD PLAIN check            checks that the ratios that matter still hold
       bench.py BUILD PLAIN only ROW...      measures some rows of the table and prints them
       bench.py BUILD PLAIN catalogue FILE   measures how a catalogue of one's own is read
BUILD is the folder of a build, PLAIN the module in plain Python.
"""

import os
import signal
import sys

import chart
import check
import contenders
import inputs
import machine
import place
import processes
import progress
import report
import rounds
import rows
import size
from table import Table

DOCS = os.path.join(contenders.ROOT, "docs")
# Something was measured and is not as it shall be; nothing could be measured.
LOST, MISTAKE = 1, 2


def write_documents(at, build):
    """Measures everything and writes page and chart."""
    table = Table(at)
    table.count()
    results = table.results()
    module_size = (size.stripped(os.path.join(build, "Morvesk.so")), size.LIMIT)
    page = report.page(results, machine.described(), at.file_system(), module_size)
    inputs.write(os.path.join(DOCS, "benchmarks.md"), page)
    inputs.write(os.path.join(DOCS, "benchmarks.svg"), chart.drawn(results))
    progress.say("written: docs/benchmarks.md and docs/benchmarks.svg")
    return 0


def print_rows(at, build, *keys):
    """Measures these rows, without instructions."""
    table = Table(at)
    sys.stdout.write(report.table([table.result(key) for key in keys]).encode("utf-8"))
    return 0


def print_catalogue(at, build, path):
    """Measures how this catalogue is read."""
    sys.stdout.write(report.table([Table(at).of_catalogue(path)]).encode("utf-8"))
    return 0


def run_check(at, build):
    """Checks, and says the outcome in one line."""
    lost = check.run(at, build)
    sys.stdout.write("%d ratios are lost\n" % lost if lost else "every ratio that matters holds\n")
    return LOST if lost else 0


ACTIONS = {"all": write_documents, "check": run_check, "only": print_rows, "catalogue": print_catalogue}


def main(build, plain, action="all", *arguments):
    """Does what the arguments say; gives the exit status."""
    # Ended from outside, it still takes its files away.
    signal.signal(signal.SIGTERM, lambda number, frame: sys.exit(128 + number))
    try:
        with place.made(build, plain) as at:
            return ACTIONS[action](at, build, *arguments)
    except (contenders.Missing, processes.Failed, rounds.Different) as error:
        sys.stderr.write("bench: %s\n" % error)
        return LOST if isinstance(error, rounds.Different) else MISTAKE


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
