"""The folder in which everything happens: the contenders, the inputs and the files that the works write."""

import contextlib
import os
import shutil
import tempfile

import contenders

IN_MEMORY = "/dev/shm"


class Place(object):
    """Where the contenders lie and where there is room for files."""

    def __init__(self, layout, scratch):
        self.layout, self.scratch = layout, scratch

    def file_system(self):
        """Where the files lie, in words."""
        return "in memory (tmpfs)" if self.scratch.startswith(IN_MEMORY) else "on a disk, in its cache"


@contextlib.contextmanager
def made(build, plain_source):
    """A place for the contenders of a build; nothing of it remains."""
    # Without a disk the file works are all processor time, and what the module adds to them shows most.
    scratch = tempfile.mkdtemp(prefix="morvesk-bench-", dir=IN_MEMORY if os.access(IN_MEMORY, os.W_OK) else None)
    try:
        layout = os.path.join(scratch, "contenders")
        os.mkdir(layout)
        contenders.lay_out(build, plain_source, layout)
        yield Place(layout, scratch)
    finally:
        shutil.rmtree(scratch, ignore_errors=True)
