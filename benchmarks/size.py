"""The size of the module without what only debuggers want."""

import os
import shutil
import subprocess
import tempfile

LIMIT = 96 * 1024


def stripped(module):
    """Bytes of a stripped copy of the module."""
    folder = tempfile.mkdtemp()
    try:
        copy = os.path.join(folder, "Morvesk.so")
        shutil.copyfile(module, copy)
        subprocess.check_call(["strip", copy])
        return os.path.getsize(copy)
    finally:
        shutil.rmtree(folder)
