"""A question with a list of answers."""

from Components.ActionMap import NumberActionMap
from Components.ChoiceList import ChoiceEntryComponent, ChoiceList
from Components.Label import Label
from Screens.Screen import Screen

_KEYS = ["1", "2", "3", "4", "5", "6", "7", "8", "9", "0", "red", "green", "yellow", "blue"]


class ChoiceBox(Screen):
    """OK closes it with the chosen entry itself, EXIT with None; keys choose directly.

    Each entry is a tuple whose first item is its text; an entry (text,
    "CALLFUNC", function) does not close the box but calls the function.
    """

    def __init__(self, session, title="", list=[], keys=None, selection=0, skin_name=[],
                 titlebartext=None):
        Screen.__init__(self, session)
        if isinstance(skin_name, str):
            skin_name = [skin_name]
        self.skinName = skin_name + ["ChoiceBox"]
        self["text"] = Label(title)
        self.choices = list
        self.keymap = {}
        names = keys or _KEYS + [""] * (len(list) - len(_KEYS))
        for name, entry in zip(names, list):
            if name:
                self.keymap[name] = entry
        rows = [ChoiceEntryComponent(key, entry) for key, entry in zip(names, list)]
        self["list"] = ChoiceList(rows, selection)
        self["actions"] = NumberActionMap(
            ["WizardActions", "InputActions", "ColorActions", "DirectionActions"], self._actions(), -1)
        self.title = titlebartext or _("Input")

    def _actions(self):
        actions = {"ok": self.go, "back": self.cancel, "up": self.up, "down": self.down,
                   "left": self.left, "right": self.right, "upRepeated": self.up,
                   "downRepeated": self.down}
        for digit in "1234567890":
            actions[digit] = self.keyNumberGlobal
        for colour in ("red", "green", "yellow", "blue"):
            actions[colour] = lambda colour=colour: self.goKey(colour)
        return actions

    def up(self):
        """One entry up; from the first to the last."""
        self["list"].up()

    def down(self):
        """One entry down; from the last to the first."""
        self["list"].down()

    def left(self):
        """One page up."""
        self["list"].pageUp()

    def right(self):
        """One page down."""
        self["list"].pageDown()

    def keyNumberGlobal(self, number):
        """A digit chooses its entry."""
        self.goKey(str(number))

    def goKey(self, key):
        """A key chooses its entry, where it has one."""
        if key in self.keymap:
            self.goEntry(self.keymap[key])

    def go(self):
        """Choose the entry under the cursor."""
        row = self["list"].getCurrent()
        if row:
            self.goEntry(row[0])
        else:
            self.cancel()

    def goEntry(self, entry):
        """Close with the entry, or call what it names."""
        if len(entry) > 2 and entry[1] == "CALLFUNC":
            entry[2](self["list"].getCurrent()[0])
        else:
            self.close(entry)

    def cancel(self):
        """Leave without a choice."""
        self.close(None)
