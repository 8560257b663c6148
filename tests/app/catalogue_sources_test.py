#!/usr/bin/python3
"""Compares the texts that the window's code hands to tr() with the catalogue sources."""

import argparse
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
CATALOGUES = sorted((ROOT / "resources/translation").glob("*.ts"))
# The form's own title: the code never asks for it.
BY_HAND = {"belun_chinese.ts": {("MainWindow", "MainWindow")}}


def messagesOf(path):
    """Class, text, translation and the state of it, of each message."""
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
            cls.inCode = {message[:2] for message in messagesOf(found)}

    def test_codeHasTexts(self):
        self.assertIn(("MainWindow", "Link Device"), self.inCode)

    def test_everyTextOfTheCodeIsInEveryCatalogueAndNothingElse(self):
        for path in CATALOGUES:
            with self.subTest(path.name):
                inCatalogue = [message[:2] for message in messagesOf(path)]
                expected = self.inCode | BY_HAND.get(path.name, set())
                self.assertEqual(sorted(inCatalogue), sorted(expected))

    def test_everyTextIsTranslated(self):
        for path in CATALOGUES:
            for _, text, translation, state in messagesOf(path):
                with self.subTest(f"{path.name}: {text}"):
                    self.assertEqual(state, "finished")
                    self.assertTrue(translation)


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--lupdate", required=True)
    arguments, rest = parser.parse_known_args()
    CatalogueSources.lupdate = arguments.lupdate
    unittest.main(argv=[sys.argv[0], *rest])
