# -*- coding: utf-8 -*-
"""The display on a real terminal: tmux, keys sent to it, its screen read back."""

import glob
import os
import pipes
import signal
import subprocess
import unittest

import support
from support import CATALOGUE, ENTRY, archive, bouquet, catalogue, feed, new_list, own_settings, root, wait_for

STATUS = " ↑↓←→ move  Enter OK  Esc EXIT  r/F1 red  g/F2 green  0-9 digits  Ctrl-C leave"
WORKING = "working ..."
LIST = """\
 TV  Favourites (TV)  ▸ Erste Welle
┌─ Download services lists ────────────────────────────────────────────────────┐
│ ≡ Aster - 2021-03-04                                                         │
│   19.2E, everything                                                          │
│ ≡ Bryum - 2020-12-24                                                         │
│   28.2E, without radio                                                       │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│                                                                              │
│  Exit    Ok                                                                  │
└──────────────────────────────────────────────────────────────────────── 1/2 ─┘
""" + STATUS
QUESTION = """\
┌─ Input ─────────────────────────────┐
│ How to install new service lists... │
│                                     │
│ 1 append to exisiting service lists │
│ 2 overwrite exisiting service lists │
└─────────────────────────────────────┘"""
SUCCESS = """\
┌─ Download services lists ───────────────────────┐
│ Loading new services list finished succesfully. │
│                                                 │
│ OK                                              │
└─────────────────────────────────────────────────┘"""
MISSING = """\
┌─ Download services lists ─────────────────────┐
│ Sorry, there are some mandatory files missing │
│ Please try antoher services list.             │
│                                               │
│ OK                                            │
└───────────────────────────────────────────────┘"""


class Terminal(object):
    """A terminal of its own server, with a shell in it."""

    def __init__(self, folder, columns, rows):
        self._folder = folder
        self._tmux("-f", "/dev/null", "new-session", "-d", "-x", str(columns), "-y", str(rows),
                   "env", "PS1=$ ", "HISTFILE=", "sh")
        self.wait_for("$")

    def _tmux(self, *arguments):
        environment = dict(os.environ, LC_ALL="C.UTF-8")
        environment.pop("TMUX", None)
        socket = os.path.join(self._folder, "socket")
        return subprocess.check_output(["tmux", "-u", "-S", socket] + list(arguments), env=environment)

    def close(self):
        """Ends the server with all in it."""
        self._tmux("kill-server")

    def type(self, *keys):
        """Types keys, named as tmux names them."""
        self._tmux("send-keys", *keys)

    def line(self, text):
        """Types a line to the shell."""
        self._tmux("send-keys", "-l", text)
        self.type("Enter")

    def resize(self, columns, rows):
        """Makes the terminal larger or smaller."""
        self._tmux("resize-window", "-x", str(columns), "-y", str(rows))

    def screen(self, *options):
        """What is on the screen."""
        lines = self._tmux("capture-pane", "-p", *options).split("\n")[:-1]
        return "\n".join(line.rstrip() for line in lines)

    def state(self, form):
        """What tmux knows of the terminal."""
        return self._tmux("display-message", "-p", form).strip()

    def wait_for(self, text, *options):
        """Waits until the text is on the screen and nobody works any more; gives the whole screen."""
        wanted = [line.strip() for line in text.split("\n")]

        def shown():
            screen = self.screen(*options)
            if WORKING in screen:
                return None
            lines = screen.split("\n")
            for start in range(len(lines) - len(wanted) + 1):
                if all(part in line for part, line in zip(wanted, lines[start:])):
                    return screen
            return None
        try:
            return wait_for(shown)
        except AssertionError:
            raise AssertionError("waited in vain for\n%s\non the screen\n%s" % (text, self.screen()))

    def wait_until(self, holds):
        """Waits until something holds of the screen; gives it."""
        return wait_for(lambda: [screen for screen in [self.screen()] if holds(screen)])[0]


class OnATerminal(support.ReceiverCase):

    def terminal(self, columns=80, rows=24):
        """A shell on a terminal, whose settings are remembered."""
        terminal = Terminal(self.base, columns, rows)
        self.addCleanup(terminal.close)
        terminal.line("cd %s; stty -g >before; clear; echo here 'before'" % pipes.quote(self.base))
        terminal.wait_for("here before\n$")
        return terminal

    def feed_files(self):
        return dict(feed(), **{
            CATALOGUE: catalogue(ENTRY, ("Bryum", "2020-12-24", "28.2E, without radio", "bryum.tar.gz")),
            "bryum.tar.gz": archive(new_list(**{"bouquets.radio": None}))})

    def begin(self, terminal, *options, **changes):
        """Starts a receiver from the shell and waits for its first screen."""
        self.folder("feed", dict(self.feed_files(), **changes.get("feed", {})))
        self.folder("settings", own_settings())
        words = [support.PYTHON, support.START, "--settings", "settings", "--feed", "feed"] + list(options)
        if "module" in changes:
            words = ["MORVESK_MODULE=" + changes["module"]] + words
        terminal.line(" ".join(pipes.quote(word) if "=" not in word else word for word in words) + "; echo status $?")
        return terminal.wait_for(changes.get("first", "Exit    Ok"))

    def instance(self):
        """The folder of the receiver that runs on this test's settings."""
        pids = [path.split("/")[2] for path in glob.glob("/proc/[0-9]*/cwd")
                if self.is_here(path) and support.START in open(path[:-3] + "cmdline").read()]
        return glob.glob(os.path.join(support.RECEIVERS, pids[0] + "-*"))[0], int(pids[0])

    def is_here(self, link):
        try:
            return os.readlink(link) == self.base
        except OSError:
            return False

    def check_restored(self, terminal, status):
        """The shell has its terminal back: its screen, its cursor, its modes."""
        screen = terminal.wait_for("status %d\n$" % status)
        self.assertEqual(screen.split("\n")[0], "here before")
        self.assertNotIn("Exit    Ok", screen)
        self.assertEqual(terminal.state("#{cursor_flag} #{alternate_on} #{wrap_flag}"), "1 0 1")
        # Quoted, so that the command as it was typed cannot be taken for what it prints.
        terminal.line("stty -g >after; echo all 'done'")
        terminal.wait_for("all done")
        self.assertEqual(open(self.path("after")).read(), open(self.path("before")).read())
        return screen

    def clear(self, terminal):
        """Makes ready for another start. What is waited for is not on the screen yet."""
        terminal.line("rm -r feed settings; echo all 'gone'")
        terminal.wait_for("all gone")
        terminal.line("clear; echo here 'before'")
        terminal.wait_until(lambda screen: "all" not in screen and "here before" in screen)

    def test_the_first_screen(self):
        terminal = self.terminal()
        self.assertEqual(self.begin(terminal), LIST)
        self.assertEqual(terminal.state("#{cursor_flag} #{alternate_on}"), "0 1")
        coloured = terminal.screen("-e")
        self.assertRegexpMatches(coloured, "\x1b\\[[0-9;]*41m Exit ")
        self.assertRegexpMatches(coloured, "\x1b\\[[0-9;]*42m Ok ")
        self.assertRegexpMatches(coloured, "\x1b\\[[0-9;]*46m[^\x1b]*Aster - 2021-03-04")

    def test_append(self):
        terminal = self.terminal()
        self.begin(terminal, "--keep", "kept")
        terminal.type("Enter")
        terminal.wait_for(QUESTION)
        terminal.type("Enter")
        terminal.wait_for(SUCCESS)
        self.assertTrue(os.path.exists(os.path.join(self.instance()[0], "tmp/settings")))
        terminal.type("Enter")
        screen = self.check_restored(terminal, 0)
        self.assertIn("\n  added  tv     userbouquet.north.tv     North        2 services\n", screen)
        self.assertEqual(open(self.path("kept", "bouquets.tv")).read(), root("tv", [
            "userbouquet.favourites.tv", "userbouquet.family.tv", "userbouquet.north.tv", "userbouquet.world.tv"]))

    def test_overwrite(self):
        terminal = self.terminal()
        files = new_list(**{"bouquets.tv": root("tv", ["userbouquet.favourites.tv"]),
                            "userbouquet.favourites.tv": bouquet("Ελλάδα και κόσμος", support.NEW[:4])})
        self.begin(terminal, feed={ENTRY[3]: archive(files)})
        terminal.type("Enter")
        terminal.wait_for(QUESTION)
        terminal.type("Down", "Enter")
        screen = terminal.wait_for(SUCCESS)
        self.assertEqual(screen.split("\n")[0], " TV  Ελλάδα και κόσμος  ▸ Zweite Welle HD")
        self.assertFalse(os.path.exists(os.path.join(self.instance()[0], "tmp/settings")))
        terminal.type("Escape")
        self.check_restored(terminal, 0)

    def test_every_key(self):
        terminal = self.terminal()
        self.begin(terminal)
        terminal.type("Down")
        terminal.wait_for(" 2/2 ")
        terminal.type("Up")
        terminal.wait_for(" 1/2 ")
        terminal.type("Right")
        terminal.wait_for(" 2/2 ")
        terminal.type("Left")
        terminal.wait_for(" 1/2 ")
        terminal.type("Down", "Enter")
        terminal.wait_for(MISSING)
        terminal.type("Enter")
        terminal.wait_for(" 1/2 ")
        for choose in ("g", "F2", "Enter"):
            terminal.type(choose)
            terminal.wait_for(QUESTION)
            terminal.type("Escape")
            terminal.wait_for(" 1/2 ")
        terminal.type("g")
        terminal.wait_for(QUESTION)
        terminal.type("2")
        terminal.wait_for(SUCCESS)
        terminal.type("Enter")
        self.check_restored(terminal, 0)

    def test_red_leaves(self):
        terminal = self.terminal()
        for number, red in enumerate(("r", "F1")):
            if number:
                self.clear(terminal)
            self.begin(terminal)
            terminal.type(red)
            self.check_restored(terminal, 0)

    def test_cancel_while_tar_runs(self):
        terminal = self.terminal()
        self.begin(terminal, feed={ENTRY[3]: support.slow_archive(new_list())})
        terminal.type("Enter")
        terminal.wait_until(lambda screen: WORKING in screen and "Aster" not in screen)
        terminal.type("Escape")
        screen = self.check_restored(terminal, 0)
        self.assertNotIn("still running", screen)

    def test_resizing(self):
        terminal = self.terminal()
        self.begin(terminal)
        terminal.resize(60, 14)
        screen = terminal.wait_for("r=red g=green")
        self.assertEqual(screen.split("\n")[:4] + screen.split("\n")[-3:], [
            " TV  Favourites (TV)  ▸ Erste Welle", "┌─ Download services lists " + "─" * 32 + "┐",
            "│ ≡ Aster - 2021-03-04                                     │",
            "│   19.2E, everything                                      │",
            "│  Exit    Ok                                              │",
            "└" + "─" * 52 + " 1/2 ─┘", " ↑↓←→ Enter Esc r=red g=green 0-9 ^C"])
        terminal.resize(30, 8)
        self.assertEqual(terminal.wait_for("too small").split("\n")[:3], [
            "This window is too small: it", "has 30 x 8 characters, the", "receiver needs 40 x 12."])
        terminal.type("Down")
        terminal.resize(120, 30)
        screen = terminal.wait_for(" 2/2 ")
        self.assertEqual(screen.split("\n")[2][:28], "    1 Erste Welle           ")
        terminal.resize(80, 24)
        terminal.type("Up")
        terminal.wait_for(STATUS)
        self.assertEqual(terminal.wait_for(" 1/2 "), LIST)
        terminal.type("Escape")
        self.check_restored(terminal, 0)

    def test_names_in_other_alphabets_stay_in_their_columns(self):
        entries = [("Μελτέμι", "2021", "ελληνικά български"), ("花見", "2020", "中文 日本語 한국어 ไทย"),
                   ("e\xcc\x81te\xcc\x81", "2019", "हिन्दी தமிழ் Tiếng Việt"),
                   ("\x1b[31mred\x1b]0;x\x07", "2018", "\x9b2J\xff")]
        terminal = self.terminal()
        self.begin(terminal, feed={CATALOGUE: catalogue(*[entry + ("x",) for entry in entries])})
        terminal.wait_for(" 1/4 ")
        lines = terminal.screen().split("\n")
        for line, text, columns in (
                (2, " ≡ Μελτέμι - 2021", 17), (3, "   ελληνικά български", 21), (4, " ≡ 花見 - 2020", 14),
                (5, "   中文 日本語 한국어 ไทย", 25), (6, " ≡ e\xcc\x81te\xcc\x81 - 2019", 13),
                (8, " ≡ �[31mred�]0;x� - 2018", 24), (9, "   �2J�", 7)):
            self.assertEqual(lines[line], "│" + text + " " * (78 - columns) + "│")
        self.assertIn("हिन्दी தமிழ் Tiếng Việt", lines[7])
        self.assertTrue(lines[7].endswith(" │"))
        terminal.type("Escape")
        self.check_restored(terminal, 0)

    def test_ctrl_c(self):
        terminal = self.terminal()
        self.begin(terminal)
        terminal.type("C-c")
        screen = self.check_restored(terminal, 130)
        self.assertIn("Nothing has changed on the receiver.", screen)

    def test_a_crash(self):
        with open(self.path("Morvesk.py"), "w") as target:
            target.write("from Screens.Screen import Screen\n"
                         "class Morvesk(Screen):\n"
                         "    def __init__(self, session, plugin_path):\n"
                         "        Screen.__init__(self, session)\n"
                         "        self.onLayoutFinish.append(self.fail)\n"
                         "    def fail(self):\n"
                         "        print 'a line for the log'\n"
                         "        raise ValueError('a crash on purpose')\n")
        terminal = self.terminal(100, 50)
        self.begin(terminal, module=self.path("Morvesk.py"), first="status")
        screen = self.check_restored(terminal, 3)
        self.assertIn("\nValueError: a crash on purpose\nrun: the receiver has crashed\n", screen)
        self.assertNotIn("a line for the log", screen)

    def test_signals_from_outside(self):
        terminal = self.terminal()
        for number, status in ((signal.SIGTERM, 143), (signal.SIGHUP, 129), (signal.SIGINT, 130)):
            self.begin(terminal)
            folder, pid = self.instance()
            os.kill(pid, number)
            self.check_restored(terminal, status)
            self.assertFalse(os.path.exists(folder))
            self.clear(terminal)

    def test_the_receiver_is_killed(self):
        terminal = self.terminal()
        self.begin(terminal)
        folder = self.instance()[0]
        for process in os.listdir("/proc"):
            if self.is_receiver(process, folder):
                os.kill(int(process), signal.SIGKILL)
        screen = self.check_restored(terminal, 3)
        self.assertIn("run: the receiver has crashed", screen)

    @staticmethod
    def is_receiver(process, folder):
        """Whether that is a process of main.py whose /run is the receiver's."""
        try:
            with open("/proc/%s/cmdline" % process) as source:
                if "receiver/main.py" not in source.read() or not process.isdigit():
                    return False
            return os.path.samefile("/proc/%s/root/run" % process, os.path.join(folder, "run"))
        except (IOError, OSError):
            return False


if __name__ == "__main__":
    unittest.main()
