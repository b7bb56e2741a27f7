"""The commands that build for receivers: what they make, what they say, and how little they do the second time."""

import os
import re
import subprocess
import unittest

import suite

BUILD = os.path.join(suite.TOOLS, "build")
RELEASE = os.path.join(suite.TOOLS, "release")
MODULE = os.path.join(suite.CHECKOUT, "build", "%s", "Morvesk.so")
MACHINES = {"armhf": ("ELF32", "ARM"), "arm64": ("ELF64", "AArch64"), "mipsel": ("ELF32", "MIPS R3000")}


def machine_of(path):
    """Class and machine of an ELF file."""
    header = subprocess.check_output(["readelf", "-h", path], env=dict(os.environ, LC_ALL="C"))
    return tuple(re.search(r"^ *%s: *(.*?) *$" % name, header, re.M).group(1) for name in ("Class", "Machine"))


class Commands(unittest.TestCase):
    """The commands of the page for integrators."""

    maxDiff = None

    def test_build(self):
        for name in sorted(MACHINES):
            outcome = suite.run([BUILD, name])
            self.assertEqual((outcome.status, outcome.output), (0, MODULE % name + "\n"), outcome)
            self.assertEqual(machine_of(MODULE % name), MACHINES[name])

    def test_a_second_build_does_nothing(self):
        suite.run([BUILD, "armhf"])
        before = os.stat(MODULE % "armhf").st_mtime
        outcome = suite.run([BUILD, "armhf"])
        self.assertEqual((outcome.status, outcome.errors), (0, ""))
        self.assertEqual(os.stat(MODULE % "armhf").st_mtime, before)

    def test_presets(self):
        """In a checkout that has the interpreters, but where nothing was built yet."""
        folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, folder)
        suite.copy_sources(folder)
        os.symlink(os.path.join(suite.CHECKOUT, ".local"), os.path.join(folder, ".local"))
        for name in sorted(MACHINES):
            suite.run([BUILD, name])
            for command in (["cmake", "--preset", name], ["cmake", "--build", "--preset", name]):
                outcome = suite.run(command, folder=folder)
                self.assertEqual(outcome.status, 0, outcome)
            self.assertEqual(machine_of(os.path.join(folder, "build", name, "Morvesk.so")), MACHINES[name])

    def test_mistakes(self):
        for command, line in (
                ([BUILD, "sparc"], "build: no processor 'sparc': say armhf arm64 mipsel\n"),
                ([RELEASE, "armhf"], "release: usage: tools/release\n"),
                ([os.path.join(suite.TOOLS, "interpreter"), "sparc"],
                 "interpreter: no interpreter 'sparc': say armhf, arm64, mipsel or ucs2\n"),
                ([os.path.join(suite.TOOLS, "interpreter")], "interpreter: usage: tools/interpreter armhf|arm64|mipsel|ucs2\n"),
                ([os.path.join(suite.TOOLS, "receivers"), "--fast"],
                 "receivers: unknown option '--fast'; see tools/receivers --help\n")):
            outcome = suite.run(command)
            self.assertEqual((outcome.status, outcome.output, outcome.errors), (2, "", line))

    def test_release(self):
        outcome = suite.run([RELEASE])
        self.assertEqual(outcome.status, 0, outcome)
        folder = os.path.join(suite.CHECKOUT, "build", "release-packages")
        names = sorted(os.listdir(folder))
        self.assertEqual(outcome.output.splitlines(), [os.path.join(folder, name) for name in names])
        self.assertEqual([re.sub(r"_[0-9.]+-r0_", "_VERSION_", name) for name in names], ["SHA256SUMS"] + [
            "enigma2-plugin-systemplugins-qelpanel-morvesk_VERSION_%s.ipk" % name
            for name in ("aarch64", "armv7ahf-neon", "mips32el")])
        checked = suite.run(["sha256sum", "-c", "SHA256SUMS"], folder=folder)
        self.assertEqual((checked.status, checked.output), (0, "".join("%s: OK\n" % name for name in names[1:])))


if __name__ == "__main__":
    suite.main()
