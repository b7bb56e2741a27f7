"""Pictures: PNG files, checked whole before they are taken."""

import os
import struct
import zlib

_SIGNATURE = "\x89PNG\r\n\x1a\n"


class gPixmap(object):
    """A picture in memory."""

    def __init__(self, path, width, height):
        self.path = path
        self._size = width, height

    def name(self):
        """The file it came from, without its folder."""
        return os.path.basename(self.path)

    def size(self):
        """(width, height) in pixels."""
        return self._size


def loadPNG(path):
    """The picture in a PNG file, or None when there is none that can be decoded."""
    try:
        with open(path, "rb") as source:
            content = source.read()
        width, height = _decode(content)
    except (IOError, OSError, ValueError, struct.error, zlib.error):
        return None
    return gPixmap(path, width, height)


def _decode(content):
    if not content.startswith(_SIGNATURE):
        raise ValueError("no PNG signature")
    chunks = list(_chunks(content, len(_SIGNATURE)))
    if not chunks or chunks[0][0] != "IHDR" or chunks[-1][0] != "IEND":
        raise ValueError("not from IHDR to IEND")
    width, height, depth, colour = struct.unpack(">IIBB", chunks[0][1][:10])
    samples = {0: 1, 2: 3, 3: 1, 4: 2, 6: 4}[colour] if colour in (0, 2, 3, 4, 6) else 0
    pixels = zlib.decompress("".join(data for kind, data in chunks if kind == "IDAT"))
    row = 1 + (width * samples * depth + 7) // 8
    interlaced = ord(chunks[0][1][12])
    if not samples or not width or not height or (not interlaced and len(pixels) != row * height):
        raise ValueError("the pixels do not fit the size")
    return width, height


def _chunks(content, place):
    while place < len(content):
        length, kind = struct.unpack(">I4s", content[place:place + 8])
        data = content[place + 8:place + 8 + length]
        checksum = struct.unpack(">I", content[place + 8 + length:place + 12 + length])[0]
        if zlib.crc32(kind + data) & 0xFFFFFFFF != checksum:
            raise ValueError("a chunk's checksum is wrong")
        yield kind, data
        place += 12 + length
