"""The receiver's one main loop: timers and file descriptors, on one thread.

An exception that leaves a callback is a crash of the receiver: its traceback
is kept and the loop ends.
"""

import errno
import fcntl
import heapq
import itertools
import math
import os
import select
import signal
import sys
import traceback

_readers = {}
_timers = []
_sequence = itertools.count()
_work = set()
_stopping = False
_crash = None
_wakened = None
_MANY = 4096


class Handle(object):
    """One call to come; `cancel` takes it back."""

    __slots__ = ("callback",)

    def __init__(self, callback):
        self.callback = callback


def now():
    """Seconds on a clock that nobody can set and that ticks a hundred times a second."""
    return os.times()[4]


def _milliseconds():
    """The same clock in whole numbers: what is left of a wait is never a rounding error."""
    return int(round(now() * 1000))


def add_reader(fd, callback):
    """Call `callback()` whenever `fd` can be read or has been closed by its writer."""
    _readers[fd] = callback


def remove_reader(fd):
    """Forget `fd`; unknown ones are none of our business."""
    _readers.pop(fd, None)


def call_later(seconds, callback):
    """Call `callback()` once when `seconds` have passed by that clock; returns the handle for `cancel`."""
    handle = Handle(callback)
    due = _milliseconds() + int(math.ceil(max(0, seconds) * 1000))
    heapq.heappush(_timers, (due, next(_sequence), handle))
    return handle


def cancel(handle):
    """Take a call back; harmless when it has been made already."""
    handle.callback = None


def work_begins(token):
    """A shell command runs: the receiver is not idle until `work_ends(token)`."""
    _work.add(token)


def work_ends(token):
    """The command of `token` has ended, or nobody waits for it any more."""
    _work.discard(token)


def working():
    """True while a shell command runs whose end somebody waits for."""
    return bool(_work)


def idle():
    """True when no command runs and no call is due."""
    _drop_cancelled()
    return not _work and not (_timers and _timers[0][0] <= _milliseconds())


def crash():
    """The traceback that ended the loop, as text, or None."""
    return _crash


def stop():
    """End `run` after the callback that is being made."""
    global _stopping
    _stopping = True


def run():
    """Make calls until `stop`, a crash, or until nothing is left that could ever call."""
    global _stopping
    _stopping = False
    try:
        with _Wakening():
            while not _done():
                _turn()
    except Exception:
        _record_crash()


class _Wakening(object):
    """A signal ends the wait even if it comes just before the wait begins."""

    def __enter__(self):
        global _wakened
        _wakened, self._writing = os.pipe()
        for fd in (_wakened, self._writing):
            fcntl.fcntl(fd, fcntl.F_SETFL, os.O_NONBLOCK)
            fcntl.fcntl(fd, fcntl.F_SETFD, fcntl.FD_CLOEXEC)
        self._before = signal.set_wakeup_fd(self._writing)

    def __exit__(self, *_error):
        signal.set_wakeup_fd(self._before)
        os.close(_wakened)
        os.close(self._writing)


def _done():
    _drop_cancelled()
    return _stopping or _crash is not None or not (_timers or _readers)


def _turn():
    """The calls due by now, then whatever can be read: a call made due meanwhile waits its turn."""
    _make_due_calls()
    if _done():
        return
    for fd in _readable():
        callback = _readers.get(fd)
        if callback is not None:
            callback()
        if _stopping:
            return


def _make_due_calls():
    first_new = next(_sequence)
    while _timers and not _stopping:
        due, number, handle = _timers[0]
        if due > _milliseconds() or number > first_new:
            return
        heapq.heappop(_timers)
        callback, handle.callback = handle.callback, None
        if callback is not None:
            callback()


def _readable():
    timeout = max(0, _timers[0][0] - _milliseconds()) / 1000.0 if _timers else None
    try:
        ready = select.select(list(_readers) + [_wakened], [], [], timeout)[0]
    except select.error as error:
        if error.args[0] != errno.EINTR:
            raise
        return []
    if _wakened in ready:
        os.read(_wakened, _MANY)
        ready.remove(_wakened)
    return ready


def _drop_cancelled():
    while _timers and _timers[0][2].callback is None:
        heapq.heappop(_timers)


def _record_crash():
    global _crash
    _crash = traceback.format_exc()
    sys.exc_clear()
