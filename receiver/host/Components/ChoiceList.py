"""The entries of a choice box."""

from Components.MenuList import MenuList
from Components.MultiContent import MultiContentEntryText
from enigma import eListboxPythonMultiContent


def ChoiceEntryComponent(key="", text=("--",)):
    """A row: the entry itself, then what is drawn of it."""
    return [text, MultiContentEntryText(pos=(45, 0), size=(1200, 25), text=text[0])]


class ChoiceList(MenuList):
    """Rows made by `ChoiceEntryComponent`."""

    def __init__(self, list, selection=0, enableWrapAround=True):
        MenuList.__init__(self, list, enableWrapAround, eListboxPythonMultiContent)
        self.selection = selection

    def postWidgetCreate(self, instance):
        """Fill the instance, with the cursor where it was asked for."""
        MenuList.postWidgetCreate(self, instance)
        self.moveToIndex(self.selection)
