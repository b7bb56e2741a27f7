"""Lists, texts, pictures and the two boxes."""

import os
import struct
import unittest
import zlib

import support


def row(text, second="", picture=None):
    return (None, text, second, picture, None)


class ListSource(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from Components.Sources.List import List
        from Screens.Screen import Screen
        self.List = List

        class Panel(Screen):
            def __init__(self, session, rows):
                super(Panel, self).__init__(session)
                self.skinName = "Morvesk"
                self["downloadmenu"] = List(rows)

        self.Panel = Panel

    def open(self, rows):
        return self.session.open(self.Panel, rows)["downloadmenu"]

    def drawn(self):
        screen = self.session.current_dialog
        return [each.content.drawn() for each in screen.renderer if hasattr(each, "content")][0]

    def test_it_keeps_the_very_list(self):
        rows = []
        source = self.List(rows)
        self.assertIs(rows, source.list)
        other = [row("a")]
        source.setList(other)
        self.assertIs(other, source.list)

    def test_a_row_appended_to_the_list_is_there(self):
        rows = []
        source = self.open(rows)
        rows.append(row("a"))
        self.assertEqual((1, row("a")), (source.count(), source.getCurrent()))

    def test_without_a_listbox_there_is_no_current_row(self):
        source = self.List([row("a")])
        self.assertIs(False, source.getCurrent())
        self.assertIsNone(source.index)
        source.setIndex(0)

    def test_in_an_empty_list_there_is_no_current_row(self):
        self.assertIsNone(self.open([]).getCurrent())

    def test_the_current_row_is_the_tuple_itself(self):
        rows = [row("a"), row("b")]
        source = self.open(rows)
        source.setIndex(1)
        self.assertIs(rows[1], source.getCurrent())

    def test_the_cursor_moves(self):
        source = self.open([row(str(each)) for each in range(15)])
        seen = []
        for move in (source.selectNext, source.selectNext, source.selectPrevious, source.pageDown,
                     source.pageDown, source.pageDown, source.pageUp, source.selectNext, source.pageUp,
                     source.pageUp):
            move()
            seen.append(source.index)
        self.assertEqual([1, 2, 1, 11, 14, 0, 14, 14, 4, 0], seen)

    def test_who_wants_to_know_is_told_of_the_cursor(self):
        source = self.open([row("a"), row("b")])
        seen = []
        source.onSelectionChanged.append(lambda: seen.append(source.index))
        self.press("DOWN")
        self.assertEqual([1], seen)

    def test_a_new_list_keeps_the_cursor_as_far_as_it_goes(self):
        source = self.open([row(str(each)) for each in range(5)])
        source.setIndex(3)
        source.setList([row("a")] * 9)
        self.assertEqual(3, source.index)
        source.setList([row("a"), row("b")])
        self.assertEqual((1, row("b")), (source.index, source.getCurrent()))
        source.setList([])
        self.assertIsNone(source.getCurrent())
        source.setList([row("c")])
        self.assertEqual(row("c"), source.getCurrent())

    def test_rows_are_drawn_as_the_skin_says(self):
        from native.pixmap import gPixmap
        picture = gPixmap("/pictures/x.png", 1, 1)
        self.open([row("first", "second", picture), row("\xff\xfe", ""), row(u"unicode", None), "no row",
                   row("cut\0off"), (None,)])
        self.assertEqual([(["first", "second"], [picture]), (["\xff\xfe", ""], []),
                          (["<not-a-string>"], []), ([], []), (["cut", ""], []), ([], [])], self.drawn())

    def test_anything_but_a_list_is_drawn_as_an_empty_one(self):
        source = self.open([row("a")])
        source.setList((row("a"), row("b")))
        self.assertEqual([], self.drawn())

    def test_a_new_list_changes_the_screen(self):
        from native import display
        told = []
        display.add_listener(lambda: told.append(len(self.drawn())))
        self.open([]).setList([row("a")])
        self.settle()
        self.assertEqual(1, told[-1])


class Texts(support.HostCase):

    def test_static_text(self):
        from Components.Sources.StaticText import StaticText
        text = StaticText("a")
        self.assertEqual(("a", "a"), (text.text, text.getText()))
        text.setText("b")
        self.assertEqual("b", text.text)
        text.text = "c"
        self.assertEqual("c", text.getText())
        self.assertEqual("", StaticText().text)

    def test_label(self):
        from Components.Label import Label
        label = Label("a")
        self.assertEqual("a", label.getText())
        label.setText("b")
        label.GUIcreate(None)
        self.assertEqual("b", label.instance.getText())
        label.text = "c"
        self.assertEqual("c", label.instance.getText())
        self.assertRaises(TypeError, label.setText, u"unicode")

    def test_hidden_and_shown(self):
        from Components.Label import Label
        label = Label("a")
        seen = []
        label.onVisibilityChange.append(seen.append)
        label.hide()
        label.GUIcreate(None)
        label.applySkin(None, None)
        self.assertFalse(label.instance.isVisible())
        label.show()
        label.show()
        self.assertTrue(label.instance.isVisible())
        self.assertEqual([False, True], seen)

    def test_menu_list(self):
        from Components.MenuList import MenuList
        menu = MenuList([("one", 1), ("two", 2)])
        menu.GUIcreate(None)
        menu.up()
        self.assertEqual(("two", 2), menu.getCurrent())
        menu.down()
        self.assertEqual(("one", 1), menu.getCurrent())
        menu.setList(["three"])
        self.assertEqual([(["three"], [])], menu.l.drawn())
        menu.setList([])
        self.assertIsNone(menu.getCurrent())


class MessageBoxes(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from Screens.MessageBox import MessageBox
        self.MessageBox = MessageBox
        self.results = []

    def open(self, *arguments, **keywords):
        return self.session.openWithCallback(lambda *got: self.results.append(got), self.MessageBox,
                                             *arguments, **keywords)

    def test_the_kinds(self):
        box = self.MessageBox
        self.assertEqual((0, 1, 2, 3, 4), (box.TYPE_YESNO, box.TYPE_INFO, box.TYPE_WARNING,
                                           box.TYPE_ERROR, box.TYPE_MESSAGE))
        titles = [self.open("text", kind).title for kind in range(5)]
        self.assertEqual(["Question", "Information", "Warning", "Error", "Message"], titles)

    def test_ok_closes_with_true_and_exit_with_false(self):
        for kind in (self.MessageBox.TYPE_INFO, self.MessageBox.TYPE_ERROR, self.MessageBox.TYPE_MESSAGE):
            self.open("text", kind)
            self.press("OK")
            self.open("text", kind)
            self.press("EXIT")
        self.assertEqual([(True,), (False,)] * 3, self.results)

    def test_a_question_is_answered_with_the_answer_under_the_cursor(self):
        for keys in (["OK"], ["DOWN", "OK"], ["UP", "OK"], ["EXIT"]):
            self.open("text")
            self.press(*keys)
        self.open("text", default=False)
        self.press("OK")
        self.assertEqual([(True,), (False,), (False,), (False,), (False,)], self.results)

    def test_it_shows_its_text_and_the_picture_of_its_kind(self):
        box = self.open("what happened", self.MessageBox.TYPE_ERROR)
        self.assertEqual("what happened", box["text"].instance.getText())
        shown = [name for name in ("ErrorPixmap", "QuestionPixmap", "InfoPixmap")
                 if box[name].instance.isVisible()]
        self.assertEqual((["ErrorPixmap"], "error.png"), (shown, box["ErrorPixmap"].instance.getPixmap().name()))
        self.assertFalse(box["list"].instance.isVisible())
        self.assertEqual([], self.box.log)

    def test_it_closes_by_itself_when_its_time_is_up(self):
        box = self.open("text", self.MessageBox.TYPE_INFO, timeout=2)
        self.run_until(lambda: "(1)" in box.title)
        self.run_until(lambda: self.results)
        self.assertEqual([(True,)], self.results)

    def test_without_input_no_key_closes_it(self):
        self.open("text", self.MessageBox.TYPE_INFO, enable_input=False)
        self.press("OK", "EXIT")
        self.assertEqual([], self.results)


class ChoiceBoxes(support.SessionCase):

    CHOICES = [("first", True), ("second", False), ("third", 3)]

    def setUp(self):
        support.SessionCase.setUp(self)
        self.results = []

    def open(self, **keywords):
        from Screens.ChoiceBox import ChoiceBox
        return self.session.openWithCallback(lambda *got: self.results.append(got), ChoiceBox, **keywords)

    def test_ok_closes_with_the_chosen_tuple_itself(self):
        for keys in (["OK"], ["DOWN", "OK"], ["DOWN", "DOWN", "DOWN", "OK"], ["UP", "OK"]):
            self.open(title="question", list=self.CHOICES)
            self.press(*keys)
        for got, place in zip(self.results, (0, 1, 0, 2)):
            self.assertEqual(1, len(got))
            self.assertIs(self.CHOICES[place], got[0])

    def test_exit_closes_with_none(self):
        self.open(title="question", list=self.CHOICES)
        self.press("EXIT")
        self.assertEqual([(None,)], self.results)

    def test_digits_choose_directly(self):
        for key in ("3", "2"):
            self.open(title="question", list=self.CHOICES)
            self.press(key)
        self.open(title="question", list=self.CHOICES)
        self.press("9", "0", "BLUE")
        self.assertEqual([(self.CHOICES[2],), (self.CHOICES[1],)], self.results)

    def test_it_shows_the_question_and_the_entries(self):
        box = self.open(title="question", list=self.CHOICES, selection=1)
        self.assertEqual("question", box["text"].instance.getText())
        self.assertEqual([["first"], ["second"], ["third"]], [texts for texts, _ in box["list"].l.drawn()])
        self.assertEqual(1, box["list"].l.cursor)
        self.assertEqual([], self.box.log)

    def test_an_entry_may_call_instead(self):
        called = []
        self.open(list=[("call", "CALLFUNC", called.append)])
        self.press("OK")
        self.assertEqual(([], "call"), (self.results, called[0][0]))

    def test_an_empty_box_closes_without_a_choice(self):
        self.open(title="question", list=[])
        self.press("OK")
        self.assertEqual([(None,)], self.results)


class Pictures(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from Tools.LoadPixmap import LoadPixmap
        self.load = LoadPixmap
        with open(self.path("sockets.png"), "rb") as source:
            self.good = source.read()

    def path(self, name):
        return support.HOST + "/Plugins/SystemPlugins/QelPanel/pictures/" + name

    def file(self, content, name="picture.png"):
        self.box.put(name, content)
        return self.box.config + name

    def test_the_panels_pictures_can_be_loaded(self):
        for name in ("ntptime.png", "sockets.png"):
            picture = self.load(self.path(name))
            self.assertEqual((name, (40, 40)), (picture.name(), picture.size()))

    def test_they_are_what_their_script_draws(self):
        import imp
        script = imp.load_source("draw_pictures", support.HOST + "/share/draw_pictures.py")
        self.assertEqual(5, len(script.PICTURES))
        for name, draw in script.PICTURES.items():
            with open(os.path.join(support.HOST, name), "rb") as source:
                self.assertEqual(source.read(), script.png(draw), name)

    def test_what_cannot_be_loaded_is_none(self):
        broken = self.good[:40] + chr(ord(self.good[40]) ^ 1) + self.good[41:]
        for content in ("", "text", self.good[:-1], self.good[:20], broken, self.good[:8]):
            self.assertIsNone(self.load(self.file(content)))
        self.assertIsNone(self.load(self.box.config + "missing.png"))
        self.assertIsNone(self.load(self.box.config))
        self.assertIsNone(self.load(self.file(self.good, "picture.gif")))
        self.assertIsNotNone(self.load(self.file(self.good)))

    def test_pixels_must_fit_the_size(self):
        def chunk(kind, data):
            return struct.pack(">I", len(data)) + kind + data + struct.pack(
                ">I", zlib.crc32(kind + data) & 0xFFFFFFFF)

        def png(width, height, colour, pixels):
            return "\x89PNG\r\n\x1a\n" + "".join((
                chunk("IHDR", struct.pack(">IIBBBBB", width, height, 8, colour, 0, 0, 0)),
                chunk("IDAT", zlib.compress(pixels)), chunk("IEND", "")))

        self.assertIsNotNone(self.load(self.file(png(1, 2, 0, "\0a\0b"))))
        for content in (png(1, 3, 0, "\0a\0b"), png(2, 2, 0, "\0a\0b"), png(0, 0, 0, ""), png(1, 2, 5, "\0a\0b")):
            self.assertIsNone(self.load(self.file(content)))

    def test_a_cached_picture_is_shared_and_others_are_not(self):
        path = self.file(self.good)
        self.assertIsNot(self.load(path), self.load(path))
        cached = self.load(cached=True, path=path)
        self.assertIs(cached, self.load(path, cached=True))
        os.unlink(path)
        self.assertIs(cached, self.load(path))


class BuiltIns(support.HostCase):

    def test_the_translation_function_is_a_built_in(self):
        import __builtin__
        from Components import Language
        Language.install({"Exit": "Ende"})
        self.assertEqual(("Ende", "Ok"), (__builtin__._("Exit"), _("Ok")))


if __name__ == "__main__":
    unittest.main()
