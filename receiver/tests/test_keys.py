# -*- coding: utf-8 -*-
"""The keys of the remote control on the service-list screen: moving, choosing, backing out, cancelling, closing."""

import os
import time
import unittest

import support
from support import CATALOGUE, ENTRY, catalogue, feed, lamedb, new_list, own_settings

TV = "TV | Favourites (TV) | Erste Welle"
CAPTIONS = "    red: Exit | green: Ok"
LIST = "\n".join([TV, "screen | Download services lists | 1 of 1", "  > Aster - 2021-03-04", "      19.2E, everything",
                  CAPTIONS])
EMPTY = "\n".join([TV, "screen | Download services lists | empty", CAPTIONS])
QUESTION = "\n".join([EMPTY, "choice | Input", "    How to install new service lists...",
                      "  > 1 append to exisiting service lists", "    2 overwrite exisiting service lists"])
SUCCESS = "\n".join([EMPTY, "info | Download services lists", "    Loading new services list finished succesfully."])
CLOSED = TV + "\nclosed"
UNCHANGED = ["Nothing has changed on the receiver."]


class Keys(support.ReceiverCase):

    def play(self, keys, feed_files=None, *options):
        """Plays keys; gives the screens without the ends of their last lines."""
        number = str(len(os.listdir(self.base)))
        self.end = self.run_receiver(
            "--keys", keys, "--settings", self.folder("settings" + number, own_settings()),
            "--feed", self.folder("feed" + number, feed() if feed_files is None else feed_files), *options)
        return [(key, text.rstrip("\n")) for key, text in self.end.screens]

    def test_red_and_exit_close_the_screen(self):
        for key in ("red", "exit"):
            self.assertEqual(self.play(key), [("start", LIST), (key, CLOSED)])
            self.assertEqual((self.end.status, self.end.err, self.end.changes), (0, "", UNCHANGED))

    def test_green_chooses_as_ok_does(self):
        self.assertEqual(self.play("green exit red"), [
            ("start", LIST), ("green", QUESTION), ("exit", LIST), ("red", CLOSED)])

    def test_back_out_of_the_question_and_then_install(self):
        self.assertEqual(self.play("ok exit ok 1 ok"), [
            ("start", LIST), ("ok", QUESTION), ("exit", LIST), ("ok", QUESTION), ("1", SUCCESS), ("ok", CLOSED)])
        self.assertEqual(self.end.status, 0)
        self.assertEqual(self.end.changes[:3], [
            "What has changed on the receiver:", "  transponders  1 -> 3", "  services      4 -> 9"])

    def test_backing_out_changes_nothing(self):
        self.assertEqual(self.play("ok exit exit")[-1], ("exit", CLOSED))
        self.assertEqual((self.end.status, self.end.changes), (0, UNCHANGED))

    def test_cancel_while_tar_runs(self):
        files = {CATALOGUE: catalogue(ENTRY), ENTRY[3]: support.slow_archive(new_list())}
        for tools, key in (("busybox", "exit"), ("gnu", "red")):
            begin = time.time()
            self.assertEqual(self.play("ok+" + key, files, "--tools", tools), [("start", LIST), ("ok+" + key, CLOSED)])
            self.assertLess(time.time() - begin, 20)
            self.assertEqual((self.end.status, self.end.err, self.end.changes), (0, "", UNCHANGED))

    def test_an_empty_catalogue(self):
        for text in ("", "# nothing yet\n\nnot ::: a line\n"):
            self.assertEqual(self.play("ok green down up 1 exit", {CATALOGUE: text}), [
                ("start", EMPTY), ("ok", EMPTY), ("green", EMPTY), ("down", EMPTY), ("up", EMPTY), ("1", EMPTY),
                ("exit", CLOSED)])

    def test_an_entry_without_an_archive_cannot_be_chosen(self):
        screens = self.play("ok exit", dict(feed(), **{CATALOGUE: catalogue(ENTRY[:3] + ("",))}))
        self.assertEqual(screens, [("start", LIST), ("ok", LIST), ("exit", CLOSED)])

    def test_moving(self):
        entries = [("List %d" % number, "today", "", "%d.tar.gz" % number) for number in range(1, 31)]
        screens = self.play("down down up right right left 5 exit", {CATALOGUE: catalogue(*entries)})
        marked = [[line for line in text.split("\n") if line.startswith("  > ")] for _, text in screens[:-1]]
        rows = [int(lines[0].split()[2]) for lines in marked]
        self.assertEqual(rows[:4], [1, 2, 3, 2])
        self.assertGreater(rows[4], 2)
        self.assertGreater(rows[5], rows[4])
        self.assertLess(rows[6], rows[5])
        self.assertEqual(rows[7], rows[6])

    def test_a_long_list_is_shown_in_pages(self):
        entries = [("List %d" % number, "today", "text", "%d.tar.gz" % number) for number in range(1, 31)]
        screens = dict(self.play("down " * 29 + "exit", {CATALOGUE: catalogue(*entries)}))
        self.assertEqual(screens["start"].split("\n")[1], "screen | Download services lists | 1 of 30")
        self.assertEqual(len(screens["start"].split("\n")), 2 + 2 * 20 + 1)
        self.assertEqual(screens["down"].split("\n")[1:6], [
            "screen | Download services lists | 30 of 30", "    List 21 - today", "      text", "    List 22 - today",
            "      text"])

    def test_names_in_every_alphabet(self):
        entries = [("Μελτέμι", "2021", "ελληνικά", "a"), ("Кормoран", "2021", "русский", "b"),
                   ("花見", "2021", "日本語 한국어", "c"), ("سمر", "2021", "العربية", "d"),
                   ("ü\xff\x1b[2J", "\x07", "\x9b", "e")]
        screens = self.play("exit", {CATALOGUE: catalogue(*entries)})
        self.assertEqual(screens[0][1].split("\n")[2:-1], [
            "  > Μελτέμι - 2021", "      ελληνικά", "    Кормoран - 2021", "      русский", "    花見 - 2021",
            "      日本語 한국어", "    سمر - 2021", "      العربية", "    ü��[2J - �", "      �"])

    def test_keys_used_up(self):
        self.assertEqual(self.play("ok"), [("start", LIST), ("ok", QUESTION)])
        self.assertEqual((self.end.status, self.end.err, self.end.changes), (
            1, "run: the keys are used up and the screen is still open\n", UNCHANGED))
        self.assertEqual(self.play(""), [("start", LIST)])
        self.assertEqual(self.end.status, 1)

    def test_keys_left_over(self):
        self.assertEqual(self.play("exit ok+1 5"), [("start", LIST), ("exit", CLOSED + "\nnot pressed: ok+1 5")])
        self.assertEqual(self.end.status, 0)

    def test_a_list_without_services(self):
        files = {"lamedb": lamedb([]), "bouquets.tv": "", "bouquets.radio": ""}
        self.assertEqual(self.play("ok ok ok", feed(files))[-1], ("ok", CLOSED))
        self.assertEqual(self.end.status, 0)


if __name__ == "__main__":
    unittest.main()
