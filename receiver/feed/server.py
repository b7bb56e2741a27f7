# -*- coding: utf-8 -*-
"""The download area of a feed: a folder, served over HTTP on the loopback interface.

    server.py FOLDER [--port N] [--port-file F] [--log F]

serves FOLDER at http://127.0.0.1:N/feeds/settings_download/ until it is told to end (SIGTERM, SIGINT) or the process
that started it is gone. Nothing outside of FOLDER is ever sent, whatever links lie in it.
"""

import argparse
import BaseHTTPServer
import errno
import mimetypes
import os
import signal
import socket
import SocketServer
import sys
import threading
import time
import urllib

HOST = "127.0.0.1"
PREFIX = "/feeds/settings_download/"
_IDLE_SECONDS = 30
_PIECE = 65536
_LOOK_AT_PARENT_SECONDS = 0.2


class CannotServe(Exception):
    """The folder cannot be served; the text says why and what to do."""


class _Handler(BaseHTTPServer.BaseHTTPRequestHandler):
    """Answers GET and HEAD with files of the folder, everything else with an error."""

    protocol_version = "HTTP/1.1"
    server_version = "SampleFeed"
    sys_version = ""
    timeout = _IDLE_SECONDS

    def do_GET(self):
        """Sends a file."""
        self._answer(with_body=True)

    def do_HEAD(self):
        """Sends what would stand above the file."""
        self._answer(with_body=False)

    def _answer(self, with_body):
        source = self._open()
        if source is None:
            self._not_found(with_body)
            return
        with source:
            status = os.fstat(source.fileno())
            self.send_response(200)
            self.send_header("Content-Type", mimetypes.guess_type(source.name)[0] or "application/octet-stream")
            self.send_header("Content-Length", str(status.st_size))
            self.send_header("Last-Modified", self.date_time_string(status.st_mtime))
            self.end_headers()
            if with_body and not self._send(source, status.st_size):
                self.close_connection = 1

    def _send(self, source, size):
        """As much as was promised, even when the file grows meanwhile; False when it has shrunk."""
        while size > 0:
            data = source.read(min(size, _PIECE))
            if not data:
                return False
            self.wfile.write(data)
            size -= len(data)
        return True

    def _not_found(self, with_body):
        body = "There is no such file in this download area.\n"
        self.send_response(404)
        self.send_header("Content-Type", "text/plain")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        if with_body:
            self.wfile.write(body)

    def _open(self):
        """The file that was asked for, or None when the folder holds none that may be sent."""
        name = _name_of(self.path)
        if name is None:
            return None
        path = os.path.realpath(os.path.join(self.server.folder, name))
        if not path.startswith(self.server.folder + "/") or not os.path.isfile(path):
            return None
        try:
            return open(path, "rb")
        except IOError:
            return None

    def log_message(self, form, *arguments):
        """One line for each request, where a log was asked for."""
        if self.server.log:
            self.server.log.write("%s %s\n" % (self.log_date_time_string(), form % arguments))
            self.server.log.flush()


def _name_of(address):
    """The name below the folder of an address, None when it can be none."""
    name = urllib.unquote(address.partition("?")[0].partition("#")[0])
    if not name.startswith(PREFIX) or "\0" in name:
        return None
    name = name[len(PREFIX):]
    if name.startswith("/") or name.endswith("/") or ".." in name.split("/"):
        return None
    return name


class _Server(SocketServer.ThreadingMixIn, BaseHTTPServer.HTTPServer):
    """One thread a connection, none of which keeps the process alive."""

    daemon_threads = True
    request_queue_size = 64

    def __init__(self, folder, port, log):
        self.folder = os.path.realpath(folder)
        self.log = log
        BaseHTTPServer.HTTPServer.__init__(self, (HOST, port), _Handler)

    def server_bind(self):
        """Without the look-up of the machine's name, which takes seconds where there is no name server."""
        SocketServer.TCPServer.server_bind(self)
        self.server_name, self.server_port = self.server_address

    def handle_error(self, request, client_address):
        """A client that went away in the middle is nobody's trouble."""
        error = sys.exc_info()[1]
        if not isinstance(error, (socket.error, IOError)):
            BaseHTTPServer.HTTPServer.handle_error(self, request, client_address)


def serve(folder, port=0, log=None):
    """Serves a folder from threads of this process; gives the server, whose `stop()` ends it, and its port.

    Port 0 takes any that is free. Raises CannotServe.
    """
    if not os.path.isdir(folder):
        raise CannotServe("there is no folder %s" % folder)
    try:
        server = _Server(folder, port, log)
    except socket.error as error:
        if error.errno == errno.EADDRINUSE:
            raise CannotServe("port %d is taken: name another one, or leave it out for a free one" % port)
        raise CannotServe("port %d cannot be used: %s; name one from 1024 up" % (port, error.strerror))
    thread = threading.Thread(target=server.serve_forever, kwargs={"poll_interval": 0.05})
    thread.daemon = True
    thread.start()

    def stop():
        server.shutdown()
        server.server_close()
        thread.join()
    server.stop = stop
    return server, server.server_port


def address(port):
    """The address of the download area."""
    return "http://%s:%d%s" % (HOST, port, PREFIX)


def _write_port(path, port):
    """The file with the port appears in one step, so that whoever waits for it never reads half a number."""
    writing = "%s.writing-%d" % (path, os.getpid())
    try:
        with open(writing, "w") as target:
            target.write("%d\n" % port)
        os.rename(writing, path)
    except EnvironmentError as error:
        raise CannotServe("%s: %s" % (path, error.strerror))


def _open_log(path):
    try:
        return open(path, "a") if path else None
    except IOError as error:
        raise CannotServe("%s: %s" % (path, error.strerror))


class _End(object):
    """When to end: at a signal, or when the parent is another one because the first is gone."""

    def __init__(self):
        self._parent = os.getppid()
        self._told = False
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            signal.signal(number, self._tell)

    def _tell(self, _number, _frame):
        self._told = True

    def wait(self):
        """Returns when it is time."""
        while not self._told and os.getppid() == self._parent:
            time.sleep(_LOOK_AT_PARENT_SECONDS)


def _port(text):
    if not text.isdigit() or int(text) > 65535:
        raise argparse.ArgumentTypeError("%s is not a port from 1 to 65535, or 0 for a free one" % repr(text))
    return int(text)


class _Parser(argparse.ArgumentParser):

    def error(self, message):
        self.exit(2, "server.py: %s; server.py FOLDER [--port N] [--port-file F] [--log F]\n" % message)


def main(arguments):
    """The command line."""
    end = _End()
    parser = _Parser(prog="server.py", description=__doc__.split("\n")[0])
    parser.add_argument("folder", metavar="FOLDER", help="the folder to serve")
    parser.add_argument("--port", metavar="N", type=_port, default=0, help="the port; without it any free one")
    parser.add_argument("--port-file", metavar="F", help="the file to write the port to once requests are answered")
    parser.add_argument("--log", metavar="F", help="the file to which a line for each request is added")
    options = parser.parse_args(arguments)
    try:
        server, port = serve(options.folder, options.port, _open_log(options.log))
        if options.port_file:
            _write_port(options.port_file, port)
    except CannotServe as mistake:
        sys.stderr.write("server.py: %s\n" % mistake)
        return 2
    end.wait()
    server.stop()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
