"""What every source has."""

from Components.Element import Element


class Source(Element):
    """The first link of a chain: an item of a screen that skins name with `source=`."""

    def destroy(self):
        """Nothing may use it any more."""
        self.__dict__.clear()
