# -*- coding: utf-8 -*-
"""Archives that nobody packs by accident: members of every kind, in any order, under any name."""

import io
import tarfile

from support import PACKED_AT, new_list, zipped


class Member(object):
    """One member of an archive."""

    def __init__(self, name, kind=tarfile.REGTYPE, content="", target="", mode=0o644):
        self.content = content
        self.entry = tarfile.TarInfo(name)
        self.entry.type, self.entry.linkname, self.entry.mode = kind, target, mode
        self.entry.size, self.entry.mtime = len(content), PACKED_AT


def file_(name, content="x", mode=0o644):
    """A file."""
    return Member(name, content=content, mode=mode)


def folder(name, mode=0o755):
    """A folder."""
    return Member(name, tarfile.DIRTYPE, mode=mode)


def link(name, target):
    """A symbolic link."""
    return Member(name, tarfile.SYMTYPE, target=target)


def hard_link(name, target):
    """A hard link."""
    return Member(name, tarfile.LNKTYPE, target=target)


def fifo(name):
    """A named pipe."""
    return Member(name, tarfile.FIFOTYPE)


def device(name, kind, major, minor):
    """A device node; the kind is tarfile.CHRTYPE or tarfile.BLKTYPE."""
    member = Member(name, kind)
    member.entry.devmajor, member.entry.devminor = major, minor
    return member


def bare(*members):
    """A tar archive of these members, not compressed."""
    packed = io.BytesIO()
    with tarfile.open(fileobj=packed, mode="w", format=tarfile.GNU_FORMAT) as tar:
        for member in members:
            tar.addfile(member.entry, io.BytesIO(member.content))
    return packed.getvalue()


def pack(*members):
    """A gzip-compressed tar archive of these members."""
    return zipped(bare(*members))


def pack_list(*members, **changes):
    """The archive of a whole list, with further members behind its files; None takes a file out."""
    files = [file_(name, content) for name, content in sorted(new_list(**changes).items())]
    return pack(*(files + list(members)))
