# -*- coding: utf-8 -*-
"""The displays by themselves: characters and columns, grids, layout, keys, the script's printed screens."""

import io
import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.realpath(__file__)), ".."))

from display import KEYS
from display import characters
from display import keys
from display import script
from display.canvas import Canvas
from display.layout import lay_out, page


def a_state(**changes):
    """A state of the screen with nothing on it but television, changed as said."""
    state = {"tv": {"bouquet": "Favourites (TV)", "services": ["One", "Two", "Three"], "selected": 1},
             "dialogs": [], "closed": False, "busy": False}
    state.update(changes)
    return state


def a_screen(rows, selected=0, title="Download services lists"):
    return {"kind": "screen", "name": "Morvesk", "title": title, "rows": rows, "selected": selected,
            "captions": {"red": "Exit", "green": "Ok"}}


def a_message(kind, text, title="Download services lists"):
    return {"kind": "message", "type": kind, "title": title, "text": text}


class Characters(unittest.TestCase):

    def test_columns(self):
        for text, columns in (
                ("", 0), ("abc", 3), ("äöü", 3), ("Ελλάδα", 6), ("Россия", 6), ("ТВ-3", 4), ("日本", 4), ("한국어", 6),
                ("ｆｕｌｌ", 8), ("e\xcc\x81", 1), ("ไทยทีวี", 5), ("العربية", 7), ("עברית", 5),
                ("\xf0\x9f\x93\xba", 2), ("\xf0\xa0\x80\x80", 2), ("a\xc2\xadb", 2)):
            self.assertEqual(characters.width(text), columns, repr(text))

    def test_nothing_controls_the_terminal(self):
        self.assertEqual(characters.printable("a\x1b[2Jb"), "a\xef\xbf\xbd[2Jb")
        self.assertEqual(characters.printable("a\xc2\x9b31mb\x00\x7f"), "a\xef\xbf\xbd31mb\xef\xbf\xbd\xef\xbf\xbd")
        self.assertEqual(characters.printable("one\ntwo\tthree\r"), "one two three ")
        self.assertEqual(characters.printable("a\xe2\x80\xaeb"), "ab")
        self.assertEqual(characters.printable("a\xffb"), "a\xef\xbf\xbdb")
        for number in range(256):
            shown = characters.printable(chr(number)).decode("utf-8")
            self.assertFalse(any(ord(char) < 32 or 127 <= ord(char) < 160 for char in shown), number)

    def test_a_mark_stays_with_the_character_before_it(self):
        self.assertEqual(characters.cells("e\xcc\x81x"), [(u"e\u0301", 1), (u"x", 1)])
        self.assertEqual(characters.cells("\xcc\x81x"), [(u"x", 1)])

    def test_surrogate_pairs_are_one_character(self):
        pair = u"\ud83d\udcfa"
        self.assertEqual([number for number, _ in characters.code_points(pair)], [0x1F4FA])
        self.assertEqual(characters.width(pair), 2)
        self.assertEqual(characters.cells(u"\ud83d"), [(characters.REPLACEMENT, 1)])

    def test_clip(self):
        self.assertEqual(characters.clip("abcdef", 6), u"abcdef")
        self.assertEqual(characters.clip("abcdef", 5), u"abcd…")
        self.assertEqual(characters.clip("日本語", 5), u"日本…")
        self.assertEqual(characters.clip("日本語", 4), u"日…")
        self.assertEqual(characters.clip("日本語", 6), u"日本語")
        self.assertEqual(characters.clip("abc", 1), u"…")
        self.assertEqual(characters.clip("abc", 0), u"")

    def test_wrap(self):
        self.assertEqual(characters.wrap("one two three", 7), [u"one two", u"three"])
        self.assertEqual(characters.wrap("one\ntwo", 7), [u"one", u"two"])
        self.assertEqual(characters.wrap("abcdefghij kl", 4), [u"abcd", u"efgh", u"ij", u"kl"])
        self.assertEqual(characters.wrap("", 4), [u""])
        self.assertEqual(characters.wrap("a\n\nb", 4), [u"a", u"", u"b"])
        self.assertEqual(characters.wrap("日本語", 4), [u"日本", u"語"])


class Grid(unittest.TestCase):

    def test_text_stays_inside(self):
        canvas = Canvas(2, 5)
        self.assertEqual(canvas.put(0, 3, "abc", ""), 5)
        self.assertEqual(canvas.put(5, 0, "abc", ""), 0)
        self.assertEqual(canvas.put(1, 0, "abcdef", "", 3), 3)
        self.assertEqual(canvas.text(), [u"   a…", u"ab…"])

    def test_half_of_a_wide_character_never_stays(self):
        canvas = Canvas(1, 6)
        canvas.put(0, 0, "日本", "")
        canvas.put(0, 1, "x", "")
        self.assertEqual(canvas.text(), [u" x本"])
        canvas.put(0, 2, "y", "")
        self.assertEqual(canvas.text(), [u" xy"])

    def test_only_changed_lines_are_painted(self):
        before, after = Canvas(3, 4), Canvas(3, 4)
        after.put(1, 0, "ab", "7")
        self.assertEqual(after.paint(before), "\x1b[2;1H\x1b[0;7mab\x1b[0m  \x1b[0m")
        self.assertEqual(after.paint(after), "")

    def test_another_size_is_painted_whole(self):
        self.assertTrue(Canvas(2, 2).paint(Canvas(3, 2)).startswith("\x1b[0m\x1b[2J\x1b[1;1H"))
        self.assertTrue(Canvas(2, 2).paint().startswith("\x1b[0m\x1b[2J\x1b[1;1H"))

    def test_the_column_is_set_behind_every_character_whose_width_terminals_disagree_on(self):
        canvas = Canvas(1, 5)
        canvas.put(0, 0, "a日é", "")
        self.assertEqual(canvas.paint(Canvas(1, 5)), "\x1b[1;1H\x1b[0ma日\x1b[4Gé\x1b[5G \x1b[0m")


class Layout(unittest.TestCase):

    def test_a_list_turns_whole_pages(self):
        self.assertEqual(page(25, 0, 10), (0, 10))
        self.assertEqual(page(25, 9, 10), (0, 10))
        self.assertEqual(page(25, 10, 10), (10, 20))
        self.assertEqual(page(25, 24, 10), (20, 25))
        self.assertEqual(page(0, None, 10), (0, 0))
        self.assertEqual(page(3, 2, 0), (2, 3))

    def test_the_screen(self):
        state = a_state(dialogs=[a_screen([["Nordlicht - 19.2E", "All of it", "sockets.png"],
                                           ["Ελλάδα - 39E", "日本", None]], 1)])
        self.assertEqual(lay_out(state, 12, 60).text(), [
            u" TV  Favourites (TV)  ▸ Two",
            u"┌─ Download services lists ────────────────────────────────┐",
            u"│ ≡ Nordlicht - 19.2E                                      │",
            u"│   All of it                                              │",
            u"│   Ελλάδα - 39E                                           │",
            u"│   日本                                                   │",
            u"│                                                          │",
            u"│                                                          │",
            u"│                                                          │",
            u"│  Exit    Ok                                              │",
            u"└──────────────────────────────────────────────────── 2/2 ─┘",
            u" ↑↓←→ Enter Esc r=red g=green 0-9 ^C"])

    def test_a_box_lies_on_top(self):
        state = a_state(busy=True, dialogs=[
            a_screen([]), a_message("error", "Sorry, extracting of services list failed\nPlease try again.")])
        self.assertEqual(lay_out(state, 12, 60).text(), [
            u" TV  Favourites (TV)  ▸ Two                     working ...",
            u"┌─ Download services lists ────────────────────────────────┐",
            u"│                                                          │",
            u"│      ┌─ Download services lists ─────────────────┐       │",
            u"│      │ Sorry, extracting of services list failed │       │",
            u"│      │ Please try again.                         │       │",
            u"│      │                                           │       │",
            u"│      │ OK                                        │       │",
            u"│      └───────────────────────────────────────────┘       │",
            u"│  Exit    Ok                                              │",
            u"└──────────────────────────────────────────────────────────┘",
            u" ↑↓←→ Enter Esc r=red g=green 0-9 ^C"])

    def test_the_question(self):
        question = {"kind": "choice", "title": "How?", "text": "", "choices": ["append", "overwrite"], "selected": 1}
        lines = lay_out(a_state(dialogs=[question]), 12, 60).text()
        self.assertEqual(lines[4:8], [
            u"                ┌─ How? ───────────────────┐",
            u"                │ 1 append                 │",
            u"                │ 2 overwrite              │",
            u"                └──────────────────────────┘"])

    def test_a_message_with_answers(self):
        question = dict(a_message("yesno", "Sure?", "Really"), choices=["Yes", "No"], selected=1)
        canvas = lay_out(a_state(dialogs=[question]), 12, 60)
        self.assertEqual(canvas.text()[3:9], [
            u"                ┌─ Really ─────────────────┐",
            u"                │ Sure?                    │",
            u"                │                          │",
            u"                │ Yes                      │",
            u"                │ No                       │",
            u"                └──────────────────────────┘"])
        painted = canvas.paint().split("\n")[0]
        self.assertIn("30;47m No", painted)
        self.assertNotIn("30;47m Yes", painted)

    def test_long_texts_are_cut_and_long_messages_wrapped(self):
        state = a_state(dialogs=[a_screen([["x" * 100, "語" * 60, None]]), a_message("info", "word " * 30)])
        lines = lay_out(state, 24, 50).text()
        self.assertEqual(lines[2], u"│   " + u"x" * 43 + u"… │")
        self.assertEqual(lines[3], u"│   " + u"語" * 21 + u"…  │")
        self.assertTrue(all(characters.width(line) <= 50 for line in lines))

    def test_a_wide_window_shows_the_open_channel_list(self):
        lines = lay_out(a_state(dialogs=[a_screen([])]), 24, 120).text()
        self.assertEqual([line[:28] for line in lines[2:5]],
                         [u"    1 One                   ", u"    2 Two                   ",
                          u"    3 Three                 "])

    def test_every_size_is_laid_out(self):
        rows = [["Nordlicht %d" % number, "日本語" * 30, "ntptime"] for number in range(30)]
        question = {"kind": "choice", "title": "t" * 90, "text": "w " * 300, "choices": ["語" * 90] * 30, "selected": 29}
        for dialogs in ([], [a_screen([])], [a_screen(rows, 29)], [a_screen(rows), a_message("yesno", "w " * 900)],
                        [a_screen(rows), question]):
            for height in (1, 2, 5, 11, 12, 13, 18, 24, 50):
                for columns in [1, 2, 3, 20, 39, 40, 41, 60, 80, 109, 110, 111, 200]:
                    canvas = lay_out(a_state(dialogs=dialogs), height, columns)
                    self.assertEqual(len(canvas.text()), height)
                    self.assertTrue(all(characters.width(line) <= columns for line in canvas.text()))

    def test_too_small_a_window_says_so(self):
        self.assertEqual(lay_out(a_state(), 5, 30).text(), [
            u"This window is too small: it", u"has 30 x 5 characters, the", u"receiver needs 40 x 12.", u"", u""])
        self.assertEqual(lay_out(a_state(), 12, 39).text()[0], u"This window is too small: it has 39 x")
        self.assertEqual(lay_out(a_state(), 12, 40).text()[0], u" TV  Favourites (TV)  ▸ Two")

    def test_nothing_marked_and_nothing_there(self):
        state = a_state(tv={"bouquet": "", "services": [], "selected": None}, dialogs=[a_screen([], None)])
        self.assertEqual(lay_out(state, 12, 60).text()[0], u" TV")


class TypedKeys(unittest.TestCase):

    def decode(self, *pieces):
        decoder = keys.Decoder()
        decoded = [key for piece in pieces for key in decoder.feed(piece)]
        return decoded + decoder.timeout()

    def test_every_key_of_the_remote_control_can_be_typed(self):
        typed = {"up": "\x1b[A", "down": "\x1b[B", "left": "\x1b[D", "right": "\x1b[C", "ok": "\r", "exit": "\x1b",
                 "red": "r", "green": "g"}
        typed.update((digit, digit) for digit in "0123456789")
        self.assertEqual(sorted(typed), sorted(KEYS))
        for key, text in typed.items():
            self.assertEqual(self.decode(text), [key])

    def test_other_ways_to_type_them(self):
        for text, key in (("\x1bOA", "up"), ("\x1bOB", "down"), ("\x1bOC", "right"), ("\x1bOD", "left"),
                          ("\x1b[1;2A", "up"), ("\x1b[5~", "left"), ("\x1b[6~", "right"), ("\n", "ok"),
                          ("\x1bOM", "ok"), ("\x1bOP", "red"), ("\x1b[11~", "red"), ("\x1b[[A", "red"), ("R", "red"),
                          ("\x1b[1;2P", "red"), ("\x1bOQ", "green"), ("\x1b[12~", "green"),
                          ("\x1b[[B", "green"), ("G", "green"), ("\x03", keys.LEAVE), ("\x0c", keys.REDRAW)):
            self.assertEqual(self.decode(text), [key], repr(text))

    def test_a_sequence_may_come_in_pieces(self):
        self.assertEqual(self.decode("\x1b", "[", "A"), ["up"])
        self.assertEqual(self.decode("\x1b", "O", "P"), ["red"])
        self.assertEqual(self.decode("\x1b[1;", "2B"), ["down"])

    def test_an_escape_by_itself_is_exit_only_when_nothing_follows(self):
        decoder = keys.Decoder()
        self.assertEqual(decoder.feed("\x1b"), [])
        self.assertTrue(decoder.waiting)
        self.assertEqual(decoder.timeout(), ["exit"])
        self.assertFalse(decoder.waiting)
        self.assertEqual(self.decode("\x1b\x1b[A"), ["exit", "up"])
        self.assertEqual(self.decode("\x1br"), ["exit", "red"])

    def test_what_is_no_key_is_passed_over(self):
        self.assertEqual(self.decode("x\xc3\xa4\x1b[15~\x1b[Z\x1bOS5"), ["5"])
        self.assertEqual(self.decode("\x1b["), [])

    def test_typed_ahead(self):
        self.assertEqual(self.decode("\x1b[B\x1b[B\r1g"), ["down", "down", "ok", "1", "green"])


class FakeLoop(object):
    """A main loop with a clock that jumps to what is due next."""

    def __init__(self):
        self.now, self.waiting, self.stopped = 0.0, [], False

    def call_later(self, seconds, callback):
        handle = [self.now + seconds, callback]
        self.waiting.append(handle)
        return handle

    def cancel(self, handle):
        self.waiting = [other for other in self.waiting if other is not handle]

    def stop(self):
        self.stopped = True

    def run(self):
        while not self.stopped and self.waiting:
            handle = min(self.waiting, key=lambda waiting: waiting[0])
            self.waiting.remove(handle)
            self.now = max(self.now, handle[0])
            handle[1]()


class FakeReceiver(object):
    """A receiver that is busy for a while after "ok" and closes its screen on "exit"."""

    def __init__(self, loop):
        self.loop, self.pressed, self.busy_until, self.closed = loop, [], 0.0, False

    def press(self, key):
        self.pressed.append((key, self.busy_until > self.loop.now))
        if key == "ok":
            self.busy_until = self.loop.now + 3
        self.closed = self.closed or key == "exit"

    def state(self):
        rows = [["row of %s" % key, "text", None] for key, _ in self.pressed]
        return a_state(dialogs=[] if self.closed else [a_screen(rows, len(rows) - 1)], closed=self.closed,
                       busy=self.busy_until > self.loop.now)


class PlayedKeys(unittest.TestCase):

    def play(self, text):
        loop = FakeLoop()
        self.receiver = FakeReceiver(loop)
        output = io.BytesIO()
        display = script.ScriptDisplay(self.receiver, loop, script.parse_keys(text), output)
        display.open()
        loop.run()
        display.close()
        self.assertTrue(loop.stopped)
        self.assertEqual(loop.waiting, [])
        self.used_up = display.used_up
        return output.getvalue()

    def test_every_screen_is_printed(self):
        self.assertEqual(self.play("ok exit"), """\
=== start
TV | Favourites (TV) | Two
screen | Download services lists | empty
    red: Exit | green: Ok
=== ok
TV | Favourites (TV) | Two
screen | Download services lists | 1 of 1
  > row of ok
      text
    red: Exit | green: Ok
=== exit
TV | Favourites (TV) | Two
closed
""")
        self.assertFalse(self.used_up)

    def test_each_key_waits_until_the_receiver_is_idle(self):
        self.play("ok down exit")
        self.assertEqual(self.receiver.pressed, [("ok", False), ("down", False), ("exit", False)])

    def test_joined_keys_do_not_wait(self):
        self.assertIn("=== ok+exit\n", self.play("ok+exit"))
        self.assertEqual(self.receiver.pressed, [("ok", False), ("exit", True)])

    def test_keys_used_up(self):
        self.play("down")
        self.assertTrue(self.used_up)
        self.play("")
        self.assertTrue(self.used_up)

    def test_keys_left_when_the_screen_closes(self):
        self.assertTrue(self.play("exit ok+ok 1").endswith("closed\nnot pressed: ok+ok 1\n"))
        self.assertEqual(self.receiver.pressed, [("exit", False)])

    def test_boxes(self):
        state = a_state(dialogs=[
            a_message("info", "Loading new services list finished succesfully."),
            {"kind": "choice", "title": "How?", "text": "One\nTwo", "choices": ["append", "over\x1bwrite"],
             "selected": 1},
            dict(a_message("yesno", "Sure?"), choices=["Yes", "No"], selected=0)])
        self.assertEqual(script.describe(state), [
            "TV | Favourites (TV) | Two",
            "info | Download services lists",
            "    Loading new services list finished succesfully.",
            "choice | How?",
            "    One",
            "    Two",
            "    1 append",
            "  > 2 over\xef\xbf\xbdwrite",
            "yesno | Download services lists",
            "    Sure?",
            "  > Yes",
            "    No"])

    def test_key_names(self):
        self.assertEqual(script.parse_keys(" down  OK+exit\n5 "), [["down"], ["ok", "exit"], ["5"]])
        for text, key in (("down menu", "'menu'"), ("ok+", "''"), ("10", "'10'")):
            with self.assertRaises(ValueError) as caught:
                script.parse_keys(text)
            self.assertEqual(str(caught.exception), key + " is not a key: the keys are up, down, left, right, ok, "
                                                          "exit, red, green and 0 to 9")


if __name__ == "__main__":
    unittest.main()
