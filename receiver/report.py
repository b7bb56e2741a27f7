# -*- coding: utf-8 -*-
"""What an installation has changed in a configuration folder, in words and numbers."""

import os

from display.characters import printable, width
from native.summary import summarise

_LISTS = (".tv", ".radio")
_DATABASES = ("lamedb", "lamedb5")


class Snapshot(object):
    """A configuration folder as it stood at one moment."""

    def __init__(self, folder):
        summary = summarise(folder)
        self.transponders = summary["transponders"]
        self.services = summary["services"]
        self.bouquets = [((bouquet["kind"], bouquet["file"]), bouquet) for bouquet in summary["bouquets"]]
        self.contents = dict((name, _content(os.path.join(folder, name))) for name in os.listdir(folder)
                             if name in _DATABASES or name.endswith(_LISTS))


def _content(path):
    try:
        with open(path, "rb") as source:
            return source.read()
    except IOError:
        return None


def changes(before, after):
    """The lines that tell how the folder got from the one snapshot to the other."""
    if before.contents == after.contents:
        return ["Nothing has changed on the receiver."]
    lines = ["What has changed on the receiver:",
             "  transponders  " + _from_to(before.transponders, after.transponders),
             "  services      " + _from_to(before.services, after.services)]
    bouquets = _bouquet_rows(before, after)
    if not bouquets:
        return lines + ["  bouquets      the same"]
    widths = [max(width(row[column]) for row in bouquets) for column in range(4)]
    for row in bouquets:
        padded = [text + " " * (widths[column] - width(text)) for column, text in enumerate(row[:4])]
        lines.append("  " + "  ".join(padded + [row[4]]))
    return lines


def _bouquet_rows(before, after):
    old, new = dict(before.bouquets), dict(after.bouquets)
    rows = []
    for key, bouquet in _once(after.bouquets):
        if key not in old:
            rows.append(_row("added", bouquet, _services(bouquet["services"])))
        elif before.contents.get(key[1]) != after.contents.get(key[1]):
            count = "%s -> %s" % (_grouped(old[key]["services"]), _services(bouquet["services"]))
            rows.append(_row("replaced", bouquet, count))
    for key, bouquet in _once(before.bouquets):
        if key not in new:
            rows.append(_row("gone", bouquet, _services(bouquet["services"])))
    return sorted(rows, key=lambda row: ("added", "replaced", "gone").index(row[0]))


def _once(bouquets):
    """Each bouquet once, also where a root file names it twice."""
    seen = set()
    for key, bouquet in bouquets:
        if key not in seen:
            seen.add(key)
            yield key, bouquet


def _row(what, bouquet, count):
    return what, bouquet["kind"], printable(bouquet["file"]), printable(bouquet["title"]), count


def _services(count):
    return "%s service%s" % (_grouped(count), "" if count == 1 else "s")


def _from_to(before, after):
    return "%s -> %s" % (_grouped(before), _grouped(after))


def _grouped(number):
    return "{:,}".format(number)
