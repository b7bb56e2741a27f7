"""Keys: contexts, priorities, who gets a key, what an action map returns."""

import unittest

import support


class Keys(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from Components.ActionMap import ActionMap, NumberActionMap
        from enigma import eActionMap, loadKeymap
        from Tools.Directories import SCOPE_SKIN, resolveFilename
        loadKeymap(resolveFilename(SCOPE_SKIN, "keymap.xml"))
        self.ActionMap, self.NumberActionMap = ActionMap, NumberActionMap
        self.actions = eActionMap.getInstance()
        self.calls = []

    def bind(self, contexts, names, prio=0, result=None, tag=""):
        def noting(name):
            def call():
                self.calls.append(tag + name)
                return result
            return call
        bound = self.ActionMap(contexts, dict((name, noting(name)) for name in names), prio)
        bound.execBegin()
        return bound

    def down(self, key):
        return self.actions.keyPressed("KEY_" + key, "m")

    def test_what_the_keys_are_called_in_the_usual_map(self):
        self.bind(["SetupActions"], ["ok", "cancel", "save"])
        for key in ("OK", "ENTER", "EXIT", "RED", "GREEN"):
            self.down(key)
        self.assertEqual(["ok", "ok", "cancel", "cancel", "save"], self.calls)
        del self.calls[:]
        self.bind(["ColorActions"], ["red", "green"], -1)
        self.down("RED")
        self.down("GREEN")
        self.assertEqual(["red", "green"], self.calls)

    def test_a_key_goes_by_priority_then_by_order_of_binding(self):
        self.bind(["SetupActions"], ["ok"], 1, 0, "high ")
        self.bind(["SetupActions"], ["ok"], -1, 0, "low ")
        self.bind(["SetupActions"], ["ok"], 0, 0, "first zero ")
        self.bind(["SetupActions"], ["ok"], 0, 0, "second zero ")
        self.assertEqual(0, self.down("OK"))
        self.assertEqual(["low ok", "first zero ok", "second zero ok", "high ok"], self.calls)

    def test_none_counts_as_handled_and_an_action_that_is_not_there_as_not(self):
        self.bind(["SetupActions"], ["cancel"], -2, tag="other ")
        self.bind(["SetupActions"], ["ok"], -1, tag="takes ")
        self.bind(["SetupActions"], ["ok"], 0, tag="never ")
        self.assertEqual(1, self.down("OK"))
        self.assertEqual(["takes ok"], self.calls)

    def test_any_other_result_is_handed_on(self):
        self.bind(["SetupActions"], ["ok"], 0, 7)
        self.assertEqual(7, self.down("OK"))

    def test_the_contexts_of_one_map_are_asked_in_their_order(self):
        self.bind(["SetupActions", "ColorActions", "DirectionActions"], ["cancel", "red", "green", "ok"], -2)
        self.down("RED")
        self.down("GREEN")
        self.assertEqual(0, self.down("UP"))
        self.assertEqual(["cancel", "green"], self.calls)

    def test_bound_only_while_its_screen_has_the_keys(self):
        bound = self.bind(["SetupActions"], ["ok"])
        bound.execEnd()
        self.assertEqual(0, self.down("OK"))
        bound.execBegin()
        self.down("OK")
        bound.setEnabled(False)
        self.down("OK")
        bound.setEnabled(True)
        self.down("OK")
        self.assertEqual(["ok", "ok"], self.calls)

    def test_a_key_that_went_down_before_a_binding_came_does_not_come_up_in_it(self):
        self.actions.bindKey("Test", "KEY_OK", "mb", "both")
        self.actions.bindKey("Other", "KEY_EXIT", "b", "up")
        self.down("OK")
        seen = []
        self.actions.bindAction("Test", 0, lambda context, action: seen.append((context, action)))
        self.actions.keyPressed("KEY_OK", "b")
        self.assertEqual([], seen)
        self.down("OK")
        self.actions.keyPressed("KEY_OK", "b")
        self.assertEqual([("Test", "both"), ("Test", "both")], seen)

    def test_digits_are_handed_over_as_numbers(self):
        got = []
        bound = self.NumberActionMap(["InputActions", "SetupActions"],
                                     {"1": got.append, "ok": lambda: got.append("ok")})
        bound.execBegin()
        self.down("1")
        self.down("OK")
        self.assertEqual(0, self.down("2"))
        self.assertEqual([1, "ok"], got)

    def test_an_error_in_an_action_leaves_the_key(self):
        bound = self.ActionMap(["SetupActions"], {"ok": lambda: {}["no"]})
        bound.execBegin()
        self.assertRaises(KeyError, self.down, "OK")

    def test_an_unknown_unbinding_is_logged(self):
        self.actions.unbindAction("SetupActions", self.down)
        self.assertEqual(["unbindAction with illegal python reference"], self.box.log)


class ScreenKeys(support.SessionCase):
    """The listbox, not the screen, takes the keys that move its cursor."""

    def setUp(self):
        support.SessionCase.setUp(self)
        from Components.ActionMap import ActionMap
        from Components.Sources.List import List
        from Screens.Screen import Screen
        self.calls = calls = []

        class Panel(Screen):
            def __init__(self, session, actions):
                super(Panel, self).__init__(session)
                self.skinName = "Morvesk"
                self["downloadmenu"] = List([(None, "row %d" % each, "", None, None) for each in range(25)])
                self["shortcuts"] = ActionMap(
                    ["SetupActions", "ColorActions", "DirectionActions"],
                    dict((name, lambda name=name: calls.append(name)) for name in actions), -2)

        self.Panel = Panel

    def test_direction_keys_fall_through_to_the_list(self):
        panel = self.session.open(self.Panel, ["ok", "cancel", "red", "green"])
        rows = panel["downloadmenu"]
        seen = []
        for key in ("DOWN", "DOWN", "UP", "RIGHT", "RIGHT", "LEFT", "UP"):
            self.press(key)
            seen.append(rows.index)
        self.assertEqual([1, 2, 1, 9, 17, 9, 8], seen)
        self.assertEqual([], self.calls)

    def test_the_cursor_stays_within_the_list(self):
        panel = self.session.open(self.Panel, [])
        self.press("UP", "LEFT")
        self.assertEqual(0, panel["downloadmenu"].index)
        self.press(*["RIGHT"] * 5 + ["DOWN"])
        self.assertEqual(24, panel["downloadmenu"].index)

    def test_a_screen_that_takes_a_direction_takes_it_from_the_list(self):
        panel = self.session.open(self.Panel, ["down"])
        self.press("DOWN")
        self.assertEqual((0, ["down"]), (panel["downloadmenu"].index, self.calls))

    def test_neither_list_nor_keys_of_a_dialog_below_are_reached(self):
        from Screens.MessageBox import MessageBox
        panel = self.session.open(self.Panel, ["ok", "red", "green", "cancel"])
        self.session.open(MessageBox, "text", MessageBox.TYPE_INFO)
        self.press("DOWN", "RED", "GREEN")
        self.assertEqual((0, []), (panel["downloadmenu"].index, self.calls))
        self.press("OK")
        self.assertEqual([], self.calls)
        self.press("DOWN", "OK")
        self.assertEqual((1, ["ok"]), (panel["downloadmenu"].index, self.calls))

    def test_a_list_that_cannot_be_seen_takes_no_keys(self):
        from Screens.Screen import Screen
        panel = self.session.open(self.Panel, [])
        self.session.open(Screen)
        self.press("DOWN")
        self.assertEqual(0, panel["downloadmenu"].index)

    def test_the_list_of_a_destroyed_screen_takes_no_keys(self):
        from enigma import eActionMap
        before = len(eActionMap.getInstance()._bindings)
        panel = self.session.open(self.Panel, ["ok"])
        self.assertEqual(before + 4, len(eActionMap.getInstance()._bindings))
        panel.close()
        self.settle()
        self.assertEqual(before, len(eActionMap.getInstance()._bindings))


if __name__ == "__main__":
    unittest.main()
