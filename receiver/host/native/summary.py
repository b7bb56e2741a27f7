"""What a configuration folder holds, in numbers."""

import os

from native import bouquetfile
from native.servicefile import ServiceFile


def summarise(folder):
    """Count a folder's transponders, services and bouquets without changing anything.

    Returns {"transponders": n, "services": n, "bouquets": [{"kind": "tv" or "radio",
    "file": name, "title": text, "services": n}, ...]}, the bouquets in the order of
    the root files. Markers do not count as services; files that are missing are left out.
    """
    stored = ServiceFile()
    path = os.path.join(folder, "lamedb")
    if os.path.exists(path):
        stored.load(path)
    return {
        "transponders": len(stored.transponders),
        "services": len(stored.services),
        "bouquets": [each for kind in bouquetfile.KINDS for each in _bouquets(folder, kind)],
    }


def _bouquets(folder, kind):
    path = os.path.join(folder, bouquetfile.root_name(kind))
    root = bouquetfile.read(path) if os.path.exists(path) else None
    for name in root.file_names() if root else ():
        path = os.path.join(folder, name)
        bouquet = bouquetfile.read(path) if os.path.exists(path) else None
        if bouquet is not None:
            yield describe(kind, name, bouquet)


def describe(kind, file_name, bouquet):
    """One bouquet of a summary."""
    return {"kind": kind, "file": file_name, "title": bouquet.title,
            "services": len(bouquet.services())}
