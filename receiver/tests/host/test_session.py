"""The stack of dialogs: who may open, who may close, what is called when."""

import unittest

import support


class Stack(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from Screens.Screen import Screen
        self.events = events = []

        class Dialog(Screen):
            def __init__(self, session, name="dialog", title=""):
                Screen.__init__(self, session)
                self.name = name
                self.skinName = "InfoBar"
                self.onClose.append(self.closing)
                self.onExecBegin.append(self.beginning)
                self.onExecEnd.append(self.ending)

            def closing(self):
                events.append(self.name + " destroyed")

            def beginning(self):
                events.append(self.name + " begins")

            def ending(self):
                events.append(self.name + " ends")

        self.Dialog = Dialog

    def called(self, *results):
        self.events.append(results)

    def test_open_returns_the_dialog_at_once_and_it_has_the_keys(self):
        dialog = self.session.open(self.Dialog, "one", title="given")
        self.assertEqual(("one", True, True), (dialog.name, dialog.execing, self.session.in_exec))
        self.assertIs(dialog, self.session.current_dialog)
        self.assertEqual([(self.first, True)], self.session.dialog_stack)
        self.assertFalse(self.first.execing)
        self.assertEqual(["one begins"], self.events)

    def test_the_order_of_opening_is_end_create_lay_out_begin(self):
        events = self.events
        below = self.session.open(self.Dialog, "below")

        class Top(self.Dialog):
            def __init__(self, session):
                events.append("top created")
                super(Top, self).__init__(session, "top")
                self.onLayoutFinish.append(self.laid_out)

            def laid_out(self):
                events.append("top laid out")

            def execBegin(self):
                events.append("top execBegin, open still running: %s" % (self.callback is None))
                super(Top, self).execBegin()

        self.session.openWithCallback(self.called, Top)
        self.assertEqual(["below begins", "below ends", "top created", "top laid out",
                          "top execBegin, open still running: True", "top begins"], events)
        self.assertFalse(below.execing)

    def test_close_is_carried_out_from_the_main_loop(self):
        below = self.session.open(self.Dialog, "below")
        top = self.session.openWithCallback(self.called, self.Dialog, "top")
        del self.events[:]
        top.close(1, "two")
        self.assertEqual(["top ends"], self.events)
        self.assertIs(top, self.session.current_dialog)
        self.assertEqual("top", top.name)
        self.settle()
        self.assertEqual(["top ends", "top destroyed", "below begins", (1, "two")], self.events)
        self.assertIs(below, self.session.current_dialog)
        self.assertTrue(below.execing)

    def test_the_callback_may_open_the_next_dialog(self):
        def open_next(_result):
            self.session.open(self.Dialog, "next")
        top = self.session.openWithCallback(open_next, self.Dialog, "top")
        top.close(None)
        self.settle()
        self.assertEqual("next", self.session.current_dialog.name)
        self.assertEqual([self.first], [dialog for dialog, _ in self.session.dialog_stack])

    def test_a_dialog_opened_without_callback_closes_silently(self):
        self.session.open(self.Dialog, "top").close("unheard")
        self.settle()
        self.assertEqual(["top begins", "top ends", "top destroyed"], self.events)

    def test_open_between_close_and_its_carrying_out_is_refused(self):
        self.session.open(self.Dialog, "below")
        top = self.session.open(self.Dialog, "top")
        top.close()
        with self.assertRaises(RuntimeError) as caught:
            self.session.open(self.Dialog, "too early")
        self.assertEqual("modal open are allowed only from a screen which is modal!",
                         str(caught.exception))
        self.settle()
        self.session.open(self.Dialog, "in time")

    def test_open_while_another_dialog_is_being_made_is_refused(self):
        outer = self

        class Nosy(self.Dialog):
            def __init__(self, session):
                super(Nosy, self).__init__(session)
                self.onLayoutFinish.append(self.ask)

            def ask(self):
                outer.assertRaises(RuntimeError, self.session.open, outer.Dialog)
                outer.events.append("refused")

        self.session.open(Nosy)
        self.assertEqual(["refused", "dialog begins"], self.events)

    def test_only_the_current_dialog_may_close(self):
        below = self.session.open(self.Dialog, "below")
        top = self.session.open(self.Dialog, "top")
        self.assertRaises(AssertionError, self.session.close, below)
        self.assertTrue(top.execing)

    def test_a_close_under_another_dialog_waits_until_that_has_gone(self):
        below = self.session.openWithCallback(self.called, self.Dialog, "below")
        top = self.session.open(self.Dialog, "top")
        below.close("late")
        self.settle()
        self.assertEqual(["below begins", "below ends", "top begins"], self.events)
        del self.events[:]
        top.close()
        self.settle()
        self.assertEqual(["top ends", "top destroyed", "below ends", "below destroyed", ("late",)],
                         self.events)
        self.assertIs(self.first, self.session.current_dialog)
        self.assertTrue(self.first.execing)

    def test_the_callback_of_the_top_dialog_comes_before_the_waiting_close_is_carried_out(self):
        below = self.session.openWithCallback(self.called, self.Dialog, "below")
        top = self.session.openWithCallback(self.called, self.Dialog, "top")
        below.close("of below")
        top.close("of top")
        self.settle()
        self.assertEqual([("of top",), ("of below",)],
                         [event for event in self.events if isinstance(event, tuple)])

    def test_a_second_close_of_a_closing_dialog_is_no_second_pop(self):
        self.session.open(self.Dialog, "below")
        top = self.session.open(self.Dialog, "top")
        top.close()
        top.close()
        self.session.close(top)
        self.assertEqual(["close after exec!"], self.box.log)
        self.settle()
        self.assertEqual("below", self.session.current_dialog.name)

    def test_nothing_is_left_of_a_destroyed_dialog(self):
        from Components.Sources.StaticText import StaticText
        top = self.session.open(self.Dialog, "top")
        text = top["text of its own"] = StaticText("text")
        top.close()
        self.settle()
        self.assertEqual(({}, {}, {}), (top.__dict__, dict(top), text.__dict__))
        self.assertRaises(AttributeError, top.close)
        self.assertRaises(KeyError, lambda: top.title)

    def test_a_dialog_below_is_hidden_and_shown_again(self):
        below = self.session.open(self.Dialog, "below")
        self.assertTrue(below.instance.isVisible())
        top = self.session.open(self.Dialog, "top")
        self.assertFalse(below.instance.isVisible())
        top.close()
        self.settle()
        self.assertTrue(below.instance.isVisible())

    def test_an_error_in_a_callback_is_a_crash_of_the_host(self):
        def fail(_result):
            raise KeyError("lost")
        self.session.openWithCallback(fail, self.Dialog).close(None)
        self.assertEqual("KeyError: 'lost'", self.crash().splitlines()[-1])

    def test_a_callback_must_take_what_the_dialog_closes_with(self):
        self.session.openWithCallback(lambda: None, self.Dialog).close("one too many")
        self.assertIn("takes no arguments (1 given)", self.crash())

    def test_an_instantiated_dialog_outlives_its_close(self):
        dialog = self.session.instantiateDialog(self.Dialog, "kept")
        self.assertIs(self.first, self.session.current_dialog)
        self.session.execDialog(dialog)
        self.assertTrue(dialog.execing)
        dialog.close()
        self.settle()
        self.assertEqual("kept", dialog.name)
        self.session.deleteDialog(dialog)
        self.assertEqual({}, dialog.__dict__)


if __name__ == "__main__":
    unittest.main()
