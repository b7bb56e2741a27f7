"""The arguments of every function and method: bound, and refused, as those of a Python function with the same signature."""

import itertools

import loading
import recording_host
from recording_host import call

FUNCTIONS = {
    "base_url": "",
    "info_url": "",
    "download_settings": "f_name, tmp_path",
    "parse_download_file": "",
}
METHODS = {
    "__init__": "self, session, plugin_path",
    "init_vars": "self",
    "getServiceLists": "self",
    "keyOk": "self",
    "download_finished": "self",
    "untar_finished": "self, result, retval, extra_args=None",
    "installNewFavourites": "self, append=('NONE', True)",
    "copy_finished": "self, result, retval, extra_args=None",
    "mergeNewFavourites": "self",
    "writeBouquetFiles": "self, root_type, fav_list",
    "reload_settings": "self",
    "keyCancel": "self",
}


class Text(str):
    """A keyword may be any string."""


# Keywords that no signature here has, one of them at a time: a compiled function gets its keywords in no particular order.
WRONG = [
    {}, {"zebra": 1}, {u"zebra": 1}, {5: 1}, {None: 1}, {(1, 2): 1}, {u"z\xe9bra": 1}, {u"\u20ac\U0001f4fa": 1}, {"": 1}, {"Self": 1},
    {"zeb\0ra": 1}, {"z" * 500: 1}, {Text("zebra"): 1}, {"self ": 1}, {"%s": 1}, {2.5: 1}, {"z\xff": 1}]


def reference():
    """Functions and a class of the same signatures, in Python."""
    source = ["def %s(%s): pass" % item for item in FUNCTIONS.items()]
    source += ["class Morvesk(Screen):"] + ["    def %s(%s): pass" % item for item in METHODS.items()]
    namespace = {"Screen": recording_host.Screen, "__name__": "Morvesk"}
    exec("\n".join(source), namespace)
    return namespace


def names_of(signature):
    """The names of the parameters."""
    return [part.split("=")[0].strip() for part in signature.split(", ") if not part.startswith("True")] if signature else []


def combinations(names):
    """Positional counts with keywords: some right ones, and at most one wrong or doubled one."""
    for count in range(len(names) + 3):
        positional = tuple("p%d" % index for index in range(count))
        later = names[count:]
        for size in range(len(later) + 1):
            for chosen in itertools.combinations(later, size):
                right = dict((name, "k " + name) for name in chosen)
                for wrong in WRONG:
                    yield positional, dict(right, **{}) if not wrong else dict(right.items() + wrong.items())
                for doubled in names[:count]:
                    yield positional, dict(right.items() + [(doubled, "twice")])
                if right:
                    yield positional, dict((unicode(name), value) for name, value in right.items())
                    yield positional, dict((Text(name), value) for name, value in right.items())


def refusal(function, arguments, keywords):
    """Type and text of the argument error of a call; None when the call is taken."""
    try:
        function(*arguments, **keywords)
    except TypeError as error:
        return type(error), str(error)
    return None


class Refusals(loading.ModuleCase):
    """What a Python function refuses is refused with the same text."""

    def compare(self, ours, theirs, names, first=()):
        """Compares all refusals; gives their number."""
        refused = 0
        for positional, keywords in combinations(names):
            arguments = first + positional
            expected = refusal(theirs, arguments, keywords)
            if expected is None:
                continue
            self.assertEqual(refusal(ours, arguments, keywords), expected, (arguments, keywords))
            refused += 1
        return refused

    def test_functions(self):
        theirs = reference()
        total = 0
        for name, signature in FUNCTIONS.items():
            total += self.compare(getattr(self.module, name), theirs[name], names_of(signature))
        self.assertGreater(total, 200)
        self.assertEqual(self.host.calls, [])

    def test_methods_through_an_instance(self):
        theirs = reference()["Morvesk"](None, "")
        screen = self.screen()
        total = 0
        for name, signature in METHODS.items():
            total += self.compare(getattr(screen, name), getattr(theirs, name), names_of(signature)[1:])
        self.assertGreater(total, 800)
        self.assertEqual(self.host.calls, [])

    def test_self_by_keyword_through_an_instance(self):
        theirs = reference()["Morvesk"](None, "")
        screen = self.screen()
        for name, signature in METHODS.items():
            # Python 2.7 never gets to the body: the instance already is `self`.
            count = len(names_of(signature)) - 1
            for given in range(count + 1):
                arguments = ("x",) * given
                expected = refusal(getattr(theirs, name), arguments, {"self": 1})
                self.assertIsNotNone(expected)
                self.assertEqual(refusal(getattr(screen, name), arguments, {"self": 1}), expected)

    def test_the_functions_below_the_methods(self):
        theirs = reference()["Morvesk"]
        total = 0
        for name, signature in METHODS.items():
            total += self.compare(getattr(self.module.Morvesk, name).im_func, getattr(theirs, name).im_func, names_of(signature))
        self.assertGreater(total, 1500)

    def test_methods_through_the_class(self):
        theirs = reference()["Morvesk"]
        for name, signature in METHODS.items():
            ours = getattr(self.module.Morvesk, name)
            for arguments in ((), (5,), ("p0", "p1"), (None,), (object,), (recording_host.Session(),)):
                for keywords in ({}, {"self": 5}, {"zebra": 1}):
                    expected = refusal(getattr(theirs, name), arguments, keywords)
                    self.assertEqual(refusal(ours, arguments, keywords), expected)
                    self.assertIn("must be called with Morvesk instance", expected[1])
            # Through the class the screen is counted as well.
            their_screen, our_screen = theirs.__new__(theirs), self.module.Morvesk.__new__(self.module.Morvesk)
            names = names_of(signature)[1:]
            for positional, keywords in combinations(names):
                expected = refusal(getattr(theirs, name), (their_screen,) + positional, keywords)
                if expected is not None:
                    self.assertEqual(refusal(ours, (our_screen,) + positional, keywords), expected)

    def test_the_constructor(self):
        theirs = reference()["Morvesk"]
        refused = self.compare(self.module.Morvesk, theirs, ["session", "plugin_path"])
        self.assertGreater(refused, 30)
        self.assertEqual(refusal(self.module.Morvesk, (1,), {}), (TypeError, "__init__() takes exactly 3 arguments (2 given)"))
        self.assertEqual(self.host.calls, [])

    def test_a_mapping_of_keywords(self):
        class Mapping(object):
            """Any mapping gives keywords."""

            def __init__(self, **items):
                self.items = items

            def keys(self):
                """The keywords."""
                return self.items.keys()

            def __getitem__(self, key):
                return self.items[key]
        theirs = reference()
        for items in ({"zebra": 1}, {"f_name": 1}, {"tmp_path": 2}, {"f_name": 1, "tmp_path": 2, "zebra": 3}):
            self.assertEqual(
                refusal(self.module.download_settings, (), Mapping(**items)),
                refusal(theirs["download_settings"], (), Mapping(**items)))

    def test_calls_as_written(self):
        # Not through * and **: the interpreter has other ways for these.
        screen = self.screen()
        for use, text in (
                (lambda: self.module.base_url(1), "base_url() takes no arguments (1 given)"),
                (lambda: self.module.base_url(x=1), "base_url() takes no arguments (1 given)"),
                (lambda: self.module.base_url(1, x=1), "base_url() takes no arguments (2 given)"),
                (lambda: self.module.download_settings(), "download_settings() takes exactly 2 arguments (0 given)"),
                (lambda: self.module.download_settings(1), "download_settings() takes exactly 2 arguments (1 given)"),
                (lambda: self.module.download_settings(1, 2, 3), "download_settings() takes exactly 2 arguments (3 given)"),
                (lambda: self.module.download_settings(1, f_name=2),
                 "download_settings() got multiple values for keyword argument 'f_name'"),
                (lambda: self.module.download_settings(1, zebra=2),
                 "download_settings() got an unexpected keyword argument 'zebra'"),
                (lambda: screen.init_vars(1), "init_vars() takes exactly 1 argument (2 given)"),
                (lambda: screen.untar_finished(), "untar_finished() takes at least 3 arguments (1 given)"),
                (lambda: screen.untar_finished(1, 2, 3, 4), "untar_finished() takes at most 4 arguments (5 given)"),
                (lambda: screen.untar_finished(1, extra_args=4), "untar_finished() takes at least 3 arguments (3 given)"),
                (lambda: screen.installNewFavourites(1, 2), "installNewFavourites() takes at most 2 arguments (3 given)"),
                (lambda: screen.keyCancel(self=1), "keyCancel() got multiple values for keyword argument 'self'"),
                (lambda: screen.writeBouquetFiles("tv"), "writeBouquetFiles() takes exactly 3 arguments (2 given)")):
            self.assertEqual(refusal(use, (), {}), (TypeError, text))


class Emptying(str):
    """A keyword that empties the dict it comes from as soon as it is looked at."""

    arguments = {}

    def __eq__(self, other):
        self.arguments.clear()
        return False

    __hash__ = str.__hash__


class Lifetime(loading.ModuleCase):

    def test_keywords_that_go_while_they_are_looked_at(self):
        for count in (1, 2, 20):
            Emptying.arguments = dict((Emptying("f_name%d" % number), object()) for number in range(count))
            error = self.raised(self.module.download_settings, **Emptying.arguments)
            self.assertIsInstance(error, TypeError)


class Keywords(loading.ModuleCase):
    """Every argument can be given by its keyword, and means the same."""

    def ways(self, function, names, values, required):
        """Calls a function in all ways to give these arguments; the records must be the same."""
        prepare, journal = self.prepare, []
        for count in range(len(names) + 1):
            for convert in (str, unicode, Text):
                keywords = dict((convert(name), value) for name, value in zip(names, values)[count:])
                prepare()
                del self.host.calls[:]
                result = function(*values[:count], **keywords)
                journal.append((result, list(self.host.calls)))
        for other in journal[1:]:
            self.assertEqual(other, journal[0])
        self.assertGreaterEqual(len(names), required)
        return journal[0]

    def prepare(self):
        """Sets the receiver up before each call."""
        self.host.write("/etc/opkg/all-feed.conf", "src/gz Qel-all h/all\n")
        self.host.write("/tmp/settings/a", "")
        self.host.write("/etc/enigma2/bouquets.tv", "")

    def test_download_settings(self):
        self.host.urlopen = lambda *arguments: open("/dev/null")
        result, calls = self.ways(self.module.download_settings, ["f_name", "tmp_path"], ["name", "/tmp"], 2)
        self.assertEqual(result, 0)
        self.assertIn(call("urlopen", "h/settings_download/name", None, 5.0), calls)
        self.assertIn(call("open", "/tmp/settings.tar.gz", "wb"), calls)

    def test_constructor(self):
        values = [recording_host.Session(), "/panel"]
        for make in (
                lambda: self.module.Morvesk(*values), lambda: self.module.Morvesk(values[0], plugin_path=values[1]),
                lambda: self.module.Morvesk(session=values[0], plugin_path=values[1]),
                lambda: self.module.Morvesk(**{u"session": values[0], u"plugin_path": values[1]})):
            screen = make()
            self.assertIs(screen.session, values[0])
            self.assertIs(screen.skin_path, values[1])

    def test_callbacks(self):
        screen = self.screen(init_vars=loading.Journal("init_vars"))
        for name in ("untar_finished", "copy_finished"):
            self.ways(getattr(screen, name), ["result", "retval"], ["output", 1], 2)
            result, calls = self.ways(getattr(screen, name), ["result", "retval", "extra_args"], ["output", 1, []], 2)
            self.assertIsNone(result)
            self.assertTrue(calls)

    def test_install_new_favourites(self):
        screen = self.screen()
        _, calls = self.ways(screen.installNewFavourites, ["append"], [("x", False)], 0)
        self.assertEqual(len(calls), 1)
        screen.__dict__.update(
            mergeNewFavourites=loading.Journal("merge"), copy_finished=loading.Journal("copy_finished"),
            init_vars=loading.Journal("init_vars"))
        self.ways(screen.installNewFavourites, ["append"], [None], 0)
        self.assertEqual(self.host.calls, [call("init_vars")])
        del self.host.calls[:]
        screen.installNewFavourites()
        self.assertEqual(self.host.calls, [call("merge"), call("copy_finished", screen, 0, 0)])

    def test_write_bouquet_files(self):
        screen = self.screen()
        _, calls = self.ways(screen.writeBouquetFiles, ["root_type", "fav_list"], ["tv", [("a", "b")]], 2)
        self.assertIn(call("shutil.copy2", "/tmp/settings/a", "/etc/enigma2/b"), calls)

    def test_self_by_keyword(self):
        screen = self.screen()
        self.replace(parse_download_file=lambda: (1, None))
        self.host.write("/tmp/settings/bouquets.tv", "")
        self.host.write("/tmp/settings/bouquets.radio", "")
        values = {
            "session": recording_host.Session(), "plugin_path": "", "result": "", "retval": 1, "extra_args": None, "append": None,
            "root_type": "tv", "fav_list": []}
        for name, signature in METHODS.items():
            keywords = dict((key, values[key]) for key in names_of(signature)[1:])
            getattr(self.module.Morvesk, name).im_func(self=screen, **keywords)
            getattr(self.module.Morvesk, name)(screen, **keywords)
            getattr(screen, name)(**keywords)

    def test_bodies_refuse_no_kind_of_object(self):
        screen = self.screen(init_vars=loading.Journal("init_vars"))
        for odd in (None, 5, "", u"text", object(), [], {}, screen):
            screen.untar_finished(odd, 1, odd)
            screen.copy_finished(odd, odd, odd)


if __name__ == "__main__":
    loading.main()
