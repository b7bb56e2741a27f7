"""Random byte strings by the hundred thousand: what address, catalogue, name and content become of them, against what the
interpreter's own string operations make of them.

Nothing but strings goes in and out: no file, no transfer. MORVESK_SEED repeats a run; MORVESK_STRINGS says how many.
"""

import cStringIO
import os
import random
import sys
import unittest

import loading
import recording_host
import wanted
from recording_host import CONFIG

SEED = int(os.environ.get("MORVESK_SEED") or random.SystemRandom().randrange(10 ** 9))
# Every other build shows no more than that it is made of the same sources.
ONCE = loading.COMPILED and not hasattr(sys, "gettotalrefcount")
STRINGS = int(os.environ.get("MORVESK_STRINGS") or (400000 if ONCE else 20000))
KINDS = 4
BATCH = 500

BYTES = [chr(number) for number in range(256)]
WHITE = [" ", "\t", "\r", "\n", "\x0b", "\x0c", "\x1c", "\x85", "\xa0", "\0"]
LETTERS = ["a", "l", "s", "A", "\xc3\xa4", "\xff", "\xe2\x82\xac", "%s", "%", "\\", "."]
ADDRESS = ["src/gz Qel-all ", "src/gz", "Qel-all", "all", "al", "http://", "feed.example", "/", "-", "Q", "h", "\n"] * 4
FIELD = [":", "::", "#", " "] * 3 + WHITE + LETTERS
NAME = ["userbouquet.", "userbouquet"] * 4 + [".tv", ".radio"] * 4 + ["'", '"', "bouquet", " ", "/", ".."] + LETTERS
LINE_ENDS = ["\n"] * 8 + ["\r\n"] * 3 + ["\r", "\0\n", "\n\n", "\r\r\n"]
ENTRY = '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet'


class Texts(object):
    """A source of random texts."""

    def __init__(self, source):
        self.random = source.random

    def one(self, words):
        """One of the words."""
        return words[int(self.random() * len(words))]

    def some(self, words, most):
        """Up to `most` of the words, one after the other."""
        number, length = self.random, len(words)
        return "".join([words[int(number() * length)] for _ in range(int(number() * (most + 1)))])

    def many(self, words, most, count=60):
        """A number of such texts, in some of them bytes of any value."""
        return [self.some(words, most) + (self.some(BYTES, 3) if self.random() < .2 else "") for _ in range(count)]


class Stream(object):
    """An open file; what is written to it is kept in `files`."""

    def __init__(self, files):
        self.files, self.stream = files, cStringIO.StringIO(files.content)
        self.readline, self.readlines = self.stream.readline, self.stream.readlines

    def write(self, content):
        """Keeps what is written."""
        self.files.written = content

    def close(self):
        """Nothing needs to be closed."""

    def __enter__(self):
        return self

    def __exit__(self, *error):
        return None


class Files(object):
    """The receiver's files: whichever is opened has the content that was set last."""

    content, written = "", None

    def open(self, path, mode):
        """The built-in `open`."""
        return Stream(self)


class Server(object):
    """Stands for `urllib2`; answers with the body that was set last."""

    HTTPError, URLError = recording_host.Transfers.HTTPError, recording_host.Transfers.URLError
    body = ""

    def urlopen(self, address, data, seconds):
        """The answer."""
        return cStringIO.StringIO(self.body)


class Paths(object):
    """`os.path` of a receiver where the download folder has every file and the configuration folder none."""

    @staticmethod
    def exists(path):
        """Whether there is a file."""
        return not path.startswith(CONFIG)

    isfile = exists


class System(object):
    """`os` and `shutil` of that receiver."""

    path = Paths

    def __init__(self):
        self.copied = []

    def copy2(self, source, target):
        """Notes a copy."""
        self.copied.append((source, target))


class Strings(unittest.TestCase):
    """Each kind of text."""

    maxDiff = None
    total = 0

    @classmethod
    def setUpClass(cls):
        recording_host.install()
        cls.files, cls.server, cls.system = Files(), Server(), System()
        cls.module = loading.load(cls.files.open) if loading.COMPILED else loading.recorded()
        if not loading.COMPILED:
            cls.module.open = cls.files.open
        vars(cls.module).update(
            urllib2=cls.server, os=cls.system, shutil=cls.system, fileExists=lambda path: True, resolveFilename=lambda *names: CONFIG)
        cls.screen = cls.module.Morvesk(recording_host.Session(), "/the/panel")
        cls.screen.__dict__["dest_dir"] = CONFIG

    @classmethod
    def tearDownClass(cls):
        sys.stdout.write("%d strings, MORVESK_SEED=%d\n" % (cls.total, SEED))

    def batches(self):
        """Sources of texts, each for a batch of them."""
        for batch in range(max(1, STRINGS // KINDS // BATCH)):
            self.batch = "MORVESK_SEED=%d, batch %d" % (SEED, batch)
            del recording_host.HOST.calls[:]
            yield Texts(random.Random("%d %s %d" % (SEED, self.id(), batch)))
            Strings.total += BATCH

    def same(self, got, expected, text):
        """Compares."""
        if got != expected:
            self.fail("%s: %r gives\n  %r\nand should give\n  %r" % (self.batch, text, got, expected))

    def test_addresses(self):
        starts = ["src/gz Qel-all "] * 3 + ["", " ", "src/gz  Qel-all\t"]
        for texts in self.batches():
            middles = texts.many(ADDRESS + WHITE + LETTERS, 6)
            ends = ["all\n", "/all\n", "/all\r\n", "/all", "\n", "", "/all\nall\n"] + texts.many(WHITE + ["all", "l"], 4, 5)
            for _ in range(BATCH):
                content = texts.one(starts) + texts.one(middles) + texts.one(middles) + texts.one(ends)
                self.files.content = content
                self.same(self.module.base_url(), wanted.address(content), content)

    def test_catalogues(self):
        separators = [":::"] * 8 + ["::::", "::", "::: ::"]
        for texts in self.batches():
            fields = texts.many(FIELD, 4)
            lines = [texts.one(["", "", "", "", "", "#", " #"]) + texts.one(separators).join(
                [texts.one(fields) for _ in range(texts.one([1, 3, 4, 4, 4, 4, 4, 4, 5]))]) for _ in range(100)]
            for _ in range(BATCH):
                body = texts.one(LINE_ENDS + [""]).join([texts.one(lines) for _ in range(1 + int(texts.random() * 5))])
                self.server.body = body
                self.same(self.module.parse_download_file(), (0, wanted.entries(body)), body)

    def test_names(self):
        quotes = ['"%s"', '"%s"', "'%s'", '"%s', "'%s", "%s", '""%s', "\"\"'%s'", "''%s''", "\"%s\" '%s'", "%s\"'"]
        for texts in self.batches():
            names = texts.many(NAME, 4) + ["userbouquet.%d.%s" % (number, kind) for number in range(10) for kind in ("tv", "radio")]
            around = ["", "", "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET ", "#NAME "] + texts.many(NAME + WHITE[:3], 2, 10)
            around = [text.replace("\n", "") for text in around]
            found = {}
            self.screen.__dict__["writeBouquetFiles"] = found.__setitem__
            lines = [texts.one(around) + texts.one(quotes).replace("%s", texts.one(names)) + texts.one(around) + "\n"
                     for _ in range(BATCH)]
            self.files.content = "".join(lines)
            self.screen.mergeNewFavourites()
            for kind in ("tv", "radio"):
                taken = [name for name in map(wanted.bouquet_name, wanted.lines_of(self.files.content))
                         if name[:11] == "userbouquet" and name.endswith("." + kind)]
                self.same(found.get(kind, []), [(name, name) for name in taken], self.files.content)

    def test_contents(self):
        for texts in self.batches():
            names = texts.many(NAME, 3, 10)
            lines = texts.many(NAME + WHITE[:4], 4, 30) + [ENTRY % name for name in names]
            for _ in range(BATCH):
                content = "".join([texts.one(lines) + texts.one(LINE_ENDS) for _ in range(int(texts.random() * 4))])
                content += texts.one(["", texts.one(lines)])
                pairs = [("a", texts.one(names)) for _ in range(int(texts.random() * 3))]
                self.files.content = content
                del self.system.copied[:]
                self.screen.writeBouquetFiles("tv", pairs)
                expected, copied = wanted.root_file(content, "tv", pairs)
                self.same(self.files.written, expected, (content, pairs))
                self.same(self.system.copied, [
                    ("/tmp/settings/a", CONFIG + target) for _, target in copied], (content, pairs))


if __name__ == "__main__":
    loading.main()
