"""What docs/integrator.md says: that every statement names tests which exist, and what no other suite shows."""

import ast
import os
import re
import unittest
import xml.etree.ElementTree as ElementTree

import placed
import suite
from placed import RECEIVER, process, support

DOCS = os.path.join(suite.CHECKOUT, "docs")
PANEL = os.path.join(RECEIVER, "host", "Plugins", "SystemPlugins", "QelPanel")
MODULE = os.environ.get("MORVESK_MODULE") or os.path.join(suite.CHECKOUT, "build", "release", "Morvesk.so")
MODULE_TESTS = os.path.join(suite.CHECKOUT, "plugin", "tests", "module")

# Where the suites lie that are named like this.
SUITES = (
    (r"(?:(?:ucs2|(?:clang|g)\+\+(?:-11)?-O[0s3])\.)?module\.(\w+)", "plugin/tests/module/test_%s.py"),
    (r"receiver\.(\w+)", "receiver/tests/test_%s.py"),
    (r"tools\.(\w+)", "tools/tests/test_%s.py"),
    (r"(?:armhf|mipsel|build)\.(\w+)", "tools/tests/%s_test.py"))

REFERENCE = re.compile(r"\[([\w+-]+\.[a-z_.]+):\s+([a-z_0-9, \n]+)\]")

# Prints what a load of the module imports: each module's name and the names taken from it.
IMPORTS = """
import __builtin__, sys
sys.path.insert(0, %r)
import loading, recording_host
recording_host.install()
original, seen = __builtin__.__import__, []
def note(name, *arguments):
    if len(arguments) == 3 and arguments[0] and arguments[0].get("__name__") == "Morvesk":
        seen.append((name, arguments[2]))
    return original(name, *arguments)
__builtin__.__import__ = note
loading.load()
print seen
"""

# Puts another file in the place of the loaded module, as a package manager does, and goes on; then starts anew.
UPDATE = """
import os, subprocess, sys
sys.path.insert(0, %r)
import loading, recording_host
recording_host.install()
folder = loading.fresh_folder()
sys.path.insert(0, folder)
import Morvesk as loaded
with open(os.path.join(folder, "new"), "w") as new:
    new.write("another version")
os.rename(os.path.join(folder, "new"), os.path.join(folder, "Morvesk.so"))
import Morvesk
print Morvesk is loaded, Morvesk.download_settings.__name__
try:
    Morvesk.download_settings()
except TypeError as error:
    print error
child = subprocess.Popen([sys.executable, "-c", "import Morvesk"], cwd=folder, stderr=subprocess.PIPE)
print child.communicate()[1].splitlines()[-1].split(": ")[0]
"""


def read(*path):
    """The text of a file of the documentation."""
    with open(os.path.join(DOCS, *path)) as source:
        return source.read()


def statements(page):
    """The paragraphs and items of a page, without headings, tables, examples and what stands before the first heading."""
    page = re.sub(r"^```.*?^```$", "", page, flags=re.S | re.M)
    page = re.sub(r"^\|.*$", "", page, flags=re.M)
    page = page[page.index("\n## "):]
    blocks = re.split(r"\n\s*\n|\n(?=- )", page)
    return [block.strip() for block in blocks if block.strip() and not block.strip().startswith("#")]


def tests_of(path):
    """The names of the tests in a file."""
    with open(path) as source:
        tree = ast.parse(source.read())
    return set(node.name for node in ast.walk(tree) if isinstance(node, ast.FunctionDef) and node.name.startswith("test_"))


def file_of(name):
    """The file of a suite; None when there is no such suite."""
    for pattern, place in SUITES:
        match = re.match(pattern + "$", name)
        path = match and os.path.join(suite.CHECKOUT, place % match.group(1))
        if path and os.path.isfile(path):
            return path
    return None


def table_after(text):
    """The rows of the page's table behind a text, without its head; code marks are taken off."""
    page = read("integrator.md")
    lines = page[page.index(text):].splitlines()
    first = [number for number, line in enumerate(lines) if line.startswith("|")][0]
    rows = []
    for line in lines[first + 2:]:
        if not line.startswith("|"):
            return rows
        rows.append([cell.strip().replace("`", "") for cell in line.strip("|").split("|")])
    return rows


class Page(unittest.TestCase):
    """The page by itself."""

    def test_every_statement_names_its_tests(self):
        found = statements(read("integrator.md"))
        self.assertGreater(len(found), 30)
        self.assertEqual([one for one in found if not REFERENCE.search(one)], [])

    def test_the_named_tests_exist(self):
        missing = []
        for name, tests in REFERENCE.findall(read("integrator.md")):
            path = file_of(name)
            known = tests_of(path) if path else set()
            missing += [(name, test) for test in re.split(r",\s+", tests.strip()) if test not in known]
        self.assertEqual(missing, [])

    def test_a_statement_without_a_test_would_be_found(self):
        page = "# Page\n\n## One\n\n- Said. [module.screen: test_keys]\n- Claimed.\n\n```sh\nls\n```\n\nAlso claimed.\n"
        self.assertEqual([one for one in statements(page) if not REFERENCE.search(one)], ["- Claimed.", "Also claimed."])
        self.assertIsNone(file_of("module.nothing"))
        self.assertNotIn("test_nothing", tests_of(file_of("module.screen")))


class Needs(unittest.TestCase):
    """What the module needs from the image."""

    maxDiff = None

    def test_imports(self):
        outcome = suite.run([suite.INTERPRETER, "-c", IMPORTS % MODULE_TESTS], {"MORVESK_MODULE": MODULE})
        self.assertEqual((outcome.status, outcome.errors), (0, ""))
        imported = []
        for name, names in ast.literal_eval(outcome.output):
            names = "every public name" if names == ("*",) else ", ".join(names or ())
            imported.append([name, names])
        self.assertEqual(table_after("From the host it imports"), imported)

    def test_how_the_panel_opens_it(self):
        with open(os.path.join(PANEL, "plugin.py")) as source:
            text = source.read()
        call = re.search(r"opens the screen with its own folder: `(.*?)`", read("integrator.md")).group(1)
        self.assertIn("    %s\n" % call, text)

    def test_cmake(self):
        said = re.search(r"CMake is the machine's, from ([0-9.]+) on", read("integrator.md")).group(1)
        with open(os.path.join(suite.CHECKOUT, "CMakeLists.txt")) as source:
            self.assertEqual(source.readline(), "cmake_minimum_required(VERSION %s)\n" % said)

    def test_pictures(self):
        with open(MODULE, "rb") as source:
            used = sorted(set(re.findall(r"\w+\.png", source.read())))
        said = sorted(set(re.findall(r"`(\w+\.png)`", read("integrator.md"))))
        self.assertEqual(used, ["ntptime.png", "sockets.png"])
        self.assertEqual(said, used)
        self.assertEqual(sorted(os.listdir(os.path.join(PANEL, "pictures"))), used)

    def test_feed_lines(self):
        examples = re.findall(r'^(".*") -> (".*")$', read("integrator.md"), re.M)
        self.assertEqual(len(examples), 5)
        script = "import sys; sys.path.insert(0, %r); import loading, recording_host\nmodule = loading.recorded()\n" % MODULE_TESTS
        for line, _ in examples:
            script += "recording_host.HOST.write(recording_host.FEED_FILE, %s)\nprint module.base_url()\n" % line
        outcome = suite.run([suite.INTERPRETER, "-c", script], {"MORVESK_MODULE": MODULE})
        self.assertEqual((outcome.status, outcome.output.splitlines()), (0, [ast.literal_eval(each) for _, each in examples]))


class Skin(unittest.TestCase):
    """The sample skin."""

    def screens(self, *path):
        """The screens of a skin for the module, by name, as text without what has no meaning."""
        found = {}
        for screen in ElementTree.parse(os.path.join(*path)).getroot().findall("screen"):
            if screen.get("name") in ("Morvesk", "Ruskell", "Tollvane"):
                found[screen.get("name")] = screen
        return found

    def test_the_sample_skin_is_the_virtual_receivers(self):
        sample_skin = self.screens(DOCS, "skin.xml")
        receivers = self.screens(RECEIVER, "host", "share", "enigma2", "skin.xml")
        self.assertEqual(sorted(sample_skin), ["Morvesk", "Ruskell", "Tollvane"])
        for name, screen in sample_skin.items():
            self.assertEqual(re.sub(r"\s+", " ", ElementTree.tostring(screen)),
                             re.sub(r"\s+", " ", ElementTree.tostring(receivers[name])))

    def test_the_sample_skin_has_every_widget(self):
        sources = [row[0] for row in table_after("Its widgets are sources")]
        for screen in self.screens(DOCS, "skin.xml").values():
            self.assertEqual([widget.get("source") for widget in screen.findall("widget")], sources)
            template = screen.find("widget/convert").text
            self.assertEqual(re.findall(r"(?:text|png)=(\d)", template), ["1", "2", "3"])


class OnAReceiver(unittest.TestCase):
    """What remains on a receiver."""

    maxDiff = None

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)

    def install(self, keys):
        """Plays an installation; gives what lies in the folders that can be written."""
        receiver = placed.Placed(os.path.join(self.folder, keys), MODULE)
        self.addCleanup(receiver.remove)
        programs = receiver.files("usr/lib/enigma2")
        self.assertEqual(receiver.play(keys), (process.CLOSED, []))
        self.assertEqual(receiver.files("usr/lib/enigma2"), programs)
        self.assertEqual(os.listdir(receiver.path("etc/opkg")), ["all-feed.conf"])
        self.assertEqual(sorted(receiver.files("srv/feed")), sorted(support.feed()))
        return os.listdir(receiver.path("tmp")), receiver.files("etc/enigma2")

    def test_what_is_written(self):
        temporary, settings = self.install("ok ok ok")
        self.assertEqual(temporary, ["settings"])
        self.assertEqual(sorted(set(settings) - set(support.own_settings())), sorted(
            set(support.new_list()) - set(support.own_settings()) | set(["lamedb5"])))
        temporary, settings = self.install("ok 2 ok")
        self.assertEqual(temporary, [])
        self.assertEqual(sorted(settings), sorted(list(support.new_list()) + ["settings"]))

    def test_an_update_is_loaded_by_the_next_start(self):
        outcome = suite.run([suite.INTERPRETER, "-c", UPDATE % MODULE_TESTS], {"MORVESK_MODULE": MODULE})
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, (
            "True download_settings\n"
            "download_settings() takes exactly 2 arguments (0 given)\n"
            "ImportError\n"), ""))


if __name__ == "__main__":
    suite.main()
