# -*- coding: utf-8 -*-
"""Text as a terminal shows it: characters with their columns, never a control sequence.

Names come from files and servers that the receiver does not control. Whatever they hold, only printable characters
reach the terminal: bytes that are no UTF-8 and control characters are shown as a replacement character, and the
invisible ones that turn the direction of the text around are dropped.
"""

import re
import unicodedata

REPLACEMENT = u"\ufffd"
ELLIPSIS = u"\u2026"
_PLAIN = re.compile(u"[ -~]*\\Z")
_JOINERS = (0x200C, 0x200D)
_WIDE_LATER_THAN_THE_TABLE = ((0x1F300, 0x1F64F), (0x1F680, 0x1F6FF), (0x1F900, 0x1F9FF), (0x1FA70, 0x1FAFF))


def decode(text):
    """The characters of a byte string, invalid bytes replaced."""
    if isinstance(text, unicode):
        return text
    return text.decode("utf-8", "replace")


def code_points(text):
    """The code points of a unicode string as (number, string), also where strings hold surrogate pairs."""
    index = 0
    while index < len(text):
        number = ord(text[index])
        if 0xD800 <= number < 0xDC00 and index + 1 < len(text) and 0xDC00 <= ord(text[index + 1]) < 0xE000:
            yield 0x10000 + ((number - 0xD800) << 10) + ord(text[index + 1]) - 0xDC00, text[index:index + 2]
            index += 2
        else:
            yield number, text[index]
            index += 1


def _category(number, char):
    if len(char) == 1:
        return unicodedata.category(char)
    if 0xE0000 <= number < 0xE1000:
        return "Cf"
    return "So"


def _columns(number, char, category):
    if category in ("Mn", "Me") or number in _JOINERS or 0x1160 <= number <= 0x11FF:
        return 0
    if len(char) == 1 and unicodedata.east_asian_width(char) in ("W", "F"):
        return 2
    if 0x20000 <= number <= 0x3FFFD:
        return 2
    if any(low <= number <= high for low, high in _WIDE_LATER_THAN_THE_TABLE):
        return 2
    return 1


def cells(text):
    """The text as a list of (characters, columns); marks without a column stand with the character before them."""
    text = decode(text)
    if _PLAIN.match(text):
        return [(char, 1) for char in text]
    result = []
    for number, char in code_points(text):
        category = _category(number, char)
        if number in (0x09, 0x0A, 0x0D) or category in ("Zl", "Zp"):
            char, category = u" ", "Zs"
        elif category in ("Cc", "Cs"):
            char, category = REPLACEMENT, "So"
        elif category == "Cf" and number not in _JOINERS:
            continue
        columns = _columns(number, char, category)
        if columns:
            result.append((char, columns))
        elif result:
            result[-1] = (result[-1][0] + char, result[-1][1])
    return result


def width(text):
    """The number of columns that the text takes."""
    return sum(columns for _, columns in cells(text))


def printable(text):
    """The text as bytes that may be written to a terminal or a log, on one line."""
    return u"".join(char for char, _ in cells(text)).encode("utf-8")


def quoted(text):
    """The text as bytes in quotes, for a sentence about it."""
    return "'%s'" % printable(text)


def clip(text, columns):
    """The text cut to that many columns, its last one an ellipsis where something was cut off."""
    whole = cells(text)
    if sum(taken for _, taken in whole) <= columns:
        return u"".join(char for char, _ in whole)
    kept, used = [], 0
    for char, taken in whole:
        if used + taken > columns - 1:
            break
        kept.append(char)
        used += taken
    return u"".join(kept) + ELLIPSIS if columns > 0 else u""


def wrap(text, columns):
    """The text in lines of at most that many columns, broken at blanks, or inside of a word that is longer."""
    lines = []
    for paragraph in decode(text).replace(u"\r\n", u"\n").split(u"\n"):
        lines.extend(_wrap_paragraph(paragraph, max(2, columns)))
    return lines


def _wrap_paragraph(paragraph, columns):
    lines, line, used = [], [], 0
    for word in paragraph.split(u" "):
        pieces = cells(word)
        length = sum(taken for _, taken in pieces)
        if line and used + 1 + length > columns:
            lines.append(u"".join(line))
            line, used = [], 0
        elif line:
            line.append(u" ")
            used += 1
        for char, taken in pieces:
            if used + taken > columns:
                lines.append(u"".join(line))
                line, used = [], 0
            line.append(char)
            used += taken
    lines.append(u"".join(line))
    return lines
