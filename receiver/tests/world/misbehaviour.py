# -*- coding: utf-8 -*-
"""An HTTP server that does whatever a test wants, right or wrong.

An answer is a body, the number of an error status, or a function that is called with the connection and does as it
likes; a list of answers is given one after the other, the last one for ever.
"""

import socket
import struct
import threading

CATALOGUE, ARCHIVE = "qel_settings.download", "aster.tar.gz"
FOLDER = "/feeds/settings_download/"
_REASONS = {403: "Forbidden", 404: "Not Found", 500: "Internal Server Error", 503: "Service Unavailable"}


def whole(body, length=None):
    """A body, with its length or another one; "" for none at all."""
    length = str(len(body)) if length is None else length
    return "HTTP/1.1 200 OK\r\n%sConnection: close\r\n\r\n%s" % (
        "Content-Length: %s\r\n" % length if length else "", body)


def error(number):
    """An error status, with a page as servers send it."""
    page = "<html><h1>%d %s</h1></html>\n" % (number, _REASONS[number])
    return "HTTP/1.1 %d %s\r\nContent-Type: text/html\r\nContent-Length: %d\r\nConnection: close\r\n\r\n%s" % (
        number, _REASONS[number], len(page), page)


def redirect(address, number=302):
    """Sends the receiver elsewhere."""
    text = "HTTP/1.1 %d Found\r\nLocation: %s\r\nContent-Length: 0\r\nConnection: close\r\n\r\n" % (number, address)
    return lambda connection: connection.sendall(text)


def sending(text):
    """Sends exactly this and closes."""
    return lambda connection: connection.sendall(text)


def silent(before=""):
    """Sends a text, then nothing more, for as long as the receiver waits."""
    def answer(connection):
        connection.sendall(before)
        connection.settimeout(30)
        try:
            connection.recv(1)
        except socket.error:
            pass
    return answer


def reset(before=""):
    """Sends a text, then breaks the connection."""
    def answer(connection):
        connection.sendall(before)
        connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    return answer


class Server(object):
    """The server of a feed; `requests` are the paths that were asked for, in order.

    `paths` are further answers by their paths, `other` is the one for every other path.
    """

    def __init__(self, catalogue=404, archive=404, paths=None, other=404):
        self._answers = {FOLDER + CATALOGUE: catalogue, FOLDER + ARCHIVE: archive}
        self._answers.update(paths or {})
        self._other = other
        self.requests = []
        self._lock = threading.Lock()
        self.open()

    @property
    def address(self):
        """The feed's address."""
        return "http://127.0.0.1:%d/feeds/all" % self.port

    def url(self, path):
        """The address of a path."""
        return "http://127.0.0.1:%d%s" % (self.port, path)

    def open(self, port=0):
        """Listens, at a free port or one that was closed before."""
        self._socket = socket.socket()
        self._socket.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
        self._socket.bind(("127.0.0.1", port))
        self._socket.listen(16)
        self.port = self._socket.getsockname()[1]
        self._listener = self._run(self._accept, self._socket)

    def close(self):
        """Listens no more: whoever comes is refused."""
        try:
            self._socket.shutdown(socket.SHUT_RDWR)
        except socket.error:
            pass
        self._socket.close()
        if self._listener is not threading.current_thread():
            self._listener.join()

    @staticmethod
    def _run(function, *arguments):
        thread = threading.Thread(target=function, args=arguments)
        thread.daemon = True
        thread.start()
        return thread

    def _accept(self, listening):
        while True:
            try:
                connection = listening.accept()[0]
            except socket.error:
                return
            self._run(self._serve, connection)

    def _serve(self, connection):
        try:
            head = ""
            while "\r\n\r\n" not in head:
                data = connection.recv(65536)
                if not data:
                    return
                head += data
            self._answer(connection, head.split(" ", 2)[1])
        except socket.error:
            pass
        finally:
            connection.close()

    def _answer(self, connection, path):
        with self._lock:
            self.requests.append(path)
            answer = self._answers.get(path, self._other)
            if isinstance(answer, list):
                answer = answer.pop(0) if len(answer) > 1 else answer[0]
        if callable(answer):
            answer(connection)
        else:
            connection.sendall(error(answer) if isinstance(answer, int) else whole(answer))
