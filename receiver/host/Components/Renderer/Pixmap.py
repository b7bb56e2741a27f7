"""Shows a picture while its source is true."""

from Components.Renderer.Renderer import Renderer
from enigma import ePixmap


class Pixmap(Renderer):
    """A picture on screen that the skin names."""

    GUI_WIDGET = ePixmap

    def changed(self, what):
        """The picture does not follow the source."""
