"""Built with an image's own SDK, by the very commands that docs/integrator.md gives: a stand-in SDK as image builders ship
them, whose compiler accepts nothing but the image's flags, and a machine all of whose interpreters complain when asked.
"""

import os
import re
import subprocess
import tempfile
import unittest

import suite

PAGE = os.path.join(suite.CHECKOUT, "docs", "integrator.md")
ARMHF = os.path.join(suite.CHECKOUT, ".local", "root-armhf", "usr")
TARGET = "arm-image-linux-gnueabi"
REAL = "arm-linux-gnueabihf"
FLAGS = "-march=armv7-a -mfpu=neon -mfloat-abi=hard"

ENVIRONMENT = """\
# Made to be sourced by the shell that builds.
export SDKTARGETSYSROOT="%(sysroot)s"
export PATH="%(programs)s:$PATH"
export CC="%(target)s-gcc %(flags)s --sysroot=$SDKTARGETSYSROOT"
export CXX="%(target)s-g++ %(flags)s --sysroot=$SDKTARGETSYSROOT"
export CFLAGS=" -O2 -pipe -g -feliminate-unused-debug-types "
export CXXFLAGS=" -O2 -pipe -g -feliminate-unused-debug-types -Waggregate-return "
export LDFLAGS="-Wl,-O1 -Wl,--hash-style=gnu -Wl,--as-needed"
export AR=%(target)s-ar
export STRIP=%(target)s-strip
export OECORE_TARGET_SYSROOT="$SDKTARGETSYSROOT"
"""

TOOLCHAIN = """\
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_SYSROOT "%(sysroot)s")
set(CMAKE_CXX_COMPILER "%(programs)s/%(target)s-g++")
set(CMAKE_CXX_FLAGS "%(flags)s --sysroot=%(sysroot)s -Waggregate-return" CACHE STRING "")
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
"""

# One compiler for all processors, which has to be told for which one.
CLANG_TOOLCHAIN = """\
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR arm)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET %(real)s)
"""

COMPILER = """\
#!/bin/sh
printf '%%s\\n' "$*" >>"%(log)s"
case "$*" in
    *-dumpmachine*) echo %(target)s; exit ;;
    *-march=armv7-a*-mfpu=neon*--sysroot=%(sysroot)s* | *--sysroot=%(sysroot)s*-march=armv7-a*-mfpu=neon*) ;;
    *-v* | *--version*) ;;
    *) echo "%(target)s: built without the image's flags: $*" >&2; exit 1 ;;
esac
exec %(real)s-g++ "$@"
"""

TATTLER = """\
#!/bin/sh
echo "$0 $*" >>"%(asked)s"
exit 1
"""


def commands(heading):
    """The block of commands below a heading of the page."""
    with open(PAGE) as source:
        page = source.read()
    found = re.search(r"^#+ %s\n.*?^```sh\n(.*?)^```$" % re.escape(heading), page, re.S | re.M)
    if not found:
        raise AssertionError("the page has no commands below %r" % heading)
    return found.group(1)


class Sdk(unittest.TestCase):
    """A stand-in SDK, and a copy of the sources beside it."""

    maxDiff = None

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)
        # Neither SDKs nor make files know blanks.
        self.sdk = tempfile.mkdtemp(prefix="image-sdk-")
        self.addCleanup(suite.remove_folder, self.sdk)
        self.names = {
            "sysroot": self.sdk + "/sysroots/armv7ahf-neon-image-linux-gnueabi",
            "programs": self.sdk + "/sysroots/x86_64-imagesdk-linux/usr/bin/" + TARGET,
            "log": self.sdk + "/compiler.log", "asked": self.sdk + "/asked", "target": TARGET, "real": REAL, "flags": FLAGS}
        self.environment_file = self.sdk + "/environment-setup-armv7ahf-neon-image-linux-gnueabi"
        self.toolchain_file = self.sdk + "/sysroots/x86_64-imagesdk-linux/usr/share/cmake/ImageToolchainConfig.cmake"
        self.make_programs()
        self.make_sysroot()
        self.write(self.environment_file, ENVIRONMENT)
        self.write(self.toolchain_file, TOOLCHAIN)
        self.checkout = os.path.join(self.folder, "checkout")
        suite.copy_sources(self.checkout)

    def write(self, path, text, mode=0o644):
        if not os.path.isdir(os.path.dirname(path)):
            os.makedirs(os.path.dirname(path))
        with open(path, "w") as target:
            target.write(text % self.names)
        os.chmod(path, mode)

    def make_programs(self):
        programs = self.names["programs"]
        for name in ("gcc", "g++"):
            self.write("%s/%s-%s" % (programs, TARGET, name), COMPILER, 0o755)
        for name in ("ar", "ranlib", "strip", "nm", "objdump", "objcopy", "readelf", "ld", "gcc-ar", "gcc-ranlib"):
            self.write("%s/%s-%s" % (programs, TARGET, name), "#!/bin/sh\nexec %%(real)s-%s \"$@\"\n" % name, 0o755)
        for name in ("python", "python2", "python2.7", "python3", "python-config", "python2.7-config", "python3-config",
                     "pkg-config"):
            self.write("%s/tattlers/%s" % (self.sdk, name), TATTLER, 0o755)

    def make_sysroot(self):
        """The headers of an image's interpreter lie in one folder."""
        headers = self.names["sysroot"] + "/usr/include/python2.7"
        os.makedirs(os.path.dirname(headers))
        subprocess.check_call(["cp", "-r", ARMHF + "/include/python2.7", headers])
        os.remove(headers + "/pyconfig.h")
        subprocess.check_call(["cp", ARMHF + "/include/%s/python2.7/pyconfig.h" % REAL, headers])

    def build(self, text):
        """Runs the page's commands in the checkout, with this SDK in the place of the page's."""
        text = text.replace("/opt/image-sdk/environment-setup-armv7ahf-neon-image-linux-gnueabi", self.environment_file)
        text = text.replace("/opt/image-sdk/toolchain.cmake", self.toolchain_file)
        text = text.replace("/opt/image-sdk/sysroot", self.names["sysroot"])
        self.assertNotIn("/opt/", text)
        return suite.run(["sh", "-e", "-c", text], {"PATH": self.sdk + "/tattlers:" + os.environ["PATH"]},
                         folder=self.checkout)

    def check_built(self, outcome, build):
        """The module is the image's: by its compiler, flags and headers, and runs."""
        self.assertEqual(outcome.status, 0, outcome)
        self.assertIn("warning: function returns an aggregate", outcome.output + outcome.errors)
        self.assertFalse(os.path.exists(self.names["asked"]))
        build = os.path.join(self.checkout, "build", build)
        self.check_headers(build)
        self.check_package(build)
        module = os.path.join(build, "Morvesk.so")
        self.check_attributes(module)
        self.check_runs(module)

    def check_package(self, build):
        packages = [name for name in os.listdir(build) if name.endswith(".ipk")]
        self.assertEqual(len(packages), 1)
        self.assertRegexpMatches(packages[0], r"_armv7ahf-neon\.ipk$")

    def check_headers(self, build):
        deps = subprocess.check_output(["ninja", "-C", build, "-t", "deps"])
        used = set(path for path in re.findall(r"^    (\S.*)$", deps, re.M) if "python2.7" in path)
        headers = os.path.realpath(self.names["sysroot"] + "/usr/include/python2.7")
        self.assertIn(headers + "/Python.h", set(os.path.realpath(path) for path in used))
        self.assertIn(headers + "/pyconfig.h", set(os.path.realpath(path) for path in used))
        self.assertEqual([path for path in used if not os.path.realpath(path).startswith(headers + "/")], [])

    def check_attributes(self, module):
        attributes = subprocess.check_output(["readelf", "-A", module])
        for text in ("Tag_CPU_arch: v7", "Tag_Advanced_SIMD_arch: NEONv1", "Tag_ABI_VFP_args: VFP registers"):
            self.assertIn(text, attributes)

    def check_runs(self, module):
        environment = {"MORVESK_MODULE": module, "MORVESK_PYTHON": ARMHF + "/bin/python2.7",
                       "MORVESK_PYTHON_INCLUDE": self.names["sysroot"] + "/usr/include/python2.7"}
        elf = [os.path.join(suite.TOOLS, "tests", "elf_test.py"), "Loading", "Interpreter"]
        surface = [os.path.join(suite.CHECKOUT, "plugin", "tests", "module", "test_surface.py")]
        for arguments in (elf, surface):
            outcome = suite.run([os.path.join(suite.TOOLS, "python")] + arguments, environment)
            self.assertEqual(outcome.status, 0, outcome)

    def test_environment(self):
        self.check_built(self.build(commands("With the SDK's environment")), "sdk")

    def test_toolchain_file(self):
        self.check_built(self.build(commands("With a toolchain file")), "image")

    def test_a_compiler_for_many_processors(self):
        self.write(self.toolchain_file, CLANG_TOOLCHAIN)
        outcome = self.build(commands("With a toolchain file"))
        self.assertEqual(outcome.status, 0, outcome)
        build = os.path.join(self.checkout, "build", "image")
        self.check_package(build)
        self.check_runs(os.path.join(build, "Morvesk.so"))

    def test_the_compiler_accepts_only_the_images_flags(self):
        text = commands("With the SDK's environment").replace("\ncmake", '\nexport CXX=%s-g++\ncmake' % TARGET, 1)
        outcome = self.build(text)
        self.assertNotEqual(outcome.status, 0)
        self.assertIn("built without the image's flags", outcome.output + outcome.errors)

    def test_without_headers(self):
        subprocess.check_call(["rm", "-r", self.names["sysroot"] + "/usr/include/python2.7"])
        outcome = self.build(commands("With the SDK's environment"))
        self.assertNotEqual(outcome.status, 0)
        self.assertIn("No Python.h in '%s/usr/include/python2.7'" % self.names["sysroot"], " ".join(outcome.errors.split()))

    def test_without_an_environment(self):
        outcome = suite.run(["cmake", "--preset", "sdk"], {"SDKTARGETSYSROOT": None}, folder=self.checkout)
        self.assertNotEqual(outcome.status, 0)
        self.assertIn('Could not use disabled preset "sdk"', outcome.errors)


if __name__ == "__main__":
    suite.main()
