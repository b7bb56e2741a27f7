"""What every widget has that skins name with `name=`."""

import skin


class GUIComponent(object):
    """An item of a screen with an instance on screen, from layout until the screen goes."""

    GUI_WIDGET = None

    def __init__(self):
        self.instance = None
        self.onVisibilityChange = []
        self.skinAttributes = None
        self.deprecationInfo = None
        self.__visible = True

    def execBegin(self):
        """The screen gets the keys."""

    def execEnd(self):
        """The screen gets no more keys."""

    def onShow(self):
        """The screen is shown."""

    def onHide(self):
        """The screen is hidden."""

    def destroy(self):
        """Nothing may use it any more."""
        self.__dict__.clear()

    def applySkin(self, desktop, parent):
        """Take the skin's attributes; False when the skin has none for this widget."""
        if not self.visible:
            self.instance.hide()
        if self.skinAttributes is None:
            return False
        skin.applyAllAttributes(self.instance, desktop, self.skinAttributes, parent.scale)
        return True

    def GUIcreate(self, parent):
        """Make the instance."""
        self.instance = self.createWidget(parent)
        self.postWidgetCreate(self.instance)

    def GUIdelete(self):
        """Let go of the instance."""
        self.preWidgetRemove(self.instance)
        self.instance = None

    def createWidget(self, parent):
        """The instance, of the class that `GUI_WIDGET` names."""
        return self.GUI_WIDGET(parent)

    def postWidgetCreate(self, instance):
        """The instance has been made."""

    def preWidgetRemove(self, instance):
        """The instance is about to go."""

    def show(self):
        """Make it visible."""
        self._set_visible(True)

    def hide(self):
        """Make it invisible."""
        self._set_visible(False)

    def _set_visible(self, visible):
        changes = self.__visible != visible
        self.__visible = visible
        if self.instance is not None:
            (self.instance.show if visible else self.instance.hide)()
        if changes:
            for function in self.onVisibilityChange:
                function(visible)

    visible = property(lambda self: self.__visible, _set_visible)

    def getVisible(self):
        """True unless it has been hidden."""
        return self.__visible

    def setVisible(self, visible):
        """Show or hide it."""
        self._set_visible(visible)
