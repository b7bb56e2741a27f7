"""Tells whoever shows the receiver's screen that it looks different now."""

import mainloop

_listeners = []
_pending = None


def add_listener(callback):
    """Call `callback()` on the main loop, once for any number of changes made in one go."""
    _listeners.append(callback)


def changed():
    """Something on screen changed."""
    global _pending
    if _pending is None and _listeners:
        _pending = mainloop.call_later(0, _tell)


def _tell():
    """Calls that are due now may change no text, but they end: whoever shows a busy receiver is told again."""
    global _pending
    _pending = None
    for callback in list(_listeners):
        callback()
    if not mainloop.idle() and not mainloop.working():
        changed()
