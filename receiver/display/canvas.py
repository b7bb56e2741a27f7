# -*- coding: utf-8 -*-
"""A grid of character cells, and the escape sequences that bring a terminal from one grid to the next."""

from display.characters import cells, clip

PLAIN = ""
_SURE_OF_THEIR_COLUMN = set(u"─│┌┐└┘├┤█▌…↑↓←→▲▼●")


class Canvas(object):
    """A grid of rows x columns cells, each with a style: the parameters of a "select graphic rendition" sequence."""

    def __init__(self, rows, columns, style=PLAIN):
        self.rows = rows
        self.columns = columns
        self._lines = [[(u" ", style)] * columns for _ in range(rows)]

    def put(self, row, column, text, style, limit=None):
        """Writes the text from that cell on, cut to limit columns and to the grid; gives the column behind it."""
        room = self.columns - column
        room = room if limit is None else min(limit, room)
        if not 0 <= row < self.rows or column < 0 or room <= 0:
            return column
        line = self._lines[row]
        for char, taken in cells(clip(text, room)):
            self._clear_halves(line, column, taken)
            line[column] = (char, style)
            if taken == 2:
                line[column + 1] = (None, style)
            column += taken
        return column

    @staticmethod
    def _clear_halves(line, column, taken):
        """Blanks the other half of a wide character that is about to lose one half."""
        if line[column][0] is None:
            line[column - 1] = (u" ", line[column - 1][1])
        behind = column + taken
        if behind < len(line) and line[behind][0] is None:
            line[behind] = (u" ", line[behind][1])

    def fill(self, top, left, rows, columns, style):
        """Blanks a rectangle."""
        for row in range(max(0, top), min(self.rows, top + rows)):
            self.put(row, left, u" " * columns, style)

    def frame(self, top, left, rows, columns, style):
        """Draws a box with its inside blanked."""
        self.put(top, left, u"┌" + u"─" * (columns - 2) + u"┐", style)
        for row in range(top + 1, top + rows - 1):
            self.put(row, left, u"│" + u" " * (columns - 2) + u"│", style)
        self.put(top + rows - 1, left, u"└" + u"─" * (columns - 2) + u"┘", style)

    def text(self):
        """The grid as lines of text without styles."""
        return [u"".join(char for char, _ in line if char is not None).rstrip() for line in self._lines]

    def paint(self, before=None):
        """The bytes that show this grid on a terminal that shows the grid before, or anything where that is None."""
        same_size = before is not None and (before.rows, before.columns) == (self.rows, self.columns)
        parts = [] if same_size else ["\x1b[0m\x1b[2J"]
        for row in range(self.rows):
            if not same_size or before._lines[row] != self._lines[row]:
                parts.append(self._paint_line(row))
        return "".join(parts)

    def _paint_line(self, row):
        parts, current = ["\x1b[%d;1H" % (row + 1)], None
        for column, (char, style) in enumerate(self._lines[row]):
            if char is None:
                continue
            if style != current:
                parts.append("\x1b[0;%sm" % style if style else "\x1b[0m")
                current = style
            parts.append(char.encode("utf-8"))
            if not self._column_is_sure(char):
                following = column + 1
                while following < self.columns and self._lines[row][following][0] is None:
                    following += 1
                parts.append("\x1b[%dG" % (following + 1))
        parts.append("\x1b[0m")
        return "".join(parts)

    @staticmethod
    def _column_is_sure(char):
        """Whether every terminal moves by one column for it; behind others the column is set, whatever it did."""
        return len(char) == 1 and (char < u"\x7f" or char in _SURE_OF_THEIR_COLUMN)
