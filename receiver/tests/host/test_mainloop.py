"""The main loop: order of calls, file descriptors, idleness, crashes."""

import os
import signal
import unittest

import support


class MainLoop(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        import mainloop
        self.loop = mainloop
        self.calls = []

    def note(self, text):
        return lambda: self.calls.append(text)

    def test_run_ends_when_nothing_is_left_that_could_call(self):
        self.loop.call_later(0, self.note("only"))
        self.loop.run()
        self.assertEqual(["only"], self.calls)

    def test_calls_come_in_the_order_of_their_time_then_of_their_making(self):
        self.loop.call_later(0.03, self.note("late"))
        self.loop.call_later(0, self.note("first"))
        self.loop.call_later(0, self.note("second"))
        self.loop.call_later(-5, self.note("third"))
        self.loop.run()
        self.assertEqual(["first", "second", "third", "late"], self.calls)

    def test_a_call_is_never_made_before_its_time(self):
        begin = self.loop.now()
        self.loop.call_later(0.05, self.note("now"))
        self.loop.run()
        # The difference of two readings of the clock is exact to less than a microsecond only.
        self.assertGreaterEqual(round(self.loop.now() - begin, 6), 0.05)

    def test_a_cancelled_call_is_not_made(self):
        handle = self.loop.call_later(0, self.note("cancelled"))
        self.loop.call_later(0, self.note("other"))
        self.loop.cancel(handle)
        self.loop.run()
        self.loop.cancel(handle)
        self.assertEqual(["other"], self.calls)

    def test_a_call_cancelled_by_the_one_before_it_is_not_made(self):
        self.loop.call_later(0, lambda: self.loop.cancel(handle))
        handle = self.loop.call_later(0, self.note("cancelled"))
        self.loop.run()
        self.assertEqual([], self.calls)

    def test_what_is_due_at_once_is_not_made_inside_the_call_that_asks_for_it(self):
        def ask():
            self.loop.call_later(0, self.note("asked for"))
            self.calls.append("asking")
        self.loop.call_later(0, ask)
        self.loop.run()
        self.assertEqual(["asking", "asked for"], self.calls)

    def test_descriptors_get_their_turn_between_calls_that_never_end(self):
        reading, writing = os.pipe()
        os.write(writing, "x")

        def again():
            self.loop.call_later(0, again)

        def read():
            self.calls.append(os.read(reading, 1))
            self.loop.stop()
        again()
        self.loop.add_reader(reading, read)
        self.loop.run()
        self.assertEqual(["x"], self.calls)
        os.close(reading)
        os.close(writing)

    def test_a_closed_pipe_can_be_read_and_a_removed_reader_is_left_alone(self):
        reading, writing = os.pipe()
        os.close(writing)

        def read():
            self.calls.append(os.read(reading, 1))
            self.loop.remove_reader(reading)
            self.loop.remove_reader(reading)
        self.loop.add_reader(reading, read)
        self.loop.run()
        self.assertEqual([""], self.calls)
        os.close(reading)

    def test_a_reader_removed_by_another_one_is_not_called(self):
        pipes = [os.pipe(), os.pipe()]

        def read():
            self.calls.append("read")
            for reading, _ in pipes:
                self.loop.remove_reader(reading)
        for reading, writing in pipes:
            os.write(writing, "x")
            self.loop.add_reader(reading, read)
        self.loop.run()
        self.assertEqual(["read"], self.calls)
        for reading, writing in pipes:
            os.close(reading)
            os.close(writing)

    def test_stop_ends_the_loop_behind_the_call_that_is_made(self):
        def stop():
            self.loop.stop()
            self.calls.append("stopping")
        self.loop.call_later(0, stop)
        self.loop.call_later(0, self.note("left"))
        self.loop.run()
        self.assertEqual(["stopping"], self.calls)
        self.loop.run()
        self.assertEqual(["stopping", "left"], self.calls)

    def test_a_signal_does_not_end_the_wait(self):
        old = signal.signal(signal.SIGALRM, lambda *_: self.calls.append("signal"))
        self.addCleanup(signal.signal, signal.SIGALRM, old)
        signal.setitimer(signal.ITIMER_REAL, 0.02)
        self.loop.call_later(0.1, self.note("call"))
        looked = []
        real = self.loop._readable
        self.loop._readable = lambda: looked.append(1) or real()
        self.loop.run()
        self.assertEqual(["signal", "call"], self.calls)
        self.assertLess(len(looked), 10)
        self.assertIsNone(self.loop.crash())

    def test_a_signal_just_before_the_wait_ends_it(self):
        from select import select
        old = signal.signal(signal.SIGUSR1, lambda *_: self.loop.stop())
        self.addCleanup(signal.signal, signal.SIGUSR1, old)

        class Late(object):
            error = self.loop.select.error

            def select(self, *arguments):
                pid = os.fork()
                if pid == 0:
                    os.kill(os.getppid(), signal.SIGUSR1)
                    os._exit(0)
                os.waitpid(pid, 0)
                return select(*arguments)
        real, self.loop.select = self.loop.select, Late()
        self.addCleanup(setattr, self.loop, "select", real)
        begin = self.loop.now()
        self.loop.call_later(5, self.note("too late"))
        self.loop.run()
        self.assertEqual([], self.calls)
        self.assertLess(self.loop.now() - begin, 4)

    def test_idle_with_nothing_due_and_no_work(self):
        self.assertTrue(self.loop.idle())
        self.loop.call_later(60, self.note("later"))
        self.assertTrue(self.loop.idle())
        handle = self.loop.call_later(0, self.note("now"))
        self.assertFalse(self.loop.idle())
        self.loop.cancel(handle)
        self.assertTrue(self.loop.idle())
        self.loop.work_begins("command")
        self.assertEqual((False, True), (self.loop.idle(), self.loop.working()))
        self.loop.work_ends("command")
        self.assertEqual((True, False), (self.loop.idle(), self.loop.working()))

    def test_an_exception_ends_the_loop_for_good_and_is_kept(self):
        def fail():
            raise ValueError("what happened")
        self.loop.call_later(0, fail)
        self.loop.call_later(0, self.note("behind"))
        self.loop.run()
        self.assertEqual([], self.calls)
        lines = self.loop.crash().splitlines()
        self.assertEqual("Traceback (most recent call last):", lines[0])
        self.assertIn("in fail", lines[-3])
        self.assertEqual("ValueError: what happened", lines[-1])
        self.loop.run()
        self.assertEqual([], self.calls)

    def test_an_interrupt_leaves_the_loop(self):
        def interrupt():
            raise KeyboardInterrupt
        self.loop.call_later(0, interrupt)
        self.assertRaises(KeyboardInterrupt, self.loop.run)
        self.assertIsNone(self.loop.crash())


class Timer(support.HostCase):

    def setUp(self):
        support.HostCase.setUp(self)
        from enigma import eTimer
        self.timer = eTimer()
        self.calls = []
        self.timer.callback.append(lambda: self.calls.append("one"))
        self.timer.callback.append(lambda: self.calls.append("two"))

    def test_a_single_shot_calls_every_function_once_from_the_main_loop(self):
        self.timer.start(0, True)
        self.assertEqual([], self.calls)
        self.assertTrue(self.timer.isActive())
        self.settle()
        self.assertEqual(["one", "two"], self.calls)
        self.assertFalse(self.timer.isActive())

    def test_without_single_shot_it_goes_on_until_it_is_stopped(self):
        self.timer.start(5)
        self.run_until(lambda: len(self.calls) >= 6)
        self.assertTrue(self.timer.isActive())
        self.timer.stop()
        count = len(self.calls)
        self.settle()
        self.assertEqual((False, count), (self.timer.isActive(), len(self.calls)))

    def test_started_again_it_forgets_the_first_start(self):
        self.timer.start(0, True)
        self.timer.start(0, True)
        self.settle()
        self.assertEqual(["one", "two"], self.calls)


class Change(support.HostCase):

    def test_many_changes_are_told_once_and_on_the_main_loop(self):
        from native import display
        import mainloop
        told = []
        display.add_listener(lambda: told.append("told"))
        display.changed()
        display.changed()
        self.assertEqual([], told)
        mainloop.run()
        self.assertEqual(["told"], told)
        display.changed()
        mainloop.run()
        self.assertEqual(["told", "told"], told)

    def test_told_again_when_what_was_due_has_been_done(self):
        import mainloop
        from native import display
        idle = []
        display.add_listener(lambda: idle.append(mainloop.idle()))
        display.changed()
        mainloop.call_later(0, lambda: None)
        self.settle()
        self.assertTrue(idle[-1])


if __name__ == "__main__":
    unittest.main()
