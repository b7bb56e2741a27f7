# -*- coding: utf-8 -*-
"""Plain descriptions: UTF-8 text, one statement a line, a keyword and what it says, comments behind "#" lines.

The statements of the single kinds of files are explained in FORMAT.md.
"""

import os
import re

_POSITION = re.compile(r"(\d{1,3})\.(\d)([EW])$")


class BadDescription(Exception):
    """A statement that makes no sense; its text says in which file and line, and what was expected."""


class Statement(object):
    """One line of a description."""

    def __init__(self, path, number, keyword, value):
        self._path = path
        self._number = number
        self.keyword = keyword
        self.value = value

    def error(self, text):
        """What to raise when the statement cannot be used."""
        return BadDescription("%s, line %d: %s" % (os.path.basename(self._path), self._number, text))

    def words(self, least, what):
        """The words of the value, of which there must be at least so many."""
        words = self.value.split()
        if len(words) < least:
            raise self.error('"%s" needs %s' % (self.keyword, what))
        return words

    def head(self, count, what):
        """The first words of the value, and the text behind them, which must not be empty."""
        words = self.value.split(None, count)
        if len(words) <= count:
            raise self.error('"%s" needs %s' % (self.keyword, what))
        return words

    def number(self, text):
        """The whole number that a word stands for."""
        if not text.isdigit():
            raise self.error('"%s" is not a whole number' % text)
        return int(text)


def read(path, keywords):
    """The statements of a file, in order; a keyword that is not among the expected ones is a mistake."""
    try:
        with open(path, "rb") as source:
            content = source.read()
        content.decode("utf-8")
    except IOError as error:
        raise BadDescription("%s cannot be read: %s" % (path, error.strerror))
    except UnicodeDecodeError as error:
        raise BadDescription("%s is not UTF-8 text: byte %d" % (os.path.basename(path), error.start))
    return list(_statements(path, content, keywords))


def _statements(path, content, keywords):
    for index, line in enumerate(content.split("\n")):
        line = line.strip()
        if not line or line.startswith("#"):
            continue
        keyword, _, value = line.partition(" ")
        statement = Statement(path, index + 1, keyword, value.strip())
        if keyword not in keywords:
            raise statement.error('"%s" is not one of %s' % (keyword, ", ".join(sorted(keywords))))
        yield statement


def orbital_position(text):
    """The position in tenths of a degree to the east, from 0 to 3599, of a text such as "19.2E" or "0.8W"; None for
    other texts."""
    match = _POSITION.match(text)
    if match is None:
        return None
    tenths = 10 * int(match.group(1)) + int(match.group(2))
    if tenths > 1800:
        return None
    return tenths if match.group(3) == "E" else (3600 - tenths) % 3600
