#!/usr/bin/python3
"""Compares the texts that the window's code passes to tr() with the catalogue sources."""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
CATALOGUES = sorted((ROOT / "resources/translation").glob("*.ts"))
# The form's design-time title, which the code never translates.
BY_HAND = {"belun_chinese.ts": {("MainWindow", "MainWindow")}}


def messages_of(path):
    """Yields class, text, translation and translation state of each message."""
    for context in xml.etree.ElementTree.parse(path).getroot().iter("context"):
        for message in context.iter("message"):
            translation = message.find("translation")
            yield (context.findtext("name"), message.findtext("source"), translation.text,
                   translation.get("type", "finished"))


class CatalogueSources(unittest.TestCase):
    lupdate = ""

    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            found = pathlib.Path(folder, "code.ts")
            code = sorted(str(path) for path in (ROOT / "app").glob("*.cpp"))
            subprocess.run([cls.lupdate, "-silent", *code, "-ts", str(found)], check=True,
                           timeout=60)
            cls.in_code = {message[:2] for message in messages_of(found)}

    def test_code_has_texts(self):
        self.assertIn(("MainWindow", "Link Device"), self.in_code)

    def test_catalogues_hold_exactly_the_texts_of_the_code(self):
        for path in CATALOGUES:
            with self.subTest(path.name):
                in_catalogue = [message[:2] for message in messages_of(path)]
                expected = self.in_code | BY_HAND.get(path.name, set())
                self.assertEqual(sorted(in_catalogue), sorted(expected))

    def test_every_text_is_translated(self):
        for path in CATALOGUES:
            for _, text, translation, state in messages_of(path):
                with self.subTest(f"{path.name}: {text}"):
                    self.assertEqual(state, "finished")
                    self.assertTrue(translation)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", required=True)
    arguments, rest = parser.parse_known_args()
    CatalogueSources.lupdate = arguments.lupdate
    unittest.main(argv=[sys.argv[0], *rest])
