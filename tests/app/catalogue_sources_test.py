#!/usr/bin/python3
"""Compares the translatable texts of the code with the catalogue sources."""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
# The form's design-time title, which the code never translates.
BY_HAND = {"belun_chinese.ts": {("MainWindow", "MainWindow")}}


def messages_of(path):
    """Yields class, text, translation and translation state of each message."""
    for context in xml.etree.ElementTree.parse(path).getroot().iter("context"):
        for message in context.iter("message"):
            translation = message.find("translation")
            yield (context.findtext("name"), message.findtext("source"), translation.text,
                   translation.get("type", "finished"))


LUPDATE = ""


class Window(unittest.TestCase):
    folder = "app"
    catalogues = sorted((ROOT / "resources/translation").glob("*.ts"))
    text = ("MainWindow", "Link Device")

    @classmethod
    def setUpClass(cls):
        with tempfile.TemporaryDirectory() as folder:
            found = pathlib.Path(folder, "code.ts")
            code = sorted(str(path) for path in (ROOT / cls.folder).glob("*.cpp"))
            subprocess.run([LUPDATE, "-silent", *code, "-ts", str(found)], check=True,
                           timeout=60)
            cls.in_code = {message[:2] for message in messages_of(found)}

    def test_code_has_texts(self):
        self.assertIn(self.text, self.in_code)

    def test_catalogues_hold_exactly_the_texts_of_the_code(self):
        for path in self.catalogues:
            with self.subTest(path.name):
                in_catalogue = [message[:2] for message in messages_of(path)]
                expected = self.in_code | BY_HAND.get(path.name, set())
                self.assertEqual(sorted(in_catalogue), sorted(expected))

    def test_every_text_is_translated(self):
        for path in self.catalogues:
            for _, text, translation, state in messages_of(path):
                with self.subTest(f"{path.name}: {text}"):
                    self.assertEqual(state, "finished")
                    self.assertTrue(translation)


class Verify(Window):
    folder = "verify"
    catalogues = [ROOT / "verify/belun_verify_chinese.ts"]
    text = ("verify", "The card holds no recordings.")


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", required=True)
    arguments, rest = parser.parse_known_args()
    LUPDATE = arguments.lupdate
    unittest.main(argv=[sys.argv[0], *rest])
