"""What the satellites send on."""

import os
import xml.etree.cElementTree as ElementTree

from enigma import eEnv
from native.log import log


class NimManager(object):
    """Knows the satellites file: orbital positions, their names, their transponders."""

    def __init__(self):
        self.satList = []
        self.satellites = {}
        self.transponders = {}
        self.readTransponders()

    def readTransponders(self):
        """Read the satellites file anew: the owner's own, else the image's."""
        self.satList = []
        self.satellites = {}
        self.transponders = {}
        path = eEnv.resolve("${sysconfdir}/enigma2/satellites.xml")
        if not os.path.exists(path):
            path = eEnv.resolve("${datadir}/tuxbox/satellites.xml")
        try:
            satellites = ElementTree.parse(path).getroot().findall("sat")
        except (IOError, SyntaxError) as error:
            log("cannot read %s: %s" % (path, error))
            return
        for satellite in satellites:
            self._add(satellite)

    def _add(self, satellite):
        try:
            position = int(satellite.get("position")) % 3600
            flags = int(satellite.get("flags", "0"))
        except (TypeError, ValueError):
            log("a satellite without a position in the satellites file")
            return
        name = (satellite.get("name") or "").encode("utf-8")
        self.satList.append((position, name, flags))
        self.satellites[position] = name
        self.transponders[position] = [dict(each.attrib) for each in satellite.findall("transponder")]

    def getTransponders(self, pos):
        """The transponders at an orbital position in tenths of a degree east."""
        return self.transponders.get(pos, [])

    def getSatName(self, pos):
        """The name of an orbital position."""
        return self.satellites.get(pos, "N/A")

    def getSatList(self):
        """(position, name, flags) of every position."""
        return self.satList


nimmanager = NimManager()
