# -*- coding: utf-8 -*-
"""The sample feed and the receiver's first settings, made once and kept until their descriptions change."""

import hashlib
import os
import subprocess
import sys

from folders import remove_folder
from options import Mistake


class Sample(object):
    """Folders below the kept one, named after what they were made of."""

    def __init__(self, receiver, kept):
        self._generator = os.path.join(receiver, "feed")
        self._kept = kept

    def feed(self):
        """The folder of the sample feed."""
        return self._made("feed", [])

    def settings(self):
        """The folder of the first settings."""
        return self._made("settings", ["--settings"])

    def _made(self, name, options):
        made_of = self._made_of()
        folder = os.path.join(self._kept, made_of, name)
        if not os.path.isdir(folder):
            self._make(folder, options)
            self._remove_others(made_of)
        return folder

    def _make(self, folder, options):
        try:
            if not os.path.isdir(os.path.dirname(folder)):
                os.makedirs(os.path.dirname(folder))
        except OSError as error:
            if not os.path.isdir(os.path.dirname(folder)):
                raise Mistake("the sample feed cannot be made: %s: %s" % (error.filename, error.strerror))
        script = os.path.join(self._generator, "make_feed.py")
        child = subprocess.Popen([sys.executable, "-B", script, folder] + options,
                                 stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        output = child.communicate()[0]
        if child.returncode and not os.path.isdir(folder):
            raise Mistake("the sample feed cannot be made: %s" % output.strip())

    def _made_of(self):
        digest = hashlib.sha1()
        for path, folders, names in os.walk(self._generator):
            folders.sort()
            for name in sorted(names):
                if not name.endswith(".pyc"):
                    with open(os.path.join(path, name), "rb") as source:
                        digest.update("%s\0%s\0" % (name, source.read()))
        return digest.hexdigest()[:12]

    def _remove_others(self, made_of):
        for name in os.listdir(self._kept):
            if name != made_of:
                remove_folder(os.path.join(self._kept, name))
