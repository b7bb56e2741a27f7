"""Shows the text of a source."""

from Components.Renderer.Renderer import Renderer
from Components.VariableText import VariableText
from enigma import eLabel


class Label(VariableText, Renderer):
    """A text on screen that follows its source."""

    GUI_WIDGET = eLabel

    def __init__(self):
        Renderer.__init__(self)
        VariableText.__init__(self)

    def connect(self, source):
        """Take the text from `source`."""
        Renderer.connect(self, source)
        self.changed((self.CHANGED_DEFAULT,))

    def changed(self, what):
        """Show the source's text as it is now."""
        self.text = "" if what[0] == self.CHANGED_CLEAR else self.source.text
