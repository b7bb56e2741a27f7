"""What the module keeps between operations: the names that it looks up, and nothing else.

After each operation its own memory, the part of the file that can be written to, is byte for byte what it was when the module
had been loaded; and what its functions carry along is the module, the built-in `open`, and strings.
"""

import re
import types
import unittest

import world as receiver
from operations import OPERATIONS
from runs import printing_to


def writable(path):
    """The bytes of a loaded file that can be written to, by the addresses of their segments."""
    found = {}
    with open("/proc/self/maps") as maps, open("/proc/self/mem", "rb", 0) as memory:
        for line in maps:
            segment = re.match(r"([0-9a-f]+)-([0-9a-f]+) .w\S+ \S+ \S+ \S+\s+(.*)", line)
            if segment and segment.group(3) == path:
                start, end = int(segment.group(1), 16), int(segment.group(2), 16)
                memory.seek(start)
                found[start] = memory.read(end - start)
    return found


class State(unittest.TestCase):
    """The module before and after every operation."""

    @classmethod
    def setUpClass(cls):
        cls.world = receiver.World()
        cls.carried = cls.world.module.base_url.__self__

    def perform(self, operation):
        """Performs an operation, whatever comes of it."""
        function, arguments = operation(self.world)
        with printing_to(self.world.output):
            try:
                function(*arguments)
            except Exception:  # pylint: disable=broad-except
                pass
        operation.finish(self.world)

    def test_no_operation_leaves_anything_in_the_module(self):
        path = self.world.module.__file__
        before, carried = writable(path), list(self.carried)
        self.assertTrue(before)
        for operation in OPERATIONS:
            self.perform(operation)
            self.assertEqual(writable(path), before, operation)
            self.assertTrue(all(now is then for now, then in zip(self.carried, carried)), operation)

    def test_the_functions_carry_names_along_and_nothing_else(self):
        module, opener = self.carried[:2]
        self.assertIs(module, self.world.module)
        self.assertTrue(callable(opener))
        names = self.carried[2:]
        self.assertEqual(set(type(name) for name in names), set([str]))
        self.assertEqual(len(set(names)), len(names))
        self.assertLess(sum(len(name) for name in names), 2000)

    def test_all_functions_and_methods_carry_the_same(self):
        methods = [method.__func__ for method in vars(self.world.module.Morvesk).values() if hasattr(method, "__func__")]
        functions = [member for member in vars(self.world.module).values()
                     if isinstance(member, types.BuiltinFunctionType) and member.__module__ == "Morvesk"]
        self.assertEqual((len(methods), len(functions)), (12, 4))
        for function in methods + functions:
            self.assertIs(function.__self__, self.carried)


if __name__ == "__main__":
    unittest.main(verbosity=2)
