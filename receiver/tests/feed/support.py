# -*- coding: utf-8 -*-
"""The feed made once for all tests of a process, unpacked by a real tar, and read by a reader of the tests' own."""

import atexit
import os
import re
import shutil
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True

TESTS = os.path.dirname(os.path.abspath(__file__))
RECEIVER = os.path.dirname(os.path.dirname(TESTS))
FEED = os.path.join(RECEIVER, "feed")
LISTS = os.path.join(FEED, "lists")
MAKE_FEED = os.path.join(FEED, "make_feed.py")
SERVER = os.path.join(FEED, "server.py")
BUSYBOX = os.path.join(os.path.dirname(RECEIVER), ".local", "root", "bin", "busybox")

sys.path.insert(0, RECEIVER)

_PLACE = re.compile(r"(\d+\.\d[EW]|terrestrial|cable)$")
_folder = []


def scratch():
    """A folder that goes away when the tests end."""
    if not _folder:
        _folder.append(tempfile.mkdtemp(prefix="feed-"))
        atexit.register(shutil.rmtree, _folder[0], True)
    return tempfile.mkdtemp(dir=_folder[0])


def run(command, **options):
    """Runs a command; gives its exit status and both its outputs."""
    child = subprocess.Popen(command, stdin=open(os.devnull), stdout=subprocess.PIPE, stderr=subprocess.PIPE, **options)
    output, errors = child.communicate()
    return child.returncode, output, errors


def make(*options, **environment):
    """Runs make_feed.py with a new folder; gives the folder."""
    folder = os.path.join(scratch(), "made")
    result = run([sys.executable, "-B", MAKE_FEED, folder] + list(options), **environment)
    if result != (0, "", ""):
        raise AssertionError("make_feed.py: %r" % (result,))
    return folder


def feed():
    """The sample feed."""
    if not hasattr(feed, "made"):
        feed.made = make()
    return feed.made


def contents(folder):
    """The content of each file below a folder by its name."""
    result = {}
    for path, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(path, name), "rb") as source:
                result[os.path.relpath(os.path.join(path, name), folder)] = source.read()
    return result


def entries(catalogue):
    """The entries of a catalogue, as receivers read it."""
    result = []
    for line in catalogue.split("\n"):
        fields = [field.strip() for field in line.split(":::")]
        if not line.startswith("#") and len(fields) == 4:
            result.append(tuple(fields))
    return result


def unpack(archive, tar=("tar",)):
    """Unpacks an archive as a receiver does; gives the exit status and the folder."""
    folder = scratch()
    return run(list(tar) + ["-xzf", archive, "-C", folder + "/"])[0], folder


class Description(object):
    """What a list's description states, read without its maker."""

    def __init__(self, name):
        self.name = name
        self.statements = []
        with open(os.path.join(LISTS, name + ".list"), "rb") as source:
            for line in source.read().splitlines():
                if line.strip() and not line.startswith("#"):
                    keyword, _, value = line.strip().partition(" ")
                    self.statements.append((keyword, value.strip()))

    def all(self, keyword):
        """The values of all statements of a keyword."""
        return [value for known, value in self.statements if known == keyword]

    def one(self, keyword):
        """The value of the only statement of a keyword; None when there is none."""
        values = self.all(keyword)
        if len(values) > 1:
            raise AssertionError("%s states %s more than once" % (self.name, keyword))
        return values[0] if values else None

    def entry(self):
        """The entry in the catalogue."""
        return tuple(self.one(keyword) for keyword in ("author", "date", "description", "archive"))

    def archive(self):
        """The archive's path below the made feed."""
        return os.path.join(feed(), self.one("archive"))

    def bouquets(self):
        """(file name, title, [markers and services written by hand]) of each bouquet that is described by itself."""
        result = []
        for keyword, value in self.statements:
            if keyword == "bouquet":
                kind, middle, title = value.split(None, 2)
                result.append(("userbouquet.%s.%s" % (middle, kind), title, []))
            elif keyword == "marker":
                result[-1][2].append(value)
            elif keyword == "service":
                place, name = value.split(None, 1)
                assert _PLACE.match(place), place
                result[-1][2].append(name)
        return result


def described():
    """The descriptions of all lists, in the catalogue's order."""
    with open(os.path.join(LISTS, "catalogue"), "rb") as source:
        return [Description(line.split()[1]) for line in source.read().splitlines() if line.startswith("list ")]


def good():
    """The descriptions of the lists that can be installed."""
    return [each for each in described()
            if not (each.all("lacks") or each.all("page") or each.all("withdrawn"))]


class ServiceFile(object):
    """A service file of format 4, read strictly: anything unexpected fails."""

    def __init__(self, content):
        lines = content.split("\n")
        assert lines[:2] == ["eDVB services /4/", "transponders"], lines[:2]
        self.transponders, self.services = {}, {}
        place = 2
        while lines[place] != "end":
            assert re.match(r"[0-9a-f]{8}:[0-9a-f]{4}:[0-9a-f]{4}$", lines[place]), lines[place]
            assert re.match(r"\t[stc] \d+(:-?\d+)+$", lines[place + 1]), lines[place + 1]
            assert lines[place + 2] == "/" and lines[place] not in self.transponders, lines[place]
            self.transponders[lines[place]] = lines[place + 1][1:]
            place += 3
        assert lines[place + 1] == "services", lines[place + 1]
        place += 2
        while lines[place] != "end":
            self._add(*lines[place:place + 3])
            place += 3

    def _add(self, key, name, fields):
        assert re.match(r"[0-9a-f]{4}:[0-9a-f]{8}:[0-9a-f]{4}:[0-9a-f]{4}:\d+:0$", key), key
        assert re.match(r"p:[^,]+(,c:[0-9a-f]{6}|,C:[0-9a-f]{4}|,f:40)+$", fields), fields
        assert name, key
        assert key not in self.services, key
        assert key[5:23] in self.transponders, key
        self.services[key] = name

    def name(self, reference):
        """The name of the service that a bouquet refers to; KeyError when there is none."""
        return self.services[self.key(reference)]

    @staticmethod
    def key(reference):
        """The key of the service that a bouquet refers to."""
        match = re.match(r"1:0:([0-9A-F]+):([0-9A-F]+):([0-9A-F]+):([0-9A-F]+):([0-9A-F]+):0:0:0:$", reference)
        kind, sid, tsid, onid, namespace = [int(each, 16) for each in match.groups()]
        return "%04x:%08x:%04x:%04x:%d:0" % (sid, namespace, tsid, onid, kind)


def read_bouquet(content):
    """The title of a user bouquet and its entries: (reference, description or None) each."""
    lines = content.split("\n")
    assert lines[0].startswith("#NAME ") and lines[-1] == "", lines[0]
    result = []
    for line in lines[1:-1]:
        if line.startswith("#SERVICE "):
            result.append((line[len("#SERVICE "):], None))
        else:
            assert line.startswith("#DESCRIPTION ") and result[-1][1] is None, line
            result[-1] = (result[-1][0], line[len("#DESCRIPTION "):])
    return lines[0][len("#NAME "):], result
