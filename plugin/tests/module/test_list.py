"""The list on screen: catalogue rows, error rows, and the start of the extraction."""

import feed_server
import loading
import recording_host
from recording_host import FEED_FILE, call, loaded, picture, translated
from test_catalogue import ServerCase

SORRY = "Sorry ..."
TEXTS = {
    2: "It seems that your Internet connection is not ok, please check it",
    3: "Download of services list failes, please be patient and try again later",
}


def error_row(code):
    """The row that reports a failed transfer."""
    return (None, translated(SORRY), translated(TEXTS[code]), picture("ntptime.png"), None)


def error_calls(code):
    """The records of making that row."""
    return [call("_", SORRY), call("_", TEXTS[code])] + loaded("ntptime.png")


def catalogue_row(entry):
    """The row of a catalogue entry."""
    return (entry[3], "%s - %s" % (entry[0], entry[1]), "%s" % entry[2], picture("sockets.png"), entry[1])


class Rows(loading.ModuleCase):
    """The rows that a parsed catalogue gives."""

    def fill(self, result, screen=None):
        """Shows a parsed catalogue; gives the screen."""
        screen = screen or self.screen()
        self.replace(parse_download_file=loading.Journal("parse_download_file", result))
        self.assertIsNone(screen.getServiceLists())
        return screen

    def test_catalogue_rows(self):
        entries = [("A", "B", "C", "D"), ("E", "F", "G", "H"), ("A", "B", "C", "D"), ("", "", "", ""), ("%s", "%d", "%", "\0")]
        screen = self.fill((0, entries))
        rows = [catalogue_row(entry) for entry in entries]
        self.assertCalls(
            [call("set", "list", []), call("parse_download_file")] + loaded("sockets.png") * len(entries) + [call("setList", rows)])
        self.assertEqual(screen.list, rows)
        self.assertEqual(rows[0], ("D", "A - B", "C", picture("sockets.png"), "B"))
        self.assertEqual([type(row) for row in screen.list], [tuple] * 5)
        self.assertIs(screen["downloadmenu"].rows, screen.list)

    def test_fields_with_nul_bytes_and_in_any_script(self):
        entries = [("a\0b", "\0", "\xff\0", "x\0y"), ("\xd0\x9f", "\xe2\x82\xac", "\xc3\xa4", "z")]
        screen = self.fill((0, entries))
        self.assertEqual(screen.list, [catalogue_row(entry) for entry in entries])
        self.assertEqual(screen.list[0][1], "a\0b - \0")

    def test_elements_are_those_of_the_entry(self):
        entry = ("A", "second" + str(id(self)), "C", "fourth" + str(id(self)))
        screen = self.fill((0, [entry]))
        self.assertIs(screen.list[0][0], entry[3])
        self.assertIs(screen.list[0][4], entry[1])

    def test_formatting_is_that_of_the_interpreter(self):
        entries = [(u"\xfc", "B", u"C", "D"), (1, None, 2.5, "D"), ["A", "B", "C", "D"], "abcd"]
        screen = self.fill((0, entries))
        self.assertEqual([row[1:3] for row in screen.list], [
            (u"\xfc - B", u"C"), ("1 - None", "2.5"), ("A - B", "C"), ("a - b", "c")])
        self.assertEqual([type(row[1]) for row in screen.list], [unicode, str, str, str])

    def test_an_empty_catalogue(self):
        screen = self.fill((0, []))
        self.assertCalls([call("set", "list", []), call("parse_download_file"), call("setList", [])])
        self.assertEqual(screen.list, [])

    def test_error_rows(self):
        for code in (2, 3):
            screen = self.screen()
            self.fill((code, None), screen)
            self.assertCalls(
                [call("set", "list", []), call("parse_download_file")] + error_calls(code) + [call("setList", [error_row(code)])])
            self.assertEqual(screen.list, [error_row(code)])
            self.assertIs(screen["downloadmenu"].rows, screen.list)

    def test_any_other_code_appends_nothing(self):
        for code in (1, 4, -1, None, "0", "", 2.5, [], object()):
            screen = self.screen()
            self.fill((code, None), screen)
            self.assertCalls([call("set", "list", []), call("parse_download_file"), call("setList", [])])

    def test_codes_are_compared_by_value(self):
        self.assertEqual(self.fill((False, [("A", "B", "C", "D")])).list, [catalogue_row("ABCD")])
        self.assertEqual(self.fill((0.0, [("A", "B", "C", "D")])).list, [catalogue_row("ABCD")])
        self.assertEqual(self.fill((2.0, None)).list, [error_row(2)])
        self.assertEqual(self.fill((3L, None)).list, [error_row(3)])

    def test_the_result_is_unpacked_as_a_pair(self):
        self.assertEqual(self.fill([0, iter(["abcd"])]).list, [catalogue_row("abcd")])
        self.assertEqual(self.fill(iter([0, ("abcd",)])).list, [catalogue_row("abcd")])
        for result, expected in (
                ((0,), (ValueError, "need more than 1 value to unpack")), ((), (ValueError, "need more than 0 values to unpack")),
                ((0, [], 1), (ValueError, "too many values to unpack")), (5, (TypeError, "'int' object is not iterable"))):
            screen = self.screen()
            self.replace(parse_download_file=lambda: result)
            error = self.raised(screen.getServiceLists)
            self.assertEqual((type(error), str(error)), expected)
            self.assertEqual(self.host.named("setList"), [])

    def test_the_list_is_a_new_one_each_time(self):
        screen = self.screen()
        before = screen.list
        self.fill((0, []), screen)
        after = screen.list
        self.assertIsNot(after, before)
        self.fill((0, []), screen)
        self.assertIsNot(screen.list, after)
        self.assertEqual(len(before), 1)

    def test_an_error_of_the_catalogue_leaves_the_list_unset(self):
        screen = self.screen()
        shown, error = screen["downloadmenu"].rows, ValueError("x")
        self.host.failures["parse_download_file"] = error
        self.replace(parse_download_file=loading.Journal("parse_download_file"))
        self.assertIs(self.raised(screen.getServiceLists), error)
        self.assertEqual(screen.list, [])
        self.assertEqual(self.host.named("setList"), [])
        self.assertIs(screen["downloadmenu"].rows, shown)

    def test_an_entry_that_is_too_short(self):
        screen = self.screen()
        self.replace(parse_download_file=lambda: (0, ["abcd", "abc"]))
        self.assertIs(type(self.raised(screen.getServiceLists)), IndexError)
        self.assertEqual(self.host.named("setList"), [])


class WithServer(ServerCase):
    """The rows that a real server's catalogue gives."""

    def test_two_lines_give_two_rows(self):
        self.server.catalogue("# our lists\nA:::B:::C:::D\nE:::F:::G:::H\n")
        screen = self.screen()
        screen.init_vars()
        self.assertEqual(screen["downloadmenu"].rows, [catalogue_row("ABCD"), catalogue_row("EFGH")])

    def test_no_valid_line_gives_an_empty_list(self):
        self.server.catalogue("nothing here\n")
        screen = self.screen()
        screen.init_vars()
        self.assertEqual(screen["downloadmenu"].rows, [])
        self.assertEqual(self.host.named("open dialog"), [])

    def test_failures_give_one_row_and_no_box(self):
        self.server.catalogue("", 404)
        screen = self.screen()
        screen.init_vars()
        self.assertEqual(screen["downloadmenu"].rows, [error_row(2)])
        self.host.write(FEED_FILE, "src/gz Qel-all %s/all\n" % feed_server.unreachable())
        screen.init_vars()
        self.assertEqual(screen["downloadmenu"].rows, [error_row(3)])
        self.assertEqual(self.host.named("open dialog"), [])


class Extraction(loading.ModuleCase):
    """The start of the extraction."""

    def test_the_list_is_emptied_and_tar_started(self):
        for folder in ("/tmp/settings", "/folder", "", "/with blank/%s", "/trailing/"):
            screen = self.screen(tmp_path=folder)
            before = screen.list
            self.assertIsNone(screen.download_finished())
            self.assertCalls([
                call("set", "list", []), call("setList", []),
                call("ePopen", "/bin/tar -xzf %s/settings.tar.gz -C %s/" % (folder, folder), screen.untar_finished)])
            self.assertIs(screen["downloadmenu"].rows, screen.list)
            self.assertIsNot(screen.list, before)

    def test_the_callback_is_the_instance_s_bound_method(self):
        class Own(self.module.Morvesk):
            """Overrides the callback."""

            def untar_finished(self, result, retval, extra_args=None):
                return "own"
        screen = Own(recording_host.Session(), "")
        screen.download_finished()
        (_, (_, callback), keywords), = self.host.named("ePopen")
        self.assertEqual((callback("", 0, []), keywords), ("own", {}))
        self.assertEqual(callback, screen.untar_finished)

    def test_a_unicode_folder(self):
        screen = self.screen(tmp_path=u"/\xfc")
        screen.download_finished()
        self.assertEqual(self.host.named("ePopen")[0][1][0], u"/bin/tar -xzf /\xfc/settings.tar.gz -C /\xfc/")


if __name__ == "__main__":
    loading.main()
