"""Shell commands that run beside the main loop."""

import errno
import os
import signal

import mainloop
from native import display, guard
from native.descriptors import close_all_but, close_on_exec
from native.log import log

_CHUNK = 65536
_ALREADY_RUNNING = -3


class eConsoleAppContainer(object):
    """Runs one command in its own process group.

    `dataAvail` functions get what it writes, to standard output and standard
    error alike; `appClosed` functions get its exit status once its output has
    been closed. A killed command calls nobody any more.
    """

    def __init__(self):
        self.dataAvail = []
        self.appClosed = []
        self._pid = -1
        self._output = None
        self._input = None

    def execute(self, command):
        """Start `/bin/sh -c command`; 0 when it has been started, else a negative number."""
        if self.running():
            return _ALREADY_RUNNING
        reading, output = os.pipe()
        standard_input, writing = os.pipe()
        try:
            pid = _start(command, standard_input, output)
        except OSError as error:
            log("cannot start a process: %s" % error.strerror)
            for fd in (reading, output, standard_input, writing):
                os.close(fd)
            return -error.errno
        os.close(output)
        os.close(standard_input)
        close_on_exec(reading)
        close_on_exec(writing)
        self._pid, self._output, self._input = pid, reading, writing
        mainloop.add_reader(reading, self._read)
        mainloop.work_begins(self)
        display.changed()
        return 0

    def running(self):
        """True from its start until its output is closed or it is killed."""
        return self._pid != -1

    def getPID(self):
        """The process number, -1 when nothing runs."""
        return self._pid

    def write(self, data):
        """Give the command something to read."""
        os.write(self._input, data)

    def sendEOF(self):
        """Tell the command that there is nothing more to read."""
        if self._input is not None:
            os.close(self._input)
            self._input = None

    def sendCtrlC(self):
        """Interrupt the command's process group."""
        self._signal(signal.SIGINT)

    def kill(self):
        """Kill the command's process group and forget it: nobody is told of its end."""
        if not self.running():
            return
        self._signal(signal.SIGKILL)
        self._forget()

    def _signal(self, number):
        if self.running():
            try:
                os.kill(-self._pid, number)
            except OSError as error:
                log("cannot signal process group %d: %s" % (self._pid, error.strerror))

    def _read(self):
        data = _uninterrupted(os.read, self._output, _CHUNK)
        if data:
            _call(self.dataAvail, data)
            return
        _call(self.appClosed, self._forget())

    def _forget(self):
        """Close the pipes and reap the process; returns its exit status."""
        mainloop.remove_reader(self._output)
        os.close(self._output)
        self.sendEOF()
        pid, self._pid = self._pid, -1
        guard.ends(pid)
        status = _uninterrupted(os.waitpid, pid, 0)[1]
        mainloop.work_ends(self)
        display.changed()
        return _exit_status(status)


def _exit_status(status):
    """As a shell would say it: 128 and the signal's number for a process that a signal ended."""
    if os.WIFSIGNALED(status):
        return 128 + os.WTERMSIG(status)
    return os.WEXITSTATUS(status)


def _call(functions, argument):
    for function in list(functions):
        function(argument)


def _uninterrupted(function, *arguments):
    while True:
        try:
            return function(*arguments)
        except OSError as error:
            if error.errno != errno.EINTR:
                raise


def _start(command, standard_input, output):
    guard.start()
    pid = os.fork()
    if pid == 0:
        _become(command, standard_input, output)
    _own_group(pid)
    return pid


def _own_group(pid):
    """Said by parent and child, so that it is true whoever comes first."""
    try:
        os.setpgid(pid, pid)
    except OSError:
        pass


def _become(command, standard_input, output):
    """In the forked child: the shell, with nothing of the receiver's but its pipes."""
    try:
        own = os.getpid()
        _own_group(own)
        guard.begins(own)
        os.dup2(standard_input, 0)
        os.dup2(output, 1)
        os.dup2(output, 2)
        close_all_but((0, 1, 2))
        for number in (signal.SIGPIPE, signal.SIGXFSZ, signal.SIGINT, signal.SIGTERM):
            signal.signal(number, signal.SIG_DFL)
        os.execv("/bin/sh", ["/bin/sh", "-c", command])
    finally:
        os._exit(127)
