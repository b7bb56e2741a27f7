"""What the module is fed with: catalogues, root files and bouquets of any size, always the same for the same size."""

import array
import os
import random

AUTHORS = "Falkenauge Kormoran Meltemi Samar Pixie Hanami Kabelbote Lyngbo Drava".split()
PLACES = "28.2E 23.5E 19.2E 16.0E 13.0E 9.0E 7.0W 0.8W 30.0W 39.0E 42.0E".split()
KINDS = ("Motor", "Dual feed", "Fixed dish", "Wavefrontier", "Cable", "Family")
SEPARATOR = " ::: "
REFERENCES = {
    "tv": '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet\n',
    "radio": '#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet\n',
}


def read(path):
    """The whole file."""
    with open(path, "rb") as stream:
        return stream.read()


def write(path, content):
    """The content as a file."""
    with open(path, "wb") as stream:
        stream.write(content)


def _entry(dice):
    author = dice.choice(AUTHORS)
    date = "20%02d-%02d-%02d" % (dice.randint(10, 23), dice.randint(1, 12), dice.randint(1, 28))
    description = "%s %s, %d services" % (dice.choice(KINDS), " ".join(dice.sample(PLACES, 2)), dice.randint(200, 9000))
    return author, date, description, "%s/list-%d.tar.gz" % (author.lower(), dice.randint(1, 999999))


def make_catalogue(lines):
    """A catalogue with an entry in every line, written as authors write them, with blanks around the separators.

    Gives the body and the places of the fields in it, for the floor: pairs of start and size, four an entry.
    """
    dice = random.Random(lines)
    # More entries than a processor remembers the branches of.
    stock = [_entry(dice) for _ in range(5000)]
    parts, places, start = [], array.array("I"), 0
    for _ in xrange(lines):
        fields = stock[int(dice.random() * len(stock))]
        for field in fields:
            places.append(start)
            places.append(len(field))
            start += len(field) + len(SEPARATOR)
        start += len("\n") - len(SEPARATOR)
        parts.append(SEPARATOR.join(fields))
    parts.append("")
    return "\n".join(parts), places.tostring()


def places_of(body):
    """The places of the fields in somebody else's catalogue."""
    places, start = array.array("I"), 0
    for line in body.split("\n"):
        pieces = line.split(":::")
        if len(pieces) == 4 and not line.startswith("#"):
            piece_start = start
            for piece in pieces:
                places.append(piece_start + len(piece) - len(piece.lstrip()))
                places.append(len(piece.strip()))
                piece_start += len(piece) + len(":::")
        start += len(line) + len("\n")
    return places.tostring()


def make_rubbish(size):
    """A catalogue of this size or a little more without an entry: a third each of comments, blank and broken lines."""
    dice = random.Random(size)
    parts, done = [], 0
    while done < size:
        fields = _entry(dice)
        for line in ("#" + SEPARATOR.join(fields), "", SEPARATOR.join(fields[:3]), "# " + fields[2], "   ",
                     SEPARATOR.join(fields + ("new",))):
            parts.append(line + "\n")
            done += len(line) + 1
    return "".join(parts)


class Store(object):
    """Long inputs as files, made when first asked for: the processes of all contenders take them from there."""

    def __init__(self, folder):
        self.folder = folder

    def path(self, name):
        """Where the input of this name lies."""
        return os.path.join(self.folder, name)

    def catalogue(self, lines):
        """The body of a catalogue and the places of its fields."""
        body, places = self.path("catalogue-%d" % lines), self.path("places-%d" % lines)
        if not os.path.exists(body):
            made = make_catalogue(lines)
            write(places, made[1])
            write(body, made[0])
        return read(body), read(places)

    def make_for(self, work, arguments):
        """Makes the long input of a work ahead."""
        if work == "rubbish":
            self.rubbish(*arguments)
        elif work in ("catalogue", "rows", "rows_and_host_calls"):
            self.catalogue(arguments[0])

    def rubbish(self, size):
        """The body of a catalogue without an entry."""
        path = self.path("rubbish-%d" % size)
        if not os.path.exists(path):
            write(path, make_rubbish(size))
        return read(path)


def bouquet_name(number, kind="tv"):
    """The file name of a user bouquet."""
    return "userbouquet.%s_%05d.%s" % (AUTHORS[number % len(AUTHORS)].lower(), number, kind)


def root_file(names, kind="tv"):
    """A root file that refers to these user bouquets."""
    title = "#NAME Bouquets (%s)\n" % {"tv": "TV", "radio": "Radio"}[kind]
    return title + "".join(REFERENCES[kind] % name for name in names)


def bouquet(number):
    """The content of a user bouquet: some forty services."""
    dice = random.Random(number)
    lines = ["#NAME %s %d\n" % (dice.choice(AUTHORS), number)]
    for _ in range(dice.randint(20, 60)):
        lines.append("#SERVICE 1:0:%X:%X:%X:%X:%X:0:0:0:\n" % (
            dice.choice((1, 2, 25)), dice.randint(1, 65535), dice.randint(1, 9999), dice.randint(1, 999), 0xC00000))
    return "".join(lines)
