# -*- coding: utf-8 -*-
"""A receiver whose folders are not as they should be: in the way, closed, full, or with a clock that jumps.

The root user of the sandbox has no rights beyond those that a file gives it, so that what is closed is closed to it too.
On a receiver, whose root user may pass over a file's rights, the same happens with a disk that cannot be written to.
"""

import os
import sys

import world

import disks
import support
from misbehaviour import whole
from support import ENTRY, new_list, own_settings, root
from world import (APPEND, CLOSED, FOLDER, LIST, NO_FOLDER, NOT_EXTRACTED, OVERWRITE, QUESTION, SUCCESS, appended, crashes,
                   link, overwritten)

OFFERED = support.catalogue(ENTRY)
PACKED = support.archive(new_list())
DOWNLOADS, CONFIG = "/tmp/settings", "/etc/enigma2"
NO_SPACE = crashes("IOError: [Errno 28] No space left on device")


class ReceiverCase(world.WorldCase):
    """A test with one receiver."""

    def setUp(self):
        self.box = self.receiver()

    def install(self, keys, **options):
        """Plays keys on a good feed."""
        return self.play(self.box, keys, self.good_server(options.pop("files", None)), **options)

    def start_once(self):
        """Starts the receiver for the first time, which may make its folders anew."""
        self.assert_shown(self.install("exit"), LIST, CLOSED)

    def only_new(self, *names):
        """Files of the list."""
        return dict((name, new_list()[name]) for name in names)

    def path(self, inside):
        """Where a path of the receiver lies on the PC."""
        return self.box.path(inside)

    def write(self, inside, content):
        """Somebody writes a file on the receiver."""
        with open(self.path(inside), "w") as target:
            target.write(content)


class DownloadFolder(ReceiverCase):
    """What may be in the place of the download folder."""

    def test_a_file(self):
        """There is something, and it can be written to: so the download goes ahead, and ends in a crash."""
        self.write(DOWNLOADS, "mine\n")
        self.assert_crashed(self.install("ok"), crashes(
            "IOError: [Errno 20] Not a directory: '/tmp/settings/settings.tar.gz'"), "download_settings")
        self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), "mine\n"))
        self.box.empty(DOWNLOADS)
        self.assert_next_try_installs(self.box)

    def test_a_link_to_a_folder(self):
        """What it leads to is the download folder then; overwriting removes the link only."""
        for keys, config in ((APPEND, appended()), (OVERWRITE, overwritten())):
            box = self.receiver()
            os.mkdir(box.path("/tmp/other"))
            os.symlink("/tmp/other", box.path(DOWNLOADS))
            found = dict(new_list(), **{"settings.tar.gz": PACKED})
            ended = self.play(box, keys, self.good_server(), escaped=dict(
                ("/tmp/other/" + name, (0o644, content)) for name, content in found.items()))
            self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
            self.assertEqual((box.config(), box.downloads()), (config, link("/tmp/other") if keys == APPEND else None))

    def test_links_that_lead_nowhere(self):
        for target in ("/nowhere/at/all", "settings"):
            self.box.empty(DOWNLOADS)
            os.symlink(target, self.path(DOWNLOADS))
            self.assert_shown(self.install("ok ok exit"), LIST, NO_FOLDER, LIST, CLOSED)
            self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), link(target)))
        self.box.empty(DOWNLOADS)
        self.assert_next_try_installs(self.box)

    def test_closed(self):
        os.mkdir(self.path(DOWNLOADS), 0o555)
        self.assert_shown(self.install("ok ok exit"), LIST, NO_FOLDER, LIST, CLOSED)
        self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), {}))
        os.chmod(self.path(DOWNLOADS), 0o755)
        self.assert_next_try_installs(self.box)

    def test_cannot_be_made(self):
        self.start_once()
        os.chmod(self.path("/tmp"), 0o555)
        self.assert_shown(self.install("ok ok exit"), LIST, NO_FOLDER, LIST, CLOSED)
        self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), None))
        os.chmod(self.path("/tmp"), 0o777)
        self.assert_next_try_installs(self.box)

    def test_a_closed_archive_of_before(self):
        os.mkdir(self.path(DOWNLOADS))
        self.write(DOWNLOADS + "/settings.tar.gz", "old")
        os.chmod(self.path(DOWNLOADS + "/settings.tar.gz"), 0o444)
        self.assert_crashed(self.install("ok"), crashes(
            "IOError: [Errno 13] Permission denied: '/tmp/settings/settings.tar.gz'"), "download_settings")
        self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), {"settings.tar.gz": "old"}))
        self.box.empty(DOWNLOADS)
        self.assert_next_try_installs(self.box)


class ConfigurationFolder(ReceiverCase):
    """What may be in the place of the files that an installation reads and writes."""

    def install_after(self, keys, action):
        """Plays keys; the action happens when the receiver, which has read its lists by then, asks for the catalogue."""
        def answer(connection):
            action()
            connection.sendall(whole(OFFERED))
        return self.play(self.box, keys, self.server(answer, PACKED))

    def in_the_place_of(self, name, make):
        """An action that puts something in the place of a file."""
        def action():
            os.unlink(self.path(CONFIG + "/" + name))
            make(self.path(CONFIG + "/" + name))
        return action

    def copied_so_far(self):
        """The settings when both TV bouquets have been copied and nothing else has been done."""
        return dict(own_settings(), **dict(
            (name, new_list()[name]) for name in ("userbouquet.north.tv", "userbouquet.world.tv")))

    def test_a_closed_root_file(self):
        """To the module a root file that it may not read is none: it begins a new one, and copies the bouquets first. When
        the file cannot be written either, they stay without a reference; the next start puts them into the list."""
        path = self.path(CONFIG + "/bouquets.tv")
        self.assert_crashed(self.install_after(APPEND, lambda: os.chmod(path, 0)), crashes(
            "IOError: [Errno 13] Permission denied: '/etc/enigma2/bouquets.tv'"), "writeBouquetFiles")
        os.chmod(path, 0o644)
        self.assertEqual(self.box.config(), self.copied_so_far())
        self.assertEqual(self.assert_completes(self.box), self.only_new("userbouquet.north.tv", "userbouquet.world.tv"))

    def test_a_root_file_that_can_only_be_written(self):
        """A new one takes its place; what it does not name any more, the host puts in front."""
        path = self.path(CONFIG + "/bouquets.tv")
        ended = self.install_after(APPEND, lambda: os.chmod(path, 0o200))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        os.chmod(path, 0o644)
        names = ["userbouquet.family.tv", "userbouquet.favourites.tv", "userbouquet.north.tv", "userbouquet.world.tv"]
        self.assertEqual(self.box.config(), dict(appended(), **{"bouquets.tv": root("tv", names)}))

    def test_a_root_file_that_leads_to_itself(self):
        ended = self.install_after(APPEND, self.in_the_place_of(
            "bouquets.tv", lambda path: os.symlink("bouquets.tv", path)))
        self.assert_crashed(ended, crashes(
            "IOError: [Errno 40] Too many levels of symbolic links: '/etc/enigma2/bouquets.tv'"), "writeBouquetFiles")
        self.assertEqual(self.box.config(), dict(self.copied_so_far(), **{"bouquets.tv": link("bouquets.tv")}))
        self.assertEqual(self.assert_completes(self.box), self.only_new("userbouquet.north.tv", "userbouquet.world.tv"))

    def test_a_folder_for_a_root_file(self):
        """It can be opened but not read: nothing has been copied yet."""
        ended = self.install_after(APPEND, self.in_the_place_of("bouquets.tv", os.mkdir))
        self.assert_crashed(ended, crashes("IOError: [Errno 21] Is a directory: '/etc/enigma2/bouquets.tv'"),
                            "writeBouquetFiles")
        self.assertEqual(self.box.config(), dict(own_settings(), **{"bouquets.tv": FOLDER}))
        os.rmdir(self.path(CONFIG + "/bouquets.tv"))
        self.assertEqual(self.assert_completes(self.box), {})

    def test_a_root_file_that_is_a_link(self):
        """It is read and written where it leads."""
        path = self.path(CONFIG + "/bouquets.tv")
        self.write("/tmp/precious/root", own_settings()["bouquets.tv"])
        os.unlink(path)
        os.symlink("/tmp/precious/root", path)
        ended = self.install(APPEND, escaped={"/tmp/precious/root": (0o644, appended()["bouquets.tv"])})
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(self.box.config(), dict(appended(), **{"bouquets.tv": link("/tmp/precious/root")}))

    def test_bouquets_that_are_none(self):
        """What one's own root file names stays as it is, be it a folder, a link to nowhere or nothing at all."""
        names = ["userbouquet.folder.tv", "userbouquet.nowhere.tv", "userbouquet.nothing.tv"]
        own = own_settings(**{"bouquets.tv": root("tv", names + ["userbouquet.favourites.tv", "userbouquet.family.tv"])})
        for keys, expected in ((APPEND, appended(None, own)), (OVERWRITE, overwritten(None, own))):
            self.box = self.receiver(own)
            os.mkdir(self.path(CONFIG + "/userbouquet.folder.tv"))
            os.symlink("nowhere", self.path(CONFIG + "/userbouquet.nowhere.tv"))
            self.assert_shown(self.install(keys), LIST, QUESTION, SUCCESS, CLOSED)
            if keys == APPEND:
                expected.update({"userbouquet.folder.tv": FOLDER, "userbouquet.nowhere.tv": link("nowhere")})
            self.assertEqual(self.box.config(), expected)

    def test_taken_names(self):
        """A folder takes a name as a file does. A link that leads nowhere does not: the bouquet is written through it."""
        self.box.set_clock(0)
        os.mkdir(self.path(CONFIG + "/userbouquet.north.tv"))
        os.symlink("elsewhere", self.path(CONFIG + "/userbouquet.world.tv"))
        self.assert_shown(self.install(APPEND), LIST, QUESTION, SUCCESS, CLOSED)
        expected, stamped = appended(), "userbouquet.north1970-01-01_00-00-00.tv"
        expected.update({stamped: expected["userbouquet.north.tv"], "userbouquet.north.tv": FOLDER,
                         "elsewhere": expected["userbouquet.world.tv"], "userbouquet.world.tv": link("elsewhere")})
        expected["bouquets.tv"] = expected["bouquets.tv"].replace("userbouquet.north.tv", stamped)
        self.assertEqual(self.box.config(), expected)

    def test_a_name_that_leads_into_nothing(self):
        os.symlink("/nowhere/at/all", self.path(CONFIG + "/userbouquet.world.tv"))
        self.assert_crashed(self.install(APPEND), crashes(
            "IOError: [Errno 2] No such file or directory: '/etc/enigma2/userbouquet.world.tv'"), "writeBouquetFiles")
        self.assertEqual(self.box.config(), dict(
            self.copied_so_far(), **{"userbouquet.world.tv": link("/nowhere/at/all")}))
        self.box.empty(CONFIG + "/userbouquet.world.tv")
        self.assertEqual(self.assert_completes(self.box), self.only_new("userbouquet.north.tv"))

    def test_a_closed_folder(self):
        """Appending stops at the first new file. Overwriting can remove none and make none, but writes over those that
        both have, and says that all went well: the root files then name bouquets that are not there."""
        self.start_once()
        os.chmod(self.path(CONFIG), 0o555)
        self.assert_crashed(self.install(APPEND), crashes(
            "IOError: [Errno 13] Permission denied: '/etc/enigma2/userbouquet.north.tv'"), "writeBouquetFiles")
        self.assertEqual(self.box.config(), own_settings())
        self.assert_shown(self.install(OVERWRITE), LIST, QUESTION, SUCCESS, CLOSED)
        both = ("lamedb", "bouquets.tv", "bouquets.radio")
        self.assertEqual(self.box.config(), dict(own_settings(), **self.only_new(*both)))
        os.chmod(self.path(CONFIG), 0o755)
        self.assert_next_try_installs(self.box, OVERWRITE)


class Disks(ReceiverCase):
    """Disks that are full or cannot be written to, where this machine can make them."""

    def run(self, result=None):
        """Says so where it cannot."""
        if self.why_not:
            sys.stdout.write("not run: world.receiver, %s: %s\n" % (self.id(), self.why_not))
            return
        super(Disks, self).run(result)

    why_not = disks.why_not()

    def test_a_configuration_that_cannot_be_written(self):
        """Appending says so by a crash; overwriting says that all went well, and nothing has changed."""
        around = disks.read_only(self.path(CONFIG))
        self.assert_crashed(self.install(APPEND, around=around), crashes(
            "IOError: [Errno 30] Read-only file system: '/etc/enigma2/userbouquet.north.tv'"), "writeBouquetFiles")
        self.assertEqual((self.box.config(), self.box.downloads()), (
            own_settings(), dict(new_list(), **{"settings.tar.gz": PACKED})))
        self.assert_shown(self.install(OVERWRITE, around=around), LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), None))
        self.assert_next_try_installs(self.box)

    def test_a_download_folder_that_cannot_be_written(self):
        for folder, left in (("/tmp", None), (DOWNLOADS, {})):
            self.box = self.receiver()
            if left is not None:
                os.mkdir(self.path(folder))
            ended = self.install("ok ok exit", around=disks.read_only(self.path(folder)))
            self.assert_shown(ended, LIST, NO_FOLDER, LIST, CLOSED)
            self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), left))
            self.assert_next_try_installs(self.box)

    def test_a_full_download_folder(self):
        """Pages from none to enough: the download crashes, then each file of the archive fails in turn."""
        names = sorted(new_list())
        for free in range(len(names) + 1):
            self.box = self.receiver()
            around = disks.small(self.path("/tmp"), disks.pages({"precious": "x"}) + free)
            ended = self.install("ok exit exit", around=around)
            if free == 0:
                self.assert_crashed(ended, NO_SPACE, "download_settings")
                left = {"settings.tar.gz": ""}
            else:
                self.assert_shown(ended, LIST, NOT_EXTRACTED, LIST, CLOSED)
                left = dict((name, new_list()[name]) for name in names[:free - 1])
                left.update({names[free - 1]: "", "settings.tar.gz": PACKED})
            self.assertEqual((self.box.config(), self.box.downloads()), (own_settings(), left))
            if free in (0, 1, len(names)):
                self.assert_next_try_installs(self.box)
        ended = self.play(self.receiver(), APPEND, self.good_server(), around=disks.small(
            self.path("/tmp"), disks.pages({"precious": "x"}) + len(names) + 1))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)

    def append_with(self, free, own):
        """Appends with so many free pages."""
        self.box = self.receiver(own)
        return self.install(APPEND, around=disks.small(self.path(CONFIG), disks.pages(own) + free))

    def test_append_on_a_full_disk(self):
        """Pages from none to enough: a bouquet that does not fit stays behind empty, without a reference; then it is the
        database that is not saved, by the host, which says so in its log only."""
        copied = ["userbouquet.north.tv", "userbouquet.world.tv", "userbouquet.world.radio"]
        for free in range(len(copied)):
            self.assert_crashed(self.append_with(free, own_settings()), NO_SPACE, "writeBouquetFiles")
            expected = dict(own_settings(), **self.only_new(*copied[:free]))
            expected[copied[free]] = ""
            if free == 2:
                expected["bouquets.tv"] = appended()["bouquets.tv"]
            self.assertEqual(self.box.config(), expected)
            besides = self.assert_completes(self.box)
            self.assertEqual(besides, dict((name, expected[name]) for name in copied[:free + 1]))
        self.assert_shown(self.append_with(len(copied), own_settings()), LIST, QUESTION, SUCCESS, CLOSED)
        expected = dict(appended(), lamedb=own_settings()["lamedb"])
        del expected["lamedb5"]
        self.assertEqual(self.box.config(), expected)
        self.assertEqual(self.assert_completes(self.box), self.only_new(*copied))
        self.assert_shown(self.append_with(len(copied) + 1, own_settings()), LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(self.box.config(), appended())

    def test_a_root_file_cut_by_a_full_disk(self):
        """It is written in place: when the longer one does not fit, what there is ends in the middle of a line. The next
        start puts every bouquet that it does not name any more in front; nothing but the order is lost."""
        own = own_settings()
        lines = "".join("#a line that the host does not know, and keeps\n" for _ in range(disks.PAGE // 48))
        own["bouquets.tv"] = root("tv", []) + lines[:disks.PAGE // 48 * 48 - 300] + "\n" + own["bouquets.tv"].split("\n", 1)[1]
        self.assertEqual(disks.pages({"": own["bouquets.tv"]}), 1)
        self.assert_crashed(self.append_with(2, own), NO_SPACE, "writeBouquetFiles")
        whole_file = appended(None, own)["bouquets.tv"]
        self.assertEqual(self.box.config(), dict(
            own, **dict(self.only_new("userbouquet.north.tv", "userbouquet.world.tv"),
                        **{"bouquets.tv": whole_file[:disks.PAGE]})))
        self.assertNotEqual(whole_file[disks.PAGE - 1], "\n")
        besides = self.assert_completes(self.box)
        self.assertEqual(besides, self.only_new("userbouquet.north.tv", "userbouquet.world.tv"))

    def test_overwrite_on_a_full_disk(self):
        """The old lists have gone, the new ones are there as far as they fit, and the box says that all went well."""
        files = new_list()
        files["userbouquet.north.tv"] += "#" * (2 * disks.PAGE) + "\n"
        own = own_settings()
        self.box = self.receiver(own)
        ended = self.install(OVERWRITE, files=files, around=disks.small(self.path(CONFIG), disks.pages(own)))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual((self.box.config(), self.box.downloads()), (
            dict(overwritten(files), **{"bouquets.radio": "", "userbouquet.world.radio": ""}), None))
        self.assert_next_try_installs(self.box, OVERWRITE, files=files)


class Clock(ReceiverCase):
    """A clock that stands still, is set back, or has never been set."""

    files = {"bouquets.tv": root("tv", ["userbouquet.family.tv"]), "bouquets.radio": root("radio", []),
             "lamedb": new_list()["lamedb"]}

    def append(self, text, seconds):
        """Appends a bouquet whose name is taken at that time."""
        self.box.set_clock(seconds)
        files = dict(self.files, **{"userbouquet.family.tv": text})
        self.assert_shown(self.play(self.box, APPEND, self.server(OFFERED, support.archive(files))),
                          LIST, QUESTION, SUCCESS, CLOSED)

    def assert_family(self, *others):
        """One's own bouquet and others, in this order; a name may come twice."""
        config = self.box.config()
        self.assertEqual(config["userbouquet.family.tv"], own_settings()["userbouquet.family.tv"])
        names = ["userbouquet.favourites.tv", "userbouquet.family.tv"] + [name for name, _ in others]
        self.assertEqual(config["bouquets.tv"], root("tv", names))
        self.assertEqual(dict((name, config[name]) for name in config if name.startswith("userbouquet.family2")),
                         dict(others))

    def test_two_lists_in_one_second(self):
        """They get one name: the second takes the place of the first, and the list shows it twice."""
        first, second = "#NAME first\n", "#NAME second\n"
        self.append(first, 1600000000.1)
        self.append(second, 1600000000.9)
        name = "userbouquet.family2020-09-13_12-26-40.tv"
        self.assert_family((name, second), (name, second))

    def test_set_back(self):
        """A time that has been before is another time, unless it is the very second."""
        self.append("#NAME first\n", 1600000000)
        self.append("#NAME second\n", 1599999999)
        self.assert_family(("userbouquet.family2020-09-13_12-26-40.tv", "#NAME first\n"),
                           ("userbouquet.family2020-09-13_12-26-39.tv", "#NAME second\n"))

    def test_never_set(self):
        self.append("#NAME first\n", 5)
        config = self.box.config()
        self.assertEqual(config["userbouquet.family1970-01-01_00-00-05.tv"], "#NAME first\n")


if __name__ == "__main__":
    world.main()
