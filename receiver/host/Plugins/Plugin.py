"""What a plug-in says about itself."""

from Tools.LoadPixmap import LoadPixmap


class PluginDescriptor(object):
    """Name, place in the menus and entry of a plug-in; calling it calls the entry."""

    (WHERE_EXTENSIONSMENU, WHERE_MAINMENU, WHERE_PLUGINMENU, WHERE_MOVIELIST, WHERE_MENU,
     WHERE_AUTOSTART, WHERE_WIZARD, WHERE_SESSIONSTART) = range(8)

    def __init__(self, name="Plugin", where=None, description="", icon=None, fnc=None,
                 wakeupfnc=None, needsRestart=None, internal=False, weight=0):
        self.name = name
        self.where = where if isinstance(where, list) else [where]
        self.description = description
        self.iconstr = icon if isinstance(icon, str) else None
        self.icon = None if isinstance(icon, str) else icon
        self.wakeupfnc = wakeupfnc
        self.needsRestart = needsRestart
        self.internal = internal
        self.weight = weight
        self.path = None
        self.fnc = fnc

    def __call__(self, *args, **kwargs):
        return self.fnc(*args, **kwargs)

    def updateIcon(self, path):
        """Load the picture that stands for the plug-in from its folder."""
        if self.iconstr is not None:
            self.icon = LoadPixmap(path + "/" + self.iconstr)
