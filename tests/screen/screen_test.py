#!/usr/bin/python3
"""Operates the built program with mouse and keyboard, in both languages.

Runs on its own display and message bus inside a private network; see --help.
"""

import argparse
import pathlib
import sys
import unittest

sys.dont_write_bytecode = True
here = pathlib.Path(__file__).resolve().parent
sys.path[:0] = [str(here), str(here.parent / "simulator"), str(here.parents[1] / "tools")]
import harness  # noqa: E402
import scene  # noqa: E402
import texts  # noqa: E402
from card_cases import CardCases  # noqa: E402
from window_cases import WindowCases  # noqa: E402


class English(WindowCases, CardCases, scene.ScreenTest):
    texts = texts.ENGLISH


class Chinese(WindowCases, CardCases, scene.ScreenTest):
    texts = texts.CHINESE


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--program", required=True, help="the built belun-download")
    parser.add_argument("--simulator", required=True, help="the built belun-simulator")
    parser.add_argument("--folder", required=True, help="where the screenshots go")
    parser.add_argument("tests", nargs="*",
                        help="such as English.test_keyboard_alone (default: all)")
    scene.options = options = parser.parse_args()
    harness.program = options.simulator
    unittest.main(module="__main__", verbosity=2, argv=[sys.argv[0], *options.tests])


if __name__ == "__main__":
    main()
