"""The screen: its construction, its attributes, widgets and keys, the first layout, and the cancel key."""

import StringIO
import sys
import types

import loading
import recording_host
from recording_host import Made, call, loaded, picture, translated

TITLE = "Download services lists"
PLACEHOLDER = (
    None, translated("Please wait ..."), translated(" downloading available service list information"), picture("ntptime.png"), None)
NO_TITLE = 'self["title"] was not found in skin'


class Construction(loading.ModuleCase):
    """The constructor."""

    def make(self, session=None, folder="/the/panel"):
        """A screen as the host makes it."""
        return self.module.Morvesk(session or recording_host.Session(), folder)

    def expected(self, screen, session, folder, title_widget=True):
        """The records of the whole construction."""
        text = Made("StaticText", translated(TITLE))
        actions = {"ok": screen.keyOk, "cancel": screen.keyCancel, "red": screen.keyCancel, "green": screen.keyOk}
        contexts = ["SetupActions", "ColorActions", "DirectionActions"]
        return [
            call("Screen.__init__", screen, session),
            call("set", "skinName", ["Morvesk", "Ruskell", "Tollvane"]),
            call("set", "skin_path", folder),
            call("set", "session", session),
            call("set", "tmp_path", "/tmp/settings"),
            call("set", "mandatory_files", ("bouquets.tv", "bouquets.radio", "lamedb")),
            call("_", TITLE),
            call("set", "title", translated(TITLE)),
            call("StaticText", translated(TITLE)),
        ] + ([call("widget", "title", text)] if title_widget else []) + [
            call("set", "list", []),
            call("_", "Please wait ..."),
            call("_", " downloading available service list information"),
        ] + loaded("ntptime.png") + [
            call("List", [PLACEHOLDER]),
            call("widget", "downloadmenu", Made("List", [PLACEHOLDER])),
            call("_", "Exit"),
            call("StaticText", translated("Exit")),
            call("widget", "key_red", Made("StaticText", translated("Exit"))),
            call("_", "Ok"),
            call("StaticText", translated("Ok")),
            call("widget", "key_green", Made("StaticText", translated("Ok"))),
            call("ActionMap", contexts, actions, -2),
            call("widget", "shortcuts", Made("ActionMap", contexts, actions, -2)),
            call("Console"),
            call("set", "Console", screen.Console),
            call("onLayoutFinish.append", screen.init_vars),
        ]

    def test_every_step_in_order(self):
        session, folder = recording_host.Session(), "/usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel"
        screen = self.make(session, folder)
        self.assertCalls(self.expected(screen, session, folder))

    def test_the_hooks_append_is_looked_up_before_the_hook(self):
        looked_up = []

        class Hooks(list):
            """A hook list that sees look-ups."""

            @property
            def append(self):
                """Found on the class."""
                looked_up.append("append")
                return super(Hooks, self).append

        class Screen(self.module.Morvesk):
            """A screen that sees look-ups and has such a hook list."""

            onLayoutFinish = property(lambda self: self.__dict__.setdefault("hooks", Hooks()), lambda self, value: None)

            @property
            def init_vars(self):
                """Found on the class."""
                looked_up.append("init_vars")

        screen = Screen(recording_host.Session(), "/the/panel")
        self.assertEqual(looked_up, ["append", "init_vars"])
        self.assertEqual(screen.onLayoutFinish, [None])

    def test_attributes(self):
        session, folder = recording_host.Session(), object()
        screen = self.make(session, folder)
        self.assertEqual(screen.skinName, ["Morvesk", "Ruskell", "Tollvane"])
        self.assertIs(type(screen.skinName), list)
        self.assertIs(screen.skin_path, folder)
        self.assertIs(screen.session, session)
        self.assertEqual(screen.tmp_path, "/tmp/settings")
        self.assertEqual(screen.mandatory_files, ("bouquets.tv", "bouquets.radio", "lamedb"))
        self.assertIs(type(screen.mandatory_files), tuple)
        self.assertEqual(screen.title, translated(TITLE))
        self.assertIs(type(screen.Console), recording_host.Console)
        self.assertFalse(hasattr(screen, "messagebox_title"))
        self.assertFalse(hasattr(screen, "dest_dir"))
        self.assertEqual(set(screen.__dict__), set(recording_host.Screen(None).__dict__) | set([
            "skinName", "skin_path", "session", "tmp_path", "mandatory_files", "list", "Console"]))

    def test_the_list_holds_the_placeholder_and_the_widget_the_same_list(self):
        screen = self.make()
        self.assertEqual(screen.list, [PLACEHOLDER])
        self.assertIs(type(screen.list[0]), tuple)
        self.assertIs(screen["downloadmenu"].rows, screen.list)

    def test_each_screen_has_its_own_lists(self):
        one, two = self.make(), self.make()
        for name in ("list", "skinName", "Console"):
            self.assertIsNot(getattr(one, name), getattr(two, name))

    def test_widgets(self):
        screen = self.make()
        self.assertEqual(set(screen), set(["Title", "screen_path", "title", "downloadmenu", "key_red", "key_green", "shortcuts"]))
        self.assertEqual(screen["title"].text, translated(TITLE))
        self.assertEqual(screen["Title"], Made("StaticText", translated(TITLE)))
        self.assertEqual(screen["key_red"].text, translated("Exit"))
        self.assertEqual(screen["key_green"].text, translated("Ok"))

    def test_keys(self):
        screen = self.make()
        shortcuts = screen["shortcuts"]
        self.assertEqual(shortcuts.contexts, ["SetupActions", "ColorActions", "DirectionActions"])
        self.assertEqual(shortcuts.prio, -2)
        self.assertEqual(shortcuts.actions, {
            "ok": screen.keyOk, "green": screen.keyOk, "cancel": screen.keyCancel, "red": screen.keyCancel})
        self.assertEqual(set(type(action) for action in shortcuts.actions.values()), set([types.MethodType]))

    def test_nothing_is_fetched_before_the_layout(self):
        self.make()
        self.assertEqual(self.host.named("open", "urlopen", "ePopen"), [])

    def test_the_title_goes_through_the_property_of_the_host(self):
        class Own(self.module.Morvesk):
            """A screen with a title of its own."""
            title = property(lambda self: "as shown", lambda self, value: recording_host.HOST.note("title set", value))
        screen = Own(recording_host.Session(), "")
        self.assertEqual(self.host.named("title set"), [call("title set", translated(TITLE))])
        self.assertEqual(screen["title"].text, "as shown")

    def test_texts_are_those_of_the_translation(self):
        self.replace(_=lambda text: u"\xfcbersetzt: " + text)
        screen = self.make()
        self.assertEqual(screen.title, u"\xfcbersetzt: Download services lists")
        self.assertEqual(screen.list[0][1:3], (
            u"\xfcbersetzt: Please wait ...", u"\xfcbersetzt:  downloading available service list information"))
        self.assertEqual(screen["key_red"].text, u"\xfcbersetzt: Exit")

    def test_every_other_failure_leaves_the_constructor(self):
        session = recording_host.Session()
        complete = self.expected(self.make(session), session, "/the/panel")
        for index, record in enumerate(complete):
            if record[0] in ("StaticText", "widget") and translated(TITLE) in repr(record):
                continue
            del self.host.calls[:]
            self.host.error, self.host.fail_at = RuntimeError(record[0]), index
            self.assertIs(self.raised(self.make, session), self.host.error)
            self.assertEqual([name for name, _, _ in self.host.calls], [name for name, _, _ in complete[:index + 1]])

    def test_the_hook_is_that_of_the_instance(self):
        class Own(self.module.Morvesk):
            """Overrides what the host calls."""

            def init_vars(self):
                called.append("layout")

            def keyOk(self):
                called.append("ok")

            def keyCancel(self):
                called.append("cancel")
        called = []
        screen = Own(recording_host.Session(), "")
        recording_host.run_layout_hooks(screen)
        for key in ("ok", "green", "cancel", "red"):
            screen["shortcuts"].actions[key]()
        self.assertEqual(called, ["layout", "ok", "ok", "cancel", "cancel"])


class MissingTitle(loading.ModuleCase):
    """A title widget that cannot be made is no reason not to open."""

    def construct(self, stdout):
        """Makes a screen with this standard output."""
        old, sys.stdout = sys.stdout, stdout
        try:
            return self.module.Morvesk(recording_host.Session(), "")
        finally:
            sys.stdout = old

    def refuse(self, error):
        """The host's text source fails for the title."""
        original = recording_host.StaticText

        def text_source(text):
            """Fails for one text."""
            if text == translated(TITLE):
                recording_host.HOST.note("refused", text)
                raise error
            return original(text)
        self.replace(StaticText=text_source)

    def test_the_line_is_printed_once_and_construction_goes_on(self):
        self.refuse(KeyError("title"))
        stdout = StringIO.StringIO()
        screen = self.construct(stdout)
        self.assertEqual(stdout.getvalue(), NO_TITLE + "\n")
        self.assertNotIn("title", screen)
        self.assertEqual(screen.list, [PLACEHOLDER])
        self.assertEqual(screen.onLayoutFinish, [screen.init_vars])
        self.assertEqual([name for name, _, _ in self.host.calls][8:], [
            "refused", "set", "_", "_", "resolveFilename", "LoadPixmap", "List", "widget", "_", "StaticText", "widget", "_",
            "StaticText", "widget", "ActionMap", "widget", "Console", "set", "onLayoutFinish.append"])

    def test_anything_at_all_is_swallowed(self):
        class Old:
            """An old-style exception."""
        for error in (Exception(), KeyboardInterrupt(), SystemExit(1), GeneratorExit(), MemoryError(), Old(), StopIteration()):
            self.refuse(error)
            stdout = StringIO.StringIO()
            self.assertNotIn("title", self.construct(stdout))
            self.assertEqual(stdout.getvalue(), NO_TITLE + "\n")

    def test_a_widget_that_the_screen_refuses(self):
        class Own(self.module.Morvesk):
            """Has no place for a title."""

            def __setitem__(self, key, widget):
                if key == "title":
                    raise KeyError(key)
                dict.__setitem__(self, key, widget)
        self.module.Morvesk, stdout = Own, StringIO.StringIO()
        screen = self.construct(stdout)
        self.assertEqual(stdout.getvalue(), NO_TITLE + "\n")
        self.assertEqual(set(screen), set(["Title", "screen_path", "downloadmenu", "key_green", "key_red", "shortcuts"]))

    def test_a_title_that_cannot_be_read(self):
        class Own(self.module.Morvesk):
            """Its title can only be set."""
            title = property(None, lambda self, value: None)
        self.module.Morvesk, stdout = Own, StringIO.StringIO()
        self.construct(stdout)
        self.assertEqual(stdout.getvalue(), NO_TITLE + "\n")
        self.assertEqual(self.host.named("StaticText")[0], call("StaticText", translated("Exit")))

    def test_a_name_that_is_missing(self):
        del self.module.StaticText
        stdout = StringIO.StringIO()
        try:
            self.construct(stdout)
            self.fail("the other text sources are not guarded")
        except NameError as error:
            self.assertEqual(str(error), "global name 'StaticText' is not defined")
        self.assertEqual(stdout.getvalue(), NO_TITLE + "\n")

    def test_a_title_that_cannot_be_set_is_not_guarded(self):
        class Own(self.module.Morvesk):
            """Its title can only be read."""
            title = property(lambda self: "fixed")
        self.module.Morvesk, stdout = Own, StringIO.StringIO()
        self.assertRaises(AttributeError, self.construct, stdout)
        self.assertEqual(stdout.getvalue(), "")

    def test_the_line_is_written_as_a_print_statement_writes_it(self):
        class Output(object):
            """Notes what is written, and the state of the blank between items."""

            def __init__(self, softspace):
                self.softspace, self.written = softspace, []

            def write(self, text):
                """Notes a piece."""
                self.written.append((text, self.softspace))

        class Bare(object):
            """Knows `write` only, not the state of the blank."""
            __slots__ = ("written",)

            def __init__(self):
                self.written = []

            def write(self, text):
                """Notes a piece."""
                self.written.append(text)

        def reference():
            """The statement itself."""
            print 'self["title"] was not found in skin'
        self.refuse(KeyError("title"))
        for make in (lambda: Output(0), lambda: Output(1), Bare):
            ours, theirs = make(), make()
            self.construct(ours)
            old, sys.stdout = sys.stdout, theirs
            try:
                reference()
            finally:
                sys.stdout = old
            self.assertEqual(ours.written, theirs.written)
            self.assertEqual(getattr(ours, "softspace", None), getattr(theirs, "softspace", None))

    def test_a_standard_output_that_fails(self):
        class Failing(object):
            """Cannot be written."""

            def write(self, text):
                """Fails."""
                raise error
        error = IOError("no space left")
        self.refuse(KeyError("title"))
        self.assertIs(self.raised(self.construct, Failing()), error)
        self.assertEqual(type(self.raised(self.construct, None)), AttributeError)
        old = sys.stdout
        del sys.stdout
        try:
            self.module.Morvesk(recording_host.Session(), "")
            self.fail("nothing raised")
        except RuntimeError as got:
            sys.stdout = old
            self.assertEqual(str(got), "lost sys.stdout")
        finally:
            sys.stdout = old

    def test_a_real_file(self):
        self.refuse(KeyError("title"))
        with open(self.host.real("/output"), "w") as stream:
            stream.write("before:")
            self.construct(stream)
        self.assertEqual(self.host.read("/output"), "before:" + NO_TITLE + "\n")

    def test_with_a_title_nothing_is_printed(self):
        stdout = StringIO.StringIO()
        self.assertIn("title", self.construct(stdout))
        self.assertEqual(stdout.getvalue(), "")


class Layout(loading.ModuleCase):
    """The first layout."""

    def test_the_hook_runs_as_the_host_runs_it(self):
        screen = self.screen()
        del screen.__dict__["messagebox_title"]
        self.replace(parse_download_file=loading.Journal("parse_download_file", (0, [])))
        recording_host.run_layout_hooks(screen)
        self.assertCalls([
            call("_", TITLE), call("set", "messagebox_title", translated(TITLE)), call("set", "list", []),
            call("parse_download_file"), call("setList", [])])
        self.assertEqual(screen.messagebox_title, translated(TITLE))

    def test_init_vars_calls_the_instance_s_get_service_lists(self):
        screen = self.screen(getServiceLists=loading.Journal("getServiceLists", "a result"))
        self.assertIsNone(screen.init_vars())
        self.assertCalls([call("_", TITLE), call("set", "messagebox_title", translated(TITLE)), call("getServiceLists")])

    def test_the_title_is_translated_afresh(self):
        screen = self.screen(getServiceLists=loading.Journal("getServiceLists"))
        for language in ("de: ", "fr: "):
            self.replace(_=lambda text: language + text)
            screen.init_vars()
            self.assertEqual(screen.messagebox_title, language + TITLE)


class Cancel(loading.ModuleCase):
    """The cancel and red keys."""

    def test_nothing_runs(self):
        screen = self.screen()
        self.assertIsNone(screen.keyCancel())
        self.assertCalls([call("close", None)])

    def test_no_runner(self):
        screen = self.screen(Console=None)
        screen.keyCancel()
        self.assertCalls([call("close", None)])

    def test_every_command_is_killed_once_before_the_screen_closes(self):
        screen = self.screen()
        screen.Console.appContainers.update(dict((name, object()) for name in ("tar", "cp", "rm", "sh@1")))
        order = list(screen.Console.appContainers)
        screen.keyCancel()
        self.assertCalls([call("kill", name) for name in order] + [call("close", None)])
        self.assertEqual(screen.Console.appContainers, {})

    def test_a_host_whose_kill_leaves_the_entry(self):
        screen = self.screen()
        screen.Console.appContainers.update(one=1, two=2)
        screen.Console.kill = loading.Journal("kill")
        order = list(screen.Console.appContainers)
        screen.keyCancel()
        self.assertCalls([call("kill", name) for name in order] + [call("close", None)])

    def test_a_host_whose_kill_starts_something(self):
        screen = self.screen()
        containers = screen.Console.appContainers
        containers.update(one=1, two=2)
        order = list(containers)

        def kill(name):
            """Forgets all and registers others."""
            self.host.note("kill", name)
            containers.clear()
            containers.update(dict((str(index), index) for index in range(100)))
        screen.Console.kill = kill
        screen.keyCancel()
        self.assertCalls([call("kill", name) for name in order] + [call("close", None)])

    def test_names_of_any_kind(self):
        screen = self.screen()
        names = [u"\u20ac", "\0", "", "/bin/tar -xzf", 5]
        for name in names:
            screen.Console.appContainers.clear()
            screen.Console.appContainers[name] = None
            del self.host.calls[:]
            screen.keyCancel()
            self.assertCalls([call("kill", name), call("close", None)])

    def test_a_dict_of_another_kind(self):
        class Commands(dict):
            """A dict of a host's own."""
        screen = self.screen()
        screen.Console.appContainers = Commands(one=1)
        screen.keyCancel()
        self.assertCalls([call("kill", "one"), call("close", None)])

    def test_an_error_from_kill_leaves_the_screen_open(self):
        screen = self.screen()
        screen.Console.appContainers.update(one=1, two=2)
        self.host.failures["kill"] = OSError("no such process")
        self.assertIs(self.raised(screen.keyCancel), self.host.failures["kill"])
        self.assertEqual(len(self.host.calls), 1)

    def test_close_and_runner_are_those_of_the_instance(self):
        runner = recording_host.Console()
        runner.appContainers["one"] = 1
        screen = self.screen(Console=runner, close=loading.Journal("own close"))
        screen.keyCancel()
        self.assertCalls([call("kill", "one"), call("own close", None)])


if __name__ == "__main__":
    loading.main()
