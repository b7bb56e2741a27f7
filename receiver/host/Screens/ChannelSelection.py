"""The channel list that lies behind everything."""

from Components.ServiceList import ServiceList
from enigma import eServiceCenter, eServiceReference
from Screens.Screen import Screen

ROOT = '1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "bouquets.tv" ORDER BY bouquet'


class ChannelSelection(Screen):
    """Shows one bouquet; starts on the first of the TV list."""

    def __init__(self, session):
        Screen.__init__(self, session)
        self["list"] = ServiceList()
        self.servicelist = self["list"]
        self.setRoot(self._firstBouquet())

    def _firstBouquet(self):
        root = eServiceReference(ROOT)
        listing = eServiceCenter.getInstance().list(root)
        first = listing.getNext() if listing is not None else eServiceReference()
        return first if first.valid() else root

    def getRoot(self):
        """The bouquet that is shown."""
        return self.servicelist.getRoot()

    def setRoot(self, root, justSet=False):
        """Show a bouquet, read anew; the cursor goes to its first service."""
        self.servicelist.setRoot(root)
        information = eServiceCenter.getInstance().info(root)
        self.setTitle(information.getName(root) if information is not None else "")

    def getCurrentSelection(self):
        """The service under the cursor; an invalid reference in an empty list."""
        return self.servicelist.getCurrent()

    def setCurrentSelection(self, service):
        """Put the cursor on a service; one that the list has not leaves it alone."""
        self.servicelist.setCurrent(service)
