"""How much memory a long catalogue takes, in a process of its own: measured from inside, by what the kernel says."""

import gc
import os
import re

import catalogue_works
import contenders
import inputs

CONTENDERS = (contenders.OURS, contenders.PLAIN, contenders.FLOOR)
# The kernel's count of a process's pages is that rough.
RESOLUTION = 256 * 1024


def on_top(series):
    """Bytes on top of what the result itself holds, which the floor shows best: of ours and of plain Python."""
    results = [holds for _, holds in series.values[contenders.FLOOR]]
    return dict((name, [float(max(highest - holds, RESOLUTION))
                        for (highest, _), holds in zip(series.values[name], results)])
                for name in (contenders.OURS, contenders.PLAIN))


def _kilobytes(name):
    return int(re.search(r"^%s:\s+(\d+) kB" % name, inputs.read("/proc/self/status"), re.MULTILINE).group(1))


def _taking_a_fresh_body(path):
    """The body is nobody's but the caller's, as after a transfer."""
    def take():
        """Gives the body as the server's answer would."""
        with open(path, "rb") as stream:
            return stream.read(os.path.getsize(path))
    return take


def reading(bench, lines):
    """Bytes that reading a catalogue takes at its highest, and bytes that its result holds."""
    if bench.name == contenders.FLOOR:
        body, places = bench.store.catalogue(lines)
        read = lambda: bench.tools.catalogue(body, places, False)
    else:
        read = catalogue_works.parser(bench, _taking_a_fresh_body(bench.store.path("catalogue-%d" % lines)))
    gc.collect()
    before = _kilobytes("VmRSS")
    result = read()
    peak, after = _kilobytes("VmHWM"), _kilobytes("VmRSS")
    assert result
    return (peak - before) * 1024, (after - before) * 1024
