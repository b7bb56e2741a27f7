"""A work, and what it is prepared from."""

import os


class Work(object):
    """A work that is ready: `run` is what gets measured, `count` times in a row.

    `before` is done before each measurement and not measured. What `deduct` takes is taken off. `result` gives what has
    to be the same for all contenders, out of what `run` returned.
    """

    def __init__(self, run, count=1, before=None, deduct=None, result=None):
        self.run, self.count, self.deduct = run, count, deduct
        self.before = before or (lambda: None)
        self.result = result or (lambda value: value)


class Bench(object):
    """What a work is prepared from: contender, its loaded module, the tools in C, the inputs, a folder for files."""

    def __init__(self, name, module, tools, store, folder):
        self.name, self.module, self.tools, self.store, self.folder = name, module, tools, store, folder

    def constant(self, answer):
        """A callable in C that gives this answer."""
        return self.tools.Constant(answer)

    def path(self, *names):
        """A place in the folder for files."""
        return os.path.join(self.folder, *names)

    def screen(self):
        """A screen of the contender's, for lists that are unpacked in "new" and installed in "etc"."""
        screen = self.module.Morvesk(None, "/the/panel")
        screen.tmp_path, screen.dest_dir = self.path("new"), self.path("etc", "")
        screen["downloadmenu"].setList = self.constant(None)
        return screen
