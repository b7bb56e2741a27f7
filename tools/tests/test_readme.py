"""Runs the commands of the README, each as it stands there, in a folder of a user's own."""

import os
import re
import unittest

import suite

README = os.path.join(suite.CHECKOUT, "README.md")
GENERATOR = os.path.join(suite.CHECKOUT, "receiver", "feed", "make_feed.py")

# This suite is run by one of them, and another takes a while, and the compilers of other processors, so that it has a suite
# of its own.
SHOWN_ELSEWHERE = {"./test": "the command that runs this suite", "tools/build armhf": "build.commands"}

APPENDED = "Loading new services list finished succesfully."
CHANGED = "What has changed on the receiver:\n  transponders  34 -> "


def commands():
    """The lines of the README's shell blocks."""
    with open(README) as page:
        blocks = re.findall(r"^```sh\n(.*?)^```$", page.read(), re.MULTILINE | re.DOTALL)
    return [line for block in blocks for line in block.splitlines()]


def contents(folder):
    """The files of a folder by their names."""
    files = {}
    for name in os.listdir(folder):
        with open(os.path.join(folder, name), "rb") as stream:
            files[name] = stream.read()
    return files


class Commands(unittest.TestCase):
    """A user's folder: the checkout's commands, a copy of a receiver's settings and a feed of one's own."""

    tested = set()

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)
        for name in ("run", "test", "tools"):
            os.symlink(os.path.join(suite.CHECKOUT, name), os.path.join(self.folder, name))
        for arguments in (["my-feed"], ["my-enigma2", "--settings"]):
            self.assertEqual(suite.run([suite.INTERPRETER, GENERATOR] + arguments, folder=self.folder).status, 0)

    def run_command(self, command):
        """Runs one of the README's commands; it has to stand there."""
        self.assertIn(command, commands())
        Commands.tested.add(command)
        outcome = suite.run(["sh", "-c", command], folder=self.folder)
        self.assertEqual(outcome.status, 0, outcome)
        return outcome.output

    def kept(self):
        """The files that --keep has saved."""
        return sorted(os.listdir(os.path.join(self.folder, "result")))

    def test_a_first_try(self):
        output = self.run_command("./run")
        self.assertIn(APPENDED, output)
        self.assertIn(CHANGED, output)

    def test_ones_own_settings(self):
        before = contents(os.path.join(self.folder, "my-enigma2"))
        output = self.run_command("./run --settings my-enigma2 --keep result")
        self.assertIn(CHANGED, output)
        self.assertEqual(contents(os.path.join(self.folder, "my-enigma2")), before)
        self.assertTrue(set(before) < set(self.kept()))

    def test_ones_own_feed(self):
        self.assertIn(APPENDED, self.run_command("./run --feed my-feed"))

    def test_a_list_by_keys(self):
        output = self.run_command('./run --feed my-feed --keys "down ok ok ok" --keep result')
        self.assertIn("  > Kormoran - ", output)
        self.assertIn(APPENDED, output)
        self.assertEqual(60, len([name for name in self.kept() if re.match(r"userbouquet\.kormoran.*", name)]))

    def test_the_suites_are_named(self):
        outcome = suite.run(["./test", "--list"], folder=self.folder)
        self.assertEqual(outcome.status, 0, outcome)
        self.assertRegexpMatches(outcome.output, r"(?m)^release +module\.surface$")

    @classmethod
    def tearDownClass(cls):
        missed = set(commands()) - cls.tested - set(SHOWN_ELSEWHERE)
        assert not missed, "no test has run these commands of the README: %s" % ", ".join(sorted(missed))


if __name__ == "__main__":
    suite.main()
