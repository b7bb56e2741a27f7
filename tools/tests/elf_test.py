"""What lets a built module load on any image: read from the file with binutils, for whatever processor it is.

MORVESK_MODULE names the module, MORVESK_PYTHON_INCLUDE the headers of the interpreter that it was built for.
"""

import collections
import glob
import os
import re
import struct
import subprocess
import sys
import unittest

MODULE = os.environ.get("MORVESK_MODULE", "")
HEADERS = os.environ.get("MORVESK_PYTHON_INCLUDE", "")

NEEDED = set(["libstdc++.so.6", "libgcc_s.so.1", "libc.so.6", "libm.so.6"])
NEWEST = {"GLIBCXX": (3, 4, 21), "CXXABI": (1, 3, 9), "GCC": (3, 5)}
NEWEST_C_LIBRARY = {32: (2, 4), 64: (2, 17)}
ARMHF_BYTES = 64 * 1024

# What public macros of the interpreter's headers stand for, as far as the module uses them.
BEHIND_MACROS = {
    "_PyObject_CallMethod_SizeT": "PyObject_CallMethod",
    "_Py_NoneStruct": "Py_None",
    "_Py_TrueStruct": "Py_True",
    "_Py_ZeroStruct": "Py_False",
    "Py_InitModule4_64": "Py_InitModule4"}

# Documented functions whose names look private.
DOCUMENTED = set(["_PyString_Resize", "_PyTuple_Resize"])

INTERPRETERS = re.compile(r"_?Py[A-Z_]")
NAMED_FOR_A_WIDTH = re.compile(r"UCS[24]")

Symbol = collections.namedtuple("Symbol", "kind binding visibility section name version")


def output_of(*command):
    """What a program writes, in English."""
    return subprocess.check_output(command, env=dict(os.environ, LC_ALL="C"))


def numbers(text):
    """A version as a tuple, to be compared; one without numbers is newer than all."""
    return tuple(int(part) if part.isdigit() else sys.maxint for part in text.split("."))


class Elf(object):
    """An ELF file, as readelf shows it."""

    def __init__(self, path):
        self.path = path
        self.header = self._pairs("-h")
        self.bits = 64 if self.header["Class"] == "ELF64" else 32
        self.machine = self.header["Machine"]
        self.segments = self._segments()
        self.dynamic = re.findall(r"^ 0x[0-9a-f]+ \(([A-Z0-9_]+)\)\s*(.*?)\s*$", self._read("-d"), re.M)
        self.sections = re.findall(r"^\s*\[\s*\d+\]\s+(\.\S+)", self._read("-S"), re.M)
        self.symbols = self._symbols()

    def _read(self, option):
        return output_of("readelf", "-W", option, self.path)

    def _pairs(self, option):
        return dict(re.findall(r"^\s*([^:]+):\s*(.*?)\s*$", self._read(option), re.M))

    def _segments(self):
        found = re.findall(r"^  ([A-Z_]+) +(?:0x[0-9a-f]+ +){5}([RWE ]{3}) ", self._read("-l"), re.M)
        return [(kind, flags.replace(" ", "")) for kind, flags in found]

    def _symbols(self):
        """The table of dynamic symbols without its first, empty entry and the nameless entries of sections."""
        symbols = []
        for line in self._read("--dyn-syms").splitlines():
            fields = line.split()
            if len(fields) < 8 or not re.match(r"\d+:$", fields[0]) or fields[3] == "SECTION":
                continue
            name, _, version = fields[7].partition("@")
            symbols.append(Symbol(fields[3], fields[4], fields[5], fields[6], name, version.lstrip("@")))
        return symbols

    def tagged(self, tag):
        """The values of a tag of the dynamic section."""
        return [value for name, value in self.dynamic if name == tag]

    @property
    def needed(self):
        """The libraries that the loader brings."""
        return [re.search(r"\[(.*)\]", value).group(1) for value in self.tagged("NEEDED")]

    @property
    def defined(self):
        """Names of the symbols that others can use."""
        return [symbol.name for symbol in self.symbols if symbol.section != "UND"]

    @property
    def undefined(self):
        """Names of the symbols that others must have."""
        return [symbol.name for symbol in self.symbols if symbol.section == "UND"]

    @property
    def required(self):
        """The versions of symbols that libraries must have: (series, numbers)."""
        names = re.findall(r"Name: (\S+)  Flags", self._read("-V"))
        return [(series, numbers(version)) for series, _, version in (name.rpartition("_") for name in names)]


class Headers(object):
    """The interpreter's interface: what its public headers declare."""

    def __init__(self, folder):
        text = "".join(open(path).read() for path in sorted(glob.glob(os.path.join(folder, "*.h"))))
        text = re.sub(r"/\*.*?\*/", " ", text, flags=re.S)
        self._defined = re.findall(r"^#\s*define\s+(\w+)(?:\([^)]*\))?[ \t]+(.*(?:\\\n.*)*)$", text, re.M)
        functions = re.findall(r"PyAPI_FUNC\s*\((?:[^()]|\([^()]*\))*\)\s*\*?\s*(\w+)", text)
        objects = re.findall(r"PyAPI_DATA\s*\([^()]*\)\s*([^;]+);", text)
        self.declared = set(functions + re.findall(r"\w+", " ".join(objects)))

    def stands_for(self, macro, name):
        """True when a definition of that macro uses that name."""
        return any(defined == macro and re.search(r"\b%s\b" % name, body) for defined, body in self._defined)

    def documents(self, name):
        """True for a public name that is declared."""
        return name in self.declared and (name in DOCUMENTED or not name.startswith("_"))


class Loading(unittest.TestCase):
    """The dynamic loader of any image, and its libraries."""

    elf = None

    @classmethod
    def setUpClass(cls):
        cls.elf = Elf(MODULE)

    def test_the_reader_reads(self):
        self.assertEqual(self.elf.header["Type"], "DYN (Shared object file)")
        self.assertIn(("LOAD", "RE"), self.elf.segments)
        self.assertIn("libc.so.6", self.elf.needed)
        self.assertIn("PyObject_Call", self.elf.undefined)
        self.assertIn("GLIBC", dict(self.elf.required))

    def test_only_the_entry_is_exported(self):
        self.assertEqual(self.elf.defined, ["initMorvesk"])

    def test_needed_libraries(self):
        self.assertEqual(sorted(set(self.elf.needed) - NEEDED), [])

    def test_versions_of_symbols(self):
        limits = dict(NEWEST, GLIBC=NEWEST_C_LIBRARY[self.elf.bits])
        too_new = [(series, version) for series, version in self.elf.required if not version <= limits.get(series, ())]
        self.assertEqual(too_new, [])

    def test_no_executable_stack(self):
        self.assertEqual([flags for kind, flags in self.elf.segments if kind == "GNU_STACK"], ["RW"])

    def test_relocations_are_made_at_once_and_then_closed(self):
        self.assertIn("GNU_RELRO", [kind for kind, _ in self.elf.segments])
        self.assertTrue("BIND_NOW" in " ".join(self.elf.tagged("FLAGS")) or self.elf.tagged("BIND_NOW"))

    def test_no_text_relocations(self):
        self.assertEqual(self.elf.tagged("TEXTREL"), [])
        self.assertNotIn("TEXTREL", " ".join(self.elf.tagged("FLAGS")))
        self.assertNotIn(("LOAD", "RWE"), self.elf.segments)

    def test_no_run_path(self):
        self.assertEqual(self.elf.tagged("RPATH") + self.elf.tagged("RUNPATH"), [])

    def test_an_old_loader_finds_its_symbols(self):
        self.assertTrue(self.elf.tagged("HASH") or self.elf.tagged("GNU_HASH"))
        self.assertEqual(self.elf.header["ABI Version"], "0")
        self.assertEqual(self.elf.tagged("RELR"), [])

    def test_it_is_stripped(self):
        self.assertEqual([name for name in self.elf.sections
                          if name in (".symtab", ".strtab") or name.startswith(".debug")], [])


class Interpreter(unittest.TestCase):
    """The interpreter of any image."""

    used = headers = None

    @classmethod
    def setUpClass(cls):
        cls.used = [name for name in Elf(MODULE).undefined if INTERPRETERS.match(name)]
        cls.headers = Headers(HEADERS)

    def test_the_reader_reads(self):
        self.assertGreater(len(self.used), 30)
        self.assertGreater(len(self.headers.declared), 700)
        self.assertTrue(self.headers.documents("PyObject_Call"))
        self.assertFalse(self.headers.documents("_PyObject_CallMethod_SizeT"))
        self.assertFalse(self.headers.documents("PyObject_Cull"))
        self.assertEqual([name for name in DOCUMENTED if not self.headers.documents(name)], [])

    def test_no_name_depends_on_the_width_of_unicode_strings(self):
        self.assertEqual([name for name in self.used if NAMED_FOR_A_WIDTH.search(name)], [])

    def test_everything_is_documented(self):
        self.assertEqual([name for name in self.used
                          if not self.headers.documents(name) and name not in BEHIND_MACROS], [])

    def test_macros_stand_for_what_we_think(self):
        self.assertEqual([(macro, name) for name, macro in sorted(BEHIND_MACROS.items())
                          if macro.startswith("_") or not self.headers.stands_for(macro, name)], [])


class Processor(unittest.TestCase):
    """The processor of a receiver."""

    elf = None

    @classmethod
    def setUpClass(cls):
        cls.elf = Elf(MODULE)

    def attributes(self):
        return dict(re.findall(r"^\s*([\w .]+): (.*?)\s*$", output_of("readelf", "-A", MODULE), re.M))

    def test_arm(self):
        if self.elf.machine != "ARM":
            return
        attributes = self.attributes()
        self.assertEqual(attributes["Tag_CPU_arch"], "v7")
        self.assertEqual(attributes["Tag_FP_arch"], "VFPv3-D16")
        self.assertEqual(attributes["Tag_ABI_VFP_args"], "VFP registers")
        self.assertLessEqual(os.path.getsize(MODULE), ARMHF_BYTES)

    def test_mips(self):
        if not self.elf.machine.startswith("MIPS"):
            return
        self.assertEqual(self.elf.header["Flags"].split(", ")[1:], ["noreorder", "pic", "cpic", "o32", "mips32"])
        self.assertEqual(self.attributes()["ISA"], "MIPS32")
        self.assertEqual(self.attributes()["FP ABI"], "Hard float (32-bit CPU, Any FPU)")

    def test_every_instruction_of_mips_is_of_the_first_generation(self):
        if not self.elf.machine.startswith("MIPS"):
            return
        listing = output_of("mipsel-linux-gnu-objdump", "-d", "-m", "mips:isa32", MODULE)
        instructions = re.findall(r"^ +[0-9a-f]+:\t[0-9a-f]{8} \t(\S+)", listing, re.M)
        self.assertGreater(len(instructions), 5000)
        self.assertEqual([name for name in instructions if name.startswith(".")], [])


def main():
    """Runs the suite where there is something to read."""
    for name, path in (("MORVESK_MODULE", MODULE), ("MORVESK_PYTHON_INCLUDE", os.path.join(HEADERS, "Python.h"))):
        if not os.path.isfile(path):
            sys.stderr.write("%s must name what is to be read; there is no %s\n" % (name, path or "such variable"))
            sys.exit(2)
    unittest.main()


if __name__ == "__main__":
    main()
