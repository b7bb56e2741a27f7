# -*- coding: utf-8 -*-
"""The receiver's process, inside of its sandbox: serves the feed, boots the host, opens the panel, runs a display."""

import argparse
import json
import os
import signal
import subprocess
import sys
import time
import traceback

from feed_line import FEED_PATH, feed_line

_RUN = "/run"
_FEED_FOLDER = "/srv/feed"
_FEED_CONFIGURATION = "/etc/opkg/all-feed.conf"
_SERVER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "server.py")
_DYING_SECONDS = 3.0


def _options():
    parser = argparse.ArgumentParser()
    parser.add_argument("--serve", type=int, metavar="PORT")
    parser.add_argument("--keys")
    return parser.parse_args()


def _take_standard_output():
    """The PC's standard output for the display; what the host writes goes to the receiver's log instead."""
    output = os.dup(1)
    log = os.open(os.path.join(_RUN, "log"), os.O_WRONLY | os.O_CREAT | os.O_APPEND, 0o644)
    os.dup2(log, 1)
    os.dup2(log, 2)
    os.close(log)
    sys.stdout = os.fdopen(os.dup(1), "w", 1)
    return output


class _CannotStart(Exception):
    """Something that is nobody's crash keeps the receiver from starting; the text says what."""


class _Feed(object):
    """The feed's server: a process of its own, which ends when this one does."""

    def __init__(self, port):
        self._port_file = os.path.join(_RUN, "feed-port")
        self._complaints = os.path.join(_RUN, "feed-complaints")
        with open(self._complaints, "w") as complaints:
            self._server = subprocess.Popen(
                [sys.executable, "-B", _SERVER, _FEED_FOLDER, "--port", str(port), "--port-file", self._port_file],
                stdout=complaints, stderr=complaints)

    def wait(self):
        """Waits until it serves, then writes the line that leads the receiver there."""
        while not os.path.exists(self._port_file):
            if self._server.poll() is not None:
                with open(self._complaints) as source:
                    raise _CannotStart("the feed cannot be served: %s" % source.read().strip())
            time.sleep(0.005)
        with open(self._port_file) as source:
            port = int(source.read())
        with open(_FEED_CONFIGURATION, "w") as target:
            target.write(feed_line("http://127.0.0.1:%d%s" % (port, FEED_PATH)))

    def stop(self):
        """Ends the server."""
        if self._server.poll() is None:
            self._server.kill()
            self._server.wait()


def _display(receiver, mainloop, output, keys):
    if keys is None:
        from display.terminal import TerminalDisplay
        return TerminalDisplay(receiver, mainloop, 0, output, os.path.join(_RUN, "terminal"))
    from display.script import ScriptDisplay, parse_keys
    return ScriptDisplay(receiver, mainloop, parse_keys(keys), os.fdopen(output, "w"))


class _Signals(object):
    """Leaves the main loop at the next occasion when somebody asks for it."""

    def __init__(self, mainloop):
        self._mainloop = mainloop
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, self._leave)

    def _leave(self, _number, _frame):
        self._mainloop.stop()


def _run(options, output):
    """Runs the receiver until it ends; gives the outcome and a traceback or None."""
    import mainloop
    from stb import Receiver
    feed = None if options.serve is None else _Feed(options.serve)
    try:
        receiver = Receiver()
        receiver.boot()
        if feed:
            feed.wait()
        display = _display(receiver, mainloop, output, options.keys)
        _Signals(mainloop)
        receiver.open_panel()
        display.open()
        try:
            mainloop.run()
        finally:
            display.close()
    finally:
        if feed:
            feed.stop()
    if receiver.crashed:
        return "crashed", receiver.crashed
    if receiver.state()["closed"]:
        return "closed", None
    return ("keys used up" if getattr(display, "used_up", False) else "left"), None


def _still_running():
    """The command lines of the receiver's shell commands that live on, once those that are dying have had the time."""
    give_up = time.time() + _DYING_SECONDS
    found = _other_commands()
    while found and time.time() < give_up:
        time.sleep(0.02)
        found = _other_commands()
    return found


def _other_commands():
    own, commands = _own_command_lines(), []
    # What watches this process from the outside has its arguments at its own end.
    arguments = " ".join([""] + sys.argv)
    for process in os.listdir("/proc") if os.path.isdir("/proc") else ():
        if process.isdigit() and not _is_first(process) and _has_our_root(process):
            command = _command_line(process)
            if command and command not in own and not command.endswith(arguments):
                commands.append(command)
    return sorted(commands)


def _own_command_lines():
    """As this process and as the others see it: an emulator shows its program another one, but not for its threads."""
    tasks = os.listdir("/proc/self/task") if os.path.isdir("/proc/self/task") else []
    return [_command_line("self")] + [_command_line("self/task/" + task) for task in tasks]


def _is_first(process):
    """The sandbox's own process, which waits for all others. Where /proc is the machine's it has another number there."""
    try:
        with open("/proc/%s/status" % process) as source:
            numbers = [line.split() for line in source if line.startswith(("NSpid:", "Pid:"))]
    except IOError:
        return False
    return "1" in [number[-1] for number in numbers]


def _has_our_root(process):
    try:
        return os.path.samefile("/proc/%s/root/." % process, "/.")
    except OSError:
        return False


def _command_line(process):
    try:
        with open("/proc/%s/cmdline" % process) as source:
            return source.read().replace("\0", " ").strip()
    except IOError:
        return ""


def main():
    """Runs the receiver and leaves in a file how it has ended."""
    options = _options()
    output = _take_standard_output()
    os.environ.pop("LD_PRELOAD", None)
    try:
        outcome, text = _run(options, output)
    except _CannotStart as problem:
        outcome, text = "not started", str(problem)
    except Exception:
        outcome, text = "crashed", traceback.format_exc()
    still_running = _still_running() if outcome == "closed" else []
    result = {"outcome": outcome, "traceback": text, "still running": still_running}
    with open(os.path.join(_RUN, "result.json"), "w") as target:
        json.dump(result, target)


if __name__ == "__main__":
    main()
