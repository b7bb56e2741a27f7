# -*- coding: utf-8 -*-
"""The picture of the terminal display: how screens are drawn, and that the one in docs/ shows what is shown."""

import os
import subprocess
import sys
import unittest
import xml.etree.cElementTree as ElementTree

sys.dont_write_bytecode = True

TOOLS = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(TOOLS, "lib"))

import picture  # noqa: E402 (found through the path above)

_SVG = "{http://www.w3.org/2000/svg}"


def drawn(text, columns=20, rows=1):
    """What is drawn of one screen: (texts, rectangles without the frame, paths), each a list of attributes."""
    root = ElementTree.fromstring(picture.picture([(columns, rows, text)]))
    texts = [(each.text, each.get("x"), each.get("textLength"), each.get("fill"), each.get("font-weight"))
             for each in root.iter(_SVG + "text")]
    areas = [(each.get("x"), each.get("width"), each.get("fill")) for each in root.iter(_SVG + "rect")][1:]
    paths = [(each.get("d"), each.get("stroke")) for each in root.iter(_SVG + "path")]
    return texts, areas, paths


class TheDrawing(unittest.TestCase):
    """How the text of a terminal becomes a picture."""

    def test_words_stand_in_their_cells(self):
        self.assertEqual(([("one", "0", "27", picture.FOREGROUND, None),
                           ("<&>", "45", "27", picture.FOREGROUND, None)], [], []), drawn(u"one  <&>"))

    def test_colours_and_weight(self):
        texts, areas, _ = drawn(u"\x1b[1;37;41mA\x1b[0;90mB\x1b[7mC\x1b[27;39mD\x1b[22;49m")
        self.assertEqual([("A", "0", "9", "#d3d7cf", "bold"), ("B", "9", "9", "#6b7482", None),
                          ("C", "18", "9", picture.BACKGROUND, None), ("D", "27", "9", picture.FOREGROUND, None)], texts)
        self.assertEqual([("0", "9", "#c4314b"), ("18", "9", "#6b7482")], areas)

    def test_colours_go_on_in_the_next_line(self):
        self.assertEqual([("A", "#c4314b"), ("B", "#c4314b")],
                         [(each[0], each[3]) for each in drawn(u"\x1b[31mA\nB", rows=2)[0]])

    def test_wide_characters_take_two_cells_and_marks_none(self):
        self.assertEqual([(u"花見", "0", "36"), (u"e\u0301x", "36", "18"), (u"हिन्दी", "63", "45")],
                         [each[:3] for each in drawn(u"花見e\u0301x हिन्दी")[0]])

    def test_boxes_are_drawn_and_not_written(self):
        texts, _, paths = drawn(u"┌─", rows=1)
        self.assertEqual([], texts)
        self.assertEqual([("M4.5 9.5l4.5 0M4.5 9.5l0 9.5M13.5 9.5l-4.5 0M13.5 9.5l4.5 0", picture.FOREGROUND)], paths)

    def test_an_unknown_sequence_is_not_passed_over(self):
        self.assertRaises(ValueError, drawn, u"\x1b[5mA")


class ThePicture(unittest.TestCase):
    """The file in docs/."""

    def test_shows_what_is_shown(self):
        child = subprocess.Popen([os.path.join(TOOLS, "picture"), "--check"],
                                 stdout=subprocess.PIPE, stderr=subprocess.PIPE, stdin=open(os.devnull))
        output, errors = child.communicate()
        self.assertEqual((0, ""), (child.returncode, output), errors)


if __name__ == "__main__":
    unittest.main()
