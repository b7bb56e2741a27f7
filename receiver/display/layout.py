# -*- coding: utf-8 -*-
"""How the state of the screen is laid out on a grid of character cells."""

import os

from display.canvas import Canvas
from display.characters import clip, decode, width, wrap

SMALLEST_COLUMNS = 40
SMALLEST_ROWS = 12
_CHANNEL_LIST_FROM = 110
_CHANNEL_LIST_COLUMNS = 28

_TV = "90"
_TV_SELECTED = "37"
_BAR = "37;44"
_WINDOW = "36"
_TITLE = "1;36"
_FIRST_TEXT = "1"
_SECOND_TEXT = "37"
_CURSOR = "1;37;46"
_CURSOR_SECOND = "30;46"
_STATUS = "7"
_CAPTIONS = (("red", "1;37;41"), ("green", "1;37;42"), ("yellow", "30;43"), ("blue", "1;37;44"))
_BOXES = {"error": "1;37;41", "warning": "30;43", "info": "1;37;44", "yesno": "1;37;44", "message": "1;37;44"}
_CHOICE = "37;44"
_CHOICE_CURSOR = "30;47"
_PICTURES = {"sockets": u"≡", "ntptime": u"◷"}

_KEYS = (
    u" ↑↓←→ move  Enter OK  Esc EXIT  r/F1 red  g/F2 green  0-9 digits  Ctrl-C leave",
    u" ↑↓←→  Enter=OK  Esc=EXIT  r=red  g=green  0-9  Ctrl-C=leave",
    u" ↑↓←→ Enter Esc r=red g=green 0-9 ^C",
)


def page(count, selected, room):
    """The first row to show and the one behind the last: a list turns whole pages, as a receiver's does."""
    room = max(1, room)
    first = max(0, selected or 0) // room * room
    return first, min(count, first + room)


def lay_out(state, rows, columns):
    """The whole screen as a Canvas."""
    if rows < SMALLEST_ROWS or columns < SMALLEST_COLUMNS:
        return _too_small(rows, columns)
    canvas = Canvas(rows, columns)
    left = _television(canvas, state)
    for dialog in state["dialogs"]:
        if dialog["kind"] == "screen":
            _screen(canvas, dialog, left)
        elif dialog["kind"] == "choice":
            _choice_box(canvas, dialog, left)
        else:
            _message_box(canvas, dialog, left)
    _status_line(canvas)
    return canvas


def _too_small(rows, columns):
    canvas = Canvas(rows, columns)
    text = "This window is too small: it has %d x %d characters, the receiver needs %d x %d." % (
        columns, rows, SMALLEST_COLUMNS, SMALLEST_ROWS)
    for row, line in enumerate(wrap(text, columns)[:rows]):
        canvas.put(row, 0, line, "")
    return canvas


def _television(canvas, state):
    """What lies behind; gives the column from which on the dialogs stand."""
    tv = state["tv"]
    canvas.fill(0, 0, 1, canvas.columns, _BAR)
    services, selected = tv["services"], tv["selected"]
    name = services[selected] if services and selected is not None and 0 <= selected < len(services) else ""
    column = canvas.put(0, 1, u"TV  ", "1;" + _BAR, 4)
    column = canvas.put(0, column, clip(tv["bouquet"], 30), _BAR)
    if name:
        canvas.put(0, column, u"  ▸ " + clip(name, canvas.columns - column - 4 - (14 if state["busy"] else 0)), _BAR)
    if state["busy"]:
        canvas.put(0, canvas.columns - 13, u" working ... ", "1;" + _BAR)
    if canvas.columns < _CHANNEL_LIST_FROM:
        return 0
    _channel_list(canvas, services, selected)
    return _CHANNEL_LIST_COLUMNS


def _channel_list(canvas, services, selected):
    room = canvas.rows - 4
    first, behind = page(len(services), selected, room)
    for row, index in enumerate(range(first, behind)):
        style = _TV_SELECTED if index == selected else _TV
        canvas.put(row + 2, 1, u"%4d " % (index + 1) + decode(services[index]), style, _CHANNEL_LIST_COLUMNS - 2)


def _screen(canvas, dialog, left):
    top, columns = 1, canvas.columns - left
    rows = canvas.rows - 2
    canvas.frame(top, left, rows, columns, _WINDOW)
    canvas.put(top, left + 2, u" " + clip(dialog["title"], columns - 6) + u" ", _TITLE)
    entries, selected = dialog["rows"], dialog["selected"]
    first, behind = page(len(entries), selected, (rows - 4) // 2)
    for line, index in enumerate(range(first, behind)):
        _row(canvas, top + 1 + 2 * line, left + 1, columns - 2, entries[index], index == selected)
    if entries:
        where = u" %d/%d " % ((selected or 0) + 1, len(entries))
        canvas.put(top + rows - 1, left + columns - 2 - len(where), where, _WINDOW)
    column = left + 2
    for colour, style in _CAPTIONS:
        if colour in dialog["captions"]:
            caption = u" " + clip(dialog["captions"][colour], 20) + u" "
            column = canvas.put(top + rows - 2, column, caption, style, left + columns - 1 - column) + 2


def _row(canvas, line, left, columns, entry, is_selected):
    first, second, picture = entry
    styles = (_CURSOR, _CURSOR_SECOND) if is_selected else (_FIRST_TEXT, _SECOND_TEXT)
    if is_selected:
        canvas.fill(line, left, 1, columns, _CURSOR)
        canvas.fill(line + 1, left, 1, columns, _CURSOR_SECOND)
    canvas.put(line, left + 1, _glyph(picture), styles[0], 1)
    canvas.put(line, left + 3, first or "", styles[0], columns - 4)
    canvas.put(line + 1, left + 3, second or "", styles[1], columns - 4)


def _glyph(picture):
    if not picture:
        return u" "
    return _PICTURES.get(os.path.splitext(os.path.basename(picture))[0], u"▪")


def _box(canvas, left, lines, title, style):
    """An empty box in the middle that has room for the lines; gives its top, left and inner width."""
    longest = max([width(line) for line in lines] + [width(title) + 2, 24])
    columns = min(canvas.columns - left - 4, longest + 4)
    rows = min(canvas.rows - 3, len(lines) + 2)
    top = max(1, (canvas.rows - rows) // 2)
    left = left + (canvas.columns - left - columns) // 2
    canvas.frame(top, left, rows, columns, style)
    if title:
        canvas.put(top, left + 2, u" " + clip(title, columns - 6) + u" ", style)
    return top, left, columns


def _message_box(canvas, dialog, left):
    style = _BOXES.get(dialog["type"], _BOXES["message"])
    choices = dialog.get("choices")
    if choices:
        _box_of_choices(canvas, left, dialog, choices, style)
        return
    lines = wrap(dialog["text"], _room(canvas, left)) + [u"", u"OK"]
    top, left, columns = _box(canvas, left, lines, dialog["title"], style)
    for row, line in enumerate(lines[:canvas.rows - 5]):
        canvas.put(top + 1 + row, left + 2, line, style, columns - 4)


def _choice_box(canvas, dialog, left):
    choices = [u"%s %s" % (_number(index), decode(choice)) for index, choice in enumerate(dialog["choices"])]
    _box_of_choices(canvas, left, dialog, choices, _CHOICE)


def _room(canvas, left):
    return min(64, canvas.columns - left - 8)


def _box_of_choices(canvas, left, dialog, choices, style):
    room = _room(canvas, left)
    above = (wrap(dialog["text"], room) + [u""] if dialog["text"] else [])[:canvas.rows - 6]
    choices = [clip(choice, room) for choice in choices]
    first, behind = page(len(choices), dialog["selected"], canvas.rows - 5 - len(above))
    top, left, columns = _box(canvas, left, above + choices[first:behind], dialog["title"], style)
    for row, line in enumerate(above):
        canvas.put(top + 1 + row, left + 2, line, style, columns - 4)
    for row, index in enumerate(range(first, behind)):
        line_style = _CHOICE_CURSOR if index == dialog["selected"] else style
        line = top + 1 + len(above) + row
        canvas.fill(line, left + 1, 1, columns - 2, line_style)
        canvas.put(line, left + 2, choices[index], line_style, columns - 4)


def _number(index):
    return str(index + 1) if index < 9 else " "


def _status_line(canvas):
    fitting = [keys for keys in _KEYS if width(keys) < canvas.columns]
    canvas.fill(canvas.rows - 1, 0, 1, canvas.columns, _STATUS)
    canvas.put(canvas.rows - 1, 0, fitting[0] if fitting else _KEYS[-1], _STATUS)
