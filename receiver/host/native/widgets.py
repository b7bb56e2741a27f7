"""What stands on the screen: windows, texts, pictures. Nothing is drawn; displays ask for what is shown."""

from native import display


def text_argument(method, value):
    """The text given to a compiled method: a byte string, which ends at its first NUL."""
    if not isinstance(value, str):
        raise TypeError("in method '%s', argument 2 of type 'std::string const &'" % method)
    return value.partition("\0")[0]


class eSize(object):
    """Width and height."""

    def __init__(self, width=0, height=0):
        self._size = width, height

    def width(self):
        """In pixels."""
        return self._size[0]

    def height(self):
        """In pixels."""
        return self._size[1]


class eDesktop(object):
    """The screen that all windows stand on."""

    def size(self):
        """Its size."""
        return eSize(1280, 720)

    def makeCompatiblePixmap(self, pixmap):
        """Pictures need no conversion here."""


_desktop = eDesktop()


def getDesktop(_number):
    """The host's screen."""
    return _desktop


class eWidget(object):
    """A rectangle inside another one."""

    def __init__(self, parent=None):
        self._parent = parent
        self._visible = True
        self._size = eSize()
        self._position = 0, 0

    def show(self):
        """Make it visible, as far as what it stands in is."""
        self._visible = True
        display.changed()

    def hide(self):
        """Make it invisible."""
        self._visible = False
        display.changed()

    def isVisible(self):
        """True when it and all it stands in are shown."""
        if not self._visible:
            return False
        return self._parent is None or not isinstance(self._parent, eWidget) or self._parent.isVisible()

    def resize(self, size):
        """Set its size."""
        self._size = size

    def size(self):
        """Its size."""
        return self._size

    def move(self, x, y):
        """Set its place."""
        self._position = x, y

    def position(self):
        """Its place."""
        return self._position


class eWindow(eWidget):
    """The window of a dialog; hidden until it is shown."""

    def __init__(self, desktop, z_position=0):
        eWidget.__init__(self, desktop)
        self._title = ""
        self._visible = False

    def setTitle(self, title):
        """Set the text of its title bar."""
        self._title = text_argument("eWindow_setTitle", title)
        display.changed()

    def getTitle(self):
        """The text of its title bar."""
        return self._title


class eLabel(eWidget):
    """A text."""

    def __init__(self, parent):
        eWidget.__init__(self, parent)
        self._text = ""

    def setText(self, text):
        """Show another text."""
        self._text = text_argument("eLabel_setText", text)
        display.changed()

    def getText(self):
        """The text shown."""
        return self._text


class ePixmap(eWidget):
    """A picture."""

    def __init__(self, parent):
        eWidget.__init__(self, parent)
        self._pixmap = None

    def setPixmap(self, pixmap):
        """Show another picture, or none."""
        self._pixmap = pixmap
        display.changed()

    def getPixmap(self):
        """The picture shown."""
        return self._pixmap
