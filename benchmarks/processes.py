"""Processes of contenders, as the driver sees them."""

import contextlib
import json
import os
import subprocess
import sys

import contenders

# No site packages, nothing from the environment, and no byte code left in the interpreter's folders.
INTERPRETER = (sys.executable, "-E", "-S", "-O", "-B")


class Failed(Exception):
    """A process ended before its time."""


class Process(object):
    """A process of one contender; `prefix` is a command that runs it."""

    def __init__(self, place, name, prefix=()):
        script = os.path.join(contenders.HERE, "worker.py")
        self.name = name
        self.process = subprocess.Popen(tuple(prefix) + INTERPRETER + (script, place.layout, name, place.scratch),
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)

    def ask(self, *order):
        """Gives an order and waits for its answer."""
        try:
            self.process.stdin.write(json.dumps(order) + "\n")
            self.process.stdin.flush()
            answer = self.process.stdout.readline()
        except IOError:
            answer = ""
        if not answer:
            raise Failed("the process of %s ended with status %s at %r" % (self.name, self.process.wait(), order))
        return json.loads(answer)

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.process.stdin.close()
        self.process.stdout.close()
        self.process.wait()


@contextlib.contextmanager
def of_all(place, names):
    """A process for each of the contenders."""
    started = []
    try:
        for name in names:
            started.append(Process(place, name))
        yield started
    finally:
        for process in started:
            process.__exit__()
