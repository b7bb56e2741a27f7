"""A screen: its kind, its hooks, its title, its skin."""

import types
import unittest

import support


class Kind(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from Screens.Screen import GUISkin, Screen
        self.Screen, self.GUISkin = Screen, GUISkin

    def test_a_dict_of_widgets_with_an_old_style_mixin(self):
        self.assertEqual((dict, self.GUISkin), self.Screen.__bases__)
        self.assertIs(type, type(self.Screen))
        self.assertIs(types.ClassType, type(self.GUISkin))

    def test_what_a_new_screen_has(self):
        from Components.Sources.StaticText import StaticText

        class Named(self.Screen):
            pass

        screen = Named(self.session)
        self.assertEqual("Named", screen.skinName)
        self.assertIs(self.session, screen.session)
        for hooks in ("onLayoutFinish", "onShown", "onClose", "onExecBegin", "onExecEnd"):
            self.assertEqual([], getattr(screen, hooks))
        self.assertEqual(["Title", "screen_path"], sorted(screen))
        self.assertIs(StaticText, type(screen["Title"]))
        self.assertIs(StaticText, type(screen["screen_path"]))

    def test_hooks_are_run_at_their_moments_in_order(self):
        calls = []

        class Noting(self.Screen):
            def __init__(self, session):
                super(Noting, self).__init__(session)
                for name in ("onFirstExecBegin", "onExecBegin", "onShown", "onExecEnd", "onClose"):
                    getattr(self, name).append(lambda name=name: calls.append(name))
                self.onLayoutFinish.append(self.laid_out)
                self.onLayoutFinish.append(self.laid_out_too)

            def laid_out(self):
                calls.append("onLayoutFinish")

            def laid_out_too(self):
                calls.append("onLayoutFinish, second")

        screen = self.session.open(Noting)
        opened = ["onLayoutFinish", "onLayoutFinish, second", "onExecBegin", "onFirstExecBegin", "onShown"]
        self.assertEqual(opened, calls)
        self.session.open(self.Screen).close()
        self.settle()
        self.assertEqual(opened + ["onExecEnd", "onExecBegin", "onShown"], calls)
        screen.close()
        self.settle()
        self.assertEqual(["onExecEnd", "onClose"], calls[-2:])

    def test_a_dialog_opened_from_onShown_takes_the_keys(self):
        outer = self

        class Asking(self.Screen):
            def __init__(self, session):
                super(Asking, self).__init__(session)
                self.onShown.append(self.ask)

            def ask(self):
                self.onShown.remove(self.ask)
                outer.session.open(outer.Screen)

        asking = self.session.open(Asking)
        self.assertIsNot(asking, self.session.current_dialog)
        self.assertFalse(asking.execing)


class Hooks(support.SessionCase):
    """The host calls a layout hook only when it is of the type of a bound method."""

    def open_with(self, hook):
        from Screens.Screen import Screen

        class Hooked(Screen):
            laid_out = False

            def __init__(self, session):
                super(Hooked, self).__init__(session)
                self.onLayoutFinish.append(hook(self))

            def finish(self):
                self.laid_out = True

        return self.session.open(Hooked)

    def test_a_bound_method_is_called(self):
        self.assertTrue(self.open_with(lambda screen: screen.finish).laid_out)

    def test_an_instancemethod_made_by_hand_is_called(self):
        def finish(screen):
            screen.laid_out = "by hand"
        bound = lambda screen: types.MethodType(finish, screen, type(screen))
        self.assertEqual("by hand", self.open_with(bound).laid_out)

    def test_source_text_is_executed_with_the_screen_at_hand(self):
        self.assertEqual("text", self.open_with(lambda _: "self.laid_out = 'text'").laid_out)

    def test_a_plain_function_raises(self):
        with self.assertRaises(TypeError) as caught:
            self.open_with(lambda screen: (lambda: screen.finish()))
        self.assertEqual("exec: arg 1 must be a string, file, or code object", str(caught.exception))

    def test_a_method_of_a_compiled_type_raises(self):
        self.assertRaises(TypeError, self.open_with, lambda screen: screen.keys)

    def test_any_other_callable_raises(self):
        import functools
        self.assertRaises(TypeError, self.open_with, lambda screen: functools.partial(screen.finish))


class Title(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        from Screens.Screen import Screen
        self.Screen = Screen

    def test_assignment_goes_through_the_property(self):
        screen = self.Screen(self.session)
        screen.title = "given before layout"
        self.assertNotIn("title", screen.__dict__)
        self.assertEqual(("given before layout", "given before layout"),
                         (screen.title, screen["Title"].text))

    def test_before_and_after_layout_it_reaches_the_window(self):
        class Titled(self.Screen):
            def __init__(self, session):
                super(Titled, self).__init__(session)
                self.title = "early"

        screen = self.session.open(Titled)
        self.assertEqual("early", screen.instance.getTitle())
        screen.title = "assigned"
        self.assertEqual(("assigned", "assigned"), (screen.instance.getTitle(), screen["Title"].text))
        screen.setTitle("set")
        self.assertEqual(("set", "set", "set"),
                         (screen.title, screen.instance.getTitle(), screen["Title"].text))

    def test_the_skin_gives_the_title_of_a_screen_without_one(self):
        class Skinned(self.Screen):
            skin = '<screen title="of the skin"/>'

        screen = self.session.open(Skinned)
        self.assertEqual(("of the skin", "of the skin"), (screen.title, screen.instance.getTitle()))

    def test_the_window_takes_nothing_but_byte_strings(self):
        screen = self.session.open(self.Screen)
        self.assertRaises(TypeError, screen.setTitle, u"unicode")
        self.assertRaises(TypeError, screen.setTitle, None)

    def test_boxes_have_it_too(self):
        from Screens.ChoiceBox import ChoiceBox
        from Screens.MessageBox import MessageBox
        for box in (self.session.open(MessageBox, "text", MessageBox.TYPE_INFO),
                    self.session.open(ChoiceBox, title="question", list=[("one", 1)])):
            box.setTitle("new")
            self.assertEqual(("new", "new"), (box.title, box.instance.getTitle()))


class Skin(support.SessionCase):

    def setUp(self):
        support.SessionCase.setUp(self)
        import skin
        from Components.Label import Label
        from Components.Sources.List import List
        from Components.Sources.StaticText import StaticText
        from Screens.Screen import Screen
        self.skin = skin

        class Show(Screen):
            names = "Show"

            def __init__(self, session):
                super(Show, self).__init__(session)
                self.skinName = self.names
                self["label"] = Label("text")
                self["source"] = StaticText("source text")
                self["list"] = List([])
        self.Show = Show

    def load(self, text, name="skin.xml"):
        self.box.put(name, text)
        self.skin.loadSkin(self.box.config + name)

    def open(self, names="Show"):
        self.Show.names = names
        return self.session.open(self.Show)

    def test_the_names_are_tried_in_order(self):
        self.load('<skin><screen name="B" title="of B"/><screen name="C" title="of C"/></skin>')
        self.assertEqual("of B", self.open(["A", "B", "C"]).title)
        self.assertEqual("of C", self.open("C").title)
        self.assertEqual([], self.box.log)

    def test_a_screen_without_any_skin_is_shown_empty(self):
        screen = self.open(["A", "B"])
        self.assertEqual(["[Skin] no skin for screen A, B"], self.box.log)
        self.assertEqual(([], None), (screen.renderer, screen["label"].instance.getPixmap()
                                      if hasattr(screen["label"].instance, "getPixmap") else None))

    def test_a_later_skin_replaces_screens_of_the_same_name(self):
        self.load('<skin><screen name="A" title="old"/></skin>')
        self.load('<skin><screen name="A" title="new"/></skin>', "other.xml")
        self.assertEqual("new", self.open("A").title)

    def test_sources_and_names_are_shown(self):
        self.load('<skin><screen name="A"><widget source="source" render="Label" position="1,2" size="3,4"/>'
                  '<widget name="label"/></screen></skin>')
        screen = self.open("A")
        self.assertEqual("source text", screen.renderer[0].instance.getText())
        self.assertEqual((1, 2), screen.renderer[0].instance.position())
        self.assertEqual("text", screen["label"].instance.getText())
        screen["source"].text = "another"
        screen["label"].setText("one more")
        self.assertEqual("another", screen.renderer[0].instance.getText())
        self.assertEqual("one more", screen["label"].instance.getText())
        self.assertEqual([], self.box.log)

    def errors(self, widget):
        self.load('<skin><screen name="A">%s<widget name="label"/></screen></skin>' % widget)
        screen = self.open("A")
        self.assertEqual([], screen["label"].skinAttributes, "the rest of the screen is shown")
        return self.box.log

    def test_a_source_that_the_screen_has_not_is_a_skin_error(self):
        self.assertEqual(["[Skin] SKIN ERROR in screen 'A' widget 'widget': "
                          "{skin}: source 'gone' was not found in screen 'A'!"],
                         self.errors('<widget source="gone" render="Label"/>'))

    def test_a_name_that_the_screen_has_not_is_a_skin_error(self):
        self.assertEqual(["[Skin] SKIN ERROR in screen 'A' widget 'widget': "
                          "{skin}: component with name 'gone' was not found in skin of screen 'A'!"],
                         self.errors('<widget name="gone"/>'))

    def test_a_source_must_be_a_source(self):
        self.assertEqual(["[Skin] SKIN ERROR in screen 'A' widget 'widget': "
                          "{skin}: source 'label' of screen 'A' is no source!"],
                         self.errors('<widget source="label" render="Label"/>'))

    def test_a_name_must_be_a_gui_component(self):
        self.assertEqual(["[Skin] SKIN ERROR in screen 'A' widget 'widget': "
                          "{skin}: component with name 'source' of screen 'A' is no GUI component!"],
                         self.errors('<widget name="source"/>'))

    def test_other_errors_of_a_widget(self):
        for widget, error in (
                ("<widget/>", "widget has no name and no source!"),
                ('<widget source="source"/>', "you must define a renderer with render= for source 'source'"),
                ('<widget source="source" render="None1"/>',
                 "no Components.Renderer of the name 'None1': No module named None1"),
                ('<applet type="onShow">pass</applet>', "applet type 'onShow' unknown!")):
            del self.box.log[:]
            self.assertEqual(1, len(self.errors(widget)))
            self.assertTrue(self.box.log[0].endswith("{skin}: " + error), self.box.log)

    def test_an_applet_is_a_layout_hook_in_source_text(self):
        self.load('<skin><screen name="A"><applet type="onLayoutFinish">\nself.title = "by applet"\n'
                  '</applet></screen></skin>')
        self.assertEqual("by applet", self.open("A").title)

    def test_pictures_are_looked_up_in_the_skin_path_of_the_screen(self):
        import os
        import shutil
        folder = self.box.root + "/plugin"
        os.makedirs(folder)
        panel = support.HOST + "/Plugins/SystemPlugins/QelPanel/pictures/"
        shutil.copy(panel + "sockets.png", folder + "/own.png")
        self.load('<skin><screen name="A"><ePixmap pixmap="own.png"/>'
                  '<ePixmap pixmap="icons/error.png"/><ePixmap pixmap="none.png"/></screen></skin>')
        self.Show.skin_path = folder
        screen = self.open("A")
        pictures = [each.instance.getPixmap() for each in screen.additionalWidgets]
        self.assertEqual([folder + "/own.png", support.HOST + "/share/enigma2/icons/error.png"],
                         [each.path for each in pictures[:2]])
        self.assertIsNone(pictures[2])
        self.assertEqual(["[Skin] cannot load picture %s/share/enigma2/none.png" % support.HOST],
                         self.box.log)

    def test_the_panels_skins_offer_the_same_widgets(self):
        for name in ("Morvesk", "Ruskell", "Tollvane"):
            element, _folder = self.skin.dom_screens[name]
            self.assertEqual(["title", "downloadmenu", "key_red", "key_green"],
                             [each.get("source") for each in element.findall("widget")])


if __name__ == "__main__":
    unittest.main()
