"""Draws the pictures of the panel and of the message box, always the same to the byte."""

import os
import struct
import sys
import zlib

_SIZE = 40
_CLEAR = (0, 0, 0, 0)
_HOST = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
_PANEL = "Plugins/SystemPlugins/QelPanel/pictures/"
_ICONS = "share/enigma2/icons/"


def _inside_ring(x, y, radius, width):
    distance = (x * x + y * y) ** 0.5
    return radius - width <= distance <= radius


def _clock(x, y):
    """A clock at four o'clock."""
    hand = (abs(x) <= 1 and -12 <= y <= 0) or (abs(2 * y - x) <= 2 and 0 <= x <= 10)
    return (90, 160, 220, 255) if hand or _inside_ring(x, y, 18, 3) else _CLEAR


def _socket(x, y):
    """A socket with two holes."""
    if max(abs(x), abs(y)) > 18:
        return _CLEAR
    hole = min((x - 7) ** 2, (x + 7) ** 2) + y * y <= 9
    return (40, 40, 40, 255) if hole else (230, 190, 70, 255)


def _sign(colour, stroke):
    def draw(x, y):
        if x * x + y * y > 18 * 18:
            return _CLEAR
        return (255, 255, 255, 255) if stroke(x, y) else colour
    return draw


def _cross(x, y):
    return min(abs(x - y), abs(x + y)) <= 3 and abs(x) <= 9


def _letter_i(x, y):
    return abs(x) <= 2 and (y <= -9 or y >= -4) and abs(y) <= 12


def _question(x, y):
    hook = _inside_ring(x, y + 5, 8, 4) and (y <= -5 or x >= 0)
    return hook or (abs(x) <= 2 and (0 <= y <= 5 or 9 <= y <= 12))


PICTURES = {
    _PANEL + "ntptime.png": _clock,
    _PANEL + "sockets.png": _socket,
    _ICONS + "error.png": _sign((200, 40, 40, 255), _cross),
    _ICONS + "info.png": _sign((40, 90, 200, 255), _letter_i),
    _ICONS + "question.png": _sign((40, 150, 60, 255), _question),
}


def png(draw):
    """The bytes of the PNG file with `draw(x, y)` at each point, (0, 0) in the middle."""
    middle = _SIZE // 2
    rows = ("\0" + "".join(struct.pack("4B", *draw(x - middle, y - middle)) for x in range(_SIZE))
            for y in range(_SIZE))
    header = struct.pack(">IIBBBBB", _SIZE, _SIZE, 8, 6, 0, 0, 0)
    return "\x89PNG\r\n\x1a\n" + "".join((
        _chunk("IHDR", header), _chunk("IDAT", zlib.compress("".join(rows), 9)), _chunk("IEND", "")))


def _chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data) & 0xFFFFFFFF)


def main():
    """Write every picture to its place."""
    for name, draw in PICTURES.items():
        path = os.path.join(_HOST, name)
        if not os.path.isdir(os.path.dirname(path)):
            os.makedirs(os.path.dirname(path))
        with open(path, "wb") as target:
            target.write(png(draw))


if __name__ == "__main__":
    sys.exit(main())
