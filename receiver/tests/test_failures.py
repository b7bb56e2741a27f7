# -*- coding: utf-8 -*-
"""What the owner sees when something fails, and that nothing is lost by it."""

import os
import unittest

import support
from support import CATALOGUE, ENTRY, catalogue, feed, new_list, own_settings

TV = "TV | Favourites (TV) | Erste Welle\n"
CAPTIONS = "    red: Exit | green: Ok\n"
LIST = TV + """\
screen | Download services lists | 1 of 1
  > Aster - 2021-03-04
      19.2E, everything
""" + CAPTIONS
EMPTY = TV + "screen | Download services lists | empty\n" + CAPTIONS
NO_CONNECTION = TV + """\
screen | Download services lists | 1 of 1
  > Sorry ...
      It seems that your Internet connection is not ok, please check it
""" + CAPTIONS
NO_SERVER = TV + """\
screen | Download services lists | 1 of 1
  > Sorry ...
      Download of services list failes, please be patient and try again later
""" + CAPTIONS
CLOSED = TV + "closed\n"
UNCHANGED = ["Nothing has changed on the receiver."]


def box(*lines):
    """The list with an error box on top."""
    return LIST + "error | Download services lists\n" + "".join("    %s\n" % line for line in lines)


NO_FOLDER = box("Sorry, creating download folder failed")
NOT_EXTRACTED = box("Sorry, extracting of services list failed", "Please try again.")
FILES_MISSING = box("Sorry, there are some mandatory files missing", "Please try antoher services list.")


class Failures(support.ReceiverCase):

    def play(self, keys, address):
        """Plays keys with the receiver's own settings; gives the screens."""
        settings = self.folder("settings", own_settings())
        self.running = self.start("--keys", keys, "--settings", settings, "--feed", address)
        return self.ended()

    def ended(self):
        self.end = self.running.wait()
        self.assertEqual(self.end.changes, UNCHANGED)
        return [(key, text + "\n" if not text.endswith("\n") else text) for key, text in self.end.screens]

    def test_no_catalogue_on_the_server(self):
        folder = self.folder("feed", {"aster.tar.gz": support.archive(new_list())})
        self.assertEqual(self.play("ok red", folder), [
            ("start", NO_CONNECTION), ("ok", NO_CONNECTION), ("red", CLOSED)])
        self.assertEqual(self.end.status, 0)
        self.assertEqual(self.end.err, "run: there is no %s in '%s': the receiver will get no catalogue\n" % (
            CATALOGUE, os.path.realpath(folder)))

    def test_a_server_that_fails(self):
        own = self.own_feed({CATALOGUE: 500})
        self.assertEqual(self.play("green exit", own.address), [
            ("start", NO_CONNECTION), ("green", NO_CONNECTION), ("exit", CLOSED)])
        self.assertEqual(own.requests, ["/feeds/settings_download/" + CATALOGUE])

    def test_nobody_listens(self):
        own = self.own_feed({})
        own.close()
        self.assertEqual(self.play("ok exit", own.address), [
            ("start", NO_SERVER), ("ok", NO_SERVER), ("exit", CLOSED)])
        self.assertEqual(self.end.status, 0)

    def test_no_archive_on_the_server(self):
        folder = self.folder("feed", {CATALOGUE: catalogue(ENTRY)})
        self.assertEqual(self.play("ok ok exit", folder), [
            ("start", LIST), ("ok", NO_CONNECTION), ("ok", NO_CONNECTION), ("exit", CLOSED)])
        self.assertEqual((self.end.status, self.end.err), (0, ""))

    def test_the_server_goes_away_before_the_archive(self):
        def last_answer():
            own.refuse()
            return catalogue(ENTRY)
        own = self.own_feed({CATALOGUE: last_answer})
        self.assertEqual(self.play("ok ok exit", own.address), [
            ("start", LIST), ("ok", NO_SERVER), ("ok", NO_SERVER), ("exit", CLOSED)])

    def test_not_an_archive(self):
        for number, content in enumerate(("<html>Sorry</html>", "", support.archive(new_list())[:300])):
            folder = self.folder("feed%d" % number, {CATALOGUE: catalogue(ENTRY), ENTRY[3]: content})
            self.running = self.start("--keys", "ok ok red", "--feed", folder, "--settings",
                                      self.folder("settings%d" % number, own_settings()))
            self.assertEqual(self.ended(), [("start", LIST), ("ok", NOT_EXTRACTED), ("ok", LIST), ("red", CLOSED)])
            self.assertEqual((self.end.status, self.end.err), (0, ""))

    def test_a_mandatory_file_is_missing(self):
        for number, missing in enumerate((["bouquets.tv"], ["bouquets.radio"], ["lamedb"], ["lamedb", "bouquets.tv"])):
            files = new_list(**dict((name, None) for name in missing))
            folder = self.folder("feed%d" % number, feed(files))
            self.running = self.start("--keys", "ok exit exit", "--feed", folder, "--settings",
                                      self.folder("settings%d" % number, own_settings()))
            self.assertEqual(self.ended(), [("start", LIST), ("ok", FILES_MISSING), ("exit", LIST), ("exit", CLOSED)])

    def test_files_of_an_earlier_archive_count(self):
        """As the download folder is not emptied, what an earlier archive has left there completes the next one."""
        incomplete = ("Bryum", "2021-03-04", "no radio", "bryum.tar.gz")
        folder = self.folder("feed", dict(feed(), **{
            CATALOGUE: catalogue(ENTRY, incomplete),
            "bryum.tar.gz": support.archive(new_list(**{"bouquets.radio": None}))}))
        screens = dict(enumerate(self.play("ok exit down ok exit exit", folder)))
        self.assertIn("choice | Input", screens[4][1])

    def test_the_download_folder_cannot_be_made(self):
        def block():
            os.symlink("/nowhere", self.running.folder("tmp/settings"))
            return catalogue(ENTRY)
        self.check_no_folder(block)

    def test_the_download_folder_cannot_be_written(self):
        def block():
            os.mkdir(self.running.folder("tmp/settings"), 0o555)
            return catalogue(ENTRY)
        self.check_no_folder(block)

    def check_no_folder(self, answer):
        answers = [answer, catalogue(ENTRY)]
        own = self.own_feed({CATALOGUE: lambda: answers[0]() if len(own.requests) == 1 else answers[1],
                             ENTRY[3]: support.archive(new_list())})
        self.running = self.start("--keys", "ok ok red", "--feed", own.address,
                                  "--settings", self.folder("settings", own_settings()))
        self.assertEqual(self.ended(), [("start", LIST), ("ok", NO_FOLDER), ("ok", LIST), ("red", CLOSED)])
        self.assertEqual(own.requests, ["/feeds/settings_download/" + CATALOGUE])

    def test_loading_failed(self):
        """The host has no way to fail here: a screen derived from the module's own has to."""
        with open(self.path("Morvesk.py"), "w") as target:
            target.write(support.derived_module("def reload_settings(self):\n        return False\n"))
        self.running = self.start("--keys", "ok ok ok exit", "--feed", self.folder("feed", feed()), "--settings",
                                  self.folder("settings", own_settings()), MORVESK_MODULE=self.path("Morvesk.py"))
        self.end = self.running.wait()
        screens = [(key, text.rstrip("\n") + "\n") for key, text in self.end.screens]
        self.assertEqual(screens[2:], [
            ("ok", box("Loading the new services list failed.", "Please try again")), ("ok", LIST), ("exit", CLOSED)])
        self.assertEqual((self.end.status, self.end.err), (0, ""))

    def test_a_crash_shows_its_traceback(self):
        def block():
            open(self.running.folder("tmp/settings"), "w").close()
            return catalogue(ENTRY)
        own = self.own_feed({CATALOGUE: block, ENTRY[3]: support.archive(new_list())})
        self.running = self.start("--keys", "ok ok ok", "--feed", own.address,
                                  "--settings", self.folder("settings", own_settings()))
        self.assertEqual(self.ended(), [("start", LIST)])
        self.assertEqual(self.end.status, 3)
        lines = self.end.err.splitlines()
        self.assertEqual(lines[0], "Traceback (most recent call last):")
        self.assertRegexpMatches(self.end.err, r'File ".*", line \d+, in keyOk\n')
        self.assertEqual(lines[-2:], [
            "IOError: [Errno 20] Not a directory: '/tmp/settings/settings.tar.gz'", "run: the receiver has crashed"])


class SampleFeed(support.ReceiverCase):
    """The lists of the sample feed that cannot be installed."""

    def choose(self, downs, row):
        """Goes down to that row and presses OK; gives the screen that then shows."""
        ended = self.run_receiver("--keys", "down " * downs + "ok")
        self.assertIn("  > %s\n" % row, ended.screens[-2][1])
        self.assertEqual(ended.status, 1)
        self.assertEqual(ended.err, "run: the keys are used up and the screen is still open\n")
        self.assertEqual(ended.changes, UNCHANGED)
        return ended.screens[-1][1]

    def test_a_mandatory_file_is_missing(self):
        self.assertIn("    Sorry, there are some mandatory files missing\n", self.choose(8, "Drava - 2018-08-19"))

    def test_not_an_archive(self):
        self.assertIn("    Sorry, extracting of services list failed\n", self.choose(9, "Umgezogen - 2017-02-11"))

    def test_missing_on_the_server(self):
        self.assertIn("      It seems that your Internet connection is not ok, please check it\n",
                      self.choose(10, "Vanished - 2016-05-29"))


if __name__ == "__main__":
    unittest.main()
