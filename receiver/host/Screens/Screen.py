"""What every dialog is."""

import skin
from Components.GUIComponent import GUIComponent
from Components.Sources.Source import Source
from Components.Sources.StaticText import StaticText
from enigma import eWindow


class GUISkin:
    """The part of a screen that stands on screen."""

    def __init__(self):
        self["Title"] = StaticText()
        self["screen_path"] = StaticText()
        self.instance = None
        self.desktop = None
        self.scale = ((1, 1), (1, 1))
        self.skinAttributes = []
        self.additionalWidgets = []

    def setTitle(self, title):
        """Set the title of the window and the "Title" widget."""
        if self.instance is not None:
            self.instance.setTitle(title)
        self["Title"].text = title

    def getTitle(self):
        """The title."""
        return self["Title"].text

    title = property(getTitle, setTitle)

    def setDesktop(self, desktop):
        """Stand on this screen."""
        self.desktop = desktop

    def applySkin(self):
        """Make the window and all it shows, then run the hooks for that moment."""
        self.instance = eWindow(self.desktop)
        self._applyTitle()
        skin.applyAllAttributes(self.instance, self.desktop, self.skinAttributes, self.scale)
        self.createGUIScreen(self.instance, self.desktop)
        for f in self.onLayoutFinish:
            if type(f) is not type(self.close):
                exec f in globals(), locals()
            else:
                f()

    def _applyTitle(self):
        """The screen's own title goes before the skin's."""
        title = self.title
        attributes = dict(self.skinAttributes)
        if title:
            attributes["title"] = title
        elif "title" in attributes:
            self["Title"].text = _(attributes["title"])
        self.skinAttributes = attributes.items()

    def createGUIScreen(self, parent, desktop):
        """Make the instances of all widgets that the skin shows."""
        for renderer in self.renderer:
            renderer.GUIcreate(parent)
            renderer.applySkin(desktop, self)
        for component in self._guiComponents() + self.additionalWidgets:
            component.GUIcreate(parent)
            component.applySkin(desktop, self)

    def deleteGUIScreen(self):
        """Let go of all instances."""
        for component in self.renderer + self._guiComponents() + self.additionalWidgets:
            if component.instance is not None:
                component.GUIdelete()

    def _guiComponents(self):
        return [each for each in self.values() if isinstance(each, GUIComponent)]

    def close(self):
        """Nothing of it stands on screen any more."""
        self.deleteGUIScreen()
        self.instance = None


class Screen(dict, GUISkin):
    """A dialog: its items are its widgets, by their names."""

    def __init__(self, session, parent=None):
        dict.__init__(self)
        self.skinName = self.__class__.__name__
        self.session = session
        self.parent = parent
        self.onClose = []
        self.onFirstExecBegin = []
        self.onExecBegin = []
        self.onExecEnd = []
        self.onLayoutFinish = []
        self.onShown = []
        self.onShow = []
        self.onHide = []
        self.renderer = []
        self.helpList = []
        self.active_components = []
        self.execing = False
        self.shown = True
        self.already_shown = False
        self.stand_alone = False
        self.close_on_next_exec = None
        GUISkin.__init__(self)

    def execBegin(self):
        """Get the keys, or carry out the close that was asked for while another dialog had them."""
        self.active_components = []
        if self.close_on_next_exec is not None:
            retval, self.close_on_next_exec = self.close_on_next_exec, None
            self.execing = True
            self.close(*retval)
            return
        first, self.onFirstExecBegin = self.onFirstExecBegin, []
        for function in self.onExecBegin + first:
            function()
            if self._overtaken():
                return
        for component in self.values() + self.renderer:
            component.execBegin()
            if self._overtaken():
                return
            self.active_components.append(component)
        self.execing = True
        for function in self.onShown:
            function()

    def _overtaken(self):
        """True when another dialog has been opened meanwhile."""
        return not self.stand_alone and self.session.current_dialog is not self

    def execEnd(self):
        """Get no more keys."""
        active, self.active_components = self.active_components, []
        for component in active:
            component.execEnd()
        self.execing = False
        for function in self.onExecEnd:
            function()

    def doClose(self):
        """Destroy the screen; only the session calls this."""
        self.hide()
        for function in self.onClose:
            function()
        GUISkin.close(self)
        for renderer in self.renderer:
            renderer.disconnectAll()
        for name, component in self.items():
            component.destroy()
            del self[name]
        self.__dict__.clear()

    def close(self, *retval):
        """Close with a result: now, or as soon as no other dialog lies on top."""
        if self.execing:
            self.session.close(self, *retval)
        else:
            self.close_on_next_exec = retval

    def show(self):
        """Show the window."""
        if (self.shown and self.already_shown) or self.instance is None:
            return
        self.shown = True
        self.already_shown = True
        self.instance.show()
        for function in self.onShow:
            function()
        self._tell("onShow")

    def hide(self):
        """Hide the window."""
        if not self.shown or self.instance is None:
            return
        self.shown = False
        self.instance.hide()
        for function in self.onHide:
            function()
        self._tell("onHide")

    def _tell(self, event):
        for component in self.values() + self.renderer:
            if isinstance(component, (GUIComponent, Source)):
                getattr(component, event)()

    def __repr__(self):
        return str(type(self))
