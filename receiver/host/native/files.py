"""Files as the host's compiled part reads and writes them: failures are logged, never raised."""

import os

from native.log import log


def read_lines(path):
    """The lines of `path` without their line ends, or None when it cannot be read."""
    try:
        with open(path, "rb") as source:
            content = source.read()
    except (IOError, OSError) as error:
        log("cannot read %s: %s" % (path, error.strerror))
        return None
    lines = content.split("\n")
    if not lines[-1]:
        lines.pop()
    return [line.rstrip("\r") for line in lines]


def replace_file(path, content):
    """Put `content` in the place of `path` in one step: the old file stays whole until then."""
    temporary = path + ".writing"
    try:
        with open(temporary, "wb") as target:
            target.write(content)
            target.flush()
            os.fsync(target.fileno())
        os.rename(temporary, path)
    except (IOError, OSError) as error:
        log("cannot write %s: %s" % (path, error.strerror))
        _remove(temporary)
        return False
    return True


def _remove(path):
    try:
        os.unlink(path)
    except OSError:
        pass
