# -*- coding: utf-8 -*-
"""The keys of a terminal as keys of the remote control."""

from display import DIGITS

LEAVE = "leave"
REDRAW = "redraw"
_SINGLE = dict((digit, digit) for digit in DIGITS)
_SINGLE.update({
    "\r": "ok", "\n": "ok", "r": "red", "R": "red", "g": "green", "G": "green",
    "\x03": LEAVE, "\x0c": REDRAW})
_FINAL = {"A": "up", "B": "down", "C": "right", "D": "left", "P": "red", "Q": "green", "M": "ok"}
_NUMBERED = {"5": "left", "6": "right", "11": "red", "12": "green"}
_LINUX_CONSOLE = {"A": "red", "B": "green"}
_ESCAPE = "\x1b"


class Decoder(object):
    """Turns the bytes that a terminal sends into key names; knows a lone Esc from the start of a sequence by time."""

    def __init__(self):
        self._rest = ""

    @property
    def waiting(self):
        """True while what came so far may be a lone Esc or the start of more."""
        return bool(self._rest)

    def feed(self, data):
        """The keys that are complete with these bytes."""
        self._rest += data
        return self._decode(final=False)

    def timeout(self):
        """The keys that are left when nothing more followed in time."""
        return self._decode(final=True)

    def _decode(self, final):
        keys = []
        while self._rest:
            key, length = self._first(final)
            if not length:
                break
            self._rest = self._rest[length:]
            if key:
                keys.append(key)
        return keys

    def _first(self, final):
        """The first key of what is there and its length; length 0 when it is not complete yet."""
        rest = self._rest
        if rest[0] != _ESCAPE:
            return _SINGLE.get(rest[0]), 1
        if len(rest) == 1:
            return ("exit", 1) if final else (None, 0)
        if rest[1] == "O":
            return self._cut_short(final) if len(rest) < 3 else (_FINAL.get(rest[2]), 3)
        if rest[1] != "[":
            return "exit", 1
        if rest[2:3] == "[":
            return self._cut_short(final) if len(rest) < 4 else (_LINUX_CONSOLE.get(rest[3]), 4)
        return self._control_sequence(final)

    def _control_sequence(self, final):
        end = 2
        while end < len(self._rest) and not "@" <= self._rest[end] <= "~":
            end += 1
        if end == len(self._rest):
            return self._cut_short(final)
        number = self._rest[2:end].split(";")[0]
        if self._rest[end] == "~":
            return _NUMBERED.get(number), end + 1
        return _FINAL.get(self._rest[end]), end + 1

    def _cut_short(self, final):
        return (None, len(self._rest)) if final else (None, 0)
