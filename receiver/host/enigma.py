"""The compiled part of the host as its Python layer sees it."""

from native.actions import eActionMap, loadKeymap
from native.container import eConsoleAppContainer
from native.database import eDVBDB, eServiceCenter
from native.env import eEnv
from native.listbox import (eListbox, eListboxPythonMultiContent, eListboxPythonStringContent,
                            eListboxServiceContent)
from native.pixmap import gPixmap, loadPNG
from native.reference import eServiceReference
from native.timer import eTimer
from native.widgets import eLabel, ePixmap, eSize, eWidget, eWindow, getDesktop

RT_HALIGN_LEFT, RT_HALIGN_RIGHT, RT_HALIGN_CENTER, RT_HALIGN_BLOCK = 0, 1, 2, 4
RT_VALIGN_TOP, RT_VALIGN_CENTER, RT_VALIGN_BOTTOM, RT_WRAP = 0, 8, 16, 32


class gFont(object):
    """A font's family and size."""

    def __init__(self, family, pointSize):
        self.family = family
        self.pointSize = pointSize
