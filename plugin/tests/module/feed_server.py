"""A real HTTP server on loopback, as the firmware's download server."""

import BaseHTTPServer
import os
import socket
import threading

import recording_host

# A proxy of the machine that runs the tests has no part in them.
os.environ["no_proxy"] = "*"


class Handler(BaseHTTPServer.BaseHTTPRequestHandler):
    """Answers with what the server was told, 404 else."""

    def do_GET(self):
        """Answers a request."""
        self.server.requests.append((self.command, self.path))
        status, body = self.server.answers.get(self.path, (404, "not here"))
        self.send_response(status)
        if status in (301, 302):
            self.send_header("Location", body)
            body = ""
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    do_POST = do_GET

    def log_message(self, *message):
        """Keeps the log quiet."""


class FeedServer(object):
    """Serves `answers` (path to status and body), keeps `requests`."""

    def __init__(self):
        self.server = BaseHTTPServer.HTTPServer(("127.0.0.1", 0), Handler)
        self.server.answers, self.server.requests = {}, []
        self.address = "http://127.0.0.1:%d" % self.server.server_port
        self.thread = threading.Thread(target=self.server.serve_forever, kwargs={"poll_interval": 0.02})
        self.thread.daemon = True
        self.thread.start()

    def configure(self, host):
        """Makes this server the receiver's package feed."""
        host.write(recording_host.FEED_FILE, "src/gz Qel-all %s/feeds/all\n" % self.address)

    @property
    def folder(self):
        """The address of the download folder."""
        return self.address + "/feeds/settings_download/"

    def answer(self, name, body, status=200):
        """Sets what the server answers for a file of the download folder."""
        self.server.answers["/feeds/settings_download/" + name] = (status, body)

    def catalogue(self, body, status=200):
        """Sets the catalogue."""
        self.answer("qel_settings.download", body, status)

    def reset(self):
        """Forgets answers and requests."""
        self.server.answers.clear()
        del self.server.requests[:]

    def stop(self):
        """Ends the server."""
        self.server.shutdown()
        self.server.server_close()
        self.thread.join()


def unreachable():
    """An address where no server listens."""
    taken = socket.socket()
    taken.bind(("127.0.0.1", 0))
    port = taken.getsockname()[1]
    taken.close()
    return "http://127.0.0.1:%d" % port
