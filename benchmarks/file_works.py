"""The works on the receiver's bouquets: a long root file that grows, and a merge with real files."""

import __builtin__
import functools
import os
import shutil
import time

import contenders
import inputs
from work import Work

NOW = 1700000000.25


class Names(object):
    """Stands for a module."""

    def __init__(self, **names):
        vars(self).update(names)


def _through_file_objects(path, content):
    """The second floor: the least that the interpreter's own file objects do when they read lines and write."""
    with open(path, "r") as stream:
        stream.readlines()
    stream = open(path, "w")
    stream.write(content)
    stream.close()


def root_file(bench, lines, new):
    """A root file of so many lines gets so many new references; nothing is copied."""
    os.mkdir(bench.path("etc"))
    path = bench.path("etc", "bouquets.tv")
    old = inputs.root_file([inputs.bouquet_name(number) for number in xrange(lines - 1)])
    names = ["userbouquet.new_%05d.tv" % number for number in xrange(new)]
    before, result = functools.partial(inputs.write, path, old), lambda value: inputs.read(path)
    least = {contenders.FLOOR: bench.tools.rewrite, contenders.SECOND: _through_file_objects}
    if bench.name in least:
        content = old + "".join(inputs.REFERENCES["tv"] % name for name in names)
        return Work(functools.partial(least[bench.name], path, content), before=before, result=result)
    bench.module.shutil = Names(copy2=bench.constant(None))
    bench.module.resolveFilename = bench.constant(bench.path("etc", ""))
    pairs = [(name, name) for name in names]
    return Work(functools.partial(bench.screen().writeBouquetFiles, "tv", pairs), before=before, result=result)


class MergeFiles(object):
    """A new list of so many bouquets, a tenth of them for radio, and a receiver where every other name is taken."""

    def __init__(self, bench, count):
        self.bench = bench
        self.names = {"tv": [inputs.bouquet_name(number) for number in range(count - count // 10)],
                      "radio": [inputs.bouquet_name(number, "radio") for number in range(count // 10)]}
        os.mkdir(bench.path("new"))
        inputs.write(bench.path("new", "lamedb"), "eDVB services /4/\n")
        for kind, names in self.names.items():
            inputs.write(bench.path("new", "bouquets." + kind), inputs.root_file(names, kind))
            for number, name in enumerate(names):
                inputs.write(bench.path("new", name), inputs.bouquet(number))
                os.utime(bench.path("new", name), (NOW, NOW - number))

    def reset(self):
        """The receiver as it is before the merge."""
        shutil.rmtree(self.bench.path("etc"), ignore_errors=True)
        os.mkdir(self.bench.path("etc"))
        for kind, names in self.names.items():
            taken = names[::2]
            inputs.write(self.bench.path("etc", "bouquets." + kind), inputs.root_file(taken, kind))
            for name in taken:
                inputs.write(self.bench.path("etc", name), "#NAME mine\n")

    def result(self, value):
        """What the receiver holds afterwards: contents of all files, mode and time of the copied ones."""
        found = []
        for name in sorted(os.listdir(self.bench.path("etc"))):
            path = self.bench.path("etc", name)
            facts, content = os.stat(path), inputs.read(path)
            copied = name.startswith("user") and content != "#NAME mine\n"
            found.append((name, content, copied and (facts.st_mode, facts.st_mtime)))
        return found

    def system_calls(self):
        """The merge as bare system calls."""
        stamp = time.strftime("%Y-%m-%d_%H-%M-%S", time.localtime(NOW))
        merges = []
        for kind in ("tv", "radio"):
            names = self.names[kind]
            suffix = "." + kind
            targets = [name if index % 2 else name[:-len(suffix)] + stamp + suffix for index, name in enumerate(names)]
            content = inputs.root_file(names[::2], kind) + "".join(inputs.REFERENCES[kind] % name for name in targets)
            triples = [(self.bench.path("new", name), self.bench.path("etc", name), self.bench.path("etc", target))
                       for name, target in zip(names, targets)]
            root = "bouquets" + suffix
            merges.append(functools.partial(self.bench.tools.merge, [self.bench.path("new", root)], triples,
                                            self.bench.path("etc", root), content))
        return lambda: [merge() for merge in merges]


def merge(bench, count):
    """So many new bouquets are merged into the receiver's, with real files."""
    files = MergeFiles(bench, count)
    if bench.name == contenders.FLOOR:
        return Work(files.system_calls(), before=files.reset, result=files.result)
    bench.module.time = Names(time=bench.constant(NOW))
    bench.module.resolveFilename = bench.constant(bench.path("etc", ""))
    bench.module.fileExists = os.path.exists
    return Work(bench.screen().mergeNewFavourites, before=files.reset, result=files.result)


class TimedFile:
    """A file object whose calls count as the host's; of the old style, which looks everything up in the object."""

    def __init__(self, timed, stream):
        self.__enter__ = timed(lambda: self)
        for name in ("__exit__", "readlines", "write", "close"):
            setattr(self, name, timed(getattr(stream, name)))


def _timed_open(tools):
    real_open = open
    return tools.Timed(lambda *arguments: TimedFile(tools.Timed, real_open(*arguments)))


def _watch_open(tools):
    """A compiled module takes the built-in when it is loaded."""
    _watch_open.kept = open
    __builtin__.open = _timed_open(tools)


def merge_in_host(bench, count):
    """The merge, with every call of the host and of the interpreter's library timed apart."""
    # The library's own copying shall stay as fast as it is.
    __builtin__.open = _watch_open.kept
    work = merge(bench, count)
    timed, module = bench.tools.Timed, bench.module
    module.open = _timed_open(bench.tools)
    for name in ("resolveFilename", "fileExists"):
        setattr(module, name, timed(getattr(module, name)))
    module.os = Names(path=Names(exists=timed(os.path.exists), isfile=timed(os.path.isfile)))
    module.shutil = Names(copy2=timed(shutil.copy2))
    return work


merge_in_host.before_load = _watch_open
