"""What has to come of an operation in which one call of the host fails.

With few exceptions, which are the guards below, the very exception reaches the caller and nothing more is called.
"""

import urllib2

import recording_host
from recording_host import call, loaded, picture, translated

TITLE = translated("Download services lists")
NO_TITLE = [call("print", 'self["title"] was not found in skin'), call("print", "\n")]
STATUS_TEXTS = {
    2: "It seems that your Internet connection is not ok, please check it",
    3: "Download of services list failes, please be patient and try again later"}
NO_FOLDER_TEXT = "Sorry, creating download folder failed"
RAISED = "the exception goes up"
UNDISTURBED = "the exception is of no consequence"


class Expected(object):
    """The end of a run: the calls after the failing one, and what comes back."""

    def __init__(self, calls=(), result=RAISED, raised=False):
        self.calls, self.result, self.raised = list(calls), result, raised


def expected(operation, undisturbed, point):
    """The end of `operation` when it fails at `point`, `undisturbed` being the calls when it does not."""
    guard, error = point.guard, point.error
    if guard == "title":
        rest = [record for record in undisturbed[after_title(undisturbed):] if record not in NO_TITLE]
        return Expected(NO_TITLE + rest, "a screen")
    if guard == "file":
        return Expected([call("close file", opened(undisturbed[:point.made]))])
    if guard == "folder" and isinstance(error, OSError):
        return Expected(no_folder(), None)
    if guard == "transfer" and isinstance(error, urllib2.URLError):
        return after_transfer(operation, 2 if isinstance(error, urllib2.HTTPError) else 3)
    if guard == "warning":
        return Expected([record for record in undisturbed[point.made:] if record[0] != "warning"], UNDISTURBED)
    if guard == "metaclass" or (guard == "offer" and isinstance(error, AttributeError)):
        return Expected(undisturbed[point.made:], UNDISTURBED)
    if guard == "import" and isinstance(error, AttributeError):
        return Expected((), (ImportError, import_error_text(point.about[1])), True)
    return Expected()


def import_error_text(name):
    """The text of an import statement that does not find what it wants."""
    return "from-import-* object has no __dict__ and no __all__" if name == "__dict__" else "cannot import name " + name


def after_title(calls):
    """Where the calls for the title widget end."""
    title = [index for index, record in enumerate(calls)
             if record == call("StaticText", TITLE) or record[:1] + record[1][:1] == ("widget", "title")]
    return title[-1] + 1


def opened(calls):
    """The file that was opened last."""
    return [record[1][0] for record in calls if record[0] == "open"][-1]


def no_folder():
    """The box that tells that there is no download folder."""
    box = recording_host.MessageBox
    return [
        call("fileExists", "/tmp/settings", mode="w"), call("_", NO_FOLDER_TEXT),
        call("open dialog", box, translated(NO_FOLDER_TEXT), box.TYPE_ERROR), call("setTitle", "the title")]


def after_transfer(operation, status):
    """What a failed transfer leads to."""
    if operation.entry == "parse_download_file":
        return Expected((), (status, None))
    if operation.entry == "download_settings":
        return Expected((), status)
    text = STATUS_TEXTS[status]
    row = (None, translated("Sorry ..."), translated(text), picture("ntptime.png"), None)
    shown = [call("setList", [row])]
    if operation.entry == "keyOk":
        shown.insert(0, call("set", "list", [row]))
    return Expected([call("_", "Sorry ..."), call("_", text)] + loaded("ntptime.png") + shown, None)


def guard_of_call(calls, index):
    """The guard that the call at `index` is in, if any."""
    name = calls[index][0]
    if name in ("StaticText", "widget") and calls[index][1][0] in ("title", TITLE):
        return "title"
    return {"urlopen": "transfer", "read": "transfer", "split": "transfer", "os.makedirs": "folder", "readlines": "file",
            "warning": "warning"}.get(name)


def guards_of_points(operation, points):
    """The guard of each point, for points as the trace gives them: (C function, what it is about, calls made before)."""
    guards = [None] * len(points)
    for index, (function, about, _) in enumerate(points):
        if operation.entry == "__init__" and function == "PyObject_GetAttr" and about == "title":
            guards[index:index + 2] = ["title"] * 2
            if points[index + 2][:2] == ("PyObject_SetItem", "title"):
                guards[index + 2] = "title"
        elif about in ("urlopen", "read", "split"):
            guards[index] = "transfer"
        elif function == "PyObject_GetAttr" and about == "makedirs":
            guards[index:index + 3] = ["folder"] * 3
        elif about == "readlines":
            guards[index] = "file"
        elif function == "PyErr_WarnEx":
            guards[index] = "warning"
        elif function == "PyObject_GetAttrString":
            guards[index] = {"__class__": "metaclass", "__all__": "offer"}.get(about, "import")
    return guards
