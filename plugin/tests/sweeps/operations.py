"""Every operation of the module, in every variant that takes another way through it.

An operation prepares the receiver and gives back what is to be called, and with which arguments.
"""

import __builtin__
import functools
import socket
import sys
import urllib2
import warnings

import points
import recording_host
import world as receiver

OPERATIONS = []

TMP = "/tmp/settings"
CONFIG = recording_host.CONFIG
ROOT_TV = '#NAME Bouquets (TV)\r\n#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\r\n'
ROOT_RADIO = '#NAME Bouquets (Radio)\n#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.radio.radio" ORDER BY bouquet'
REAL_IMPORT = __import__
SHOW_WARNING = warnings.showwarning
SKIN_ERROR = KeyError("title")
DISK_ERROR = IOError(5, "Input/output error")
FOLDER_ERROR = OSError(30, "Read-only file system")
BROKEN_OFF = socket.timeout("timed out")
HTTP_ERROR = urllib2.HTTPError("http://server/", 404, "gone", {}, None)
URL_ERROR = urllib2.URLError("refused")


class Operation(object):
    """One operation; calling it prepares the world for it."""

    def __init__(self, name, prepare, finish):
        self.name, self.prepare, self.finish = name, prepare, finish

    def __call__(self, world):
        """Prepares the world; gives the callable and its arguments."""
        world.reset()
        return self.prepare(world)

    def loaded(self, raised, names):
        """Which names the module in the interpreter's table has afterwards; `names` are those of a loaded one."""
        return names if self.name == "initMorvesk reload" or (self.entry == "initMorvesk" and not raised) else []

    @property
    def entry(self):
        """The module's function that is called."""
        return self.name.split()[0]

    def __repr__(self):
        return self.name


def operation(name, finish=lambda world: None):
    """Registers the decorated function as an operation."""
    def register(prepare):
        OPERATIONS.append(Operation(name, prepare, finish))
        return prepare
    return register


def noted_import(name, names=None, *others):
    """The built-in `__import__`, noting what the module imports."""
    if names is not None and names.get("__name__") == "Morvesk":
        recording_host.HOST.note("__import__", name)
    return REAL_IMPORT(name, names, *others)


def let_go(world):
    """Frees a constructed screen, which refers to itself through its keys."""
    del recording_host.HOST.calls[:]
    receiver.collect_young()


def begin_load():
    """Notes imports from now on; the base class is a new one each time, which knows of no earlier load."""
    __builtin__.__import__ = noted_import
    sys.modules["Screens.Screen"].Screen = type("Screen", (recording_host.Screen,), {})


def noted_warning(message, *others):
    """The interpreter's way to show a warning."""
    recording_host.HOST.note("warning", str(message))


def unload(world):
    """Takes a loaded module out of the interpreter."""
    __builtin__.__import__ = REAL_IMPORT
    warnings.showwarning = SHOW_WARNING
    warnings.resetwarnings()
    points.claim_version(None)
    sys.modules.update(world.layer)
    sys.modules["Screens.Screen"].Screen = recording_host.Screen
    sys.modules.pop("Morvesk", None)
    receiver.collect_young()


@operation("initMorvesk", unload)
def load(world):
    """Loading the module."""
    begin_load()
    return points.enter, (world.module.__file__,)


@operation("initMorvesk other-version", unload)
def load_into_other_version(world):
    """Loading the module into an interpreter that says that it is another version."""
    begin_load()
    points.claim_version("2.6.9 (default)")
    warnings.showwarning = noted_warning
    warnings.simplefilter("always")
    return points.enter, (world.module.__file__,)


@operation("initMorvesk reload", unload)
def load_again(world):
    """Loading the module into itself, while it is in use."""
    points.enter(world.module.__file__)
    begin_load()
    return points.enter, (world.module.__file__,)


@operation("initMorvesk host-module-missing", unload)
def load_without_host_module(world):
    """Loading the module on a host that lacks a part."""
    begin_load()
    sys.modules["Components.NimManager"] = None
    return points.enter, (world.module.__file__,)


@operation("initMorvesk host-name-missing", unload)
def load_without_host_name(world):
    """Loading the module on a host whose module lacks a name."""
    begin_load()
    sys.modules["Screens.InfoBar"] = world.empty_module
    return points.enter, (world.module.__file__,)


@operation("__init__", let_go)
def construct(world):
    """The screen's construction."""
    return world.module.Morvesk, (world.session, "/the/panel")


@operation("__init__ no-title", let_go)
def construct_without_title(world):
    """The construction under a skin that lacks the title."""
    def static_text(text=""):
        recording_host.HOST.note("StaticText", text)
        if text == recording_host.translated("Download services lists"):
            raise SKIN_ERROR
        return recording_host.Made("StaticText", text)
    vars(world.module)["StaticText"] = static_text
    return world.module.Morvesk, (world.session, "/the/panel")


@operation("__init__ argument-missing")
def construct_without_panel(world):
    """The construction without the panel's folder."""
    return world.module.Morvesk, (world.session,)


@operation("init_vars")
def layout_hook(world):
    """The layout hook."""
    world.answers(receiver.CATALOGUE)
    return world.screen.init_vars, ()


@operation("getServiceLists")
def service_lists(world):
    """The catalogue's rows."""
    world.answers(receiver.CATALOGUE)
    return world.screen.getServiceLists, ()


@operation("getServiceLists http-error")
def service_lists_http_error(world):
    """The row of a server that refuses."""
    world.refuses(HTTP_ERROR)
    return world.screen.getServiceLists, ()


@operation("getServiceLists url-error")
def service_lists_url_error(world):
    """The row of a server that cannot be reached."""
    world.refuses(URL_ERROR)
    return world.screen.getServiceLists, ()


@operation("keyOk")
def key_ok(world):
    """A download into a folder that is there."""
    world.answers(receiver.ARCHIVE)
    world.put(TMP + "/settings.tar.gz", "old")
    world.select("europe.tar.gz")
    return world.screen.keyOk, ()


@operation("keyOk new-folder")
def key_ok_new_folder(world):
    """A download into a folder that has to be made."""
    world.answers(receiver.ARCHIVE)
    world.remove(TMP)
    world.select("europe.tar.gz")
    return world.screen.keyOk, ()


@operation("keyOk folder-refused")
def key_ok_folder_refused(world):
    """A download folder that the file system does not allow."""
    world.remove(TMP)
    world.select("europe.tar.gz")
    recording_host.HOST.failures["os.makedirs"] = FOLDER_ERROR
    return world.screen.keyOk, ()


@operation("keyOk folder-broken")
def key_ok_folder_broken(world):
    """An error in the making of the folder that nobody expects."""
    world.remove(TMP)
    world.select("europe.tar.gz")
    recording_host.HOST.failures["os.makedirs"] = DISK_ERROR
    return world.screen.keyOk, ()


@operation("keyOk no-folder")
def key_ok_no_folder(world):
    """A folder that cannot be made."""
    world.put(TMP + "/settings.tar.gz", "old")
    world.select("europe.tar.gz")
    recording_host.HOST.answers["fileExists"] = False
    return world.screen.keyOk, ()


@operation("keyOk no-row")
def key_ok_no_row(world):
    """Nothing is selected."""
    return world.screen.keyOk, ()


@operation("keyOk notice")
def key_ok_notice(world):
    """A row that offers nothing is selected."""
    world.select(None)
    return world.screen.keyOk, ()


@operation("keyOk http-error")
def key_ok_http_error(world):
    """The server refuses the archive."""
    world.put(TMP + "/settings.tar.gz", "old")
    world.refuses(HTTP_ERROR)
    world.select("europe.tar.gz")
    return world.screen.keyOk, ()


@operation("keyOk url-error")
def key_ok_url_error(world):
    """The server cannot be reached for the archive."""
    world.put(TMP + "/settings.tar.gz", "old")
    world.refuses(URL_ERROR)
    world.select("europe.tar.gz")
    return world.screen.keyOk, ()


@operation("download_finished")
def download_finished(world):
    """The start of the extraction."""
    return world.screen.download_finished, ()


def unpacked(world):
    """Puts a complete list into the working folder."""
    world.put(TMP + "/bouquets.tv", "".join((
        "#NAME Bouquets (TV)\n",
        '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n',
        "#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET 'userbouquet.sat.tv' ORDER BY bouquet\n",
        '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.absent.tv" ORDER BY bouquet\n')))
    world.put(TMP + "/bouquets.radio", '#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.news.radio" ORDER BY bouquet\n')
    world.put(TMP + "/lamedb", "eDVB services /4/\n")
    for name in ("userbouquet.favourites.tv", "userbouquet.sat.tv", "userbouquet.news.radio"):
        world.put(TMP + "/" + name, "#NAME %s\n" % name)
    world.put(CONFIG + "bouquets.tv", ROOT_TV)
    world.put(CONFIG + "userbouquet.favourites.tv", "#NAME mine\n")
    world.remove(
        CONFIG + "bouquets.radio", CONFIG + "userbouquet.sat.tv", CONFIG + "userbouquet.news.radio",
        CONFIG + "userbouquet.favourites" + recording_host.stamp() + ".tv")


@operation("untar_finished")
def extracted(world):
    """A complete list: the question."""
    unpacked(world)
    return world.screen.untar_finished, ("output", 0)


@operation("untar_finished incomplete")
def extracted_incomplete(world):
    """A list without its database."""
    unpacked(world)
    world.remove(TMP + "/lamedb")
    world.answers(receiver.CATALOGUE)
    return world.screen.untar_finished, ("output", 0, [])


@operation("untar_finished failed")
def extraction_failed(world):
    """An archive that tar refuses."""
    world.answers(receiver.CATALOGUE)
    return world.screen.untar_finished, ("output", 1)


@operation("installNewFavourites append")
def append(world):
    """The answer to append."""
    unpacked(world)
    recording_host.InfoBar.instance = world.info_bar
    return world.screen.installNewFavourites, (("append", True),)


@operation("installNewFavourites default")
def append_by_default(world):
    """No answer handed over."""
    unpacked(world)
    return world.screen.installNewFavourites, ()


@operation("installNewFavourites overwrite")
def overwrite(world):
    """The answer to overwrite."""
    return world.screen.installNewFavourites, (("overwrite", False),)


@operation("installNewFavourites cancelled")
def cancelled(world):
    """The question left without an answer."""
    world.answers(receiver.CATALOGUE)
    return world.screen.installNewFavourites, (None,)


@operation("copy_finished")
def installed(world):
    """The end of an installation."""
    return world.screen.copy_finished, ("output", 1)


@operation("copy_finished failed")
def installation_failed(world):
    """A reload that reports a failure."""
    world.answers(receiver.CATALOGUE)
    world.screen.__dict__["reload_settings"] = lambda: False
    return world.screen.copy_finished, ("output", 0, None)


@operation("mergeNewFavourites")
def merge(world):
    """New bouquets of both kinds and a database."""
    unpacked(world)
    return world.screen.mergeNewFavourites, ()


@operation("mergeNewFavourites unreadable")
def merge_unreadable(world):
    """A root file that breaks off."""
    unpacked(world)
    recording_host.HOST.failures["readlines"] = DISK_ERROR
    return world.screen.mergeNewFavourites, ()


@operation("mergeNewFavourites nothing")
def merge_nothing(world):
    """A list without bouquets and without a database."""
    unpacked(world)
    world.put(TMP + "/bouquets.tv", "#NAME Bouquets (TV)\n")
    world.put(TMP + "/bouquets.radio", "")
    world.remove(TMP + "/lamedb")
    return world.screen.mergeNewFavourites, ()


@operation("writeBouquetFiles")
def write_television(world):
    """References added to a root file, its last line one of them already."""
    unpacked(world)
    known = '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.known.tv" ORDER BY bouquet'
    world.put(CONFIG + "bouquets.tv", ROOT_TV + known)
    pairs = [("userbouquet.sat.tv", "userbouquet.sat.tv"), ("userbouquet.known.tv", "userbouquet.known.tv")]
    return world.screen.writeBouquetFiles, ("tv", pairs)


@operation("writeBouquetFiles fresh")
def write_fresh_radio(world):
    """A root file started afresh."""
    unpacked(world)
    return world.screen.writeBouquetFiles, ("radio", [("userbouquet.news.radio", "userbouquet.news.radio")])


@operation("reload_settings")
def reload_settings(world):
    """The receiver loads the new list, with its channel list open."""
    recording_host.InfoBar.instance = world.info_bar
    return world.screen.reload_settings, ()


@operation("reload_settings no-info-bar")
def reload_without_info_bar(world):
    """The receiver loads the new list before the TV screen runs."""
    return world.screen.reload_settings, ()


@operation("keyCancel")
def key_cancel(world):
    """Nothing runs."""
    return world.screen.keyCancel, ()


@operation("keyCancel running")
def key_cancel_running(world):
    """Two commands run."""
    world.screen.Console.appContainers.update({"tar": 1, "rm": 2})
    return world.screen.keyCancel, ()


@operation("keyCancel no-console")
def key_cancel_no_console(world):
    """There is no console."""
    world.screen.__dict__["Console"] = None
    return world.screen.keyCancel, ()


@operation("base_url")
def base_url(world):
    """The download folder's address."""
    return world.module.base_url, ()


@operation("info_url")
def info_url(world):
    """The catalogue's address."""
    return world.module.info_url, ()


@operation("parse_download_file")
def parse_download_file(world):
    """A catalogue."""
    world.answers(receiver.CATALOGUE)
    return world.module.parse_download_file, ()


@operation("parse_download_file not-a-string")
def parse_other_body(world):
    """A catalogue whose body is no string, and knows how to split itself."""
    world.answers(Body(receiver.CATALOGUE))
    return world.module.parse_download_file, ()


@operation("download_settings broken-off")
def download_broken_off(world):
    """An archive that breaks off."""
    world.answers(receiver.ARCHIVE)
    recording_host.HOST.failures["read"] = BROKEN_OFF
    return world.module.download_settings, ("europe.tar.gz", TMP)


@operation("download_settings by-keyword")
def download_by_keyword(world):
    """Arguments by name."""
    world.answers(receiver.ARCHIVE)
    return functools.partial(world.module.download_settings, f_name="europe.tar.gz", tmp_path=TMP), ()


@operation("download_settings unknown-keyword")
def download_unknown_keyword(world):
    """An argument under a name that there is not."""
    return functools.partial(world.module.download_settings, "europe.tar.gz", **{u"f\xfcr": TMP}), ()


@operation("download_settings odd-keyword")
def download_odd_keyword(world):
    """An argument under a name whose own encoding is no string."""
    return functools.partial(world.module.download_settings, "europe.tar.gz", **{Odd(u"x"): TMP}), ()


@operation("download_settings")
def download_settings(world):
    """An archive."""
    world.answers(receiver.ARCHIVE)
    world.put(TMP + "/settings.tar.gz", "old")
    return world.module.download_settings, ("europe.tar.gz", TMP)


class Body(object):
    """What a host's own transfer may give instead of a string."""

    def __init__(self, text):
        self.text = text

    def split(self, separator):
        """The lines."""
        recording_host.HOST.note("split", separator)
        return self.text.split(separator)


class Odd(unicode):
    """A name that encodes itself as a number."""

    def encode(self, *arguments, **keywords):
        """No string."""
        return 5
