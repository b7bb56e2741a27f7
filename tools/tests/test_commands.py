"""The commands ./run and ./test: from anywhere, by any name, and what they say about mistakes."""

import os
import shutil
import subprocess
import unittest

import suite

RUN = os.path.join(suite.CHECKOUT, "run")
TEST = os.path.join(suite.CHECKOUT, "test")
SUITES = """\
add_test(passes "/bin/true")
add_test(passes.too "/bin/true")
add_test(fails "/bin/false")
add_test(is.skipped "/bin/sh" "-c" "exit 77")
set_tests_properties(is.skipped PROPERTIES SKIP_RETURN_CODE 77)
add_test(is.disabled "/bin/true")
set_tests_properties(is.disabled PROPERTIES DISABLED TRUE)
add_test(is.lost "/not/there")
add_test(is.partly "/bin/sh" "partly")
add_test(is.nearly "/bin/echo" "not run: it's that")
"""
PARTLY = """\
seq 1000
echo 'not run: one <check> & more: no "such" machine'
"""


class Run(unittest.TestCase):
    """./run"""

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)

    def test_through_a_link_from_anywhere(self):
        link = os.path.join(self.folder, "receiver")
        os.symlink(RUN, link)
        here = suite.run([RUN, "--keys", "exit"])
        there = suite.run([link, "--keys", "exit"], folder="/")
        self.assertEqual((there.status, there.output), (0, here.output))
        self.assertEqual(here.output.splitlines()[-1], "Nothing has changed on the receiver.")

    def test_second_start_says_nothing_of_its_own(self):
        suite.run([RUN, "--keys", "exit"])
        self.assertEqual(suite.run([RUN, "--keys", "exit"]).errors, "")

    def test_exit_status_passes_through(self):
        self.assertEqual(suite.run([RUN, "--keys", "down"]).status, 1)
        self.assertEqual(suite.run([RUN, "--nonsense"]).status, 2)

    def test_help_is_that_of_the_receiver(self):
        receiver = suite.run([suite.INTERPRETER, os.path.join(suite.CHECKOUT, "receiver", "start.py"), "--help"],
                             {"COLUMNS": "80"})
        self.assertEqual(receiver.status, 0)
        outcome = suite.run([RUN, "--help"])
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, receiver.output, ""),
                         "tools/help/run is not what the receiver says: COLUMNS=80 tools/python receiver/start.py --help")

    def test_help_of_a_fresh_clone(self):
        shutil.copy(RUN, self.folder)
        subprocess.check_call(["cp", "-a", suite.TOOLS, self.folder])
        before = sorted(os.listdir(self.folder))
        outcome = suite.run([self.folder + "/run", "--help"])
        self.assertEqual((outcome.status, outcome.errors), (0, ""))
        self.assertEqual(sorted(os.listdir(self.folder)), before)


class Test(unittest.TestCase):
    """./test"""

    def check_mistake(self, words, text):
        outcome = suite.run([TEST] + words)
        self.assertEqual((outcome.status, outcome.output, outcome.errors.splitlines(True)[-1]), (2, "", text))

    def test_mistakes(self):
        self.check_mistake(["--fast"], "test: unknown option '--fast'; see ./test --help\n")
        self.check_mistake([""], "test: unknown option ''; see ./test --help\n")
        self.check_mistake(["text", "module"], "test: one name is enough: 'text' or 'module'\n")
        self.check_mistake(["no.such.suite"],
                           "test: no suite's name begins with 'no.such.suite'; ./test --list names them all\n")

    def test_names(self):
        outcome = suite.run([TEST, "--list", "tools.s"])
        self.assertEqual((outcome.status, outcome.output), (
            0, "release  tools.sandbox\nrelease  tools.setup\n"))

    def test_commands_of_their_own(self):
        for option, tool in (("--fuzz", "fuzz"), ("--coverage", "coverage"), ("--memcheck", "memcheck"),
                             ("--receivers", "receivers")):
            outcome = suite.run([TEST, option, "--help"])
            self.assertEqual((outcome.status, outcome.errors), (0, ""), outcome)
            self.assertIn("\nusage: tools/%s" % tool, outcome.output)
            mistake = suite.run([TEST, option, "--nonsense"])
            self.assertEqual((mistake.status, mistake.errors.splitlines()[-1]),
                             (2, "%s: unknown option '--nonsense'; see tools/%s --help" % (tool, tool)))

    def test_bench_only_checks(self):
        outcome = suite.run([TEST, "--bench", "--text"])
        self.assertEqual((outcome.status, outcome.errors.splitlines()[-1]),
                         (2, "bench: one of --check, --only, --catalogue and --text is enough"))


class BuildService(unittest.TestCase):
    """What the build service runs."""

    def service(self, failing):
        """Its exit status and the commands that it has run, the one that is named being one that fails."""
        checkout = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, checkout)
        os.mkdir(checkout + "/.ci")
        shutil.copy(os.path.join(suite.CHECKOUT, ".ci", "run"), checkout + "/.ci")
        with open(checkout + "/test", "w") as target:
            target.write('#!/bin/sh\necho "$@"\n[ "$1" != "%s" ]\n' % failing)
        os.chmod(checkout + "/test", 0o755)
        outcome = suite.run(["bash", ".ci/run"], folder=checkout)
        return outcome.status, outcome.output.splitlines()

    def test_everything_but_the_fuzzers(self):
        self.assertEqual(self.service("none"), (0, [
            "--all", "--coverage", "--memcheck", "--receivers pc armhf arm64 build.reader build.sdk", "--bench"]))

    def test_a_failure_is_its_own(self):
        self.assertEqual(self.service("--memcheck"), (1, ["--all", "--coverage", "--memcheck"]))


class Suites(unittest.TestCase):
    """What counts as passed."""

    def setUp(self):
        self.checkout = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.checkout)
        os.makedirs(self.checkout + "/build/release")
        with open(self.checkout + "/build/release/CTestTestfile.cmake", "w") as target:
            target.write(SUITES)
        with open(self.checkout + "/build/release/partly", "w") as target:
            target.write(PARTLY)

    def suites(self, name):
        program = 'for part in say suites; do . "$1/lib/$part.sh"; done; checkout=$2 name=$3 presets=(release); run_suites'
        outcome = suite.run(["bash", "-c", program, "test", suite.TOOLS, self.checkout, name])
        return outcome.status, "".join(line for line in outcome.errors.splitlines(True) if line.startswith("test: "))

    def test_passed(self):
        self.assertEqual(self.suites("passes"), (0, "test: running the suites of build/release\n"))

    def test_failed(self):
        self.assertEqual(self.suites("fails")[0], 1)
        self.assertEqual(self.suites("")[0], 1)

    def test_not_run(self):
        for name in ("is.skipped", "is.disabled", "is.lost"):
            self.assertEqual(self.suites(name), (
                1, "test: running the suites of build/release\ntest: release: %s did not run\n" % name))

    def test_checks_not_run(self):
        for name, check in (("is.partly", 'one <check> & more: no "such" machine'), ("is.nearly", "it's that")):
            self.assertEqual(self.suites(name), (
                0, "test: running the suites of build/release\ntest: release: not run on this machine: %s\n" % check))

    def test_no_such_name(self):
        self.assertEqual(self.suites("p.sses"), (
            2, "test: no suite's name begins with 'p.sses'; ./test --list names them all\n"))


if __name__ == "__main__":
    suite.main()
