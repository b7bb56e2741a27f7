# -*- coding: utf-8 -*-
"""The receiver's process in its sandbox, seen from outside: started, watched, ended, and what it left about its end."""

import json
import os
import signal
import subprocess
import termios
import time

from display import terminal
from instance import PROGRAM

CLOSED, USED_UP, LEFT, CRASHED, NOT_STARTED = "closed", "keys used up", "left", "crashed", "not started"
_SANDBOX_HAS_SAID_WHY = 2
_PATIENCE_SECONDS = 2.0
_LOG_LINES = 40


class Interrupted(Exception):
    """The receiver is to end at once, by the signal of that number."""

    def __init__(self, number):
        Exception.__init__(self, number)
        self.number = number


class End(object):
    """How a receiver has ended: the outcome, the lines that say more, and an exit status where it is a special one."""

    def __init__(self, outcome, lines=(), status=None):
        self.outcome = outcome
        self.lines = list(lines)
        self.status = status


def run(sandbox, instance, module, feed_port=None, keys=None, tools=None):
    """Runs the receiver of that instance until it ends; without feed_port it uses the PC's network."""
    command = [sandbox]
    if feed_port is None:
        command.append("--network")
    if tools == "gnu":
        command.append("--gnu")
    command += [instance.path, "--"] + module.interpreter() + ["/%s/main.py" % PROGRAM]
    if feed_port is not None:
        command.append("--serve=%d" % feed_port)
    if keys is not None:
        command.append("--keys=%s" % keys)
    with _TerminalGuard(instance.inside("run/terminal")):
        status = _call(command)
    return _end(instance, status)


def _call(command):
    child = subprocess.Popen(command)
    try:
        return child.wait()
    except Interrupted as interrupt:
        if interrupt.number == signal.SIGINT:
            _wait(child)
        raise
    finally:
        _end_child(child)


def _wait(child):
    """A terminal tells all of its processes of Ctrl-C: the receiver ends by itself then."""
    give_up = time.time() + _PATIENCE_SECONDS
    while child.poll() is None and time.time() < give_up:
        time.sleep(0.02)


def _end_child(child):
    if child.poll() is not None:
        return
    child.terminate()
    _wait(child)
    if child.poll() is None:
        child.kill()
        child.wait()


class _TerminalGuard(object):
    """Gives the terminal back in the place of a display that was killed while it had it."""

    def __init__(self, taken):
        self._taken = taken
        self._mode = termios.tcgetattr(0) if os.isatty(0) else None

    def __enter__(self):
        return self

    def __exit__(self, *error):
        if self._mode is not None and os.path.exists(self._taken):
            os.write(1, terminal.LEAVE)
            termios.tcsetattr(0, termios.TCSAFLUSH, self._mode)


def _end(instance, status):
    """What the receiver has written about its end; without it, it did not come to an orderly one."""
    try:
        with open(instance.inside("run/result.json")) as source:
            result = json.load(source)
    except (IOError, ValueError):
        return _end_without_result(instance, status)
    lines = (result["traceback"] or "").encode("utf-8").splitlines()
    for command in result["still running"]:
        lines.append("still running when the screen had closed: %s" % command.encode("utf-8"))
    return End(result["outcome"].encode("utf-8"), lines)


def _end_without_result(instance, status):
    log = instance.inside("run/log")
    if not os.path.exists(log):
        started_nothing = status in (_SANDBOX_HAS_SAID_WHY, 0)
        return End(NOT_STARTED, [] if started_nothing else ["the sandbox has ended with exit status %d" % status])
    with open(log) as source:
        lines = source.read().splitlines()[-_LOG_LINES:]
    how = "signal %d" % (status - 128 if status > 128 else -status) if status > 128 or status < 0 else (
        "exit status %d" % status)
    return End(CRASHED, lines + ["the receiver's process has ended with %s" % how])
