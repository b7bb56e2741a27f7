"""Runs a command under chroot and sees to it that no process of it outlives this one, not even by a kill -9.

usage: supervisor.py FOLDER COMMAND [ARGUMENT...]

Three processes: this one waits for the command; the command dies with it; a guard in a session of its own outlives both
for the moment that it takes to end whatever else still runs in FOLDER. Processes are known by their root folder, which
they cannot change, and not by their parents, which they lose. The first starts a new guard when somebody kills it; only
who kills both in one moment leaves something behind, which the next start in the same folder ends.
"""

from __future__ import print_function

import ctypes
import errno
import os
import signal
import stat
import sys
import time

PR_SET_PDEATHSIG = 1
PR_CAPBSET_DROP = 24
PR_SET_CHILD_SUBREAPER = 36
PR_SET_NO_NEW_PRIVS = 38
SECONDS_BETWEEN_LOOKS = 0.5

CAPABILITY_VERSION = 0x20080522

prctl = ctypes.CDLL(None, use_errno=True).prctl
capset = ctypes.CDLL(None, use_errno=True).capset


def same_file(path, wanted):
    """True when the path leads to the file with the given stat result."""
    try:
        return os.path.samestat(os.stat(path), wanted)
    except OSError:
        return False


def processes_inside(wanted):
    """The process ids of all whose root is the folder with the given stat result; the folder itself may have gone."""
    return [int(name) for name in os.listdir("/proc")
            if name.isdigit() and same_file("/proc/%s/root/" % name, wanted)]


def kill(pid):
    """Kills a process that may have gone by itself."""
    try:
        os.kill(pid, signal.SIGKILL)
    except OSError as error:
        if error.errno != errno.ESRCH:
            raise


def end_all(wanted):
    """Kills until nothing runs in that folder: a process may start another one between a look and a kill."""
    while True:
        pids = processes_inside(wanted)
        if not pids:
            return
        for pid in pids:
            kill(pid)
        time.sleep(0.005)


def die_with(parent, number):
    """Has the kernel send this process a signal when its parent has gone; it may have gone already."""
    prctl(PR_SET_PDEATHSIG, number, 0, 0, 0)
    if os.getppid() != parent:
        os.kill(os.getpid(), number)


def leave_files():
    """Lets go of the files that others wait on."""
    nothing = os.open("/dev/null", os.O_RDWR)
    for descriptor in (0, 1, 2):
        os.dup2(nothing, descriptor)
    os.closerange(3, 1024)


def guard(wanted, parent):
    """The guard's whole life: until its parent has gone."""
    os.setsid()
    leave_files()

    def parent_gone(*_):
        end_all(wanted)
        os._exit(0)

    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT):
        signal.signal(number, signal.SIG_IGN)
    signal.signal(signal.SIGTERM, parent_gone)
    die_with(parent, signal.SIGTERM)
    while True:
        signal.pause()


def start_guard(wanted):
    """Starts the guard; gives its process id."""
    parent = os.getpid()
    pid = os.fork()
    if pid == 0:
        try:
            guard(wanted, parent)
        finally:
            os._exit(1)
    return pid


def give_up_rights():
    """Keeps root from writing to what is not root's to write: no capability outlives the next program.

    A container may not let go of what any program may ever have; then what this process has is given up, and the next
    program, which gets no new rights, has no more than that.
    """
    for capability in range(64):
        prctl(PR_CAPBSET_DROP, capability, 0, 0, 0)
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0)
    header = (ctypes.c_uint32 * 2)(CAPABILITY_VERSION, 0)
    nothing = (ctypes.c_uint32 * 6)()
    capset(header, nothing)


def become_command(folder, command, parent):
    """Turns this process into the command, shut in the folder."""
    die_with(parent, signal.SIGKILL)
    for number in (signal.SIGTERM, signal.SIGHUP, signal.SIGPIPE, signal.SIGXFSZ):
        signal.signal(number, signal.SIG_DFL)
    os.environ.pop("LD_LIBRARY_PATH", None)
    os.chroot(folder)
    os.chdir("/")
    give_up_rights()
    os.execv(command[0], command)


def start_command(folder, command):
    """Starts the command; gives its process id."""
    parent = os.getpid()
    pid = os.fork()
    if pid == 0:
        try:
            become_command(folder, command, parent)
        except OSError as error:
            print("sandbox: %s: %s" % (command[0], error.strerror), file=sys.stderr)
        finally:
            os._exit(126)
    return pid


def stand_in_of_null(folder):
    """The path of the plain file that stands in for /dev/null, or None when that is the device."""
    path = os.path.join(folder, "dev/null")
    return path if stat.S_ISREG(os.stat(path).st_mode) else None


def empty(path):
    """Drops what has been written to the file."""
    if os.path.getsize(path):
        open(path, "w").close()


def keep_null_empty(folder):
    """Where /dev/null is a plain file, what is written to it shall not fill the disk."""
    null = stand_in_of_null(folder)
    if null:
        signal.signal(signal.SIGALRM, lambda *_: empty(null))
        signal.setitimer(signal.ITIMER_REAL, SECONDS_BETWEEN_LOOKS, SECONDS_BETWEEN_LOOKS)


def wait_for(command_pid, wanted):
    """Waits for the command; the guard is replaced when somebody kills it. Gives the command's wait status."""
    guard_pid = start_guard(wanted)
    while True:
        try:
            pid, status = os.wait()
        except OSError as error:
            if error.errno != errno.EINTR:
                raise
            continue
        if pid == command_pid:
            return status
        if pid == guard_pid:
            guard_pid = start_guard(wanted)


def exit_status(status):
    """The exit status of a shell for a wait status."""
    if os.WIFSIGNALED(status):
        return 128 + os.WTERMSIG(status)
    return os.WEXITSTATUS(status)


def main(folder, command):
    """Runs the command and gives its exit status."""
    wanted = os.stat(folder)

    def told_to_end(number, _):
        end_all(wanted)
        os._exit(128 + number)

    prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    for number in (signal.SIGTERM, signal.SIGHUP):
        signal.signal(number, told_to_end)
    die_with(os.getppid(), signal.SIGTERM)
    end_all(wanted)
    keep_null_empty(folder)
    status = wait_for(start_command(folder, command), wanted)
    end_all(wanted)
    return exit_status(status)


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], sys.argv[2:]))
