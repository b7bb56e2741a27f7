"""What the driver is at, for whoever waits."""

import sys
import time

_START = time.time()


def say(text):
    """One line on standard error, with the seconds since the start."""
    text = text.encode("utf-8") if isinstance(text, unicode) else text
    sys.stderr.write("bench: %4d s  %s\n" % (time.time() - _START, text))
