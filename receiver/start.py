# -*- coding: utf-8 -*-
"""The command line of the virtual receiver: makes its folder, runs it in its sandbox and says what has changed."""

import errno
import os
import shutil
import signal
import sys
import tempfile

_HERE = os.path.dirname(os.path.realpath(__file__))
_CHECKOUT = os.path.dirname(_HERE)
sys.path.append(os.path.join(_HERE, "host"))

import feed_line
import options
import process
import report
from display.characters import quoted
from folders import CannotCopy, copy_folder
from instance import CannotMake, Instance
from module_file import ModuleFile
from sample import Sample

MISTAKE = 2
STATUS = {process.CLOSED: 0, process.USED_UP: 1, process.NOT_STARTED: MISTAKE, process.CRASHED: 3, process.LEFT: 130}
_SENTENCE = {process.USED_UP: "the keys are used up and the screen is still open",
             process.CRASHED: "the receiver has crashed"}


def say(text):
    """One line about the receiver, on standard error."""
    sys.stderr.write("run: %s\n" % text)
    sys.stderr.flush()


def _interrupt(number, _frame):
    raise process.Interrupted(number)


def _listen_to_signals(action):
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, action)


def prepare(instance, asked, module, sample):
    """Fills the receiver's folder; gives a snapshot of its settings."""
    instance.put_programs(module)
    _copy(asked.settings or sample.settings(), instance.inside("etc/enigma2"))
    if asked.feed_address:
        with open(instance.inside("etc/opkg/all-feed.conf"), "w") as target:
            target.write(feed_line.feed_line(asked.feed_address))
    else:
        feed = asked.feed_folder or sample.feed()
        if not os.path.isfile(os.path.join(feed, feed_line.CATALOGUE)):
            say("there is no %s in %s: the receiver will get no catalogue" % (feed_line.CATALOGUE, quoted(feed)))
        _copy(feed, instance.inside("srv/feed"))
    return report.Snapshot(instance.inside("etc/enigma2"))


def _copy(source, target):
    for path in copy_folder(source, target):
        say("left out, as it is no file or leads nowhere: %s" % quoted(path))


def finish(instance, before, asked):
    """Prints what has changed; saves it and the log where that was asked for."""
    settings = instance.inside("etc/enigma2")
    lines = report.changes(before, report.Snapshot(settings))
    if asked.keep:
        lines.append("Saved as %s" % _save(settings, asked.keep))
    if asked.log:
        _add_log(instance.inside("run/log"), asked.log)
    _print(lines)


def _add_log(log, path):
    try:
        with open(log, "rb") as source, open(path, "ab") as target:
            shutil.copyfileobj(source, target)
    except IOError as error:
        say("--log: %s: %s" % (error.filename or path, error.strerror))


def _print(lines):
    """Prints, also to a reader that has gone away already."""
    try:
        sys.stdout.write("".join(line + "\n" for line in lines))
        sys.stdout.flush()
    except IOError as error:
        if error.errno != errno.EPIPE:
            raise
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())


def _save(settings, keep):
    """Saves the settings; where there is no room for them, they stay in a folder that will not be removed."""
    try:
        copy_folder(settings, keep)
        return keep
    except CannotCopy as problem:
        rescued = tempfile.mkdtemp(prefix="kept-", dir=os.path.join(_CHECKOUT, "build"))
        os.rename(settings, os.path.join(rescued, "enigma2"))
        say("--keep: cannot copy %s" % problem)
        return os.path.join(rescued, "enigma2")


def run(asked):
    """Runs the receiver as asked; gives the exit status."""
    module = ModuleFile(os.path.join(_CHECKOUT, "build", "release", "Morvesk.so"))
    sample = Sample(_HERE, os.path.join(_CHECKOUT, "build", "feed"))
    if asked.first_try:
        say('no terminal: playing the append installation of the first list, --keys "%s"' % asked.keys)
    instance = Instance(os.path.join(_CHECKOUT, "build", "receivers"))
    try:
        before = prepare(instance, asked, module, sample)
        end = _run(instance, asked, module)
        _listen_to_signals(signal.SIG_IGN)
        if end.outcome != process.NOT_STARTED:
            finish(instance, before, asked)
    finally:
        _listen_to_signals(signal.SIG_IGN)
        instance.remove()
    return _judge(end)


def _judge(end):
    """Says how the receiver has ended; gives the exit status."""
    for line in end.lines:
        if end.outcome == process.NOT_STARTED:
            say(line)
        else:
            sys.stderr.write(line + "\n")
    if end.outcome in _SENTENCE:
        say(_SENTENCE[end.outcome])
    return end.status or STATUS[end.outcome]


def _run(instance, asked, module):
    sandbox = os.path.join(_CHECKOUT, "tools", "sandbox")
    port = None if asked.feed_address else asked.port or 0
    try:
        return process.run(sandbox, instance, module, port, asked.keys, asked.tools)
    except process.Interrupted as interrupt:
        return process.End(process.LEFT, status=128 + interrupt.number)


def main(arguments):
    """Gives the exit status; every mistake is one line."""
    _listen_to_signals(_interrupt)
    try:
        return run(options.Options(arguments, options.has_terminal()))
    except options.Mistake as mistake:
        say(mistake)
    except CannotMake as problem:
        say("a receiver's folder cannot be made in this checkout: %s; start it as the checkout's owner" % problem)
    except CannotCopy as problem:
        say("cannot copy %s" % problem)
    except process.Interrupted as interrupt:
        return 128 + interrupt.number
    return MISTAKE


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
