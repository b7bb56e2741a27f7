"""What the figures were measured on."""

import os
import platform
import re
import subprocess
import sys
import time

import inputs


def _processor():
    names = re.findall(r"^model name\s*:\s*(.*)$", inputs.read("/proc/cpuinfo"), re.MULTILINE)
    return "%s, %d of them" % (names[0] if names else platform.machine(), os.sysconf("SC_NPROCESSORS_ONLN"))


def _memory():
    return int(re.search(r"MemTotal:\s*(\d+)", inputs.read("/proc/meminfo")).group(1)) / 1024.0 ** 2


def _first_line(*command):
    try:
        return subprocess.Popen(command, stdout=subprocess.PIPE).communicate()[0].split("\n")[0]
    except OSError:
        return "no " + command[0]


def described():
    """Lines that say it."""
    return [
        "processor: " + _processor(),
        "memory: %.0f GB" % _memory(),
        "kernel: %s %s" % (platform.system(), platform.release()),
        "interpreter: Python %s" % sys.version.split(" (")[0],
        "compiler: " + _first_line("c++", "--version"),
        "C library: " + _first_line("ldd", "--version"),
        "load when the measurements ended: %.1f (well above 1: other work was going on)" % os.getloadavg()[0],
        "date: " + time.strftime("%Y-%m-%d"),
    ]
