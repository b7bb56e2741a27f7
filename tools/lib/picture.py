# -*- coding: utf-8 -*-
"""Draws screens of a terminal as one SVG picture: the first at the top, the others side by side below it.

    picture.py COLUMNSxROWS FILE [COLUMNSxROWS FILE]...

Each file holds what a terminal shows: UTF-8 lines with SGR sequences for colours. Every run of characters is placed in
its cells, so that the columns stand whatever font the viewer has.
"""

import re
import sys
import unicodedata
from xml.sax.saxutils import escape

CELL_WIDTH, CELL_HEIGHT, FONT_SIZE, BASELINE = 9, 19, 15, 14
GAP, PADDING = 16, 10
BACKGROUND, FOREGROUND, FRAME = "#11151c", "#d3d7cf", "#3b4252"
_PALETTE = ("#11151c", "#c4314b", "#3f8f3f", "#c8a432", "#2f5fa8", "#8a5a9e", "#1f8a94", "#d3d7cf",
            "#6b7482", "#ef5a6f", "#7ccf5a", "#f0d35c", "#6fa3e8", "#bd8fd0", "#4fd0d6", "#ffffff")
_FONT = "'DejaVu Sans Mono','Liberation Mono',Menlo,Consolas,'Noto Sans Mono','Noto Sans CJK SC',monospace"
_SEQUENCE = re.compile(u"\x1b\\[([0-9;]*)m")
_SHAPED = re.compile(u"[\u0590-\u08ff\u0900-\u0dff\u0e00-\u0eff\ufb1d-\ufdff\ufe70-\ufefc]")

# Which halves of its cell's middle lines a character draws: left, right, up, down.
_LINES = {u"─": "lr", u"│": "ud", u"┌": "rd", u"┐": "ld", u"└": "ru", u"┘": "lu", u"├": "rud", u"┤": "lud"}


class Style(object):
    """Colours and weight, as SGR sequences change them."""

    def __init__(self):
        self._reset()

    def _reset(self):
        self._foreground = self._background = None
        self.bold = self._reverse = False

    def change(self, codes):
        """What one sequence says."""
        for code in [int(each or 0) for each in codes.split(";")]:
            if code == 0:
                self._reset()
            elif code == 1:
                self.bold = True
            elif code == 22:
                self.bold = False
            elif code in (7, 27):
                self._reverse = code == 7
            elif code in (39, 49):
                setattr(self, "_foreground" if code == 39 else "_background", None)
            elif code // 10 in (3, 9):
                self._foreground = _PALETTE[code % 10 + (8 if code >= 90 else 0)]
            elif code // 10 in (4, 10):
                self._background = _PALETTE[code % 10 + (8 if code >= 100 else 0)]
            else:
                raise ValueError("an unknown sequence: %d" % code)

    def colours(self):
        """The colours of the text and of what lies behind it."""
        colours = self._foreground or FOREGROUND, self._background or BACKGROUND
        return colours[::-1] if self._reverse else colours


class Run(object):
    """Neighbouring cells of one style and one way of drawing."""

    def __init__(self, column, look, kind):
        self.column = column
        self.look = look
        self.kind = kind
        self.text = u""
        self.columns = 0


def _kind(char):
    """Which characters are drawn together: letters that are shaped, wide ones and lines each for themselves."""
    if char in _LINES:
        return "line"
    if _SHAPED.match(char):
        return "shaped"
    return "wide" if unicodedata.east_asian_width(char) in "WF" else "plain"


def _columns(char):
    if unicodedata.category(char) in ("Mn", "Me", "Cf"):
        return 0
    return 2 if unicodedata.east_asian_width(char) in "WF" else 1


def runs(line, style):
    """The runs of a line; the style is the one that the line before left behind."""
    column, result, place = 0, [], 0
    while place < len(line):
        sequence = _SEQUENCE.match(line, place)
        if sequence:
            style.change(sequence.group(1))
            place = sequence.end()
            continue
        char, place = line[place], place + 1
        columns = _columns(char)
        look, kind = style.colours() + (style.bold,), _kind(char) if columns else result[-1].kind
        if not result or (result[-1].look, result[-1].kind) != (look, kind):
            result.append(Run(column, look, kind))
        result[-1].text += char
        result[-1].columns += columns
        column += columns
    return result


def _background(run, row):
    return '<rect x="%d" y="%d" width="%d" height="%d" fill="%s"/>' % (
        run.column * CELL_WIDTH, row * CELL_HEIGHT, run.columns * CELL_WIDTH, CELL_HEIGHT, run.look[1])


def _lines(run, row):
    """The frames of boxes, drawn instead of written, so that there are no gaps between lines of text."""
    paths = []
    for index, char in enumerate(run.text):
        middle_x = (run.column + index) * CELL_WIDTH + CELL_WIDTH / 2.0
        middle_y = row * CELL_HEIGHT + CELL_HEIGHT / 2.0
        steps = {"l": (-CELL_WIDTH / 2.0, 0), "r": (CELL_WIDTH / 2.0, 0),
                 "u": (0, -CELL_HEIGHT / 2.0), "d": (0, CELL_HEIGHT / 2.0)}
        paths += ["M%g %gl%g %g" % ((middle_x, middle_y) + steps[each]) for each in _LINES[char]]
    return '<path d="%s" stroke="%s" stroke-linecap="square"/>' % ("".join(paths), run.look[0])


def _text(run, row):
    """The characters between blanks, each piece held in its cells."""
    pieces, column = [], run.column
    for piece in re.findall(u" +|[^ ]+" if run.kind == "plain" else u".+", run.text):
        columns = sum(_columns(char) for char in piece)
        if piece.strip():
            pieces.append('<text x="%d" y="%d" textLength="%d" lengthAdjust="%s" fill="%s"%s>%s</text>' % (
                column * CELL_WIDTH, row * CELL_HEIGHT + BASELINE, columns * CELL_WIDTH,
                "spacing" if run.kind == "wide" else "spacingAndGlyphs", run.look[0],
                ' font-weight="bold"' if run.look[2] else "", escape(piece.encode("utf-8"))))
        column += columns
    return "".join(pieces)


def screen(text, columns, rows):
    """The elements of one screen."""
    lines = text.split(u"\n")
    elements, style = [], Style()
    for row in range(rows):
        drawn = runs(lines[row], style) if row < len(lines) else []
        elements += [_background(run, row) for run in drawn if run.look[1] != BACKGROUND]
        elements += [_lines(run, row) if run.kind == "line" else _text(run, row) for run in drawn]
    width, height = columns * CELL_WIDTH, rows * CELL_HEIGHT
    frame = '<rect x="%d" y="%d" width="%d" height="%d" rx="6" fill="%s" stroke="%s" shape-rendering="auto"/>' % (
        -PADDING, -PADDING, width + 2 * PADDING, height + 2 * PADDING, BACKGROUND, FRAME)
    return [frame] + [element for element in elements if element]


def _placed(screens):
    """(left, top, elements) of each screen, and the picture's width and height."""
    left, top, width, height = GAP, GAP, 0, 0
    result = []
    for index, (columns, rows, text) in enumerate(screens):
        outer_width = columns * CELL_WIDTH + 2 * PADDING
        outer_height = rows * CELL_HEIGHT + 2 * PADDING
        result.append((left + PADDING, top + PADDING, screen(text, columns, rows)))
        width = max(width, left + outer_width + GAP)
        height = max(height, top + outer_height + GAP)
        if index == 0:
            top += outer_height + GAP
        else:
            left += outer_width + GAP
    return result, width, height


def picture(screens):
    """The SVG of the screens, (columns, rows, text) each."""
    placed, width, height = _placed(screens)
    lines = ['<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" width="%d" height="%d" '
             'font-family="%s" font-size="%d" fill="none" shape-rendering="crispEdges">' % (
                 width, height, width, height, _FONT, FONT_SIZE),
             "<title>The service-list screen of the virtual receiver on a terminal</title>"]
    for left, top, elements in placed:
        lines.append('<g transform="translate(%d %d)">' % (left, top))
        lines += elements
        lines.append("</g>")
    return "\n".join(lines + ["</svg>"]) + "\n"


def main(arguments):
    """The command line."""
    screens = []
    for size, path in zip(arguments[::2], arguments[1::2]):
        columns, rows = [int(each) for each in size.split("x")]
        with open(path, "rb") as source:
            screens.append((columns, rows, source.read().decode("utf-8")))
    sys.stdout.write(picture(screens))


if __name__ == "__main__":
    main(sys.argv[1:])
