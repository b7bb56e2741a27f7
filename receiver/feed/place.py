# -*- coding: utf-8 -*-
"""The description of one place: some services are written there by hand, the others are invented by its rules."""

import os

from feed.description import BadDescription, orbital_position, read
from feed.dice import Dice
from feed.names import Namer
from feed.services import Place, Service, Transponder, TYPES
from feed.tuning import kilohertz, tune

_NAMESPACES = {"terrestrial": 0xEEEE0000, "cable": 0xFFFF0000}
_SUFFIXES = {"tv": "", "radio": "", "hd": " HD", "uhd": " UHD"}
_SYMBOL_RATES = (22000, 27500, 29900)
_FECS = ("2/3", "3/4", "5/6")
_FIRST = ("satellite", "terrestrial", "cable")
_KEYWORDS = _FIRST + tuple(TYPES) + ("network", "namespace", "languages", "providers", "transponder", "provider", "fill")


class _Builder(object):
    """Makes a place of the statements of its description."""

    def __init__(self, languages):
        self._languages = languages
        self.place = None
        self._dice = None
        self._namer = None
        self._provider = ""
        self._next_tsid = 0
        self._next_sid = 0

    def take(self, statement):
        """One statement more."""
        if self.place is None and statement.keyword not in _FIRST:
            raise statement.error("a satellite, terrestrial or cable must come first")
        self._TAKERS.get(statement.keyword, _Builder._take_service)(self, statement)

    def _take_place(self, statement):
        if self.place is not None:
            raise statement.error("%s is described already" % self.place.key)
        if statement.keyword == "satellite":
            key, title = statement.head(1, "an orbital position and a name")
            if orbital_position(key) is None:
                raise statement.error('"%s" is no orbital position such as 19.2E or 0.8W' % key)
        else:
            key, title = statement.keyword, statement.value
        self.place = Place(key, title)
        self._dice = Dice(key)
        self._namer = Namer(self._languages, self._dice)
        self._next_tsid = self._dice.between(2, 400)
        self._next_sid = self._dice.between(0x200, 0x1000)

    def _take_network(self, statement):
        self.place.onid = statement.number(statement.value)

    def _take_namespace(self, statement):
        if statement.value != "each":
            raise statement.error('the only namespace rule is "each": one for each transponder')
        self.place.own_namespaces = True

    def _take_languages(self, statement):
        names = statement.words(1, "the name of a language")
        for name in names:
            if name not in self._languages:
                raise statement.error("there is no language %s" % name)
        self.place.languages = names

    def _take_providers(self, statement):
        self.place.providers = [each.strip() for each in statement.value.split("|")]

    def _take_provider(self, statement):
        self._provider = statement.value

    def _take_transponder(self, statement):
        words = statement.words(1, "a frequency in MHz")
        try:
            self._add_transponder(kilohertz(words[0]), *words[1:])
        except (KeyError, OverflowError, TypeError, ValueError):
            raise statement.error("the tuning numbers are not understood")

    def _add_transponder(self, frequency, *numbers):
        self._next_tsid += self._dice.between(1, 9)
        transponder = Transponder(self.place, self._next_tsid, frequency)
        tune(transponder, *numbers)
        transponder.namespace = _NAMESPACES.get(self.place.key, (self.place.position or 0) << 16)
        if self.place.own_namespaces:
            transponder.namespace |= frequency // 1000 & 0xFFFF
        self.place.transponders.append(transponder)

    def _take_service(self, statement):
        if not self.place.transponders:
            raise statement.error("a transponder must come first")
        self._namer.reserve(statement.value)
        self._add_service(statement.keyword, statement.value, self._provider, None)

    def _add_service(self, kind, name, provider, language):
        self._next_sid += self._dice.between(1, 6)
        self.place.services.append(Service(
            self.place.transponders[-1], self._next_sid, kind, name, provider, language, self._fields(kind)))

    def _fields(self, kind):
        """The remembered streams, the access systems and the flags of a service."""
        video = self._dice.between(0x20, 0x1F00)
        streams = [] if kind == "radio" else ["c:00%04x" % video]
        streams += ["c:01%04x" % (video + 1), "c:03%04x" % (video + 1 if kind == "radio" else video)]
        if self._dice.percent(35):
            streams += ["C:%04x" % (0x7E00 + self._dice.below(6))]
        if self._dice.percent(10):
            streams += ["f:40"]
        return streams

    def _take_fill(self, statement):
        words = statement.value.split()
        if len(words) != 4 or words[1:3] != ["transponders", "from"]:
            raise statement.error('"fill" needs "N transponders from MHZ"')
        if not self.place.languages or not self.place.providers:
            raise statement.error("languages and providers must come first")
        for index in range(statement.number(words[0])):
            self._fill_one(statement.number(words[3]), index)

    def _fill_one(self, first, index):
        is_modern = self._dice.percent(55) if self.place.position is not None else index % 2 == 1
        self._invent_transponder(first, index, is_modern)
        language = self._dice.pick(self.place.languages)
        providers = [self._dice.pick(self.place.providers), self._dice.pick(self.place.providers)]
        for kind in self._kinds(is_modern):
            provider = providers[self._dice.percent(20)]
            self._add_service(kind, self._namer.channel(language, kind == "radio", _SUFFIXES[kind]),
                              provider, language)

    def _invent_transponder(self, first, index, is_modern):
        if self.place.key == "terrestrial":
            self._add_transponder((first + 8 * index) * 1000)
        elif self.place.key == "cable":
            self._add_transponder((first + 8 * index) * 1000, 6900, "256QAM" if is_modern else "64QAM")
        else:
            self._add_transponder(first * 1000 + 19250 * index, "VH"[index % 2], self._dice.pick(_SYMBOL_RATES),
                                  self._dice.pick(_FECS), "S2" if is_modern else "S")

    def _kinds(self, is_modern):
        if is_modern and self._dice.percent(8):
            return ["uhd", "uhd"]
        if is_modern:
            return ["hd"] * self._dice.between(6, 10) + ["tv"] * self._dice.between(0, 3)
        return ["tv"] * self._dice.between(7, 12) + ["radio"] * self._dice.between(0, 8)

    _TAKERS = {"satellite": _take_place, "terrestrial": _take_place, "cable": _take_place, "network": _take_network,
               "namespace": _take_namespace, "languages": _take_languages, "providers": _take_providers,
               "transponder": _take_transponder, "provider": _take_provider, "fill": _take_fill}


def read_place(path, languages):
    """The place that a description describes."""
    builder = _Builder(languages)
    for statement in read(path, _KEYWORDS):
        builder.take(statement)
    if builder.place is None:
        raise BadDescription("%s describes nothing" % os.path.basename(path))
    return builder.place
