"""Tests what the options of the commands have in common.

--help prints the usage and returns 0. An unknown option or a missing value prints one line and the
usage to standard error and returns 2.
"""

import os
import pathlib
import re
import subprocess
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]

# Each command, the name in its messages, and its options that take a value.
COMMANDS = (
    ("check", "check", ("--preset", "--jobs")),
    ("check --calls", "./check --calls", ("--jobs", "--only", "--program")),
    ("check --fuzz", "fuzz", ("--runs", "--only")),
    ("check --soak", "soak", ("--share",)),
    ("check --coverage", "coverage", ("--jobs",)),
    ("check --lint", "lint", ()),
    ("check --package", "check-package", ("--upgrade",)),
    ("check --bench", "bench", ("--pairs",)),
    ("demo", "demo", ()),
    (".ci/run", "ci", ("--jobs",)),
    ("packaging/changelog", "changelog", ()),
    ("packaging/icons/render", "render", ()),
    ("tools/build-preset", "build-preset", ()),
    ("tools/demo-tour", "demo-tour", ("--program", "--simulator", "--folder")),
    ("tools/install-packages", "install-packages", ()),
    ("tools/lint", "lint", ()),
    ("tools/private-display", "private-display", ("--dpi", "--size")),
    ("tools/private-network", "{path}", ("--netem", "--as-user")),
    ("tools/release-check", "release-check", ()),
    ("tools/try-systems", "try-systems", ("--folder", "--cache")),
    ("tools/update-images", "update-images", ()),
    ("tools/window-images", "window-images",
     ("--program", "--simulator", "--folder", "--scale", "--rate", "--language")),
)
# Not tested here: a command above or a build calls them, or they need packages that ./check does
# not install.
OTHERS = {"bench/run", "packaging/check-package", "tests/calls/run", "tests/coverage",
          "tests/fuzz/run", "tests/soak/run", "packaging/fill-manual", "tests/mutate",
          "tools/check-rules"}


def run(command, *arguments):
    program, *own = command.split()
    return subprocess.run([ROOT / program, *own, *arguments], cwd="/", stdin=subprocess.DEVNULL,
                          capture_output=True, text=True, timeout=60, check=False)


class OptionsTest(unittest.TestCase):
    def refused(self, result, name, complaint):
        """Checks for one error line and the usage, which Python programs print first."""
        self.assertEqual((2, ""), (result.returncode, result.stdout), result.stderr)
        name = re.escape(name)
        self.assertRegex(result.stderr, rf"\A{name}: ({complaint}).*\nUsage: |"
                                        rf"\Ausage: [^\0]*\n{name}: error: ({complaint}).*\n\Z")

    def test_help_is_printed(self):
        for command, _, _ in COMMANDS:
            with self.subTest(command):
                result = run(command, "--help")
                self.assertEqual((0, ""), (result.returncode, result.stderr))
                self.assertRegex(result.stdout, "^[Uu]sage: ")

    def test_unknown_option_is_refused(self):
        for command, name, _ in COMMANDS:
            with self.subTest(command):
                name = name.format(path=ROOT / command.split()[0])
                self.refused(run(command, "--bogus"), name,
                             "(unknown option|wrong arguments:|unrecognized arguments:) --bogus"
                             "|the following arguments are required")

    def test_missing_value_is_reported(self):
        for command, name, options in COMMANDS:
            name = name.format(path=ROOT / command.split()[0])
            for option in options:
                with self.subTest(command, option=option):
                    self.refused(run(command, option), name,
                                 f"(argument )?{option}( needs a value|: expected one argument)")

    def test_option_is_no_value(self):
        for command, option in (("check", "--preset"), ("check --fuzz", "--only"),
                                ("tools/try-systems", "--cache")):
            with self.subTest(command):
                self.assertIn(f": {option} needs a value\nUsage: ",
                              run(command, option, "--help").stderr)

    def test_other_arguments_are_refused_where_there_are_none(self):
        for command in ("check", "check --lint", "check --soak", "demo", ".ci/run",
                        "tools/update-images"):
            with self.subTest(command):
                self.assertIn(": unexpected argument 'more'\nUsage: ", run(command, "more").stderr)

    def test_no_job_after_other_options(self):
        self.assertTrue(run("check", "--werror", "--lint").stderr.startswith(
            "check: --lint must be the first argument\n"))

    def test_every_command_is_listed(self):
        found = {str(path.relative_to(ROOT)) for folder in ("", ".ci", "bench", "packaging",
                                                            "packaging/icons", "tests", "tests/*",
                                                            "tools")
                 for path in ROOT.glob(f"{folder}/*" if folder else "*")
                 if path.is_file() and not path.suffix and os.access(path, os.X_OK)}
        self.assertEqual(found, {command.split()[0] for command, _, _ in COMMANDS} | OTHERS)


if __name__ == "__main__":
    unittest.main()
