"""Exceptions that leave the module: the very object that was raised, and where it passed, for the host's crash log."""

import os
import sys
import traceback
import urllib2

import loading
import recording_host

# Which function calls which of ours, and which host calls it makes itself.
CALLS = {
    "info_url": ["base_url"],
    "download_settings": ["base_url"],
    "parse_download_file": ["info_url"],
    "init_vars": ["getServiceLists"],
    "getServiceLists": ["parse_download_file"],
    "keyOk": ["download_settings", "download_finished"],
    "untar_finished": ["init_vars"],
    "installNewFavourites": ["mergeNewFavourites", "copy_finished", "init_vars"],
    "copy_finished": ["reload_settings", "init_vars"],
    "mergeNewFavourites": ["writeBouquetFiles"],
}
PICTURE = ["_", "resolveFilename", "LoadPixmap", "set", "setList"]
BOX = ["_", "open dialog", "setTitle"]
MAKES = {
    "base_url": ["open", "readline", "close file"],
    "info_url": [],
    "download_settings": ["urlopen", "read", "open", "write", "close file"],
    "parse_download_file": ["urlopen", "read"],
    "__init__": ["Screen.__init__", "StaticText", "widget", "List", "ActionMap", "Console", "onLayoutFinish.append"] + PICTURE,
    "init_vars": ["_", "set"],
    "getServiceLists": PICTURE,
    "keyOk": ["getCurrent", "os.path.exists", "os.makedirs", "fileExists"] + PICTURE + BOX,
    "download_finished": ["set", "setList", "ePopen"],
    "untar_finished": ["os.path.exists", "open dialog with callback"] + BOX,
    "installNewFavourites": ["ePopen"],
    "copy_finished": ["close"] + BOX,
    "mergeNewFavourites": [
        "set", "resolveFilename", "time.time", "datetime.fromtimestamp", "strftime", "open", "readlines", "close file",
        "os.path.exists", "os.path.isfile", "eDVBDB.getInstance", "reloadServicelist", "loadServicelist", "saveServicelist",
        "reloadBouquets"],
    "writeBouquetFiles": ["resolveFilename", "fileExists", "open", "readlines", "write", "close file", "shutil.copy2"],
    "reload_settings": [
        "readTransponders", "eDVBDB.getInstance", "reloadServicelist", "reloadBouquets", "getRoot", "getCurrentSelection", "setRoot",
        "setCurrentSelection"],
    "keyCancel": ["kill", "close"],
}


class Failure(Exception):
    """What a test has the host raise."""


HERE = os.path.dirname(os.path.abspath(__file__))
LIBRARY = os.path.dirname(os.path.abspath(os.__file__))


def entries():
    """The module's own traceback entries of the current exception: file, line, function."""
    found = []
    for filename, line, function, _ in traceback.extract_tb(sys.exc_info()[2]):
        folder = os.path.dirname(os.path.abspath(filename))
        if folder != HERE and not folder.startswith(LIBRARY):
            found.append((filename, line, function))
    return found


class Tracebacks(loading.ModuleCase):
    """What a host finds in its crash log."""

    def setUp(self):
        super(Tracebacks, self).setUp()
        self.host.urlopen = lambda *arguments: open(self.host.real("/catalogue"))
        self.bouquets = 'FROM "userbouquet.one.%s"\nFROM "userbouquet.two.%s"\n'

    def prepare(self):
        """Sets the receiver up; everything succeeds on it."""
        self.host.reset()
        self.host.urlopen = lambda *arguments: open(self.host.real("/catalogue"))
        self.host.write("/catalogue", "a:::b:::c:::d\n")
        self.host.write("/etc/opkg/all-feed.conf", "src/gz Qel-all h/all\n")
        for kind in ("tv", "radio"):
            self.host.write("/tmp/settings/bouquets." + kind, self.bouquets % (kind, kind))
            self.host.write("/etc/enigma2/bouquets." + kind, "#NAME x\n")
            for name in ("one", "two"):
                self.host.write("/tmp/settings/userbouquet.%s.%s" % (name, kind), "")
        self.host.write("/tmp/settings/lamedb", "")
        recording_host.start_info_bar()
        screen = self.screen()
        screen["downloadmenu"].current = ("d", "a - b", "c", None, "b")
        screen.Console.appContainers.update(one=1, two=2)
        del self.host.calls[:]
        return screen

    def scenarios(self):
        """Name of the function, a call of it, and what is particular about the receiver."""
        def no_folder(screen):
            """The working folder is not there yet."""
            screen.tmp_path = "/tmp/new"

        def status(code):
            """The transfers give this status."""
            def change(screen):
                """Replaces the transfers."""
                self.replace(parse_download_file=lambda: (code, None), download_settings=lambda name, path: code)
            return change

        def cannot_write(screen):
            """The folder cannot be written."""
            self.host.answers["fileExists"] = False

        def reload_fails(screen):
            """The reload gives a false value."""
            screen.__dict__["reload_settings"] = lambda: False

        return [
            ("base_url", lambda screen: self.module.base_url(), None),
            ("info_url", lambda screen: self.module.info_url(), None),
            ("download_settings", lambda screen: self.module.download_settings("d", "/tmp"), None),
            ("parse_download_file", lambda screen: self.module.parse_download_file(), None),
            ("__init__", lambda screen: self.module.Morvesk(recording_host.Session(), ""), None),
            ("init_vars", lambda screen: screen.init_vars(), None),
            ("getServiceLists", lambda screen: screen.getServiceLists(), None),
            ("getServiceLists", lambda screen: screen.getServiceLists(), status(2)),
            ("getServiceLists", lambda screen: screen.getServiceLists(), status(3)),
            ("keyOk", lambda screen: screen.keyOk(), None),
            ("keyOk", lambda screen: screen.keyOk(), no_folder),
            ("keyOk", lambda screen: screen.keyOk(), cannot_write),
            ("keyOk", lambda screen: screen.keyOk(), status(2)),
            ("keyOk", lambda screen: screen.keyOk(), status(3)),
            ("download_finished", lambda screen: screen.download_finished(), None),
            ("untar_finished", lambda screen: screen.untar_finished("", 0), None),
            ("untar_finished", lambda screen: screen.untar_finished("", 0), no_folder),
            ("untar_finished", lambda screen: screen.untar_finished("", 1), None),
            ("installNewFavourites", lambda screen: screen.installNewFavourites(), None),
            ("installNewFavourites", lambda screen: screen.installNewFavourites(("", False)), None),
            ("installNewFavourites", lambda screen: screen.installNewFavourites(None), None),
            ("copy_finished", lambda screen: screen.copy_finished("", 0), None),
            ("copy_finished", lambda screen: screen.copy_finished("", 0), reload_fails),
            ("mergeNewFavourites", lambda screen: screen.mergeNewFavourites(), None),
            ("writeBouquetFiles", lambda screen: screen.writeBouquetFiles("tv", [("userbouquet.one.tv", "x")]), None),
            ("reload_settings", lambda screen: screen.reload_settings(), None),
            ("keyCancel", lambda screen: screen.keyCancel(), None),
        ]

    def sweep(self, function, use, change):
        """Has the first, second, ... host call fail until all succeed; checks where each failure passed."""
        points = 0
        while True:
            namespace = dict(vars(self.module))
            screen = self.prepare()
            if change:
                change(screen)
                del self.host.calls[:]
            error = self.host.error = Failure("at", points)
            self.host.fail_at = points
            try:
                use(screen)
                if len(self.host.calls) <= points:
                    return points
                # The guard around the title takes anything.
                self.assertEqual(function, "__init__")
                self.assertIn(self.host.calls[points][0], ("StaticText", "widget"))
            except Failure as caught:
                self.assertIs(caught, error)
                self.assertEqual(caught.args, ("at", points))
                self.assertEqual(len(self.host.calls), points + 1 + self.closed_after_failure())
                names = [name for _, _, name in entries()]
                self.assertEqual(names[0], function)
                for caller, called in zip(names, names[1:]):
                    self.assertIn(called, CALLS[caller])
                self.assertIn(self.host.calls[points][0], MAKES[names[-1]])
                self.assertEqual(traceback.extract_tb(sys.exc_info()[2])[-1][2], "note")
            finally:
                vars(self.module).clear()
                vars(self.module).update(namespace)
            points += 1

    def closed_after_failure(self):
        """A file that could not be read is closed all the same."""
        return len([record for record in self.host.calls[self.host.fail_at + 1:] if record[0] == "close file"])

    def test_every_host_call_that_fails_says_where(self):
        stdout, sys.stdout = sys.stdout, open(os.devnull, "w")
        try:
            total = 0
            for scenario in self.scenarios():
                points = self.sweep(*scenario)
                self.assertGreater(points, 0, scenario[0])
                total += points
        finally:
            sys.stdout = stdout
        self.assertGreater(total, 200)

    def test_nothing_but_the_guarded_errors_is_swallowed(self):
        errors = (
            SystemExit(1), KeyboardInterrupt(), MemoryError(), IOError("x"), EnvironmentError("x"), ValueError("x"), GeneratorExit())
        for error in errors:
            screen = self.prepare()
            for name in ("urlopen", "read"):
                self.host.failures = {name: error}
                for use in (screen.init_vars, screen.keyOk, self.module.parse_download_file):
                    self.assertIs(self.raised(use), error)
            self.host.failures = {"os.makedirs": error}
            screen.tmp_path = "/tmp/new"
            self.assertIs(self.raised(screen.keyOk), error)

    def test_entries_name_file_line_and_function(self):
        screen = self.prepare()
        self.host.failures["readline"] = Failure()
        try:
            screen.init_vars()
            self.fail("nothing raised")
        except Failure:
            found = entries()
            text = traceback.format_exc()
        self.assertEqual(
            [name for _, _, name in found], ["init_vars", "getServiceLists", "parse_download_file", "info_url", "base_url"])
        for filename, line, function in found:
            self.assertIn(os.path.splitext(filename)[1], (".py", ".cpp"))
            self.assertGreater(line, 0)
            self.assertIn('File "%s", line %d, in %s' % (filename, line, function), text)
            source = os.path.join(loading.ROOT, filename)
            if os.path.isfile(source):
                with open(source) as stream:
                    self.assertLessEqual(line, len(stream.readlines()))

    def test_the_line_is_that_of_the_call(self):
        lines = []
        for point in range(9):
            screen = self.prepare()
            self.host.error, self.host.fail_at = Failure(), point
            try:
                screen.reload_settings()
                self.fail("nothing raised")
            except Failure:
                (_, line, name), = entries()
                self.assertEqual(name, "reload_settings")
                lines.append(line)
        # Two calls stand on each of the lines that ask for the database.
        self.assertEqual(lines[1:5], [lines[1], lines[1], lines[3], lines[3]])
        self.assertEqual(len(set(lines)), 7)

    def test_the_interpreter_s_own_errors_have_an_entry_too(self):
        screen = self.prepare()
        self.replace(base_url=lambda: None)
        for use, names in (
                (self.module.info_url, ["info_url"]),
                (lambda: self.module.download_settings("", ""), ["download_settings"]),
                (lambda: screen.installNewFavourites(("text",)), ["installNewFavourites"]),
                (lambda: screen.writeBouquetFiles("tv", 5), ["writeBouquetFiles"]),
                (lambda: screen.writeBouquetFiles("tv", [5]), ["writeBouquetFiles"]),
                (lambda: screen.installNewFavourites(5), ["installNewFavourites"])):
            try:
                use()
                self.fail("nothing raised")
            except (TypeError, IndexError, ValueError):
                self.assertEqual([name for _, _, name in entries()], names)

    def test_a_refused_call_names_no_other_function(self):
        for use, name in (
                (lambda: self.module.base_url(1), "base_url"), (lambda: self.screen().keyOk(1), "keyOk"),
                (lambda: self.module.Morvesk(1), "__init__")):
            try:
                use()
                self.fail("nothing raised")
            except TypeError:
                self.assertIn([function for _, _, function in entries()], ([], [name]))

    def test_an_exception_passes_python_frames_in_between(self):
        class Own(self.module.Morvesk):
            """Overrides a step in Python."""

            def getServiceLists(self):
                super(Own, self).getServiceLists()
        screen = self.prepare()
        screen = Own(recording_host.Session(), "")
        self.host.failures["open"] = Failure()
        try:
            screen.init_vars()
            self.fail("nothing raised")
        except Failure:
            names = [name for _, _, name, _ in traceback.extract_tb(sys.exc_info()[2])][1:]
        self.assertEqual(names, [
            "init_vars", "getServiceLists", "getServiceLists", "parse_download_file", "info_url", "base_url", "recorded_open", "note"])

    def test_handled_errors_leave_nothing_behind(self):
        screen = self.prepare()
        screen.tmp_path = "/tmp/new"
        self.host.failures["os.makedirs"] = OSError("no")
        screen.keyOk()
        self.host.failures["urlopen"] = urllib2.URLError("no")
        self.assertEqual(self.module.parse_download_file(), (3, None))
        self.assertEqual(self.module.download_settings("", ""), 3)
        self.assertEqual(sys.exc_info(), (None, None, None))


if __name__ == "__main__":
    loading.main()
