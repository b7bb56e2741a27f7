# -*- coding: utf-8 -*-
"""The command line: every option, every mistake in one line, and nothing of anybody's lost."""

import os
import signal
import socket
import subprocess
import sys
import unittest

import support
from support import CATALOGUE, ENTRY, feed, new_list, own_settings, read_folder

sys.path.insert(0, os.path.join(support.CHECKOUT, "receiver"))

import feed_line


class Mistakes(support.ReceiverCase):
    """Each is one line on standard error, says what to do, has exit status 2 and starts nothing."""

    def check(self, arguments, line, **environment):
        ended = self.run_receiver(*arguments, **environment)
        self.assertEqual(ended.err, "run: %s\n" % line)
        self.assertEqual((ended.status, ended.out), (2, ""))

    def test_options(self):
        for arguments, line in (
                (["--colour"], "unrecognized arguments: --colour"),
                (["list.tar.gz"], "unrecognized arguments: list.tar.gz"),
                (["--keys"], "argument --keys: expected one argument"),
                (["--tools", "bsd"], "argument --tools: invalid choice: 'bsd' (choose from 'busybox', 'gnu')")):
            self.check(arguments, line + "; ./run --help shows the options")

    def test_keys(self):
        for keys, wrong in (("down menu ok", "menu"), ("ok,ok", "ok,ok"), ("ok+", ""), ("11", "11"),
                            ("\x1b[2J", "\xef\xbf\xbd[2j"), ("höher", "höher")):
            self.check(["--keys", keys], "--keys: '%s' is not a key: the keys are up, down, left, right, ok, exit, "
                                         "red, green and 0 to 9" % wrong)

    def test_folders_that_are_not_there(self):
        missing, plain = self.path("missing"), self.path("plain")
        open(plain, "w").close()
        for option in ("--settings", "--feed"):
            self.check([option, missing], "%s: there is no folder '%s'" % (option, missing))
            self.check([option, plain], "%s: '%s' is not a folder" % (option, plain))
        self.check(["--keep", missing + "/below"],
                   "--keep: there is no folder '%s' to make 'below' in: make it first" % missing)
        self.check(["--keep", plain], "--keep: '%s' is not a folder" % plain)

    def test_settings_one_folder_too_high(self):
        backup = self.folder("Sicherung für später", {"etc/enigma2/lamedb": "eDVB services /4/\n"})
        self.check(["--settings", backup], "--settings: there are no settings in '%s': name '%s/etc/enigma2'" % (
            backup, backup))

    def test_keep_never_overwrites(self):
        full = self.folder("full", {"lamedb": "precious"})
        self.check(["--keep", full],
                   "--keep: '%s' is not empty, and nothing in it shall be lost: name a new folder" % full)
        self.assertEqual(read_folder(full), {"lamedb": "precious"})

    def test_keep_never_writes_into_what_is_only_read(self):
        own, own_feed = self.folder("own", own_settings()), self.folder("feed", feed())
        for option, folder in (("--settings", own), ("--feed", own_feed)):
            for keep in (folder, folder + "/kept"):
                self.check([option, folder, "--keep", keep], "--keep: '%s' lies in the folder of %s, which is never "
                                                             "written to: name another folder" % (keep, option))
        self.assertEqual((read_folder(own), read_folder(own_feed)), (own_settings(), feed()))

    def test_log(self):
        own = self.folder("own", own_settings())
        self.check(["--log", self.path("none", "log")],
                   "--log: '%s' cannot be written: No such file or directory" % self.path("none", "log"))
        self.check(["--log", own], "--log: '%s' cannot be written: Is a directory" % own)
        below = own + "/log"
        self.check(["--settings", own, "--log", below], "--log: '%s' lies in the folder of --settings, which is never "
                                                        "written to: name another file" % below)
        self.assertEqual(read_folder(own), own_settings())

    def test_ports(self):
        for port in ("0", "65536", "-1", "http", "80a", ""):
            self.check(["--port=" + port], "--port: '%s' is not a number from 1 to 65535" % port)
        taken = socket.socket()
        self.addCleanup(taken.close)
        taken.bind(("127.0.0.1", 0))
        taken.listen(1)
        number = taken.getsockname()[1]
        self.check(["--port", str(number)],
                   "--port: %d is taken: name another one, or leave --port out for a free one" % number)
        self.check(["--port", "4711", "--feed", "http://feed.example/all"],
                   "--port is for a feed that is served from a folder: leave it out, or give --feed a folder")

    def test_addresses(self):
        for address, complaint in (
                ("ftp://feed.example/all", "is no http:// or https:// address"),
                ("http://feed.example/lists/", "ends neither in /all, as in an image's feed line, nor in "
                                               "/settings_download/: give one of the two"),
                ("http://feed.example/f o/all", "has blanks in it: write them as %20"),
                ("http://install.example/all",
                 'holds "all" more than once, and a receiver replaces each: it would ask '
                 "'http://instsettings_download/.example/settings_download/'; use an address without it")):
            self.check(["--feed", address], "--feed: the feed's address '%s' %s" % (address, complaint))

    def test_the_module(self):
        missing, text = self.path("Morvesk.so"), self.path("Morvesk.txt")
        open(text, "w").close()
        self.check([], "the module '%s' is not there: MORVESK_MODULE must name a built one" % missing,
                   MORVESK_MODULE=missing)
        self.check([], "MORVESK_MODULE: '%s' is neither a .so nor a .py file" % text, MORVESK_MODULE=text)

    def test_a_sandbox_that_cannot_be(self):
        """It says why by itself."""
        ended = self.run_receiver("--keys", "ok", "--keep", self.path("kept"), MORVESK_SANDBOX="glass")
        self.assertEqual((ended.status, ended.out), (2, ""))
        self.assertEqual(ended.err, "sandbox: MORVESK_SANDBOX is 'glass'; it may be bubblewrap or chroot\n")
        self.assertFalse(os.path.exists(self.path("kept")))

    def test_what_may_not_be_read(self):
        if os.geteuid() == 0:
            self.check_as_another_user()
            return
        closed = self.folder("closed", own_settings())
        os.chmod(closed, 0)
        self.addCleanup(os.chmod, closed, 0o755)
        self.check(["--settings", closed], "--settings: the folder '%s' may not be read" % closed)

    def check_as_another_user(self):
        """Root may read everything: the check itself is asked, as somebody else, who may not read a checkout of root's."""
        closed = self.folder("closed", own_settings())
        os.chmod(self.base, 0o755)
        os.chmod(closed, 0o700)
        script = ("import codecs, os, sys; sys.path.insert(0, 'receiver'); import options; codecs.lookup('utf-8')\n"
                  "os.setgid(65534); os.setuid(65534)\n"
                  "try: options.Options(['--settings', sys.argv[1]], True)\n"
                  "except options.Mistake as mistake: print mistake")
        output = subprocess.check_output([support.PYTHON, "-B", "-c", script, closed], cwd=support.CHECKOUT)
        self.assertEqual(output, "--settings: the folder '%s' may not be read\n" % closed)


class Addresses(unittest.TestCase):
    """How an address that somebody gives becomes a feed line, and where that line leads a receiver."""

    def test_every_form_leads_to_the_same_place(self):
        for text in ("http://feed.example/feeds/all", "http://feed.example/feeds/all/",
                     "http://feed.example/feeds/settings_download/", "http://feed.example/feeds/settings_download",
                     "HTTP://feed.example/feeds/settings_download/" + CATALOGUE):
            self.assertEqual(feed_line.feed_address(text), "http://feed.example/feeds/all")
        self.assertEqual(feed_line.feed_address("https://x:8443/all"), "https://x:8443/all")
        self.assertEqual(feed_line.feed_line("http://feed.example/feeds/all"),
                         "src/gz Qel-all http://feed.example/feeds/all\n")

    def test_what_is_an_address(self):
        self.assertTrue(feed_line.is_address("http://x/all"))
        self.assertFalse(feed_line.is_address("/srv/feeds/all"))

    def test_an_address_that_would_be_mangled_is_explained(self):
        for text in ("http://x/all/feeds/all", "http://small.example/all", "http://x/callall", "http://x/",
                     "file:///feeds/all", "http://x/all?y", "http://x/ballsettings_download/"):
            self.assertRaises(feed_line.BadAddress, feed_line.feed_address, text)


class OneFeed(support.ReceiverCase):
    """--feed with a folder or an address."""

    def test_an_address(self):
        own = self.own_feed(feed())
        for address in (own.address, own.address.replace("/all", "/settings_download/")):
            ended = self.run_receiver("--keys", "ok ok ok", "--feed", address)
            self.assertEqual((ended.status, ended.err), (0, ""))
        self.assertEqual(own.requests, ["/feeds/settings_download/" + CATALOGUE,
                                        "/feeds/settings_download/" + ENTRY[3]] * 2)

    def test_a_folder_is_served_as_it_is(self):
        folder = self.folder("feed", dict(feed(), **{"deep/er/list.tar.gz": support.archive(new_list())}))
        with open(os.path.join(folder, CATALOGUE), "a") as target:
            target.write("Bryum ::: 2021 ::: deeper ::: deep/er/list.tar.gz\n")
        os.symlink("/nowhere", os.path.join(folder, "dangling"))
        before = read_folder_but(folder, "dangling")
        ended = self.run_receiver("--keys", "down ok ok ok", "--feed", folder)
        self.assertEqual(ended.status, 0)
        self.assertEqual(ended.err, "run: left out, as it is no file or leads nowhere: '%s/dangling'\n" % folder)
        self.assertEqual(read_folder_but(folder, "dangling"), before)

    def test_the_port(self):
        probe = socket.socket()
        probe.bind(("127.0.0.1", 0))
        port = probe.getsockname()[1]
        probe.close()
        for options, expected in ((["--port", str(port)], r"%d\b" % port), ([], r"\d+")):
            running = self.start("--keys", "exit", "--feed", self.slow_feed(), *options)
            line = support.wait_for(lambda: self.feed_line_of(running))
            self.assertRegexpMatches(line, r"\Asrc/gz Qel-all http://127\.0\.0\.1:" + expected + "/feeds/all\n\\Z")
            self.assertEqual(running.wait().status, 0)

    def slow_feed(self):
        """A feed whose catalogue is long enough that the receiver's folder can be looked into meanwhile."""
        if not os.path.isdir(self.path("feed")):
            self.folder("feed", dict(feed(), **{CATALOGUE: feed()[CATALOGUE] + "# comment\n" * 3000000}))
        return self.path("feed")

    @staticmethod
    def feed_line_of(running):
        try:
            with open(running.folder("etc/opkg/all-feed.conf")) as source:
                return source.read()
        except IOError:
            return None


def read_folder_but(folder, name):
    """The content of a folder without one name in it."""
    return dict((path, open(os.path.join(folder, path), "rb").read())
                for path in ("%s/%s" % (os.path.relpath(where, folder), each)
                             for where, _, names in os.walk(folder) for each in names if each != name))


class SettingsAndKeep(support.ReceiverCase):

    def test_settings_are_only_read(self):
        settings = self.folder("settings", own_settings(**{"deep/er": "x"}))
        os.chmod(os.path.join(settings, "lamedb"), 0o444)
        before = self.described(settings)
        ended = self.run_receiver("--settings", settings, "--keys", "ok 2 ok", "--keep", self.path("kept"))
        self.assertEqual(ended.status, 0)
        self.assertEqual(read_folder(settings), own_settings(**{"deep/er": "x"}))
        self.assertEqual(self.described(settings), before)
        self.assertEqual(read_folder(self.path("kept"))["deep/er"], "x")

    @staticmethod
    def described(folder):
        """What each file of the folder is, but for when it was last read."""
        found = [(name, os.stat(os.path.join(folder, name))) for name in sorted(os.listdir(folder))]
        return [(name, status.st_ino, status.st_mode, status.st_size, status.st_mtime, status.st_ctime)
                for name, status in found]

    def test_keep_makes_the_folder_or_fills_an_empty_one(self):
        settings = self.folder("settings", own_settings())
        for name in ("new", "empty"):
            if name == "empty":
                os.mkdir(self.path(name))
            ended = self.run_receiver("--settings", settings, "--keys", "exit", "--keep", self.path(name))
            self.assertEqual(ended.out.splitlines()[-1], "Saved as " + self.path(name))
            self.assertEqual(read_folder(self.path(name)), own_settings())

    def test_what_is_kept_can_be_started_from(self):
        self.run_receiver("--keys", "ok ok ok", "--keep", self.path("first"))
        ended = self.run_receiver("--keys", "exit", "--settings", self.path("first"), "--keep", self.path("second"))
        self.assertEqual(ended.changes[0], "Nothing has changed on the receiver.")
        self.assertEqual(read_folder(self.path("second")), read_folder(self.path("first")))

    def test_settings_are_kept_when_the_keys_are_used_up(self):
        settings = self.folder("settings", own_settings())
        ended = self.run_receiver("--settings", settings, "--keys", "ok ok", "--keep", self.path("kept"),
                                  "--feed", self.folder("feed", feed()))
        self.assertEqual(ended.status, 1)
        self.assertEqual(read_folder(self.path("kept"))["userbouquet.north.tv"], new_list()["userbouquet.north.tv"])


class Life(support.ReceiverCase):
    """A receiver's folder: made for it alone, gone with it."""

    def test_help(self):
        ended = self.run_receiver("--help")
        self.assertEqual((ended.status, ended.err), (0, ""))
        for word in ("--keys", "--settings", "--keep", "--feed", "--port", "--tools", "Exit status"):
            self.assertIn(word, ended.out)

    def test_without_a_terminal_the_first_list_is_appended(self):
        ended = self.run_receiver()
        self.assertEqual(ended.status, 0)
        self.assertEqual(ended.err, 'run: no terminal: playing the append installation of the first list, '
                                    '--keys "ok ok ok"\n')
        self.assertEqual([key for key, _ in ended.screens], ["start", "ok", "ok", "ok"])
        self.assertEqual(ended.screens[-1][1].splitlines()[-1], "closed")
        self.assertRegexpMatches(ended.changes[1], r"  transponders  \d+ -> \d+")

    def test_the_module_that_is_named_is_the_one_that_runs(self):
        with open(self.path("Morvesk.py"), "w") as target:
            target.write("raise ImportError('out of order')\n")
        ended = self.run_receiver("--keys", "ok", MORVESK_MODULE=self.path("Morvesk.py"))
        self.assertEqual(ended.status, 3)
        self.assertEqual(ended.err.splitlines()[-2:], ["ImportError: out of order", "run: the receiver has crashed"])

    def test_a_module_that_kills_the_process(self):
        with open(self.path("Morvesk.py"), "w") as target:
            target.write("import os, sys\nsys.stderr.write('about to go\\n')\nos.kill(os.getpid(), 11)\n")
        ended = self.run_receiver("--keys", "ok", MORVESK_MODULE=self.path("Morvesk.py"))
        self.assertEqual(ended.status, 3)
        lines = ended.err.splitlines()
        self.assertIn("about to go", lines)
        self.assertEqual(lines[-2:], [
            "the receiver's process has ended with signal 11", "run: the receiver has crashed"])

    def test_the_log(self):
        with open(self.path("Morvesk.py"), "w") as target:
            target.write("print 'to standard output'\nimport sys\nsys.stderr.write('to standard error\\n')\n"
                         "raise ImportError('out of order')\n")
        with open(self.path("log"), "w") as target:
            target.write("of yesterday\n")
        ended = self.run_receiver("--keys", "ok", "--log", self.path("log"), MORVESK_MODULE=self.path("Morvesk.py"))
        self.assertNotIn("to standard", ended.out + ended.err)
        lines = open(self.path("log")).read().splitlines()
        self.assertEqual(lines[0], "of yesterday")
        self.assertTrue(lines.index("to standard output") < lines.index("to standard error"))

    def test_the_folder_goes_with_the_receiver(self):
        running = self.start("--keys", "exit")
        folder = running.folder()
        self.assertEqual(running.wait().status, 0)
        self.assertFalse(os.path.exists(folder))

    def test_signals(self):
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            running, folder = self.start_slow()
            os.kill(running.process.pid, number)
            ended = running.wait()
            self.assertEqual((ended.status, ended.err), (128 + number, ""))
            self.assertFalse(os.path.exists(folder))
            self.assertEqual(self.processes_of(folder), [])

    def test_ctrl_c(self):
        """A terminal sends its signal to all processes at once."""
        running, folder = self.start_slow()
        os.killpg(running.process.pid, signal.SIGINT)
        ended = running.wait()
        self.assertEqual((ended.status, ended.err), (130, ""))
        self.assertEqual(ended.changes, ["Nothing has changed on the receiver."])
        self.assertFalse(os.path.exists(folder))

    def test_killed_receivers_leave_nothing_for_long(self):
        running, folder = self.start_slow()
        os.kill(running.process.pid, signal.SIGKILL)
        running.wait()
        support.wait_for(lambda: not self.processes_of(folder))
        self.assertTrue(os.path.exists(folder))
        self.assertEqual(self.run_receiver("--keys", "exit").status, 0)
        self.assertFalse(os.path.exists(folder))

    def test_receivers_side_by_side(self):
        running, folder = self.start_slow()
        self.assertEqual(self.run_receiver("--keys", "exit").status, 0)
        self.assertTrue(os.path.exists(os.path.join(folder, "etc/enigma2/lamedb")))
        self.assertIsNone(running.process.poll())

    def test_a_reader_that_goes_away(self):
        script = '"$0" "$1" --keys "down down exit" | head -n 1'
        child = subprocess.Popen(["sh", "-c", script, support.PYTHON, support.START], stdout=subprocess.PIPE,
                                 stderr=subprocess.PIPE, stdin=open(os.devnull))
        out, err = child.communicate()
        self.assertEqual(out, "=== start\n")
        self.assertNotIn("Traceback", err)

    def start_slow(self):
        """A receiver that is unpacking for a long time, and its folder."""
        if not os.path.isdir(self.path("feed")):
            self.folder("feed", dict(feed(), **{ENTRY[3]: support.slow_archive(new_list())}))
        running = self.start("--keys", "ok", "--feed", self.path("feed"))
        folder = running.folder()
        support.wait_for(lambda: os.path.exists(os.path.join(folder, "tmp/settings/settings.tar.gz")))
        return running, folder

    @staticmethod
    def processes_of(folder):
        """The processes, seen from the PC, that name the folder or have it as their root."""
        found = []
        for process in os.listdir("/proc"):
            try:
                with open("/proc/%s/cmdline" % process) as source:
                    command = source.read()
                if folder in command or os.readlink("/proc/%s/root" % process) == folder:
                    found.append(command)
            except (IOError, OSError):
                continue
        return found


if __name__ == "__main__":
    unittest.main()
