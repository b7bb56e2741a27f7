"""File descriptors across fork and exec."""

import fcntl
import os
import resource

_MOST = 4096


def close_on_exec(fd):
    """No program started from here shall hold `fd`."""
    fcntl.fcntl(fd, fcntl.F_SETFD, fcntl.fcntl(fd, fcntl.F_GETFD) | fcntl.FD_CLOEXEC)


def close_all_but(kept):
    """Close every descriptor of this process that is not in `kept`."""
    for fd in _open_descriptors():
        if fd not in kept:
            try:
                os.close(fd)
            except OSError:
                pass


def _open_descriptors():
    """What is open; without a process file system, whatever may be."""
    try:
        return [int(name) for name in os.listdir("/proc/self/fd")]
    except OSError:
        return range(min(_MOST, resource.getrlimit(resource.RLIMIT_NOFILE)[0]))
