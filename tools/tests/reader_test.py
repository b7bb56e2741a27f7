"""The checks of elf_test.py notice what they are for: each is shown a small module with that one flaw."""

import io
import os
import unittest

import elf_test
import suite

HEADERS = os.path.join(suite.ROOT, "usr", "include", "python2.7")

# Forty names of the interpreter's interface, so that the small module looks like one.
USED = """
    PyCFunction_NewEx PyDict_GetItem PyDict_GetItemString PyDict_New PyDict_SetItem PyDict_SetItemString PyErr_Clear
    PyErr_ExceptionMatches PyErr_Fetch PyErr_Format PyErr_NoMemory PyErr_Occurred PyErr_Restore PyErr_SetString PyExc_OSError
    PyExc_TypeError PyFile_WriteObject PyFrame_New PyFunction_Type PyInt_FromLong PyIter_Next PyList_Append PyList_New
    PyMethod_New PyMethod_Type PyModule_GetDict PyNumber_Add PyObject_Call PyObject_GetAttr PyObject_GetItem PyObject_IsTrue
    PyObject_SetAttr PyObject_Size PySequence_List PyString_Format PyString_FromString PyString_Type PySys_GetObject
    PyTraceBack_Here PyTuple_New""".split()

SOUND = ["-s", "-fvisibility=hidden", "-Wl,-z,relro,-z,now,-z,noexecstack"]
PUBLIC = 'extern "C" __attribute__((visibility("default"))) '


def source(used=(), more=""):
    """A module that refers to these names."""
    names = sorted(set(USED) | set(used))
    return "\n".join(
        ["#include <cstdio>", "#include <cstdlib>"] + ['extern "C" char %s[];' % name for name in names] +
        ["static char* const used[] = {%s};" % ", ".join(names), more,
         PUBLIC + 'void initMorvesk() { if (std::getenv("X") != used[std::rand()]) std::puts(used[std::rand()]); }', ""])


class Reader(unittest.TestCase):
    """Each flaw fails the check that it belongs to, and no other."""

    def setUp(self):
        self.folder = suite.scratch_folder()
        self.addCleanup(suite.remove_folder, self.folder)

    def build(self, text, flags, compiler="g++", name="Morvesk.so"):
        module, code = os.path.join(self.folder, name), os.path.join(self.folder, name + ".cpp")
        with open(code, "w") as target:
            target.write(text)
        outcome = suite.run([compiler, "-shared", "-fPIC", "-O1", "-o", module, code] + flags)
        self.assertEqual(outcome.status, 0, outcome)
        return module

    def failures(self, module):
        """Names of the checks that fail for this module."""
        elf_test.MODULE, elf_test.HEADERS = module, HEADERS
        tests = unittest.defaultTestLoader.loadTestsFromModule(elf_test)
        result = unittest.TextTestRunner(stream=io.BytesIO()).run(tests)
        self.assertEqual((result.testsRun, len(result.errors), len(result.skipped)), (17, 0, 0))
        return sorted(test.id().split(".")[-1] for test, _ in result.failures)

    def check(self, expected, text=None, flags=SOUND, compiler="g++"):
        self.assertEqual(self.failures(self.build(text or source(), flags, compiler)), expected)

    def test_a_sound_module(self):
        self.check([])

    def test_another_exported_name(self):
        self.check(["test_only_the_entry_is_exported"], source(more=PUBLIC + "int other() { return 1; }"))

    def test_another_library(self):
        other = self.build("int other;", ["-Wl,-soname,libother.so.1"], name="libother.so")
        self.check(["test_needed_libraries"], flags=SOUND + ["-Wl,--no-as-needed", other])

    def test_a_new_c_library(self):
        self.check(["test_versions_of_symbols"], source(more="""
            #include <threads.h>
            static thrd_t thread;
            __attribute__((constructor)) static void start() { thrd_create(&thread, nullptr, nullptr); }"""))

    def test_a_new_cpp_library(self):
        self.check(["test_versions_of_symbols"], source(more="""
            #include <memory_resource>
            __attribute__((constructor)) static void start() { std::puts(std::pmr::get_default_resource() ? "1" : "2"); }
            """), SOUND + ["-std=c++17"])

    def test_a_version_without_a_number(self):
        self.check(["test_versions_of_symbols"], source(more="""
            extern "C" int __libc_alloca_cutoff(std::size_t);
            __attribute__((constructor)) static void start() { if (__libc_alloca_cutoff(1)) std::puts("1"); }"""))

    def test_a_version_of_another_series(self):
        self.check(["test_versions_of_symbols"], source(more="""
            extern "C" void __aeabi_vec_delete(void*, void (*)(void*));
            __attribute__((constructor)) static void start() { __aeabi_vec_delete(nullptr, nullptr); }"""),
                   compiler="arm-linux-gnueabihf-g++")

    def test_an_executable_stack(self):
        self.check(["test_no_executable_stack"], flags=SOUND + ["-Wl,-z,execstack"])

    def test_relocations_that_stay_open(self):
        name = "test_relocations_are_made_at_once_and_then_closed"
        self.check([name], flags=SOUND + ["-Wl,-z,norelro"])
        self.check([name], flags=SOUND + ["-Wl,-z,lazy"])

    def test_text_relocations(self):
        pointer = ".quad" if elf_test.Elf(self.build(source(), SOUND)).bits == 64 else ".long"
        self.check(["test_no_text_relocations"], source(more='asm(".text\\n %s PyObject_Call\\n");' % pointer),
                   SOUND + ["-Wl,-z,notext"])

    def test_a_run_path(self):
        self.check(["test_no_run_path"], flags=SOUND + ["-Wl,-rpath,/opt"])
        self.check(["test_no_run_path"], flags=SOUND + ["-Wl,-rpath,/opt,--disable-new-dtags"])

    def test_relocations_in_a_new_form(self):
        self.assertIn("test_an_old_loader_finds_its_symbols",
                      self.failures(self.build(source(), SOUND + ["-Wl,-z,pack-relative-relocs"])))

    def test_symbols_left_in(self):
        self.check(["test_it_is_stripped"], flags=SOUND[1:])

    def test_a_name_that_depends_on_the_width(self):
        self.check(["test_everything_is_documented", "test_no_name_depends_on_the_width_of_unicode_strings"],
                   source(["PyUnicodeUCS4_FromUnicode"]))

    def test_a_private_name(self):
        self.check(["test_everything_is_documented"], source(["_PyString_Join"]))

    def test_a_name_behind_another_macro(self):
        elf_test.BEHIND_MACROS["_PyString_Join"] = "Py_None"
        self.addCleanup(elf_test.BEHIND_MACROS.pop, "_PyString_Join")
        self.check(["test_macros_stand_for_what_we_think"], source(["_PyString_Join"]))

    def test_a_documented_name_that_looks_private(self):
        self.check([], source(["_PyString_Resize"]))

    def test_an_unknown_name(self):
        self.check(["test_everything_is_documented"], source(["PyObject_Cull"]))

    def test_too_large_for_arm(self):
        compiler = "arm-linux-gnueabihf-g++"
        self.check([], compiler=compiler)
        self.check(["test_arm"], source(more=PUBLIC.replace("default", "hidden") + "const char large[66000] = {1};"),
                   compiler=compiler)

    def test_other_floating_point_on_arm(self):
        self.check(["test_arm"], flags=SOUND + ["-march=armv7-a", "-mfpu=neon"], compiler="arm-linux-gnueabihf-g++")

    def test_the_second_generation_of_mips(self):
        flags = SOUND + ["-nostartfiles"]
        code = source(more="asm(\".text\\n %s\\n .rept 5001\\n addiu $2, $2, 1\\n .endr\\n\");")
        self.check([], code % "", flags + ["-march=mips32"], "mipsel-linux-gnu-g++")
        self.check(["test_every_instruction_of_mips_is_of_the_first_generation", "test_mips"], code % "wsbh $2, $3",
                   flags + ["-march=mips32r2"], "mipsel-linux-gnu-g++")


if __name__ == "__main__":
    suite.main()
