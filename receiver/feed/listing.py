# -*- coding: utf-8 -*-
"""The description of one service list: which services it holds, and how its bouquets present them."""

import os
import time

from feed.description import BadDescription, read
from feed.servicelist import Bouquet, KINDS, Marker, ServiceList
from feed.services import TYPES

STYLES = ("crlf", "single-quotes", "descriptions", "dot-names")
EXTRAS = ("lamedb5", "satellites.xml")
_KEYWORDS = ("author", "date", "description", "archive", "page", "withdrawn", "use", "services", "bouquets", "style",
             "holds", "lacks", "mention", "setting", "bouquet", "marker", "service", "take", "each")
_TV_KINDS = tuple(kind for kind in TYPES if kind != "radio")


def _kind_matches(service, kind):
    return service.kind == kind or kind == "all" and service.kind != "radio"


class _Builder(object):
    """Makes a list of the statements of its description."""

    def __init__(self, sky):
        self._sky = sky
        self.list = ServiceList()
        self._taken = set()

    def take(self, statement):
        """One statement more."""
        self._TAKERS.get(statement.keyword, _Builder._text)(self, statement)

    def _text(self, statement):
        if not statement.value or ":::" in statement.value:
            raise statement.error('"%s" needs a text without ":::"' % statement.keyword)
        setattr(self.list, statement.keyword, statement.value)

    def _archive(self, statement):
        name = statement.value
        if not name or name.startswith("/") or not set(name.split("/")).isdisjoint(("", ".", "..")):
            raise statement.error('the archive "%s" is not below the feed' % name)
        self._text(statement)

    def _date(self, statement):
        try:
            time.strptime(statement.value, "%Y-%m-%d")
        except ValueError:
            raise statement.error('"%s" is no date such as 2021-03-07' % statement.value)
        self.list.date = statement.value

    def _page(self, statement):
        self.list.page = (self.list.page or "") + statement.value + "\n"

    def _withdrawn(self, _):
        self.list.withdrawn = True

    def _use(self, statement):
        words = statement.words(1, "a place")
        if words[0] not in self._sky:
            raise statement.error("nothing is received from %s" % words[0])
        services = self._sky[words[0]].services
        count = statement.number(words[1]) if len(words) > 1 else len(services)
        if count > len(services):
            raise statement.error("%s has %d services only" % (words[0], len(services)))
        self.list.services += services[:count]

    def _services(self, statement):
        if statement.number(statement.value) != len(self.list.services):
            raise statement.error("the list holds %d services" % len(self.list.services))

    def _bouquets(self, statement):
        counts = " ".join("%d %s" % (len(self.list.bouquets_of(kind)), kind) for kind in KINDS)
        if statement.value != counts:
            raise statement.error("the list has the bouquets %s" % counts)

    def _words_of(self, statement, known):
        for word in statement.words(1, "one of " + ", ".join(known)):
            if word not in known:
                raise statement.error('"%s" is not one of %s' % (word, ", ".join(known)))
            yield word

    def _style(self, statement):
        self.list.styles.update(self._words_of(statement, STYLES))

    def _holds(self, statement):
        self.list.extras += self._words_of(statement, EXTRAS)

    def _lacks(self, statement):
        self.list.lacks += self._words_of(statement, ("lamedb", "bouquets.tv", "bouquets.radio"))

    def _mention(self, statement):
        self.list.mentions.append(statement.value)

    def _setting(self, statement):
        self.list.settings.append(statement.value)

    def _bouquet(self, statement):
        kind, stem, title = statement.head(2, "tv or radio, the middle of a file name, and a title")
        self._add_bouquet(statement, kind, stem, title)

    def _add_bouquet(self, statement, kind, stem, title):
        if kind not in KINDS:
            raise statement.error('"%s" is neither tv nor radio' % kind)
        if "/" in stem:
            raise statement.error('"%s" cannot be a part of a file name' % stem)
        bouquet = Bouquet(kind, stem, title)
        if bouquet.file_name in [each.file_name for each in self.list.bouquets]:
            raise statement.error("there is a %s already" % bouquet.file_name)
        self.list.bouquets.append(bouquet)
        return bouquet

    def _open_bouquet(self, statement):
        if not self.list.bouquets:
            raise statement.error('a "bouquet" must come first')
        return self.list.bouquets[-1]

    def _marker(self, statement):
        self._open_bouquet(statement).entries.append(Marker(statement.value))

    def _service(self, statement):
        place, name = statement.head(1, "a place and the name of a service")
        for service in self.list.services:
            if service.place.key == place and service.name == name:
                self._open_bouquet(statement).entries.append(service)
                return
        raise statement.error("the list holds no such service")

    def _take(self, statement):
        words = statement.words(2, 'a number or "rest", and a kind')
        if words[1] not in tuple(TYPES) + ("all",):
            raise statement.error('"%s" is no kind of service' % words[1])
        left = self._matching(words[1], words[2:])
        count = len(left) if words[0] == "rest" else statement.number(words[0])
        chosen = left[:count]
        if len(chosen) < max(1, count):
            raise statement.error("%d such services are left" % len(left))
        self._taken.update(id(each) for each in chosen)
        self._open_bouquet(statement).entries += chosen

    def _matching(self, kind, filters):
        """The services that no bouquet has taken yet, of a kind, of a place or language."""
        return [each for each in self.list.services
                if id(each) not in self._taken and _kind_matches(each, kind)
                and (not filters or each.place.key in filters or each.language in filters)]

    def _each(self, statement):
        words = statement.words(3, '"place" or "provider", tv or radio, and the middle of a file name')
        kinds = _TV_KINDS if words[1] == "tv" else ("radio",)
        if words[0] not in ("place", "provider") or words[1] not in KINDS:
            raise statement.error('"each" needs "place" or "provider", then "tv" or "radio"')
        groups = _groups([each for each in self.list.services if each.kind in kinds], words[0])
        count = statement.number(words[3]) if len(words) > 3 else len(groups)
        if count > len(groups):
            raise statement.error("there are %d of them only" % len(groups))
        for index, (title, services) in enumerate(groups[:count]):
            stem = "%s_%02d" % (words[2], index + 1)
            self._add_bouquet(statement, words[1], stem, title).entries += _with_markers(services, words[0])

    _TAKERS = {"archive": _archive, "date": _date, "page": _page, "withdrawn": _withdrawn, "use": _use, "services": _services,
               "bouquets": _bouquets, "style": _style, "holds": _holds, "lacks": _lacks, "mention": _mention,
               "setting": _setting, "bouquet": _bouquet, "marker": _marker, "service": _service, "take": _take,
               "each": _each}


def _title(service, rule):
    if rule == "place":
        return "%s %s" % (service.place.key, service.place.title)
    return service.provider


def _groups(services, rule):
    """(title, services) for each place or provider, in the order of their first services."""
    groups = []
    for service in services:
        title = _title(service, rule)
        for known, members in groups:
            if known == title:
                members.append(service)
                break
        else:
            groups.append((title, [service]))
    return groups


def _with_markers(services, rule):
    """A place's services under the names of their providers, a provider's under those of the places."""
    entries = []
    for title, members in _groups(services, "provider" if rule == "place" else "place"):
        entries.append(Marker(title))
        entries += members
    return entries


def read_list(path, sky):
    """The list that a description describes, made of what can be received."""
    builder = _Builder(sky)
    for statement in read(path, _KEYWORDS):
        builder.take(statement)
    _check(builder.list, path)
    return builder.list


def _check(service_list, path):
    if service_list.withdrawn or service_list.page is not None:
        return
    if not service_list.services or not service_list.bouquets:
        raise BadDescription("%s describes neither services and bouquets nor a page" % os.path.basename(path))
