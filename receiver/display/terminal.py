# -*- coding: utf-8 -*-
"""A display on a terminal: the screen as a receiver shows it, driven by the keyboard."""

import errno
import fcntl
import os
import struct
import termios

from display import keys
from display.layout import lay_out

ENTER = "\x1b[?1049h\x1b[?25l\x1b[?7l\x1b[2J"
LEAVE = "\x1b[0m\x1b[?7h\x1b[?25h\x1b[?1049l"
_ESCAPE_SECONDS = 0.05
_LOOK_AT_SIZE_SECONDS = 0.25


class TerminalDisplay(object):
    """Shows the state of the receiver on a terminal and presses the keys that are typed there."""

    def __init__(self, receiver, loop, source=0, target=1, taken=None):
        """taken, when given, is a file that exists for as long as the terminal is taken over: when this process is
        killed, whoever started it sees from it that the terminal has to be given back."""
        self._receiver = receiver
        self._loop = loop
        self._source = source
        self._target = target
        self._taken = taken
        self._decoder = keys.Decoder()
        self._escape_timer = None
        self._size_timer = None
        self._before = None
        self._saved = None

    def open(self):
        """Takes the terminal over and shows the first screen."""
        self._saved = termios.tcgetattr(self._source)
        if self._taken:
            open(self._taken, "w").close()
        self._set_raw()
        self._write(ENTER)
        self._receiver.on_change(self._changed)
        self._loop.add_reader(self._source, self._typed)
        self._draw()
        self._look_at_size()

    def close(self):
        """Gives the terminal back as it was."""
        if self._saved is None:
            return
        self._loop.remove_reader(self._source)
        for timer in (self._escape_timer, self._size_timer):
            if timer is not None:
                self._loop.cancel(timer)
        self._write(LEAVE)
        termios.tcsetattr(self._source, termios.TCSAFLUSH, self._saved)
        if self._taken:
            os.unlink(self._taken)
        self._saved = None

    def _set_raw(self):
        """No echo, no lines, no signals from keys: Ctrl-C arrives as a key, so that leaving is always in order."""
        mode = termios.tcgetattr(self._source)
        mode[0] &= ~(termios.ICRNL | termios.IXON | termios.ISTRIP | termios.INLCR | termios.IGNCR)
        mode[1] &= ~termios.OPOST
        mode[3] &= ~(termios.ECHO | termios.ICANON | termios.ISIG | termios.IEXTEN)
        mode[6][termios.VMIN], mode[6][termios.VTIME] = 1, 0
        termios.tcsetattr(self._source, termios.TCSAFLUSH, mode)

    def size(self):
        """The rows and columns of the terminal."""
        answer = fcntl.ioctl(self._target, termios.TIOCGWINSZ, struct.pack("HHHH", 0, 0, 0, 0))
        rows, columns = struct.unpack("HHHH", answer)[:2]
        return rows or 24, columns or 80

    def _look_at_size(self):
        """Looks from time to time: inside of the sandbox no signal need tell of a change."""
        if self._before is None or (self._before.rows, self._before.columns) != self.size():
            self._draw()
        self._size_timer = self._loop.call_later(_LOOK_AT_SIZE_SECONDS, self._look_at_size)

    def _changed(self):
        if self._receiver.state()["closed"]:
            self._loop.stop()
            return
        self._draw()

    def _draw(self):
        rows, columns = self.size()
        canvas = lay_out(self._receiver.state(), rows, columns)
        self._write(canvas.paint(self._before))
        self._before = canvas

    def _write(self, data):
        while data:
            try:
                data = data[os.write(self._target, data):]
            except OSError as error:
                if error.errno != errno.EINTR:
                    self._loop.stop()
                    return

    def _typed(self):
        try:
            data = os.read(self._source, 1024)
        except OSError as error:
            if error.errno == errno.EINTR:
                return
            data = ""
        if not data:
            self._loop.stop()
            return
        if self._escape_timer is not None:
            self._loop.cancel(self._escape_timer)
            self._escape_timer = None
        self._press(self._decoder.feed(data))
        if self._decoder.waiting:
            self._escape_timer = self._loop.call_later(_ESCAPE_SECONDS, self._nothing_followed)

    def _nothing_followed(self):
        self._escape_timer = None
        self._press(self._decoder.timeout())

    def _press(self, pressed):
        for key in pressed:
            if key == keys.LEAVE:
                self._loop.stop()
                return
            if key == keys.REDRAW:
                self._before = None
                self._draw()
            else:
                self._receiver.press(key)
