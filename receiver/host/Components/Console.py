"""Shell commands that call back when they have ended."""

from enigma import eConsoleAppContainer


class ConsoleItem(object):
    """One running command, registered under its text."""

    def __init__(self, containers, cmd, callback, extra_args):
        self.containers = containers
        self.callback = callback
        self.extra_args = extra_args
        self.output = []
        self.container = eConsoleAppContainer()
        self.name = cmd if cmd not in containers else "%s@%s" % (cmd, hex(id(self)))
        containers[self.name] = self
        self.container.dataAvail.append(self.output.append)
        self.container.appClosed.append(self.finished)
        failure = self.container.execute(cmd)
        if failure:
            self.finished(failure)

    def finished(self, retval):
        """The command has ended, or could not be started."""
        del self.containers[self.name]
        del self.container.dataAvail[:]
        del self.container.appClosed[:]
        del self.container
        if self.callback is not None:
            self.callback("".join(self.output), retval, self.extra_args)


class Console(object):
    """Runs any number of shell commands at a time.

    `KILL_REMOVES` is where hosts differ: some take a killed command out of
    `appContainers` at once, others leave it there.
    """

    KILL_REMOVES = True

    def __init__(self):
        self.appContainers = {}

    def ePopen(self, cmd, callback=None, extra_args=[]):
        """Start a command; `callback(output, exit status, extra_args)` follows on its end."""
        return ConsoleItem(self.appContainers, cmd, callback, extra_args)

    def eBatch(self, cmds, callback, extra_args=[], debug=False):
        """Run commands one after the other, then call `callback(extra_args)`."""
        self.debug = debug
        self.ePopen(cmds.pop(0), self.eBatchCB, [cmds, callback, extra_args])

    def eBatchCB(self, data, retval, _extra_args):
        """One command of a batch has ended."""
        cmds, callback, extra_args = _extra_args
        if cmds:
            self.ePopen(cmds.pop(0), self.eBatchCB, [cmds, callback, extra_args])
        else:
            callback(extra_args)

    def kill(self, name):
        """Kill one command with all that it started; nobody is called back."""
        if name not in self.appContainers:
            return
        self.appContainers[name].container.kill()
        if self.KILL_REMOVES:
            del self.appContainers[name]

    def killAll(self):
        """Kill every command."""
        for name in list(self.appContainers):
            self.kill(name)
