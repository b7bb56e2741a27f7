"""Pictures by their file names."""

from enigma import loadPNG

pixmap_cache = {}


def LoadPixmap(path, desktop=None, cached=None):
    """The picture in a file, or None when it cannot be loaded; kept for the next time if `cached`."""
    if path in pixmap_cache:
        return pixmap_cache[path]
    picture = loadPNG(path) if path.endswith(".png") else None
    if picture is not None and desktop is not None:
        desktop.makeCompatiblePixmap(picture)
    if picture is not None and cached:
        pixmap_cache[path] = picture
    return picture
