# -*- coding: utf-8 -*-
"""Archives that are none, that reach out of their folder, or that hold what no list holds.

What tar unpacks is what the image's tar makes of it: every day BusyBox's is asked, as on a receiver, and in the full run
GNU's too, which refuses more. The rest is the module's own: which of the unpacked files it installs, and how.
"""

import os
import stat
import tarfile
import time

import world

import support
from archives import bare, device, fifo, file_, folder, hard_link, link, pack, pack_list
from support import ENTRY, new_list, own_settings, reference, root
from world import (APPEND, CLOSED, EXTRACT, FIFO, FILES_MISSING, FOLDER, LIST, NOT_EXTRACTED, OVERWRITE, QUESTION, REPLACE,
                   SUCCESS, appended, crashes, overwritten)

OFFERED = support.catalogue(ENTRY)
SECRET = "/tmp/precious/secret.tv"
STRANGE_NAMES = ["userbouquet.a b.tv", "userbouquet.$(touch ran).tv", "userbouquet.`touch ran`.tv",
                 "userbouquet.;touch ran;.tv", "userbouquet.&touch ran&.tv", "userbouquet.|touch ran|.tv",
                 "userbouquet.'q'.tv", "userbouquet.\\.tv", "userbouquet.%s%n.tv", "userbouquet.*.tv",
                 "userbouquet.\xff\xfe.tv", "userbouquet.-rf.tv"]
# Nothing can name these in a root file, but a shell's pattern finds them.
UNNAMED = ['userbouquet."q".tv', "userbouquet.\n.tv", "-rf.tv", "*.tv", "~.tv", "$(touch ran).radio", "&.radio"]
# And these are no lists at all.
OTHERS = [".hidden.tv", "settings", "notes.txt"]


class ArchiveCase(world.WorldCase):
    """A test of archives, with BusyBox's tools."""

    def play_list(self, keys, packed, receiver=None, **options):
        """Plays keys on a feed with that archive; gives the receiver and its end."""
        receiver = receiver or self.receiver()
        return receiver, self.play(receiver, keys, self.server(OFFERED, packed), **options)

    def assert_downloads(self, receiver, expected, packed):
        """The download folder holds this besides the archive."""
        self.assertEqual(receiver.downloads(), dict(expected, **{"settings.tar.gz": packed}))


class Extraction(ArchiveCase):
    """What tar leaves in the download folder, and that it leaves everything else alone."""

    def check(self, *cases):
        """Each case is an archive, what the owner sees and what has been unpacked; both for BusyBox's and for GNU's tar
        where they differ."""
        self.in_turns([lambda case=case: self.one(*case) for case in cases])

    def one(self, packed, seen, unpacked):
        if isinstance(seen, tuple):
            seen = seen[self.tools == "gnu"]
        if isinstance(unpacked, tuple):
            unpacked = unpacked[self.tools == "gnu"]
        receiver = self.receiver()
        running = self.start(receiver, "ok exit exit", self.server(OFFERED, packed))
        yield running
        self.assert_shown(self.ended(running), LIST, seen, LIST, CLOSED)
        self.assertEqual(receiver.config(), own_settings())
        self.assert_downloads(receiver, unpacked, packed)
        receiver.remove()

    def check_with_list(self, *cases):
        """Each case: members behind those of a whole list, what the owner sees, and what is unpacked besides the list."""
        self.check(*[(pack_list(*members), seen, tuple(dict(new_list(), **each) for each in unpacked)
                      if isinstance(unpacked, tuple) else dict(new_list(), **unpacked))
                     for members, seen, unpacked in cases])

    def test_no_archive(self):
        whole = pack_list()
        self.check(
            ("", NOT_EXTRACTED, {}),
            ("\x1f\x8b", NOT_EXTRACTED, {}),
            (support.zipped("what is this?"), (NOT_EXTRACTED, FILES_MISSING), {}),
            (bare(file_("lamedb")), NOT_EXTRACTED, {}),
            (whole[:10], NOT_EXTRACTED, {}),
            (pack(), FILES_MISSING, {}),
            (support.zipped(""), (NOT_EXTRACTED, FILES_MISSING), {}),
            (support.zipped(bare(file_("lamedb"))[:700]), NOT_EXTRACTED, ({"lamedb": "x"}, {"lamedb": ""})))

    def test_cut_short(self):
        """What had been unpacked before the cut stays, the last file in part."""
        noise = os.urandom(200000)
        whole = pack_list(file_("zzz", noise))
        for part in (len(whole) // 2, len(whole) - 8):
            receiver, ended = self.play_list("ok exit exit", whole[:part])
            self.assert_shown(ended, LIST, NOT_EXTRACTED, LIST, CLOSED)
            self.assertEqual(receiver.config(), own_settings())
            in_part = receiver.downloads()["zzz"]
            self.assertTrue(noise.startswith(in_part))
            self.assert_downloads(receiver, dict(new_list(), zzz=in_part), whole[:part])
            self.assert_next_try_installs(receiver)

    def test_sub_folder(self):
        packed = pack(folder("list"), *[file_("list/" + name, content) for name, content in new_list().items()])
        unpacked = dict(("list/" + name, content) for name, content in new_list().items())
        self.check((packed, FILES_MISSING, dict(unpacked, list=FOLDER)))

    def test_names_that_lead_out(self):
        """BusyBox's tar takes the way out off the name, GNU's refuses."""
        inside = {"etc": FOLDER, "etc/enigma2": FOLDER, "etc/enigma2/lamedb": "x"}
        self.check_with_list(
            ([file_("/etc/enigma2/lamedb")], QUESTION, inside),
            ([file_(SECRET)], QUESTION, {"tmp": FOLDER, "tmp/precious": FOLDER, "tmp/precious/secret.tv": "x"}),
            ([file_("../precious/secret.tv")], (QUESTION, NOT_EXTRACTED),
             ({"precious": FOLDER, "precious/secret.tv": "x"}, {})),
            ([file_("a/../../out.tv")], (QUESTION, NOT_EXTRACTED), ({"out.tv": "x"}, {})),
            ([file_("../../../../../etc/enigma2/lamedb")], (QUESTION, NOT_EXTRACTED), (inside, {})),
            ([folder("..", 0o700)], (QUESTION, NOT_EXTRACTED), {}),
            ([file_("")], NOT_EXTRACTED, {}))

    def test_links_that_lead_out(self):
        """A link may lead anywhere; what is unpacked later does not go through it."""
        self.check_with_list(
            ([link("userbouquet.l.tv", SECRET)], QUESTION, {"userbouquet.l.tv": world.link(SECRET)}),
            ([link("userbouquet.l.tv", "../precious/secret.tv")], QUESTION,
             {"userbouquet.l.tv": world.link("../precious/secret.tv")}),
            ([link("userbouquet.l.tv", "/nowhere")], QUESTION, {"userbouquet.l.tv": world.link("/nowhere")}),
            ([link("d", "/tmp/precious"), file_("d/secret.tv"), file_("d/more.tv")], NOT_EXTRACTED,
             ({"d": FOLDER, "d/secret.tv": "x", "d/more.tv": "x"}, {"d": world.link("/tmp/precious")})),
            ([link("d", "../precious"), file_("d/secret.tv")], NOT_EXTRACTED,
             ({"d": FOLDER, "d/secret.tv": "x"}, {"d": world.link("../precious")})),
            ([link("a", "."), link("a/b", ".."), file_("a/b/out.tv")], NOT_EXTRACTED,
             ({"a": world.link("."), "b": FOLDER, "b/out.tv": "x"}, {"a": world.link("."), "b": world.link("..")})),
            ([folder("d"), link("d", "/tmp/precious"), file_("d/out.tv")], NOT_EXTRACTED,
             ({"d": FOLDER}, {"d": world.link("/tmp/precious")})),
            ([link("f.tv", SECRET), file_("f.tv")], (NOT_EXTRACTED, QUESTION),
             ({"f.tv": "x"}, {"f.tv": world.link(SECRET)})))

    def test_hard_links(self):
        """BusyBox's tar links to any file on the same disk, and never writes through such a link."""
        secret = "somebody's\n"
        self.check_with_list(
            ([hard_link("h.tv", SECRET)], (QUESTION, NOT_EXTRACTED), ({"h.tv": secret}, {})),
            ([hard_link("h.tv", "../precious/secret.tv")], (QUESTION, NOT_EXTRACTED), ({"h.tv": secret}, {})),
            ([hard_link("h.tv", "../precious/secret.tv"), file_("h.tv")], NOT_EXTRACTED, {"h.tv": "x"}),
            ([hard_link("h.tv", "lamedb")], QUESTION, {"h.tv": new_list()["lamedb"]}),
            ([hard_link("h.tv", "nothing")], NOT_EXTRACTED, {}))

    def test_special_files(self):
        """The sandbox refuses device nodes, also to root: BusyBox's tar passes over them. On a receiver it makes them."""
        self.check_with_list(
            ([fifo("userbouquet.f.tv")], QUESTION, {"userbouquet.f.tv": FIFO}),
            ([device("userbouquet.z.tv", tarfile.CHRTYPE, 1, 5)], (QUESTION, NOT_EXTRACTED), {}),
            ([device("userbouquet.z.tv", tarfile.BLKTYPE, 8, 0)], (QUESTION, NOT_EXTRACTED), {}))

    def test_one_name_twice(self):
        self.check_with_list(
            ([file_("d"), file_("d/f.tv")], NOT_EXTRACTED, {"d": "x"}),
            ([folder("f.tv"), file_("f.tv")], (NOT_EXTRACTED, QUESTION), ({"f.tv": FOLDER}, {"f.tv": "x"})),
            ([folder("f.tv"), file_("f.tv/a"), file_("f.tv")], NOT_EXTRACTED, {"f.tv": FOLDER, "f.tv/a": "x"}),
            ([file_("f.tv", "first"), file_("f.tv", "second")], QUESTION, {"f.tv": "second"}))

    def test_the_archive_in_itself(self):
        packed = pack_list(file_("settings.tar.gz", "x"))
        receiver, ended = self.play_list("ok exit exit", packed)
        self.assert_shown(ended, LIST, QUESTION, LIST, CLOSED)
        self.assert_downloads(receiver, new_list(), "x")

    def test_strange_names(self):
        names = dict((name, name) for name in STRANGE_NAMES + UNNAMED + OTHERS)
        self.check_with_list(
            ([file_(name, name) for name in names], QUESTION, names),
            ([file_("n" * 256)], NOT_EXTRACTED, {}))

    def test_what_stays_in_the_way(self):
        """A folder under the name of a file makes every later archive fail, until the download folder has gone: it lies
        in memory on most receivers, and a restart empties it."""
        for name in ("lamedb", "bouquets.tv"):
            receiver, ended = self.play_list("ok exit exit", pack_list(
                folder(name), file_(name + "/x"), **{name: None}))
            self.assert_shown(ended, LIST, QUESTION, LIST, CLOSED)
            ended = self.play(receiver, "ok exit exit", self.good_server())
            self.assert_shown(ended, LIST, NOT_EXTRACTED, LIST, CLOSED)
            self.assertEqual(receiver.config(), own_settings())
            receiver.empty("/tmp/settings")
            self.assert_next_try_installs(receiver)

    def test_a_closed_folder(self):
        """An archive may take the rights to the download folder from everybody but a root with all rights."""
        receiver, ended = self.play_list("ok exit ok exit exit", pack_list(folder(".", 0)))
        self.assert_shown(ended, LIST, FILES_MISSING, LIST, world.NO_FOLDER, LIST, CLOSED)
        self.assertEqual(receiver.config(), own_settings())
        os.chmod(receiver.path("/tmp/settings"), 0o755)
        self.assert_next_try_installs(receiver)


class GnuExtraction(Extraction):
    """The same with GNU's tar."""

    full = True
    tools = "gnu"


class Installation(ArchiveCase):
    """What the module makes of members that are no lists."""

    def named(self, name):
        """A list whose TV root file names one more file."""
        return root("tv", ["userbouquet.north.tv", "userbouquet.world.tv", name])

    def append(self, packed, **options):
        return self.play_list(APPEND, packed, **options)

    def assert_copied_so_far(self, receiver):
        """Two bouquets have been copied, and no root file names them: the next start puts them into the list."""
        expected = dict(own_settings(), **dict(
            (name, new_list()[name]) for name in ("userbouquet.north.tv", "userbouquet.world.tv")))
        self.assertEqual(receiver.config(), expected)
        self.assert_shown(self.play(receiver, "exit", self.good_server()), LIST, CLOSED)
        lines = own_settings()["bouquets.tv"].split("\n", 1)
        expected["bouquets.tv"] = "\n".join([
            lines[0], reference("tv", "userbouquet.north.tv"), reference("tv", "userbouquet.world.tv"), lines[1]])
        self.assertEqual(receiver.config(), expected)

    def test_strange_names_appended(self):
        """Whatever a root file can name is copied under that name; no shell sees it."""
        names = [name for name in STRANGE_NAMES]
        files = new_list(**{"bouquets.tv": root("tv", names)})
        members = [file_(name, name) for name in names + UNNAMED + OTHERS]
        receiver, ended = self.append(pack_list(*members, **{"bouquets.tv": files["bouquets.tv"]}), trace=0)
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(ended.commands, [EXTRACT])
        expected = dict(appended(files), **dict((name, name) for name in names))
        for name in ("userbouquet.north.tv", "userbouquet.world.tv"):
            del expected[name]
        self.assertEqual(receiver.config(), expected)

    def test_strange_names_in_the_place_of_all(self):
        """The shell's patterns find every list but hidden ones, and give each name as one word."""
        names = STRANGE_NAMES + UNNAMED
        files = new_list(**{"bouquets.tv": root("tv", STRANGE_NAMES + ["userbouquet.north.tv", "userbouquet.world.tv"])})
        members = [file_(name, name) for name in names + OTHERS]
        receiver, ended = self.play_list(
            OVERWRITE, pack_list(*members, **{"bouquets.tv": files["bouquets.tv"]}), trace=0)
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(ended.commands, [EXTRACT, REPLACE])
        tv = sorted("/tmp/settings/" + name for name in list(new_list()) + names if name.endswith(".tv"))
        copy = [words for words in ended.programs if words[:2] == ["cp", "-r"]][0]
        self.assertEqual(copy[:2] + sorted(copy[2:-1]) + copy[-1:], ["cp", "-r"] + tv + ["/etc/enigma2/"])
        expected = dict(overwritten(files), **dict((name, name) for name in names))
        # The host puts two of them, which no root file names, in front of its list.
        first = ["userbouquet.\n.tv", 'userbouquet."q".tv']
        lines = files["bouquets.tv"].split("\n", 1)
        expected["bouquets.tv"] = "\n".join([lines[0]] + [reference("tv", name) for name in first] + [lines[1]])
        self.assertEqual(receiver.config(), expected)
        self.assertEqual(receiver.downloads(), None)

    def test_links_appended(self):
        """A bouquet that is a link is copied as the file that it leads to; one that leads nowhere is passed over."""
        receiver, _ = self.append(pack_list(link("userbouquet.l.tv", SECRET), link("userbouquet.n.tv", "/nowhere"), **{
            "bouquets.tv": self.named("userbouquet.n.tv") + reference("tv", "userbouquet.l.tv") + "\n"}))
        expected = appended()
        expected["bouquets.tv"] += reference("tv", "userbouquet.l.tv") + "\n"
        expected["userbouquet.l.tv"] = "somebody's\n"
        self.assertEqual(receiver.config(), expected)

    def test_links_in_the_place_of_all(self):
        """They are installed as links, but for the database, which is copied."""
        files = new_list(**{"bouquets.tv": self.named("userbouquet.l.tv")})
        receiver, ended = self.play_list(OVERWRITE, pack_list(
            link("userbouquet.l.tv", SECRET), link("lamedb", SECRET), lamedb=None, **{"bouquets.tv": files["bouquets.tv"]}))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        expected = dict(overwritten(files), lamedb="somebody's\n", **{"userbouquet.l.tv": world.link(SECRET)})
        self.assertEqual(receiver.config(), expected)
        self.assert_next_try_installs(receiver, OVERWRITE)

    def test_a_folder_for_a_bouquet(self):
        packed = pack_list(folder("userbouquet.d.tv"), file_("userbouquet.d.tv/x"), **{
            "bouquets.tv": self.named("userbouquet.d.tv")})
        receiver, ended = self.append(packed)
        self.assert_crashed(ended, crashes("IOError: [Errno 21] Is a directory: '/tmp/settings/userbouquet.d.tv'"),
                            "writeBouquetFiles")
        self.assert_copied_so_far(receiver)
        receiver, ended = self.play_list(OVERWRITE, packed)
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        expected = overwritten(new_list(**{"bouquets.tv": self.named("userbouquet.d.tv")}))
        expected.update({"userbouquet.d.tv": FOLDER, "userbouquet.d.tv/x": "x"})
        self.assertEqual(receiver.config(), expected)
        self.assert_next_try_installs(receiver, OVERWRITE)

    def test_a_pipe_for_a_bouquet(self):
        packed = pack_list(fifo("userbouquet.f.tv"), **{"bouquets.tv": self.named("userbouquet.f.tv")})
        receiver, ended = self.append(packed)
        self.assert_crashed(ended, crashes("SpecialFileError: `/tmp/settings/userbouquet.f.tv` is a named pipe"),
                            "writeBouquetFiles")
        self.assert_copied_so_far(receiver)

    def test_a_folder_for_the_database(self):
        """Appending goes without it, as without a pipe; overwriting leaves the receiver without services until the next
        list."""
        for member in (folder("lamedb"), fifo("lamedb")):
            receiver, ended = self.append(pack_list(member, lamedb=None))
            self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
            expected = dict(appended(), lamedb=own_settings()["lamedb"])
            del expected["lamedb5"]
            self.assertEqual(receiver.config(), expected)
        receiver, ended = self.play_list(OVERWRITE, pack_list(folder("lamedb"), lamedb=None))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        expected = overwritten()
        del expected["lamedb"]
        self.assertEqual(receiver.config(), expected)
        self.assert_next_try_installs(receiver, OVERWRITE)

    def test_a_folder_for_a_root_file(self):
        packed = pack_list(folder("bouquets.tv"), **{"bouquets.tv": None})
        receiver, ended = self.append(packed)
        self.assert_crashed(ended, crashes("IOError: [Errno 21] Is a directory: '/tmp/settings/bouquets.tv'"),
                            "mergeNewFavourites")
        self.assertEqual(receiver.config(), own_settings())
        receiver, ended = self.play_list(OVERWRITE, packed)
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(receiver.config(), dict(overwritten(), **{"bouquets.tv": FOLDER}))
        self.assert_next_try_installs(receiver, OVERWRITE)

    def test_pipes_that_wait_for_ever(self):
        """A pipe in the place of a file stops whoever reads it: a shell command until the screen is closed, the user
        interface until it is killed, and once it is in the configuration folder every start of it, until somebody
        removes it from outside."""
        self.in_turns([self.pipe_for_a_root_file_appended, self.pipe_for_a_root_file_installed,
                       self.pipe_for_the_database])

    def pipe_for_a_root_file_appended(self):
        receiver = self.receiver()
        packed = pack_list(fifo("bouquets.radio"), **{"bouquets.radio": None})
        running = self.start(receiver, APPEND, self.server(OFFERED, packed))
        yield running
        self.assert_stands_still(running, LIST, QUESTION)
        self.assertEqual(receiver.config(), own_settings())
        self.assert_next_try_installs(receiver)

    def pipe_for_a_root_file_installed(self):
        receiver = self.receiver()
        packed = pack_list(fifo("bouquets.radio"), **{"bouquets.radio": None})
        running = self.start(receiver, OVERWRITE, self.server(OFFERED, packed))
        yield running
        self.assert_stands_still(running, LIST, QUESTION)
        self.assertEqual(receiver.config(), dict(overwritten(), **{"bouquets.radio": FIFO}))
        self.assert_stands_still(self.start(receiver, "exit", self.good_server()))
        os.unlink(receiver.path("/etc/enigma2/bouquets.radio"))
        self.assert_next_try_installs(receiver, OVERWRITE)

    def pipe_for_the_database(self):
        receiver = self.receiver()
        running = self.start(receiver, "ok 2 ok", self.server(OFFERED, pack_list(fifo("lamedb"), lamedb=None)))
        yield running
        self.assert_stands_still(running, LIST, QUESTION)
        self.assertEqual(receiver.config(), {"settings": own_settings()["settings"]})
        self.assert_next_try_installs(receiver, OVERWRITE)

    def assert_stands_still(self, running, *shown):
        """It has shown this, and nothing for a time in which it would long have ended."""
        give_up = time.time() + 10
        while len(running.shows()) < len(shown) and time.time() < give_up:
            time.sleep(0.02)
        time.sleep(1)
        self.assertEqual([view for _, view in running.shows()], list(shown))
        self.assertEqual(running.process.poll(), None)
        running.kill()

    def test_rights(self):
        """Appended files keep the rights that the archive gives them, even to run as their owner."""
        packed = pack_list(file_("userbouquet.s.tv", mode=0o6755), **{"bouquets.tv": self.named("userbouquet.s.tv")})
        for keys, mode in ((APPEND, 0o6755), (OVERWRITE, 0o755)):
            receiver, _ = self.play_list(keys, packed)
            path = receiver.path("/etc/enigma2/userbouquet.s.tv")
            self.assertEqual(stat.S_IMODE(os.stat(path).st_mode), mode)


class GnuInstallation(Installation):
    """The same with GNU's tools."""

    full = True
    tools = "gnu"


class Leftovers(ArchiveCase):
    """The download folder is not emptied: what one archive has left there is there for the next."""

    def test_a_list_completed_by_another(self):
        """With the files of an earlier archive an incomplete one is installed."""
        receiver = self.receiver()
        first, second = pack_list(), pack_list(lamedb=None)
        ended = self.play(receiver, "ok exit ok ok ok", self.server(OFFERED, [first, second]))
        self.assert_shown(ended, LIST, QUESTION, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(receiver.config(), appended())

    def test_overwrite_brings_every_leftover(self):
        """Appending takes what the root files name, overwriting takes all."""
        for keys, expected in ((APPEND, appended()), (OVERWRITE, dict(overwritten(), **{"old.tv": "x"}))):
            receiver = self.receiver()
            ended = self.play(receiver, "ok exit " + keys, self.server(OFFERED, [pack_list(file_("old.tv")), pack_list()]))
            self.assert_shown(ended, LIST, QUESTION, LIST, QUESTION, SUCCESS, CLOSED)
            self.assertEqual(receiver.config(), expected)


class Escapes(ArchiveCase):
    """The ways out of the two folders that there are: each takes two steps, and a feed that is not to be trusted."""

    def test_a_link_in_the_place_of_the_archive(self):
        """The next download goes through the link and replaces what it leads to, with any content and all rights."""
        receiver = self.receiver()
        second = "anything at all\n"
        server = self.server(OFFERED, [pack_list(link("settings.tar.gz", SECRET)), second])
        ended = self.play(receiver, "ok exit ok exit exit", server,
                          escaped={"/tmp/precious/secret.tv": (0o644, second)})
        self.assert_shown(ended, LIST, QUESTION, LIST, NOT_EXTRACTED, LIST, CLOSED)

    def test_a_hard_link_in_the_place_of_the_archive(self):
        """As far as BusyBox's tar goes; GNU's makes none to the outside."""
        for tools in (None, "gnu"):
            receiver = self.receiver()
            second = pack_list()
            server = self.server(OFFERED, [pack_list(hard_link("settings.tar.gz", "../precious/secret.tv")), second])
            escaped = {"/tmp/precious/secret.tv": (0o644, second)} if tools is None else {}
            self.play(receiver, "ok exit ok exit exit", server, tools=tools, escaped=escaped)

    def test_a_link_that_overwriting_has_installed(self):
        """It leads nowhere yet, so its name is free; the next list that is appended is written through it."""
        receiver, _ = self.play_list(OVERWRITE, pack_list(link("userbouquet.way.tv", "/tmp/precious/new"), **{
            "bouquets.tv": root("tv", ["userbouquet.way.tv"])}))
        self.assertEqual(receiver.config()["userbouquet.way.tv"], world.link("/tmp/precious/new"))
        packed = pack_list(file_("userbouquet.way.tv", "anything\n"), **{
            "bouquets.tv": root("tv", ["userbouquet.way.tv"])})
        _, ended = self.play_list(APPEND, packed, receiver, escaped={"/tmp/precious/new": (0o644, "anything\n")})
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)

    def test_a_path_in_a_root_file(self):
        """A name of a bouquet may be a path. It leads out of the configuration folder only through a folder there, which
        overwriting can install; then a file of any name can be made outside, but none replaced."""
        path = "userbouquet.d.tv/../../opkg/new.tv"
        packed = pack_list(folder("userbouquet.d.tv"), folder("../opkg"), **{
            "bouquets.tv": root("tv", ["userbouquet.d.tv", path])})
        receiver = self.receiver()
        self.put(receiver, "/tmp/opkg/new.tv", "anything\n")
        _, ended = self.play_list(APPEND, pack_list(folder("userbouquet.d.tv"), **{
            "bouquets.tv": root("tv", [path])}), receiver)
        self.assert_crashed(ended, crashes(
            "IOError: [Errno 2] No such file or directory: '/etc/enigma2/%s'" % path), "writeBouquetFiles")
        self.assertEqual(receiver.config(), own_settings())
        self.play_list(OVERWRITE, packed, receiver)
        _, ended = self.play_list(APPEND, pack_list(folder("userbouquet.d.tv"), **{
            "bouquets.tv": root("tv", [path])}), receiver, escaped={"/etc/opkg/new.tv": (0o644, "anything\n")})
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)

    @staticmethod
    def put(receiver, path, content):
        """Somebody on the receiver makes a file."""
        os.makedirs(os.path.dirname(receiver.path(path)))
        with open(receiver.path(path), "w") as target:
            target.write(content)


if __name__ == "__main__":
    world.main()
