"""A list on screen that a screen fills itself."""

from Components.GUIComponent import GUIComponent
from enigma import eListbox, eListboxPythonStringContent


class MenuList(GUIComponent):
    """Rows of plain text, or of tuples whose first item is the text."""

    GUI_WIDGET = eListbox

    def __init__(self, list, enableWrapAround=True, content=eListboxPythonStringContent):
        GUIComponent.__init__(self)
        self.list = list
        self.l = content()
        self.l.setList(self.list)
        self.onSelectionChanged = []
        self.enableWrapAround = enableWrapAround

    def getCurrent(self):
        """The row under the cursor, or None."""
        return self.l.getCurrentSelection()

    def postWidgetCreate(self, instance):
        """Fill the instance."""
        instance.setContent(self.l)
        instance.selectionChanged.append(self.selectionChanged)
        instance.setWrapAround(self.enableWrapAround)

    def preWidgetRemove(self, instance):
        """Take the content back."""
        instance.setContent(None)
        instance.selectionChanged.remove(self.selectionChanged)
        instance.allowNativeKeys(False)

    def selectionChanged(self):
        """The cursor has moved."""
        for function in self.onSelectionChanged:
            function()

    def getSelectionIndex(self):
        """The row of the cursor."""
        return self.l.cursor

    def getSelectedIndex(self):
        """The row of the cursor."""
        return self.l.cursor

    def setList(self, list):
        """Show other rows."""
        self.list = list
        self.l.setList(self.list)

    def moveToIndex(self, index):
        """Put the cursor on a row."""
        if self.instance is not None:
            self.instance.moveSelectionTo(index)

    def pageUp(self):
        """One page up."""
        self._move(eListbox.pageUp)

    def pageDown(self):
        """One page down."""
        self._move(eListbox.pageDown)

    def up(self):
        """One row up."""
        self._move(eListbox.moveUp)

    def down(self):
        """One row down."""
        self._move(eListbox.moveDown)

    def _move(self, direction):
        if self.instance is not None:
            self.instance.moveSelection(direction)
