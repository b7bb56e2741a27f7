"""The receiver as whoever stands in front of it knows it: keys in, the state of the screen out."""

import collections

import mainloop
from Components import Language
from native import display

_KEYS = dict((key, "KEY_%s" % key.upper())
             for key in "up down left right ok exit red green 0 1 2 3 4 5 6 7 8 9".split())
_MESSAGE_TYPES = {0: "yesno", 1: "info", 2: "warning", 3: "error", 4: "message"}
_CAPTIONS = {"key_red": "red", "key_green": "green"}


class Receiver(object):
    """One receiver a process: its parts are the host's own single instances.

    What happens on the receiver happens on the main loop, what `press` and
    `open_panel` ask for too. An error there is a crash: `mainloop.run` returns
    and `crashed` holds the traceback.
    """

    def __init__(self):
        self.session = None
        self._panel_opened = False
        self._keys = collections.deque()

    def boot(self, translations=None):
        """Load keys, skin, services and plug-ins, and show the TV screen."""
        Language.install(translations)
        import skin
        from Components import PluginComponent
        from enigma import eDVBDB, getDesktop, loadKeymap
        from Screens.InfoBar import InfoBar
        from Screens.Session import Session
        from Tools.Directories import SCOPE_SKIN, resolveFilename
        loadKeymap(resolveFilename(SCOPE_SKIN, "keymap.xml"))
        skin.loadSkin("skin.xml")
        eDVBDB.getInstance().reloadServicelist()
        eDVBDB.getInstance().reloadBouquets()
        PluginComponent.read_all()
        self.session = Session(getDesktop(0))
        self.session.open(InfoBar)

    def open_panel(self):
        """Open the control panel's screen, as its entry in the plug-in menu does."""
        mainloop.call_later(0, self._open_panel)

    def _open_panel(self):
        from Components.PluginComponent import plugins
        from Plugins.Plugin import PluginDescriptor
        panels = [each for each in plugins.getPlugins(PluginDescriptor.WHERE_PLUGINMENU)
                  if each.path.endswith("/SystemPlugins/QelPanel")]
        panels[0](session=self.session)
        self._panel_opened = True
        display.changed()

    def press(self, key):
        """A key of the remote control goes down and up again."""
        if key not in _KEYS:
            raise ValueError("no key '%s'; there are: %s" % (key, " ".join(sorted(_KEYS))))
        self._keys.append(_KEYS[key])
        if len(self._keys) == 1:
            mainloop.call_later(0, self._deliver)

    def _deliver(self):
        """One key: what it makes due at once is done before the next."""
        from enigma import eActionMap
        actions = eActionMap.getInstance()
        key = self._keys[0]
        actions.keyPressed(key, "m")
        actions.keyPressed(key, "b")
        self._keys.popleft()
        if self._keys:
            mainloop.call_later(0, self._deliver)

    def on_change(self, callback):
        """Call `callback()` on the main loop, once after any number of changes on screen."""
        display.add_listener(callback)

    @property
    def crashed(self):
        """The traceback that ended the main loop, as text, or None."""
        return mainloop.crash()

    def summary(self):
        """Transponders, services and bouquets that the receiver has loaded, in numbers."""
        from enigma import eDVBDB
        return eDVBDB.getInstance().summary()

    def state(self):
        """What is on screen, as plain lists, dicts, byte strings in UTF-8, numbers and None.

        `busy` is true while a shell command runs or a call is due at once.
        """
        return {
            "tv": self._tv(),
            "dialogs": [_dialog(each) for each in self._dialogs()],
            "closed": self._panel_opened and not self._dialogs(),
            "busy": not mainloop.idle(),
        }

    def _dialogs(self):
        """The dialogs over the TV screen, from the bottom to the top."""
        if self.session is None:
            return []
        stacked = [dialog for dialog, _ in self.session.dialog_stack] + [self.session.current_dialog]
        return [each for each in stacked[1:] if each is not None and each is not stacked[0]]

    @staticmethod
    def _tv():
        from Screens.InfoBar import InfoBar
        if InfoBar.instance is None:
            return {"bouquet": "", "services": [], "selected": 0}
        channels = InfoBar.instance.servicelist
        return {
            "bouquet": _text(channels.getTitle()),
            "services": [_text(texts[0]) for texts, _ in channels.servicelist.l.drawn()],
            "selected": channels.servicelist.l.cursor,
        }


def _dialog(dialog):
    from Screens.ChoiceBox import ChoiceBox
    from Screens.MessageBox import MessageBox
    if isinstance(dialog, MessageBox):
        return _message(dialog)
    if isinstance(dialog, ChoiceBox):
        return _choice(dialog)
    return _screen(dialog)


def _message(dialog):
    state = {"kind": "message", "type": _MESSAGE_TYPES.get(dialog.type, "message"),
             "title": _text(dialog.title), "text": _text(dialog["text"].text)}
    if dialog.list:
        state["choices"], state["selected"] = _choices(dialog["list"])
    return state


def _choice(dialog):
    choices, selected = _choices(dialog["list"])
    return {"kind": "choice", "title": _text(dialog.title), "text": _text(dialog["text"].text),
            "choices": choices, "selected": selected}


def _choices(menu):
    return [_text(texts[0]) for texts, _ in menu.l.drawn()], menu.l.cursor


def _screen(dialog):
    """What the skin shows of a screen: the rows of its list and the captions of its keys."""
    rows, selected, captions = [], 0, {}
    for renderer in dialog.renderer:
        content = getattr(renderer, "content", None)
        if content is not None:
            rows, selected = [_row(*each) for each in content.drawn()], content.cursor
        elif renderer.source_name in _CAPTIONS:
            captions[_CAPTIONS[renderer.source_name]] = _text(renderer.text)
    return {"kind": "screen", "name": dialog.__class__.__name__, "title": _text(dialog.title),
            "rows": rows, "selected": selected, "captions": captions}


def _row(texts, pictures):
    texts = [_text(each) for each in texts[:2]] + [""] * (2 - len(texts))
    return texts + [_text(pictures[0].name()) if pictures else None]


def _text(text):
    """As the screen shows it: bytes that are no UTF-8 show as replacement characters."""
    return text.partition("\0")[0].decode("utf-8", "replace").encode("utf-8")
