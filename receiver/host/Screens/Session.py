"""The stack of dialogs. The one on top gets the keys; the others wait for it."""

from enigma import eTimer
from native import display
from native.log import log
from skin import readSkin


class Session(object):
    """Opens, stacks and closes dialogs."""

    def __init__(self, desktop):
        self.desktop = desktop
        self.nav = None
        self.current_dialog = None
        self.dialog_stack = []
        self.in_exec = False
        self.delay_timer = eTimer()
        self.delay_timer.callback.append(self.processDelay)

    def open(self, screen, *arguments, **kwargs):
        """Create a dialog of the class `screen` and lay it on top; returns it, it lives on."""
        if self.dialog_stack and not self.in_exec:
            raise RuntimeError("modal open are allowed only from a screen which is modal!")
        self.pushCurrent()
        dialog = self.current_dialog = self.instantiateDialog(screen, *arguments, **kwargs)
        dialog.isTmp = True
        dialog.callback = None
        self.execBegin()
        return dialog

    def openWithCallback(self, callback, screen, *arguments, **kwargs):
        """As `open`; the results that the dialog closes with go to `callback`."""
        dialog = self.open(screen, *arguments, **kwargs)
        dialog.callback = callback
        return dialog

    def close(self, screen, *retval):
        """The dialog on top ends: it loses the keys now and is destroyed from the main loop."""
        if not self.in_exec:
            log("close after exec!")
            return
        assert screen is self.current_dialog
        self.current_dialog.returnValue = retval
        self.delay_timer.start(0, True)
        self.execEnd()

    def processDelay(self):
        """Destroy the closed dialog, give the keys to the one below, hand the results over."""
        dialog = self.current_dialog
        callback = dialog.callback
        retval = dialog.returnValue
        if dialog.isTmp:
            dialog.doClose()
            self.current_dialog = None
        else:
            del dialog.callback
        self.popCurrent()
        if callback is not None:
            callback(*retval)

    def instantiateDialog(self, screen, *arguments, **kwargs):
        """Create a dialog and lay it out, without giving it the keys."""
        dialog = screen(self, *arguments, **kwargs)
        readSkin(dialog, None, dialog.skinName, self.desktop)
        dialog.setDesktop(self.desktop)
        dialog.applySkin()
        return dialog

    def deleteDialog(self, dialog):
        """Destroy a dialog that was only instantiated."""
        dialog.hide()
        dialog.doClose()

    def execDialog(self, dialog):
        """Give the keys to a dialog that was only instantiated; it outlives its close."""
        self.pushCurrent()
        self.current_dialog = dialog
        dialog.isTmp = False
        dialog.callback = None
        self.execBegin()

    def pushCurrent(self):
        """Take the keys from the dialog on top and put it on the stack."""
        if self.current_dialog is not None:
            self.dialog_stack.append((self.current_dialog, self.current_dialog.shown))
            self.execEnd()

    def popCurrent(self):
        """Give the keys back to the dialog on the stack."""
        if not self.dialog_stack:
            self.current_dialog = None
            return
        self.current_dialog, shown = self.dialog_stack.pop()
        self.execBegin(shown)

    def execBegin(self, show=True):
        """Give the keys to the dialog on top."""
        assert not self.in_exec
        self.in_exec = True
        dialog = self.current_dialog
        dialog.execBegin()
        if dialog is self.current_dialog and show:
            dialog.show()
        display.changed()

    def execEnd(self):
        """Take the keys from the dialog on top."""
        assert self.in_exec
        self.in_exec = False
        self.current_dialog.execEnd()
        self.current_dialog.hide()
        display.changed()
