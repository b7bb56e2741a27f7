# -*- coding: utf-8 -*-
"""The catalogue of the sample feed, read as a receiver reads it."""

import os
import re
import unittest

from support import contents, described, entries, feed, good


class TheCatalogue(unittest.TestCase):
    """The file "qel_settings.download"."""

    def setUp(self):
        self.text = contents(feed())["qel_settings.download"]

    def test_has_an_entry_for_each_description_in_order(self):
        self.assertEqual([each.entry() for each in described()], entries(self.text))

    def test_has_at_least_six_good_lists_and_the_three_bad_ones(self):
        self.assertEqual((8, 11), (len(good()), len(entries(self.text))))

    def test_has_lines_that_receivers_pass_over(self):
        lines = self.text.split("\n")
        self.assertEqual("", lines[-1])
        self.assertEqual("# Service lists for this receiver.", lines[0])
        self.assertIn("#Quassel ::: 2019-04-01 ::: 19.2E, half of it ::: quassel/19e.tar.gz", lines)
        self.assertIn("--- not looked after any more ---", lines)
        self.assertIn("", lines[:-1])

    def test_has_dates_texts_and_addresses_in_every_entry(self):
        for author, date, description, archive in entries(self.text):
            self.assertTrue(re.match(r"20\d\d-[01]\d-[0-3]\d$", date), date)
            self.assertTrue(author and description)
            self.assertTrue(re.match(r"[0-9a-z._/-]+\.tar\.gz$", archive), archive)
            self.assertFalse(archive.startswith("/"))

    def test_names_every_file_of_the_feed_and_one_more(self):
        there = set(name for name in contents(feed()) if name != "qel_settings.download")
        named = [archive for _, _, _, archive in entries(self.text)]
        self.assertEqual(len(named), len(set(named)))
        self.assertEqual(set(), there - set(named))
        self.assertEqual(set(["vanished/36e.tar.gz"]), set(named) - there)

    def test_every_description_is_used(self):
        folder = os.path.dirname(os.path.abspath(__file__))
        lists = os.path.join(folder, "..", "..", "feed", "lists")
        names = [name[:-len(".list")] for name in os.listdir(lists) if name.endswith(".list")]
        self.assertEqual(sorted(names), sorted(each.name for each in described()))

    def test_is_utf_8(self):
        self.assertIn(u"Μελτέμι ::: 2020-11-15".encode("utf-8"), self.text)
        self.text.decode("utf-8")


if __name__ == "__main__":
    unittest.main()
