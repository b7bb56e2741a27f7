"""The transfer of an archive into the working folder."""

import os

import feed_server
import loading
from recording_host import FEED_FILE, call
from test_catalogue import CODES, OTHERS, Answers, ServerCase

ARCHIVE = "\x1f\x8b\x08\0" + "".join(chr(byte) for byte in range(256)) * 300 + "\r\n\x1a"


class Download(ServerCase):
    """An archive from a real server."""

    def test_the_archive_is_stored_to_the_byte(self):
        for body in (ARCHIVE, "", "\0", "\n", "\r\n" * 1000):
            self.server.answer("one.tar.gz", body)
            result = self.module.download_settings("one.tar.gz", "/tmp")
            self.assertEqual((result, type(result)), (0, int))
            self.assertEqual(self.host.read("/tmp/settings.tar.gz"), body)

    def test_host_calls(self):
        self.server.answer("lists/one.tar.gz", ARCHIVE)
        self.module.download_settings("lists/one.tar.gz", "/tmp")
        self.assertCalls([
            call("open", FEED_FILE, "r"), call("readline", FEED_FILE), call("close file", FEED_FILE),
            call("urlopen", self.server.folder + "lists/one.tar.gz", None, 5.0), call("read"),
            call("open", "/tmp/settings.tar.gz", "wb"), call("write", "/tmp/settings.tar.gz", ARCHIVE),
            call("close file", "/tmp/settings.tar.gz")])
        self.assertIs(type(self.host.named("urlopen")[0][1][2]), float)
        self.assertEqual(self.server.server.requests, [("GET", "/feeds/settings_download/lists/one.tar.gz")])

    def test_an_older_archive_is_replaced(self):
        self.host.write("/tmp/settings.tar.gz", "old" * 100000)
        self.server.answer("one", "new")
        self.assertEqual(self.module.download_settings("one", "/tmp"), 0)
        self.assertEqual(self.host.read("/tmp/settings.tar.gz"), "new")

    def test_an_http_error_is_status_2_and_writes_nothing(self):
        self.host.write("/tmp/settings.tar.gz", "old")
        for status in (403, 404, 500):
            self.server.answer("one", "an error page", status)
            result = self.module.download_settings("one", "/tmp")
            self.assertEqual((result, type(result)), (2, int))
        self.assertEqual(self.host.read("/tmp/settings.tar.gz"), "old")
        self.assertEqual(self.host.named("write"), [])

    def test_an_unreachable_server_is_status_3_and_writes_nothing(self):
        self.host.write("/tmp/settings.tar.gz", "old")
        self.host.write(FEED_FILE, "src/gz Qel-all %s/feeds/all\n" % feed_server.unreachable())
        result = self.module.download_settings("one", "/tmp")
        self.assertEqual((result, type(result)), (3, int))
        self.assertEqual(self.host.read("/tmp/settings.tar.gz"), "old")

    def test_a_folder_that_is_not_there_fails_after_the_transfer(self):
        self.server.answer("one", ARCHIVE)
        error = self.raised(self.module.download_settings, "one", "/tmp/missing")
        self.assertEqual((type(error), error.errno), (IOError, 2))
        self.assertEqual(self.server.server.requests, [("GET", "/feeds/settings_download/one")])

    def test_the_address_is_a_concatenation(self):
        for name in ("", "/one", "../one", "a b", "http://elsewhere/one", "\xff\0"):
            del self.host.calls[:]
            self.replace(urllib2=Answers("x"))
            self.module.download_settings(name, "/tmp")
            self.assertEqual(self.host.named("urlopen"), [call("urlopen", self.server.folder + name, None, 5.0)])

    def test_the_base_address_is_asked_for_at_each_call(self):
        addresses = iter(["first/", "second/"])
        self.replace(base_url=lambda: next(addresses), urllib2=Answers("x", "y"))
        self.module.download_settings("one", "/tmp")
        self.module.download_settings("one", "/tmp")
        self.assertEqual(self.host.named("urlopen"), [
            call("urlopen", "first/one", None, 5.0), call("urlopen", "second/one", None, 5.0)])

    def test_paths(self):
        for folder in ("/tmp", "", "/tmp/", "/etc/opkg"):
            del self.host.calls[:]
            self.replace(urllib2=Answers("x"))
            self.assertEqual(self.module.download_settings("one", folder), 0)
            self.assertEqual(self.host.named("open")[1:], [call("open", folder + "/settings.tar.gz", "wb")])
        self.assertEqual(self.host.read("/settings.tar.gz"), "x")


class Guard(loading.ModuleCase):
    """What is caught, and around what."""

    def setUp(self):
        super(Guard, self).setUp()
        self.replace(base_url=lambda: "address/")
        self.host.urlopen = lambda *arguments: open(os.devnull)

    def test_errors_of_the_request_and_of_the_read(self):
        for make, status in CODES:
            for name in ("urlopen", "read"):
                self.host.failures = {name: make()}
                self.assertEqual(self.module.download_settings("one", "/tmp"), status)
        self.assertEqual(self.host.named("open"), [])

    def test_every_other_error_propagates(self):
        for error in OTHERS:
            for name in ("urlopen", "read"):
                self.host.failures = {name: error}
                self.assertIs(self.raised(self.module.download_settings, "one", "/tmp"), error)
        self.assertEqual(self.host.named("open"), [])

    def test_errors_of_the_same_kinds_outside_the_guard_propagate(self):
        for make, _ in CODES:
            for name in ("open", "write", "close file"):
                self.host.failures = {name: make()}
                self.assertIs(self.raised(self.module.download_settings, "one", "/tmp"), self.host.failures[name])
            error = make()

            def fail():
                """No address."""
                raise error
            self.host.failures.clear()
            self.replace(base_url=fail)
            self.assertIs(self.raised(self.module.download_settings, "one", "/tmp"), error)
            self.replace(base_url=lambda: "address/")

    def test_a_body_of_any_kind_goes_to_write_as_it_is(self):
        class Whole(object):
            """Any object."""
        for body in (u"text", Whole(), None, ["x"]):
            written = []

            class Target(object):
                """Stands for the file."""

                def write(self, content):
                    """Notes what is written."""
                    written.append(content)

                def close(self):
                    """Notes the end."""
                    written.append("closed")
            module = loading.load(lambda path, mode: Target())
            if not loading.COMPILED:
                module.open = lambda path, mode: Target()
            loading.forget("Morvesk")
            vars(module).update(base_url=lambda: "", urllib2=Answers(body))
            self.assertEqual(module.download_settings("one", "/tmp"), 0)
            self.assertIs(written[0], body)
            self.assertEqual(written[1:], ["closed"])

    def test_nothing_is_called_on_the_response_but_read(self):
        self.module.download_settings("one", "/tmp")
        self.assertEqual([name for name, _, _ in self.host.calls], ["urlopen", "read", "open", "write", "close file"])

    def test_arguments_that_do_not_add_up(self):
        self.assertIs(type(self.raised(self.module.download_settings, None, "/tmp")), TypeError)
        self.assertEqual(self.host.calls, [])
        self.assertIs(type(self.raised(self.module.download_settings, "one", None)), TypeError)
        self.assertEqual(self.host.named("urlopen", "read", "open"), [call("urlopen", "address/one", None, 5.0), call("read")])


class RealLibrary(ServerCase):
    """With the interpreter's own `urllib2`, not the recorded one."""

    def test_catalogue_and_archive(self):
        self.replace(urllib2=__import__("urllib2"))
        self.server.catalogue("A:::B:::C:::D\n")
        self.server.answer("D", ARCHIVE)
        self.assertEqual(self.module.parse_download_file(), (0, [("A", "B", "C", "D")]))
        self.assertEqual(self.module.download_settings("D", "/tmp"), 0)
        self.assertEqual(self.host.read("/tmp/settings.tar.gz"), ARCHIVE)
        self.assertEqual(self.module.download_settings("E", "/tmp"), 2)
        self.host.write(FEED_FILE, "src/gz Qel-all %s/feeds/all\n" % feed_server.unreachable())
        self.assertEqual(self.module.download_settings("D", "/tmp"), 3)
        self.assertEqual(self.module.parse_download_file(), (3, None))


if __name__ == "__main__":
    loading.main()
