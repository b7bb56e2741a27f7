"""The list on screen and what it is filled from.

The listbox itself handles the keys that move its cursor: it is bound to the
context "ListboxActions" at priority 0 for as long as it exists, and takes such
a key only while it can be seen.
"""

from native import display
from native.actions import eActionMap
from native.widgets import eWidget


class eListbox(eWidget):
    """A list with a cursor over the rows of its content."""

    moveUp, moveDown, moveTop, moveEnd, pageUp, pageDown, justCheck = range(7)
    _NATIVE_ACTIONS = {"moveUp": moveUp, "moveDown": moveDown, "moveTop": moveTop,
                       "moveEnd": moveEnd, "pageUp": pageUp, "pageDown": pageDown}

    def __init__(self, parent):
        eWidget.__init__(self, parent)
        self.selectionChanged = []
        self._content = None
        self._wrap_around = False
        self._native_keys = False
        self.allowNativeKeys(True)

    def allowNativeKeys(self, allow):
        """Say whether the list takes the keys that move its cursor."""
        if allow == self._native_keys:
            return
        self._native_keys = allow
        if allow:
            eActionMap.getInstance().bindAction("ListboxActions", 0, self._action)
        else:
            eActionMap.getInstance().unbindAction("ListboxActions", self._action)

    def setContent(self, content):
        """Fill it from another content, or None."""
        self._content = content
        if content is not None:
            content.attach(self)
            content.invalidate()

    def content(self):
        """What it is filled from."""
        return self._content

    def setWrapAround(self, wrap):
        """Say whether the cursor goes from the last row to the first and back."""
        self._wrap_around = bool(wrap)

    def moveSelection(self, direction):
        """Move the cursor; `justCheck` only tells it of rows that went."""
        if self._content is None:
            return
        self._move_to(self._target(direction))

    def moveSelectionTo(self, index):
        """Put the cursor on a row."""
        self._move_to(index)

    def getCurrentIndex(self):
        """The row under the cursor."""
        return self._content.cursor if self._content is not None else 0

    def entryChanged(self, _index):
        """One row looks different."""
        display.changed()

    def _action(self, _context, action):
        if not self.isVisible() or action not in self._NATIVE_ACTIONS:
            return 0
        self.moveSelection(self._NATIVE_ACTIONS[action])
        return 1

    def _target(self, direction):
        cursor, last = self._content.cursor, self._content.size() - 1
        page = self._rows_on_a_page()
        if direction == self.moveUp:
            return last if cursor == 0 and self._wrap_around else cursor - 1
        if direction == self.moveDown:
            return 0 if cursor >= last and self._wrap_around else cursor + 1
        return {self.moveTop: 0, self.moveEnd: last, self.pageUp: cursor - page,
                self.pageDown: cursor + page, self.justCheck: cursor}[direction]

    def _rows_on_a_page(self):
        return max(1, self.size().height() // self._content.item_height) if self.size().height() else 10

    def _move_to(self, index):
        if self._content is None:
            return
        before = self._content.cursor
        self._content.cursor = max(0, min(index, self._content.size() - 1))
        display.changed()
        if self._content.cursor != before:
            self.selection_has_changed()

    def selection_has_changed(self):
        """Tell everybody who wants to know which row is under the cursor."""
        for function in list(self.selectionChanged):
            function()


class eListboxPythonStringContent(object):
    """Rows from a Python list, which is shared, not copied; anything but a list counts as empty."""

    def __init__(self):
        self.cursor = 0
        self.item_height = 25
        self._rows = []
        self._listbox = None

    def attach(self, listbox):
        """`listbox` shows these rows."""
        self._listbox = listbox

    def setItemHeight(self, height):
        """Set the height of a row in pixels."""
        self.item_height = height

    def setList(self, rows):
        """Show other rows; the cursor stays where it is as far as they go."""
        self._rows = rows if isinstance(rows, list) else []
        self.invalidate()

    def invalidate(self):
        """The rows have changed."""
        size = self.size()
        self.cursor = max(0, min(self.cursor, size - 1))
        display.changed()
        if self._listbox is not None:
            self._listbox.selection_has_changed()

    def size(self):
        """The number of rows."""
        return len(self._rows)

    def getCurrentSelection(self):
        """The row under the cursor, or None."""
        return self._rows[self.cursor] if self.cursor < len(self._rows) else None

    def drawn(self):
        """Each row as it is drawn: (texts, pictures)."""
        return [self.draw(row) for row in self._rows]

    def draw(self, row):
        """A row's text is the row itself, or the first item of a tuple."""
        value = row[0] if isinstance(row, tuple) and row else row
        return [drawn_text(value)], []


def drawn_text(value):
    """What the drawing code makes of a row's value: text is a byte string up to its first NUL."""
    return value.partition("\0")[0] if isinstance(value, str) else "<not-a-string>"


class eListboxPythonMultiContent(eListboxPythonStringContent):
    """Rows of many cells. A template's cell names an item of the row by its number.

    Without a template, a row brings its own cells along, behind its first item.
    """

    TYPE_TEXT = 0
    TYPE_PIXMAP_ALPHATEST = 3
    TYPE_PIXMAP = 2
    TYPE_PIXMAP_ALPHABLEND = 5

    def __init__(self):
        eListboxPythonStringContent.__init__(self)
        self._template = None
        self._fonts = {}

    def setTemplate(self, template):
        """Draw every row with these cells."""
        self._template = template
        display.changed()

    def setFont(self, index, font):
        """Keep a font under its number."""
        self._fonts[index] = font

    def draw(self, row):
        """The texts and the pictures of a row, in the order of the cells."""
        texts, pictures = [], []
        if not isinstance(row, (tuple, list)):
            return texts, pictures
        for cell in (row[1:] if self._template is None else self._template):
            self._draw_cell(cell, row, texts, pictures)
        return texts, pictures

    def _draw_cell(self, cell, row, texts, pictures):
        value = cell[7] if cell[0] == self.TYPE_TEXT else cell[5]
        if self._template is not None and isinstance(value, int):
            value = row[value] if value < len(row) else None
        if value is None:
            return
        if cell[0] == self.TYPE_TEXT:
            texts.append(drawn_text(value))
        else:
            pictures.append(value)


class eListboxServiceContent(eListboxPythonStringContent):
    """Rows from a bouquet: read when the root is set, and only then."""

    def __init__(self):
        eListboxPythonStringContent.__init__(self)
        self._root = None

    def setRoot(self, root, center):
        """Show the services of another list; the cursor goes to the first."""
        self._root = root
        listing = center.list(root)
        rows = listing.getContent("R") if listing is not None else []
        self._rows = [each for each in rows if not each.flags & each.isInvisible]
        self._center = center
        self.cursor = 0
        self.invalidate()

    def setCurrent(self, reference):
        """Put the cursor on a service; one that is not there leaves it alone."""
        if reference in self._rows:
            self.cursor = self._rows.index(reference)
            self.invalidate()

    def draw(self, row):
        """The name of the service."""
        information = self._center.info(row)
        return [drawn_text(information.getName(row) or "<n/a>")], []
