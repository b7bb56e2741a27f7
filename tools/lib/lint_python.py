"""Looks over Python files: Python 2.7 reads them, and whatever is public says what it is.

usage: lint_python.py FILE...
"""

from __future__ import print_function

import ast
import re
import sys

# Nobody imports a suite: nothing in it is public, and its tests say what they are by their names.
_SUITE = re.compile("(^|/)test_[^/]*$|_test(\\.py)?$")
# The module in plain Python shows no documentation to the interpreter, as the compiled one does not.
_PLAIN_MODULE = re.compile("(^|/)benchmarks/plain/")
_CALLED_BY_THE_FRAMEWORK = re.compile("test|(setUp|tearDown)(Class|Module)?$")


def is_public(node):
    """True when the name of the class or function is for others to use."""
    return not node.name.startswith("_")


def undocumented(node):
    """Gives the public classes and functions below the node that have no docstring."""
    for child in node.body:
        if isinstance(child, (ast.If, ast.TryExcept)):
            for found in undocumented(child):
                yield found
        if not isinstance(child, (ast.ClassDef, ast.FunctionDef)) or not is_public(child):
            continue
        if not ast.get_docstring(child) and not _CALLED_BY_THE_FRAMEWORK.match(child.name):
            yield child
        if isinstance(child, ast.ClassDef):
            for found in undocumented(child):
                yield found


def findings(path):
    """Gives (line, text) for each thing that is wrong with the file."""
    with open(path) as source:
        text = source.read()
    try:
        module = compile(text, path, "exec", ast.PyCF_ONLY_AST, True)
    except SyntaxError as error:
        yield error.lineno or 1, "Python 2.7 cannot read it: %s" % error.msg
        return
    if _PLAIN_MODULE.search(path):
        return
    if not ast.get_docstring(module):
        yield 1, "the module has no docstring"
    for node in [] if _SUITE.search(path) else undocumented(module):
        yield node.lineno, "%s has no docstring" % node.name


def main(paths):
    """Prints the findings of all files and gives the exit status."""
    status = 0
    for path in paths:
        for line, text in findings(path):
            print("%s:%d: %s" % (path, line, text))
            status = 1
    return status


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
