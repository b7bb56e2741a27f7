"""The receiver that the sweeps run on: the recording host with canned transfers, back to one state before every run."""

import gc
import os
import shutil
import sys
import tempfile

MODULE_TESTS = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "module")
sys.path.insert(0, MODULE_TESTS)

# The sweeps touch files by the ten thousand; a disk is not what they are about.
if os.access("/dev/shm", os.W_OK | os.X_OK):
    tempfile.tempdir = "/dev/shm"

import loading  # noqa: E402
import recording_host  # noqa: E402

HOST = recording_host.HOST
SESSION = recording_host.Session()
FEED = "http://server/feeds/all"
DOWNLOADS = "http://server/feeds/settings_download/"
CATALOGUE = "# lists\r\nSat ::: 2024 ::: All of Europe ::: europe.tar.gz\r\nbroken\r\nCable:::2023:::One town:::town.tar.gz"
ARCHIVE = "\x1f\x8b\x08 the archive"


class Answer(object):
    """A server's answer with a fixed body."""

    def __init__(self, body):
        self.body = body

    def read(self):
        """The body."""
        return self.body


class Output(object):
    """Stands for standard output."""

    softspace = 0

    def write(self, text):
        """Prints."""
        HOST.note("print", text)


class World(object):
    """A module on its receiver, with one screen that lives as long as the sweep."""

    def __init__(self, path=None):
        self.module = loading.recorded(path)
        self.files = {}
        self.namespace = dict(vars(self.module))
        self.session = SESSION
        HOST.reset()
        HOST.write(recording_host.FEED_FILE, "src/gz Qel-all %s\n" % FEED)
        self.transfers(lambda url: None)
        self.screen = self.module.Morvesk(self.session, "/the/panel")
        self.screen.__dict__.update(messagebox_title="the title", dest_dir=recording_host.CONFIG)
        self.attributes = dict(self.screen.__dict__)
        servicelist = recording_host.start_info_bar()
        servicelist.root, servicelist.selection = "the bouquet", "the service"
        self.info_bar = recording_host.InfoBar.instance
        self.output = Output()
        self.layer = dict((name, sys.modules[name]) for name in recording_host.layer())
        self.empty_module = recording_host.module("empty")

    def reset(self):
        """Back to the state before any operation; what an operation needs besides, it prepares itself."""
        if any(is_writing(record) for record in HOST.calls):
            self.files.clear()
        del HOST.calls[:]
        del recording_host.OPENED[:]
        self.output.softspace = 0
        HOST.failures = {}
        HOST.answers = {}
        HOST.fail_at = HOST.error = None
        recording_host.InfoBar.instance = None
        vars(self.module).clear()
        vars(self.module).update(self.namespace)
        self.screen.__dict__.clear()
        self.screen.__dict__.update(self.attributes)
        self.screen.Console.appContainers.clear()
        self.widget.current = None
        del HOST.calls[:]

    @property
    def widget(self):
        """The catalogue widget of the screen."""
        return dict.__getitem__(self.screen, "downloadmenu")

    def select(self, name):
        """Puts the cursor on a row."""
        self.widget.current = (name, "Sat - 2024", "All of Europe", None, "2024")

    def transfers(self, answer):
        """Has every transfer end in what `answer` gives or raises for its address."""
        HOST.urlopen = lambda url, data, seconds: answer(url)

    def answers(self, body):
        """Has every transfer bring this body."""
        self.transfers(lambda url: Answer(body))

    def refuses(self, error):
        """Has every transfer end in this error."""
        def refuse(url):
            raise error
        self.transfers(refuse)

    def put(self, path, content):
        """Puts a file on the receiver."""
        if self.files.get(path) != content:
            HOST.write(path, content)
            self.files[path] = content

    def remove(self, *paths):
        """Takes files, or folders with what lies in them, off the receiver."""
        for path in paths:
            real = HOST.real(path)
            if os.path.isdir(real):
                self.files.clear()
                shutil.rmtree(real)
            elif self.files.pop(path, self) and os.path.exists(real):
                os.unlink(real)


class Imports(object):
    """Imports as a receiver does them, each from a file name that the interpreter has never seen."""

    def __init__(self, module):
        self.original = module.__file__
        self.folder = tempfile.mkdtemp(dir=loading.SCRATCH)
        self.count = 0

    def names(self):
        """Imports the module, and forgets it; gives the names in it."""
        self.count += 1
        folder = os.path.join(self.folder, str(self.count))
        os.mkdir(folder)
        os.link(self.original, os.path.join(folder, "Morvesk.so"))
        with loading.search_path(folder):
            module = __import__("Morvesk")
        loading.forget("Morvesk")
        return sorted(vars(module))


def is_writing(record):
    """Whether a recorded call may have changed files."""
    return record[0] in ("write", "shutil.copy2", "os.makedirs") or (record[0] == "open" and record[1][1:] != ("r",))


def collect_young():
    """Frees what was made since the last call and refers to itself; nothing else is looked at, which is fast."""
    gc.collect(0)
