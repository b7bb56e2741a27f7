"""The choice of a list: folder, transfer, extraction, the check of what was unpacked, and the question."""

import os
import tarfile
import StringIO
import subprocess

import loading
import recording_host
from recording_host import ChoiceBox, MessageBox, call, translated
from test_catalogue import ServerCase
from test_list import error_calls, error_row

ROW = ("one.tar.gz", "A - B", "C", None, "B")
MANDATORY = ("bouquets.tv", "bouquets.radio", "lamedb")
NO_FOLDER = "Sorry, creating download folder failed"
MISSING = "Sorry, there are some mandatory files missing\nPlease try antoher services list."
EXTRACTION = "Sorry, extracting of services list failed\nPlease try again."
QUESTION = "How to install new service lists..."
CHOICES = ("append to exisiting service lists", "overwrite exisiting service lists")


def box(text, kind=MessageBox.TYPE_ERROR):
    """The records of a message box."""
    return [call("_", text), call("open dialog", MessageBox, translated(text), kind), call("setTitle", "the title")]


class Ok(loading.ModuleCase):
    """The OK and green keys."""

    def setUp(self):
        super(Ok, self).setUp()
        self.host.write("/tmp/settings/x", "")

    def press(self, status, row=ROW, **attributes):
        """Presses OK on a row; gives the screen."""
        screen = self.screen(download_finished=loading.Journal("download_finished"), **attributes)
        screen["downloadmenu"].current = row
        self.replace(download_settings=loading.Journal("download_settings", status))
        self.assertIsNone(screen.keyOk())
        return screen

    def test_success_starts_the_extraction(self):
        self.press(0)
        self.assertCalls([
            call("getCurrent"), call("os.path.exists", "/tmp/settings"), call("fileExists", "/tmp/settings", mode="w"),
            call("download_settings", "one.tar.gz", "/tmp/settings"), call("download_finished")])

    def test_nothing_is_selected(self):
        for row in (None, False, (), [], "", 0):
            self.press(0, row)
            self.assertCalls([call("getCurrent")])

    def test_a_row_without_an_archive(self):
        for first in (None, "", False, 0, ()):
            self.press(0, (first,) + ROW[1:])
            self.assertCalls([call("getCurrent")])

    def test_a_missing_folder_is_made(self):
        self.press(0, tmp_path="/tmp/new/folder")
        self.assertCalls([
            call("getCurrent"), call("os.path.exists", "/tmp/new/folder"), call("os.makedirs", "/tmp/new/folder"),
            call("fileExists", "/tmp/new/folder", mode="w"), call("download_settings", "one.tar.gz", "/tmp/new/folder"),
            call("download_finished")])
        self.assertTrue(os.path.isdir(self.host.real("/tmp/new/folder")))

    def test_an_os_error_of_the_folder_is_swallowed(self):
        class Own(OSError):
            """A kind of OS error."""
        for error in (OSError(13, "Permission denied"), OSError(), Own()):
            self.host.failures["os.makedirs"] = error
            screen = self.press(0, tmp_path="/tmp/new")
            self.assertCalls([
                call("getCurrent"), call("os.path.exists", "/tmp/new"), call("os.makedirs", "/tmp/new"),
                call("fileExists", "/tmp/new", mode="w")] + box(NO_FOLDER))
            self.assertEqual(len(screen.list), 1)
        self.host.answers["fileExists"] = True
        self.press(0, tmp_path="/tmp/new")
        self.assertEqual(self.host.calls[-1], call("download_finished"))

    def test_every_other_error_of_the_folder_propagates(self):
        for error in (IOError("x"), EnvironmentError("x"), ValueError("x"), KeyboardInterrupt(), SystemExit()):
            self.host.failures["os.makedirs"] = error
            screen = self.screen(tmp_path="/tmp/new")
            screen["downloadmenu"].current = ROW
            self.assertIs(self.raised(screen.keyOk), error)
            self.assertEqual(self.host.calls[-1], call("os.makedirs", "/tmp/new"))

    def test_a_folder_that_cannot_be_written(self):
        self.host.answers["fileExists"] = False
        screen = self.press(0)
        self.assertCalls([
            call("getCurrent"), call("os.path.exists", "/tmp/settings"), call("fileExists", "/tmp/settings", mode="w")] + box(NO_FOLDER))
        self.assertEqual(self.host.calls[-2][1][2], 3)
        self.assertEqual(len(screen.list), 1)
        self.assertEqual(screen.list[0][1], translated("Please wait ..."))

    def test_a_failed_transfer_gives_the_error_row(self):
        for code in (2, 3):
            screen = self.press(code)
            # The attribute may be set before or after the row is made: no host call lies between the two that could tell.
            self.assertEqual([record for record in self.host.calls if record[0] != "set"], [
                call("getCurrent"), call("os.path.exists", "/tmp/settings"), call("fileExists", "/tmp/settings", mode="w"),
                call("download_settings", "one.tar.gz", "/tmp/settings")] + error_calls(code) + [call("setList", [error_row(code)])])
            self.assertEqual(screen.list, [error_row(code)])
            self.assertEqual(len(self.host.named("set")), 1)
            self.assertIs(screen["downloadmenu"].rows, screen.list)

    def test_an_error_row_replaces_the_list_by_a_new_one(self):
        screen = self.screen()
        before = screen.list
        screen["downloadmenu"].current = ROW
        self.replace(download_settings=lambda name, path: 2)
        screen.keyOk()
        self.assertIsNot(screen.list, before)
        self.assertEqual(before[0][1], translated("Please wait ..."))

    def test_any_other_status_leaves_the_screen_as_it_was(self):
        for status in (1, 4, -1, None, "0", "2", (0,), object()):
            screen = self.press(status)
            self.assertEqual(self.host.calls[-1], call("download_settings", "one.tar.gz", "/tmp/settings"))
            self.assertEqual(screen.list[0][1], translated("Please wait ..."))

    def test_a_status_is_compared_by_value(self):
        self.press(False)
        self.assertEqual(self.host.calls[-1], call("download_finished"))
        self.assertEqual(self.press(2.0).list, [error_row(2)])
        self.assertEqual(self.press(3L).list, [error_row(3)])

    def test_the_row_s_first_element_is_passed_as_it_is(self):
        for first in ("x", u"\xfc", "\0", 5, ("y",)):
            self.press(4, [first])
            self.assertEqual(self.host.calls[-1], call("download_settings", first, "/tmp/settings"))

    def test_errors_of_the_transfer_propagate(self):
        screen = self.screen()
        screen["downloadmenu"].current = ROW
        self.replace(download_settings=loading.Journal("download_settings"))
        error = self.host.failures["download_settings"] = IOError("x")
        self.assertIs(self.raised(screen.keyOk), error)


class Unpacked(loading.ModuleCase):
    """The end of the extraction."""

    def finish(self, *arguments, **keywords):
        """The end of the extraction; gives the screen."""
        attributes = keywords.pop("attributes", {})
        screen = self.screen(init_vars=loading.Journal("init_vars"), **attributes)
        self.assertIsNone(screen.untar_finished(*arguments, **keywords))
        return screen

    def put(self, *names):
        """Puts unpacked files into the working folder."""
        for name in names:
            self.host.write("/tmp/settings/" + name, "")

    def tests_of(self, *names):
        """The records of looking for these files."""
        return [call("os.path.exists", "/tmp/settings/" + name) for name in names]

    def question(self, screen):
        """The records of the question."""
        choices = [(translated(CHOICES[0]), True), (translated(CHOICES[1]), False)]
        return [call("_", CHOICES[0]), call("_", CHOICES[1]), call("_", QUESTION), call(
            "open dialog with callback", screen.installNewFavourites, ChoiceBox, title=translated(QUESTION), list=choices)]

    def test_all_there(self):
        self.put(*MANDATORY)
        screen = self.finish("output", 0, [])
        self.assertCalls(self.tests_of(*MANDATORY) + self.question(screen))
        choices = self.host.calls[-1][2]["list"]
        self.assertEqual([(type(choice), choice[1]) for choice in choices], [(tuple, True), (tuple, False)])
        self.assertIs(choices[0][1], True)
        self.assertIs(choices[1][1], False)

    def test_the_question_is_put_together_from_left_to_right(self):
        self.put(*MANDATORY)
        screen = self.screen()
        del self.module.ChoiceBox
        error = self.raised(screen.untar_finished, "output", 0)
        self.assertEqual((type(error), str(error)), (NameError, "global name 'ChoiceBox' is not defined"))
        self.assertCalls(self.tests_of(*MANDATORY) + [call("_", CHOICES[0]), call("_", CHOICES[1])])

    def test_the_first_missing_file_ends_the_check(self):
        for present, looked in (((), 1), (MANDATORY[:1], 2), (MANDATORY[:2], 3), (MANDATORY[1:], 1), ((MANDATORY[0], MANDATORY[2]), 2)):
            self.host.reset()
            self.put(*present)
            self.finish("", 0)
            self.assertCalls(self.tests_of(*MANDATORY[:looked]) + box(MISSING) + [call("init_vars")])

    def test_a_folder_of_that_name_is_there_too(self):
        self.put("bouquets.tv/x", "bouquets.radio/x", "lamedb/x")
        screen = self.finish("", 0)
        self.assertCalls(self.tests_of(*MANDATORY) + self.question(screen))

    def test_the_names_are_those_of_the_attribute(self):
        screen = self.finish("", 0, attributes={"mandatory_files": []})
        self.assertCalls(self.question(screen))
        self.put("b", "a")
        screen = self.finish("", 0, attributes={"mandatory_files": iter(["b", "a"])})
        self.assertCalls(self.tests_of("b", "a") + self.question(screen))
        self.finish("", 0, attributes={"mandatory_files": ["b", "c", "d"]})
        self.assertCalls(self.tests_of("b", "c") + box(MISSING) + [call("init_vars")])

    def test_the_folder_is_that_of_the_attribute(self):
        self.finish("", 0, attributes={"tmp_path": "/elsewhere"})
        self.assertEqual(self.host.calls[0], call("os.path.exists", "/elsewhere/bouquets.tv"))

    def test_a_failed_extraction(self):
        self.put(*MANDATORY)
        for status in (1, 2, -9, 256, None, "0", "", [], object()):
            self.finish("tar: short read", status, [])
            self.assertCalls(box(EXTRACTION) + [call("init_vars")])

    def test_the_status_is_compared_by_value(self):
        self.put(*MANDATORY)
        for status in (0, False, 0L, 0.0):
            screen = self.finish("", status)
            self.assertCalls(self.tests_of(*MANDATORY) + self.question(screen))

    def test_init_vars_comes_after_the_box_and_fetches_the_catalogue(self):
        screen = self.screen()
        self.replace(parse_download_file=loading.Journal("parse_download_file", (0, [])))
        screen.untar_finished("", 1)
        self.assertCalls(box(EXTRACTION) + [
            call("_", "Download services lists"), call("set", "messagebox_title", translated("Download services lists")),
            call("set", "list", []), call("parse_download_file"), call("setList", [])])

    def test_the_answer_goes_to_the_instance_s_method(self):
        class Own(self.module.Morvesk):
            """Overrides the answer."""

            def installNewFavourites(self, append=None):
                return "own", append
        self.put(*MANDATORY)
        screen = Own(recording_host.Session(), "")
        screen.untar_finished("", 0)
        callback = self.host.calls[-1][1][0]
        self.assertEqual(callback(("text", True)), ("own", ("text", True)))


class FromTheServer(ServerCase):
    """OK on a real row of a real catalogue, a real archive unpacked by the real command."""

    def archive(self, *names):
        """A gzip-compressed tar file with these files."""
        stream = StringIO.StringIO()
        with tarfile.open(fileobj=stream, mode="w:gz") as archive:
            for name in names:
                content = "content of " + name
                info = tarfile.TarInfo(name)
                info.size = len(content)
                archive.addfile(info, StringIO.StringIO(content))
        return stream.getvalue()

    def choose(self, body):
        """Fetches the catalogue, chooses its list and runs the command; gives its exit status."""
        self.server.catalogue("A:::B:::C:::one.tar.gz\n")
        self.server.answer("one.tar.gz", body)
        screen = self.screen()
        screen.init_vars()
        screen["downloadmenu"].current = screen.list[0]
        screen.keyOk()
        (_, (command, callback), _), = self.host.named("ePopen")
        self.assertEqual(command, "/bin/tar -xzf /tmp/settings/settings.tar.gz -C /tmp/settings/")
        process = subprocess.Popen(
            command.replace("/tmp/settings", self.host.real("/tmp/settings")), shell=True, stdout=subprocess.PIPE,
            stderr=subprocess.STDOUT)
        output = process.communicate()[0]
        del self.host.calls[:]
        callback(output, process.returncode, [])
        return process.returncode

    def test_a_complete_archive(self):
        self.assertEqual(self.choose(self.archive("userbouquet.x.tv", *MANDATORY)), 0)
        self.assertEqual(len(self.host.named("open dialog with callback")), 1)
        self.assertEqual(self.host.read("/tmp/settings/lamedb"), "content of lamedb")

    def test_an_archive_that_lacks_a_file(self):
        self.assertEqual(self.choose(self.archive(*MANDATORY[:2])), 0)
        self.assertEqual(self.host.named("open dialog"), [call("open dialog", MessageBox, translated(MISSING), 3)])
        self.assertEqual(self.host.named("open dialog with callback"), [])

    def test_something_that_is_no_archive(self):
        self.assertNotEqual(self.choose("<html>"), 0)
        self.assertEqual(self.host.named("open dialog"), [call("open dialog", MessageBox, translated(EXTRACTION), 3)])


if __name__ == "__main__":
    loading.main()
