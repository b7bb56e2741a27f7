"""The sandbox, whatever shuts the receiver in: what is seen inside, what passes through, and that nothing outlives it."""

import errno
import fcntl
import os
import pty
import select
import shutil
import signal
import struct
import subprocess
import termios
import time
import unittest

import suite
import ways

SECONDS = 5.0
ENVIRONMENT = """\
HOME=/
LANG=C.UTF-8
PATH=/usr/bin:/bin:/usr/sbin:/sbin
PYTHONDONTWRITEBYTECODE=1
PYTHONPATH=/usr/lib/enigma2/python:/usr/lib/enigma2/receiver
TERM=vt100
"""
USAGE = "sandbox: usage: tools/sandbox [--network] [--gnu] INSTANCE -- COMMAND [ARGUMENT...]\n"


def with_token(token):
    """The processes of the whole machine in whose command line the token stands."""
    found = []
    for name in os.listdir("/proc"):
        try:
            with open("/proc/%s/cmdline" % name) as source:
                if name.isdigit() and token in source.read():
                    found.append(int(name))
        except (IOError, OSError):
            pass
    return found


def parent_of(pid):
    with open("/proc/%d/stat" % pid) as source:
        return int(source.read().rpartition(")")[2].split()[1])


def children_of(pid):
    found = []
    for name in os.listdir("/proc"):
        try:
            if name.isdigit() and parent_of(int(name)) == pid:
                found.append(int(name))
        except (IOError, OSError):
            pass
    return found


def mounts():
    with open("/proc/self/mounts") as source:
        return source.read()


def wait_until(condition):
    give_up = time.time() + SECONDS
    while not condition() and time.time() < give_up:
        time.sleep(0.02)
    return condition()


def read_until(descriptor, wanted):
    """Reads until the wanted text has come; what came instead tells whether the other side closed or was too slow."""
    text = ""
    give_up = time.time() + SECONDS
    while wanted not in text and time.time() < give_up:
        if not select.select([descriptor], [], [], 0.1)[0]:
            continue
        try:
            text += os.read(descriptor, 4096)
        except OSError as error:
            if error.errno != errno.EIO:
                raise
            return text + "<closed>"
    return text if wanted in text else text + "<nothing more in %g s>" % SECONDS


class Inside(object):
    """The checks of one way; the class of each way says which."""

    way = None

    def setUp(self):
        if self.way.why_not:
            self.skipTest(self.way.why_not)
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)
        self.instance = os.path.join(self.folder, "an instance")
        programs = os.path.join(self.instance, "usr/lib/enigma2/receiver")
        os.makedirs(programs)
        shutil.copy(os.path.join(suite.TOOLS, "tests", "inside.py"), programs)
        os.makedirs(os.path.join(self.instance, "srv/feed"))
        for path in (self.folder, self.instance, programs):
            os.chmod(path, 0o755)
        self.way.own(self.instance)

    def run_inside(self, *command, **settings):
        environment = dict(self.way.environment, **settings.get("environment", {}))
        return suite.run(self.way.command(self.instance, command, settings.get("options", ())), environment,
                         settings.get("typed", ""), settings.get("folder"))

    def script(self, text, **settings):
        return self.run_inside("sh", "-c", text, **settings)

    def assert_ends(self, outcome, status, output, errors=""):
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (status, output, errors))

    # What is seen.

    def test_environment(self):
        outcome = self.run_inside("env", environment={"LANG": "de_DE.UTF-8", "LC_ALL": None, "LC_CTYPE": None,
                                                      "TERM": "vt100", "SECRET": "1"})
        self.assertEqual("".join(sorted(outcome.output.splitlines(True))), ENVIRONMENT)

    def test_terminal_that_is_unknown_inside(self):
        self.assert_ends(self.script('echo "$TERM"', environment={"TERM": "nobody-knows"}), 0, "xterm-256color\n")

    def test_root_without_rights_in_the_top_folder(self):
        self.assert_ends(self.script("id -u; id -g; pwd"), 0, "0\n0\n/\n")

    def test_root_file_system_is_the_receivers(self):
        outcome = self.script("test ! -e '%s' && ls -d /bin/sh /usr/bin/python2.7 /usr/bin/python2.7-dbg" % suite.CHECKOUT)
        self.assert_ends(outcome, 0, "/bin/sh\n/usr/bin/python2.7\n/usr/bin/python2.7-dbg\n")

    def test_busybox(self):
        outcome = self.script("for name in tar cp rm gzip sh; do for folder in /bin /usr/bin; do"
                              " $folder/$name --help 2>&1 | head -n 1 | cut -d ' ' -f 1; done; done")
        self.assert_ends(outcome, 0, "BusyBox\n" * 10)

    def test_gnu(self):
        outcome = self.script("for name in tar cp rm gzip; do for folder in /bin /usr/bin; do"
                              " $folder/$name --version | head -n 1 | cut -d ' ' -f 1-2; done; done;"
                              " /bin/sh --help 2>&1 | head -n 1", options=["--gnu"])
        self.assert_ends(outcome, 0, "tar (GNU\n" * 2 + "cp (GNU\n" * 2 + "rm (GNU\n" * 2 + "gzip 1.12\n" * 2
                         + "/bin/sh: 0: Illegal option --\n")

    def test_gnu_and_back(self):
        self.script("true", options=["--gnu"])
        self.assert_ends(self.script("tar --version"), 0, "tar (busybox) 1.35.0\n")

    def test_what_can_be_written(self):
        outcome = self.script("for path in /etc/enigma2 /etc/opkg /tmp /run; do echo $path > $path/new; done")
        self.assert_ends(outcome, 0, "")
        for path in ("/etc/enigma2", "/etc/opkg", "/tmp", "/run"):
            with open(self.instance + path + "/new") as source:
                self.assertEqual(source.read(), path + "\n")

    def test_what_cannot_be_written(self):
        for path in ("/new", "/etc/new", "/etc/passwd", "/usr/bin/new", "/usr/bin/tar", "/usr/lib/enigma2/new",
                     "/usr/lib/enigma2/receiver/inside.py", "/srv/feed/new", "/usr/lib/python2.7/os.py", "/var/new"):
            outcome = self.run_inside("/usr/lib/gnu-tools/sh", "-c", "echo new >> %s" % path)
            self.assertEqual((path, outcome.status, outcome.output), (path, 2, ""))

    def test_root_file_system_is_never_changed(self):
        self.script("rm -f /usr/bin/tar; : > /etc/hosts; rm -rf /usr /etc /var; true")
        self.assert_ends(self.script("tar --version; cat /etc/hosts"), 0, "tar (busybox) 1.35.0\n127.0.0.1\tlocalhost\n")

    def test_interpreter(self):
        outcome = self.run_inside("python2.7", "-c", "import ctypes, curses, hashlib, random, ssl, urllib2, zlib, sys\n"
                                                     "print sys.prefix, sys.path[1:3]")
        self.assert_ends(outcome, 0, "/usr ['/usr/lib/enigma2/python', '/usr/lib/enigma2/receiver']\n")

    def test_devices(self):
        outcome = self.script("cat /dev/null; echo gone > /dev/null; sleep 1.2; cat /dev/null; head -c 3 /dev/zero | od -An -tx1;"
                              " head -c 100000 /dev/urandom | wc -c")
        self.assert_ends(outcome, 0, " 00 00 00\n100000\n")

    def test_server_and_client_on_loopback(self):
        outcome = self.run_inside("python2.7", "-c", """
import socket, threading
server = socket.socket()
server.bind(("127.0.0.1", 0))
server.listen(1)
threading.Thread(target=lambda: server.accept()[0].sendall("over loopback")).start()
print socket.create_connection(server.getsockname(), 5).recv(100)""")
        self.assert_ends(outcome, 0, "over loopback\n")

    # What passes through.

    def test_input_output_and_errors(self):
        self.assert_ends(self.script("cat; echo wrong >&2; exit 7", typed="a\0b\n"), 7, "a\0b\n", "wrong\n")

    def test_arguments(self):
        self.assert_ends(self.run_inside("printf", "<%s>", "a b", "", "*", "-x", "'\"\n"), 0, "<a b><><*><-x><'\"\n>")

    def test_killed_command(self):
        self.assert_ends(self.script("kill -9 $$"), 137, "")

    def test_command_that_is_not_there(self):
        self.assert_ends(self.run_inside("nowhere", environment={"LC_ALL": "C"}), 127, "",
                         "/usr/bin/env: 'nowhere': No such file or directory\n")

    def test_relative_instance(self):
        outcome = suite.run(self.way.command("an instance", ["pwd"]), self.way.environment, folder=self.folder)
        self.assert_ends(outcome, 0, "/\n")

    def test_own_interpreter(self):
        prefix = os.path.join(self.folder, "own")
        os.makedirs(prefix + "/bin")
        os.makedirs(prefix + "/lib")
        subprocess.check_call(["cp", "-al", os.path.join(suite.ROOT, "usr/lib/python2.7"), prefix + "/lib/"])
        shutil.copy(os.path.join(suite.ROOT, "usr/bin/python2.7"), prefix + "/bin/")
        outcome = self.run_inside("python2.7", "-c", "import os, sys\nprint sys.prefix\nprint os.environ['MORVESK_PYTHON']",
                                  environment={"MORVESK_PYTHON": prefix + "/bin/python2.7"})
        self.assert_ends(outcome, 0, "%s\n%s/bin/python2.7\n" % (prefix, prefix))

    # The terminal.

    def start_on_terminal(self, program):
        pid, descriptor = pty.fork()
        if pid == 0:
            line = self.way.command(self.instance, ["python2.7", "-u", "-c", program])
            os.execvpe(line[0], line, suite.surroundings(dict(self.way.environment, TERM="xterm")))
        self.addCleanup(os.close, descriptor)
        return pid, descriptor

    def exit_status(self, pid):
        return os.WEXITSTATUS(os.waitpid(pid, 0)[1])

    def test_keys_and_size_of_the_terminal(self):
        pid, descriptor = self.start_on_terminal("""
import fcntl, os, select, signal, struct, sys, termios
def size(*_):
    print "%d rows, %d columns" % struct.unpack("HHHH", fcntl.ioctl(0, termios.TIOCGWINSZ, " " * 8))[:2]
signal.signal(signal.SIGWINCH, size)
print "ready" if os.isatty(0) and os.isatty(1) and os.isatty(2) else "no terminal"
while True:
    try:
        if select.select([0], [], [], 0.02)[0]:
            break
    except select.error:
        pass
line = os.read(0, 100)
print "typed", line.strip()
sys.exit(4)
""")
        self.assertEqual(read_until(descriptor, "\n"), "ready\r\n")
        fcntl.ioctl(descriptor, termios.TIOCSWINSZ, struct.pack("HHHH", 33, 111, 0, 0))
        self.assertEqual(read_until(descriptor, "\n"), "33 rows, 111 columns\r\n")
        os.write(descriptor, "ok\r")
        self.assertEqual(read_until(descriptor, "typed ok\r\n"), "ok\r\ntyped ok\r\n")
        self.assertEqual(self.exit_status(pid), 4)

    def test_interrupt_key_is_for_the_command(self):
        pid, descriptor = self.start_on_terminal("""
import sys, time
try:
    print "ready"
    while True:
        time.sleep(0.02)
except KeyboardInterrupt:
    time.sleep(0.3)
    print "interrupted"
    sys.exit(5)
""")
        self.assertEqual(read_until(descriptor, "ready\r\n"), "ready\r\n")
        os.write(descriptor, "\x03")
        self.assertEqual(read_until(descriptor, "interrupted\r\n"), "^Cinterrupted\r\n")
        self.assertEqual(self.exit_status(pid), 5)

    # What is left behind.

    def start_processes(self):
        """Starts a parent, the sandbox below it, and processes of every kind inside."""
        self.token = "token-%s" % os.path.basename(self.folder)
        line = self.way.command(self.instance, ["python2.7", "/usr/lib/enigma2/receiver/inside.py", self.token])
        parent = subprocess.Popen(["sh", "-c", '"$@"; exit 9', "sh"] + line, stdout=subprocess.PIPE, close_fds=True,
                                  env=suite.surroundings(self.way.environment), preexec_fn=os.setpgrp)
        self.addCleanup(parent.stdout.close)
        self.addCleanup(self.kill_all)
        self.assertEqual(read_until(parent.stdout.fileno(), "\n"), "ready\n")
        self.assertGreaterEqual(len(with_token(self.token)), 6)
        return parent, children_of(parent.pid)[0]

    def kill_all(self):
        while with_token(self.token):
            for pid in with_token(self.token):
                try:
                    os.kill(pid, signal.SIGKILL)
                except OSError as error:
                    self.assertEqual(error.errno, errno.ESRCH)

    def assert_nothing_is_left(self, before):
        wait_until(lambda: not with_token(self.token))
        left = [(pid, parent_of(pid)) for pid in with_token(self.token)]
        self.assertEqual(left, [])
        self.assertEqual(mounts(), before)

    def check_kill(self, choose):
        before = mounts()
        parent, launcher = self.start_processes()
        choose(parent.pid, launcher)
        self.assert_nothing_is_left(before)
        parent.wait()

    def command_inside(self):
        return [pid for pid in with_token(self.token + "\0") if os.readlink("/proc/%d/exe" % pid).endswith("python2.7")
                and "inside.py" in open("/proc/%d/cmdline" % pid).read().split("\0")[1]]

    def test_kill_of_the_parent(self):
        self.check_kill(lambda parent, launcher: os.kill(parent, signal.SIGKILL))

    def test_kill_of_the_launcher(self):
        self.check_kill(lambda parent, launcher: os.kill(launcher, signal.SIGKILL))

    def test_end_of_the_launcher(self):
        self.check_kill(lambda parent, launcher: os.kill(launcher, signal.SIGTERM))

    def test_kill_of_the_command(self):
        self.check_kill(lambda parent, launcher: os.kill(self.command_inside()[-1], signal.SIGKILL))

    def test_kill_of_the_whole_process_group(self):
        self.check_kill(lambda parent, launcher: os.killpg(parent, signal.SIGKILL))

    def test_kill_of_everything_that_the_launcher_started(self):
        def kill_children(_, launcher):
            for pid in children_of(launcher):
                os.kill(pid, signal.SIGKILL)
        self.check_kill(kill_children)

    def test_end_of_the_command(self):
        before = mounts()
        self.token = "token-%s" % os.path.basename(self.folder)
        outcome = self.script("python2.7 /usr/lib/enigma2/receiver/inside.py %s > /tmp/said 2>&1 & "
                              "while ! grep -q ready /tmp/said; do sleep 0.1; done; exit 3" % self.token)
        self.assertEqual(outcome.status, 3)
        self.assert_nothing_is_left(before)


class Refusals(unittest.TestCase):
    """What is said where the receiver cannot be shut in, or where the command line is wrong."""

    def setUp(self):
        self.instance = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.instance)

    def check(self, words, expected, environment=None, before=()):
        outcome = suite.run(list(before) + [ways.SANDBOX] + list(words), environment)
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (2, "", expected))

    def test_wrong_command_lines(self):
        self.check([], USAGE)
        self.check([self.instance], USAGE)
        self.check([self.instance, "--"], USAGE)
        self.check([self.instance, "true"], USAGE)
        self.check(["--gun", self.instance, "--", "true"], "sandbox: unknown option '--gun'; see tools/sandbox --help\n")

    def test_folder_that_is_not_there(self):
        self.check(["/not/there", "--", "true"],
                   "sandbox: '/not/there' is not a folder that can be written; make the instance's folder first\n")

    def test_wrong_settings(self):
        self.check([self.instance, "--", "true"], "sandbox: MORVESK_SANDBOX is 'jail'; it may be bubblewrap or chroot\n",
                   {"MORVESK_SANDBOX": "jail"})
        self.check([self.instance, "--", "true"], "sandbox: MORVESK_PYTHON names '/bin/false', which is no Python\n",
                   {"MORVESK_PYTHON": "/bin/false"})

    def test_folder_with_a_system_of_its_own(self):
        if not ways.is_root():
            self.skipTest("only root may go by chroot")
        os.makedirs(self.instance + "/usr/bin")
        self.check([self.instance, "--", "true"],
                   "sandbox: '%s' holds a system that is not ours; give an instance's folder\n" % self.instance,
                   {"MORVESK_SANDBOX": "chroot"})
        self.assertEqual(os.listdir(self.instance + "/usr"), ["bin"])

    def test_nothing_is_allowed(self):
        words = ways.container("-sys_admin,-mknod,-sys_chroot")
        refusal = suite.run(words + ["true"])
        if refusal.status:
            self.skipTest(refusal.errors.strip())
        self.check([self.instance, "--", "true"],
                   "sandbox: the receiver cannot be shut in here: bubblewrap needs user namespaces, and the kernel's "
                   "setting user.max_user_namespaces is 0; chroot is refused (root here lacks the capability "
                   "CAP_SYS_CHROOT)\n", before=words)

    def test_chroot_for_an_ordinary_user(self):
        if ways.is_root():
            self.skipTest("run by root")
        self.check([self.instance, "--", "true"], "sandbox: the receiver cannot be shut in here: chroot is for root only\n",
                   {"MORVESK_SANDBOX": "chroot"})

    def test_bubblewrap_is_not_there(self):
        tools = os.path.join(self.instance, "tools")
        os.mkdir(tools)
        for name in ("bash", "sed", "dirname", "readlink", "mkdir", "env", "stat"):
            os.symlink(subprocess.check_output(["which", name]).strip(), os.path.join(tools, name))
        self.check([self.instance, "--", "true"],
                   "sandbox: the receiver cannot be shut in here: the package bubblewrap is missing\n",
                   {"MORVESK_SANDBOX": "bubblewrap", "PATH": tools})


def make_classes():
    """One class of checks for each way."""
    for way in ways.all_ways():
        name = "".join(word.capitalize() for word in way.name.split())
        globals()[name] = type(name, (Inside, unittest.TestCase), {"way": way, "__module__": __name__,
                                                                   "__doc__": "Shut in by %s." % way.name})


make_classes()

if __name__ == "__main__":
    suite.main()
