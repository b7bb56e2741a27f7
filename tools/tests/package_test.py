"""The package of one processor, as a receiver's package manager takes it: what is in it, byte by byte, and that the receiver
of that processor installs lists with what comes out of it. MORVESK_KIND names the processor as Debian does.
"""

import collections
import gzip
import io
import os
import re
import subprocess
import sys
import tarfile
import unittest

import placed
import suite
from placed import process, support

KIND = os.environ.get("MORVESK_KIND", "armhf")
ARCHITECTURE = {"armhf": "armv7ahf-neon", "arm64": "aarch64", "mipsel": "mips32el"}[KIND]
NAME = "enigma2-plugin-systemplugins-qelpanel-morvesk"
PANEL = "usr/lib/enigma2/python/Plugins/SystemPlugins/QelPanel"
BUILD = os.path.join(suite.CHECKOUT, "build", KIND)
HEADERS = os.path.join(suite.CHECKOUT, ".local", "root-" + KIND, "usr", "include", "python2.7")
PYTHON = os.path.join(suite.CHECKOUT, ".local", "root-" + KIND, "usr", "bin", "python2.7")

CONTROL = """\
Package: %s
Version: %s
Description: Fetches and installs channel lists on an Enigma2 receiver
Section: base
Priority: optional
Maintainer: Morvesk's developers
License: MIT
Architecture: %s
Depends: enigma2, libc6, libgcc1, libstdc++6, python-core, python-datetime, python-netclient, python-shell
"""

Member = collections.namedtuple("Member", "name date user group mode content")


def project_version():
    """The version as the project's one place for it says."""
    with open(os.path.join(suite.CHECKOUT, "CMakeLists.txt")) as source:
        return re.search(r"project\(Morvesk\s+VERSION (\S+)", source.read()).group(1)


def read_bytes(path):
    """The content of a file."""
    with open(path, "rb") as source:
        return source.read()


def members(archive):
    """The members of an ar archive."""
    if archive[:8] != "!<arch>\n":
        raise ValueError("not an ar archive")
    found, position = [], 8
    while position < len(archive):
        header = archive[position:position + 60]
        size = int(header[48:58])
        found.append(Member(header[:16].strip().rstrip("/"), header[16:28].strip(), header[28:34].strip(),
                            header[34:40].strip(), header[40:48].strip(), archive[position + 60:position + 60 + size]))
        position += 60 + size + size % 2
    return found


def packed(folder, into):
    """Has CPack pack a build folder; gives the one package."""
    subprocess.check_call(["cpack", "-B", into], cwd=folder, stdout=open(os.devnull, "w"))
    names = [name for name in os.listdir(into) if name.endswith(".ipk")]
    if len(names) != 1:
        raise AssertionError("packages: %s" % names)
    return os.path.join(into, names[0])


class PackageCase(unittest.TestCase):
    """A test with a folder of its own."""

    maxDiff = None

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)

    def path(self, *names):
        """A path in the test's folder."""
        return os.path.join(self.folder, *names)


class Content(PackageCase):
    """What a package manager reads."""

    def setUp(self):
        PackageCase.setUp(self)
        self.package = packed(BUILD, self.path("packages"))
        self.members = members(read_bytes(self.package))

    def tar(self, name):
        content = [member.content for member in self.members if member.name == name][0]
        return tarfile.open(fileobj=io.BytesIO(content), mode="r:gz")

    def test_name(self):
        self.assertEqual(os.path.basename(self.package), "%s_%s-r0_%s.ipk" % (NAME, project_version(), ARCHITECTURE))

    def test_archive(self):
        self.assertEqual([member[:5] for member in self.members], [
            (name, "0", "0", "0", "644") for name in ("debian-binary", "control.tar.gz", "data.tar.gz")])
        self.assertEqual(self.members[0].content, "2.0\n")

    def test_compression_is_plain_gzip_without_time_or_name(self):
        for member in self.members[1:]:
            self.assertEqual(member.content[:9], "\x1f\x8b\x08\0\0\0\0\0\x02", member.name)

    def test_control(self):
        tar = self.tar("control.tar.gz")
        self.assertEqual([(entry.name, entry.mode, entry.uid, entry.gid, entry.mtime) for entry in tar], [
            (".", 0o755, 0, 0, 0), ("./control", 0o644, 0, 0, 0)])
        self.assertEqual(tar.extractfile("./control").read(),
                         CONTROL % (NAME, project_version() + "-r0", ARCHITECTURE))

    def test_another_package_manager_reads_it(self):
        wanted = "Package: %s\nVersion: %s-r0\nArchitecture: %s\n" % (NAME, project_version(), ARCHITECTURE)
        self.assertEqual(wanted, subprocess.check_output(["dpkg-deb", "-f", self.package, "Package", "Version", "Architecture"]))
        subprocess.check_call(["dpkg-deb", "-x", self.package, self.path("unpacked")])
        self.assertEqual(read_bytes(self.path("unpacked", PANEL, "Morvesk.so")), read_bytes(os.path.join(BUILD, "Morvesk.so")))

    def test_data(self):
        entries = list(self.tar("data.tar.gz"))
        folders, above = ["."], "."
        for part in PANEL.split("/"):
            above += "/" + part
            folders.append(above)
        self.assertEqual(
            [(entry.name, entry.type, entry.mode, entry.uname, entry.gname, entry.uid, entry.gid, entry.mtime)
             for entry in entries],
            [(name, tarfile.DIRTYPE, 0o755, "root", "root", 0, 0, 0) for name in folders] +
            [("./%s/Morvesk.so" % PANEL, tarfile.REGTYPE, 0o644, "root", "root", 0, 0, 0)])

    def test_nothing_that_the_panel_has(self):
        panel = os.listdir(os.path.join(suite.CHECKOUT, "receiver", "host", "Plugins", "SystemPlugins", "QelPanel"))
        self.assertIn("plugin.py", panel)
        packed_names = [os.path.basename(entry.name) for entry in self.tar("data.tar.gz") if entry.isfile()]
        self.assertEqual([name for name in packed_names if name in panel], [])

    def test_the_module_is_the_built_one(self):
        self.assertEqual(self.tar("data.tar.gz").extractfile("./%s/Morvesk.so" % PANEL).read(),
                         read_bytes(os.path.join(BUILD, "Morvesk.so")))

    def test_every_needed_library_has_its_package(self):
        packages = {"libc.so.6": "libc6", "libm.so.6": "libc6", "libgcc_s.so.1": "libgcc1", "libstdc++.so.6": "libstdc++6"}
        needed = re.findall(r"\(NEEDED\).*\[(.*)\]", subprocess.check_output(
            ["readelf", "-d", os.path.join(BUILD, "Morvesk.so")]))
        depends = re.search(r"^Depends: (.*)$", CONTROL, re.M).group(1).split(", ")
        self.assertGreater(len(needed), 2)
        self.assertEqual([name for name in needed if packages[name] not in depends], [])


class Making(PackageCase):
    """How a package is made."""

    def build(self, name, umask, settings=(), **environment):
        """Builds from a copy of the sources, as on another machine; gives the package."""
        copy, build = self.path(name), self.path(name, "the build")
        suite.copy_sources(copy)
        command = 'umask %s && cmake -S "$0" -B "$1" -G Ninja --toolchain "$0/cmake/%s.cmake" ' \
            '"-DMORVESK_PYTHON_INCLUDE=%s" "$@" && cmake --build "$1"' % (umask, KIND, HEADERS)
        outcome = suite.run(["sh", "-c", command, copy, build] + list(settings), environment)
        self.assertEqual(outcome.status, 0, outcome)
        return packed(build, self.path(name, "packages"))

    def test_the_same_from_two_folders(self):
        one = self.build("one", "022", TZ="UTC", LC_ALL="C")
        two = self.build("another folder further away", "077", TZ="Asia/Tokyo", LC_ALL="C.UTF-8", SOURCE_DATE_EPOCH="12345")
        self.assertEqual(os.path.basename(one), os.path.basename(two))
        self.assertEqual(read_bytes(one), read_bytes(two))

    def test_name_architecture_and_needs_can_be_set(self):
        package = self.build("set", "022", [
            "-DMORVESK_PACKAGE_NAME=enigma2-plugin-extensions-lists", "-DMORVESK_PACKAGE_ARCHITECTURE=cortexa15hf-neon-vfpv4",
            "-DMORVESK_PACKAGE_DEPENDS=enigma2 (>= 2.7), glibc"])
        self.assertEqual(os.path.basename(package),
                         "enigma2-plugin-extensions-lists_%s-r0_cortexa15hf-neon-vfpv4.ipk" % project_version())
        with gzip.GzipFile(fileobj=io.BytesIO(members(read_bytes(package))[1].content)) as control:
            text = control.read()
        self.assertIn("\nDepends: enigma2 (>= 2.7), glibc\n", text)


class Installed(PackageCase):
    """The receiver of that processor, after its package manager has unpacked the package with BusyBox."""

    def setUp(self):
        PackageCase.setUp(self)
        os.makedirs(self.path("instance", "tmp", "root"))
        package = packed(BUILD, self.path("instance", "tmp"))
        outcome = suite.run([
            os.path.join(suite.TOOLS, "sandbox"), self.path("instance"), "--", "/bin/sh", "-c",
            "cd /tmp/root && busybox ar -p /tmp/%s data.tar.gz | busybox tar -xz" % os.path.basename(package)])
        self.assertEqual((outcome.status, outcome.output, outcome.errors), (0, "", ""))
        self.root = self.path("instance", "tmp", "root")

    def check_installs(self, name):
        """Runs an end-to-end suite's test of a whole installation with what was unpacked."""
        kind = name.lower()
        outcome = suite.run(
            [os.path.join(suite.TOOLS, "python"), os.path.join(suite.CHECKOUT, "receiver", "tests", "test_%s.py" % kind),
             name + ".test_every_screen_and_every_file"],
            {"MORVESK_PYTHON": PYTHON, "MORVESK_MODULE": os.path.join(self.root, PANEL, "Morvesk.so")})
        self.assertEqual((outcome.status, outcome.output), (0, ""), outcome)
        self.assertRegexpMatches(outcome.errors, r"\A\.\n-+\nRan 1 test in ")

    def receiver_without_module(self, name):
        """A receiver whose panel lacks the module."""
        receiver = placed.Placed(self.path(name), os.path.join(BUILD, "Morvesk.so"))
        self.addCleanup(receiver.remove)
        os.remove(receiver.path(PANEL + "/Morvesk.so"))
        return receiver

    def test_in_its_place_on_the_receiver(self):
        os.environ["MORVESK_PYTHON"] = PYTHON
        self.addCleanup(os.environ.pop, "MORVESK_PYTHON")
        outcome, lines = self.receiver_without_module("before").play("ok ok ok")
        self.assertEqual((outcome, lines[-1]), (process.CRASHED, "ImportError: No module named Morvesk"))
        receiver = self.receiver_without_module("after")
        programs = receiver.files("usr")
        subprocess.check_call(["cp", "-R", os.path.join(self.root, "."), receiver.path("/")])
        self.assertEqual(receiver.play("ok ok ok"), (process.CLOSED, []))
        installed = set(receiver.files("etc/enigma2")) - set(support.own_settings())
        self.assertEqual(installed, set(support.new_list()) - set(support.own_settings()) | set(["lamedb5"]))
        for name in support.read_folder(self.root):
            os.remove(receiver.path(name))
        self.assertEqual(receiver.files("usr"), programs)

    def test_only_the_module_was_unpacked(self):
        found = [os.path.relpath(os.path.join(path, name), self.root)
                 for path, _, names in os.walk(self.root) for name in names]
        self.assertEqual(found, [PANEL + "/Morvesk.so"])

    def test_append(self):
        self.check_installs("Append")

    def test_overwrite(self):
        self.check_installs("Overwrite")


if __name__ == "__main__":
    if not os.path.isfile(os.path.join(BUILD, "Morvesk.so")):
        sys.stderr.write("Nothing is built for %s: run tools/build %s\n" % (KIND, KIND))
        sys.exit(2)
    suite.main()
