"""The works on the catalogue: reading it, and making the list's rows of it. No transfer takes place."""

import functools

import contenders
import host
import inputs
from work import Work

PICTURE = "SystemPlugins/QelPanel/pictures/sockets.png"
HOST_CALLS = """
def calls(count):
    for number in xrange(count):
        LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, %r))
""" % PICTURE


class Response(object):
    """The server's answer; `read` gives the body."""

    def __init__(self, read):
        self.read = read


class Transfers(object):
    """Stands for the module urllib2."""

    HTTPError = URLError = IOError

    def __init__(self, bench, read):
        self.urlopen = bench.constant(Response(read))


def parser(bench, read):
    """The contender's parse_download_file, with the body coming out of `read`."""
    bench.module.urllib2 = Transfers(bench, read)
    bench.module.info_url = bench.constant("http://feed/settings_download/qel_settings.download")
    return bench.module.parse_download_file


def catalogue(bench, lines, count=1):
    """A catalogue of so many lines is read, so many times; the floors make the result's objects from known places."""
    return _reading(bench, *bench.store.catalogue(lines), count=count)


def own_catalogue(bench, path):
    """Somebody's own catalogue is read."""
    body = inputs.read(path)
    return _reading(bench, body, inputs.places_of(body), count=1 + 1000000 // (len(body) + 1))


def _reading(bench, body, places, count=1):
    if bench.name in contenders.FLOORS:
        make = functools.partial(bench.tools.catalogue, body, places, bench.name == contenders.SECOND)
        return Work(make, count, result=lambda entries: (0, entries))
    return Work(parser(bench, bench.constant(body)), count)


def rubbish(bench, size):
    """A catalogue without an entry is read; the floor is one pass of memchr, the second floor one from line to line."""
    body = bench.store.rubbish(size)
    passes = {contenders.FLOOR: bench.tools.scan, contenders.SECOND: bench.tools.scan_lines}
    if bench.name in passes:
        return Work(functools.partial(passes[bench.name], body), 5, result=lambda value: (0, []))
    return Work(parser(bench, bench.constant(body)))


def _host_calls(bench, count):
    """What the rows ask of the host and nothing else, in the contender's language, as cheap as can be."""
    if bench.name == contenders.PLAIN:
        exec(HOST_CALLS, vars(bench.module))
        return functools.partial(bench.module.calls, count)
    keys = ("resolveFilename", "SCOPE_PLUGINS", "LoadPixmap", "cached", "path")
    return functools.partial(bench.tools.call_host, vars(bench.module), keys, PICTURE, count)


def rows(bench, count, with_host_calls=False):
    """The list's rows are made for so many entries; the host's calls are taken off."""
    entries = bench.tools.catalogue(*bench.store.catalogue(count) + (False,))
    if bench.name in contenders.FLOORS:
        return Work(functools.partial(bench.tools.rows, entries, host.PICTURE, bench.name == contenders.SECOND))
    bench.module.parse_download_file = bench.constant((0, entries))
    screen = bench.screen()
    return Work(screen.getServiceLists, deduct=None if with_host_calls else _host_calls(bench, count),
                result=lambda value: screen.list)


def rows_and_host_calls(bench, count):
    """The same, with what the calls of the host's cost."""
    return rows(bench, count, with_host_calls=True)
