# -*- coding: utf-8 -*-
"""A server that misbehaves in every way that HTTP leaves open: what the owner sees, and that nothing is lost by it.

Each kind of misbehaviour meets the catalogue and the archive. The module handles error statuses and a server that cannot
be reached; everything else that `urllib2` raises is a crash of the host, which on a receiver shows its crash screen and
starts the user interface again.
"""

import socket
import time

import world

import support
from misbehaviour import ARCHIVE, CATALOGUE, FOLDER, redirect, reset, sending, silent, whole
from support import ENTRY, new_list, own_settings
from world import (APPEND, CLOSED, EMPTY, LIST, NO_CONNECTION, NO_SERVER, NOT_EXTRACTED, QUESTION, SUCCESS, crashes)

OFFERED = support.catalogue(ENTRY)
PACKED = support.archive(new_list())
TIME_OUT = 5.0

TIMED_OUT = crashes("timeout: timed out")
BROKEN = crashes("error: [Errno 104] Connection reset by peer")
NO_ANSWER = crashes("BadStatusLine: No status line received - the server has closed the connection")
HEAD = "HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\n"
CHUNKED = "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
WEB_PAGE = "<html><head><title>Welcome</title></head><body>Log in to go on</body></html>\n"


def half(body):
    """What a connection has brought that ends in the middle."""
    return body[:len(body) // 2]


def chunk(body, size=None):
    """A piece of a body that comes in pieces, with its size or another one."""
    return "%s\r\n%s\r\n" % ("%x" % len(body) if size is None else size, body)


class ServerCase(world.WorldCase):
    """A test of the two transfers."""

    def check(self, *cases):
        """Each case is a function that makes an answer of a body, what the owner sees when the catalogue comes so, and
        what when the archive does."""
        plays = []
        for make, catalogue, archive in cases:
            plays.append((self.of_catalogue, make(OFFERED), catalogue))
            plays.append((self.of_archive, make(PACKED), archive))
        self.in_turns([lambda play=play: play[0](*play[1:]) for play in plays])

    def of_catalogue(self, answer, expected):
        """Plays one way to send the catalogue."""
        receiver = self.receiver()
        running = self.start(receiver, "exit", self.server(answer, PACKED))
        yield running
        ended = self.ended(running)
        if isinstance(expected, crashes):
            self.assert_crashed(ended, expected, "parse_download_file")
        else:
            self.assert_shown(ended, expected, CLOSED)
        self.assert_state(receiver, None)
        receiver.remove()

    def of_archive(self, answer, expected):
        """Plays one way to send the archive."""
        receiver = self.receiver()
        server = self.server(OFFERED, answer)
        running = self.start(receiver, "ok exit exit", server)
        yield running
        ended = self.ended(running)
        if isinstance(expected, crashes):
            self.assert_crashed(ended, expected, "download_settings")
            self.assert_shown(ended, LIST)
            self.assert_state(receiver, {})
        elif expected in (NO_CONNECTION, NO_SERVER):
            self.assert_shown(ended, LIST, expected, CLOSED)
            self.assert_state(receiver, {})
        else:
            self.assert_shown(ended, LIST, expected, LIST, CLOSED)
            unpacked = new_list() if expected == QUESTION else {}
            kept = receiver.downloads().get("settings.tar.gz")
            self.assertTrue(kept is not None and PACKED.startswith(kept) or kept == WEB_PAGE)
            self.assert_state(receiver, dict(unpacked, **{"settings.tar.gz": kept}))
        receiver.remove()

    def assert_state(self, receiver, downloads):
        """Nothing of the owner's has changed; and as the next try installs from one such state, it does from each."""
        self.assertEqual(receiver.config(), own_settings())
        self.assertEqual(receiver.downloads(), downloads)
        state = repr(downloads)
        if state not in self.left:
            self.left.add(state)
            self.assert_next_try_installs(receiver)

    def setUp(self):
        self.left = set()


class Answers(ServerCase):
    """A server that answers at once, but not as it should."""

    def test_error_statuses(self):
        self.check(*[(lambda _, status=status: status, NO_CONNECTION, NO_CONNECTION) for status in (404, 403, 500, 503)])

    def test_closed_early(self):
        self.check(
            (lambda body: sending(""), NO_ANSWER, NO_ANSWER),
            (lambda body: sending(HEAD[:-2] % len(body)), EMPTY, NOT_EXTRACTED),
            (lambda body: sending(HEAD % len(body) + half(body)), EMPTY, NOT_EXTRACTED),
            (lambda body: reset(), BROKEN, BROKEN),
            (lambda body: reset(HEAD % len(body) + half(body)), BROKEN, BROKEN))

    def test_a_catalogue_cut_between_its_rows(self):
        """Nobody can tell that there were more."""
        both = OFFERED + OFFERED
        receiver = self.receiver()
        server = self.server(sending(HEAD % len(both) + both[:-20]), PACKED)
        self.assert_shown(self.play(receiver, "exit", server), LIST, CLOSED)
        self.assert_state(receiver, None)

    def test_wrong_lengths(self):
        """What comes counts; only a length that is too small cuts it off."""
        self.check(
            (lambda body: sending(whole(body, len(body) + 1000)), LIST, QUESTION),
            (lambda body: sending(whole(body, len(half(body)))), EMPTY, NOT_EXTRACTED),
            (lambda body: sending(whole(body, "0")), EMPTY, NOT_EXTRACTED),
            (lambda body: sending(whole(body, "-5")), LIST, QUESTION),
            (lambda body: sending(whole(body, "")), LIST, QUESTION))

    def test_chunks(self):
        """The one way to send a body in which an early end is noticed."""
        cut_catalogue = crashes("IncompleteRead: IncompleteRead(%d bytes read, %d more expected)" % (
            len(half(OFFERED)), len(OFFERED) - len(half(OFFERED))))
        cut_archive = crashes("IncompleteRead: IncompleteRead(%d bytes read, %d more expected)" % (
            len(half(PACKED)), len(PACKED) - len(half(PACKED))))
        no_size = crashes("IncompleteRead: IncompleteRead(0 bytes read)")
        self.check(
            (lambda body: sending(CHUNKED + chunk(half(body)) + chunk(body[len(half(body)):]) + chunk("")), LIST, QUESTION),
            (lambda body: sending(CHUNKED + chunk(body, "%x" % len(body))[:-len(body[len(half(body)):]) - 2]),
             cut_catalogue, cut_archive),
            (lambda body: sending(CHUNKED + chunk(body, "zz")), no_size, no_size))

    def test_web_page(self):
        """What a hotel's network or a parked name answers in the place of everything."""
        self.check((lambda _: WEB_PAGE, EMPTY, NOT_EXTRACTED))

    def test_refused(self):
        receiver, server = self.receiver(), self.server()
        server.close()
        self.assert_shown(self.play(receiver, "ok exit", server), NO_SERVER, NO_SERVER, CLOSED)
        self.assert_state(receiver, None)

    def test_refused_for_the_archive(self):
        def last_answer(connection):
            server.close()
            connection.sendall(whole(OFFERED))
        receiver, server = self.receiver(), self.server(last_answer)
        self.assert_shown(self.play(receiver, "ok ok exit", server), LIST, NO_SERVER, NO_SERVER, CLOSED)
        self.assert_state(receiver, {})

    def test_next_try_in_the_same_screen(self):
        """A box leads back to the catalogue, and from there on."""
        for bad in (WEB_PAGE, half(PACKED), sending(HEAD % len(PACKED) + half(PACKED))):
            receiver = self.receiver()
            ended = self.play(receiver, "ok ok ok ok ok", self.server(OFFERED, [bad, PACKED]))
            self.assert_shown(ended, LIST, NOT_EXTRACTED, LIST, QUESTION, SUCCESS, CLOSED)
            self.assertEqual(receiver.config(), world.appended())


class Redirects(ServerCase):
    """A server that sends the receiver elsewhere."""

    def redirecting(self, address):
        return lambda _: redirect(address)

    def test_in_circles(self):
        def to_itself(body):
            return redirect(FOLDER + (CATALOGUE if body == OFFERED else ARCHIVE))
        self.check((to_itself, NO_CONNECTION, NO_CONNECTION))
        circle = {"/one": redirect("/two"), "/two": redirect("/one")}
        receiver = self.receiver()
        self.assert_shown(self.play(receiver, "exit", self.server(redirect("/one"), paths=circle)), NO_CONNECTION, CLOSED)
        self.assert_state(receiver, None)

    def test_to_where_nothing_may_be_fetched(self):
        """Only HTTP and FTP are followed: no server makes the receiver read a file of its own."""
        self.check((self.redirecting("file:///etc/enigma2/lamedb"), NO_CONNECTION, NO_CONNECTION))

    def test_to_where_nobody_answers(self):
        self.check((self.redirecting("http://127.0.0.1:1/"), NO_SERVER, NO_SERVER),
                   (self.redirecting("ftp://127.0.0.1:1/list"), NO_SERVER, NO_SERVER))

    def test_to_no_address(self):
        no_address = crashes("ValueError: Invalid IPv6 URL")
        self.check((self.redirecting("http://[::1/"), no_address, no_address))

    def test_to_another_server(self):
        """Whoever answers decides from where the list comes."""
        other = self.server(paths={"/c": OFFERED, "/a": PACKED})
        server = self.server(redirect(other.url("/c"), 301), redirect(other.url("/a"), 307))
        receiver = self.receiver()
        self.assert_shown(self.play(receiver, APPEND, server), LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(server.requests, [FOLDER + CATALOGUE, FOLDER + ARCHIVE])
        self.assertEqual(other.requests, ["/c", "/a"])
        self.assertEqual(receiver.config(), world.appended())


class Silence(ServerCase):
    """A server that keeps the receiver waiting. All wait at the same time."""

    width = 16

    def test_every_kind(self):
        """The time-out is one for each wait, not for the transfer: it ends silence, not slowness."""
        with_less = "HTTP/1.1 200 OK\r\nContent-Le"
        begin = time.time()
        self.check(
            (lambda body: silent(), TIMED_OUT, TIMED_OUT),
            (lambda body: silent(with_less), TIMED_OUT, TIMED_OUT),
            (lambda body: silent(HEAD % len(body) + half(body)), TIMED_OUT, TIMED_OUT),
            (lambda body: silent(HEAD % (len(body) + 1000) + body), TIMED_OUT, TIMED_OUT),
            (lambda body: slowly(HEAD % len(body) + body), LIST, QUESTION),
            (lambda body: Deaf(self), NO_SERVER, NO_SERVER))
        self.assertGreater(time.time() - begin, TIME_OUT)


def slowly(text, seconds=1.5, pieces=5):
    """Sends a text in pieces that together take longer than the time-out."""
    def answer(connection):
        size = len(text) // pieces + 1
        for begin in range(0, len(text), size):
            time.sleep(seconds)
            connection.sendall(text[begin:begin + size])
    return answer


class Deaf(object):
    """Sends the receiver to an address where somebody listens, but never comes to the door."""

    def __init__(self, case):
        self._socket = socket.socket()
        self._socket.bind(("127.0.0.1", 0))
        self._socket.listen(0)
        self._waiting = []
        case.addCleanup(self._socket.close)
        for _ in range(4):
            caller = socket.socket()
            caller.setblocking(False)
            caller.connect_ex(self._socket.getsockname())
            self._waiting.append(caller)

    def __call__(self, connection):
        redirect("http://127.0.0.1:%d/" % self._socket.getsockname()[1])(connection)


class Large(ServerCase):
    """Catalogues of a size that nobody offers in good faith."""

    def check_large(self, catalogue):
        receiver = self.receiver()
        ended = self.play(receiver, APPEND, self.server(catalogue, PACKED))
        self.assert_shown(ended, LIST, QUESTION, SUCCESS, CLOSED)
        self.assertEqual(receiver.config(), world.appended())
        self.assertEqual(receiver.downloads(), dict(new_list(), **{"settings.tar.gz": PACKED}))

    def test_50_megabytes(self):
        self.check_large(OFFERED.strip("\n") + " " * (25 << 20) + "\n" + "#" * (25 << 20))

    def test_a_million_comments(self):
        self.check_large("# nothing for you here, and there\n" * 1000000 + OFFERED)


class Variants(ServerCase):
    """More of the same kinds."""

    full = True

    def test_statuses(self):
        half_line = crashes("BadStatusLine: HTTP/1.1 2")
        self.check(
            (lambda body: sending("HTTP/1.1 2"), half_line, half_line),
            (lambda body: sending("HTTP/1.1 204 No Content\r\n\r\n"), EMPTY, NOT_EXTRACTED),
            (lambda body: sending("HTTP/1.1 206 Partial Content\r\n\r\n" + half(body)), EMPTY, NOT_EXTRACTED),
            (lambda body: sending("HTTP/1.1 304 Not Modified\r\n\r\n"), NO_CONNECTION, NO_CONNECTION),
            (lambda body: sending('HTTP/1.1 401 Unauthorized\r\nWWW-Authenticate: Basic realm="x"\r\n\r\n'),
             NO_CONNECTION, NO_CONNECTION),
            (lambda body: sending("HTTP/1.1 100 Continue\r\n\r\n" + whole(body)), LIST, QUESTION),
            (lambda body: sending(body), LIST, QUESTION))

    def test_lengths(self):
        self.check(
            (lambda body: sending(whole(body, "many")), LIST, QUESTION),
            (lambda body: sending(whole(body, "9" * 30)), LIST, QUESTION))

    def test_redirects(self):
        self.check(*[(lambda _, address=address: redirect(address), NO_CONNECTION, NO_CONNECTION) for address in (
            "javascript:alert(1)", "", "file://localhost/etc/enigma2/lamedb", "gopher://127.0.0.1/", "/a b")])


class ManyRows(ServerCase):
    """A catalogue of 50 MB in which every line is an entry: only memory and patience end it."""

    full = True

    def test_700000_rows(self):
        rows = "".join("List %d:::2021-03-04:::a text as long as most of them are:::aster.tar.gz\n" % number
                       for number in xrange(700000))
        receiver = self.receiver()
        ended = self.play(receiver, "exit", self.server(rows), seconds=300)
        self.assert_shown(ended, "screen: > List 0 - 2021-03-04; " + "; ".join(
            ["a text as long as most of them are"] + [
                text for number in range(1, 20) for text in (
                    "List %d - 2021-03-04" % number, "a text as long as most of them are")]), CLOSED)
        self.assert_state(receiver, None)


if __name__ == "__main__":
    world.main()
