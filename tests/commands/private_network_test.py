"""Tests tools/private-network: what a command finds inside, and what outlives the command."""

import os
import pathlib
import secrets
import shutil
import signal
import subprocess
import tempfile
import time
import unittest

SCRIPT = str(pathlib.Path(__file__).resolve().parents[2] / "tools" / "private-network")
ADDRESSES = ["192.168.1.120", "192.168.1.148", "192.168.1.149"]


def inside(*arguments, **options):
    return subprocess.run([SCRIPT, "--own", *arguments], capture_output=True, text=True,
                          timeout=30, check=False, **options)


def processes_with(mark):
    """Returns the commands of all visible processes whose command line contains `mark`."""
    found = []
    for entry in pathlib.Path("/proc").glob("[0-9]*/cmdline"):
        try:
            command = entry.read_bytes().replace(b"\0", b" ").decode(errors="replace")
        except OSError:
            continue
        if mark in command:
            found.append(command)
    return found


class PrivateNetworkTest(unittest.TestCase):
    def wait_until(self, what, condition, seconds=10):
        end = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), end, f"not within {seconds} s: {what}")
            time.sleep(0.02)

    def start_sleepers(self):
        """Starts a command with two children, one of them in its own session."""
        mark = f"86399.{secrets.randbelow(10**9):09}"
        process = subprocess.Popen(
            [SCRIPT, "--own", "sh", "-c", f"sleep {mark} & setsid sleep {mark} &"
             "trap 'echo hung up; exit 8' HUP; trap 'echo terminated; exit 5' TERM;"
             "trap 'echo interrupted; exit 6' INT;"
             "echo up; while :; do sleep 0.05; done"],
            stdout=subprocess.PIPE, text=True,
            # Restores SIGINT: a test runner that a script started in the background ignores this
            # signal, and so do its children.
            preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
        self.addCleanup(process.wait, 10)
        self.addCleanup(process.kill)
        self.assertEqual(process.stdout.readline(), "up\n")
        self.wait_until("both sleepers", lambda: len(
            [line for line in processes_with(mark) if line.startswith("sleep")]) == 2)
        return process, mark

    def test_status_is_that_of_the_command(self):
        for command, status in (("exit 0", 0), ("exit 7", 7), ("exit 77", 77),
                                ("kill -KILL $$", 137), ("kill -TERM $$", 143)):
            with self.subTest(command):
                result = inside("sh", "-c", command)
                self.assertEqual((result.returncode, result.stdout, result.stderr),
                                 (status, "", ""))

    def test_missing_command_is_reported(self):
        result = inside("/nonexistent/command")
        self.assertEqual(result.returncode, 127)
        self.assertIn("/nonexistent/command", result.stderr)

    def test_only_the_three_addresses_are_up(self):
        result = inside("ip", "-o", "-4", "addr", "show")
        fields = [line.split() for line in result.stdout.splitlines()]
        self.assertEqual(sorted((field[1], field[3]) for field in fields),
                         [("lo", "127.0.0.1/8")] + [("lo", f"{address}/32")
                                                    for address in ADDRESSES])
        up = inside("ip", "-o", "link", "show", "up").stdout.splitlines()
        self.assertEqual(len(up), 1, up)

    def test_two_networks_at_once_both_serve_port_80(self):
        serve = ("import socket, sys\n"
                 "server = socket.create_server(('192.168.1.120', 80))\n"
                 "print('listening', flush=True)\n"
                 "sys.stdin.read()\n")
        servers = [subprocess.Popen([SCRIPT, "--own", "python3", "-c", serve], text=True,
                                    stdin=subprocess.PIPE, stdout=subprocess.PIPE)
                   for _ in range(2)]
        for server in servers:
            self.assertEqual(server.stdout.readline(), "listening\n")
        for server in servers:
            server.communicate(timeout=10)
            self.assertEqual(server.returncode, 0)

    def test_command_runs_as_the_caller_without_extra_privileges(self):
        shown = inside("sh", "-c", "id -u; id -g; grep CapEff /proc/self/status").stdout.split()
        own = [line.split()[1] for line in pathlib.Path("/proc/self/status").read_text()
               .splitlines() if line.startswith("CapEff")]
        self.assertEqual(shown, [str(os.getuid()), str(os.getgid()), "CapEff:", own[0]])

    @unittest.skipUnless(os.getuid() == 0, "only root can run a command as another user")
    def test_root_runs_a_command_as_another_user(self):
        shown = inside("--as-user", "nobody", "sh", "-c",
                       "id -un; grep CapEff /proc/self/status").stdout.split()
        self.assertEqual(shown, ["nobody", "CapEff:", "0000000000000000"])

    def test_input_and_environment_arrive(self):
        result = inside("sh", "-c", 'cat; printf %s "$MARK"', input="from the caller\n",
                        env=dict(os.environ, MARK="two\nlines"))
        self.assertEqual(result.stdout, "from the caller\ntwo\nlines")

    def test_nested_call_stays_in_the_same_network(self):
        show = "readlink /proc/self/ns/net"
        outer, same, other = inside(
            "sh", "-c", f"{show}; '{SCRIPT}' {show}; '{SCRIPT}' --own {show}").stdout.split()
        self.assertEqual(outer, same)
        self.assertNotEqual(outer, other)

    def test_nothing_outlives_the_command(self):
        mark = f"86399.{secrets.randbelow(10**9):09}"
        result = inside("sh", "-c", f"setsid sleep {mark} & sleep {mark} & exit 3")
        self.assertEqual(result.returncode, 3)
        self.assertEqual(processes_with(mark), [])

    def test_signals_reach_the_command(self):
        for number, status, said in ((signal.SIGTERM, 5, "terminated\n"),
                                     (signal.SIGHUP, 8, "hung up\n"),
                                     (signal.SIGINT, 6, "interrupted\n")):
            with self.subTest(number):
                process, mark = self.start_sleepers()
                process.send_signal(number)
                self.assertEqual(process.communicate(timeout=10)[0], said)
                self.assertEqual(process.returncode, status)
                self.assertEqual(processes_with(mark), [])

    def test_nothing_outlives_a_killed_caller(self):
        process, mark = self.start_sleepers()
        process.kill()
        process.communicate(timeout=10)
        self.wait_until("the end of everything inside", lambda: not processes_with(mark))

    def test_missing_permission_is_reported(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("bash", "readlink", "id", "mktemp", "mkfifo", "rm", "ip", "true"):
                os.symlink(shutil.which(name), f"{folder}/{name}")
            os.symlink(shutil.which("false"), f"{folder}/unshare")
            for arguments in (["--check"], ["--own", "echo", "must not run"]):
                result = subprocess.run([SCRIPT, *arguments], capture_output=True, text=True,
                                        env={"PATH": folder}, timeout=30, check=False)
                if "--check" in arguments and "already" in result.stdout:
                    continue
                self.assertEqual((result.returncode, result.stdout), (77, ""))
                self.assertIn("no network namespace", result.stderr)
                self.assertIn("what to do: run it as root or with sudo", result.stderr)


class NameTest(unittest.TestCase):
    """Tests that help and errors name the command as it was called."""

    def said(self, command, *arguments, **options):
        result = subprocess.run([command, *arguments], capture_output=True, text=True, timeout=30,
                                check=False, **options)
        return result.stdout + result.stderr

    def test_help_and_errors_name_the_command(self):
        with tempfile.TemporaryDirectory() as folder:
            installed = f"{folder}/belun-private-network"
            os.symlink(SCRIPT, installed)
            path = dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}")
            for command, name, options in (
                    (SCRIPT, SCRIPT, {}), (installed, installed, {}),
                    ("tools/private-network", "tools/private-network",
                     {"cwd": pathlib.Path(SCRIPT).parents[1]}),
                    ("belun-private-network", "belun-private-network", {"env": path})):
                with self.subTest(command):
                    self.assertIn(f"Usage: {name} [OPTION...] COMMAND",
                                  self.said(command, "--help", **options))
                    self.assertTrue(self.said(command, "--bogus", **options).startswith(
                        f"{name}: unknown option --bogus\n"))


class NetemTest(unittest.TestCase):
    def with_tc(self, script, *arguments):
        """Runs tools/private-network with the shell script in place of tc."""
        with tempfile.TemporaryDirectory() as folder:
            with open(f"{folder}/tc", "w", encoding="ascii") as file:
                file.write("#!/bin/sh\n" + script)
            os.chmod(f"{folder}/tc", 0o755)
            os.chmod(folder, 0o755)
            return inside(*arguments, env=dict(os.environ, PATH=f"{folder}:{os.environ['PATH']}"))

    def test_connection_is_impaired_as_requested(self):
        result = self.with_tc('echo "$@" >&2', "--netem", "delay 80ms  loss 1%", "echo", "$(id)")
        self.assertEqual((0, "$(id)\n", "qdisc add dev lo root netem delay 80ms loss 1%\n"),
                         (result.returncode, result.stdout, result.stderr))

    def test_text_rejected_by_tc_is_an_error(self):
        for text in ("delay banana", "frobnicate"):
            result = inside("--netem", text, "echo", "must not run")
            self.assertEqual((2, ""), (result.returncode, result.stdout))
            self.assertTrue(result.stderr.startswith(
                f"{SCRIPT}: --netem rejects '{text}': "), result.stderr)

    def test_text_is_no_shell_command(self):
        result = self.with_tc('echo "$@" >&2', "--netem", "loss 1%; echo $HOME `id` *", "true")
        self.assertEqual("qdisc add dev lo root netem loss 1%; echo $HOME `id` *\n", result.stderr)

    def test_unsupported_system_reports_what_to_do(self):
        result = self.with_tc("echo 'Error: Specified qdisc kind is unknown.' >&2\nexit 2\n",
                              "--netem", "delay 80ms", "echo", "must not run")
        self.assertEqual((77, ""), (result.returncode, result.stdout))
        self.assertIn("cannot impair the connection: Error: Specified qdisc kind is unknown.\n",
                      result.stderr)
        self.assertIn("what to do: load the kernel module sch_netem", result.stderr)

    def test_missing_text_is_an_error(self):
        result = inside("--netem")
        self.assertEqual(2, result.returncode)
        self.assertIn("--netem needs a value, such as 'delay 80ms loss 1%'", result.stderr)

    def test_packets_are_delayed(self):
        ask = ("import socket, time\n"
               "server = socket.create_server(('192.168.1.120', 80))\n"
               "start = time.monotonic()\n"
               "socket.create_connection(('192.168.1.120', 80))\n"
               "print(time.monotonic() - start)\n")
        result = inside("--netem", "delay 80ms", "python3", "-c", ask)
        if result.returncode == 77:
            self.assertIn("what to do: ", result.stderr)
            self.skipTest("this system cannot delay packets")
        self.assertGreater(float(result.stdout), 0.159)


if __name__ == "__main__":
    unittest.main()
