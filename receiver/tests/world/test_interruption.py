# -*- coding: utf-8 -*-
"""The plug is pulled: the receiver and all that it has started are killed before each system call that changes a file.

The calls are found by a tracer that counts them in an undisturbed installation, so that a new one is met by itself. After
each kill it is looked at which files are old, new, cut short or missing; then the receiver is started again, and
installs. What can be found is the tables of docs/trust.md, which are read here.
"""

import os
import sys

import world

import support
from support import NEW, OWN, bouquet, lamedb5, new_list, own_settings, reference, root
from world import (APPEND, CHECKOUT, CLOSED, LIST, OVERWRITE, QUESTION, SUCCESS, appended, names_in, overwritten)

PAGE = os.path.join(CHECKOUT, "docs", "trust.md")
CONFIG, DOWNLOADS = "/etc/enigma2/", "/tmp/settings"
KILLED = 137
OLD, CUT, WHOLE, MISSING = "old", "cut short", "new", "missing"
OLD_IN_PART, NEW_IN_PART = "old, in part", "new, in part"


def own():
    """Settings whose root file is longer than what is written at a time."""
    lines = "".join("#a line that the host does not know, and keeps\n" for _ in range(120))
    names = ["userbouquet.favourites.tv", "userbouquet.family.tv"]
    return own_settings(lamedb5=lamedb5(OWN), **{"bouquets.tv": root("tv", names) + lines})


def files():
    """A list with a bouquet that is longer than what is copied at a time."""
    return new_list(**{"userbouquet.north.tv": bouquet("North", NEW[:2] * 300)})


def table(heading):
    """The rows of the table below a heading of the page: lists of cells."""
    with open(PAGE) as source:
        part = source.read().partition("\n### %s\n" % heading)[2].partition("\n#")[0]
    rows = [[cell.strip().strip("`") for cell in line.strip("|").split("|")]
            for line in part.splitlines() if line.startswith("|")]
    if not rows:
        raise AssertionError("docs/trust.md has no table below '%s'" % heading)
    return rows[2:]


class Cut(object):
    """What an installation has left that was killed."""

    def __init__(self, number, receiver):
        self.number = number
        self.receiver = receiver  # only the first of those with one state is kept
        self.config = receiver.config()
        self.downloads = receiver.downloads()

    def __repr__(self):
        return repr((sorted(self.config.items()), sorted((self.downloads or {}).items())))


class InterruptionCase(world.WorldCase):
    """A test of killed installations."""

    keys = None

    def setUp(self):
        self.feed = self.good_server(files())
        receiver = self.receiver(own())
        ended = self.play(receiver, self.keys, self.feed, trace=0)
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(receiver.config(), self.installed())
        self.trace = ended.trace
        self.changes = ended.changes

    def cuts(self, numbers):
        """Kills installations at these changes; gives what they have left, and keeps a receiver for each state."""
        found, states = [], set()

        def kill(number):
            receiver = self.receiver(own())
            running = self.start(receiver, self.keys, self.feed, trace=number)
            yield running
            ended = self.ended(running)
            self.assertEqual((ended.status, ended.outcome), (KILLED, None), ended.complaints)
            self.assert_same_way(ended.changes, self.changes[:number - 1])
            cut = Cut(number, receiver)
            if repr(cut) in states:
                receiver.remove()
            states.add(repr(cut))
            found.append(cut)

        self.in_turns([lambda number=number: kill(number) for number in numbers])
        self.assertEqual([cut.number for cut in found], list(numbers))
        sys.stdout.write("%s: killed at %d of %d changes, %d different states\n" % (
            self.id().partition(".")[2], len(found), len(self.changes), len(states)))
        return found

    def assert_same_way(self, done, undisturbed):
        """The same calls in the same order; but a folder's files are removed in no order."""
        self.assertEqual([self.step(*each) for each in done], [self.step(*each) for each in undisturbed])

    @staticmethod
    def step(call, path):
        return (call, DOWNLOADS if call in ("unlink", "unlinkat") and path.startswith(DOWNLOADS) else path)

    def distinct(self, cuts):
        """The first of each kind of state."""
        seen = set()
        return [cut for cut in cuts if repr(cut) not in seen and not seen.add(repr(cut))]

    def in_configuration(self):
        """The numbers of the changes from the first one in the configuration folder on."""
        first = [number for number, (_, path) in enumerate(self.changes, 1) if path.startswith(CONFIG)][0]
        return range(first, len(self.changes) + 1)

    def before_it(self):
        """The numbers of the changes before those: the download and its extraction."""
        return range(1, self.in_configuration()[0])

    def assert_rows(self, cuts, heading):
        """The states of these kills, in words and without repetition, are the table below that heading."""
        rows = []
        for cut in cuts:
            row = self.words(cut)
            if row not in rows:
                rows.append(row)
        self.assertEqual(rows, [row[:len(rows[0])] for row in table(heading)])

    def assert_among_rows(self, cuts, heading):
        """The states of these kills are in that table, in its order."""
        places = [[row[:len(self.words(cut))] for row in table(heading)].index(self.words(cut)) for cut in cuts]
        self.assertEqual(places, sorted(places))


def several(present, old, new):
    """One word for several files that are removed and brought."""
    if not present:
        return MISSING
    if present in (old, new):
        return OLD if present == old else WHOLE
    return OLD_IN_PART if all(old.get(name) == content for name, content in present.items()) else NEW_IN_PART


def picked(config, names):
    """Those files that are there."""
    return dict((name, config[name]) for name in names if name in config)


def one(content, old, new):
    """One word for a file that exists before and after."""
    if content in (old, new):
        return OLD if content == old else WHOLE
    if content is None:
        return MISSING
    if not new.startswith(content):
        raise AssertionError("neither old nor new nor a part of it: %r" % content)
    return CUT


def mended(config):
    """The configuration folder after a start of the receiver: what no root file names is put in front, a root file must
    exist, and it must name something."""
    result = dict(config)
    named = [name for kind in ("tv", "radio") for name in names_in(config.get("bouquets." + kind, ""))]
    for kind, title in (("tv", "TV"), ("radio", "Radio")):
        lines = config.get("bouquets." + kind, "").splitlines() or ["#NAME Bouquets (%s)" % title]
        names = sorted(name for name in config
                       if name.startswith("userbouquet.") and name.endswith("." + kind) and name not in named)
        if not names and not names_in("\n".join(lines)):
            names = ["userbouquet.favourites." + kind]
            result[names[0]] = "#NAME Favourites (%s)\n" % title
        if names:
            result["bouquets." + kind] = "\n".join(
                lines[:1] + [reference(kind, name) for name in names] + lines[1:] + [""])
    return result


class AppendCase(InterruptionCase):
    """Killed while appending."""

    keys = APPEND

    def installed(self):
        return appended(files(), own())

    def words(self, cut):
        """A row of the table: the list's TV bouquets, the TV root file, the same for radio, the two databases."""
        old, new = own(), self.installed()
        row = []
        for kind in ("tv", "radio"):
            names = names_in(files()["bouquets." + kind])
            row.append(several(picked(cut.config, names), {}, picked(new, names)))
            row.append(one(cut.config["bouquets." + kind], old["bouquets." + kind], new["bouquets." + kind]))
        for name in ("lamedb", "lamedb5"):
            row.append(one(cut.config.get(name), old.get(name), new[name]))
        return row

    def assert_nothing_of_ones_own_lost(self, cut):
        """Own bouquets and all else are untouched; only the root files may be cut short, and only one of them; the
        database is the old one or the new one."""
        old, new = own(), self.installed()
        for name in old:
            if not name.startswith(("bouquets.", "lamedb")):
                self.assertEqual(cut.config[name], old[name])
        self.assertIn(cut.config["lamedb"], (old["lamedb"], new["lamedb"]))
        self.assertLessEqual([one(cut.config[name], old[name], new[name]) for name in ("bouquets.tv", "bouquets.radio")]
                             .count(CUT), 1)
        further = set(cut.config) - set(new)
        self.assertLessEqual(len(further), 1)
        for name in further:
            self.assertIn(name, ("lamedb.writing", "lamedb5.writing"))

    def assert_references_lead_to_whole_files(self, cut):
        """A root file names a bouquet of the list only when that has been copied whole."""
        for kind in ("tv", "radio"):
            for name in names_in(cut.config["bouquets." + kind]):
                self.assertEqual(cut.config[name], self.installed()[name])

    def completes(self, cut):
        """The receiver is started again; what the first try has left are bouquets of the list, whole or in part."""
        writing = [name for name in cut.config if name.endswith(".writing")]
        left = self.assert_completes(cut.receiver, own(), files())
        for name, content in left.items():
            self.assertTrue(files()[name].startswith(content), name)
            self.assertEqual(content, cut.config[name])
        self.assertEqual([name for name in cut.receiver.config() if name.endswith(".writing")], [
            name for name in writing if name not in ("lamedb.writing", "lamedb5.writing")])


class Append(AppendCase):
    """Killed at each change that appending makes in the configuration folder."""

    def test_every_change(self):
        cuts = self.cuts(self.in_configuration())
        for cut in cuts:
            self.assert_nothing_of_ones_own_lost(cut)
            self.assert_references_lead_to_whole_files(cut)
            self.assertEqual(cut.downloads, dict(files(), **{"settings.tar.gz": support.archive(files())}))
        self.assert_rows(cuts, "Appending")
        for cut in self.distinct(cuts):
            self.completes(cut)


class AppendInFull(AppendCase):
    """Killed before that, and with a download folder that a power cut empties."""

    full = True

    def test_every_change_of_download_and_extraction(self):
        cuts = self.cuts(self.before_it())
        for cut in cuts:
            self.assertEqual(cut.config, own())
        for cut in self.distinct(cuts):
            self.assert_next_try_installs(cut.receiver, APPEND, self.installed(), files())

    def test_what_the_next_start_makes_of_it(self):
        for cut in self.distinct(self.cuts(self.in_configuration())):
            cut.receiver.empty(DOWNLOADS)
            self.assert_shown(self.play(cut.receiver, "exit", self.feed), LIST, CLOSED)
            self.assertEqual(cut.receiver.config(), mended(cut.config))
            self.completes(cut)


class OverwriteCase(InterruptionCase):
    """Killed while overwriting."""

    keys = OVERWRITE

    def installed(self):
        return overwritten(files(), own())

    def words(self, cut):
        """A row of the table: the database, the TV lists, the radio lists, the download folder."""
        old, new = own(), self.installed()
        row = [one(cut.config.get("lamedb"), old["lamedb"], new["lamedb"])]
        for suffix in (".tv", ".radio"):
            present, before, after = [dict((name, content) for name, content in each.items() if name.endswith(suffix))
                                      for each in (cut.config, old, new)]
            row.append(several(present, before, after))
        brought = dict(files(), **{"settings.tar.gz": support.archive(files())})
        return row + ["there" if cut.downloads == brought else "in part"]

    def assert_nothing_else_touched(self, cut):
        """Only the database and the lists are removed and brought."""
        for name, content in own().items():
            if not name.endswith((".tv", ".radio")) and name != "lamedb":
                self.assertEqual(cut.config[name], content)
        self.assertEqual(set(cut.config) - set(own()) - set(self.installed()), set())

    def completes(self, cut):
        """The receiver is started again, and overwrites again."""
        self.assert_next_try_installs(cut.receiver, OVERWRITE, self.installed(), files())

    def between_the_commands(self):
        """The numbers of the first change of each command of the chain."""
        numbers, number = [], 0
        for words in self.trace:
            if words[0] == "change":
                number += 1
            elif words[1] in ("rm", "cp"):
                numbers.append(number + 1)
        return numbers


class Overwrite(OverwriteCase):
    """Killed after each command of the chain."""

    def test_every_command(self):
        numbers = self.between_the_commands()
        self.assertEqual(len(numbers), world.REPLACE.count(";") + 1)
        cuts = self.cuts(numbers)
        for cut in cuts:
            self.assert_nothing_else_touched(cut)
            self.completes(cut)
        self.assert_among_rows(cuts, "Overwriting")


class OverwriteInFull(OverwriteCase):
    """Killed at each change of each command."""

    full = True

    def test_every_change_of_download_and_extraction(self):
        cuts = self.cuts(self.before_it())
        for cut in cuts:
            self.assertEqual(cut.config, own())
        for cut in self.distinct(cuts):
            self.completes(cut)

    def test_every_change(self):
        cuts = self.cuts(self.in_configuration())
        for cut in cuts:
            self.assert_nothing_else_touched(cut)
        self.assert_rows(cuts, "Overwriting")
        for number, cut in enumerate(self.distinct(cuts)):
            if number % 2:
                cut.receiver.empty(DOWNLOADS)
            self.assert_shown(self.play(cut.receiver, "exit", self.feed), LIST, CLOSED)
            self.assertEqual(cut.receiver.config(), mended(cut.config))
            self.completes(cut)


if __name__ == "__main__":
    world.main()
