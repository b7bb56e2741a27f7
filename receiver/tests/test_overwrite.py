# -*- coding: utf-8 -*-
"""Overwriting what the receiver has with a list, from the first key to the last file."""

import unittest

import support
from support import NEW, bouquet, lamedb, new_list, own_settings, root

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
=== down
TV | Favourites (TV) | Erste Welle
screen | Download services lists | empty
    red: Exit | green: Ok
choice | Input
    How to install new service lists...
    1 append to exisiting service lists
  > 2 overwrite exisiting service lists
=== ok
TV | Favourites | Zweite Welle HD
screen | Download services lists | empty
    red: Exit | green: Ok
info | Download services lists
    Loading new services list finished succesfully.
=== ok
TV | Favourites | Zweite Welle HD
closed
What has changed on the receiver:
  transponders  1 -> 3
  services      4 -> 6
  added     tv     userbouquet.north.tv          North        2 services
  added     tv     userbouquet.world.tv          World        3 services
  added     radio  userbouquet.world.radio       World radio  1 service
  replaced  tv     userbouquet.favourites.tv     Favourites   2 -> 1 service
  gone      tv     userbouquet.family.tv         Family       1 service
  gone      radio  userbouquet.favourites.radio  Radio        1 service
"""


def with_favourites():
    """The new list with favourites of its own."""
    return new_list(**{
        "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.north.tv", "userbouquet.world.tv"]),
        "userbouquet.favourites.tv": bouquet("Favourites", NEW[:1])})


class Overwrite(support.ReceiverCase):

    def overwrite(self, files, settings=None):
        ended, kept = self.install(files, "ok 2 ok", settings)
        self.assertEqual(ended.status, 0, ended.err)
        self.assertEqual(ended.err, "")
        return ended, kept

    def test_every_screen_and_every_file(self):
        own = own_settings(**{"userbouquet.favourites.radio": bouquet("Radio", support.OWN[3:])})
        ended, kept = self.install(with_favourites(), "ok down ok ok", own)
        self.assertEqual(ended.status, 0)
        self.assertEqual(ended.out, SCREENS + "Saved as %s\n" % self.path("kept0"))
        self.assertEqual(kept, dict(with_favourites(), settings=own["settings"]))

    def test_no_radio_files(self):
        files = new_list(**{"bouquets.radio": "#NAME Bouquets (Radio)\n", "userbouquet.world.radio": None})
        own = own_settings(**{"bouquets.radio": root("radio", ["userbouquet.old.radio"]),
                              "userbouquet.old.radio": bouquet("Old", support.OWN[3:])})
        del own["userbouquet.favourites.radio"]
        kept = self.overwrite(files, own)[1]
        self.assertEqual(kept, dict(files, settings=own["settings"], **{
            "bouquets.radio": root("radio", ["userbouquet.favourites.radio"]),
            "userbouquet.favourites.radio": "#NAME Favourites (Radio)\n"}))

    def test_names_in_other_alphabets(self):
        names = ["userbouquet.ελληνικά.tv", "userbouquet.日本.tv", "userbouquet.with blanks & $(signs).tv"]
        files = new_list(**dict((name, bouquet(name, NEW[2:5])) for name in names))
        files["bouquets.tv"] = root("tv", names + ["userbouquet.north.tv", "userbouquet.world.tv"])
        kept = self.overwrite(files)[1]
        self.assertEqual(kept, dict(files, settings=own_settings()["settings"]))

    def test_line_ends_stay_as_they_are(self):
        files = with_favourites()
        files["bouquets.tv"] = files["bouquets.tv"].replace("\n", "\r\n")
        self.assertEqual(self.overwrite(files)[1]["bouquets.tv"], files["bouquets.tv"])

    def test_a_format_5_file_of_before_stays(self):
        own = own_settings(lamedb5="eDVB services /5/\n")
        self.assertEqual(self.overwrite(with_favourites(), own)[1]["lamedb5"], "eDVB services /5/\n")

    def test_the_marked_service_stays_marked(self):
        with open(self.path("Morvesk.py"), "w") as target:
            target.write(support.derived_module(
                "def __init__(self, session, plugin_path):\n"
                "        module.Morvesk.__init__(self, session, plugin_path)\n"
                "        from enigma import eServiceReference\n"
                "        from Screens.InfoBar import InfoBar\n"
                "        InfoBar.instance.servicelist.setCurrentSelection(eServiceReference('%s'))\n"
                % NEW[0].reference))
        files = with_favourites()
        files["userbouquet.favourites.tv"] = bouquet("Favourites", [NEW[1], NEW[0], NEW[2]])
        ended = self.run_receiver(
            "--keys", "ok 2 ok", "--feed", self.folder("feed", support.feed(files)),
            "--settings", self.folder("settings", own_settings()), MORVESK_MODULE=self.path("Morvesk.py"))
        shown = [text.split("\n")[0] for _, text in ended.screens]
        self.assertEqual(shown, ["TV | Favourites (TV) | Zweite Welle"] * 2 + ["TV | Favourites | Zweite Welle HD"] * 2)

    def test_twice_in_a_row(self):
        first = self.overwrite(with_favourites())[1]
        other = {"lamedb": lamedb(NEW[:1]), "bouquets.tv": root("tv", ["userbouquet.only.tv"]), "bouquets.radio":
                 root("radio", ["userbouquet.only.radio"]), "userbouquet.only.tv": bouquet("Only", NEW[:1]),
                 "userbouquet.only.radio": bouquet("Only radio", [])}
        self.assertEqual(self.overwrite(other, first)[1], dict(other, settings=own_settings()["settings"]))


if __name__ == "__main__":
    unittest.main()
