"""The module's surface: its load, its namespace, its functions and its class, as an import and the host see them."""

import __builtin__
import StringIO
import os
import struct
import subprocess
import sys
import types
import unittest

import loading
import recording_host
from loading import compiled_only

# Module, names taken from it, in the order of the statements; no names: a plain import.
IMPORTS = (
    ("Components.Label", ("Label",)),
    ("Components.ActionMap", ("ActionMap",)),
    ("Components.GUIComponent", ("GUIComponent",)),
    ("Components.Sources.StaticText", ("StaticText",)),
    ("Components.Pixmap", ("Pixmap",)),
    ("Components.MenuList", ("MenuList",)),
    ("Components.Console", ("Console",)),
    ("Components.Sources.List", ("List",)),
    ("Screens.Screen", ("Screen",)),
    ("Screens.MessageBox", ("MessageBox",)),
    ("Screens.ChoiceBox", ("ChoiceBox",)),
    ("Tools.Directories", ("*",)),
    ("Tools.LoadPixmap", ("LoadPixmap",)),
    ("skin", ("loadSkin",)),
    ("urllib2", None),
    ("datetime", None),
    ("time", None),
    ("shutil", None),
    ("os", None),
    ("enigma", ("eServiceReference", "eServiceCenter", "eDVBDB")),
    ("ServiceReference", ("ServiceReference",)),
    ("Screens.InfoBar", ("InfoBar",)),
    ("Components.NimManager", ("nimmanager",)),
)
STAR = 11
SCREEN = 8

FUNCTIONS = ("base_url", "info_url", "download_settings", "parse_download_file")
METHODS = (
    "__init__", "init_vars", "getServiceLists", "keyOk", "download_finished", "untar_finished", "installNewFavourites",
    "copy_finished", "mergeNewFavourites", "writeBouquetFiles", "reload_settings", "keyCancel")


def statement(row):
    """The import statement of a row."""
    name, names = IMPORTS[row]
    if names is None:
        return "import " + name
    return "from %s import %s" % (name, ", ".join(names).replace("Console", "Console as ComConsole"))


def execute(source, **namespace):
    """Runs source text as the module of that name would; gives its namespace."""
    namespace.update(__name__="Morvesk", __builtins__=__builtin__)
    exec(compile(source, "Morvesk.py", "exec"), namespace)
    return namespace


def outcome(function, *arguments, **keywords):
    """Type and text of what a call raises."""
    try:
        function(*arguments, **keywords)
    except BaseException as error:
        return type(error), str(error)
    return None


class ImportRecorder(object):
    """Stands for the interpreter's `__import__`: notes the module's imports, answers some of them itself."""

    def __init__(self):
        self.original = __builtin__.__import__
        self.calls = []
        self.answers = {}

    def __call__(self, *arguments, **keywords):
        ours = len(arguments) > 1 and arguments[1] and arguments[1].get("__name__") == "Morvesk"
        if not ours:
            return self.original(*arguments, **keywords)
        self.calls.append((arguments, keywords))
        if arguments[0] in self.answers:
            answer = self.answers[arguments[0]]
            if isinstance(answer, BaseException):
                raise answer
            return answer
        return self.original(*arguments, **keywords)

    def names(self):
        """The imported modules."""
        return [arguments[0] for arguments, _ in self.calls]


class SurfaceCase(unittest.TestCase):
    """A test with a fresh host layer to load the module on."""

    maxDiff = None

    def setUp(self):
        recording_host.HOST.reset()
        self.layer = recording_host.layer()
        self.standard = dict((name, sys.modules[name]) for name, names in IMPORTS if names is None)
        recording_host.install(self.layer)

    def tearDown(self):
        sys.modules.update(self.standard)
        loading.forget("Morvesk", *self.layer)

    def recorded_load(self, answers={}, opener=open):
        """Loads with a recorded `__import__`; gives the recorder and the module or the exception."""
        recorder = ImportRecorder()
        recorder.answers = answers
        loading.forget("Morvesk")
        with loading.search_path(loading.fresh_folder()):
            with loading.builtin("__import__", recorder), loading.builtin("open", opener):
                try:
                    return recorder, recorder.original("Morvesk")
                except BaseException as error:
                    return recorder, error


class Imports(SurfaceCase):
    """The import statements of the load."""

    def test_the_statements_in_order_with_the_arguments_of_the_statement(self):
        recorder, module = self.recorded_load()
        namespace = vars(module)
        self.assertEqual([(arguments[0], arguments[3]) for arguments, _ in recorder.calls], list(IMPORTS))
        for arguments, keywords in recorder.calls:
            self.assertEqual((len(arguments), keywords), (4, {}), arguments[0])
            self.assertIs(arguments[1], namespace)
            self.assertIs(arguments[2], namespace)
            self.assertIs(type(arguments[0]), str)
            self.assertIn(type(arguments[3]), (tuple, types.NoneType))

    def test_every_name_is_bound_to_what_its_module_holds(self):
        module = loading.load()
        for row, (name, names) in enumerate(IMPORTS):
            for wanted in [] if row == STAR else names or [name]:
                bound = {"Console": "ComConsole"}.get(wanted, wanted) if names else wanted
                expected = getattr(sys.modules[name], wanted) if names else sys.modules[name]
                self.assertIs(getattr(module, bound), expected, bound)

    def test_the_namespace_holds_nothing_else(self):
        module = loading.load()
        expected = set(FUNCTIONS + ("Morvesk", "__name__", "__doc__", "__package__", "__file__"))
        for row, (name, names) in enumerate(IMPORTS):
            expected.update([] if row == STAR else names or [name])
        expected.update(name for name in vars(self.layer["Tools.Directories"]) if not name.startswith("_"))
        expected.discard("Console")
        expected.add("ComConsole")
        self.assertEqual(set(vars(module)) - set(["__builtins__"]), expected)

    def test_binds_what_import_answers(self):
        class Answer(object):
            """Any object can answer for a module."""
        answer, plain = Answer(), Answer()
        answer.Label = object()
        module = self.recorded_load(answers={"Components.Label": answer, "urllib2": plain})[1]
        self.assertIs(module.Label, answer.Label)
        self.assertIs(module.urllib2, plain)

    def test_the_load_uses_nothing_that_it_binds(self):
        loading.load()
        self.assertEqual(recording_host.HOST.calls, [])

    def failing(self, row, break_it):
        """Loads on a broken layer; checks the whole outcome against the statement's."""
        break_it()
        expected = outcome(execute, statement(row))
        recorder, error = self.recorded_load()
        self.assertIsNotNone(expected, statement(row))
        self.assertEqual((type(error), str(error)), expected, statement(row))
        self.assertEqual(recorder.names(), [name for name, _ in IMPORTS[:row + 1]])
        self.assertNotIn("Morvesk", sys.modules)

    def test_a_missing_module_ends_the_load_there(self):
        for row, (name, _) in enumerate(IMPORTS):
            old = sys.modules[name]
            self.failing(row, lambda: sys.modules.update({name: None}))
            self.assertIn("No module named", str(self.recorded_load()[1]))
            sys.modules[name] = old
        self.assertEqual(loading.load().__name__, "Morvesk")

    def test_a_missing_name_ends_the_load_there(self):
        for row, (name, names) in enumerate(IMPORTS):
            for missing in [] if row == STAR else names or []:
                old = getattr(sys.modules[name], missing)
                self.failing(row, lambda: delattr(sys.modules[name], missing))
                self.assertEqual(str(self.recorded_load()[1]), "cannot import name " + missing)
                setattr(sys.modules[name], missing, old)
        self.assertEqual(loading.load().__name__, "Morvesk")

    def test_names_of_one_statement_are_taken_in_its_order(self):
        class Enigma(object):
            """Notes which names are asked for."""

            def __init__(self):
                self.asked = []

            def __getattr__(self, name):
                self.asked.append(name)
                return recording_host.Unused
        enigma = Enigma()
        module = self.recorded_load(answers={"enigma": enigma})[1]
        self.assertEqual(enigma.asked, ["eServiceReference", "eServiceCenter", "eDVBDB"])
        self.assertIs(module.eDVBDB, recording_host.Unused)

    def test_the_very_exception_of_an_import_comes_out(self):
        for error in (ImportError("No module named elsewhere"), KeyError("x"), SystemExit(3), KeyboardInterrupt()):
            for name, _ in IMPORTS:
                recorder, got = self.recorded_load(answers={name: error})
                self.assertIs(got, error)
                self.assertEqual(recorder.names()[-1], name)
                self.assertNotIn("Morvesk", sys.modules)

    def test_only_an_attribute_error_becomes_an_import_error(self):
        class Refusing(object):
            """Refuses every attribute with a set error."""

            def __getattr__(self, name):
                raise self.__dict__["error"]

        class Missing(AttributeError):
            """A kind of attribute error."""
        refusing = Refusing()
        for error, expected in ((KeyError("x"), None), (Missing("x"), "cannot import name Label")):
            refusing.error = error
            got = self.recorded_load(answers={"Components.Label": refusing})[1]
            if expected is None:
                self.assertIs(got, error)
            else:
                self.assertEqual((type(got), str(got)), (ImportError, expected))

    def test_without_an_import_function(self):
        expected = []
        original = __builtin__.__import__
        # The import that loads the module is not looked up among the built-ins, only those that it makes are.
        with loading.search_path(loading.fresh_folder()):
            with loading.builtin("__import__", None):
                try:
                    original("Morvesk")
                except ImportError as error:
                    expected.append(str(error))
        self.assertEqual(expected, ["__import__ not found"])


class StarImport(SurfaceCase):
    """The statement that takes every public name."""

    def compare(self, **members):
        """Loads with these members in Tools.Directories; compares the names with those that the statement binds."""
        directories = recording_host.module("Tools.Directories", **members)
        sys.modules["Tools.Directories"] = directories
        sys.modules["Tools"].Directories = directories
        try:
            expected = execute(statement(STAR))
        except BaseException as error:
            got = self.recorded_load()[1]
            self.assertEqual((type(got), str(got)), (type(error), str(error)))
            return None
        module = loading.load()
        del expected["__builtins__"], expected["__name__"]
        for name in expected:
            self.assertIs(getattr(module, name), expected[name], name)
        hidden = set(members) - set(expected) - set(["__all__"])
        self.assertEqual([name for name in hidden if hasattr(module, name)], [])
        return module

    def test_every_public_name_without_all(self):
        module = self.compare(alpha=object(), _beta=object(), gamma_=object(), __delta=object())
        self.assertTrue(hasattr(module, "alpha") and hasattr(module, "gamma_"))
        self.assertFalse(hasattr(module, "_beta") or hasattr(module, "__delta"))

    def test_the_names_of_all(self):
        module = self.compare(alpha=object(), _beta=object(), gamma=object(), __all__=["_beta", "gamma"])
        self.assertTrue(hasattr(module, "_beta") and hasattr(module, "gamma"))
        self.assertFalse(hasattr(module, "alpha"))

    def test_all_may_be_a_tuple_and_empty(self):
        self.compare(alpha=object(), beta=object(), __all__=("beta",))
        self.compare(alpha=object(), __all__=[])

    def test_all_may_be_any_sequence(self):
        class Names(object):
            """Knows indexes only."""

            def __getitem__(self, index):
                return ("beta", "alpha")[index]
        self.compare(alpha=object(), beta=object(), gamma=object(), __all__=Names())

    def test_all_that_names_something_missing(self):
        self.compare(alpha=object(), __all__=["alpha", "omega"])

    def test_all_that_is_no_sequence(self):
        self.compare(alpha=object(), __all__=5)

    def test_all_that_fails_at_an_index(self):
        class Names(object):
            """Fails at the second name."""

            def __getitem__(self, index):
                if index == 1:
                    raise ValueError("no more")
                return "alpha"
        self.compare(alpha=object(), __all__=Names())

    def test_an_answer_with_neither_all_nor_dict(self):
        class Bare(object):
            """Has no dict."""
            __slots__ = ()
        bare = Bare()
        sys.modules["Tools.Directories"] = bare
        expected = outcome(execute, statement(STAR))
        self.assertEqual(expected[0], ImportError)
        got = self.recorded_load()[1]
        self.assertEqual((type(got), str(got)), expected)

    def test_an_object_with_a_dict_that_is_no_module(self):
        class Holder(object):
            """Has a dict."""
        holder = Holder()
        holder.alpha, holder._beta = object(), object()
        sys.modules["Tools.Directories"] = holder
        module = loading.load()
        self.assertIs(module.alpha, holder.alpha)
        self.assertFalse(hasattr(module, "_beta"))

    def test_a_later_row_wins_over_a_star_name_and_a_star_name_over_an_earlier_row(self):
        class OtherScreen(dict):
            """A screen from elsewhere."""
        other = dict((name, object()) for name in (
            "Label", "List", "ComConsole", "os", "urllib2", "LoadPixmap", "loadSkin", "InfoBar", "eDVBDB", "base_url", "Morvesk"))
        vars(self.layer["Tools.Directories"]).update(other, Screen=OtherScreen)
        module = loading.load()
        for name in ("Label", "List", "ComConsole"):
            self.assertIs(getattr(module, name), other[name], name)
        for name in ("os", "urllib2", "LoadPixmap", "loadSkin", "InfoBar", "eDVBDB", "base_url", "Morvesk"):
            self.assertIsNot(getattr(module, name), other[name], name)
        self.assertIs(module.os, os)
        self.assertEqual(module.Morvesk.__bases__, (OtherScreen,))


class Builtins(SurfaceCase):
    """What the module finds among the built-ins, and when."""

    @compiled_only
    def test_without_open_the_load_fails_before_any_import(self):
        recorder, error = self.recorded_load(opener=None)
        self.assertEqual((type(error), str(error)), (NameError, "name 'open' is not defined"))
        self.assertEqual(recorder.names(), [])
        self.assertNotIn("Morvesk", sys.modules)
        self.assertEqual(loading.load().__name__, "Morvesk")

    @compiled_only
    def test_open_is_looked_up_once_at_load(self):
        opened = []

        def other(path, mode):
            """Notes what is opened."""
            opened.append((path, mode))
            raise IOError("enough")
        vars(self.layer["Tools.Directories"]).update(open="not a function")
        module = loading.load(other)
        self.assertEqual(module.open, "not a function")
        self.assertEqual(outcome(module.base_url), (IOError, "enough"))
        self.assertEqual(opened, [("/etc/opkg/all-feed.conf", "r")])

    def test_translation_is_found_in_the_namespace_then_among_the_builtins_each_time(self):
        module = loading.load()
        module.parse_download_file = lambda: (1, None)
        screen = module.Morvesk(recording_host.Session(), "")

        def title():
            """The title that a translation gives now."""
            module.Morvesk.init_vars(screen)
            return screen.messagebox_title
        self.assertEqual(title(), "[Download services lists]")
        with loading.builtin("_", lambda text: "built-in " + text):
            self.assertEqual(title(), "built-in Download services lists")
            module._ = lambda text: "own " + text
            self.assertEqual(title(), "own Download services lists")
            del module._
            self.assertEqual(title(), "built-in Download services lists")
        self.assertEqual(title(), "[Download services lists]")
        with loading.builtin("_", None):
            self.assertEqual(outcome(title), (NameError, "global name '_' is not defined"))


class FailedLoad(SurfaceCase):
    """A load that fails leaves nothing behind."""

    def test_leaves_a_traceback_entry_that_names_the_module(self):
        for name in ("Components.Label", "os", "Components.NimManager"):
            old = sys.modules[name]
            sys.modules[name] = None
            try:
                loading.load()
                self.fail("loaded")
            except ImportError:
                entry = sys.exc_info()[2]
            finally:
                sys.modules[name] = old
            while entry.tb_next is not None:
                entry = entry.tb_next
            code = entry.tb_frame.f_code
            self.assertIn("Morvesk", os.path.basename(code.co_filename) + " " + code.co_name)
            self.assertGreater(entry.tb_lineno, 0)

    def test_a_reload_that_fails_leaves_the_living_module_alone(self):
        module = sys.modules["Morvesk"] = loading.load()
        names = set(vars(module))
        load_skin = sys.modules["skin"].__dict__.pop("loadSkin")
        try:
            with loading.search_path(loading.fresh_folder()):
                self.assertRaises(ImportError, reload, module)
        finally:
            sys.modules["skin"].loadSkin = load_skin
        self.assertIs(sys.modules["Morvesk"], module)
        self.assertLessEqual(names, set(vars(module)))
        self.assertIsNotNone(module.parse_download_file)

    def test_the_next_import_of_the_same_file_works(self):
        with loading.search_path(loading.fresh_folder()):
            for missing in ("Components.Label", "Tools.Directories", "Components.NimManager"):
                old = sys.modules.pop(missing)
                sys.modules[missing] = None
                for _ in range(2):
                    self.assertEqual(outcome(__import__, "Morvesk")[0], ImportError)
                    self.assertNotIn("Morvesk", sys.modules)
                sys.modules[missing] = old
            module = __import__("Morvesk")
            self.assertIs(sys.modules["Morvesk"], module)
            self.assertTrue(issubclass(module.Morvesk, recording_host.Screen))
            self.assertIs(__import__("Morvesk"), module)

    def test_a_failing_class_statement(self):
        class Refusing(type):
            """Makes one class only."""

            def __new__(mcs, name, bases, members):
                if name == "Morvesk":
                    raise error
                return type.__new__(mcs, name, bases, members)
        error = KeyError("no such class")
        self.layer["Screens.Screen"].Screen = Refusing("Screen", (dict,), {})
        self.assertIs(self.recorded_load()[1], error)
        self.assertNotIn("Morvesk", sys.modules)

    def test_a_base_that_is_no_class(self):
        for base in (5, "Screen", None, types.ModuleType("Screen"), object(), os):
            self.layer["Screens.Screen"].Screen = base
            expected = outcome(execute, "class Morvesk(Screen):\n    def keyOk(self): pass\n", Screen=base)
            got = self.recorded_load()[1]
            self.assertEqual((type(got), str(got)), expected)
            self.assertNotIn("Morvesk", sys.modules)


class Module(SurfaceCase):
    """The module object, on top and in a package."""

    def test_name_and_no_documentation(self):
        module = loading.load()
        self.assertEqual(module.__name__, "Morvesk")
        self.assertIsNone(module.__doc__)
        self.assertIs(type(module), types.ModuleType)

    def test_functions(self):
        module = loading.load()
        for name in FUNCTIONS:
            function = getattr(module, name)
            self.assertTrue(callable(function))
            self.assertEqual(function.__name__, name)
            self.assertNotIsInstance(function, types.MethodType)

    def test_as_a_submodule_of_the_panel(self):
        folder = loading.fresh_folder()
        package = os.path.join(folder, "Plugins", "SystemPlugins", "QelPanel")
        loading.place(package)
        for depth in (package, os.path.dirname(package), os.path.dirname(os.path.dirname(package))):
            open(os.path.join(depth, "__init__.py"), "w").close()
        qualified = "Plugins.SystemPlugins.QelPanel.Morvesk"
        with loading.search_path(folder):
            try:
                old, sys.modules["skin"] = sys.modules["skin"], None
                self.assertEqual(outcome(__import__, qualified)[0], ImportError)
                self.assertNotIn(qualified, sys.modules)
                self.assertFalse(hasattr(sys.modules["Plugins.SystemPlugins.QelPanel"], "Morvesk"))
                sys.modules["skin"] = old
                __import__(qualified)
                module = sys.modules[qualified]
                self.assertEqual(module.__name__, qualified)
                self.assertEqual(module.Morvesk.__module__, qualified)
                self.assertIs(sys.modules["Plugins.SystemPlugins.QelPanel"].Morvesk, module)
                self.assertNotIn("Morvesk", sys.modules)
                self.assertIs(module.urllib2, sys.modules["urllib2"])
                self.assertIs(module.List, recording_host.List)
                screen = module.Morvesk(recording_host.Session(), "")
                self.assertEqual(screen.tmp_path, "/tmp/settings")
            finally:
                loading.forget(*[name for name in sys.modules if name.startswith("Plugins")])

    def test_a_neighbour_in_the_package_is_preferred_as_by_the_statement(self):
        folder = loading.fresh_folder()
        package = os.path.join(folder, "panel")
        loading.place(package)
        open(os.path.join(package, "__init__.py"), "w").close()
        with open(os.path.join(package, "skin.py"), "w") as stream:
            stream.write("loadSkin = 'the neighbour'\n")
        with loading.search_path(folder):
            try:
                __import__("panel.Morvesk")
                self.assertEqual(sys.modules["panel.Morvesk"].loadSkin, "the neighbour")
            finally:
                loading.forget(*[name for name in sys.modules if name.startswith("panel")])


class OldStyleScreen:
    """A screen of a host that never made it a new-style class."""

    def __init__(self, session):
        self.session, self.widgets, self.onLayoutFinish = session, {}, []

    def __setitem__(self, key, widget):
        self.widgets[key] = widget


class Class(SurfaceCase):
    """The screen class, as a class statement makes it."""

    def test_bases_and_resolution_order(self):
        module = loading.load()
        cls = module.Morvesk
        self.assertEqual(cls.__name__, "Morvesk")
        self.assertEqual(cls.__module__, "Morvesk")
        self.assertEqual(cls.__bases__, (recording_host.Screen,))
        self.assertEqual(cls.__mro__[:2], (cls, recording_host.Screen))
        self.assertEqual(cls.__mro__[1:], recording_host.Screen.__mro__)
        self.assertIs(type(cls), type)

    def test_what_the_class_holds_can_be_called_from_its_dict(self):
        """As a decorator or a host's metaclass does that wraps the methods of a class."""
        for base in (recording_host.Screen, OldStyleScreen):
            sys.modules["Screens.Screen"].Screen = base
            module = loading.load()
            closed = []
            screen = module.Morvesk(recording_host.Session(), "")
            screen.close = closed.append
            vars(module.Morvesk)["keyCancel"](screen)
            self.assertEqual(closed, [None])
            wrapped = type(base)("Wrapped", (base,), {
                "keyCancel": lambda self, method=vars(module.Morvesk)["keyCancel"]: method(self)})
            self.assertEqual(wrapped.__mro__[1] if hasattr(wrapped, "__mro__") else base, base)

    def test_a_metaclass_that_fails_is_seen_in_the_traceback(self):
        class Meta(type):
            def __new__(mcs, name, bases, body):
                return type.__new__(mcs, name, (int, str) if name == "Morvesk" else bases, body)
        sys.modules["Screens.Screen"].Screen = Meta("Screen", (dict,), {})
        try:
            loading.load()
            self.fail("loaded")
        except TypeError as error:
            self.assertEqual(str(error), "Error when calling the metaclass bases\n    "
                             "multiple bases have instance lay-out conflict")
            entry = sys.exc_info()[2]
        while entry.tb_next is not None:
            entry = entry.tb_next
        self.assertEqual(entry.tb_frame.f_code.co_name, "__new__")

    def test_no_attributes_besides_the_methods(self):
        class Morvesk(recording_host.Screen):
            pass
        module = loading.load()
        self.assertEqual(set(vars(module.Morvesk)), set(vars(Morvesk)) | set(METHODS))
        self.assertIsNone(module.Morvesk.__doc__)

    def test_made_by_the_metaclass_of_the_base(self):
        made = []

        class Meta(type):
            """Notes the classes that it makes."""

            def __new__(mcs, name, bases, members):
                if name == "Morvesk":
                    made.append((name, bases, dict(members), dict(sys.modules["Morvesk"].__dict__)))
                return type.__new__(mcs, name, bases, members)
        base = self.layer["Screens.Screen"].Screen = Meta("Screen", (recording_host.Screen,), {})
        module = loading.load()
        self.assertIs(type(module.Morvesk), Meta)
        (name, bases, members, namespace), = made
        self.assertEqual((name, bases), ("Morvesk", (base,)))
        self.assertIs(type(name), str)
        self.assertEqual(set(members), set(METHODS + ("__module__",)))
        self.assertEqual(members["__module__"], "Morvesk")
        for function in FUNCTIONS:
            self.assertIs(namespace[function], getattr(module, function))
        self.assertNotIn("Morvesk", namespace)

    def test_a_callable_class_attribute_of_the_base_makes_the_class(self):
        class Weird(object):
            """Not a class, yet its class takes name, bases and dict."""

            def __init__(self, *arguments):
                self.arguments = arguments
        base = self.layer["Screens.Screen"].Screen = Weird()
        module = loading.load()
        self.assertIs(type(module.Morvesk), Weird)
        name, bases, members = module.Morvesk.arguments
        self.assertEqual((name, bases, set(members)), ("Morvesk", (base,), set(METHODS + ("__module__",))))

    def test_an_old_style_base(self):
        class Old:
            """An old-style screen."""
        self.layer["Screens.Screen"].Screen = Old
        module = loading.load()
        self.assertIs(type(module.Morvesk), types.ClassType)
        self.assertEqual(module.Morvesk.__bases__, (Old,))
        self.assertIs(type(module.Morvesk.keyOk), types.MethodType)

    def test_methods_are_the_interpreter_s_own_kind(self):
        module = loading.load()
        screen = module.Morvesk(recording_host.Session(), "")
        for name in METHODS:
            for owner, instance in ((module.Morvesk, None), (screen, screen)):
                method = getattr(owner, name)
                self.assertIs(type(method), types.MethodType, name)
                self.assertIs(method.im_self, instance, name)
                self.assertIs(method.im_class, module.Morvesk, name)
                self.assertEqual(method.__name__, name)
            self.assertEqual(getattr(screen, name), getattr(screen, name))

    def test_methods_of_a_subclass(self):
        module = loading.load()

        class Own(module.Morvesk):
            """A screen made in Python over ours."""

            def init_vars(self):
                return "own"
        screen = Own(recording_host.Session(), "")
        for name in METHODS:
            self.assertIs(type(getattr(screen, name)), types.MethodType, name)
            self.assertIs(getattr(screen, name).im_class, Own)
            self.assertIs(getattr(screen, name).im_self, screen)
        self.assertEqual(screen.onLayoutFinish, [screen.init_vars])
        self.assertEqual(screen.onLayoutFinish[0](), "own")
        self.assertEqual(screen.__class__.__mro__[:3], (Own, module.Morvesk, recording_host.Screen))

    def test_a_method_taken_from_the_class_wants_an_instance(self):
        module = loading.load()
        screen = module.Morvesk(recording_host.Session(), "")
        self.assertTrue(module.Morvesk.reload_settings(screen))
        self.assertEqual(outcome(module.Morvesk.reload_settings, 5), (TypeError, (
            "unbound method reload_settings() must be called with Morvesk instance as first argument "
            "(got int instance instead)")))


class Names(SurfaceCase):
    """Names are looked up when they are used."""

    # Names of the namespace, a call that needs them, and what else is replaced for it.
    NEEDS = (
        (("base_url",), lambda module, screen: module.info_url(), {}),
        (("base_url", "urllib2"), lambda module, screen: module.download_settings("", "/tmp"), {}),
        (("info_url", "urllib2"), lambda module, screen: module.parse_download_file(), {}),
        (("Screen", "StaticText", "List", "ActionMap", "ComConsole", "LoadPixmap", "resolveFilename", "SCOPE_PLUGINS"),
         lambda module, screen: module.Morvesk(None, ""), {"StaticText": lambda text: text}),
        (("parse_download_file",), lambda module, screen: screen.getServiceLists(), {}),
        (("LoadPixmap", "resolveFilename", "SCOPE_PLUGINS"), lambda module, screen: screen.getServiceLists(),
         {"parse_download_file": lambda: (0, ["abcd"])}),
        (("LoadPixmap", "resolveFilename", "SCOPE_PLUGINS"), lambda module, screen: screen.getServiceLists(),
         {"parse_download_file": lambda: (2, None)}),
        (("os", "fileExists", "download_settings"), lambda module, screen: screen.keyOk(), {}),
        (("LoadPixmap", "resolveFilename", "SCOPE_PLUGINS"), lambda module, screen: screen.keyOk(),
         {"download_settings": lambda name, path: 3}),
        (("MessageBox",), lambda module, screen: screen.keyOk(), {"fileExists": lambda path, mode: False}),
        (("MessageBox",), lambda module, screen: screen.untar_finished("", 1), {}),
        (("os", "ChoiceBox"), lambda module, screen: screen.untar_finished("", 0), {}),
        (("MessageBox",), lambda module, screen: screen.copy_finished("", 0), {}),
        (("resolveFilename", "SCOPE_CONFIG", "datetime", "time", "os", "eDVBDB"),
         lambda module, screen: screen.mergeNewFavourites(), {}),
        (("resolveFilename", "SCOPE_CONFIG", "fileExists", "shutil"),
         lambda module, screen: screen.writeBouquetFiles("tv", [("a", "b")]), {}),
        (("nimmanager", "eDVBDB", "InfoBar"), lambda module, screen: screen.reload_settings(), {}),
    )

    def setUp(self):
        super(Names, self).setUp()
        self.module = loading.recorded()
        self.host = recording_host.HOST
        self.host.urlopen = lambda *arguments: open(os.devnull)
        self.host.write("/etc/opkg/all-feed.conf", "src/gz Qel-all h/all\n")
        for name in ("bouquets.tv", "bouquets.radio", "lamedb"):
            self.host.write("/tmp/settings/" + name, 'FROM "userbouquet.tv"\n')
        self.host.write("/tmp/settings/a", "")
        self.screen = self.module.Morvesk(recording_host.Session(), "")
        self.screen.messagebox_title = "the title"
        self.screen.dest_dir = recording_host.CONFIG
        self.screen["downloadmenu"].current = ("a", "", "", None, "")

    def test_a_name_that_is_gone_is_a_name_error_when_it_is_used(self):
        namespace = dict(vars(self.module))
        # A screen without a text source says so before it fails.
        sys.stdout = StringIO.StringIO()
        self.addCleanup(setattr, sys, "stdout", sys.__stdout__)
        for names, use, replaced in self.NEEDS:
            for name in names:
                vars(self.module).update(namespace)
                vars(self.module).update(replaced)
                delattr(self.module, name)
                self.assertEqual(
                    outcome(use, self.module, self.screen), (NameError, "global name '%s' is not defined" % name), name)

    def test_attributes_are_looked_up_at_each_use(self):
        class Box(object):
            """Another message box."""
            TYPE_ERROR = "first"
        self.module.MessageBox = Box
        self.module.parse_download_file = lambda: (1, None)
        for kind in ("first", "second"):
            Box.TYPE_ERROR = kind
            del self.host.calls[:]
            self.screen.untar_finished("", 1)
            text = "[Sorry, extracting of services list failed\nPlease try again.]"
            self.assertEqual(self.host.named("open dialog"), [recording_host.call("open dialog", Box, text, kind)])

    def test_the_standard_library_is_looked_up_at_each_use(self):
        self.module.os = os
        seen = []

        def exists(path):
            """Notes what is asked for."""
            seen.append(path)
            return True
        original, os.path.exists = os.path.exists, exists
        try:
            self.screen.untar_finished("", 0)
        finally:
            os.path.exists = original
        self.assertEqual(seen, ["/tmp/settings/" + name for name in ("bouquets.tv", "bouquets.radio", "lamedb")])

    def test_functions_are_called_as_globals(self):
        self.module.base_url = lambda: "elsewhere/"
        self.assertEqual(self.module.info_url(), "elsewhere/qel_settings.download")
        self.module.info_url = lambda: "the catalogue"
        del self.host.calls[:]
        self.assertEqual(self.module.parse_download_file(), (0, []))
        self.assertEqual(self.host.named("urlopen"), [recording_host.call("urlopen", "the catalogue", None, 5.0)])
        self.module.parse_download_file = lambda: (0, [("a", "b", "c", "d")])
        self.screen.getServiceLists()
        self.assertEqual(self.screen.list[0][:3], ("d", "a - b", "c"))
        called = []
        self.module.download_settings = lambda *arguments: called.append(arguments)
        self.screen.keyOk()
        self.assertEqual(called, [("a", "/tmp/settings")])

    def test_the_base_initialiser_is_that_of_the_name_screen(self):
        class Other(object):
            """Has an initialiser of its own."""

            def __init__(self):
                self.__init__ = lambda *arguments: called.append(arguments)
        called = []
        self.module.Screen = Other()
        self.assertEqual(outcome(self.module.Morvesk, "session", "")[0], AttributeError)
        self.assertEqual(len(called), 1)
        self.assertEqual((type(called[0][0]), called[0][1:]), (self.module.Morvesk, ("session",)))

    def test_the_screen_uses_the_interpreter_s_item_and_attribute_access(self):
        class Own(self.module.Morvesk):
            """A screen with its own way of keeping things."""

            def __getitem__(self, key):
                return box[key]

            def __getattribute__(self, name):
                if name == "tmp_path":
                    return "/elsewhere"
                return object.__getattribute__(self, name)
        box = {"downloadmenu": recording_host.List([])}
        screen = Own(recording_host.Session(), "")
        del self.host.calls[:]
        screen.download_finished()
        self.assertEqual(self.host.named("setList", "ePopen"), [
            recording_host.call("setList", []),
            recording_host.call("ePopen", "/bin/tar -xzf /elsewhere/settings.tar.gz -C /elsewhere/", screen.untar_finished)])
        self.assertEqual(box["downloadmenu"].rows, [])


VERSION_SCRIPT = """
import sys, warnings
sys.path[:0] = %r
import loading, recording_host
recording_host.install()
sys.path.insert(0, %r)
seen = []
%s
import Morvesk
print Morvesk.Morvesk.__bases__ == (recording_host.Screen,), sys.exc_info(), seen
"""


class Version(unittest.TestCase):
    """The running interpreter claims another version.

    The copy that is loaded asks another function of the interpreter of the same kind, one whose answer is ours to set:
    the search path, which begins with PYTHONPATH.
    """

    WARNING = "compiletime version 2.7 of module 'Morvesk' does not match runtime version %s"
    RECORD = "warnings.showwarning = lambda message, *rest: seen.append(str(message))"

    def load(self, version, setting="", *options):
        """Loads in an interpreter that claims this version; gives what it printed."""
        folder = loading.fresh_folder()
        path = os.path.join(folder, "Morvesk.so")
        with open(path, "rb") as stream:
            content = stream.read()
        asked, other = b"\0Py_GetVersion\0", b"\0Py_GetPath\0\0\0\0"
        self.assertEqual((asked in content, len(asked)), (True, len(other)))
        with open(path, "wb") as stream:
            stream.write(content.replace(asked, other))
        here = os.path.dirname(os.path.abspath(__file__))
        script = VERSION_SCRIPT % ([here], folder, setting)
        environment = dict(os.environ, PYTHONPATH=version, MORVESK_MODULE=loading.PATH)
        process = subprocess.Popen(
            loading.INTERPRETER + list(options) + ["-c", script], env=environment, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output, errors = process.communicate()
        self.assertEqual(process.returncode, 0, errors)
        return output, errors

    @compiled_only
    def test_a_different_version_is_warned_about(self):
        for running, short in (("3.4.10 (default)", "3.4"), ("2.6.9", "2.6"), ("2.10.1", "2.10"), ("2.71 (x)", "2.71")):
            output, _ = self.load(running, "warnings.simplefilter('always')\n" + self.RECORD)
            self.assertEqual(output, "True (None, None, None) %r\n" % [self.WARNING % short])

    @compiled_only
    def test_by_default_the_warning_goes_to_standard_error(self):
        output, errors = self.load("2.6.9")
        self.assertEqual(output, "True (None, None, None) []\n")
        self.assertIn(self.WARNING % "2.6", errors)

    @compiled_only
    def test_the_same_version_is_not(self):
        for running in ("2.7.18 (default, Sep 19 2023)", "2.7+ (x)", "2.7"):
            output, errors = self.load(running, "warnings.simplefilter('always')\n" + self.RECORD)
            self.assertEqual(output, "True (None, None, None) []\n", errors)

    @compiled_only
    def test_never_an_error(self):
        for setting, options in (
                ("warnings.simplefilter('error')", ()), ("", ("-W", "error")),
                ("warnings.showwarning = None\nwarnings.simplefilter('always')", ()),
                ("warnings.warn = None; warnings.filters = None", ()), ("del sys.modules['warnings']", ("-W", "error"))):
            output, errors = self.load("3.4.10", setting, *options)
            self.assertEqual(output, "True (None, None, None) []\n", errors)
            self.assertNotIn("Traceback", errors)

    @compiled_only
    def test_this_interpreter_gives_no_warning(self):
        process = subprocess.Popen(
            loading.INTERPRETER + ["-W", "always", "-c", VERSION_SCRIPT % (
                [os.path.dirname(os.path.abspath(__file__))], loading.fresh_folder(), self.RECORD)],
            stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        output, errors = process.communicate()
        self.assertEqual(output, "True (None, None, None) []\n", errors)


class Elf(object):
    """The dynamic section of a shared object, as far as needed here."""

    def __init__(self, path):
        with open(path, "rb") as stream:
            self.data = stream.read()
        self.wide = self.data[4] == "\2"
        start, = self.fields("Q" if self.wide else "I", 40 if self.wide else 32)
        size, count = self.fields("HH", 58 if self.wide else 46)
        sections = [self.section(start + index * size) for index in range(count)]
        self.needed, self.exported, self.imported = [], [], []
        for kind, offset, length, link, entry in sections:
            if kind == 6:
                self.read_dynamic(offset, length, entry, sections[link][1])
            if kind == 11:
                self.read_symbols(offset, length, entry, sections[link][1])

    def fields(self, form, offset):
        """Little-endian fields."""
        return struct.unpack_from("<" + form, self.data, offset)

    def section(self, offset):
        """Type, file offset, size, link and entry size of a section."""
        form = "IIQQQQIIQQ" if self.wide else "IIIIIIIIII"
        _, kind, _, _, position, size, link, _, _, entry = self.fields(form, offset)
        return kind, position, size, link, entry

    def text(self, offset):
        """A string of a string table."""
        return self.data[offset:self.data.index("\0", offset)]

    def read_dynamic(self, offset, length, entry, strings):
        """The libraries that are needed."""
        for position in range(offset, offset + length, entry):
            tag, value = self.fields("qQ" if self.wide else "iI", position)
            if tag == 1:
                self.needed.append(self.text(strings + value))

    def read_symbols(self, offset, length, entry, strings):
        """The symbols that are exported and imported."""
        for position in range(offset + entry, offset + length, entry):
            if self.wide:
                name, kind, _, section = self.fields("IBBH", position)
            else:
                name, _, _, kind, _, section = self.fields("IIIBBH", position)
            # Some processors' linkers list local section symbols as well.
            if kind >> 4:
                (self.exported if section else self.imported).append(self.text(strings + name))


class File(unittest.TestCase):
    """The file that a receiver loads."""

    @compiled_only
    def test_exports_its_entry_and_nothing_else(self):
        self.assertEqual(Elf(loading.PATH).exported, ["initMorvesk"])

    @compiled_only
    def test_needs_the_run_time_libraries_only(self):
        elf = Elf(loading.PATH)
        allowed = ["libc", "libm", "libgcc_s", "libstdc++", "libpthread"]
        if any(name.startswith("__asan_") for name in elf.imported):
            allowed += ["libasan", "libubsan"]
        libraries = [name.split(".so")[0] for name in elf.needed]
        # The loader's own library is named for the processor.
        self.assertEqual([name for name in libraries if name not in allowed and not name.startswith("ld")], [])

    @compiled_only
    def test_uses_nothing_that_depends_on_the_width_of_unicode_strings(self):
        elf = Elf(loading.PATH)
        self.assertTrue([name for name in elf.imported if name.startswith("PyErr_")])
        self.assertEqual([name for name in elf.imported if "UCS2" in name or "UCS4" in name], [])


if __name__ == "__main__":
    loading.main()
