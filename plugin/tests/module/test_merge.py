"""The merge of new user bouquets into the receiver's: which lines name one, under which name it is stored, and the steps."""

import time

import loading
import recording_host
from recording_host import CONFIG, SCOPE_CONFIG, call, stamp

START = [
    call("resolveFilename", SCOPE_CONFIG), call("set", "dest_dir", CONFIG), call("time.time"),
    call("datetime.fromtimestamp", recording_host.NOW), call("strftime", "%Y-%m-%d_%H-%M-%S")]
DATABASE = [
    call("os.path.isfile", "/tmp/settings/lamedb"), call("eDVBDB.getInstance"), call("reloadServicelist"),
    call("loadServicelist", "/tmp/settings/lamedb"), call("saveServicelist"), call("eDVBDB.getInstance"), call("reloadBouquets")]
NO_DATABASE = [call("os.path.isfile", "/tmp/settings/lamedb"), call("eDVBDB.getInstance"), call("reloadBouquets")]

U = "userbouquet.a.tv"

# A root line and the name that is looked for in the unpack folder; None: the line is skipped without a look.
LINES = (
    ('#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.tv" ORDER BY bouquet\n', U),
    ('#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.tv" ORDER BY bouquet\r\n', U),
    ('#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.a.tv" ORDER BY bouquet', U),
    ('"userbouquet.a.tv"\n', U),
    ('"userbouquet.a.tv"', U),
    ("#NAME Bouquets (TV)\n", None),
    ("\n", None),
    ('x "userbouquet.a.radio" x\n', None),
    ('x "bouquet.a.tv" x\n', None),
    ('x "Userbouquet.a.tv" x\n', None),
    ('x " userbouquet.a.tv" x\n', None),
    ('x "userbouquet.a.tv " x\n', None),
    ('x "userbouquet.a.TV" x\n', None),
    ('x "userbouquet.tv" x\n', "userbouquet.tv"),
    ('x "userbouquettv" x\n', None),
    ('x "userbouquet a/../b.tv" x\n', "userbouquet a/../b.tv"),
    ('x "userbouquet.\xc3\xa4\xff.tv" x\n', "userbouquet.\xc3\xa4\xff.tv"),
    ('x "userbouquet.%s.tv" x\n', "userbouquet.%s.tv"),
    ('x "userbouquet.it\'s.tv" x\n', "userbouquet.it's.tv"),
    ('x "userbouquet\t.tv" x\n', "userbouquet\t.tv"),
    ('x "userbouquet\r.tv" x\n', "userbouquet\r.tv"),
    # The first pair of double quotes decides.
    ('x "one" "userbouquet.a.tv" x\n', None),
    ('x "userbouquet.a.tv" "userbouquet.b.tv"\n', U),
    ("x 'userbouquet.b.tv' \"userbouquet.a.tv\"\n", U),
    ("x \"other\" 'userbouquet.b.tv'\n", None),
    # A single double quote: from behind it to the line's last character, exclusive.
    ('x "userbouquet.a.tv\n', U),
    ('x "userbouquet.a.tv', None),
    ('x "userbouquet.a.tvx', U),
    ('x "userbouquet.a.tv\r\n', None),
    ('x "\n', None),
    ('"', None),
    ("x \"other 'userbouquet.a.tv'\n", None),
    # An empty name between double quotes: single quotes instead.
    ("x \"\" 'userbouquet.a.tv' x\n", U),
    ("x 'userbouquet.a.tv' \"\" x\n", U),
    ("x \"\" 'other' 'userbouquet.a.tv'\n", None),
    ("x \"\" 'userbouquet.a.tv\n", U),
    ('""\n', None),
    ('""', None),
    ("\"\"''\n", None),
    ("userbouquet.a.tv\"\"\n", None),
    ("\"\n'userbouquet.a.tv'"[2:] + "\n", U),
    # Without any double quote: the whole line less its last character, single quotes when that is no user bouquet.
    ("userbouquet.a.tv\n", U),
    ("userbouquet.a.tvx", U),
    ("userbouquet.a.tv", None),
    ("userbouquet.a.tv\r\n", None),
    ("userbouquet 'x' .tv\n", "userbouquet 'x' .tv"),
    ("userbouquet.b.txt 'userbouquet.a.tv'\n", None),
    ("#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET 'userbouquet.a.tv' ORDER BY bouquet\n", U),
    ("#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET 'userbouquet.a.tv' ORDER BY bouquet", U),
    ("'userbouquet.a.tv'\n", U),
    ("'userbouquet.a.tv'", U),
    ("x 'userbouquet.a.tv\n", U),
    ("x 'userbouquet.a.tvx", U),
    ("x 'userbouquet.a.tv", None),
    ("x 'other' 'userbouquet.a.tv'\n", None),
    ("x '' 'userbouquet.a.tv'\n", None),
    ("''\n", None),
    ("'\n", None),
    ("'", None),
    ("x userbouquet.a.tv\n", None),
    (" userbouquet.a.tv\n", None),
    # Vertical tabs and the like are no line ends.
    ('x\x0b"userbouquet.a.tv"\x0cx\x1c\x85\n', U),
    ('\x0b\n', None),
)


class Names(loading.ModuleCase):
    """Which file a root line names."""

    def look(self, kind, content):
        """The names that a merge looks for, and the pairs that it gives the writer."""
        self.host.reset()
        other = {"tv": "radio", "radio": "tv"}[kind]
        self.host.write("/tmp/settings/bouquets." + kind, content)
        self.host.write("/tmp/settings/bouquets." + other, "")
        screen = self.screen(writeBouquetFiles=loading.Journal("writeBouquetFiles"))
        screen.mergeNewFavourites()
        return [record[1][0][len("/tmp/settings/"):] for record in self.host.named("os.path.exists")]

    def test_tv_lines(self):
        for line, name in LINES:
            self.assertEqual(self.look("tv", line), [name] if name else [], line)

    def test_radio_lines(self):
        for line, name in LINES:
            # Lines that name the kind otherwise say nothing about radio.
            if ".radio" in line or line.count("tv") != line.count(".tv"):
                continue
            expected = [name.replace(".tv", ".radio")] if name else []
            self.assertEqual(self.look("radio", line.replace(".tv", ".radio")), expected, line)

    def test_a_suffix_of_the_other_kind_is_skipped(self):
        self.assertEqual(self.look("tv", '"userbouquet.a.radio"\n'), [])
        self.assertEqual(self.look("radio", '"userbouquet.a.tv"\n'), [])
        self.assertEqual(self.look("radio", '"userbouquet.a.radio"\n'), ["userbouquet.a.radio"])
        self.assertEqual(self.look("radio", "'userbouquet.a.radio'\n"), ["userbouquet.a.radio"])
        self.assertEqual(self.look("radio", "userbouquet.a.radio\n"), ["userbouquet.a.radio"])

    def test_all_lines_together(self):
        self.host.reset()
        lines = [(line, name) for line, name in LINES if line.endswith("\n")]
        self.assertEqual(self.look("tv", "".join(line for line, _ in lines)), [name for _, name in lines if name])

    def test_a_name_with_a_nul_byte_is_the_path_test_s_business(self):
        self.host.write("/tmp/settings/bouquets.tv", '"userbouquet\0.tv"\n')
        self.host.write("/tmp/settings/bouquets.radio", "")
        error = self.raised(self.screen().mergeNewFavourites)
        self.assertIs(type(error), TypeError)
        self.assertEqual(self.host.calls[-1], call("os.path.exists", "/tmp/settings/userbouquet\0.tv"))


class Steps(loading.ModuleCase):
    """The steps of a merge."""

    def put(self, tv="", radio="", *files):
        """Puts an unpacked list into the working folder."""
        self.host.write("/tmp/settings/bouquets.tv", tv)
        self.host.write("/tmp/settings/bouquets.radio", radio)
        for name in files:
            self.host.write("/tmp/settings/" + name, name)

    def merge(self, **attributes):
        """Merges with a writer that only notes; gives the screen."""
        screen = self.screen(writeBouquetFiles=loading.Journal("writeBouquetFiles"), **attributes)
        self.assertIsNone(screen.mergeNewFavourites())
        return screen

    def root(self, kind):
        """The records of reading a root file."""
        path = "/tmp/settings/bouquets." + kind
        return [call("open", path, "r"), call("readlines", path), call("close file", path)]

    def looks(self, name, taken=True):
        """The records of a bouquet that is there, and of the look for its name in the configuration folder."""
        return [call("os.path.exists", "/tmp/settings/" + name)] + ([call("os.path.exists", CONFIG + name)] if taken else [])

    def test_every_step_in_order(self):
        self.put('#NAME x\n"userbouquet.a.tv"\n"userbouquet.gone.tv"\n"userbouquet.b.tv"\n', '"userbouquet.c.radio"\n',
                 "userbouquet.a.tv", "userbouquet.b.tv", "userbouquet.c.radio", "lamedb")
        screen = self.merge()
        self.assertCalls(
            START + self.root("tv") + self.looks("userbouquet.a.tv") + self.looks("userbouquet.gone.tv", False) +
            self.looks("userbouquet.b.tv") + self.root("radio") + self.looks("userbouquet.c.radio") + [
                call("writeBouquetFiles", "tv", [("userbouquet.a.tv",) * 2, ("userbouquet.b.tv",) * 2]),
                call("writeBouquetFiles", "radio", [("userbouquet.c.radio",) * 2])] + DATABASE)
        self.assertEqual(screen.dest_dir, CONFIG)
        pairs = self.host.named("writeBouquetFiles")[0][1][1]
        self.assertEqual((type(pairs), type(pairs[0]), type(pairs[0][0])), (list, tuple, str))

    def test_nothing_to_merge_still_reloads(self):
        self.put()
        self.merge()
        self.assertCalls(START + self.root("tv") + self.root("radio") + NO_DATABASE)

    def test_nothing_to_merge_with_a_database(self):
        self.put("", "", "lamedb")
        self.merge()
        self.assertCalls(START + self.root("tv") + self.root("radio") + DATABASE)

    def test_a_database_that_is_a_folder_is_none(self):
        self.put("", "", "lamedb/x")
        self.merge()
        self.assertCalls(START + self.root("tv") + self.root("radio") + NO_DATABASE)

    def test_radio_only(self):
        self.put("", '"userbouquet.c.radio"\n', "userbouquet.c.radio")
        self.merge()
        self.assertEqual(self.host.named("writeBouquetFiles"), [call("writeBouquetFiles", "radio", [("userbouquet.c.radio",) * 2])])

    def test_a_taken_name_gets_the_stamp(self):
        self.put('"userbouquet.favourites.tv"\n"userbouquet.tv"\n"userbouquet.free.tv"\n',
                 '"userbouquet.favourites.radio"\n"userbouquet.radio"\n',
                 "userbouquet.favourites.tv", "userbouquet.tv", "userbouquet.free.tv", "userbouquet.favourites.radio",
                 "userbouquet.radio")
        for name in ("userbouquet.favourites.tv", "userbouquet.tv", "userbouquet.favourites.radio", "userbouquet.radio/folder"):
            self.host.write(CONFIG + name, "")
        self.merge()
        now = stamp()
        self.assertEqual(self.host.named("writeBouquetFiles"), [
            call("writeBouquetFiles", "tv", [
                ("userbouquet.favourites.tv", "userbouquet.favourites" + now + ".tv"), ("userbouquet.tv", "userbouquet" + now + ".tv"),
                ("userbouquet.free.tv", "userbouquet.free.tv")]),
            call("writeBouquetFiles", "radio", [
                ("userbouquet.favourites.radio", "userbouquet.favourites" + now + ".radio"),
                ("userbouquet.radio", "userbouquet" + now + ".radio")])])

    def test_one_stamp_for_all(self):
        self.put('"userbouquet.a.tv"\n' * 3, "", "userbouquet.a.tv")
        self.host.write(CONFIG + "userbouquet.a.tv", "")
        times = iter([100.0, 200.0, 300.0])

        class Clock(object):
            """A clock that goes on."""

            @staticmethod
            def time():
                """The next time."""
                return next(times)
        self.replace(time=Clock)
        self.merge()
        self.assertEqual(self.host.named("writeBouquetFiles")[0][1][1], [
            ("userbouquet.a.tv", "userbouquet.a" + stamp(100) + ".tv")] * 3)
        self.assertEqual(next(times), 200.0)

    def test_the_stamp_is_local_time_whatever_the_zone(self):
        self.put('"userbouquet.a.tv"\n', "", "userbouquet.a.tv")
        self.host.write(CONFIG + "userbouquet.a.tv", "")
        self.replace(time=time, datetime=__import__("datetime"))
        before = stamp(time.time())
        self.merge()
        after = stamp(time.time())
        target = self.host.named("writeBouquetFiles")[0][1][1][0][1]
        self.assertEqual((target[:13], target[-3:]), ("userbouquet.a", ".tv"))
        self.assertTrue(before <= target[13:-3] <= after, target)

    def test_the_stamp_is_what_the_library_gives(self):
        self.put('"userbouquet.a.tv"\n', "", "userbouquet.a.tv")
        self.host.write(CONFIG + "userbouquet.a.tv", "")

        class Calendar(object):
            """Another calendar."""

            class datetime(object):
                """Another kind of time."""

                @staticmethod
                def fromtimestamp(seconds):
                    """A time that gives a text."""
                    class Moment(object):
                        """A time."""

                        @staticmethod
                        def strftime(form):
                            """The text."""
                            return "<" + form + ">"
                    return Moment
        self.replace(datetime=Calendar)
        self.merge()
        self.assertEqual(self.host.named("writeBouquetFiles")[0][1][1], [
            ("userbouquet.a.tv", "userbouquet.a<%Y-%m-%d_%H-%M-%S>.tv")])

    def test_a_bouquet_named_twice_gives_two_pairs(self):
        self.put('"userbouquet.a.tv"\n\'userbouquet.a.tv\'\n', "", "userbouquet.a.tv")
        self.merge()
        self.assertEqual(self.host.named("writeBouquetFiles")[0][1][1], [("userbouquet.a.tv",) * 2] * 2)

    def test_folders_are_those_of_the_host_and_of_the_attribute(self):
        self.host.write("/new/bouquets.tv", '"userbouquet.a.tv"\n')
        self.host.write("/new/bouquets.radio", "")
        self.host.write("/new/userbouquet.a.tv", "")
        self.host.write("/conf/userbouquet.a.tv", "")
        self.replace(resolveFilename=loading.Journal("resolveFilename", "/conf/"))
        screen = self.merge(tmp_path="/new")
        self.assertEqual(screen.dest_dir, "/conf/")
        self.assertEqual(self.host.named("os.path.exists"), [
            call("os.path.exists", "/new/userbouquet.a.tv"), call("os.path.exists", "/conf/userbouquet.a.tv")])
        self.assertEqual(self.host.named("writeBouquetFiles")[0][1][1], [("userbouquet.a.tv", "userbouquet.a" + stamp() + ".tv")])
        self.assertEqual(self.host.named("os.path.isfile"), [call("os.path.isfile", "/new/lamedb")])

    def test_the_unpack_folder_is_joined_by_a_slash_the_other_by_none(self):
        self.host.write("/new//bouquets.tv", '"userbouquet.a.tv"\n')
        self.host.write("/new//bouquets.radio", "")
        self.host.write("/new/userbouquet.a.tv", "")
        self.replace(resolveFilename=loading.Journal("resolveFilename", "/conf"))
        self.merge(tmp_path="/new/")
        self.assertEqual(self.host.named("os.path.exists"), [
            call("os.path.exists", "/new//userbouquet.a.tv"), call("os.path.exists", "/confuserbouquet.a.tv")])


class Failures(loading.ModuleCase):
    """What stays when a step fails."""

    def test_a_root_file_that_is_missing(self):
        for there, missing in ((None, "tv"), ("tv", "radio")):
            if there:
                self.host.write("/tmp/settings/bouquets." + there, '"userbouquet.a.tv"\n')
                self.host.write("/tmp/settings/userbouquet.a.tv", "")
            screen = self.screen()
            error = self.raised(screen.mergeNewFavourites)
            self.assertEqual((type(error), error.errno), (IOError, 2))
            self.assertEqual(self.host.calls[-1], call("open", "/tmp/settings/bouquets." + missing, "r"))
            self.assertEqual(self.host.files(CONFIG), [])
            self.assertEqual(self.host.named("open dialog", "reloadBouquets"), [])

    def test_a_root_file_that_cannot_be_read_is_closed(self):
        self.host.write("/tmp/settings/bouquets.tv", "")
        self.host.failures["readlines"] = IOError("x")
        screen = self.screen()
        del recording_host.OPENED[:]
        self.assertIs(self.raised(screen.mergeNewFavourites), self.host.failures["readlines"])
        self.assertTrue(recording_host.OPENED[0].stream.closed)
        self.assertEqual(self.host.calls[-1], call("close file", "/tmp/settings/bouquets.tv"))

    def test_an_error_of_the_writer_ends_the_method(self):
        self.host.write("/tmp/settings/bouquets.tv", '"userbouquet.a.tv"\n')
        self.host.write("/tmp/settings/bouquets.radio", '"userbouquet.a.radio"\n')
        for kind in ("tv", "radio"):
            self.host.write("/tmp/settings/userbouquet.a." + kind, "")
        screen = self.screen(writeBouquetFiles=loading.Journal("writeBouquetFiles"))
        self.host.failures["writeBouquetFiles"] = OSError("x")
        self.assertIs(self.raised(screen.mergeNewFavourites), self.host.failures["writeBouquetFiles"])
        self.assertEqual(self.host.named("writeBouquetFiles", "reloadBouquets"), [
            call("writeBouquetFiles", "tv", [("userbouquet.a.tv",) * 2])])

    def test_what_was_written_stays(self):
        self.host.write("/tmp/settings/bouquets.tv", '"userbouquet.a.tv"\n')
        self.host.write("/tmp/settings/bouquets.radio", "")
        self.host.write("/tmp/settings/userbouquet.a.tv", "content")
        self.host.write("/tmp/settings/lamedb", "")
        self.host.failures["loadServicelist"] = RuntimeError("x")
        self.assertIs(self.raised(self.screen().mergeNewFavourites), self.host.failures["loadServicelist"])
        self.assertEqual(self.host.files(CONFIG), ["bouquets.tv", "userbouquet.a.tv"])


class Whole(loading.ModuleCase):
    """Merge and writer together, on files."""

    def test_two_merges(self):
        self.host.write("/tmp/settings/bouquets.tv",
                        '#NAME Bouquets (TV)\r\n#SERVICE FROM BOUQUET "userbouquet.sat.tv" ORDER BY bouquet\r\n')
        self.host.write("/tmp/settings/bouquets.radio",
                        "#NAME Bouquets (Radio)\n#SERVICE FROM BOUQUET 'userbouquet.fm.radio' ORDER\n")
        self.host.write("/tmp/settings/userbouquet.sat.tv", "sat 1")
        self.host.write("/tmp/settings/userbouquet.fm.radio", "fm 1")
        self.host.write(CONFIG + "bouquets.tv", '#NAME My own\r\n"userbouquet.mine.tv"\r\n')
        screen = self.screen()
        screen.mergeNewFavourites()
        self.host.write("/tmp/settings/userbouquet.sat.tv", "sat 2")
        screen.mergeNewFavourites()
        now, line = stamp(), '#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.%s" ORDER BY bouquet\n'
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv"), "".join([
            '#NAME My own\n"userbouquet.mine.tv"\n', line % (1, "sat.tv"), line % (1, "sat" + now + ".tv")]))
        self.assertEqual(self.host.read(CONFIG + "bouquets.radio"), "".join([
            "#NAME Bouquets (Radio)\n", line % (1, "favourites.radio"), line % (2, "fm.radio"), line % (2, "fm" + now + ".radio")]))
        self.assertEqual(self.host.read(CONFIG + "userbouquet.sat.tv"), "sat 1")
        self.assertEqual(self.host.read(CONFIG + "userbouquet.sat" + now + ".tv"), "sat 2")
        # Within the same second the name is the same again: the later copy wins.
        self.host.write("/tmp/settings/userbouquet.sat.tv", "sat 3")
        screen.mergeNewFavourites()
        self.assertEqual(self.host.read(CONFIG + "userbouquet.sat" + now + ".tv"), "sat 3")
        self.assertEqual(self.host.read(CONFIG + "bouquets.tv").count(now), 2)


if __name__ == "__main__":
    loading.main()
