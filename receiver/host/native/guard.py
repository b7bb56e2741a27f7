"""Takes the running shell commands along when the receiver dies, however it dies.

A process of its own holds the reading end of a pipe. It is told of every
command's process group; when the pipe's other end is gone, so is the receiver,
and the groups that are left are killed.
"""

import os
import signal

from native.descriptors import close_all_but, close_on_exec

_pipe = None


def start():
    """Have the guard running; its pipe must exist before a command is forked."""
    global _pipe
    if _pipe is not None:
        return
    reading, writing = os.pipe()
    try:
        if os.fork() == 0:
            _guard(reading)
    except OSError:
        os.close(writing)
        raise
    finally:
        os.close(reading)
    close_on_exec(writing)
    _pipe = writing


def begins(group):
    """A command's process group exists; said by the command itself before it does anything else."""
    os.write(_pipe, "+%d\n" % group)


def ends(group):
    """A command has ended; said before its number can be given to another."""
    try:
        os.write(_pipe, "-%d\n" % group)
    except OSError:
        pass


def _guard(reading):
    try:
        os.setsid()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP, signal.SIGPIPE):
            signal.signal(number, signal.SIG_IGN)
        close_all_but([reading])
        for group in _groups_left(reading):
            _kill(group)
    finally:
        os._exit(0)


def _groups_left(reading):
    groups = set()
    with os.fdopen(reading) as lines:
        for line in iter(lines.readline, ""):
            change = groups.add if line[0] == "+" else groups.discard
            change(int(line[1:]))
    return groups


def _kill(group):
    try:
        os.kill(-group, signal.SIGKILL)
    except OSError:
        pass
