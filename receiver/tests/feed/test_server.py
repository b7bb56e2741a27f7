# -*- coding: utf-8 -*-
"""The feed's server, asked by real clients."""

import hashlib
import httplib
import os
import signal
import socket
import subprocess
import sys
import threading
import time
import unittest
import urllib2

from support import SERVER, contents, entries, feed, run, scratch

from feed.server import CannotServe, address, serve

# A proxy of the machine that runs the tests has no part in them.
os.environ["no_proxy"] = "*"
NOT_FOUND = "There is no such file in this download area.\n"
LARGE = 48 * 1024 * 1024


def wait_for(condition, seconds=10.0):
    """Whether the condition comes true in time."""
    end = time.time() + seconds
    while time.time() < end:
        if condition():
            return True
        time.sleep(0.02)
    return False


def is_running(pid):
    """Whether a process lives and is no zombie."""
    try:
        with open("/proc/%d/stat" % pid) as source:
            return source.read().rpartition(")")[2].split()[0] != "Z"
    except IOError:
        return False


class InThisProcess(unittest.TestCase):
    """The server as a library."""

    def setUp(self):
        self.above = scratch()
        self.folder = os.path.join(self.above, "folder")
        os.makedirs(os.path.join(self.folder, "sub"))
        self.write("folder/sub/one.tar.gz", "\x00binary\xff")
        self.write("folder/blank name+%.txt", "blank")
        self.write("folder/empty", "")
        self.write("secret", "secret")
        self.server, self.port = serve(self.folder)
        self.addCleanup(self.server.stop)

    def write(self, name, content):
        """A file below the folder above."""
        with open(os.path.join(self.above, name), "wb") as target:
            target.write(content)

    def ask(self, method, path, headers=None):
        """Sends a request as it stands; gives status, headers, body."""
        connection = httplib.HTTPConnection("127.0.0.1", self.port, timeout=10)
        try:
            connection.putrequest(method, path)
            for name, value in (headers or {}).items():
                connection.putheader(name, value)
            connection.endheaders()
            answer = connection.getresponse()
            return answer.status, dict(answer.getheaders()), answer.read()
        finally:
            connection.close()

    def area(self, name):
        """The path of a name in the download area."""
        return "/feeds/settings_download/" + name

    def test_a_file_with_its_length(self):
        status, headers, body = self.ask("GET", self.area("sub/one.tar.gz"))
        self.assertEqual((200, "8", "\x00binary\xff"), (status, headers["content-length"], body))

    def test_the_address_that_it_gives_itself(self):
        self.assertEqual("http://127.0.0.1:%d/feeds/settings_download/" % self.port, address(self.port))
        self.assertEqual("blank", urllib2.urlopen(address(self.port) + "blank%20name+%25.txt", None, 5.0).read())

    def test_an_empty_file(self):
        status, headers, body = self.ask("GET", self.area("empty"))
        self.assertEqual((200, "0", ""), (status, headers["content-length"], body))

    def test_a_question_mark_ends_the_name(self):
        self.assertEqual("blank", self.ask("GET", self.area("blank%20name+%25.txt?x=../y"))[2])

    def test_head_gives_the_length_and_nothing_more(self):
        status, headers, body = self.ask("HEAD", self.area("sub/one.tar.gz"))
        self.assertEqual((200, "8", ""), (status, headers["content-length"], body))
        status, headers, body = self.ask("HEAD", self.area("nothing"))
        self.assertEqual((404, str(len(NOT_FOUND)), ""), (status, headers["content-length"], body))

    def test_several_requests_on_one_connection(self):
        connection = httplib.HTTPConnection("127.0.0.1", self.port, timeout=10)
        self.addCleanup(connection.close)
        bodies = []
        for name in ("sub/one.tar.gz", "nothing", "empty", "sub/one.tar.gz"):
            connection.request("HEAD" if name == "empty" else "GET", self.area(name))
            bodies.append(connection.getresponse().read())
        self.assertEqual(["\x00binary\xff", NOT_FOUND, "", "\x00binary\xff"], bodies)

    def test_what_is_not_there(self):
        for path in (self.area(""), self.area("sub"), self.area("sub/"), self.area("nothing"), self.area("empty/"),
                     "/", "/feeds/all", "/feeds/settings_download", "/empty", "/feeds/settings_download2/empty"):
            status, headers, body = self.ask("GET", path)
            self.assertEqual((404, str(len(NOT_FOUND)), NOT_FOUND), (status, headers["content-length"], body), path)

    def test_nothing_from_outside_of_the_folder(self):
        absolute = os.path.join(self.above, "secret")
        for name in ("../secret", "..%2fsecret", "%2e%2e/secret", "sub/../../secret", "sub/..%2F..%2Fsecret",
                     absolute, "/" + absolute, "%2F" + absolute[1:], "../folder/empty", "empty%00", "..", "."):
            self.assertEqual((404, NOT_FOUND), self.ask("GET", self.area(name))[::2], name)

    def test_links_lead_inside_only(self):
        self.write("folderish", "beside")
        os.symlink(os.path.join(self.above, "secret"), os.path.join(self.folder, "out"))
        os.symlink(self.above, os.path.join(self.folder, "up"))
        os.symlink("../folderish", os.path.join(self.folder, "beside"))
        os.symlink("sub/one.tar.gz", os.path.join(self.folder, "in"))
        os.symlink("nowhere", os.path.join(self.folder, "dangling"))
        for name in ("out", "up/secret", "beside", "dangling", "up/folder/../secret"):
            self.assertEqual(404, self.ask("GET", self.area(name))[0], name)
        self.assertEqual((200, "\x00binary\xff"), self.ask("GET", self.area("in"))[::2])

    def test_a_folder_that_is_a_link_itself(self):
        link = os.path.join(self.above, "link")
        os.symlink(self.folder, link)
        server, port = serve(link)
        self.addCleanup(server.stop)
        self.assertEqual("blank", urllib2.urlopen(address(port) + "blank%20name+%25.txt").read())

    def test_special_files_do_not_hang_it(self):
        os.mkfifo(os.path.join(self.folder, "pipe"))
        self.assertEqual(404, self.ask("GET", self.area("pipe"))[0])

    def test_a_file_that_appears_later(self):
        self.assertEqual(404, self.ask("GET", self.area("late"))[0])
        self.write("folder/late", "late")
        self.assertEqual("late", self.ask("GET", self.area("late"))[2])

    def test_other_methods_are_refused(self):
        before = contents(self.above)
        for method in ("POST", "PUT", "DELETE"):
            self.assertEqual(501, self.ask(method, self.area("empty"), {"Content-Length": "0"})[0], method)
        self.assertEqual(before, contents(self.above))

    def test_errors_are_what_receivers_tell_apart(self):
        with self.assertRaises(urllib2.HTTPError) as caught:
            urllib2.urlopen(address(self.port) + "gone.tar.gz", None, 5.0)
        self.assertEqual(404, caught.exception.code)
        self.server.stop()
        with self.assertRaises(urllib2.URLError) as caught:
            urllib2.urlopen(address(self.port) + "empty", None, 5.0)
        self.assertFalse(isinstance(caught.exception, urllib2.HTTPError))

    def test_a_large_file_whole(self):
        block = "".join(chr(number % 251) for number in range(65536))
        expected = hashlib.md5()
        with open(os.path.join(self.folder, "large"), "wb") as target:
            for _ in range(LARGE // len(block)):
                target.write(block)
                expected.update(block)
            target.write("end")
            expected.update("end")
        answer = urllib2.urlopen(address(self.port) + "large", None, 5.0)
        received = answer.read()
        self.assertEqual(str(LARGE + 3), answer.headers["Content-Length"])
        self.assertEqual((LARGE + 3, expected.hexdigest()), (len(received), hashlib.md5(received).hexdigest()))

    def test_a_client_that_reads_nothing_holds_up_nobody(self):
        with open(os.path.join(self.folder, "large"), "wb") as target:
            target.truncate(LARGE)
        slow = socket.create_connection(("127.0.0.1", self.port))
        self.addCleanup(slow.close)
        slow.sendall("GET %s HTTP/1.1\r\nHost: x\r\n\r\n" % self.area("large"))
        silent = socket.create_connection(("127.0.0.1", self.port))
        self.addCleanup(silent.close)
        self.assertEqual("blank", self.ask("GET", self.area("blank%20name+%25.txt"))[2])

    def test_many_at_once(self):
        results = []

        def fetch():
            results.append(self.ask("GET", self.area("sub/one.tar.gz"))[2])
        threads = [threading.Thread(target=fetch) for _ in range(24)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertEqual(["\x00binary\xff"] * 24, results)

    def test_a_port_that_is_taken(self):
        with self.assertRaises(CannotServe) as caught:
            serve(self.folder, self.port)
        self.assertEqual("port %d is taken: name another one, or leave it out for a free one" % self.port,
                         str(caught.exception))

    def test_is_reached_on_loopback_only(self):
        with open("/proc/net/tcp") as source:
            listening = [line.split()[1] for line in source if line.split()[3] == "0A"]
        mine = [each for each in listening if each.endswith(":%04X" % self.port)]
        self.assertEqual(["0100007F:%04X" % self.port], mine)


class AsAProgram(unittest.TestCase):
    """The server's command line."""

    def start(self, *options):
        """Starts it; gives the process and the port."""
        path = os.path.join(scratch(), "port")
        process = subprocess.Popen([sys.executable, "-B", SERVER, feed(), "--port-file", path] + list(options),
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.addCleanup(self.end, process)
        self.assertTrue(wait_for(lambda: os.path.exists(path)))
        with open(path) as source:
            return process, int(source.read())

    @staticmethod
    def end(process):
        """Ends it, if it still runs."""
        if process.poll() is None:
            process.kill()
            process.wait()
        process.stdout.close()
        process.stderr.close()

    def test_serves_the_sample_feed(self):
        _, port = self.start()
        catalogue = urllib2.urlopen(address(port) + "qel_settings.download", None, 5.0).read()
        for _, _, _, archive in entries(catalogue):
            if archive == "vanished/36e.tar.gz":
                with self.assertRaises(urllib2.HTTPError):
                    urllib2.urlopen(address(port) + archive, None, 5.0)
                continue
            self.assertEqual(contents(feed())[archive], urllib2.urlopen(address(port) + archive, None, 5.0).read())

    def test_is_quiet_and_ends_in_order_when_told(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            process, port = self.start()
            urllib2.urlopen(address(port) + "qel_settings.download").read()
            process.send_signal(number)
            self.assertEqual(("", ""), process.communicate())
            self.assertEqual(0, process.returncode)

    def test_writes_a_log_when_asked(self):
        log = os.path.join(scratch(), "log")
        process, port = self.start("--log", log)
        urllib2.urlopen(address(port) + "qel_settings.download").read()
        self.assertRaises(urllib2.HTTPError, urllib2.urlopen, address(port) + "x")
        process.terminate()
        process.wait()
        with open(log) as source:
            lines = source.read().splitlines()
        self.assertEqual(['"GET /feeds/settings_download/qel_settings.download HTTP/1.1" 200 -',
                          '"GET /feeds/settings_download/x HTTP/1.1" 404 -'],
                         [line[line.index('"'):] for line in lines])

    def test_dies_with_its_parent(self):
        path = os.path.join(scratch(), "port")
        parent = subprocess.Popen(
            [sys.executable, "-B", "-c",
             "import subprocess, sys, time\n"
             "child = subprocess.Popen(sys.argv[1:])\n"
             "print child.pid\n"
             "sys.stdout.flush()\n"
             "time.sleep(60)", sys.executable, "-B", SERVER, feed(), "--port-file", path], stdout=subprocess.PIPE)
        child = int(parent.stdout.readline())
        self.assertTrue(wait_for(lambda: os.path.exists(path)))
        self.assertTrue(is_running(child))
        parent.kill()
        parent.wait()
        parent.stdout.close()
        self.assertTrue(wait_for(lambda: not is_running(child)))

    def test_takes_the_port_that_is_named(self):
        first, port = self.start()
        first.terminate()
        first.wait()
        self.assertEqual(port, self.start("--port", str(port))[1])

    def refused(self, *arguments):
        """What it says when it does not start."""
        status, output, errors = run([sys.executable, "-B", SERVER] + list(arguments))
        self.assertEqual((2, ""), (status, output))
        return errors

    def test_a_port_that_is_taken(self):
        taken = socket.socket()
        self.addCleanup(taken.close)
        taken.bind(("127.0.0.1", 0))
        taken.listen(1)
        port = taken.getsockname()[1]
        self.assertEqual("server.py: port %d is taken: name another one, or leave it out for a free one\n" % port,
                         self.refused(feed(), "--port", str(port)))

    def test_mistakes_on_the_command_line(self):
        self.assertEqual("server.py: there is no folder /no/such/folder\n", self.refused("/no/such/folder"))
        for port in ("x", "-1", "65536", "8080.5", ""):
            self.assertEqual("server.py: argument --port: %s is not a port from 1 to 65535, or 0 for a free one; "
                             "server.py FOLDER [--port N] [--port-file F] [--log F]\n" % repr(port),
                             self.refused(feed(), "--port=" + port))
        self.assertEqual("server.py: too few arguments; server.py FOLDER [--port N] [--port-file F] [--log F]\n",
                         self.refused())

    def test_files_that_cannot_be_written(self):
        self.assertEqual("server.py: /no/such/log: No such file or directory\n",
                         self.refused(feed(), "--log", "/no/such/log"))
        self.assertEqual("server.py: /no/such/port: No such file or directory\n",
                         self.refused(feed(), "--port-file", "/no/such/port"))


if __name__ == "__main__":
    unittest.main()
