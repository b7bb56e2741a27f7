# -*- coding: utf-8 -*-
"""Archives that are the same to the byte whenever they are made: fixed owners, times, order and compression."""

import gzip
import tarfile
from cStringIO import StringIO

_COMPRESSION = 9


def pack(files, modified, dot_names=False):
    """The content of a .tar.gz with the files, (name, content) each, at its top level; with dot_names as an author
    gets it who packs the folder "."."""
    packed = StringIO()
    # The name and the time of a gzip file stand in its head; neither shall depend on where and when it is made.
    with gzip.GzipFile("", "wb", _COMPRESSION, packed, 0) as compressed:
        with tarfile.open(fileobj=compressed, mode="w", format=tarfile.USTAR_FORMAT) as archive:
            if dot_names:
                archive.addfile(_entry(".", modified, tarfile.DIRTYPE, 0o755))
            for name, content in files:
                entry = _entry("./" + name if dot_names else name, modified, tarfile.REGTYPE, 0o644)
                entry.size = len(content)
                archive.addfile(entry, StringIO(content))
    return packed.getvalue()


def _entry(name, modified, kind, mode):
    entry = tarfile.TarInfo(name)
    entry.type, entry.mode, entry.mtime = kind, mode, modified
    entry.uid = entry.gid = 0
    entry.uname = entry.gname = "root"
    return entry
