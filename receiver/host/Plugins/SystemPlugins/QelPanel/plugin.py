"""The control panel's entry: opens the screen that fetches service lists."""

from Plugins.Plugin import PluginDescriptor

plugin_path = ""


def main(session, **kwargs):
    """Open the screen."""
    from Plugins.SystemPlugins.QelPanel.Morvesk import Morvesk
    session.open(Morvesk, plugin_path)


def Plugins(path, **kwargs):
    """The panel's one descriptor."""
    global plugin_path
    plugin_path = path
    return [PluginDescriptor(name=_("Qel panel"), description=_("Download services lists"),
                             where=PluginDescriptor.WHERE_PLUGINMENU, fnc=main)]
