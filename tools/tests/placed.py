"""Receivers whose folder a suite looks into: filled, played and left standing until the suite has seen enough."""

import os
import sys

import suite

RECEIVER = os.path.join(suite.CHECKOUT, "receiver")
sys.path[1:1] = [RECEIVER, os.path.join(RECEIVER, "host"), os.path.join(RECEIVER, "tests")]
import instance
import module_file
import options
import process
import sample
import start
import support


class Placed(object):
    """A receiver with settings of its own and a feed with one list, both written to `folder`, and the module at `path`."""

    def __init__(self, folder, path):
        self._module = module_file.ModuleFile(path)
        settings = support.write_folder(os.path.join(folder, "settings"), support.own_settings())
        feed = support.write_folder(os.path.join(folder, "feed"), support.feed())
        self._instance = instance.Instance(os.path.join(suite.CHECKOUT, "build", "receivers"))
        asked = options.Options(["--keys", "", "--settings", settings, "--feed", feed], False)
        start.prepare(self._instance, asked, self._module, sample.Sample(RECEIVER, os.path.join(suite.CHECKOUT, "build", "feed")))

    def path(self, path):
        """Where a path of the receiver lies on the PC."""
        return self._instance.inside(path)

    def files(self, path):
        """The files of a folder of the receiver with their content."""
        return support.read_folder(self.path(path))

    def play(self, keys):
        """Plays keys; gives how the receiver has ended and the lines about it. What it shows goes nowhere."""
        output = os.dup(1)
        with open(os.devnull, "w") as nothing:
            os.dup2(nothing.fileno(), 1)
        try:
            end = process.run(os.path.join(suite.TOOLS, "sandbox"), self._instance, self._module, 0, keys)
        finally:
            os.dup2(output, 1)
            os.close(output)
        return end.outcome, end.lines

    def remove(self):
        """Removes the receiver's folder."""
        self._instance.remove()
