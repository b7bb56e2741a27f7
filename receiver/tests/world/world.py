# -*- coding: utf-8 -*-
"""What the suites of a misbehaving world share: receivers that can be started again, and what lies in their folders."""

import atexit
import errno
import fcntl
import json
import os
import re
import shutil
import signal
import stat
import subprocess
import sys
import time
import unittest

_HERE = os.path.dirname(os.path.realpath(__file__))
_RECEIVER = os.path.dirname(os.path.dirname(_HERE))
sys.path[1:1] = [os.path.join(_RECEIVER, "tests"), _RECEIVER, os.path.join(_RECEIVER, "host")]

import support
from feed_line import feed_line
from folders import remove_folder
from instance import PROGRAM, Instance
from misbehaviour import Server
from module_file import ModuleFile
from support import CHECKOUT, ENTRY, NEW, OWN, lamedb, lamedb5, new_list, own_settings, root

SANDBOX = os.path.join(CHECKOUT, "tools", "sandbox")
TRACER = os.environ.get("MORVESK_TRACER") or os.path.join(CHECKOUT, "build/release/receiver/tests/world/tracer")
MODULE = os.path.join(CHECKOUT, "build", "release", "Morvesk.so")

_CLOCK = "usr/lib/enigma2/python/sitecustomize.py"

# What the owner sees, in short.
LIST = "screen: > Aster - 2021-03-04; 19.2E, everything"
EMPTY = "screen: empty"
NO_CONNECTION = "screen: > Sorry ...; It seems that your Internet connection is not ok, please check it"
NO_SERVER = "screen: > Sorry ...; Download of services list failes, please be patient and try again later"
NO_FOLDER = "error: Sorry, creating download folder failed"
NOT_EXTRACTED = "error: Sorry, extracting of services list failed; Please try again."
FILES_MISSING = "error: Sorry, there are some mandatory files missing; Please try antoher services list."
QUESTION = ("choice: How to install new service lists...; > 1 append to exisiting service lists; "
            "2 overwrite exisiting service lists")
SUCCESS = "info: Loading new services list finished succesfully."
CLOSED = "closed"

APPEND, OVERWRITE = "ok ok ok", "ok 2 ok"

EXTRACT = "/bin/tar -xzf /tmp/settings/settings.tar.gz -C /tmp/settings/"
REPLACE = ("rm -rf /etc/enigma2/lamedb ; rm -rf /etc/enigma2/*.tv ; rm -rf /etc/enigma2/*.radio ; "
           "cp /tmp/settings/lamedb /etc/enigma2/ ; cp -r /tmp/settings/*.tv /etc/enigma2/ ; "
           "cp -r /tmp/settings/*.radio /etc/enigma2/ ;rm -rf /tmp/settings")

STAMP = r"\d{4}-\d\d-\d\d_\d\d-\d\d-\d\d"
UNION = [OWN[0], NEW[0], OWN[2], OWN[3]] + NEW[1:]


def appended(files=None, own=None):
    """The configuration folder after those files of a list have been appended to one's own, no name being taken."""
    files, own = dict(files or new_list()), own or own_settings()
    result = dict(own, lamedb=lamedb(UNION), lamedb5=lamedb5(UNION))
    for kind in ("tv", "radio"):
        added = files["bouquets." + kind].split("\n", 1)[1]
        result["bouquets." + kind] = own["bouquets." + kind] + added
    for name, content in files.items():
        if name.startswith("userbouquet."):
            result[name] = content
    return result


def overwritten(files=None, own=None):
    """The configuration folder after those files of a list have taken the place of one's own."""
    kept = dict((name, content) for name, content in (own or own_settings()).items() if not _is_replaced(name))
    return dict(kept, **(files or new_list()))


def names_in(content):
    """The names of the user bouquets that a root file refers to."""
    return re.findall('FROM BOUQUET "([^"\n]*)"', content)


def _is_replaced(name):
    return name == "lamedb" or name.endswith((".tv", ".radio"))


# ---- folders

FOLDER, FIFO, OTHER = ("folder",), ("fifo",), ("other",)


def link(target):
    """A symbolic link, as a tree shows it."""
    return "link", target


def tree(folder):
    """Everything below a folder by its path: the content of a file, FOLDER, link(target), FIFO; {} where there is no
    folder."""
    found = {}
    for path, folders, names in os.walk(folder):
        for name in folders + names:
            whole = os.path.join(path, name)
            found[os.path.relpath(whole, folder)] = entry(whole)
    return found


def entry(path):
    """What lies at a path, as a tree shows it; None for nothing."""
    try:
        mode = os.lstat(path).st_mode
    except OSError as error:
        if error.errno not in (errno.ENOENT, errno.ENOTDIR):
            raise
        return None
    if stat.S_ISLNK(mode):
        return link(os.readlink(path))
    if stat.S_ISREG(mode):
        with open(path, "rb") as source:
            return source.read()
    return FOLDER if stat.S_ISDIR(mode) else FIFO if stat.S_ISFIFO(mode) else OTHER


def _modes(folder, found):
    return dict((path, (stat.S_IMODE(os.lstat(os.path.join(folder, path)).st_mode), content))
                for path, content in found.items())


def changes(before, after):
    """What is different in the second of two trees: the new entries, None for those that have gone."""
    return dict((path, after.get(path)) for path in set(before) | set(after) if before.get(path) != after.get(path))


# ---- receivers

class _Folders(object):
    """The folders of receivers, which are used again: making one takes as long as running it."""

    def __init__(self):
        self._spare = []
        self._all = []
        atexit.register(self._remove)

    def take(self, module):
        """A folder with the programs, its writable folders empty."""
        if self._spare:
            return self._spare.pop()
        instance = Instance(support.RECEIVERS)
        self._all.append(instance)
        instance.put_programs(module)
        return instance

    def give_back(self, instance):
        """Empties the folder for the next one."""
        for name, mode in (("etc/enigma2", 0o755), ("etc/opkg", 0o755), ("tmp", 0o1777), ("run", 0o755)):
            remove_folder(instance.inside(name))
            os.mkdir(instance.inside(name))
            os.chmod(instance.inside(name), mode)
        self._spare.append(instance)

    def _remove(self):
        for instance in self._all:
            instance.remove()


_folders = _Folders()


class Receiver(object):
    """A virtual receiver whose folder outlives its process: it can be looked at, and started again."""

    def __init__(self, config):
        self._module = ModuleFile(MODULE)
        self._instance = _folders.take(self._module)
        self.was_killed = False
        self._put("etc/enigma2", config)
        self._put("etc/opkg", {"precious.conf": "nobody's\n"})
        self._put("tmp", {"precious/secret.tv": "somebody's\n"})

    def _put(self, folder, files):
        for name, content in files.items():
            path = self.path(os.path.join(folder, name))
            if not os.path.isdir(os.path.dirname(path)):
                os.makedirs(os.path.dirname(path))
            with open(path, "wb") as target:
                target.write(content)

    def path(self, inside):
        """Where a path of the receiver lies on the PC."""
        return self._instance.inside(inside)

    def set_clock(self, seconds):
        """Stops its clock at a time."""
        with open(self.path(_CLOCK), "w") as target:
            target.write("import time\ntime.time = lambda: %r\n" % float(seconds))

    def remove(self):
        """Gives the folder away; that of a killed receiver, which may take a moment to die, is not used again."""
        instance, self._instance = self._instance, None
        if instance and not self.was_killed:
            _remove(instance.inside(_CLOCK))
            _folders.give_back(instance)

    def empty(self, inside):
        """Removes what lies at a path, as a restart does with all that lies in memory."""
        path = self.path(inside)
        if os.path.isdir(path) and not os.path.islink(path):
            shutil.rmtree(path)
        else:
            _remove(path)

    def config(self):
        """What lies in the configuration folder."""
        return tree(self.path("/etc/enigma2"))

    def downloads(self):
        """What lies in the download folder: a tree, or what there is in its place, None for nothing."""
        there = entry(self.path("/tmp/settings"))
        return tree(self.path("/tmp/settings")) if there == FOLDER else there

    def elsewhere(self):
        """All else that could be written to, with its access rights."""
        found = {}
        for folder, own in (("etc/opkg", ()), ("tmp", ("settings",)), ("run", None)):
            path = self.path(folder)
            below = tree(path) if own is not None else {}
            for name in own or ():
                below = dict((each, content) for each, content in below.items()
                             if each != name and not each.startswith(name + "/"))
            found.update(("/%s/%s" % (folder, each), content) for each, content in _modes(path, below).items())
        found["/tmp"] = stat.S_IMODE(os.lstat(self.path("tmp")).st_mode)
        return found

    def start(self, keys, address, tools=None, around=(), trace=None):
        """Starts it, with the keys to press and the address of the feed.

        The words of `around` stand before the sandbox; `trace` is the number of the change at which everything is
        killed, 0 to have the trace only.
        """
        with open(self.path("etc/opkg/all-feed.conf"), "w") as target:
            target.write(feed_line(address))
        for name in ("result.json", "log", "trace"):
            _remove(self.path("run/" + name))
        inside = self._module.interpreter() + ["/%s/main.py" % PROGRAM, "--keys=" + keys]
        if trace is not None:
            inside = self._tracer(trace) + inside
        command = list(around) + [SANDBOX, "--network"] + (["--gnu"] if tools == "gnu" else [])
        return Running(self, command + [self._instance.path, "--"] + inside)

    def _tracer(self, kill_at):
        shutil.copy2(TRACER, self.path("run/tracer"))
        return ["/run/tracer", "/run/trace", str(kill_at), "/etc/enigma2", "/tmp/settings", "--"]


def _remove(path):
    try:
        os.unlink(path)
    except OSError as error:
        if error.errno != errno.ENOENT:
            raise


def _alone():
    """In the forked child: a session of its own, and nothing of the servers that listen in this process."""
    os.setsid()
    for name in os.listdir("/proc/self/fd"):
        if int(name) > 2:
            try:
                fcntl.fcntl(int(name), fcntl.F_SETFD, fcntl.FD_CLOEXEC)
            except IOError:
                pass


class Running(object):
    """A receiver on its way."""

    def __init__(self, receiver, command):
        self._receiver = receiver
        self._before = receiver.elsewhere()
        self._output = [open(receiver.path(name), "w+") for name in ("output", "complaints")]
        self.process = subprocess.Popen(command, stdin=open(os.devnull), stdout=self._output[0],
                                        stderr=self._output[1], preexec_fn=_alone)

    def wait(self, seconds=60):
        """Waits for its end."""
        give_up = time.time() + seconds
        while self.process.poll() is None:
            if time.time() > give_up:
                self.kill()
                raise AssertionError("the receiver did not end within %d s" % seconds)
            time.sleep(0.005)
        return self._ended()

    def kill(self):
        """Kills it with all that it has started, if it runs."""
        if self.process.poll() is not None:
            return
        self._receiver.was_killed = True
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except OSError as error:
            if error.errno != errno.ESRCH:
                raise
        self.process.wait()

    def shows(self):
        """What has been on the screen so far."""
        with open(self._output[0].name) as source:
            return _views(source.read())

    def _ended(self):
        texts = []
        for output in self._output:
            output.seek(0)
            texts.append(output.read())
        return Ended(self._receiver, self.process.returncode, texts, self._before)


class Ended(object):
    """How a receiver has ended.

    outcome    "closed", "keys used up", "crashed"; None for one that was killed
    traceback  of a crash
    shown      what the owner has seen: pairs of a key and the topmost dialog in short
    escaped    what has changed outside of the configuration folder and the download folder
    """

    def __init__(self, receiver, status, texts, before):
        self.status = status
        self.output, self.complaints = texts
        result = entry(receiver.path("run/result.json"))
        result = json.loads(result) if result else {"outcome": None, "traceback": None}
        self.outcome = result["outcome"]
        self.traceback = (result["traceback"] or "").encode("utf-8")
        self.shown = _views(self.output)
        self.log = entry(receiver.path("run/log")) or ""
        self.escaped = changes(before, receiver.elsewhere())
        self.trace = [[text.encode("latin-1") for text in json.loads(line)]
                      for line in (entry(receiver.path("run/trace")) or "").splitlines()]

    @property
    def error(self):
        """The last line of the traceback."""
        return self.traceback.strip().rpartition("\n")[2]

    @property
    def commands(self):
        """The texts that shells were given to run."""
        return [words[3] for words in self.trace if words[:3] == ["run", "/bin/sh", "-c"] and len(words) == 4]

    @property
    def programs(self):
        """The arguments of every program that the receiver has run, once it was running itself."""
        started = [words[1:] for words in self.trace if words[0] == "run"]
        receiver = [number for number, words in enumerate(started) if "-B" in words and "python" in words[0]]
        return started[receiver[0] + 1:] if receiver else []

    @property
    def changes(self):
        """The system calls that changed something: their names and paths."""
        return [tuple(words[1:]) for words in self.trace if words[0] == "change"]


def _views(output):
    shown = []
    for block in ("\n" + output).split("\n=== ")[1:]:
        key, _, text = block.partition("\n")
        shown.append((key, view(text)))
    return shown


def view(text):
    """A printed screen in short: the topmost dialog, its lines separated by semicolons."""
    kind, words = None, []
    for line in text.splitlines():
        head = line.partition(" | ")[0]
        if line == "closed":
            kind, words = "closed", []
        elif not line.startswith(" ") and head in ("screen", "info", "error", "warning", "yesno", "message", "choice"):
            kind, words = head, []
            if line.endswith(" | empty"):
                words.append("empty")
        elif line.startswith(" ") and kind and not line.startswith("    red: "):
            words.append(" ".join(line.split()))
    return "%s: %s" % (kind, "; ".join(words)) if words else kind


class crashes(str):
    """The last line of a crash's traceback, as what the owner gets to see."""


# ---- tests

def main():
    """Runs the suite's classes for every day; with --full those that take longer."""
    full = "--full" in sys.argv
    if full:
        sys.argv.remove("--full")
    suite = sys.modules["__main__"]
    for name, case in vars(suite).items():
        if isinstance(case, type) and issubclass(case, WorldCase) and case.full != full:
            delattr(suite, name)
    unittest.main()


class WorldCase(unittest.TestCase):
    """A test of receivers in a world that misbehaves."""

    maxDiff = None
    full = False
    tools = None
    width = 4

    def receiver(self, config=None):
        """A receiver with these settings."""
        receiver = Receiver(own_settings() if config is None else config)
        self.addCleanup(receiver.remove)
        return receiver

    def server(self, *answers, **names):
        """A server with these answers for the catalogue's name and the archive's; see misbehaviour.Server."""
        server = Server(*answers, **names)
        self.addCleanup(server.close)
        return server

    def good_server(self, files=None):
        """A server that does as it should."""
        return self.server(support.catalogue(ENTRY), support.archive(files or new_list()))

    def start(self, receiver, keys, server, **options):
        """Starts a receiver on that server's feed."""
        running = receiver.start(keys, server.address, tools=options.pop("tools", self.tools), **options)
        self.addCleanup(running.kill)
        return running

    def play(self, receiver, keys, server, escaped=None, seconds=60, **options):
        """Runs a receiver to its end."""
        return self.ended(self.start(receiver, keys, server, **options), escaped, seconds)

    def in_turns(self, plays):
        """Makes generators run side by side, a few at a time: each starts a receiver, yields it and then looks at it."""
        waiting, begun = list(plays), []
        while waiting or begun:
            while waiting and len(begun) < self.width:
                play = waiting.pop(0)()
                begun.append((play, next(play)))
            play, _ = begun.pop(0)
            for _ in play:
                raise AssertionError("a play yields once")

    def ended(self, running, escaped=None, seconds=60):
        """Waits for its end; nothing may have changed outside of its two folders but what is named."""
        ended = running.wait(seconds)
        self.assertEqual(ended.escaped, escaped or {})
        return ended

    def assert_shown(self, ended, *views):
        """Compares what the owner has seen, screen by screen."""
        self.assertEqual([shown for _, shown in ended.shown], list(views), ended.traceback + ended.complaints)

    def assert_crashed(self, ended, error, function):
        """The host has crashed with that error, which came through that function of the module."""
        self.assertEqual((ended.outcome, ended.error), ("crashed", error), ended.output + ended.complaints)
        self.assertIn(", in %s\n" % function, ended.traceback)

    def assert_completes(self, receiver, own=None, files=None):
        """The way out of an append that went wrong in the middle: another one brings the whole list.

        What the first had copied stays as further bouquets: a name that is taken gets the time into it. Nothing that is
        one's own has gone, and every reference leads to a file. Gives the bouquets that are there besides, by their names.
        """
        own, files = own or own_settings(), files or new_list()
        ended = self.play(receiver, APPEND, self.good_server(files))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        config = receiver.config()
        self.assertEqual((config["lamedb"], config["lamedb5"]), (lamedb(UNION), lamedb5(UNION)))
        besides = {}
        for kind in ("tv", "radio"):
            references = names_in(config["bouquets." + kind])
            new = names_in(files["bouquets." + kind])
            for name, reference in zip(new, references[-len(new):]):
                self.assertRegexpMatches(reference, "^%s(%s)?%s$" % (re.escape(name[:-len(kind) - 1]), STAMP, "." + kind))
                self.assertEqual(config[reference], files[name])
            for name in names_in(own["bouquets." + kind]):
                self.assertIn(name, references)
            for name in references[:-len(new)]:
                if name in own:
                    self.assertEqual(config[name], own[name])
                else:
                    besides[name] = config[name]
            there = [name for name in config if name.startswith("userbouquet.") and name.endswith("." + kind)]
            self.assertEqual(sorted(there), sorted(set(references)))
        return besides

    def assert_next_try_installs(self, receiver, keys=APPEND, config=None, files=None):
        """The way out: the receiver is started again in a good world, and installs."""
        ended = self.play(receiver, keys, self.good_server(files))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        if config is None:
            config = appended(files) if keys == APPEND else overwritten(files)
        self.assertEqual(receiver.config(), config)
