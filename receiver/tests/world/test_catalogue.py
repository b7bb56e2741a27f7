# -*- coding: utf-8 -*-
"""Catalogues whose fields are made to do harm: what is shown, what is asked of the server, and what a shell gets to see.

Every program that the receiver starts is written down: they are the module's own commands, to the letter, whatever stands
in the catalogue.
"""

import random

import world

import support
from display.characters import printable
from misbehaviour import CATALOGUE, FOLDER
from support import ENTRY, new_list, own_settings
from world import (APPEND, CLOSED, EMPTY, EXTRACT, LIST, OVERWRITE, QUESTION, REPLACE, SUCCESS, appended, crashes, overwritten)

PACKED = support.archive(new_list())

NASTY = ["; touch /tmp/ran ;", "$(touch /tmp/ran)", "`touch /tmp/ran`", "| touch /tmp/ran", "&& touch /tmp/ran",
         "'; touch /tmp/ran; '", '"; touch /tmp/ran; "', "> /etc/enigma2/lamedb", "* ? [a-z] ~ {a,b}", "\\ \\\\ \\n",
         "-rf /", "--help", "%s %d %n %x %%", "%(name)s {0} {} ${HOME}", "%", "\\x00 \\0 \\777",
         "\0hidden", "seen\0hidden", "../../../../etc/passwd", "..", ".", "/etc/enigma2/lamedb",
         "http://elsewhere.example/list.tar.gz", "file:///etc/enigma2/lamedb", "//elsewhere.example/", "",
         "\x1b[2J\x1b[31mred", "\x07\x08\x0c\x7f", "\t", "\r", "\xff\xfe\x80", "\xe2\x80\xae elbisiv", "::", ":: :",
         "True", "None", "0", "u'\\u0041'", "<b>bold</b> &amp;", "__import__('os').system('touch /tmp/ran')"]

# What may stand in an address of the web goes to the server as it is written.
PATHS = ["aster.tar.gz;touch${IFS}/tmp/ran", "$(touch$IFS/tmp/ran)", "`touch$IFS/tmp/ran`", "|reboot", "&&reboot", "'", '"',
         "%s%d%n", "%", "%00", "%2e%2e/%2e%2e/", "%0d%0aHost:elsewhere", "../../../etc/enigma2/lamedb", "..", "/etc/passwd",
         "http://elsewhere.example/list.tar.gz", "//elsewhere.example/list.tar.gz", "@elsewhere.example/list.tar.gz",
         ":80/", "file:///etc/enigma2/lamedb", "?list=1&kind=2", "-rf", "--help", "*", "~", "{}", "\\", "<>",
         "settings_download/all", "x" * 2000]


class CatalogueCase(world.WorldCase):
    """A test of catalogues."""

    def play_each(self, catalogues, keys, **answers):
        """Plays the keys once for each catalogue, on one receiver; gives the receiver, the server and the end."""
        server = self.server(list(catalogues) + [support.catalogue(ENTRY)], **answers)
        receiver = self.receiver()
        ended = self.play(receiver, " ".join([keys] * len(catalogues) + ["exit"]), server, trace=0)
        return receiver, server, ended

    def assert_programs(self, ended, *shells):
        """Once it runs, the receiver has run these shells and by them tar, rm and cp: nothing else."""
        self.assertEqual(ended.commands, list(shells))
        names = set(words[0] for words in ended.programs)
        self.assertEqual(sorted(names), sorted(["/bin/sh", "/bin/tar"] + (["rm", "cp"] if REPLACE in shells else [])))


def row(first, second, third):
    """How a row shows on the screen: the host's texts end at a NUL byte."""
    lines = ["> " + _shown("%s - %s" % (first, second)), _shown(third)]
    return "screen: " + "; ".join(" ".join(line.split()) for line in lines)


def _shown(text):
    return printable(text.partition("\0")[0].decode("utf-8", "replace").encode("utf-8"))


class Texts(CatalogueCase):
    """The fields that are shown: text and nothing else."""

    def test_every_field(self):
        """Each text in all three fields, up to the question whether to install."""
        fields = [(text, text, text) for text in NASTY]
        catalogues = [" ::: ".join(each + ("aster.tar.gz",)) + "\n" for each in fields]
        receiver, server, ended = self.play_each(catalogues, "ok exit", archive=PACKED)
        expected = []
        for each in fields:
            # White space around a field is no part of it, and a line with four separators is no entry.
            each = tuple(text.strip() for text in each)
            expected += [row(*each), QUESTION]
        expected += [LIST, CLOSED]
        self.assert_shown(ended, *expected)
        self.assertEqual(len(server.requests), 2 * len(fields) + 1)
        self.assert_programs(ended, *[EXTRACT] * len(fields))
        self.assertEqual(receiver.config(), own_settings())

    def test_installing(self):
        """And to the end, either way."""
        offered = ":::".join(["$(touch /tmp/ran)", "`touch /tmp/ran`", "; touch /tmp/ran", "aster.tar.gz"])
        for keys, shells, config in ((APPEND, [EXTRACT], appended()), (OVERWRITE, [EXTRACT, REPLACE], overwritten())):
            receiver = self.receiver()
            ended = self.play(receiver, keys, self.server(offered, PACKED), trace=0)
            self.assert_shown(ended, row(*offered.split(":::")[:3]), QUESTION, SUCCESS, CLOSED)
            self.assert_programs(ended, *shells)
            self.assertEqual(receiver.config(), config)

    def test_noise(self):
        """Bytes of every kind, most of them those that mean something in a catalogue."""
        seed = random.randrange(1 << 32)
        dice = random.Random(seed)
        for _ in range(3):
            noise = "".join(dice.choice(["\n", ":::", "::", ":", "#", " ", "\r", "\0", chr(dice.randrange(256))])
                            for _ in xrange(50000))
            receiver = self.receiver()
            ended = self.play(receiver, "down right exit", self.server(noise), trace=0)
            self.assertEqual(ended.outcome, "closed", "seed %d: %s" % (seed, ended.traceback))
            self.assertEqual(ended.programs, [])
            self.assertEqual((receiver.config(), receiver.downloads()), (own_settings(), None))


class Paths(CatalogueCase):
    """The field that leads to the archive: it goes to the feed's own server, behind the address of the download area."""

    def test_everything_that_an_address_may_hold(self):
        catalogues = [":::".join(["x", "y", "z", path]) + "\n" for path in PATHS]
        receiver, server, ended = self.play_each(catalogues, "ok exit", other=PACKED)
        expected = []
        for path in PATHS:
            expected += [FOLDER + CATALOGUE, FOLDER + path]
        self.assertEqual(server.requests, expected + [FOLDER + CATALOGUE])
        self.assert_shown(ended, *[row("x", "y", "z"), QUESTION] * len(PATHS) + [LIST, CLOSED])
        self.assert_programs(ended, *[EXTRACT] * len(PATHS))
        self.assertEqual(receiver.config(), own_settings())

    def test_a_fragment_is_left_out(self):
        _, server, _ = self.play_each(["x:::y:::z:::aster.tar.gz#; touch /tmp/ran\n"], "ok exit", archive=PACKED)
        self.assertEqual(server.requests, [FOLDER + CATALOGUE, FOLDER + "aster.tar.gz", FOLDER + CATALOGUE])

    def test_no_path(self):
        """A row without one cannot be chosen."""
        catalogues = ["x:::y:::z:::%s\n" % path for path in ("", " ", "\t \r")]
        for catalogue in catalogues:
            receiver = self.receiver()
            server = self.server(catalogue, other=PACKED)
            ended = self.play(receiver, "ok green exit", server, trace=0)
            self.assert_shown(ended, row("x", "y", "z"), row("x", "y", "z"), row("x", "y", "z"), CLOSED)
            self.assertEqual(server.requests, [FOLDER + CATALOGUE])
            self.assertEqual(receiver.downloads(), None)

    def test_what_no_address_may_hold(self):
        """The interpreter refuses to send it, before anything is sent, with an error that is a crash of the host."""
        self.in_turns([lambda path=path: self.refused(path) for path in (
            "a b", "a\tb", "a\0b", "a\rHost: elsewhere", "a\x7f", "a\x01", "a\x1b[2J",
            "\xc3\xbcber.tar.gz", "a\xff")])

    def refused(self, path):
        """Plays such a path; then the other row installs."""
        offered = "x:::y:::z:::%s\n%s" % (path, support.catalogue(ENTRY))
        server, receiver = self.server(offered, PACKED), self.receiver()
        running = self.start(receiver, "ok exit", server)
        yield running
        ended = self.ended(running)
        found = [character for character in path if not " " < character < "\x7f"][0]
        self.assert_crashed(ended, crashes("InvalidURL: URL can't contain control characters. %r (found at least %r)" % (
            FOLDER + path, found)), "download_settings")
        self.assertEqual((server.requests, receiver.config(), receiver.downloads()), (
            [FOLDER + CATALOGUE], own_settings(), {}))
        ended = self.play(receiver, "down " + APPEND, server)
        self.assertEqual(ended.shown[-1][1], CLOSED)
        self.assertEqual(receiver.config(), appended())


class Lines(CatalogueCase):
    """Lines that are no entries."""

    def test_nothing_to_choose(self):
        for catalogue in ("", "\n" * 1000, ":::" * 1000, "#" * 100000, "\0" * 100000, "a:::b:::c", "a:::b:::c:::d:::e\n"):
            receiver = self.receiver()
            self.assert_shown(self.play(receiver, "ok exit", self.server(catalogue)), EMPTY, EMPTY, CLOSED)
            self.assertEqual((receiver.config(), receiver.downloads()), (own_settings(), None))


if __name__ == "__main__":
    world.main()
