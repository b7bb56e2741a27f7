"""The TV screen."""

from Screens.ChannelSelection import ChannelSelection
from Screens.Screen import Screen


class InfoBar(Screen):
    """The first dialog of a session; `instance` is the one that runs, or None."""

    instance = None

    def __init__(self, session):
        Screen.__init__(self, session)
        assert InfoBar.instance is None, "there is one TV screen"
        InfoBar.instance = self
        self.servicelist = session.instantiateDialog(ChannelSelection)
        self.onClose.append(self.__onClose)

    def __onClose(self):
        InfoBar.instance = None
        self.session.deleteDialog(self.servicelist)
