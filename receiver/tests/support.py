# -*- coding: utf-8 -*-
"""What the end-to-end suites share: receivers run from outside, feeds of one's own, settings and lists."""

import BaseHTTPServer
import base64
import errno
import glob
import gzip
import io
import os
import re
import shutil
import signal
import subprocess
import tarfile
import tempfile
import threading
import time
import unittest

CHECKOUT = os.path.realpath(os.path.join(os.path.dirname(os.path.realpath(__file__)), "..", ".."))
PYTHON = os.path.join(CHECKOUT, "tools", "python")
START = os.path.join(CHECKOUT, "receiver", "start.py")
RECEIVERS = os.path.join(CHECKOUT, "build", "receivers")
PACKED_AT = 1614844800
CATALOGUE = "qel_settings.download"


# ---- lists and settings

class Channel(object):
    """One service on its transponder, as the database and the bouquets know it."""

    def __init__(self, sid, tsid, name, kind=1, provider="Nordlicht"):
        self.sid, self.tsid, self.name, self.kind, self.provider = sid, tsid, name, kind, provider

    @property
    def reference(self):
        """The service as the lines of a bouquet name it."""
        return "1:0:%X:%X:%X:1:C00000:0:0:0:" % (self.kind, self.sid, self.tsid)


def lamedb(channels):
    """A service file of format 4 with these channels and the transponders that they are on."""
    lines = ["eDVB services /4/", "transponders"]
    for tsid in sorted(set(channel.tsid for channel in channels)):
        lines += ["00c00000:%04x:0001" % tsid, "\ts %d:27500000:1:4:192:2:0" % (11000000 + tsid), "/"]
    lines += ["end", "services"]
    for channel in sorted(channels, key=lambda channel: (channel.sid, channel.tsid, channel.kind)):
        lines += ["%04x:00c00000:%04x:0001:%d:0" % (channel.sid, channel.tsid, channel.kind), channel.name,
                  "p:" + channel.provider]
    return "\n".join(lines + ["end", ""])


def lamedb5(channels):
    """The same in format 5."""
    lines = ["eDVB services /5/"]
    for tsid in sorted(set(channel.tsid for channel in channels)):
        lines.append("t:00c00000:%04x:0001,s:%d:27500000:1:4:192:2:0" % (tsid, 11000000 + tsid))
    for channel in sorted(channels, key=lambda channel: (channel.sid, channel.tsid, channel.kind)):
        lines.append('s:%04x:00c00000:%04x:0001:%d:0,"%s",p:%s' % (
            channel.sid, channel.tsid, channel.kind, channel.name, channel.provider))
    return "\n".join(lines + [""])


def bouquet(title, channels):
    """A user bouquet file."""
    return "\n".join(["#NAME " + title] + ["#SERVICE " + channel.reference for channel in channels] + [""])


def root(kind, names, line_end="\n", title=None):
    """A root bouquet file that names these files."""
    lines = ["#NAME " + (title or {"tv": "Bouquets (TV)", "radio": "Bouquets (Radio)"}[kind])]
    lines += [reference(kind, name) for name in names]
    return "".join(line + line_end for line in lines)


def reference(kind, name):
    """The line of a root file for one user bouquet."""
    return '#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet' % (
        {"tv": 1, "radio": 2}[kind], name)


OWN = [Channel(0x11, 0x401, "Erste Welle"), Channel(0x12, 0x401, "Zweite Welle"), Channel(0x13, 0x401, "Kinderzeit"),
       Channel(0x14, 0x401, "Radio Almwind", 2)]
NEW = [Channel(0x12, 0x401, "Zweite Welle HD"), Channel(0x21, 0x402, "Nordkap"), Channel(0x22, 0x402, "Ελλάδα 1"),
       Channel(0x23, 0x403, "Первый"), Channel(0x24, 0x403, "日本テレビ"), Channel(0x25, 0x403, "راديو", 2)]


def own_settings(**changes):
    """A receiver's settings before anything is installed."""
    files = {
        "lamedb": lamedb(OWN),
        "bouquets.tv": root("tv", ["userbouquet.favourites.tv", "userbouquet.family.tv"]),
        "bouquets.radio": root("radio", ["userbouquet.favourites.radio"]),
        "userbouquet.favourites.tv": bouquet("Favourites (TV)", OWN[:2]),
        "userbouquet.family.tv": bouquet("Family", OWN[2:3]),
        "userbouquet.favourites.radio": bouquet("Favourites (Radio)", OWN[3:]),
        "settings": "config.misc.firstrun=false\n"}
    files.update(changes)
    return files


def new_list(**changes):
    """A list to install, none of whose bouquets has the name of one that the receiver has; None takes a file out."""
    files = {
        "lamedb": lamedb(NEW),
        "bouquets.tv": root("tv", ["userbouquet.north.tv", "userbouquet.world.tv"]),
        "bouquets.radio": root("radio", ["userbouquet.world.radio"]),
        "userbouquet.north.tv": bouquet("North", NEW[:2]),
        "userbouquet.world.tv": bouquet("World", NEW[2:5]),
        "userbouquet.world.radio": bouquet("World radio", NEW[5:])}
    files.update(changes)
    return dict((name, content) for name, content in files.items() if content is not None)


def archive(files):
    """A gzip-compressed tar archive of these files."""
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as tar:
        for name, content in sorted(files.items()):
            entry = tarfile.TarInfo(name)
            entry.size, entry.mode, entry.mtime = len(content), 0o644, PACKED_AT
            tar.addfile(entry, io.BytesIO(content))
    return zipped(packed.getvalue())


def slow_archive(files):
    """An archive that takes tar many seconds, though it is small: in front of its files stand gigabytes of zeros that
    belong to a volume's label, so that they are unpacked and go nowhere."""
    size = 6 << 30
    label = tarfile.TarInfo("label")
    label.type, label.size = "V", size
    return (zipped(label.tobuf(tarfile.GNU_FORMAT)) + zipped("\0" * (16 << 20)) * (size >> 24) + archive(files))


def zipped(content):
    """One member of a gzip file; members behind each other unpack as one."""
    packed = io.BytesIO()
    with gzip.GzipFile(fileobj=packed, mode="wb", mtime=0) as target:
        target.write(content)
    return packed.getvalue()


def catalogue(*entries):
    """A catalogue of entries of four fields each."""
    return "".join(" ::: ".join(entry) + "\n" for entry in entries)


ENTRY = ("Aster", "2021-03-04", "19.2E, everything", "aster.tar.gz")


def feed(files=None, entry=ENTRY):
    """The files of a feed with one list."""
    return {CATALOGUE: catalogue(entry), entry[3]: archive(files or new_list())}


# ---- folders

def write_folder(folder, files):
    """Makes a folder with these files."""
    os.makedirs(folder)
    for name, content in files.items():
        path = os.path.join(folder, name)
        if not os.path.isdir(os.path.dirname(path)):
            os.makedirs(os.path.dirname(path))
        with open(path, "wb") as target:
            target.write(content)
    return folder


def read_folder(folder):
    """The files of a folder with their content."""
    files = {}
    for path, _, names in os.walk(folder):
        for name in names:
            with open(os.path.join(path, name), "rb") as source:
                files[os.path.relpath(os.path.join(path, name), folder)] = source.read()
    return files


# ---- modules

MODULE = os.environ.get("MORVESK_MODULE") or os.path.join(CHECKOUT, "build", "release", "Morvesk.so")


def derived_module(body):
    """The source of a module whose screen derives from that of the module under test, which it brings along."""
    with open(MODULE, "rb") as source:
        content = source.read()
    kind = os.path.splitext(MODULE)[1]
    markers = " ".join(re.findall(r"libasan\.so\.\d+|_Py_RefTotal", content)[:2])
    return "\n".join([
        "import base64, imp",
        "# " + markers,
        "with open('/tmp/Morvesk%s', 'wb') as target:" % kind,
        "    target.write(base64.b64decode('%s'))" % base64.b64encode(content),
        "module = imp.load_%s('Morvesk', '/tmp/Morvesk%s')" % ({".so": "dynamic", ".py": "source"}[kind], kind),
        "class Morvesk(module.Morvesk):",
        "    " + body])


# ---- a feed on the PC's network

class OwnFeed(object):
    """An HTTP server of the test's own: an answer is a text, or a function that gives one or a status number."""

    def __init__(self, answers):
        self.requests = []
        self._answers = answers
        self._server = BaseHTTPServer.HTTPServer(("127.0.0.1", 0), self._handler())
        self.address = "http://127.0.0.1:%d/feeds/all" % self._server.server_port
        self._server.timeout = 0.02
        self._ended = False
        self._thread = threading.Thread(target=self._serve)
        self._thread.daemon = True
        self._thread.start()

    def _serve(self):
        while not self._ended:
            self._server.handle_request()

    def _handler(feed):
        class Handler(BaseHTTPServer.BaseHTTPRequestHandler):

            def do_GET(self):
                feed.requests.append(self.path)
                answer = feed._answers.get(self.path[len("/feeds/settings_download/"):], 404)
                answer = answer() if callable(answer) else answer
                if isinstance(answer, int):
                    self.send_error(answer)
                    return
                self.send_response(200)
                self.send_header("Content-Length", str(len(answer)))
                self.end_headers()
                self.wfile.write(answer)

            def log_message(self, *_):
                pass
        return Handler

    def refuse(self):
        """From now on nobody listens at the address any more; to be called by an answer."""
        self._ended = True
        self._server.server_close()

    def close(self):
        """Ends the server."""
        self._ended = True
        self._thread.join()
        self._server.server_close()


# ---- receivers

class Ended(object):
    """What a receiver has left: its exit status, what it printed and what it complained of."""

    def __init__(self, status, out, err):
        self.status, self.out, self.err = status, out, err

    @property
    def screens(self):
        """The printed screens as pairs of key and text, without what has changed."""
        shown = self.out.partition("What has changed on the receiver:")[0].partition("Nothing has changed")[0]
        return [tuple(block.split("\n", 1)) for block in ("\n" + shown).split("\n=== ")[1:]]

    @property
    def changes(self):
        """The lines about what has changed."""
        lines = self.out.splitlines()
        starts = [number for number, line in enumerate(lines) if "has changed on the receiver" in line]
        return lines[starts[0]:] if starts else None


class Running(object):
    """A receiver on its way, started from outside as ./run does."""

    def __init__(self, arguments, environment=None, cwd=None):
        self._output = [tempfile.TemporaryFile(), tempfile.TemporaryFile()]
        self.process = subprocess.Popen(
            [PYTHON, START] + list(arguments), stdin=open(os.devnull), stdout=self._output[0], stderr=self._output[1],
            env=dict(os.environ, **(environment or {})), cwd=cwd, preexec_fn=os.setsid, close_fds=True)

    def folder(self, path=""):
        """Where a path of this receiver lies on the PC."""
        return os.path.join(wait_for(lambda: (
            glob.glob(os.path.join(RECEIVERS, "%d-*" % self.process.pid)) or [None])[0]), path)

    def wait(self):
        """Waits for its end."""
        status = self.process.wait()
        texts = []
        for output in self._output:
            output.seek(0)
            texts.append(output.read())
        return Ended(status, *texts)

    def kill(self):
        """Ends whatever is left of it."""
        try:
            os.killpg(self.process.pid, signal.SIGKILL)
        except OSError as error:
            if error.errno != errno.ESRCH:
                raise


def wait_for(condition, seconds=60):
    """Waits until the condition gives something true, and gives it."""
    give_up = time.time() + seconds
    while time.time() < give_up:
        value = condition()
        if value:
            return value
        time.sleep(0.01)
    raise AssertionError("waited in vain for %s" % condition)


class ReceiverCase(unittest.TestCase):
    """A test with a folder of its own, in which receivers are run."""

    maxDiff = None

    def setUp(self):
        self.base = tempfile.mkdtemp(prefix="receiver-test-")
        self.addCleanup(shutil.rmtree, self.base)

    def path(self, *names):
        """A path in the test's folder."""
        return os.path.join(self.base, *names)

    def folder(self, name, files):
        """Makes a folder with these files in the test's folder."""
        return write_folder(self.path(name), files)

    def own_feed(self, answers):
        """A feed on the PC's network."""
        own = OwnFeed(answers)
        self.addCleanup(own.close)
        return own

    def start(self, *arguments, **environment):
        """Starts a receiver."""
        running = Running(arguments, environment)
        self.addCleanup(running.kill)
        return running

    def run_receiver(self, *arguments, **environment):
        """Runs a receiver to its end."""
        return self.start(*arguments, **environment).wait()

    def install(self, files, keys, settings=None):
        """Runs a receiver with these settings on a feed with this one list; gives its end and the resulting files."""
        number = str(len(os.listdir(self.base)))
        kept = self.path("kept" + number)
        ended = self.run_receiver(
            "--keys", keys, "--keep", kept,
            "--settings", self.folder("settings" + number, own_settings() if settings is None else settings),
            "--feed", self.folder("feed" + number, feed(files)))
        return ended, read_folder(kept)
