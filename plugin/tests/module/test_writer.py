"""The writer of a root file: its lines kept, their ends made one kind, references added, bouquets copied."""

import os
import time
import unittest

import loading
import recording_host
from recording_host import CONFIG, SCOPE_CONFIG, call

TV = '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet'
RADIO = '#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet'
FRESH_TV = '#NAME Bouquets (TV)\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n'
FRESH_RADIO = '#NAME Bouquets (Radio)\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.radio" ORDER BY bouquet\n'

# What stands in the root file, and what the writer makes of it before it adds a reference.
KEPT = (
    ("", ""),
    ("\n", "\n"),
    ("#NAME x\n", "#NAME x\n"),
    ("#NAME x", "#NAME x\n"),
    ("#NAME x\r\n", "#NAME x\n"),
    ("#NAME x\r\ny\r\n", "#NAME x\ny\n"),
    ("\r\r\n\r", "\n\n"),
    ("\r", "\n"),
    ("a\rb\rc", "abc\n"),
    ("a\rb\n\n\n", "ab\n\n\n"),
    ("\0\n\0", "\0\n\0\n"),
    ("a\x0bb\x0cc\x1c\x85\n", "a\x0bb\x0cc\x1c\x85\n"),
    ("  a \t\n", "  a \t\n"),
    ("\xef\xbb\xbf#NAME \xc3\xa4\xff\n", "\xef\xbb\xbf#NAME \xc3\xa4\xff\n"),
    ("%s %d %\n", "%s %d %\n"),
    ("x" * 200000 + "\r\n" + "y\n" * 3000, "x" * 200000 + "\n" + "y\n" * 3000),
)


class Writer(loading.ModuleCase):
    """What the writer makes of a root file."""

    def write(self, kind, pairs, **attributes):
        """Runs the writer on existing bouquets."""
        for pair in pairs:
            self.host.write("/tmp/settings/" + pair[0], "content of " + pair[0])
        screen = self.screen(**attributes)
        self.assertIsNone(screen.writeBouquetFiles(kind, pairs))

    def test_every_step_in_order_on_an_existing_file(self):
        for kind, form in (("tv", TV), ("radio", RADIO)):
            path = CONFIG + "bouquets." + kind
            self.host.write(path, "#NAME x\r\n")
            self.write(kind, [("a", "b"), ("c", "d")])
            content = "#NAME x\n" + form % "b" + "\n" + form % "d" + "\n"
            self.assertCalls([
                call("resolveFilename", SCOPE_CONFIG), call("fileExists", path), call("open", path, "r"), call("readlines", path),
                call("close file", path), call("shutil.copy2", "/tmp/settings/a", CONFIG + "b"),
                call("shutil.copy2", "/tmp/settings/c", CONFIG + "d"), call("open", path, "w"), call("write", path, content),
                call("close file", path)])
            self.assertEqual(self.host.read(path), content)

    def test_every_step_in_order_without_a_file(self):
        for kind, fresh, form in (("tv", FRESH_TV, TV), ("radio", FRESH_RADIO, RADIO)):
            path = CONFIG + "bouquets." + kind
            self.write(kind, [("a", "b")])
            content = fresh + form % "b" + "\n"
            self.assertCalls([
                call("resolveFilename", SCOPE_CONFIG), call("fileExists", path), call("shutil.copy2", "/tmp/settings/a", CONFIG + "b"),
                call("open", path, "w"), call("write", path, content), call("close file", path)])
            self.assertEqual(self.host.read(path), content)

    def test_the_text_of_the_references(self):
        self.write("radio", [("a", "userbouquet.x.radio")])
        self.assertEqual(self.host.read(CONFIG + "bouquets.radio"), (
            "#NAME Bouquets (Radio)\n"
            "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.favourites.radio\" ORDER BY bouquet\n"
            "#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET \"userbouquet.x.radio\" ORDER BY bouquet\n"))

    def test_any_other_kind_is_written_as_tv(self):
        self.write("Radio", [("a", "b")])
        self.assertEqual(self.host.read(CONFIG + "bouquets.Radio"), FRESH_TV + TV % "b" + "\n")

    def test_lines_are_kept_with_one_kind_of_end(self):
        for before, after in KEPT:
            self.host.write(CONFIG + "bouquets.tv", before)
            self.write("tv", [])
            self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), after, before[:100])
            self.host.write(CONFIG + "bouquets.tv", before)
            self.write("tv", [("a", "b")])
            self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), after + TV % "b" + "\n", before[:100])

    def test_an_empty_file_gets_no_name_line(self):
        self.host.write(CONFIG + "bouquets.tv", "")
        self.write("tv", [("a", "b")])
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), TV % "b" + "\n")

    def test_without_pairs_the_file_is_written_all_the_same(self):
        self.write("tv", [])
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), FRESH_TV)

    def test_a_reference_in_the_last_line_without_an_end_is_not_added_again(self):
        for kind, form in (("tv", TV), ("radio", RADIO)):
            path = CONFIG + "bouquets." + kind
            self.host.write(path, "#NAME x\n" + form % "b")
            self.write(kind, [("a", "b"), ("c", "d")])
            self.assertEqual(self.host.read(path), "#NAME x\n" + form % "b" + "\n" + form % "d" + "\n")
            self.assertEqual(self.host.named("shutil.copy2"), [call("shutil.copy2", "/tmp/settings/c", CONFIG + "d")])
            self.assertEqual(self.host.read(CONFIG + "b"), None)

    def test_a_reference_anywhere_else_is_added_again(self):
        line = TV % "b"
        for before in (line + "\n", line + "\r\n", line + "\r", line + "\n#x", " " + line, line + " ", RADIO % "b"):
            self.host.write(CONFIG + "bouquets.tv", before)
            self.write("tv", [("a", "b")])
            after = before.replace("\r", "").rstrip("\n") + "\n" + TV % "b" + "\n"
            self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), after)
            self.assertEqual(len(self.host.named("shutil.copy2")), 1)

    def test_the_same_pair_twice_is_added_twice(self):
        self.write("tv", [("a", "b"), ("a", "b")])
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), FRESH_TV + (TV % "b" + "\n") * 2)
        self.assertEqual(len(self.host.named("shutil.copy2")), 2)

    def test_the_favourites_of_a_fresh_file_are_no_duplicate(self):
        self.write("tv", [("a", "userbouquet.favourites.tv")])
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), FRESH_TV + TV % "userbouquet.favourites.tv" + "\n")
        self.assertEqual(self.host.read(CONFIG + "userbouquet.favourites.tv"), "content of a")

    def test_names_of_every_kind(self):
        names = ["a\0b", "\xc3\xa4\xff", "%s", 'a"b', "a'b", "", "a\nb", "a\rb", "x" * 1000]
        self.replace(shutil=Copies())
        self.write_without_files("tv", [("source", name) for name in names])
        added = "".join(TV.replace("%s", name, 1) + "\n" for name in names)
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), FRESH_TV + added)
        self.assertEqual(self.host.named("copy"), [call("copy", "/tmp/settings/source", CONFIG + name) for name in names])

    def write_without_files(self, kind, pairs, **attributes):
        """Runs the writer with bouquets that need not be there."""
        self.screen(**attributes).writeBouquetFiles(kind, pairs)

    def test_pairs_of_any_kind(self):
        self.replace(shutil=Copies())
        self.write_without_files("tv", iter([["a", "b"], "cd", iter(["e", "f"])]))
        self.assertEqual(self.host.named("copy"), [
            call("copy", "/tmp/settings/" + source, CONFIG + target) for source, target in ("ab", "cd", "ef")])
        for pairs, kind in (
                ([("a",)], ValueError), ([("a", "b", "c")], ValueError), ([5], TypeError), (5, TypeError), (None, TypeError)):
            self.host.reset()
            self.assertIs(type(self.raised(self.screen().writeBouquetFiles, "tv", pairs)), kind)
            self.assertEqual(self.host.named("write"), [])

    def test_folders(self):
        self.host.write("/conf/bouquets.tv", "")
        self.host.write("/new/a", "content")
        self.host.write("/dest/x", "")
        self.replace(resolveFilename=loading.Journal("resolveFilename", "/conf/"))
        self.write_without_files("tv", [("a", "b")], tmp_path="/new", dest_dir="/dest/")
        self.assertEqual(self.host.named("resolveFilename", "fileExists", "shutil.copy2"), [
            call("resolveFilename", SCOPE_CONFIG), call("fileExists", "/conf/bouquets.tv"), call("shutil.copy2", "/new/a", "/dest/b")])
        self.assertEqual(self.host.read("/conf/bouquets.tv"), TV % "b" + "\n")
        self.assertEqual(self.host.read("/dest/b"), "content")

    def test_times_and_mode_are_copied_and_an_older_file_is_overwritten(self):
        self.host.write("/tmp/settings/a", "new")
        self.host.write(CONFIG + "b", "old and longer")
        os.chmod(self.host.real("/tmp/settings/a"), 0640)
        os.utime(self.host.real("/tmp/settings/a"), (1000, 2000))
        self.write_without_files("tv", [("a", "b")])
        status = os.stat(self.host.real(CONFIG + "b"))
        self.assertEqual((self.host.read(CONFIG + "b"), status.st_mode & 0777, int(status.st_mtime)), ("new", 0640, 2000))

    def test_whether_the_file_is_there_is_the_host_s_word(self):
        self.host.write(CONFIG + "bouquets.tv", "kept\n")
        for answer in (False, None, 0, ""):
            self.host.answers["fileExists"] = answer
            self.write("tv", [("a", "b")])
            self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), FRESH_TV + TV % "b" + "\n")


class Copies(object):
    """Stands for `shutil`; copies nothing."""

    def copy2(self, source, target):
        """Notes a copy."""
        recording_host.HOST.note("copy", source, target)


class Failures(loading.ModuleCase):
    """What stays when a step fails."""

    def test_every_failure_leaves_the_method_and_the_root_file(self):
        self.host.write(CONFIG + "bouquets.tv", "old\n")
        for name in "ab":
            self.host.write("/tmp/settings/" + name, name)
        # The root file is opened for writing by the eighth call only.
        for point in range(7):
            screen = self.screen()
            self.host.error, self.host.fail_at = RuntimeError(point), point
            self.assertIs(self.raised(screen.writeBouquetFiles, "tv", [("a", "c"), ("b", "d")]), self.host.error)
            self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), "old\n")
            self.host.fail_at = None

    def test_bouquets_copied_before_stay(self):
        self.host.write(CONFIG + "bouquets.tv", "old\n")
        self.host.write("/tmp/settings/a", "content")
        error = self.raised(self.screen().writeBouquetFiles, "tv", [("a", "b"), ("missing", "c"), ("a", "d")])
        self.assertEqual((type(error), error.errno), (IOError, 2))
        self.assertEqual(self.host.files(CONFIG), ["b", "bouquets.tv"])
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), "old\n")

    def test_a_root_file_that_cannot_be_read_is_closed(self):
        self.host.write(CONFIG + "bouquets.tv", "old\n")
        self.host.failures["readlines"] = IOError("x")
        screen = self.screen()
        del recording_host.OPENED[:]
        self.assertIs(self.raised(screen.writeBouquetFiles, "tv", []), self.host.failures["readlines"])
        self.assertTrue(recording_host.OPENED[0].stream.closed)
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), "old\n")

    def test_lines_are_taken_once(self):
        self.host.write(CONFIG + "bouquets.tv", "a\nb\n")
        read = recording_host.RecordedFile.readlines
        recording_host.RecordedFile.readlines = lambda stream: iter(read(stream))
        try:
            self.screen().writeBouquetFiles("tv", [])
        finally:
            recording_host.RecordedFile.readlines = read
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), "a\nb\n")

    def test_without_a_merge_there_is_no_folder_to_copy_to(self):
        screen = self.module.Morvesk(recording_host.Session(), "")
        self.host.write("/tmp/settings/a", "")
        error = self.raised(screen.writeBouquetFiles, "tv", [("a", "b")])
        self.assertEqual((type(error), str(error)), (AttributeError, "'Morvesk' object has no attribute 'dest_dir'"))


class Cost(loading.ModuleCase):
    """The cost grows as the text does, and pairs are not compared with every line."""

    class Quiet(object):
        """Stands for `shutil`, does nothing."""

        @staticmethod
        def copy2(source, target):
            """Copies nothing."""

    def seconds(self, lines, pairs):
        """The least processor time of three runs."""
        self.host.write(CONFIG + "bouquets.tv", "".join(TV % ("userbouquet.%09d.tv" % line) + "\n" for line in range(lines)))
        given = [("userbouquet.a.tv", "userbouquet.%08d.tv" % pair) for pair in range(pairs)]
        screen, times = self.screen(), []
        for _ in range(3):
            content = self.host.read(CONFIG + "bouquets.tv")
            start = time.clock()
            screen.writeBouquetFiles("tv", given)
            times.append(time.clock() - start)
            self.host.write(CONFIG + "bouquets.tv", content)
        return min(times)

    @loading.compiled_only
    def test_four_times_the_lines_cost_less_than_ten_times_as_much(self):
        self.assertLess(self.seconds(20000, 0), 10 * self.seconds(5000, 0) + 0.01)

    @unittest.skipUnless(loading.COMPILED, "the usual Python compares every pair with every line")
    def test_lines_and_pairs_together_cost_what_they_cost_alone(self):
        self.replace(shutil=self.Quiet)
        lines, pairs = 40000, 5000
        alone = self.seconds(lines, 0) + self.seconds(0, pairs)
        self.assertLess(self.seconds(lines, pairs), 3 * alone + 0.01)


if __name__ == "__main__":
    loading.main()
