"""A text on screen."""

from Components.GUIComponent import GUIComponent
from Components.VariableText import VariableText
from enigma import eLabel


class Label(VariableText, GUIComponent):
    """Shows a text."""

    GUI_WIDGET = eLabel

    def __init__(self, text=""):
        GUIComponent.__init__(self)
        VariableText.__init__(self)
        self.setText(text)
