"""Tests arguments, exit status, control lines, and where the simulator refuses to run."""

import glob
import json
import os
import re
import subprocess

import harness
from harness import COUNT, ROOT, SimulatorTest

ADVICE = ("\n    belun-private-network belun-simulator ...\n"
          "That is tools/private-network in the source tree.\n")


class CommandLineTest(SimulatorTest):
    def test_help_and_version(self):
        self.assertIn("--exit-with-stdin", harness.run("--help").stdout)
        self.assertEqual(harness.run("--help").stdout, harness.run("-h").stdout)
        self.assertRegex(harness.run("--version").stdout, r"^belun-simulator \d+\.\d+\.\d+\n$")

    def test_wrong_arguments_end_with_status_2(self):
        for arguments, text in (
                (["--bogus"], "unknown argument --bogus"), (["card"], "unknown argument card"),
                (["--card"], "--card needs a value"),
                (["--list-faults=xml"], '--list-faults does not take "xml"'),
                (["--sample-to=x", "--rate=1G"], '--rate does not take "1G"'),
                (["--fault", "stall=1k"], 'takes a number from 0 to 100, not "1k"'),
                (["--card", "x", "--sample"], "exclude each other"),
                (["--rate", "fast"], '--rate does not take "fast"'),
                (["--rate", "-1"], '--rate does not take "-1"'),
                (["--heartbeat=0"], '--heartbeat does not take "0"'),
                (["--versions=1,2,3"], '--versions does not take "1,2,3"'),
                (["--versions=256,0,0,0,0"], "--versions does not take"),
                (["--fault", "bogus"], 'no fault is called "bogus"'),
                (["--fault", "no-length=1"], "fault no-length takes no value"),
                (["--fault", "heartbeat-stops"], "fault heartbeat-stops needs a value"),
                (["--fault", "status=99"], "takes a number from 100 to 999, not \"99\""),
                (["--fault", "refuse=tether"], "takes control|ground|camera, not \"tether\"")):
            with self.subTest(arguments=arguments):
                self.assertIn(text, self.refused(2, *arguments))

    def test_missing_card_ends_with_status_1(self):
        self.assertIn("none: No such file or directory",
                      self.refused(1, "--card", os.path.join(self.folder, "none")))

    def test_taken_address_ends_with_status_1(self):
        self.start()
        self.assertIn("192.168.1.149:5000: Address already in use", self.refused(1))

    def run_in_network(self, setUp):
        """Runs the commands, then the simulator, in a new network; status 99: a command failed."""
        result = subprocess.run(
            ["unshare", "--user", "--map-root-user", "--net", "sh", "-c",
             "(" + setUp + ') 2>/dev/null || exit 99; exec "$@"', "sh", harness.program],
            check=False, capture_output=True, text=True, timeout=harness.LIMIT)
        if result.returncode == 1 and "unshare" in result.stderr:
            self.skipTest("this system cannot create a network inside this one")
        return result

    def test_network_without_the_addresses_is_refused(self):
        add = "ip addr add 192.168.1.%s/32 dev lo"
        for setUp, missing in (("ip link set lo up", "120"),
                               ("ip link set lo up && " + add % 120 + " && " + add % 148, "149"),
                               (" && ".join(add % a for a in (120, 148, 149)), "120")):
            with self.subTest(setUp=setUp):
                result = self.run_in_network(setUp)
                self.assertEqual(3, result.returncode, result.stderr)
                self.assertIn("loopback interface lacks the address 192.168.1." + missing,
                              result.stderr)
                self.assertIn(ADVICE, result.stderr)

    def test_network_with_another_interface_is_refused(self):
        result = self.run_in_network(
            "ip link set lo up && for a in 120 148 149; do ip addr add 192.168.1.$a/32 dev lo;"
            " done && { ip link add other type dummy || ip link add other type veth ||"
            " ip link add other type bridge || ip tuntap add other mode tun; }"
            " && ip link set other up")
        if result.returncode == 99:
            self.skipTest("this system cannot create a second interface")
        self.assertEqual(3, result.returncode, result.stderr)
        self.assertIn("interface other is up", result.stderr)
        self.assertIn(ADVICE, result.stderr)

    def test_control_lines_are_answered_in_turn(self):
        self.start()
        self.switch("fault no-length")
        self.switch("clear all")
        for line, answer in (
                ("bogus", 'error no control line begins with "bogus" (--help shows all)'),
                ("fault", 'error no fault is called "" (--list-faults shows all)'),
                ("clear bogus", 'error no fault is called "bogus" (--list-faults shows all)'),
                ("rate fast", "error rate takes a number of bytes per second"),
                ("fault count=\\q",
                 "error fault count: only \\r \\n \\t \\\\ and \\xHH may follow a backslash")):
            self.assertEqual(answer, self.control(line))
        self.process.stdin.write(b"rate 5\nrate 6\nra")
        self.process.stdin.flush()
        self.assertEqual("ok rate 5", self.answers.get(timeout=harness.LIMIT))
        self.assertEqual("ok rate 6", self.answers.get(timeout=harness.LIMIT))
        self.assertEqual("ok rate 7", self.control("te 7"))

    def test_overlong_control_line_is_dropped(self):
        self.start()
        self.assertEqual("error the line is too long", self.control("x" * 70000))

    def test_end_of_input_ends_only_when_asked(self):
        self.start()
        self.process.stdin.close()
        self.assertEqual(0, self.process.wait(harness.LIMIT))
        with subprocess.Popen([harness.program], stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE) as process:
            self.addCleanup(process.kill)
            self.assertEqual(b"belun-simulator ready\n", process.stdout.readline())
            self.assertIn(b'count="11"', self.ask(COUNT))
            self.assertIsNone(process.poll())
            process.terminate()
            self.assertEqual(0, process.wait(harness.LIMIT))

    def camera_is_there(self):
        try:
            self.peer(harness.CAMERA).close()
        except ConnectionRefusedError:
            return False
        return True

    def test_closed_standard_streams_are_on_the_null_device(self):
        for closed, modes in (("<&- 2>&-", {0: os.O_RDONLY, 2: os.O_WRONLY}),
                              (">&-", {1: os.O_WRONLY})):
            with self.subTest(closed=closed), subprocess.Popen(
                    ["sh", "-c", f'exec "$0" {closed}', harness.program],
                    stdin=subprocess.DEVNULL, stdout=subprocess.PIPE) as process:
                self.addCleanup(process.kill)
                self.eventually(self.camera_is_there, "its camera")
                self.assertIn(b'count="11"', self.ask(COUNT))
                for descriptor, mode in modes.items():
                    self.assertEqual("/dev/null",
                                     os.readlink(f"/proc/{process.pid}/fd/{descriptor}"))
                    with open(f"/proc/{process.pid}/fdinfo/{descriptor}",
                              encoding="ascii") as file:
                        flags = int(re.search(r"flags:\s+(\d+)", file.read()).group(1), 8)
                    self.assertEqual(mode, flags & os.O_ACCMODE)
                process.terminate()
                self.assertEqual(0, process.wait(harness.LIMIT))

    def faults(self):
        return json.loads(harness.run("--list-faults=json").stdout)

    def test_every_fault_is_listed_once_and_tested(self):
        names = [fault["name"] for fault in self.faults()]
        self.assertGreaterEqual(len(names), 50)
        self.assertEqual(len(names), len(set(names)))
        tests = ""
        for path in glob.glob(os.path.join(os.path.dirname(__file__), "*_faults_test.py")):
            with open(path, encoding="utf-8") as file:
                tests += file.read()
        untested = [n for n in names if not re.search(rf'"(fault )?{n}["=]', tests)]
        self.assertEqual([], untested)

    def test_fault_list_is_grouped_and_fits_the_page(self):
        text = harness.run("--list-faults").stdout
        self.assertLessEqual(max(map(len, text.splitlines())), 100)
        groups = [line for line in text.splitlines() if line.endswith(":") and line[0] != " "]
        self.assertEqual(len({fault["group"] for fault in self.faults()}), len(groups))
        self.assertIn("  reboot[=SECONDS]            all three devices are down for SECONDS, then "
                      "back; the fault ends by\n" + " " * 30
                      + "itself (1 to 3600, default 10)\n", text)
        for fault in self.faults():
            self.assertRegex(text, rf"(?m)^  {fault['name']}\b")

    def test_fault_list_as_json_holds_range_and_default(self):
        self.assertIn({"name": "reboot", "group": "reach", "device": "all", "kind": "number",
                       "value": "SECONDS", "minimum": 1, "maximum": 3600, "default": "10",
                       "result": "all three devices are down for SECONDS, then back; the fault "
                                 "ends by itself"}, self.faults())

    def test_page_of_faults_is_up_to_date(self):
        page = harness.run("--list-faults=markdown").stdout
        with open(os.path.join(ROOT, "docs", "faults.md"), encoding="utf-8") as file:
            self.assertEqual(file.read(), page,
                             "write the page again with belun-simulator --list-faults=markdown")

    def test_manual_holds_every_option_fault_and_control_line(self):
        options = harness.run("--help=man").stdout
        text = harness.run("--help").stdout
        for option in re.findall(r"(?m)^  (--[a-z-]+)", text):
            self.assertIn(".B " + option.replace("-", "\\-"), options)
        lines = harness.run("--help=man-lines").stdout
        for line, effect in re.findall(r"(?m)^  ([a-z]+(?: \S+)*)  +(\S.*)$", text):
            self.assertIn(f".TP\n.B {line}\n{effect}\n", lines)
        self.assertEqual(13, lines.count(".TP"))
        faults = harness.run("--list-faults=man").stdout
        for fault in self.faults():
            self.assertIn(".B " + fault["name"].replace("-", "\\-"), faults)


if __name__ == "__main__":
    harness.main()
