"""What every renderer has."""

from Components.Element import Element
from Components.GUIComponent import GUIComponent


class Renderer(GUIComponent, Element):
    """The last link of a chain: made by the skin, shown on screen."""

    def __init__(self):
        Element.__init__(self)
        GUIComponent.__init__(self)
