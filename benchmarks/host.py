"""The host's modules as small as they can be: what the module imports, with callables that cost next to nothing."""

import __builtin__
import sys
import types

PICTURE = "the picture"
PLUGINS = "/usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel/pictures/sockets.png"


class Screen(dict):
    """The host's screen: a dict of widgets."""

    def __init__(self, session, parent=None):
        dict.__init__(self)
        self.session = session
        self.onLayoutFinish = []


class Widget(object):
    """A widget that keeps what it was made from."""

    def __init__(self, *arguments):
        self.arguments = arguments


class List(Widget):
    """The list widget."""


class Console(object):
    """The runner of shell commands."""

    def __init__(self):
        self.appContainers = {}


class Database(object):
    """The service database, which does nothing."""

    @staticmethod
    def getInstance():
        """The one instance."""
        return DATABASE

    def reloadServicelist(self):
        """Does nothing."""

    def loadServicelist(self, path):
        """Does nothing."""

    def saveServicelist(self):
        """Does nothing."""

    def reloadBouquets(self):
        """Does nothing."""


DATABASE = Database()


def _module(name, **names):
    made = types.ModuleType(name)
    vars(made).update(names)
    sys.modules[name] = made
    package, _, last = name.rpartition(".")
    if package:
        setattr(sys.modules[package], last, made)


def _package(name):
    _module(name, __path__=[])


def _directories(constant):
    """The public names of the host's module of folders, as many as a receiver has."""
    import errno
    import os
    names = ("SCOPE_TRANSPONDERDATA SCOPE_SYSETC SCOPE_FONTS SCOPE_SKIN SCOPE_SKIN_IMAGE SCOPE_USERETC SCOPE_CONFIG "
             "SCOPE_LANGUAGE SCOPE_HDD SCOPE_PLUGINS SCOPE_MEDIA SCOPE_PLAYLIST SCOPE_CURRENT_SKIN SCOPE_DEFAULTDIR "
             "SCOPE_DEFAULTPARTITION SCOPE_DEFAULTPARTITIONMOUNTDIR SCOPE_METADIR SCOPE_CURRENT_PLUGIN SCOPE_TIMESHIFT "
             "SCOPE_ACTIVE_SKIN SCOPE_LCDSKIN SCOPE_ACTIVE_LCDSKIN SCOPE_AUTORECORD SCOPE_DEFAULTDIR PATH_CREATE "
             "PATH_DONTCREATE").split()
    made = dict((name, number) for number, name in enumerate(names))
    for name in ("compile defaultRecordingLocation pathExists createDir removeDir fileCheck fileHas "
                 "getRecordingFilename copyfile copytree moveFiles crawlDirectory getSize InitFallbackFiles shellquote "
                 "comparePaths").split():
        made[name] = constant(None)
    made.update(os=os, errno=errno, resolveFilename=constant(PLUGINS), fileExists=constant(True))
    return made


def install(constant):
    """Puts the host's modules into the interpreter; `constant` makes a callable that always gives the same answer."""
    for name in ("Components", "Components.Sources", "Screens", "Tools"):
        _package(name)
    _module("Components.Label", Label=Widget)
    _module("Components.ActionMap", ActionMap=Widget)
    _module("Components.GUIComponent", GUIComponent=Widget)
    _module("Components.Sources.StaticText", StaticText=Widget)
    _module("Components.Pixmap", Pixmap=Widget)
    _module("Components.MenuList", MenuList=Widget)
    _module("Components.Console", Console=Console)
    _module("Components.Sources.List", List=List)
    _module("Screens.Screen", Screen=Screen)
    _module("Screens.MessageBox", MessageBox=Widget)
    _module("Screens.ChoiceBox", ChoiceBox=Widget)
    _module("Tools.Directories", **_directories(constant))
    _module("Tools.LoadPixmap", LoadPixmap=constant(PICTURE))
    _module("skin", loadSkin=constant(None))
    _module("enigma", eServiceReference=Widget, eServiceCenter=Widget, eDVBDB=Database)
    _module("ServiceReference", ServiceReference=Widget)
    _module("Screens.InfoBar", InfoBar=type("InfoBar", (object,), {"instance": None}))
    _module("Components.NimManager", nimmanager=Widget())
    __builtin__._ = str
