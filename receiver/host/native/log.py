"""The host's log: one line a remark."""

import sys


def _to_standard_error(text):
    sys.stderr.write(text + "\n")


_sink = _to_standard_error


def log(text):
    """Write one line."""
    _sink(text)


def log_to(sink):
    """Have `sink(text)` called for each line from now on, instead of writing to standard error."""
    global _sink
    _sink = sink
