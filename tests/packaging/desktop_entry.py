#!/usr/bin/python3
"""Starts a program from its desktop entry, as a desktop does, and closes its window again.

Runs on a display: tools/private-display tests/packaging/desktop_entry.py ENTRY
"""

import argparse
import configparser
import pathlib
import shlex
import subprocess
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools"))
import screen  # noqa: E402


def read(path, group="Desktop Entry"):
    """Returns the keys of a desktop entry, or of one of its actions."""
    parser = configparser.ConfigParser(interpolation=None, delimiters="=", comment_prefixes="#")
    parser.optionxform = str
    parser.read(path, encoding="utf-8")
    return parser[group]


def start_and_close(path):
    """Starts the program, closes its window and returns the exit status."""
    entry = read(path)
    program = subprocess.Popen(shlex.split(entry["Exec"]))
    try:
        screen.find_window("BELUN-DownLoad")

        # A key press is lost while the window manager is still moving the focus, so it is repeated.
        def closes():
            screen.key("alt+F4")
            try:
                program.wait(2)
            except subprocess.TimeoutExpired:
                return False
            return True
        screen.wait_for("the end of the program", closes, 20)
        return program.returncode
    finally:
        program.kill()
        program.wait()


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("entry")
    return start_and_close(parser.parse_args().entry)


if __name__ == "__main__":
    sys.exit(main())
