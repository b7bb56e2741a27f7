# -*- coding: utf-8 -*-
"""Appending a list to what the receiver has, from the first key to the last file."""

import os
import re
import unittest

import support
from support import NEW, OWN, bouquet, lamedb, lamedb5, new_list, own_settings, reference, root

STAMP = r"\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d"
UNION = [OWN[0], NEW[0], OWN[2], OWN[3]] + NEW[1:]

SCREENS = """\
=== start
TV | Favourites (TV) | Erste Welle
screen | Download services lists | 1 of 1
  > Aster - 2021-03-04
      19.2E, everything
    red: Exit | green: Ok
=== ok
TV | Favourites (TV) | Erste Welle
screen | Download services lists | empty
    red: Exit | green: Ok
choice | Input
    How to install new service lists...
  > 1 append to exisiting service lists
    2 overwrite exisiting service lists
=== ok
TV | Favourites (TV) | Erste Welle
screen | Download services lists | empty
    red: Exit | green: Ok
info | Download services lists
    Loading new services list finished succesfully.
=== ok
TV | Favourites (TV) | Erste Welle
closed
What has changed on the receiver:
  transponders  1 -> 3
  services      4 -> 9
  added  tv     userbouquet.north.tv     North        2 services
  added  tv     userbouquet.world.tv     World        3 services
  added  radio  userbouquet.world.radio  World radio  1 service
"""


class Append(support.ReceiverCase):

    def append(self, files, settings=None):
        ended, kept = self.install(files, "ok ok ok", settings)
        self.assertEqual(ended.status, 0, ended.err)
        self.assertEqual(ended.err, "")
        return ended, kept

    def test_every_screen_and_every_file(self):
        ended, kept = self.append(new_list())
        self.assertEqual(ended.out, SCREENS + "Saved as %s\n" % self.path("kept0"))
        expected = dict(own_settings(), **{
            "lamedb": lamedb(UNION),
            "lamedb5": lamedb5(UNION),
            "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv",
                                       "userbouquet.world.tv"]),
            "bouquets.radio": root("radio", ["userbouquet.favourites.radio", "userbouquet.world.radio"])})
        for name in ("userbouquet.north.tv", "userbouquet.world.tv", "userbouquet.world.radio"):
            expected[name] = new_list()[name]
        self.assertEqual(kept, expected)

    def test_copied_bouquets_keep_their_times(self):
        self.append(new_list())
        for name in ("userbouquet.north.tv", "userbouquet.world.radio"):
            self.assertEqual(int(os.stat(self.path("kept0", name)).st_mtime), support.PACKED_AT)
        self.assertNotEqual(int(os.stat(self.path("kept0", "bouquets.tv")).st_mtime), support.PACKED_AT)

    def test_a_taken_name_gets_a_time_stamp(self):
        files = new_list(**{
            "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.north.tv", "userbouquet.family.tv"]),
            "bouquets.radio": root("radio", ["userbouquet.favourites.radio"]),
            "userbouquet.favourites.tv": bouquet("Favourites of others", NEW[:1]),
            "userbouquet.family.tv": bouquet("Family of others", NEW[1:2]),
            "userbouquet.favourites.radio": bouquet("Radio of others", NEW[5:])})
        ended, kept = self.append(files)
        stamps = set(re.findall(STAMP, " ".join(kept)))
        self.assertEqual(len(stamps), 1)
        stamp = stamps.pop()
        self.assertEqual(kept["bouquets.tv"], root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.favourites%s.tv" % stamp,
            "userbouquet.north.tv", "userbouquet.family%s.tv" % stamp]))
        self.assertEqual(kept["bouquets.radio"], root("radio", [
            "userbouquet.favourites.radio", "userbouquet.favourites%s.radio" % stamp]))
        for name in ("favourites%s.tv", "family%s.tv", "favourites%s.radio"):
            self.assertEqual(kept["userbouquet." + name % stamp], files["userbouquet." + name % ""])
            self.assertEqual(kept["userbouquet." + name % ""], own_settings()["userbouquet." + name % ""])
        self.assertEqual(ended.changes[3:], [
            "  added  tv     userbouquet.favourites%s.tv     Favourites of others  1 service" % stamp,
            "  added  tv     userbouquet.north.tv                             North                 2 services",
            "  added  tv     userbouquet.family%s.tv         Family of others      1 service" % stamp,
            "  added  radio  userbouquet.favourites%s.radio  Radio of others       1 service" % stamp,
            "Saved as %s" % self.path("kept0")])

    def test_names_in_other_alphabets(self):
        names = ["userbouquet.ελληνικά.tv", "userbouquet.русский.tv", "userbouquet.日本.tv", "userbouquet.عربى.tv"]
        files = new_list(**{"bouquets.tv": root("tv", names)})
        for name in names:
            files[name] = bouquet(name.split(".")[1], NEW[2:5])
        ended, kept = self.append(files)
        self.assertEqual(kept["bouquets.tv"], root(
            "tv", ["userbouquet.favourites.tv", "userbouquet.family.tv"] + names))
        for name in names:
            self.assertEqual(kept[name], files[name])
        self.assertEqual(ended.changes[3:7], [
            "  added  tv     userbouquet.ελληνικά.tv  ελληνικά     3 services",
            "  added  tv     userbouquet.русский.tv   русский      3 services",
            "  added  tv     userbouquet.日本.tv      日本         3 services",
            "  added  tv     userbouquet.عربى.tv      عربى         3 services"])
        self.assertEqual(kept["lamedb"], lamedb(UNION))

    def test_line_ends_of_root_files(self):
        own = own_settings(**{
            "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.family.tv"], "\r\n", "Meine"),
            "bouquets.radio": root("radio", ["userbouquet.favourites.radio"], "\r\n")})
        files = new_list(**{
            "bouquets.tv": root("tv", ["userbouquet.north.tv", "userbouquet.world.tv"], "\r\n"),
            "bouquets.radio": root("radio", ["userbouquet.world.radio"], "\r\n")})
        kept = self.append(files, own)[1]
        self.assertEqual(kept["bouquets.tv"], root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv", "userbouquet.world.tv"],
            title="Meine"))
        self.assertEqual(kept["bouquets.radio"], root("radio", [
            "userbouquet.favourites.radio", "userbouquet.world.radio"]))

    def test_single_quotes_and_what_is_passed_over(self):
        files = new_list(**{
            "bouquets.tv": "#NAME Bouquets (TV)\n"
                           "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET 'userbouquet.north.tv' ORDER BY bouquet\n"
                           + reference("tv", "userbouquet.world.radio") + "\n"
                           + reference("tv", "userbouquet.missing.tv") + "\n"
                           + reference("tv", "bouquets.tv") + "\n"
                           + "userbouquet.world.tv\n\n"})
        kept = self.append(files)[1]
        self.assertEqual(kept["bouquets.tv"], root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv", "userbouquet.world.tv"]))

    def test_a_last_line_without_its_end_is_known_again(self):
        own = own_settings(**{
            "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.family.tv"])
                           + reference("tv", "userbouquet.north.tv")})
        kept = self.append(new_list(), own)[1]
        self.assertEqual(kept["bouquets.tv"], root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv", "userbouquet.world.tv"]))
        self.assertNotIn("userbouquet.north.tv", kept)

    def test_a_receiver_without_anything(self):
        ended, kept = self.append(new_list(), {})
        self.assertEqual(kept["lamedb"], lamedb(NEW))
        self.assertEqual(kept["lamedb5"], lamedb5(NEW))
        for kind, names in (("tv", ["north.tv", "world.tv"]), ("radio", ["world.radio"])):
            lines = kept["bouquets." + kind].splitlines()
            self.assertEqual(lines[-len(names):], [reference(kind, "userbouquet." + name) for name in names])
            for name in names:
                self.assertEqual(kept["userbouquet." + name], new_list()["userbouquet." + name])
        self.assertEqual(ended.changes[1:3], ["  transponders  0 -> 3", "  services      0 -> 6"])

    def test_root_files_that_have_gone_are_begun_anew(self):
        """The receiver makes them when it starts: they go while the archive is on its way."""
        def packed():
            for kind in ("tv", "radio"):
                os.unlink(running.folder("etc/enigma2/bouquets." + kind))
            return support.archive(new_list())
        own = self.own_feed({support.CATALOGUE: support.catalogue(support.ENTRY), support.ENTRY[3]: packed})
        running = self.start("--keys", "ok ok ok", "--feed", own.address, "--keep", self.path("kept"),
                             "--settings", self.folder("settings", own_settings()))
        self.assertEqual(running.wait().status, 0)
        kept = support.read_folder(self.path("kept"))
        for kind, title, names in (("tv", "TV", ["userbouquet.north.tv", "userbouquet.world.tv"]),
                                   ("radio", "Radio", ["userbouquet.world.radio"])):
            favourites = '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.%s" ORDER BY bouquet' % kind
            lines = kept["bouquets." + kind].splitlines()
            self.assertEqual(lines[0], "#NAME Bouquets (%s)" % title)
            self.assertIn(favourites, lines)
            self.assertEqual(lines[-len(names):], [reference(kind, name) for name in names])

    def test_a_list_of_nothing(self):
        files = {"lamedb": lamedb([]), "bouquets.tv": "", "bouquets.radio": ""}
        ended, kept = self.append(files)
        self.assertEqual(kept, dict(own_settings(), lamedb5=lamedb5(OWN)))
        self.assertEqual(ended.changes[:4], [
            "What has changed on the receiver:", "  transponders  1 -> 1", "  services      4 -> 4",
            "  bouquets      the same"])

    def test_two_in_a_row(self):
        first = self.append(new_list())[1]
        second_list = new_list(lamedb=lamedb([support.Channel(0x77, 0x407, "Sieben")]),
                               **{"userbouquet.north.tv": bouquet("North again", NEW[:1])})
        ended, kept = self.append(second_list, first)
        stamp = re.search(STAMP, kept["bouquets.tv"]).group()
        self.assertEqual(kept["bouquets.tv"], root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv", "userbouquet.world.tv",
            "userbouquet.north%s.tv" % stamp, "userbouquet.world%s.tv" % stamp]))
        self.assertEqual(kept["bouquets.radio"], root("radio", [
            "userbouquet.favourites.radio", "userbouquet.world.radio", "userbouquet.world%s.radio" % stamp]))
        self.assertEqual(kept["userbouquet.north.tv"], new_list()["userbouquet.north.tv"])
        self.assertEqual(kept["userbouquet.north%s.tv" % stamp], bouquet("North again", NEW[:1]))
        self.assertEqual(kept["lamedb"], lamedb(UNION + [support.Channel(0x77, 0x407, "Sieben")]))
        self.assertEqual(ended.changes[1:3], ["  transponders  3 -> 4", "  services      9 -> 10"])


if __name__ == "__main__":
    unittest.main()
