# -*- coding: utf-8 -*-
"""Invented names: words put together from the beginnings and ends of a language, in patterns of that language."""

from feed.description import read

_KEYWORDS = ("language", "beginnings", "ends", "tv", "radio")
_OTHER_ATTEMPTS = 12


class Language(object):
    """What names of one language are made of."""

    def __init__(self, name):
        self.name = name
        self.beginnings = []
        self.ends = []
        self.tv = []
        self.radio = []

    def word(self, dice):
        """An invented word."""
        return (dice.pick(self.beginnings) + dice.pick(self.ends)).replace("_", " ")

    def channel(self, dice, is_radio):
        """An invented name of a channel."""
        return dice.pick(self.radio if is_radio else self.tv).replace("{}", self.word(dice))


class Namer(object):
    """Gives each channel a name of its own."""

    def __init__(self, languages, dice):
        self._languages = languages
        self._dice = dice
        self._given = set()

    def reserve(self, name):
        """A name that somebody wrote by hand is not invented again."""
        self._given.add(name)

    def channel(self, language, is_radio, suffix=""):
        """An invented name that was not given before."""
        for _ in range(_OTHER_ATTEMPTS):
            name = self._languages[language].channel(self._dice, is_radio) + suffix
            if name not in self._given:
                break
        number, base = 2, name[:len(name) - len(suffix)]
        while name in self._given:
            name = "%s %d%s" % (base, number, suffix)
            number += 1
        self._given.add(name)
        return name


def read_languages(path):
    """The languages of a description by their names."""
    languages = {}
    language = None
    for statement in read(path, _KEYWORDS):
        if statement.keyword == "language":
            language = languages[statement.value] = Language(statement.value)
        elif language is None:
            raise statement.error('a "language" must come first')
        elif statement.keyword in ("tv", "radio"):
            setattr(language, statement.keyword, [each.strip() for each in statement.value.split("|")])
        else:
            setattr(language, statement.keyword, statement.value.split())
    return languages
