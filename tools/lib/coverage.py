"""Compares what was reached with what need not be.

usage: coverage.py MEASURED.json EXCEPTIONS

An exception is a line of three parts with tabs between them: the file, the line's text without the blanks around it, and the
reason why no suite reaches it. Empty lines and those that begin with "#" say nothing.
"""

from __future__ import print_function

import json
import os
import sys


class Tally(object):
    """Lines and branches, and how many of them were reached."""

    def __init__(self):
        self.lines = self.reached_lines = self.branches = self.taken_branches = 0

    def add(self, line):
        """Counts a line of the measurement."""
        self.lines += 1
        self.reached_lines += line["count"] > 0
        self.branches += len(line["branches"])
        self.taken_branches += sum(branch["count"] > 0 for branch in line["branches"])

    def __str__(self):
        return "%s of the lines (%d of %d), %s of the branches (%d of %d)" % (
            share(self.reached_lines, self.lines), self.reached_lines, self.lines,
            share(self.taken_branches, self.branches), self.taken_branches, self.branches)


def share(part, whole):
    """The share in percent, rounded down."""
    return "%d.%d %%" % divmod(1000 * part // whole if whole else 1000, 10)


def read_exceptions(path):
    """The lines that need not be reached: reason by (file, text). Exits with 2 on a line that is none."""
    exceptions = {}
    with open(path) as stream:
        for number, line in enumerate(stream, 1):
            line = line.rstrip("\n")
            if not line.strip() or line.startswith("#"):
                continue
            parts = line.split("\t")
            if len(parts) != 3 or not all(parts):
                sys.stderr.write("coverage: %s:%d: wants a file, a line and a reason, with tabs between them\n" % (path, number))
                sys.exit(2)
            exceptions[parts[0], parts[1]] = parts[2]
    return exceptions


def source(root, name):
    """The lines of a source file, without the blanks around them."""
    with open(os.path.join(root, name)) as stream:
        return [line.strip() for line in stream]


def main(measured, exceptions_path):
    """Prints what was reached; gives 1 when a line is missing, or an exception is none."""
    root = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(exceptions_path))))
    exceptions = read_exceptions(exceptions_path)
    tally, status, unused = Tally(), 0, set(exceptions)
    with open(measured) as stream:
        files = json.load(stream)["files"]
    for one in files:
        texts = source(root, one["file"])
        for line in one["lines"]:
            if line["gcovr/noncode"]:
                continue
            tally.add(line)
            if line["count"]:
                continue
            number = line["line_number"]
            key = (one["file"], texts[number - 1])
            unused.discard(key)
            if key in exceptions:
                print("%s:%d: not reached: %s" % (one["file"], number, exceptions[key]))
            else:
                print("%s:%d: NOT REACHED: %s" % (one["file"], number, texts[number - 1]))
                status = 1
    for key in sorted(unused):
        print("%s: REACHED, or not there any more; strike it out: %s\t%s" % ((exceptions_path,) + key))
        status = 1
    print("plugin/src: %s" % tally)
    return status


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
