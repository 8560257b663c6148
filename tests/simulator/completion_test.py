"""Tests bash completion of options and faults."""

import json
import os
import re
import shutil
import subprocess
import tempfile
import unittest

import harness
from harness import ROOT

SCRIPT = os.path.join(ROOT, "packaging", "completion", "belun.bash")
ASK = '. "$1"; COMP_LINE=$2; COMP_POINT=${#2}; _belun "${2%% *}"; printf "%s\\n" "${COMPREPLY[@]}"'


class CompletionTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="belun-completion-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        programs = {"belun-private-network": os.path.join(ROOT, "tools", "private-network"),
                    "belun-simulator": harness.program}
        verify = os.path.join(os.path.dirname(harness.program), "belun-verify")
        if os.path.exists(verify):
            programs["belun-verify"] = verify
        for name, path in programs.items():
            os.symlink(path, os.path.join(self.folder, name))
        self.programs = programs

    def offered(self, line):
        """Returns the completions that bash offers at the end of the line."""
        result = subprocess.run(
            ["bash", "--norc", "-c", ASK, "bash", SCRIPT, line], check=True, text=True,
            stdout=subprocess.PIPE, cwd=self.folder, timeout=harness.LIMIT,
            env={**os.environ, "PATH": f"{self.folder}:{os.environ['PATH']}"})
        return result.stdout.split()

    def test_every_option_is_offered(self):
        for name, path in self.programs.items():
            with self.subTest(name):
                text = subprocess.run([path, "--help"], check=True, stdout=subprocess.PIPE,
                                      env={**os.environ, "LC_ALL": "C"}, text=True).stdout
                heads = re.findall(r"(?m)^ +(--.*?)(?:  |$)", text)
                options = {option for head in heads for option in re.findall(r"--[a-z-]+", head)}
                self.assertGreaterEqual(len(options), 5)
                self.assertEqual(options, set(self.offered(name + " -")))
        self.assertEqual(["--journal", "--journal-full"], self.offered("belun-simulator --jou"))

    def test_every_fault_is_offered(self):
        faults = [fault["name"] for fault in json.loads(
            harness.run("--list-faults=json").stdout)]
        offered = self.offered("belun-simulator --fault ")
        self.assertEqual(faults, [word for word in offered if "=" not in word])
        self.assertEqual(["stall"], self.offered("belun-simulator --sample --fault sta")[1:])

    def test_values_are_offered(self):
        os.mkdir(os.path.join(self.folder, "card"))
        for line, words in (("belun-simulator --fault refuse=", ["control", "ground", "camera"]),
                            ("belun-simulator --fault=refuse=ca", ["camera"]),
                            ("belun-simulator --sample=", ["boundary", "dive"]),
                            ("belun-simulator --sample=d", ["dive"]),
                            ("belun-simulator --list-faults=ma", ["markdown", "man"]),
                            ("belun-simulator --card ca", ["card"]),
                            ("belun-simulator --replay ca", ["card"]),
                            ("belun-simulator --seed 1", []),
                            ("belun-private-network --as", ["--as-user"]),
                            ("belun-simulator --send vehicle sta", ["status"]),
                            ("belun-simulator --send vehicle status cle", ["clear"])):
            self.assertEqual(words, self.offered(line), line)

    def test_command_to_run_in_a_private_network_is_offered(self):
        self.assertIn("belun-simulator", self.offered("belun-private-network --own belun-sim"))
        self.assertEqual([], self.offered("belun-private-network --netem belun-sim"))
        self.assertIn("belun-simulator",
                      self.offered("belun-private-network --netem delay belun-sim"))


if __name__ == "__main__":
    harness.main()
