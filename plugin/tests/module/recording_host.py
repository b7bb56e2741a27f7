"""A receiver's host that records: every call that the module makes into it, in order, with its arguments.

The host's Python layer is replaced by stand-ins that are faithful where the module depends on it. Files are real ones, in a
temporary folder that stands for the receiver's root folder; transfers go over real HTTP. There is one host per process, as on
a receiver: `HOST`.
"""

import __builtin__
import datetime
import os
import shutil
import sys
import tempfile
import time
import types
import urllib2

PLUGINS = "/usr/lib/enigma2/python/Plugins/"
CONFIG = "/etc/enigma2/"
FEED_FILE = "/etc/opkg/all-feed.conf"
NOW = 1700000000.25
REAL_OPEN = open


def call(name, *arguments, **keywords):
    """A record of a call, as `HOST.calls` keeps it."""
    return (name, snapshot(arguments), snapshot(keywords))


def snapshot(value):
    """The value as it is now: lists, tuples and dicts copied, everything else itself."""
    if type(value) in (list, tuple):
        return type(value)([snapshot(item) for item in value])
    if type(value) is dict:
        return dict((key, snapshot(item)) for key, item in value.items())
    return value


def translated(text):
    """What the host's translation function makes of a text."""
    return "[" + text + "]"


class Made(object):
    """What a stand-in was made from; equal to any other made the same way."""

    def __init__(self, kind, *arguments):
        self.made = (kind, snapshot(arguments))

    def __eq__(self, other):
        return getattr(other, "made", None) == self.made

    def __ne__(self, other):
        return not self == other

    __hash__ = None

    def __repr__(self):
        return "<%s%r>" % self.made


def picture(name):
    """The picture that the host loads from the panel's folder of pictures."""
    return Made("picture", PLUGINS + "SystemPlugins/QelPanel/pictures/" + name)


def loaded(name):
    """The records of loading a picture from the panel's folder."""
    path = "SystemPlugins/QelPanel/pictures/" + name
    return [call("resolveFilename", SCOPE_PLUGINS, path), call("LoadPixmap", cached=True, path=PLUGINS + path)]


class Recorder(object):
    """The list of calls, the failures that a test asks for, and the receiver's files below `root`."""

    def __init__(self):
        self.root = tempfile.mkdtemp(prefix="morvesk-host-")
        self.calls = []
        self.reset()

    def reset(self):
        """Back to a receiver that has just started: no files, no calls, nothing fails."""
        shutil.rmtree(self.root, ignore_errors=True)
        for folder in ("/etc/enigma2", "/etc/opkg", "/tmp"):
            os.makedirs(self.root + folder)
        del self.calls[:]
        self.failures = {}
        self.fail_at = None
        self.error = None
        self.answers = {}
        self.now = NOW
        self.urlopen = urllib2.urlopen
        InfoBar.instance = None

    def note(self, name, *arguments, **keywords):
        """Records a call; raises what the test wants raised at this place."""
        self.calls.append(call(name, *arguments, **keywords))
        if self.fail_at == len(self.calls) - 1:
            raise self.error
        if name in self.failures:
            raise self.failures[name]

    def named(self, *names):
        """The records of these calls only."""
        return [record for record in self.calls if record[0] in names]

    def real(self, path):
        """Where a file of the receiver really lies."""
        return self.root + path

    def write(self, path, content):
        """Puts a file on the receiver, its folders too."""
        real = self.real(path)
        if not os.path.isdir(os.path.dirname(real)):
            os.makedirs(os.path.dirname(real))
        with REAL_OPEN(real, "wb") as stream:
            stream.write(content)

    def read(self, path):
        """The content of a file of the receiver, None when there is none."""
        if not os.path.exists(self.real(path)):
            return None
        with REAL_OPEN(self.real(path), "rb") as stream:
            return stream.read()

    def files(self, folder):
        """The names in a folder of the receiver, sorted."""
        return sorted(os.listdir(self.real(folder)))


def run_layout_hooks(screen):
    """Runs the layout hooks as the host does: by a call for the type of a bound method, as source text else."""
    bound = type(screen.close)
    for hook in screen.onLayoutFinish:
        if type(hook) is bound:
            hook()
        else:
            exec(hook, {}, {})


class HookList(list):
    """A screen's hook list."""

    def append(self, hook):
        """Adds a hook."""
        HOST.note("onLayoutFinish.append", hook)
        list.append(self, hook)


class GUISkin:
    """The host's skin mixin is an old-style class."""

    def __init__(self):
        pass


class Screen(dict, GUISkin):
    """The host's screen: a dict of widgets with hook lists and a title that is a property."""

    def __init__(self, session, parent=None):
        HOST.note("Screen.__init__", self, session)
        dict.__init__(self)
        GUISkin.__init__(self)
        self.__dict__.update(
            skinName=self.__class__.__name__, session=session, parent=parent, onLayoutFinish=HookList(), onShown=[], onClose=[],
            onExecBegin=[], onExecEnd=[], window_title="")
        dict.__setitem__(self, "Title", Made("StaticText", ""))
        dict.__setitem__(self, "screen_path", Made("StaticText", ""))

    # Screens are compared as what they are, not as the dicts that they also are.
    def __eq__(self, other):
        return self is other

    def __ne__(self, other):
        return self is not other

    __hash__ = object.__hash__

    def __repr__(self):
        return "<screen>"

    def __setattr__(self, name, value):
        HOST.note("set", name, value)
        object.__setattr__(self, name, value)

    def __setitem__(self, key, widget):
        HOST.note("widget", key, widget)
        dict.__setitem__(self, key, widget)

    def get_title(self):
        """The window's title."""
        return self.window_title

    def set_title(self, title):
        """Sets the window's title and the widget's."""
        self.__dict__["window_title"] = title
        dict.__setitem__(self, "Title", Made("StaticText", title))

    title = property(get_title, set_title)

    def setTitle(self, title):
        """Sets the title the other way."""
        HOST.note("Screen.setTitle", title)
        self.set_title(title)

    def close(self, *result):
        """Closes the screen with a result."""
        HOST.note("close", *result)


class MessageBox(object):
    """The host's message box."""

    TYPE_YESNO, TYPE_INFO, TYPE_WARNING, TYPE_ERROR, TYPE_MESSAGE = range(5)


class ChoiceBox(object):
    """The host's choice box."""


class Box(object):
    """What the session gives back for an opened box."""

    def setTitle(self, title):
        """Sets the title of the box."""
        HOST.note("setTitle", title)


class Session(object):
    """The host's session."""

    def open(self, dialog, *arguments, **keywords):
        """Opens a dialog on top."""
        HOST.note("open dialog", dialog, *arguments, **keywords)
        return Box()

    def openWithCallback(self, callback, dialog, *arguments, **keywords):
        """Opens a dialog whose result goes to the callback."""
        HOST.note("open dialog with callback", callback, dialog, *arguments, **keywords)
        return Box()

    def __repr__(self):
        return "<session>"


class StaticText(Made):
    """The host's text source."""

    def __init__(self, text=""):
        HOST.note("StaticText", text)
        Made.__init__(self, "StaticText", text)
        self.text = text


class List(Made):
    """The host's list source; keeps the very list that it is given."""

    def __init__(self, rows=[]):
        HOST.note("List", rows)
        Made.__init__(self, "List", rows)
        self.rows = rows
        self.current = None

    def setList(self, rows):
        """Replaces the rows."""
        HOST.note("setList", rows)
        self.rows = rows

    def getCurrent(self):
        """The row under the cursor."""
        HOST.note("getCurrent")
        return self.current


class ActionMap(Made):
    """The host's key map."""

    def __init__(self, contexts=[], actions={}, prio=0):
        HOST.note("ActionMap", contexts, actions, prio)
        Made.__init__(self, "ActionMap", contexts, actions, prio)
        self.contexts, self.actions, self.prio = contexts, actions, prio


class Console(object):
    """The host's runner of shell commands; `kill` forgets the command at once, as some hosts do."""

    def __init__(self):
        HOST.note("Console")
        self.appContainers = {}

    def ePopen(self, *arguments, **keywords):
        """Starts a command."""
        HOST.note("ePopen", *arguments, **keywords)

    def kill(self, name):
        """Stops a command."""
        HOST.note("kill", name)
        del self.appContainers[name]


SCOPE_PLUGINS, SCOPE_CONFIG = 7, 9


def resolveFilename(*arguments, **keywords):
    """The host's folders by scope."""
    HOST.note("resolveFilename", *arguments, **keywords)
    return {SCOPE_PLUGINS: PLUGINS, SCOPE_CONFIG: CONFIG}[arguments[0]] + "".join(arguments[1:])


def fileExists(path, mode="r", **keywords):
    """The host's access test."""
    if mode == "r":
        HOST.note("fileExists", path, **keywords)
    else:
        HOST.note("fileExists", path, mode=mode, **keywords)
    if "fileExists" in HOST.answers:
        return HOST.answers["fileExists"]
    return os.access(HOST.real(path), {"r": os.R_OK, "w": os.W_OK}.get(mode, os.F_OK))


def LoadPixmap(*arguments, **keywords):
    """The host's picture loader."""
    HOST.note("LoadPixmap", *arguments, **keywords)
    return Made("picture", keywords.get("path", arguments and arguments[0]))


class eDVBDB(object):
    """The host's service database."""

    def __init__(self):
        self.instance = "the database"

    @staticmethod
    def getInstance():
        """The one instance."""
        HOST.note("eDVBDB.getInstance")
        return DATABASE

    def reloadServicelist(self):
        """Reads the stored services anew."""
        HOST.note("reloadServicelist")

    def loadServicelist(self, path):
        """Adds the services of a file."""
        HOST.note("loadServicelist", path)

    def saveServicelist(self):
        """Stores the services."""
        HOST.note("saveServicelist")

    def reloadBouquets(self):
        """Reads the bouquets anew."""
        HOST.note("reloadBouquets")


class NimManager(object):
    """The host's tuner manager."""

    def readTransponders(self):
        """Reads the satellites file anew."""
        HOST.note("readTransponders")


class InfoBar(object):
    """The TV screen; `instance` is None until it runs."""

    instance = None


class ServiceList(object):
    """The open channel list of the TV screen."""

    def __init__(self):
        self.root, self.selection = object(), object()

    def getRoot(self):
        """The bouquet that is shown."""
        HOST.note("getRoot")
        return self.root

    def getCurrentSelection(self):
        """The service that is marked."""
        HOST.note("getCurrentSelection")
        return self.selection

    def setRoot(self, root):
        """Shows a bouquet."""
        HOST.note("setRoot", root)

    def setCurrentSelection(self, selection):
        """Marks a service."""
        HOST.note("setCurrentSelection", selection)


def start_info_bar():
    """Has the TV screen run; gives its channel list."""
    InfoBar.instance = InfoBar()
    InfoBar.instance.servicelist = ServiceList()
    return InfoBar.instance.servicelist


class Unused(object):
    """Something that the module imports and never uses."""


class RecordedFile(object):
    """A real file below the receiver's root, its calls recorded under the receiver's path."""

    def __init__(self, path, mode):
        self.path = path
        self.stream = REAL_OPEN(HOST.real(path), mode)
        OPENED.append(self)

    def __getattr__(self, name):
        HOST.note("file." + name, self.path)
        raise AttributeError(name)

    def __enter__(self):
        return self

    def __exit__(self, *error):
        self.close()

    def readline(self, *arguments):
        """One line."""
        HOST.note("readline", self.path, *arguments)
        return self.stream.readline(*arguments)

    def readlines(self, *arguments):
        """All lines."""
        HOST.note("readlines", self.path, *arguments)
        return self.stream.readlines(*arguments)

    def write(self, content):
        """Writes."""
        HOST.note("write", self.path, content)
        self.stream.write(content)

    def close(self):
        """Closes."""
        HOST.note("close file", self.path)
        self.stream.close()


OPENED = []


def recorded_open(path, mode="r", *arguments):
    """The built-in `open` on the receiver's files."""
    HOST.note("open", path, mode, *arguments)
    return RecordedFile(path, mode)


class Paths(object):
    """`os.path` on the receiver's files."""

    def exists(self, path):
        """True for what is there."""
        HOST.note("os.path.exists", path)
        return os.path.exists(HOST.real(path))

    def isfile(self, path):
        """True for a plain file."""
        HOST.note("os.path.isfile", path)
        return os.path.isfile(HOST.real(path))


class OperatingSystem(object):
    """`os` on the receiver's files."""

    path = Paths()

    def makedirs(self, *arguments):
        """Makes a folder and those above."""
        HOST.note("os.makedirs", *arguments)
        os.makedirs(HOST.real(arguments[0]))


class FileTools(object):
    """`shutil` on the receiver's files."""

    def copy2(self, source, target):
        """Copies a file with its times and mode."""
        HOST.note("shutil.copy2", source, target)
        shutil.copy2(HOST.real(source), HOST.real(target))


class Clock(object):
    """`time` with a time that a test sets."""

    def time(self):
        """Seconds since the epoch."""
        HOST.note("time.time")
        return HOST.now


class Moment(object):
    """A point in time."""

    def __init__(self, moment):
        self.moment = moment

    def strftime(self, form):
        """The point in time as text."""
        HOST.note("strftime", form)
        return self.moment.strftime(form)


class Calendar(object):
    """`datetime`, as far as a time stamp needs it."""

    class datetime(object):
        """Points in time."""

        @staticmethod
        def fromtimestamp(seconds):
            """Local time from seconds since the epoch."""
            HOST.note("datetime.fromtimestamp", seconds)
            return Moment(datetime.datetime.fromtimestamp(seconds))


class Response(object):
    """A server's answer; whatever is asked of it besides `read` is recorded and refused."""

    def __init__(self, answer):
        self.answer = answer

    def __getattr__(self, name):
        HOST.note("response." + name)
        raise AttributeError(name)

    def read(self, *arguments):
        """The body."""
        HOST.note("read", *arguments)
        return self.answer.read(*arguments)


class Transfers(object):
    """`urllib2` over the real one."""

    HTTPError = urllib2.HTTPError
    URLError = urllib2.URLError

    def urlopen(self, *arguments, **keywords):
        """Asks a server."""
        HOST.note("urlopen", *arguments, **keywords)
        return Response(HOST.urlopen(*arguments, **keywords))


def translate(text):
    """The host's translation function."""
    HOST.note("_", text)
    return translated(text)


def stamp(seconds=NOW):
    """The time stamp that marks a renamed bouquet."""
    return time.strftime("%Y-%m-%d_%H-%M-%S", time.localtime(seconds))


def module(name, **members):
    """A module object with these members."""
    made = types.ModuleType(name)
    made.__dict__.update(members)
    return made


def layer():
    """The host's Python layer: module objects by name, made anew."""
    packages = dict((name, module(name, __path__=[])) for name in ("Components", "Components.Sources", "Screens", "Tools"))
    members = {
        "Components.Label": {"Label": Unused},
        "Components.ActionMap": {"ActionMap": ActionMap},
        "Components.GUIComponent": {"GUIComponent": Unused},
        "Components.Sources.StaticText": {"StaticText": StaticText},
        "Components.Pixmap": {"Pixmap": Unused},
        "Components.MenuList": {"MenuList": Unused},
        "Components.Console": {"Console": Console},
        "Components.Sources.List": {"List": List},
        "Screens.Screen": {"Screen": Screen},
        "Screens.MessageBox": {"MessageBox": MessageBox},
        "Screens.ChoiceBox": {"ChoiceBox": ChoiceBox},
        # As on the host: no `__all__`, so that its own imports are exported too, `compile` hiding the built-in.
        "Tools.Directories": {
            "resolveFilename": resolveFilename, "fileExists": fileExists, "SCOPE_PLUGINS": SCOPE_PLUGINS, "SCOPE_CONFIG": SCOPE_CONFIG,
            "pathExists": os.path.exists, "os": os, "errno": __import__("errno"), "compile": Unused, "_private": Unused},
        "Tools.LoadPixmap": {"LoadPixmap": LoadPixmap},
        "skin": {"loadSkin": Unused},
        "enigma": {"eServiceReference": Unused, "eServiceCenter": Unused, "eDVBDB": eDVBDB},
        "ServiceReference": {"ServiceReference": Unused},
        "Screens.InfoBar": {"InfoBar": InfoBar},
        "Components.NimManager": {"nimmanager": NIMMANAGER},
    }
    made = dict(packages)
    for name, names in members.items():
        made[name] = module(name, **names)
    for name, one in made.items():
        if "." in name:
            parent, child = name.rsplit(".", 1)
            setattr(made[parent], child, one)
    return made


def install(modules=None):
    """Puts the host's layer in place for imports, and the host's translation function among the built-ins."""
    sys.modules.update(layer() if modules is None else modules)
    __builtin__._ = translate


# What the module finds in place of the standard library while it is recorded.
STANDARD_LIBRARY = {
    "os": OperatingSystem(), "shutil": FileTools(), "time": Clock(), "datetime": Calendar(), "urllib2": Transfers()}

NIMMANAGER = NimManager()
DATABASE = eDVBDB()
HOST = Recorder()
