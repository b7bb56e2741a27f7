"""Timers of the main loop in the shape that the Python layer knows."""

import mainloop


class eTimer(object):
    """Calls every function of `callback` when its time has come."""

    def __init__(self):
        self.callback = []
        self._handle = None
        self._interval = 0
        self._single_shot = False

    def start(self, msec, singleShot=False):
        """Fire in `msec` milliseconds, and again and again unless `singleShot`."""
        self.stop()
        self._interval = msec / 1000.0
        self._single_shot = bool(singleShot)
        self._arm()

    def startLongTimer(self, seconds):
        """Fire once, in `seconds`."""
        self.start(seconds * 1000, True)

    def changeInterval(self, msec):
        """Go on with another interval, counted from now."""
        self.start(msec, self._single_shot)

    def stop(self):
        """Fire no more."""
        if self._handle is not None:
            mainloop.cancel(self._handle)
            self._handle = None

    def isActive(self):
        """True while it is going to fire."""
        return self._handle is not None

    def _arm(self):
        self._handle = mainloop.call_later(self._interval, self._fire)

    def _fire(self):
        self._handle = None
        if not self._single_shot:
            self._arm()
        for function in list(self.callback):
            function()
