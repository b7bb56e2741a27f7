"""Shell commands: real processes, their callbacks, their end."""

import errno
import fcntl
import os
import signal
import subprocess
import sys
import time
import unittest

import support


def alive(pid):
    """True while that process runs; one that only waits to be reaped does not."""
    try:
        with open("/proc/%d/stat" % pid) as source:
            return source.read().rpartition(")")[2].split()[0] != "Z"
    except IOError as error:
        if error.errno not in (errno.ENOENT, errno.ESRCH):
            raise
        return False


def wait_until(condition, seconds=10):
    """Wait without the main loop."""
    give_up = time.time() + seconds
    while not condition() and time.time() < give_up:
        time.sleep(0.01)
    return condition()


class Console(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from Components.Console import Console as HostConsole
        self.Console = HostConsole
        self.console = HostConsole()
        self.results = []

    def called(self, *arguments, **keywords):
        self.results.append((arguments, keywords))

    def finish(self, count=1):
        self.run_until(lambda: len(self.results) >= count)

    def pid(self, name):
        return self.console.appContainers[name].container.getPID()

    def file(self, name):
        return os.path.join(self.box.root, name)

    def test_the_callback_gets_output_exit_status_and_extra_arguments_by_position(self):
        self.console.ePopen("echo said; exit 3", self.called)
        self.assertEqual([], self.results)
        self.finish()
        self.assertEqual([(("said\n", 3, []), {})], self.results)
        self.assertIs(list, type(self.results[0][0][2]))

    def test_extra_arguments_come_back(self):
        extra = ["one", 2]
        self.console.ePopen("true", self.called, extra)
        self.finish()
        self.assertIs(extra, self.results[0][0][2])

    def test_a_bound_method_with_a_default_is_a_callback(self):
        outer = self

        class Owner(object):
            def finished(self, result, retval, extra_args=None):
                outer.called(result, retval, extra_args)

        self.console.ePopen("printf '%s' \"$0\"", Owner().finished)
        self.finish()
        self.assertEqual(("/bin/sh", 0, []), self.results[0][0])

    def test_standard_output_and_error_come_together_in_order(self):
        self.console.ePopen("echo one; echo two >&2; echo three; echo four >&2", self.called)
        self.finish()
        self.assertEqual("one\ntwo\nthree\nfour\n", self.results[0][0][0])

    def test_output_is_bytes_whole_and_of_any_length(self):
        self.console.ePopen("printf 'a\\000b\\377'; head -c 300000 /dev/zero", self.called)
        self.finish()
        self.assertEqual("a\0b\xff" + "\0" * 300000, self.results[0][0][0])

    def test_it_runs_beside_the_main_loop(self):
        import mainloop
        os.mkfifo(self.file("gate"))
        self.console.ePopen("read line < '%s'" % self.file("gate"), self.called)
        self.assertEqual([], self.results)
        self.assertEqual((False, True), (mainloop.idle(), mainloop.working()))
        mainloop.call_later(0, lambda: open(self.file("gate"), "w").write("open\n"))
        self.settle()
        self.assertEqual(1, len(self.results))
        self.assertTrue(mainloop.idle())

    def test_registered_under_its_text_until_its_end(self):
        item = self.console.ePopen("sleep 0.1", self.called)
        self.assertEqual({"sleep 0.1": item}, self.console.appContainers)
        self.finish()
        self.assertEqual({}, self.console.appContainers)

    def test_removed_before_the_callback_is_called(self):
        self.console.ePopen("true", lambda *_: self.called(len(self.console.appContainers)))
        self.finish()
        self.assertEqual([((0,), {})], self.results)

    def test_a_taken_name_gets_an_ending(self):
        for _each in range(3):
            self.console.ePopen("sleep 0.1", self.called)
        names = sorted(self.console.appContainers)
        self.assertEqual(3, len(names))
        self.assertEqual("sleep 0.1", names[0])
        for name in names[1:]:
            self.assertRegexpMatches(name, r"^sleep 0\.1@0x[0-9a-f]+$")
        self.finish(3)
        self.assertEqual({}, self.console.appContainers)

    def test_without_a_callback_it_runs_all_the_same(self):
        self.console.ePopen("echo done > '%s'" % self.file("mark"))
        self.settle()
        self.assertTrue(os.path.exists(self.file("mark")))
        self.assertEqual({}, self.console.appContainers)

    def test_the_end_is_the_end_of_the_output(self):
        self.console.ePopen("(sleep 0.2; echo late) & echo early", self.called)
        self.finish()
        self.assertEqual("early\nlate\n", self.results[0][0][0])

    def test_a_signal_shows_as_in_a_shell(self):
        self.console.ePopen("kill -TERM $$", self.called)
        self.finish()
        self.assertEqual(("", 143, []), self.results[0][0])

    def test_a_command_that_is_not_there(self):
        self.console.ePopen("/no/such/command", self.called)
        self.finish()
        self.assertEqual(127, self.results[0][0][1])

    def test_the_shell_gets_the_text_as_it_is(self):
        self.console.ePopen("A='x y' ; echo \"$A\" ;rm -rf %s" % self.file("none"), self.called)
        self.finish()
        self.assertEqual(("x y\n", 0, []), self.results[0][0])

    def test_a_broken_pipe_ends_a_program_as_in_a_shell(self):
        self.console.ePopen("yes | head -n 1", self.called)
        self.finish()
        self.assertEqual(("y\n", 0, []), self.results[0][0])

    def test_it_has_a_process_group_of_its_own_and_nothing_of_ours_open(self):
        null = os.open("/dev/null", os.O_RDONLY)
        self.addCleanup(os.close, null)
        ours = fcntl.fcntl(null, fcntl.F_DUPFD, 50)
        self.addCleanup(os.close, ours)
        self.console.ePopen("echo $(cut -d ' ' -f 5 /proc/$$/stat) $$ $(ls /proc/$$/fd)", self.called)
        self.finish()
        group, pid, descriptors = self.results[0][0][0].split(" ", 2)
        self.assertEqual(pid, group)
        self.assertNotEqual(os.getpgrp(), int(group))
        self.assertEqual(["0", "1", "2"], [each for each in descriptors.split() if each in "012" or int(each) > 10])

    def test_kill_ends_the_whole_group_and_nobody_is_called(self):
        self.console.ePopen("sleep 100 & echo $! > '%s'; wait" % self.file("pid"), self.called)
        name = list(self.console.appContainers)[0]
        shell = self.pid(name)
        self.assertTrue(wait_until(lambda: os.path.exists(self.file("pid")) and
                                   os.path.getsize(self.file("pid"))))
        with open(self.file("pid")) as source:
            child = int(source.read())
        self.console.kill(name)
        self.assertTrue(wait_until(lambda: not alive(child)))
        self.assertFalse(alive(shell))
        self.settle()
        self.assertEqual([], self.results)

    def test_the_two_kinds_of_hosts_after_kill(self):
        for removes, left in ((True, []), (False, ["sleep 100"])):
            self.console.KILL_REMOVES = removes
            self.console.ePopen("sleep 100", self.called)
            self.console.kill("sleep 100")
            self.assertEqual(left, list(self.console.appContainers))
            self.settle()
        self.assertEqual([], self.results)

    def test_a_loop_over_the_dict_itself_breaks_where_kill_removes(self):
        self.console.ePopen("sleep 100", self.called)
        self.console.ePopen("sleep 101", self.called)

        def kill_all():
            for name in self.console.appContainers:
                self.console.kill(name)
        self.assertRaises(RuntimeError, kill_all)
        self.console.killAll()
        self.assertEqual({}, self.console.appContainers)

    def test_kill_of_a_name_that_is_not_there(self):
        self.console.kill("nothing")

    def test_a_killed_command_is_killed_once(self):
        self.console.KILL_REMOVES = False
        self.console.ePopen("sleep 100", self.called)
        self.console.kill("sleep 100")
        self.console.kill("sleep 100")
        self.console.ePopen("sleep 0.01", self.called)
        self.finish()

    def test_an_error_in_a_callback_is_a_crash_of_the_host(self):
        def fail(*_arguments):
            raise ValueError("in the callback")
        self.console.ePopen("true", fail)
        self.assertEqual("ValueError: in the callback", self.crash().splitlines()[-1])

    def test_a_callback_must_take_three_arguments(self):
        self.console.ePopen("true", lambda result, retval: None)
        self.assertIn("takes exactly 2 arguments (3 given)", self.crash())

    def test_a_batch_runs_one_after_the_other(self):
        commands = ["echo 1 >> '%s'" % self.file("out"), "echo 2 >> '%s'" % self.file("out")]
        self.console.eBatch(commands, self.called, ["extra"])
        self.finish()
        with open(self.file("out")) as source:
            self.assertEqual("1\n2\n", source.read())
        self.assertEqual([((["extra"],), {})], self.results)

    def test_a_process_that_cannot_be_started_is_reported_to_the_callback(self):
        from native import container
        real = os.fork
        self.addCleanup(setattr, container.os, "fork", real)

        def no_fork():
            raise OSError(errno.EAGAIN, "Resource temporarily unavailable")
        container.os.fork = no_fork
        before = set(os.listdir("/proc/self/fd"))
        self.console.ePopen("true", self.called)
        self.assertEqual([(("", -errno.EAGAIN, []), {})], self.results)
        self.assertEqual({}, self.console.appContainers)
        self.assertEqual(before, set(os.listdir("/proc/self/fd")))

    def test_nothing_is_left_open_behind_a_command(self):
        self.console.ePopen("true", self.called)
        self.finish()
        before = set(os.listdir("/proc/self/fd"))
        self.console.ePopen("echo x", self.called)
        self.console.ePopen("sleep 100", self.called)
        self.console.kill("sleep 100")
        self.finish(2)
        self.assertEqual(before, set(os.listdir("/proc/self/fd")))

    def test_commands_die_with_the_receiver_however_it_dies(self):
        program = (
            "import sys; sys.path.insert(0, %r)\n"
            "import mainloop\n"
            "from Components.Console import Console\n"
            "console = Console()\n"
            "console.ePopen('sleep 100 & echo $! >> %s; sleep 101 & echo $! >> %s; wait')\n"
            "mainloop.run()\n" % (support.HOST, self.file("pids"), self.file("pids")))
        receiver = subprocess.Popen([sys.executable, "-B", "-c", program])

        def pids():
            try:
                with open(self.file("pids")) as source:
                    return [int(line) for line in source]
            except (IOError, ValueError):
                return []
        self.assertTrue(wait_until(lambda: len(pids()) == 2))
        self.assertTrue(all(alive(pid) for pid in pids()))
        receiver.send_signal(signal.SIGKILL)
        receiver.wait()
        self.assertTrue(wait_until(lambda: not any(alive(pid) for pid in pids())))


if __name__ == "__main__":
    unittest.main()
