# -*- coding: utf-8 -*-
"""The whole receiver: keys in, the state of the screen out. The panel's screen is a small one of the test's own."""

import json
import sys
import types
import unittest

import support
from test_bouquets import A, LAMEDB, TV_ROOT


def panel_module():
    """What lies in the panel's package: a screen with a list, a question and a command."""
    from Components.ActionMap import ActionMap
    from Components.Console import Console
    from Components.Sources.List import List
    from Components.Sources.StaticText import StaticText
    from Screens.ChoiceBox import ChoiceBox
    from Screens.MessageBox import MessageBox
    from Screens.Screen import Screen
    from Tools.LoadPixmap import LoadPixmap

    class Morvesk(Screen):
        def __init__(self, session, plugin_path):
            Screen.__init__(self, session)
            self.skinName = ["None", "Ruskell"]
            self.skin_path = plugin_path
            self.title = "Panel"
            picture = LoadPixmap(cached=True, path=plugin_path + "/pictures/sockets.png")
            self["title"] = StaticText(self.title)
            self["downloadmenu"] = List([(None, "first \xff", "\xd0\xaf", picture, None),
                                         (None, "second", "", None, None)])
            self["key_red"] = StaticText("Exit")
            self["key_green"] = StaticText("Ok")
            self["actions"] = ActionMap(["SetupActions", "ColorActions", "DirectionActions"], {
                "ok": self.ok, "cancel": self.cancel, "red": self.cancel, "green": self.green}, -2)
            self.console = Console()

        def ok(self):
            self.session.openWithCallback(self.answered, ChoiceBox, title="Which?",
                                          list=[("one", 1), ("two", 2)])

        def answered(self, choice):
            if choice is None:
                raise ValueError("no answer")
            self.console.ePopen("sleep 0.05; echo %d" % choice[1], self.finished)

        def finished(self, result, retval, extra_args=None):
            box = self.session.open(MessageBox, "got " + result, MessageBox.TYPE_INFO)
            box.setTitle("Done")
            self.close()

        def green(self):
            self.session.open(MessageBox, "Sure?")

        def cancel(self):
            self.close(None)

    module = types.ModuleType("Plugins.SystemPlugins.QelPanel.Morvesk")
    module.Morvesk = Morvesk
    return module


class Receiver(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        self.box.put("lamedb", LAMEDB)
        self.box.put("bouquets.tv", TV_ROOT.splitlines(True)[1])
        self.box.put("userbouquet.a.tv", A)
        import stb
        self.receiver = stb.Receiver()

    def boot(self):
        self.receiver.boot()
        name = "Plugins.SystemPlugins.QelPanel.Morvesk"
        sys.modules[name] = panel_module()
        self.addCleanup(sys.modules.pop, name, None)

    def open(self):
        self.boot()
        self.receiver.open_panel()
        self.settle()

    def press(self, *keys):
        for key in keys:
            self.receiver.press(key)
        self.settle()

    def dialogs(self):
        return self.receiver.state()["dialogs"]

    PANEL = {"kind": "screen", "name": "Morvesk", "title": "Panel",
             "rows": [["first \xef\xbf\xbd", "\xd0\xaf", "sockets.png"], ["second", "", None]],
             "selected": 0, "captions": {"red": "Exit", "green": "Ok"}}

    def test_before_it_is_booted(self):
        self.assertEqual({"tv": {"bouquet": "", "services": [], "selected": 0}, "dialogs": [],
                          "closed": False, "busy": False}, self.receiver.state())

    def test_booted_it_shows_television(self):
        self.boot()
        self.assertEqual({"tv": {"bouquet": "First list", "selected": 0,
                                 "services": ["Heading", "One", "Own name", "<n/a>", "A stream"]},
                          "dialogs": [], "closed": False, "busy": False}, self.receiver.state())
        summary = self.receiver.summary()
        self.assertEqual((1, 2, 2), (summary["transponders"], summary["services"], len(summary["bouquets"])))

    def test_the_panel_opens_through_its_descriptor(self):
        self.open()
        self.assertEqual([self.PANEL], self.dialogs())
        screen = self.receiver.session.current_dialog
        self.assertEqual(self.box.root + "/usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel",
                         screen.skin_path)

    def test_opening_is_asked_for_and_done_on_the_main_loop(self):
        self.boot()
        self.receiver.open_panel()
        self.assertEqual(([], True), (self.dialogs(), self.receiver.state()["busy"]))
        self.settle()
        self.assertEqual(1, len(self.dialogs()))

    def test_a_whole_visit(self):
        self.open()
        self.press("down", "ok")
        choice = {"kind": "choice", "title": "Input", "text": "Which?", "choices": ["one", "two"], "selected": 0}
        self.assertEqual([dict(self.PANEL, selected=1), choice], self.dialogs())
        self.press("down")
        self.assertEqual(dict(choice, selected=1), self.dialogs()[1])
        self.press("1")
        self.assertEqual({"kind": "message", "type": "info", "title": "Done", "text": "got 1\n"}, self.dialogs()[1])
        self.assertFalse(self.receiver.state()["closed"])
        self.press("ok")
        self.assertEqual(([], True, False), (self.dialogs(), self.receiver.state()["closed"],
                                             self.receiver.state()["busy"]))
        self.assertIsNone(self.receiver.crashed)

    def test_busy_while_a_command_runs(self):
        self.open()
        self.press("ok")
        self.receiver.press("ok")
        self.run_until(lambda: len(self.dialogs()) == 1)
        self.assertTrue(self.receiver.state()["busy"])
        self.settle()
        self.assertFalse(self.receiver.state()["busy"])

    def test_a_question_shows_its_answers(self):
        self.open()
        self.press("green")
        self.assertEqual({"kind": "message", "type": "yesno", "title": "Question", "text": "Sure?",
                          "choices": ["yes", "no"], "selected": 0}, self.dialogs()[1])

    def check_closes(self, key):
        self.open()
        self.assertFalse(self.receiver.state()["closed"])
        self.press(key)
        self.assertTrue(self.receiver.state()["closed"])

    def test_red_closes_the_panel(self):
        self.check_closes("red")

    def test_exit_closes_the_panel(self):
        self.check_closes("exit")

    def test_keys_pressed_in_one_go_are_delivered_one_by_one(self):
        self.open()
        self.press("green", "down", "exit", "down")
        self.assertEqual([dict(self.PANEL, selected=1)], self.dialogs())

    def test_an_error_in_the_panel_is_a_crash(self):
        self.open()
        self.press("ok")
        self.receiver.press("exit")
        self.crash()
        self.assertEqual("ValueError: no answer", self.receiver.crashed.splitlines()[-1])
        self.assertIn("in answered", self.receiver.crashed)

    def test_a_panel_without_its_module_is_a_crash(self):
        self.boot()
        del sys.modules["Plugins.SystemPlugins.QelPanel.Morvesk"]
        self.receiver.open_panel()
        self.assertEqual("ImportError: No module named Morvesk", self.crash().splitlines()[-1])
        self.assertEqual([], self.dialogs())

    def test_a_panel_that_fails_while_it_is_made_is_a_crash_and_no_dialog(self):
        self.boot()

        def fail(_session, _plugin_path):
            raise KeyError("half made")
        sys.modules["Plugins.SystemPlugins.QelPanel.Morvesk"].Morvesk = fail
        self.receiver.open_panel()
        self.assertEqual("KeyError: 'half made'", self.crash().splitlines()[-1])
        self.assertEqual([], self.dialogs())

    def test_a_key_that_there_is_not(self):
        self.boot()
        with self.assertRaises(ValueError) as caught:
            self.receiver.press("menu")
        self.assertEqual("no key 'menu'; there are: 0 1 2 3 4 5 6 7 8 9 down exit green left ok red right up",
                         str(caught.exception))

    def test_the_state_is_plain_data(self):
        self.open()
        self.press("ok")
        state = self.receiver.state()
        self.assertEqual(state, json.loads(json.dumps(state), object_hook=encoded))

    def test_changes_are_told_after_they_were_made(self):
        self.boot()
        seen = []
        self.receiver.on_change(lambda: seen.append([each["kind"] for each in self.dialogs()]))
        self.receiver.open_panel()
        self.settle()
        self.press("ok")
        self.press("ok")
        self.press("ok")
        self.assertEqual(["screen"], seen[0])
        self.assertIn(["screen", "choice"], seen)
        self.assertIn(["screen", "message"], seen)
        self.assertEqual([], seen[-1])

    def test_texts_are_translated(self):
        self.receiver.boot({"Qel panel": "Bedienfeld"})
        from Components.PluginComponent import plugins
        self.assertEqual(["Bedienfeld"], [each.name for each in plugins.pluginList])


def encoded(mapping):
    """JSON's texts as byte strings again."""
    def bytes_of(value):
        if isinstance(value, unicode):
            return value.encode("utf-8")
        return [bytes_of(each) for each in value] if isinstance(value, list) else value
    return dict((bytes_of(key), bytes_of(value)) for key, value in mapping.items())


if __name__ == "__main__":
    unittest.main()
