"""The rows of a list, shown by a listbox that the skin attaches."""

from Components.Sources.Source import Source

_PAGE = 10


class List(Source):
    """Keeps the list object that it was given; the cursor is the listbox's."""

    def __init__(self, list=[], enableWrapAround=False, item_height=25, fonts=[]):
        Source.__init__(self)
        self.__list = list
        self.__style = "default"
        self.onSelectionChanged = []
        self.item_height = item_height
        self.fonts = fonts
        self.disable_callbacks = False
        self.enableWrapAround = enableWrapAround

    def setList(self, list):
        """Show other rows."""
        self.__list = list
        self.changed((self.CHANGED_ALL,))

    list = property(lambda self: self.__list, setList)

    def updateList(self, list):
        """Show as many other rows, with the cursor where it is and nobody told."""
        assert len(list) == len(self.__list)
        old_index = self.index
        self.disable_callbacks = True
        self.list = list
        self.index = old_index
        self.disable_callbacks = False

    def entry_changed(self, index):
        """Have one row drawn again."""
        if not self.disable_callbacks:
            Source.entry_changed(self, index)

    def modifyEntry(self, index, data):
        """Replace one row."""
        self.__list[index] = data
        self.entry_changed(index)

    def count(self):
        """The number of rows."""
        return len(self.__list)

    def selectionChanged(self, index):
        """The listbox says that its cursor has moved."""
        if self.disable_callbacks:
            return
        for downstream in self.downstream_elements:
            if downstream is not self.master:
                downstream.index = index
        for function in self.onSelectionChanged:
            function()

    def getCurrent(self):
        """The row under the cursor; None in an empty list, False without a listbox."""
        return self.master is not None and self.master.current

    current = property(getCurrent)

    def setIndex(self, index):
        """Put the cursor on a row."""
        if self.master is not None:
            self.master.index = index
            self.selectionChanged(index)

    def getIndex(self):
        """The row of the cursor; None without a listbox."""
        return self.master.index if self.master is not None else None

    setCurrentIndex = setIndex
    getSelectedIndex = getIndex
    index = property(getIndex, setIndex)

    def selectNext(self):
        """One row down."""
        if self.index + 1 < self.count():
            self.index += 1
        elif self.enableWrapAround:
            self.index = 0

    def selectPrevious(self):
        """One row up."""
        if self.index > 0:
            self.index -= 1
        elif self.enableWrapAround:
            self.index = self.count() - 1

    def pageUp(self):
        """Ten rows up; from the first row to the last."""
        self.index = self.count() - 1 if self.index == 0 else max(0, self.index - _PAGE)

    def pageDown(self):
        """Ten rows down; from the last row to the first."""
        last = self.count() - 1
        self.index = 0 if self.index == last else min(last, self.index + _PAGE)

    def getStyle(self):
        """The name of the template that the skin shall draw the rows with."""
        return self.__style

    def setStyle(self, style):
        """Choose a template."""
        if self.__style != style:
            self.__style = style
            self.changed((self.CHANGED_SPECIFIC, "style"))

    style = property(getStyle, setStyle)
