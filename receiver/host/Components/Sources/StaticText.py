"""A text that a screen sets and its skin shows."""

from Components.Sources.Source import Source


class StaticText(Source):
    """Holds a text."""

    def __init__(self, text="", filter=lambda text: text):
        Source.__init__(self)
        self.__text = text
        self.filter = filter

    def handleCommand(self, cmd):
        """Set the text from outside, filtered."""
        self.text = self.filter(cmd)

    def getText(self):
        """The text."""
        return self.__text

    def setText(self, text):
        """Set the text and have it shown."""
        self.__text = text
        self.changed((self.CHANGED_ALL,))

    text = property(getText, setText)

    def getBoolean(self):
        """True when there is a text."""
        return bool(self.__text)

    boolean = property(getBoolean)
