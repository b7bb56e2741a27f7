"""A text to be read, or a question to be answered with yes or no."""

from Components.ActionMap import ActionMap
from Components.Label import Label
from Components.MenuList import MenuList
from Components.Pixmap import Pixmap
from Components.Sources.StaticText import StaticText
from enigma import eTimer
from Screens.Screen import Screen


class MessageBox(Screen):
    """OK closes it with True, or with the chosen answer; EXIT with False."""

    TYPE_YESNO = 0
    TYPE_INFO = 1
    TYPE_WARNING = 2
    TYPE_ERROR = 3
    TYPE_MESSAGE = 4

    def __init__(self, session, text, type=TYPE_YESNO, timeout=-1, close_on_any_key=False,
                 default=True, enable_input=True, msgBoxID=None, picon=None, simple=False,
                 list=[], timeout_default=None):
        Screen.__init__(self, session)
        self.type = type
        self.text = text
        self.msgBoxID = msgBoxID
        self.close_on_any_key = close_on_any_key
        self.timeout_default = timeout_default
        self["text"] = Label(text)
        self["Text"] = StaticText(text)
        self._pictures(picon or type)
        self._answers(list, default)
        self._timeout(timeout)
        self.title = self._ownTitle()
        if enable_input:
            self["actions"] = ActionMap(["MsgBoxActions", "DirectionActions"], {
                "cancel": self.cancel,
                "ok": self.ok,
                "alwaysOK": self.alwaysOK,
                "up": self.up,
                "down": self.down,
                "left": self.left,
                "right": self.right,
                "upRepeated": self.up,
                "downRepeated": self.down,
                "leftRepeated": self.left,
                "rightRepeated": self.right,
            }, -1)

    def _ownTitle(self):
        titles = [_("Question"), _("Information"), _("Warning"), _("Error")]
        return titles[self.type] if self.type < self.TYPE_MESSAGE else _("Message")

    def _pictures(self, kind):
        shown = {"ErrorPixmap": self.TYPE_ERROR, "QuestionPixmap": self.TYPE_YESNO,
                 "InfoPixmap": self.TYPE_INFO}
        for name, its_kind in shown.items():
            self[name] = Pixmap()
            if kind != its_kind:
                self[name].hide()

    def _answers(self, answers, default):
        self.list = []
        if self.type == self.TYPE_YESNO:
            yes_no = [(_("yes"), True), (_("no"), False)]
            self.list = answers or (yes_no if default else yes_no[::-1])
        self["list"] = MenuList(self.list)
        if not self.list:
            self["list"].hide()

    def _timeout(self, seconds):
        self.timer = eTimer()
        self.seconds_left = seconds
        if seconds > 0:
            self.timer.callback.append(self._tick)
            self.onShown.append(self._startTimer)
            self.onClose.append(self.timer.stop)

    def _startTimer(self):
        if self.seconds_left > 0 and not self.timer.isActive():
            self.original_title = self.title
            self.timer.start(1000)

    def _tick(self):
        self.seconds_left -= 1
        if self.seconds_left > 0:
            self.setTitle("%s (%d)" % (self.original_title, self.seconds_left))
        else:
            self.timer.stop()
            self._timeIsUp()

    def _timeIsUp(self):
        if self.timeout_default is not None:
            self.close(self.timeout_default)
        else:
            self.ok()

    def stopTimer(self):
        """Whoever touches a key has time."""
        if self.timer.isActive():
            self.timer.stop()
            self.seconds_left = -1
            self.setTitle(self.original_title)

    def cancel(self):
        """Leave without an answer."""
        self.close(False)

    def ok(self):
        """Leave with the answer under the cursor."""
        self.close(self["list"].getCurrent()[1] if self.list else True)

    def alwaysOK(self):
        """Leave as with yes."""
        self.close(True)

    def up(self):
        """To the answer above."""
        self._move(self["list"].up)

    def down(self):
        """To the answer below."""
        self._move(self["list"].down)

    def left(self):
        """To the first answer on the page."""
        self._move(self["list"].pageUp)

    def right(self):
        """To the last answer on the page."""
        self._move(self["list"].pageDown)

    def _move(self, move):
        if self.close_on_any_key:
            self.close(True)
            return
        move()
        self.stopTimer()
