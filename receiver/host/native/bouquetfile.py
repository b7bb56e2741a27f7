"""Bouquet files: "#NAME title", then "#SERVICE reference" lines, each with an optional "#DESCRIPTION".

Lines of other kinds are nobody's; a root file that gets a line more keeps them.
"""

import re

from native.files import read_lines
from native.reference import eServiceReference

_FILE_NAME = re.compile(r'FROM BOUQUET "([^"]+)"')

KINDS = ("tv", "radio")
ROOT_TITLES = {"tv": "Bouquets (TV)", "radio": "Bouquets (Radio)"}
FAVOURITES_TITLES = {"tv": "Favourites (TV)", "radio": "Favourites (Radio)"}
_SERVICE_TYPES = {"tv": 1, "radio": 2}


def root_name(kind):
    """The file name of the root list of a kind."""
    return "bouquets.%s" % kind


def reference_to(file_name, kind):
    """The reference that stands in a root file for a bouquet's file."""
    return '1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet' % (_SERVICE_TYPES[kind], file_name)


def file_name_of(reference):
    """The file that a bouquet's reference names in double quotes, or None; folders do not count."""
    found = _FILE_NAME.search(reference.getPath())
    return found.group(1).rpartition("/")[2] or None if found else None


class Bouquet(object):
    """One list: its title and its entries, each an `eServiceReference`."""

    def __init__(self, title="", entries=()):
        self.title = title
        self.entries = list(entries)

    def services(self):
        """The entries that are services: no markers, no further bouquets."""
        return [each for each in self.entries if not each.is_marker() and not each.is_bouquet()]

    def file_names(self):
        """The bouquet files that this list refers to, in order."""
        names = [file_name_of(each) for each in self.entries if each.is_bouquet()]
        return [name for name in names if name]


def parse(lines):
    """The bouquet that the lines of a file describe."""
    bouquet = Bouquet()
    described = None
    for line in lines:
        if line.startswith("#SERVICE"):
            described = _entry(line[len("#SERVICE"):])
            if described is not None:
                bouquet.entries.append(described)
        elif line.startswith("#DESCRIPTION") and described is not None:
            described.setName(_value(line[len("#DESCRIPTION"):]))
            described = None
        elif line.startswith("#NAME "):
            bouquet.title = line[len("#NAME "):]
    return bouquet


def _entry(text):
    reference = eServiceReference(_value(text))
    return reference if reference.valid() else None


def _value(text):
    """Older files put a colon behind the keyword."""
    return text[1:].lstrip(" ") if text.startswith(":") else text.lstrip(" ")


def read(path):
    """The bouquet in the file, or None when it cannot be read."""
    lines = read_lines(path)
    return None if lines is None else parse(lines)


def with_references(lines, references, title):
    """The text of a root file with more references at the front of its list."""
    named = bool(lines) and lines[0].startswith("#NAME ")
    head = lines[:1] if named else ["#NAME " + title]
    rest = lines[1:] if named else lines
    return "\n".join(head + ["#SERVICE " + each for each in references] + rest + [""])
