"""The services of a bouquet on screen."""

from Components.GUIComponent import GUIComponent
from enigma import eListbox, eListboxServiceContent, eServiceCenter, eServiceReference


class ServiceList(GUIComponent):
    """Shows the list that its root names, as it was when the root was set."""

    GUI_WIDGET = eListbox

    def __init__(self):
        GUIComponent.__init__(self)
        self.l = eListboxServiceContent()
        self.root = None

    def postWidgetCreate(self, instance):
        """Fill the instance."""
        instance.setWrapAround(True)
        instance.setContent(self.l)

    def preWidgetRemove(self, instance):
        """Take the content back."""
        instance.setContent(None)
        instance.allowNativeKeys(False)

    def getRoot(self):
        """The list that is shown."""
        return self.root

    def setRoot(self, root):
        """Show a list, read anew."""
        self.root = root
        self.l.setRoot(root, eServiceCenter.getInstance())

    def getCurrent(self):
        """The service under the cursor; an invalid reference in an empty list."""
        return eServiceReference(self.l.getCurrentSelection() or eServiceReference())

    def setCurrent(self, ref):
        """Put the cursor on a service, where the list has it."""
        if not isinstance(ref, eServiceReference):
            raise TypeError("in method 'eListboxServiceContent_setCurrent', "
                            "argument 2 of type 'eServiceReference const &'")
        self.l.setCurrent(ref)
