# -*- coding: utf-8 -*-
"""The page on trust and failure: every suite that it names is one that CTest runs, and every claim in a table names one."""

import json
import os
import re
import subprocess
import unittest

import world

PAGE = os.path.join(world.CHECKOUT, "docs", "trust.md")
BUILD = os.environ.get("MORVESK_BUILD") or os.path.join(world.CHECKOUT, "build", "release")
SUITE = re.compile(r"`((?:build|fuzz|leak|module|plain|receiver|sweep|text|tools|world)(?:\.\w+)+)`")
# Here are the suites that other builds register.
ELSEWHERE = os.path.join(world.CHECKOUT, "plugin", "tests", "CMakeLists.txt")


def page():
    """The page's text."""
    with open(PAGE) as source:
        return source.read()


def registered():
    """The names of all suites that CTest knows."""
    output = subprocess.check_output(["ctest", "--test-dir", BUILD, "--show-only=json-v1"])
    with open(ELSEWHERE) as source:
        others = re.findall(r"add_test\(NAME ([a-z._]+) ", source.read())
    return set([test["name"].encode("utf-8") for test in json.loads(output)["tests"]] + others)


def tables(text):
    """The page's tables: lists of rows, which are lists of cells, the first row being the head."""
    found = []
    for block in re.findall(r"(?:^\|.*\n)+", text, re.MULTILINE):
        rows = [[cell.strip() for cell in line.strip("|").split(" | ")] for line in block.splitlines()]
        found.append(rows[:1] + rows[2:])
    return found


class Trust(unittest.TestCase):
    """The page against what is there."""

    def test_every_suite_is_there(self):
        named = set(SUITE.findall(page()))
        self.assertTrue(named)
        there = registered()
        self.assertEqual([name for name in sorted(named)
                          if not any(each == name or each.startswith(name + ".") for each in there)], [])

    def test_every_suite_of_this_folder_is_named(self):
        ours = set(name for name in registered() if name.startswith("world."))
        self.assertEqual(sorted(ours - set(SUITE.findall(page()))), [])

    def test_every_claim_names_a_suite(self):
        claiming = [rows for rows in tables(page()) if rows[0][-1].strip("| ") == "suites"]
        self.assertEqual(len(claiming), 4)
        for rows in claiming:
            for row in rows[1:]:
                self.assertEqual(len(row), len(rows[0]), row)
                self.assertTrue(SUITE.search(row[-1]), row)

    def test_texts_in_quotes_are_the_modules(self):
        """What a box says is quoted to the letter."""
        quoted = re.findall(r'(?:box|row|Row means a row|The box|,) "([^"]+)"', page())
        shown = " ".join([world.NO_CONNECTION, world.NO_SERVER, world.NO_FOLDER, world.NOT_EXTRACTED, world.FILES_MISSING,
                          world.SUCCESS])
        self.assertEqual([text for text in quoted if text not in shown], [])
        self.assertTrue(len(set(quoted)) >= 8, quoted)

    def test_the_readme_leads_here(self):
        with open(os.path.join(world.CHECKOUT, "README.md")) as source:
            owners = source.read().partition("## If you own a receiver\n")[2].partition("\n## ")[0]
        self.assertIn("(docs/trust.md)", owners)


if __name__ == "__main__":
    unittest.main()
