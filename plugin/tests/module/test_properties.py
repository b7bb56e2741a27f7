"""Random input of every nasty kind, against what the interpreter's own string operations give, and call by call against the
plain Python version of the module.

MORVESK_SEED repeats a run, MORVESK_CASES makes it longer.
"""

import StringIO
import os
import random
import sys
import traceback
import types
import unittest
import urllib2

import loading
import recording_host
import wanted
from recording_host import CONFIG, FEED_FILE, HOST, call, stamp

SEED = int(os.environ.get("MORVESK_SEED") or random.SystemRandom().randrange(10 ** 9))
CASES = int(os.environ.get("MORVESK_CASES") or 100)

WHITE = [" ", "\t", "\r", "\n", "\x0b", "\x0c", "\x1c", "\x85", "\xa0", "\0"]
LETTERS = ["a", "l", "s", "A", "\xc3\xa4", "\xff", "\xe2\x82\xac", "%s", "%", "\\", "."]


def some(source, tokens, most):
    """A text of up to `most` of these tokens."""
    return "".join(source.choice(tokens) for _ in range(source.randrange(most + 1)))


def noise(source):
    """Bytes of any value."""
    return "".join(chr(source.randrange(256)) for _ in range(source.randrange(6)))


def feed_file(source):
    """A feed configuration, right or odd."""
    tokens = ["src/gz Qel-all ", "src/gz", "Qel-all", "all", "al", "http://", "feed.example", "/", "-", "Q", "h"] + WHITE + LETTERS
    start = source.choice(["src/gz Qel-all ", "", " ", "src/gz  Qel-all\t"])
    return start + some(source, tokens, 12) + noise(source) + source.choice(["all", "/all", ""]) + source.choice(
        ["\n", "\r\n", "", "\nall\n", " \n"])


def catalogue(source):
    """A catalogue, right or odd."""
    field = lambda: some(source, WHITE[:3] * 2 + WHITE + LETTERS + [":", "#", noise(source)], 5)
    line = lambda: source.choice(["", "", "#", " #", "\r#"]) + source.choice([":::", ":::", ":::", "::::", "::"]).join(
        field() for _ in range(source.choice([1, 3, 4, 4, 4, 4, 4, 5])))
    return "".join(line() + source.choice(["\n", "\n", "\r\n", "\r", ""]) for _ in range(source.randrange(8)))


def bouquet_name(source, kind):
    """The name of a user bouquet, right or odd, that a file can have."""
    middle = some(source, ["a", "b", ".", " ", "'", '"', "\xc3\xa4", "\xff", "%s", "\t", "\r", "\x0b", "tv", "radio"], 3)
    return source.choice(["userbouquet.", "userbouquet", "bouquet.", ""] + ["userbouquet."] * 5) + middle + source.choice(
        [".tv", ".radio", "." + kind, "." + kind, "." + kind, ""])


def root_line(source, names):
    """A line of a root file that may name one of the bouquets."""
    name = source.choice(names + [""])
    quote = source.choice(['"%s"', '"%s"', "'%s'", '"%s', "'%s", "%s", '""%s', "\"\"'%s'", "''%s''", "\"%s\" '%s'"])
    named = quote.replace("%s", name)
    before = source.choice(["", "", "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET ", "#NAME ", noise(source)])
    after = source.choice(["", " ORDER BY bouquet", noise(source)])
    return before + named + after + source.choice(["\n"] * 10 + ["\r\n", "\r\n", "", "", "\r", "\0\n"])


def root_file(source, names):
    """A root file, right or odd."""
    return "".join(root_line(source, names) for _ in range(source.randrange(6)))


def outcome(function, *arguments):
    """The result of a call, or type and text of what it raises."""
    try:
        return "result", function(*arguments)
    except Exception as error:
        return type(error), str(error)


def expected_pairs(content, kind, folder="/tmp/settings"):
    """The pairs of source and target that a root file gives."""
    pairs = []
    for line in wanted.lines_of(content):
        name = wanted.bouquet_name(line)
        if name[:11] == "userbouquet" and name.endswith("." + kind) and os.path.exists(HOST.real(folder + "/" + name)):
            taken = os.path.exists(HOST.real(CONFIG + name))
            pairs.append((name, name[:-len(kind) - 1] + stamp() + "." + kind if taken else name))
    return pairs


class PropertyCase(loading.ModuleCase):
    """A test over many random cases; each one can be repeated by itself."""

    def cases(self, share=1):
        """Sources of random choices, one for each case."""
        for case in range(max(1, CASES // share)):
            self.case = "MORVESK_SEED=%d, case %d" % (SEED, case)
            yield random.Random("%d %s %d" % (SEED, self.id(), case))


class Texts(PropertyCase):
    """Addresses, catalogues, rows and archives."""

    def test_addresses(self):
        for source in self.cases():
            content = feed_file(source)
            self.host.write(FEED_FILE, content)
            expected = wanted.address(content)
            self.assertEqual(self.module.base_url(), expected, (self.case, content))
            self.assertEqual(self.module.info_url(), expected + "qel_settings.download", (self.case, content))

    def test_catalogues(self):
        for source in self.cases():
            body = catalogue(source)
            self.replace(info_url=lambda: "", urllib2=Bodies(body))
            self.assertEqual(self.module.parse_download_file(), (0, wanted.entries(body)), (self.case, body))

    def test_rows(self):
        for source in self.cases(3):
            entries = wanted.entries(catalogue(source))
            screen = self.screen()
            self.replace(parse_download_file=lambda: (0, entries))
            screen.getServiceLists()
            self.assertEqual([row[:3] + row[4:] for row in screen.list], [
                (entry[3], entry[0] + " - " + entry[1], entry[2], entry[1]) for entry in entries], self.case)

    def test_archives(self):
        for source in self.cases(3):
            body = noise(source) * source.randrange(1, 2000)
            self.replace(base_url=lambda: "", urllib2=Bodies(body))
            self.assertEqual(self.module.download_settings("", "/tmp"), 0)
            self.assertEqual(self.host.read("/tmp/settings.tar.gz"), body, self.case)


class Bodies(object):
    """Stands for `urllib2`; answers with one body."""

    HTTPError, URLError = urllib2.HTTPError, urllib2.URLError

    def __init__(self, body):
        self.body = body

    def urlopen(self, *arguments):
        """The answer."""
        return StringIO.StringIO(self.body)


class Bouquets(PropertyCase):
    """Root lines, root files and whole merges."""

    def receiver(self, source):
        """A random receiver with a random unpacked list; gives the root files of the list."""
        self.host.reset()
        roots = {}
        for kind in ("tv", "radio"):
            names = [bouquet_name(source, kind) for _ in range(source.randrange(1, 5))]
            roots[kind] = root_file(source, names)
            self.host.write("/tmp/settings/bouquets." + kind, roots[kind])
            for name in names:
                for folder in ("/tmp/settings/", CONFIG):
                    if name.strip(".") and source.random() < .6:
                        self.host.write(folder + name, "%s in %s" % (name, folder))
            if source.random() < .7:
                last = source.choice(["", "", self.reference(source, kind, names)])
                self.host.write(CONFIG + "bouquets." + kind, root_file(source, names) + last)
        return roots

    def reference(self, source, kind, names):
        """A reference like those of the writer, perhaps with an end."""
        return '#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet%s' % (
            {"tv": 1, "radio": 2}[kind], source.choice(names), source.choice(["", "", "\n"]))

    def test_pairs(self):
        for source in self.cases():
            roots = self.receiver(source)
            screen = self.screen(writeBouquetFiles=loading.Journal("writeBouquetFiles"))
            expected = outcome(lambda: [(kind, expected_pairs(roots[kind], kind)) for kind in ("tv", "radio")])
            got = outcome(screen.mergeNewFavourites)
            if expected[0] != "result":
                self.assertEqual(got, expected, (self.case, roots))
                continue
            self.assertEqual(got, ("result", None), (self.case, roots))
            self.assertEqual(self.host.named("writeBouquetFiles"), [
                call("writeBouquetFiles", kind, pairs) for kind, pairs in expected[1] if pairs], (self.case, roots))

    def test_root_files(self):
        for source in self.cases():
            self.receiver(source)
            for kind in ("tv", "radio"):
                names = [bouquet_name(source, kind) for _ in range(3)]
                pairs = [(source.choice("ab"), source.choice(names)) for _ in range(source.randrange(4))]
                before = self.host.read(CONFIG + "bouquets." + kind)
                if source.random() < .3 and pairs:
                    before = (before or "") + self.reference(source, kind, [pairs[0][1]])
                    self.host.write(CONFIG + "bouquets." + kind, before)
                expected, copied = wanted.root_file(before, kind, pairs)
                self.replace(shutil=Copies)
                screen = self.screen()
                screen.writeBouquetFiles(kind, pairs)
                self.assertEqual(self.host.read(CONFIG + "bouquets." + kind), expected, (self.case, before, pairs))
                self.assertEqual(self.host.named("copy"), [
                    call("copy", "/tmp/settings/" + one, CONFIG + other) for one, other in copied], (self.case, before, pairs))

    def test_whole_merges(self):
        for source in self.cases():
            roots = self.receiver(source)
            expected = outcome(self.merged, roots)
            screen = self.screen()
            got = outcome(screen.mergeNewFavourites)
            if expected[0] != "result":
                self.assertEqual(got, expected, (self.case, roots))
                continue
            self.assertEqual(got, ("result", None), (self.case, roots))
            self.assertEqual(self.folder(), expected[1], (self.case, roots))

    def folder(self):
        """The files of the configuration folder with their contents."""
        return dict((name, self.host.read(CONFIG + name)) for name in self.host.files(CONFIG))

    def merged(self, roots):
        """The files of the configuration folder after a merge."""
        files = self.folder()
        pairs = dict((kind, expected_pairs(roots[kind], kind)) for kind in ("tv", "radio"))
        for kind in ("tv", "radio"):
            if pairs[kind]:
                root = "bouquets." + kind
                # The writer copies before it writes the root file, which may itself be a target.
                before = files.get(root)
                content, copied = wanted.root_file(before, kind, pairs[kind])
                for source, target in copied:
                    files[target] = self.host.read("/tmp/settings/" + source)
                files[root] = content
        return files


class Copies(object):
    """Stands for `shutil`; copies nothing."""

    @staticmethod
    def copy2(source, target):
        """Notes a copy."""
        HOST.note("copy", source, target)


class CallByCall(PropertyCase):
    """A random session with the module, and the same with its plain Python version: every call, result, error, output and file."""

    plain = None

    @unittest.skipIf(os.path.samefile(loading.PATH, loading.PLAIN), "the plain version is the one under test")
    def test_sessions(self):
        if CallByCall.plain is None:
            CallByCall.plain = loading.recorded(loading.PLAIN)
        steps = 0
        for source in self.cases():
            state = source.getstate()
            expected = Session(source, self.plain).run()
            source.setstate(state)
            got = Session(source, self.module).run()
            for index, (ours, theirs) in enumerate(zip(got, expected)):
                self.assertEqual(ours, theirs, (self.case, index))
            self.assertEqual(got, expected, self.case)
            steps += len(got)
        self.assertGreater(steps, CASES)


ERRORS = (
    lambda: OSError(5, "an OS error"), lambda: IOError(5, "an I/O error"), lambda: urllib2.URLError("refused"),
    lambda: urllib2.HTTPError("address", 500, "an HTTP error", {}, None), lambda: KeyError("a key"),
    lambda: RuntimeError("an error"))


class Session(object):
    """One random session on one receiver."""

    def __init__(self, source, module):
        self.source, self.module = source, module
        self.journal = []

    def run(self):
        """Sets a receiver up, does random steps, gives all that can be seen of them."""
        HOST.reset()
        source = self.source
        HOST.write(FEED_FILE, feed_file(source))
        for kind in ("tv", "radio"):
            names = self.names = [bouquet_name(source, kind) for _ in range(3)]
            if source.random() < .9:
                HOST.write("/tmp/settings/bouquets." + kind, root_file(source, names))
            if source.random() < .6:
                HOST.write(CONFIG + "bouquets." + kind, root_file(source, names))
            for name in names:
                for folder in ("/tmp/settings/", CONFIG):
                    if name.strip(".") and source.random() < .5:
                        HOST.write(folder + name, name)
        if source.random() < .7:
            HOST.write("/tmp/settings/lamedb", "")
        if source.random() < .5:
            recording_host.start_info_bar()
        HOST.urlopen = self.urlopen
        self.screen = None
        self.step(self.construct, "construct")
        for _ in range(source.randrange(1, 8)):
            self.any_step()
        self.note_files()
        return self.journal

    def urlopen(self, *arguments):
        """A random answer of the server."""
        chance = self.source.random()
        if chance < .1:
            raise ERRORS[3]()
        if chance < .2:
            raise ERRORS[2]()
        return StringIO.StringIO(catalogue(self.source))

    def construct(self):
        """Makes the screen."""
        self.screen = self.module.Morvesk(recording_host.Session(), "/the/panel")

    def any_step(self):
        """One random thing that the host may do."""
        source, screen, module = self.source, self.screen, self.module
        if screen is None:
            return self.step(self.construct, "construct")
        steps = [
            ("init_vars",), ("keyOk",), ("keyOk",), ("untar_finished", "", source.choice([0, 0, 0, 1]), []),
            ("installNewFavourites", source.choice([("x", True), ("x", True), ("x", False), None])), ("copy_finished", "", 0),
            ("mergeNewFavourites",), ("reload_settings",), ("keyCancel",), ("download_finished",),
            ("writeBouquetFiles", source.choice(["tv", "radio"]), [(name, source.choice(self.names)) for name in self.names])]
        functions = [("base_url",), ("info_url",), ("parse_download_file",), ("download_settings", noise(source), "/tmp")]
        if source.random() < .2:
            function = source.choice(functions)
            return self.step(getattr(module, function[0]), *function)
        rows = screen.list
        screen["downloadmenu"].current = source.choice(rows + [None, ("one", "", "", None, "")])
        if source.random() < .2:
            screen.Console.appContainers.update((name, 1) for name in self.names)
        method = source.choice(steps)
        self.step(getattr(screen, method[0]), *method)

    def step(self, function, name, *arguments):
        """Does a step, perhaps with a host call that fails; notes all of it."""
        del HOST.calls[:]
        HOST.error, HOST.fail_at = None, None
        if self.source.random() < .3:
            HOST.error, HOST.fail_at = self.source.choice(ERRORS)(), self.source.randrange(20)
        stdout, sys.stdout = sys.stdout, StringIO.StringIO()
        try:
            result = function(*arguments)
        except Exception as error:
            names = [entry[2] for entry in traceback.extract_tb(sys.exc_info()[2])]
            result = (type(error), str(error), error is HOST.error, names)
        finally:
            output, sys.stdout = sys.stdout.getvalue(), stdout
        HOST.fail_at = None
        self.journal.append((name, self.plain(arguments), self.plain(result), output))
        self.journal.extend(self.plain(HOST.calls))

    def note_files(self):
        """Notes every file of the receiver."""
        for folder, _, files in sorted(os.walk(HOST.root)):
            for name in sorted(files):
                path = os.path.join(folder, name)[len(HOST.root):]
                self.journal.append((path, HOST.read(path)))

    def plain(self, value):
        """The value without anything that belongs to one session only."""
        if type(value) in (list, tuple):
            return type(value)([self.plain(item) for item in value])
        if type(value) is dict:
            return dict((key, self.plain(item)) for key, item in value.items())
        if isinstance(value, types.MethodType):
            return "method", value.__name__, value.im_self is self.screen
        if isinstance(value, recording_host.Made):
            return self.plain(value.made)
        if isinstance(value, (str, unicode, int, long, float, bool, type, types.NoneType)):
            return value
        return type(value).__name__


if __name__ == "__main__":
    sys.stderr.write("MORVESK_SEED=%d MORVESK_CASES=%d\n" % (SEED, CASES))
    loading.main()
