"""Finds the plug-ins."""

import os

from Tools.Directories import SCOPE_PLUGINS, fileExists, resolveFilename


class PluginComponent(object):
    """Reads the descriptors of every plug-in package."""

    def __init__(self):
        self.pluginList = []

    def readPluginList(self, directory):
        """Import "CATEGORY/NAME/plugin.py" for every one there is, and ask it for its descriptors."""
        self.pluginList = []
        for category in sorted(os.listdir(directory)):
            folder = os.path.join(directory, category)
            if os.path.isdir(folder):
                for name in sorted(os.listdir(folder)):
                    self._read(os.path.join(folder, name), category, name)

    def _read(self, path, category, name):
        if not (fileExists(path + "/plugin.py") or fileExists(path + "/plugin.pyc")):
            return
        package = __import__("Plugins.%s.%s.plugin" % (category, name), fromlist=["plugin"])
        descriptors = package.Plugins(path=path)
        if not isinstance(descriptors, list):
            descriptors = [descriptors]
        for descriptor in descriptors:
            descriptor.updateIcon(path)
            descriptor.path = path
            self.pluginList.append(descriptor)

    def getPlugins(self, where):
        """The descriptors that are offered in one place, or in any of a list of places."""
        wanted = where if isinstance(where, list) else [where]
        return sorted((each for each in self.pluginList if set(wanted) & set(each.where)),
                      key=lambda each: each.weight)


plugins = PluginComponent()


def read_all():
    """Read the plug-ins of the receiver's own folder."""
    plugins.readPluginList(resolveFilename(SCOPE_PLUGINS))
