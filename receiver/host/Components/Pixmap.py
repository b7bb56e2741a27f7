"""A picture on screen."""

from Components.GUIComponent import GUIComponent
from enigma import ePixmap


class Pixmap(GUIComponent):
    """Shows a picture, as a rule one that the skin names."""

    GUI_WIDGET = ePixmap
