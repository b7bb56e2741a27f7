# -*- coding: utf-8 -*-
"""make_feed.py: the same bytes every time, folders that are whole or not there, mistakes in one line."""

import hashlib
import os
import shutil
import sys
import time
import unittest

from support import FEED, MAKE_FEED, ServiceFile, contents, feed, make, read_bouquet, run, scratch

from feed import make_feed


def digest(files):
    """One sum over names and contents."""
    total = hashlib.sha256()
    for name in sorted(files):
        total.update("%s\0%d\0%s" % (name, len(files[name]), files[name]))
    return total.hexdigest()


class Reproducible(unittest.TestCase):
    """Nothing but the descriptions counts."""

    def test_two_runs_give_the_same_bytes(self):
        self.assertEqual(digest(contents(feed())), digest(contents(make())))

    def test_settings_too(self):
        self.assertEqual(digest(contents(make("--settings"))), digest(contents(make("--settings"))))

    def test_neither_clock_nor_zone_nor_hash_seed_nor_language_nor_umask_nor_place_counts(self):
        environment = dict(os.environ, TZ="Pacific/Kiritimati", PYTHONHASHSEED="4711", LC_ALL="tr_TR.UTF-8",
                           SOURCE_DATE_EPOCH="1")
        elsewhere = os.path.join(scratch(), "elsewhere")
        shutil.copytree(FEED, elsewhere, ignore=shutil.ignore_patterns("*.pyc"))
        moved = os.path.join(scratch(), "feed")
        os.rename(elsewhere, moved)
        folder = os.path.join(scratch(), "made")
        time.sleep(1.1)
        result = run([sys.executable, "-B", "-R", os.path.join(moved, "make_feed.py"), folder],
                     env=environment, cwd="/", preexec_fn=lambda: os.umask(0o077))
        self.assertEqual((0, "", ""), result)
        self.assertEqual(digest(contents(feed())), digest(contents(folder)))

    def test_is_made_in_a_few_seconds(self):
        before = os.times()
        make()
        after = os.times()
        self.assertLess(after[2] + after[3] - before[2] - before[3], 5.0)


class Settings(unittest.TestCase):
    """The receiver's first settings."""

    def setUp(self):
        self.files = contents(make("--settings"))

    def test_are_a_whole_configuration_folder(self):
        self.assertEqual(
            ["bouquets.radio", "bouquets.tv", "lamedb", "lamedb5", "settings", "userbouquet.aerial.tv",
             "userbouquet.children.tv", "userbouquet.favourites.radio", "userbouquet.favourites.tv",
             "userbouquet.weekend.tv"], sorted(self.files))
        self.assertEqual("config.misc.firstrun=false\nconfig.usage.setup_level=expert\n", self.files["settings"])

    def test_root_files_are_as_a_receiver_writes_them(self):
        line = '#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.%s" ORDER BY bouquet\n'
        self.assertEqual("#NAME Bouquets (TV)\n" + "".join(
            line % (1, each) for each in ("favourites.tv", "aerial.tv", "children.tv", "weekend.tv")),
            self.files["bouquets.tv"])
        self.assertEqual("#NAME Bouquets (Radio)\n" + line % (2, "favourites.radio"), self.files["bouquets.radio"])

    def test_have_about_300_services_and_every_reference_leads_to_one(self):
        services = ServiceFile(self.files["lamedb"])
        self.assertEqual(306, len(services.services))
        for name in [name for name in self.files if name.startswith("userbouquet.")]:
            references = [each for each, _ in read_bouquet(self.files[name])[1] if not each.startswith("1:64:")]
            self.assertTrue(references)
            for reference in references:
                self.assertTrue(services.name(reference))

    def test_favourites_are_the_ones_of_the_description(self):
        services = ServiceFile(self.files["lamedb"])
        title, shown = read_bouquet(self.files["userbouquet.favourites.tv"])
        self.assertEqual("Favourites (TV)", title)
        self.assertEqual(
            ["Nordhavn Eins HD", "Nordhavn Zwei HD", "Nordhavn Lokal HD", "Rathausplatz HD", "Sternmühl HD",
             "Canal 9½", "L'Écho d'Ambréval"], [services.name(reference) for reference, _ in shown[:7]])

    def test_end_without_an_author(self):
        self.assertTrue(self.files["lamedb"].endswith("\nend\n"))


class Mistakes(unittest.TestCase):
    """One clear line, exit status 2, nothing lost and nothing half made."""

    def refused(self, folder, **options):
        """The line that is said; the folder above stays as it is."""
        above = os.path.dirname(folder)
        before = contents(above), sorted(os.listdir(above))
        status, output, errors = run([sys.executable, "-B", MAKE_FEED, folder], **options)
        self.assertEqual((2, ""), (status, output))
        self.assertEqual(before, (contents(above), sorted(os.listdir(above))))
        return errors

    def test_a_folder_that_is_not_empty_is_left_alone(self):
        folder = os.path.join(scratch(), "full")
        os.mkdir(folder)
        open(os.path.join(folder, "mine"), "w").close()
        self.assertEqual("make_feed.py: %s is not empty, and nothing in it shall be lost: name a new folder\n" % folder,
                         self.refused(folder))

    def test_an_empty_folder_is_filled(self):
        folder = scratch()
        self.assertEqual((0, "", ""), run([sys.executable, "-B", MAKE_FEED, folder]))
        self.assertEqual(digest(contents(feed())), digest(contents(folder)))

    def test_nothing_is_ever_written_outside_of_the_folder(self):
        for name in ("../outside", os.path.join(scratch(), "outside"), "a/../../outside"):
            above = scratch()
            with self.assertRaises(make_feed.CannotMake) as caught:
                make_feed.write_folder(os.path.join(above, "folder"), {"inside": "", name: ""})
            self.assertEqual("%s is not below the folder to make" % name, str(caught.exception))
            self.assertEqual([], os.listdir(above))
            self.assertFalse(os.path.exists(os.path.join(above, name)))

    def test_folders_above_are_made(self):
        folder = os.path.join(scratch(), "one", "two")
        self.assertEqual((0, "", ""), run([sys.executable, "-B", MAKE_FEED, folder]))
        self.assertEqual(["two"], os.listdir(os.path.dirname(folder)))

    def test_a_file_in_its_place_is_left_alone(self):
        path = os.path.join(scratch(), "file")
        open(path, "w").close()
        self.assertEqual("make_feed.py: %s cannot be made: Not a directory\n" % path, self.refused(path))

    def test_a_folder_that_cannot_be_made(self):
        path = os.path.join(scratch(), "file")
        open(path, "w").close()
        below = os.path.join(path, "below")
        status, output, errors = run([sys.executable, "-B", MAKE_FEED, below])
        self.assertEqual((2, "", "make_feed.py: %s cannot be made: Not a directory\n" % below),
                         (status, output, errors))

    def test_without_a_folder(self):
        status, output, errors = run([sys.executable, "-B", MAKE_FEED])
        self.assertEqual((2, ""), (status, output))
        self.assertEqual("make_feed.py: too few arguments; make_feed.py [--settings] OUT\n", errors)

    def test_an_unknown_option(self):
        status, output, errors = run([sys.executable, "-B", MAKE_FEED, "--toy", "x"])
        self.assertEqual((2, ""), (status, output))
        self.assertEqual("make_feed.py: unrecognized arguments: --toy; make_feed.py [--settings] OUT\n", errors)


class BrokenDescriptions(unittest.TestCase):
    """A copy of the descriptions with one line changed."""

    def say(self, name, old, new):
        """What make_feed.py says when a description reads otherwise; nothing must be made."""
        copy = os.path.join(scratch(), "feed")
        shutil.copytree(FEED, copy, ignore=shutil.ignore_patterns("*.pyc"))
        path = os.path.join(copy, name)
        with open(path, "rb") as source:
            text = source.read()
        self.assertIn(old, text)
        with open(path, "wb") as target:
            target.write(text.replace(old, new, 1))
        folder = os.path.join(scratch(), "made")
        status, output, errors = run([sys.executable, "-B", os.path.join(copy, "make_feed.py"), folder])
        self.assertEqual((2, ""), (status, output))
        self.assertEqual([], os.listdir(os.path.dirname(folder)))
        self.assertTrue(errors.startswith("make_feed.py: ") and errors.endswith("\n") and errors.count("\n") == 1, errors)
        return errors[len("make_feed.py: "):-1]

    def test_an_unknown_keyword(self):
        self.assertTrue(self.say("lists/pixie.list", "services     40", "servises     40").startswith(
            'pixie.list, line 7: "servises" is not one of archive, author, '))

    def test_counts_that_are_wrong(self):
        self.assertEqual("pixie.list, line 7: the list holds 40 services",
                         self.say("lists/pixie.list", "services     40", "services     41"))
        self.assertEqual("pixie.list, line 21: the list has the bouquets 3 tv 1 radio",
                         self.say("lists/pixie.list", "bouquets     3 tv", "bouquets     4 tv"))

    def test_more_than_there_is(self):
        self.assertEqual("pixie.list, line 6: 28.2E has 515 services only".replace("515", self.count("28.2E")),
                         self.say("lists/pixie.list", "use          28.2E 40", "use          28.2E 4000"))
        self.assertEqual("pixie.list, line 6: nothing is received from 28.3E",
                         self.say("lists/pixie.list", "use          28.2E 40", "use          28.3E 40"))
        self.assertEqual("pixie.list, line 13: 37 such services are left".replace("37", self.left()),
                         self.say("lists/pixie.list", "take         8 all", "take         800 all"))

    @staticmethod
    def count(place):
        """The number of services of a place."""
        from feed.sky import read_sky
        return str(len(read_sky()[place].services))

    @staticmethod
    def left():
        """The number of TV services among the first forty."""
        from feed.sky import read_sky
        return str(len([each for each in read_sky()["28.2E"].services[:40] if each.kind != "radio"]))

    def test_a_service_that_is_not_there(self):
        self.assertEqual("pixie.list, line 10: the list holds no such service",
                         self.say("lists/pixie.list", "28.2E Thistle One", "28.2E Thistle Zero"))

    def test_two_bouquets_of_one_name(self):
        self.assertEqual("pixie.list, line 14: there is a userbouquet.favourites.tv already",
                         self.say("lists/pixie.list", "tv children", "tv favourites"))

    def test_a_bouquet_that_is_neither_tv_nor_radio(self):
        self.assertEqual('pixie.list, line 14: "telly" is neither tv nor radio',
                         self.say("lists/pixie.list", "tv children", "telly children"))

    def test_a_bouquet_outside_of_the_list(self):
        self.assertEqual('pixie.list, line 14: "../children" cannot be a part of a file name',
                         self.say("lists/pixie.list", "tv children", "tv ../children"))

    def test_a_field_that_would_break_the_catalogue(self):
        self.assertEqual('pixie.list, line 4: "description" needs a text without ":::"',
                         self.say("lists/pixie.list", "forty favourites", "forty ::: favourites"))

    def test_a_date_that_is_none(self):
        self.assertEqual('pixie.list, line 3: "2020-12-32" is no date such as 2021-03-07',
                         self.say("lists/pixie.list", "2020-12-24", "2020-12-32"))

    def test_a_missing_field(self):
        self.assertEqual("pixie.list states no author", self.say("lists/pixie.list", "author ", "#author"))

    def test_a_catalogue_that_names_no_description(self):
        error = self.say("lists/catalogue", "list pixie", "list trixie")
        self.assertTrue(error.endswith("trixie.list cannot be read: No such file or directory"), error)

    def test_two_lists_with_one_archive(self):
        self.assertEqual("two files of the feed are to be named pixie.tar.gz",
                         self.say("lists/hanami.list", "hanami/asia.tar.gz", "pixie.tar.gz"))

    def test_an_archive_in_the_place_of_the_catalogue(self):
        self.assertEqual("two files of the feed are to be named qel_settings.download",
                         self.say("lists/hanami.list", "hanami/asia.tar.gz", "qel_settings.download"))

    def test_an_archive_outside_of_the_feed(self):
        outside = scratch()
        for address in (os.path.join(outside, "archive"), "../archive", "a/../../archive", "a//archive", "./archive"):
            self.assertEqual('pixie.list, line 5: the archive "%s" is not below the feed' % address,
                             self.say("lists/pixie.list", "pixie.tar.gz", address))
            self.assertEqual([], os.listdir(outside))

    def test_text_that_is_no_utf_8(self):
        self.assertEqual("pixie.list is not UTF-8 text: byte 99",
                         self.say("lists/pixie.list", "author       Pixie", "author       P\xefxie"))

    def test_a_place_that_cannot_be_tuned_to(self):
        self.assertEqual("28.2e.place, line 6: the tuning numbers are not understood",
                         self.say("sky/28.2e.place", "10773 H 22000 5/6 S", "10773 X 22000 5/6 S"))

    def test_a_position_that_is_none(self):
        for position in ("28.2", "200.0E", "x", "28.2N"):
            self.assertEqual('28.2e.place, line 1: "%s" is no orbital position such as 19.2E or 0.8W' % position,
                             self.say("sky/28.2e.place", "28.2E", position))

    def test_a_language_that_nobody_speaks(self):
        self.assertEqual("28.2e.place, line 3: there is no language elvish",
                         self.say("sky/28.2e.place", "languages    english", "languages    elvish"))


if __name__ == "__main__":
    unittest.main()
