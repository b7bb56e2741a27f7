# -*- coding: utf-8 -*-
"""Disks that are full or cannot be written to: the words that run a receiver with one of them.

The disks are mounted for the receiver alone, by bubblewrap, which also shuts the receiver in.
"""

import os
import subprocess

_HERE = os.path.dirname(os.path.realpath(__file__))
_SMALL_DISK = os.path.join(_HERE, "small-disk")
_AS_IT_IS = ["bwrap", "--dev-bind", "/", "/"]

# What a small disk counts in: a file takes whole pages, an empty one and a folder take none.
PAGE = os.sysconf("SC_PAGE_SIZE")


def why_not():
    """Why there can be no such disks here; None when there can."""
    if os.environ.get("MORVESK_SANDBOX") == "chroot":
        return "MORVESK_SANDBOX is chroot, and nothing can be mounted there"
    try:
        child = subprocess.Popen(_AS_IT_IS + ["--size", "65536", "--tmpfs", "/mnt", "--ro-bind", "/usr", "/usr", "true"],
                                 stdin=open(os.devnull), stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    except OSError as error:
        return "bwrap: %s" % error.strerror
    output = child.communicate()[0].strip()
    return output if child.returncode else None


def read_only(folder):
    """The folder cannot be written to, by nobody."""
    return _AS_IT_IS + ["--ro-bind", folder, folder, "--"]


def small(folder, pages):
    """The folder lies on a disk of so many pages."""
    saved = folder + ".saved"
    if not os.path.isdir(saved):
        os.mkdir(saved)
    return _AS_IT_IS + ["--bind", folder, saved, "--size", str(pages * PAGE), "--tmpfs", folder, "--",
                        _SMALL_DISK, folder, saved]


def pages(files):
    """The pages that these files take."""
    return sum((len(content) + PAGE - 1) // PAGE for content in files.values() if isinstance(content, str))
