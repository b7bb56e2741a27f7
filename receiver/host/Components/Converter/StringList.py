"""A list as rows of plain text."""

from Components.Converter.Converter import Converter
from enigma import eListboxPythonStringContent


class StringList(Converter):
    """Turns a list source into the content of a listbox."""

    def __init__(self, arguments):
        Converter.__init__(self, arguments)
        self.content = None

    def changed(self, what):
        """Fill the content anew."""
        if self.content is None:
            self.content = eListboxPythonStringContent()
            self.content.setItemHeight(self.source.item_height)
        self.content.setList(self.source.list)
        Converter.changed(self, what)

    def selectionChanged(self, index):
        """Hand the cursor's move on to the source."""
        self.source.selectionChanged(index)

    def getCurrent(self):
        """The row under the cursor, or None."""
        rows, index = self.source.list, self.index
        return rows[index] if index is not None and index < len(rows) else None

    current = property(getCurrent)

    def getIndex(self):
        """The row of the cursor, None without a listbox."""
        return self.master.index if self.master is not None else None

    def setIndex(self, index):
        """Put the cursor on a row."""
        if self.master is not None:
            self.master.index = index

    index = property(getIndex, setIndex)
