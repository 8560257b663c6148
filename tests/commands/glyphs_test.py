"""Tests how the tour recognises the boxes that are drawn for characters missing from all fonts."""

import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import screen  # noqa: E402 (the path is set above)

BOX = ["#####", "#...#", "#...#", "#...#", "#...#", "#####"]  # columns
GAP = ["....."]


class Glyphs(unittest.TestCase):
    def test_boxes_are_one_shape_repeated(self):
        for gap in ([], GAP, 2 * GAP):
            with self.subTest(gap=len(gap)):
                self.assertTrue(screen.is_one_shape_repeated(BOX + 3 * (gap + BOX)))

    def test_other_texts_are_not(self):
        for name, text in {
                "one box": BOX,
                "different letters": BOX + GAP + ["##...", "#.#..", "#..#.", "#####"],
                # some fonts draw neighbouring Chinese characters without a gap
                "letters that touch": ["#.#.#", "##..#", "#.#.#", "#####", "..#..", "#.##.",
                                       "#...#", "..###", "#.#..", "#####", "#..#."],
                "nothing": []}.items():
            with self.subTest(name):
                self.assertFalse(screen.is_one_shape_repeated(text))


if __name__ == "__main__":
    unittest.main()
