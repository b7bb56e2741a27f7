"""Shows the rows of a list source and moves the cursor over them."""

from Components.Renderer.Renderer import Renderer
from enigma import eListbox


class Listbox(Renderer):
    """A list on screen."""

    GUI_WIDGET = eListbox

    def __init__(self):
        Renderer.__init__(self)
        self.content = None

    def changed(self, what):
        """Take the content once; it redraws itself."""
        if self.content is None:
            self.content = self.source.content
            if self.instance is not None:
                self.instance.setContent(self.content)

    def postWidgetCreate(self, instance):
        """Fill the instance."""
        instance.setContent(self.content)
        instance.selectionChanged.append(self.selectionChanged)

    def preWidgetRemove(self, instance):
        """Take the content back."""
        instance.setContent(None)
        instance.selectionChanged.remove(self.selectionChanged)
        instance.allowNativeKeys(False)

    def getIndex(self):
        """The row of the cursor; None before layout."""
        return self.instance.getCurrentIndex() if self.instance is not None else None

    def moveToIndex(self, index):
        """Put the cursor on a row."""
        if self.instance is not None:
            self.instance.moveSelectionTo(index)

    index = property(getIndex, moveToIndex)

    def move(self, direction):
        """Move the cursor."""
        if self.instance is not None:
            self.instance.moveSelection(direction)

    def selectionChanged(self):
        """Tell the source that the cursor has moved."""
        self.source.selectionChanged(self.index)

    def getCurrent(self):
        """The row under the cursor."""
        return self.source.current

    current = property(getCurrent)

    def entry_changed(self, index):
        """Have one row drawn again."""
        if self.instance is not None:
            self.instance.entryChanged(index)
