"""A process that does one contender's works. Orders come by the line, as JSON, and so do their answers go.

usage: worker.py LAYOUT CONTENDER SCRATCH
An order is the name of a method of Worker and its arguments.
"""

import functools
import gc
import hashlib
import json
import os
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import catalogue_works
import contenders
import file_works
import host
import inputs
import memory
import work

WORKS = dict((function.__name__, function) for function in (
    catalogue_works.catalogue, catalogue_works.own_catalogue, catalogue_works.rubbish, catalogue_works.rows,
    catalogue_works.rows_and_host_calls, file_works.root_file, file_works.merge, file_works.merge_in_host))


class Worker(object):
    """One contender in this process, and the works that were prepared for it."""

    def __init__(self, layout, name, scratch):
        self.layout, self.name = layout, name
        self.tools = contenders.tools(layout)
        self.store = inputs.Store(scratch)
        self.folder = tempfile.mkdtemp(dir=scratch)
        self.modules, self.works = [], []
        host.install(self.tools.Constant)
        # The interpreter's table of names grows by leaps, and whoever is loaded last would pay for the next one. A host
        # has many times the names that this process has, so the table is made to have room, as it nearly always has.
        self.names = [intern("name_%d" % number) for number in range(8000)]

    def load(self):
        """Loads the contender's module; gives the processor time of it."""
        import datetime
        import time
        import urllib2
        gc.collect()
        return self.tools.measure(functools.partial(contenders.load, self.layout, self.name), 1)[0]

    def prepare(self, name, arguments):
        """Makes a work ready; gives its number."""
        function = WORKS[name]
        before_load = getattr(function, "before_load", lambda tools: None)
        self.works.append(function(self._bench(functools.partial(before_load, self.tools)), *arguments))
        return len(self.works) - 1

    def _bench(self, before_load=lambda: None):
        folder = tempfile.mkdtemp(dir=self.folder)
        module = contenders.load_copy(self.layout, self.name, os.path.join(folder, "module"), before_load)
        # A module that nobody holds any more forgets its names, whoever still has its functions.
        self.modules.append(module)
        return work.Bench(self.name, module, self.tools, self.store, folder)

    def _seconds(self, run, count):
        gc.collect()
        return self.tools.measure(run, count)[0] / count

    def time(self, number):
        """The processor time of doing the work once, in seconds."""
        ready = self.works[number]
        ready.before()
        seconds = self._seconds(ready.run, ready.count)
        return seconds - (self._seconds(ready.deduct, 1) if ready.deduct else 0)

    def repetitions(self, number):
        """How many times the work is done for one measurement."""
        return self.works[number].count

    def time_outside(self, number):
        """The time spent outside of the host when the work is done once, and the whole processor time, in seconds."""
        self.works[number].before()
        gc.collect()
        return self.tools.time_outside(self.works[number].run)

    def digest(self, number):
        """A digest of the whole result."""
        ready = self.works[number]
        ready.before()
        return hashlib.sha1(repr(ready.result(ready.run()))).hexdigest()

    def memory(self, lines):
        """Bytes that reading a catalogue takes at its highest, and bytes that its result holds."""
        return memory.reading(self._bench(), lines)

    def close(self):
        """Leaves no file behind."""
        shutil.rmtree(self.folder)


def _plain(value):
    return value.encode("ascii") if isinstance(value, unicode) else value


def main(layout, name, scratch):
    """Serves until the input ends."""
    answers = os.fdopen(os.dup(1), "w")
    os.dup2(2, 1)
    worker = Worker(layout, name, scratch)
    try:
        for line in iter(sys.stdin.readline, ""):
            order = [_plain(one) for one in json.loads(line)]
            answers.write(json.dumps(getattr(worker, order[0])(*order[1:])) + "\n")
            answers.flush()
    finally:
        worker.close()


if __name__ == "__main__":
    main(*sys.argv[1:])
