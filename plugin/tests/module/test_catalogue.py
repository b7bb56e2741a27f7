"""The catalogue: fetched over real HTTP, parsed into entries, failures as status codes."""

import hashlib
import httplib
import os
import random
import socket
import urllib2

import feed_server
import loading
import recording_host
from recording_host import FEED_FILE, call

ENTRY = ("A", "B", "C", "D")
# What runs under valgrind makes do with less.
MEGABYTE = int(os.environ.get("MORVESK_MEGABYTE") or 1 << 20)

# The body of a catalogue and its entries.
CATALOGUES = (
    ("", []),
    ("\n\n\n", []),
    ("A:::B:::C:::D", [ENTRY]),
    ("A:::B:::C:::D\n", [ENTRY]),
    ("A:::B:::C:::D\r\n", [ENTRY]),
    ("A:::B:::C:::D\r\nE:::F:::G:::H\r\n", [ENTRY, ("E", "F", "G", "H")]),
    (" A ::: B\t:::\tC ::: D \r\n", [ENTRY]),
    ("A b  c:::\t d e \t:::C:::D\n", [("A b  c", "d e", "C", "D")]),
    # Comments: the first character of the raw line decides.
    ("#A:::B:::C:::D\n", []),
    ("#\n# A:::B:::C:::D\nA:::B:::C:::D\n", [ENTRY]),
    (" #A:::B:::C:::D\n", [("#A", "B", "C", "D")]),
    ("\t#A:::B:::C:::D\n", [("#A", "B", "C", "D")]),
    ("\r#A:::B:::C:::D\n", [("#A", "B", "C", "D")]),
    ("A:::#B:::C:::D\n", [("A", "#B", "C", "D")]),
    # Exactly four pieces.
    ("A:::B:::C\n", []),
    ("A:::B:::C:::D:::E\n", []),
    ("A::B::C::D\n", []),
    ("A::::::C:::D\n", [("A", "", "C", "D")]),
    (":::::::::\n", [("", "", "", "")]),
    (" ::: ::: ::: \n", [("", "", "", "")]),
    ("::::::::::\n", [("", "", "", ":")]),
    ("::::::::\n", []),
    ("A::::B:::C:::D\n", [("A", ":B", "C", "D")]),
    ("A:::::B:::C:::D\n", [("A", "::B", "C", "D")]),
    (":A:::B:::C:::D:\n", [(":A", "B", "C", "D:")]),
    ("A: ::B:::C:::D:::E\n", [("A: ::B", "C", "D", "E")]),
    # Only "\n" ends a line.
    ("A:::B:::C:::D\rE:::F:::G:::H\n", []),
    ("A:::B:::C\r:::D\n", [ENTRY]),
    ("A:::B\x0b:::\x0cC:::D\x85\n", [("A", "B", "C", "D\x85")]),
    ("A:::B:::C:::D\x1c\x1d\x1e\n", [("A", "B", "C", "D\x1c\x1d\x1e")]),
    # No order, no removal of doubles.
    ("b:::B:::C:::D\na:::B:::C:::D\nb:::B:::C:::D\n", [("b", "B", "C", "D"), ("a", "B", "C", "D"), ("b", "B", "C", "D")]),
    # Bytes of every kind.
    ("A\0:::\0B:::C\0C:::\0\n", [("A\0", "\0B", "C\0C", "\0")]),
    ("\xc3\xa4:::\xff\xfe:::\xe2\x82\xac:::\xa0D\xa0\n", [("\xc3\xa4", "\xff\xfe", "\xe2\x82\xac", "\xa0D\xa0")]),
    ("\xef\xbb\xbf#A:::B:::C:::D\n", [("\xef\xbb\xbf#A", "B", "C", "D")]),
    ("%s:::%d:::{0}:::%\n", [("%s", "%d", "{0}", "%")]),
    ("A:::B:::C:::D\n" * 2000, [ENTRY] * 2000),
    ("x" * 300000 + ":::B:::C:::D\n", [("x" * 300000, "B", "C", "D")]),
    ("<html>\n<body>Welcome</body>\n</html>\n", []),
)


class ServerCase(loading.ModuleCase):
    """A test with a real server as the package feed."""

    @classmethod
    def setUpClass(cls):
        cls.server = feed_server.FeedServer()

    @classmethod
    def tearDownClass(cls):
        cls.server.stop()

    def setUp(self):
        super(ServerCase, self).setUp()
        self.server.reset()
        self.server.configure(self.host)


class Catalogue(ServerCase):
    """A catalogue from a real server."""

    def test_entries(self):
        for body, entries in CATALOGUES:
            self.server.catalogue(body)
            result = self.module.parse_download_file()
            self.assertEqual(result, (0, entries), body[:200])
            self.assertEqual((type(result), type(result[0]), type(result[1])), (tuple, int, list))
            for entry in result[1]:
                self.assertEqual((type(entry), [type(field) for field in entry]), (tuple, [str] * 4))

    def test_requests(self):
        self.server.catalogue("A:::B:::C:::D\n")
        self.module.parse_download_file()
        self.assertEqual(self.server.server.requests, [("GET", "/feeds/settings_download/qel_settings.download")])

    def test_host_calls(self):
        self.server.catalogue("A:::B:::C:::D\n")
        self.module.parse_download_file()
        self.assertCalls([
            call("open", FEED_FILE, "r"), call("readline", FEED_FILE), call("close file", FEED_FILE),
            call("urlopen", self.server.folder + "qel_settings.download", None, 5.0), call("read")])
        timeout = self.host.named("urlopen")[0][1][2]
        self.assertIs(type(timeout), float)

    def test_the_address_is_asked_for_at_each_call(self):
        addresses = iter(["first", "second"])
        self.replace(info_url=lambda: next(addresses), urllib2=Answers("A:::B:::C:::D", "E:::F:::G:::H"))
        self.assertEqual(self.module.parse_download_file(), (0, [ENTRY]))
        self.assertEqual(self.module.parse_download_file(), (0, [("E", "F", "G", "H")]))
        self.assertEqual(self.host.named("urlopen"), [call("urlopen", "first", None, 5.0), call("urlopen", "second", None, 5.0)])

    def test_results_are_new_each_time(self):
        self.server.catalogue("A:::B:::C:::D\n")
        one, two = self.module.parse_download_file()[1], self.module.parse_download_file()[1]
        self.assertEqual(one, two)
        self.assertIsNot(one, two)

    def test_a_redirected_catalogue(self):
        self.server.catalogue(self.server.address + "/elsewhere", 302)
        self.server.server.answers["/elsewhere"] = (200, "A:::B:::C:::D\n")
        self.assertEqual(self.module.parse_download_file(), (0, [ENTRY]))

    def test_an_http_error_is_status_2(self):
        for status in (400, 401, 403, 404, 410, 500, 503):
            self.server.catalogue("A:::B:::C:::D\n", status)
            self.assertEqual(self.module.parse_download_file(), (2, None))

    def test_an_unreachable_server_is_status_3(self):
        self.host.write(FEED_FILE, "src/gz Qel-all %s/feeds/all\n" % feed_server.unreachable())
        self.assertEqual(self.module.parse_download_file(), (3, None))

    def test_an_unknown_scheme_is_status_3(self):
        self.host.write(FEED_FILE, "src/gz Qel-all h://feed/all\n")
        self.assertEqual(self.module.parse_download_file(), (3, None))

    def test_something_that_is_no_address_propagates(self):
        self.host.write(FEED_FILE, "")
        error = self.raised(self.module.parse_download_file)
        self.assertEqual((type(error), str(error)), (ValueError, "unknown url type: qel_settings.download"))


class Answers(object):
    """Stands for `urllib2`; gives set bodies, or raises set errors."""

    HTTPError, URLError = urllib2.HTTPError, urllib2.URLError

    def __init__(self, *answers):
        self.answers = list(answers)

    def urlopen(self, *arguments, **keywords):
        """Answers with the next body."""
        recording_host.HOST.note("urlopen", *arguments, **keywords)
        return Body(self.answers.pop(0))


class Body(object):
    """A response whose read gives a set body or raises a set error; it has nothing else."""

    __slots__ = ("body",)

    def __init__(self, body):
        self.body = body

    def read(self):
        """The body."""
        if isinstance(self.body, BaseException):
            raise self.body
        return self.body


class FreshBody(object):
    """A response whose body nobody holds but the caller, as after a real transfer."""

    def __init__(self, path):
        self.path = path

    def read(self):
        """The body, as a new string."""
        with open(self.path, "rb") as stream:
            return stream.read()


class FailingBody(object):
    """A body that cannot be split."""

    def __init__(self, error):
        self.error = error

    def split(self, *arguments):
        """Fails."""
        recording_host.HOST.note("split", *arguments)
        raise self.error


def http_error():
    """An error status of a server."""
    return urllib2.HTTPError("address", 404, "not here", {}, None)


class OwnUrlError(urllib2.URLError):
    """A kind of URL error."""


class OwnHttpError(urllib2.HTTPError):
    """A kind of HTTP error."""


CODES = (
    (http_error, 2), (lambda: OwnHttpError("address", 500, "x", {}, None), 2), (lambda: urllib2.URLError("refused"), 3),
    (lambda: OwnUrlError("refused"), 3))
OTHERS = (socket.timeout("timed out"), socket.error(104, "reset"), IOError("x"), httplib.BadStatusLine(""),
          httplib.IncompleteRead(""), KeyboardInterrupt(), MemoryError(), ValueError("x"))


class Guard(loading.ModuleCase):
    """What is caught, and around what."""

    def setUp(self):
        super(Guard, self).setUp()
        self.replace(info_url=lambda: "address")

    def test_errors_of_the_request(self):
        for make, status in CODES:
            self.host.failures["urlopen"] = make()
            self.assertEqual(self.module.parse_download_file(), (status, None))

    def test_errors_of_the_read(self):
        for make, status in CODES:
            self.replace(urllib2=Answers(make()))
            self.assertEqual(self.module.parse_download_file(), (status, None))

    def test_errors_of_the_split(self):
        for make, status in CODES:
            self.replace(urllib2=Answers(FailingBody(make())))
            self.assertEqual(self.module.parse_download_file(), (status, None))
        self.assertEqual(self.host.named("split"), [call("split", "\n")] * len(CODES))

    def test_every_other_error_propagates(self):
        for error in OTHERS:
            self.host.failures["urlopen"] = error
            self.assertIs(self.raised(self.module.parse_download_file), error)
        self.host.failures.clear()
        for error in OTHERS:
            self.replace(urllib2=Answers(error))
            self.assertIs(self.raised(self.module.parse_download_file), error)
            self.replace(urllib2=Answers(FailingBody(error)))
            self.assertIs(self.raised(self.module.parse_download_file), error)

    def test_errors_of_the_address_propagate(self):
        for make, _ in CODES:
            error = make()

            def fail():
                """No address."""
                raise error
            self.replace(info_url=fail)
            self.assertIs(self.raised(self.module.parse_download_file), error)
        self.assertEqual(self.host.named("urlopen"), [])

    def test_the_kinds_of_error_are_looked_up_when_one_is_raised(self):
        class Other(object):
            """Other kinds."""
            URLError = HTTPError = KeyError

            @staticmethod
            def urlopen(*arguments):
                """Fails in a way of its own."""
                raise error
        self.replace(urllib2=Other)
        error = KeyError("x")
        self.assertEqual(self.module.parse_download_file(), (2, None))
        Other.HTTPError = ValueError
        self.assertEqual(self.module.parse_download_file(), (3, None))
        Other.URLError = ValueError
        self.assertIs(self.raised(self.module.parse_download_file), error)

    def test_without_an_error_the_kinds_are_not_looked_up(self):
        class Other(object):
            """Has a way to ask only."""

            @staticmethod
            def urlopen(*arguments):
                """Answers."""
                return Body("A:::B:::C:::D")
        self.replace(urllib2=Other)
        self.assertEqual(self.module.parse_download_file(), (0, [ENTRY]))

    def test_nothing_is_called_on_the_response_but_read(self):
        self.replace(urllib2=Answers("A:::B:::C:::D"))
        self.assertEqual(self.module.parse_download_file(), (0, [ENTRY]))
        self.host.write("/body", "A:::B:::C:::D")
        self.host.urlopen = lambda *arguments: open(self.host.real("/body"))
        self.replace(urllib2=recording_host.STANDARD_LIBRARY["urllib2"])
        del self.host.calls[:]
        self.module.parse_download_file()
        self.assertCalls([call("urlopen", "address", None, 5.0), call("read")])


def long_catalogue(dice, size):
    """Lines of all lengths, with and without entries, a few of them very long, and no line end after the last one."""
    lines, written = [], 0
    while written < size:
        line = dice.choice(("%d:::b:::c:::d", "%d ::: b ::: c ::: d \r", "# %d:::b:::c:::d", "%d:::b:::c", "", "%d")).replace(
            "%d", str(written))
        line += dice.choice(("", "x" * dice.randint(0, 300), "x" * dice.randint(0, 300), " " * dice.randint(0, 3)))
        if dice.random() < 20.0 / size:
            line += "y" * dice.randint(0, size // 2)
        lines.append(line)
        written += len(line) + 1
    return "\n".join(lines)


def entries_of(body):
    """The entries, read in the simplest way."""
    pieces = [line.split(":::") for line in body.split("\n") if not line.startswith("#")]
    return [tuple([piece.strip() for piece in four]) for four in pieces if len(four) == 4]


class LongBody(loading.ModuleCase):
    """Catalogues of many megabytes."""

    def setUp(self):
        super(LongBody, self).setUp()
        self.replace(info_url=lambda: "address")
        dice = random.Random(2023)
        self.bodies = [long_catalogue(dice, size) for size in (MEGABYTE, 3 * MEGABYTE)]
        long_line = "x" * 2 * MEGABYTE
        self.bodies += ["A:::B:::C:::D", "\n" + long_line, long_line + "\nA:::B:::C:::D\n", "\n" * 2 * MEGABYTE,
                        "A:::B:::C:::D\n" * (MEGABYTE // 8), ":" * 2 * MEGABYTE,
                        ("x" * 1023 + "\n") * (MEGABYTE // 512) + "A:::B:::C:::D"]

    def read(self, answer):
        """What is read from this answer."""
        self.host.urlopen = lambda *arguments: answer
        return self.module.parse_download_file()

    def test_a_body_that_nobody_else_holds(self):
        for body in self.bodies:
            self.host.write("/body", body)
            status, entries = self.read(FreshBody(self.host.real("/body")))
            self.assertEqual(status, 0)
            self.assertTrue(entries == entries_of(body))

    def test_a_body_that_somebody_holds_stays_as_it_is(self):
        for body in self.bodies:
            digest = hashlib.sha1(body).digest()
            status, entries = self.read(Body(body))
            self.assertEqual(status, 0)
            self.assertTrue(entries == entries_of(body))
            self.assertEqual(hashlib.sha1(body).digest(), digest)


if __name__ == "__main__":
    loading.main()
