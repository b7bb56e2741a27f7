# -*- coding: utf-8 -*-
"""A display without a terminal: plays keys that were given beforehand and prints each screen as text.

The keys stand in a text, separated by blanks. After each the receiver gets the time that it needs: the next one is
pressed when nothing runs any more. Keys joined by "+" are pressed without that wait, as by an impatient hand.
"""

import errno
import sys

from display import KEYS
from display.characters import printable, quoted
from display.layout import page

_PAGE = 20
_LOOK_AGAIN_SECONDS = 0.01


def parse_keys(text):
    """The groups of keys in the text: lists of key names. A ValueError says what is wrong with it."""
    groups = [word.split("+") for word in text.lower().split()]
    for group in groups:
        for key in group:
            if key not in KEYS:
                raise ValueError("%s is not a key: the keys are %s and 0 to 9" % (
                    quoted(key), ", ".join(KEYS[:KEYS.index("0")])))
    return groups


class ScriptDisplay(object):
    """Presses the given keys and prints what they bring to the screen."""

    def __init__(self, receiver, loop, groups, output=None):
        self._receiver = receiver
        self._loop = loop
        self._groups = list(groups)
        self._output = output or sys.stdout
        self._timer = None
        self.used_up = False

    def open(self):
        """Plays the keys from now on."""
        self._wait("start")

    def close(self):
        """Presses nothing any more."""
        if self._timer is not None:
            self._loop.cancel(self._timer)

    def _later(self, seconds, callback, *arguments):
        def due():
            self._timer = None
            callback(*arguments)
        self._timer = self._loop.call_later(seconds, due)

    def _wait(self, pressed):
        self._later(_LOOK_AGAIN_SECONDS, self._look, pressed)

    def _look(self, pressed):
        state = self._receiver.state()
        if state["busy"] and not state["closed"]:
            self._wait(pressed)
            return
        self._print("\n".join(["=== " + pressed] + describe(state)))
        if state["closed"]:
            if self._groups:
                self._print("not pressed: " + " ".join("+".join(group) for group in self._groups))
            self._loop.stop()
        elif self._groups:
            group = self._groups.pop(0)
            self._press(group, "+".join(group))
        else:
            self.used_up = True
            self._loop.stop()

    def _press(self, keys, group):
        self._receiver.press(keys[0])
        if keys[1:]:
            self._later(0, self._press, keys[1:], group)
        else:
            self._wait(group)

    def _print(self, text):
        try:
            self._output.write(text + "\n")
            self._output.flush()
        except IOError as error:
            if error.errno != errno.EPIPE:
                raise
            self._groups = []
            self._loop.stop()


def describe(state):
    """What is on the screen, as lines of text."""
    lines = [_television(state["tv"])]
    for dialog in state["dialogs"]:
        lines.extend(_DESCRIBE[dialog["kind"]](dialog))
    if state["closed"]:
        lines.append("closed")
    return lines


def _television(tv):
    services, selected = tv["services"], tv["selected"]
    name = "-"
    if services and selected is not None and 0 <= selected < len(services):
        name = printable(services[selected])
    return "TV | %s | %s" % (printable(tv["bouquet"]), name)


def _screen(dialog):
    rows, selected = dialog["rows"], dialog["selected"] or 0
    count = " | %d of %d" % (selected + 1, len(rows)) if rows else " | empty"
    lines = ["screen | " + printable(dialog["title"]) + count]
    first, behind = page(len(rows), selected, _PAGE)
    for index in range(first, behind):
        lines.append("  %s %s" % (">" if index == selected else " ", printable(rows[index][0] or "")))
        lines.append("      " + printable(rows[index][1] or ""))
    captions = [colour + ": " + printable(dialog["captions"][colour])
                for colour in ("red", "green", "yellow", "blue") if colour in dialog["captions"]]
    return lines + ["    " + " | ".join(captions)] if captions else lines


def _message(dialog):
    lines = ["%s | %s" % (dialog["type"], printable(dialog["title"]))] + _text(dialog)
    return lines + _choices(dialog, dialog.get("choices") or [])


def _choice(dialog):
    numbered = ["%d %s" % (index + 1, choice) for index, choice in enumerate(dialog["choices"])]
    return ["choice | " + printable(dialog["title"])] + _text(dialog) + _choices(dialog, numbered)


def _text(dialog):
    return ["    " + printable(line) for line in dialog["text"].split("\n")] if dialog["text"] else []


def _choices(dialog, choices):
    return ["  %s %s" % (">" if index == dialog["selected"] else " ", printable(choice))
            for index, choice in enumerate(choices)]


_DESCRIBE = {"screen": _screen, "message": _message, "choice": _choice}
