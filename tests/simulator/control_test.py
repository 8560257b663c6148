"""Tests the control socket, --send, and the output of control lines."""

import json
import os
import re
import signal
import socket
import stat
import subprocess

import harness
from harness import CAMERA, COUNT, ROOT, SimulatorTest

NETWORK = os.path.join(ROOT, "tools", "private-network")


class ControlTest(SimulatorTest):
    def setUp(self):
        super().setUp()
        self.path = os.path.join(self.folder, "vehicle")

    def send(self, *lines, path=None):
        return harness.run("--send", path or self.path, *lines)

    def test_lines_are_answered_and_in_force(self):
        self.start("--control", self.path)
        result = self.send("fault count=7", "clear all")
        self.assertEqual((0, "ok fault count=7\nok clear all\n", ""),
                         (result.returncode, result.stdout, result.stderr))
        self.assertEqual(0, self.send("fault count=8").returncode)
        self.assertIn(b'count="8"', self.ask(COUNT))
        self.assertEqual("ok clear count", self.control("clear count"))
        self.assertIn(b'count="11"', self.ask(COUNT))

    def test_status_1_if_any_line_is_an_error(self):
        self.start("--control", self.path)
        result = self.send("fault stal=50", "connections")
        self.assertEqual(1, result.returncode)
        self.assertEqual('error no fault is called "stal"; did you mean "stall"? '
                         "(--list-faults shows all)\n"
                         "ok connections control=0 ground=0 camera=0\n", result.stdout)

    def test_only_the_owner_reaches_the_socket_and_it_goes_with_the_simulator(self):
        self.start("--control", self.path)
        mode = os.lstat(self.path).st_mode
        self.assertTrue(stat.S_ISSOCK(mode))
        self.assertEqual(0o600, stat.S_IMODE(mode))
        self.assertEqual("ok quit\n", self.send("quit").stdout)
        self.assertEqual(0, self.process.wait(harness.LIMIT))
        self.assertFalse(os.path.lexists(self.path))

    def test_dead_socket_is_replaced(self):
        dead = socket.socket(socket.AF_UNIX)
        dead.bind(self.path)
        dead.listen()
        dead.close()
        self.start("--control", self.path)
        self.assertEqual(0, self.send("status").returncode)

    def test_live_socket_is_refused_and_left_alone(self):
        with socket.socket(socket.AF_UNIX) as live:
            live.bind(self.path)
            live.listen()
            self.assertEqual(f"belun-simulator: {self.path} is the socket of a program that runs\n",
                             self.refused(1, "--control", self.path))
            self.assertTrue(os.path.lexists(self.path))

    def test_any_other_file_is_refused_and_left_alone(self):
        for make in (lambda: self.write_file(self.path, b"precious"),
                     lambda: os.mkfifo(self.path), lambda: os.mkdir(self.path),
                     lambda: os.symlink("nowhere", self.path)):
            make()
            before = os.lstat(self.path)
            self.assertEqual(f"belun-simulator: {self.path} is a file, not a socket; it was not "
                             "changed\n", self.refused(1, "--control", self.path))
            self.assertEqual(before.st_ino, os.lstat(self.path).st_ino)
            (os.rmdir if stat.S_ISDIR(before.st_mode) else os.unlink)(self.path)

    def test_path_of_more_than_107_bytes_is_an_error(self):
        longest = self.folder + "/" + "x" * (106 - len(self.folder))
        self.assertEqual(107, len(longest))
        self.start("--control", longest)
        self.assertEqual(0, self.send("status", path=longest).returncode)
        for arguments in (("--control", longest + "x"), ("--send", longest + "x", "status")):
            self.assertIn("a socket's path may have 107 bytes, not 108",
                          self.refused(2, *arguments))

    def test_send_says_what_is_wrong(self):
        self.assertEqual(f"belun-simulator: {self.path}: No such file or directory\n",
                         self.refused(1, "--send", self.path, "status"))
        for lines in ((), ("",), ("status", " "), ("status\nquit",)):
            self.assertIn("--send needs control lines, each an argument of its own",
                          self.refused(2, "--send", self.path, *lines))

    def test_send_notices_that_the_simulator_ended(self):
        with socket.socket(socket.AF_UNIX) as server:
            server.bind(self.path)
            server.listen()
            process = subprocess.Popen([harness.program, "--send", self.path, "status"],
                                       stderr=subprocess.PIPE, text=True)
            connection, _ = server.accept()
            connection.recv(100)
            connection.close()
            _, message = process.communicate(timeout=harness.LIMIT)
        self.assertEqual(1, process.returncode)
        self.assertIn('no answer to "status": the simulator has ended', message)

    def test_client_that_does_not_read_hinders_nobody(self):
        self.start("--control", self.path)
        with socket.socket(socket.AF_UNIX) as lazy:
            lazy.settimeout(harness.LIMIT)
            lazy.connect(self.path)
            try:
                for _ in range(2000):
                    lazy.sendall(b"help\n" * 100)
            except OSError:
                pass  # the simulator has disconnected this client, which does not read
            self.assertEqual(0, self.send("status").returncode)

    def test_spaces_around_a_line_do_not_count(self):
        self.start()
        self.assertEqual("ok fault stall=50", self.control("  fault \t stall=50 \r"))
        self.process.stdin.write(b"   \n")
        self.assertEqual("ok rate 2k", self.control("rate 2k"))
        self.assertEqual("ok rate 1M", self.control("rate 1M"))

    def test_misspelt_lines_are_understood_as_what_they_resemble(self):
        self.start()
        for line, meant in (("falt stall", "fault"), ("conections", "connections"),
                            ("stall=50", "fault stall=50"), ("cler all", "clear"),
                            ("fault bare-fl", "bare-lf"), ("clear flaping", "flapping")):
            self.assertIn(f'; did you mean "{meant}"?', self.control(line))

    def details(self, line):
        """Returns the lines of the answer before the last one."""
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()
        lines = [self.answers.get(timeout=harness.LIMIT)]
        while lines[-1].startswith("  "):
            lines.append(self.answers.get(timeout=harness.LIMIT))
        self.assertEqual("ok " + line, lines.pop())
        return lines

    def test_faults_shows_those_that_are_on(self):
        self.start("--fault", "stall=50", "--fault", "name-custom=\\x20a b\\r")
        for _ in range(2):
            self.assertEqual(["  stall=50", "  name-custom=\\x20a b\\x0d"], self.details("faults"))
            self.control("fault name-custom=\\x20a b\\x0d")
        self.control("clear all")
        self.assertEqual([], self.details("faults"))

    def test_old_names_of_faults_are_understood_everywhere(self):
        old = {fault["oldName"]: fault["name"] for fault in json.loads(
            harness.run("--list-faults=json").stdout) if "oldName" in fault}
        self.assertEqual({"long-chunk", "wrong-length", "length", "endless-list", "unending-list",
                          "name-dotdot", "name-dots"}, set(old))
        self.start(*(argument for name in old for argument in ("--fault", name)))
        on = [line.strip().partition("=")[0] for line in self.details("faults")]
        self.assertEqual(sorted(old.values()), sorted(on))
        for name in old:
            self.switch("clear " + name)
        self.assertEqual([], self.details("faults"))
        for name in old:
            self.switch("fault " + name)
            self.switch("clear " + old[name])
        self.assertEqual([], self.details("faults"))

    def test_card_shows_the_recordings(self):
        self.start("--card", self.make_card(A=b"alpha", B=b"b" * 2_000_000))
        self.assertEqual(["  A.MP4  5 bytes  20200131124502  1 s",
                          "  B.MP4  2000000 bytes  20200131124502  2 s"], self.details("card"))

    def test_status_shows_the_state(self):
        self.start("--rate", "3k", "--fault", "refuse=ground")
        self.peer(CAMERA)
        self.eventually(lambda: self.journal(device="camera", event="open"), "the connection")
        self.ask(COUNT)
        text = "\n".join(self.details("status"))
        for line in ("control     listening, open connections: 0",
                     "ground      refusing, open connections: 0", "requests    1 to the camera",
                     "card        11 recordings", "rate        3072 bytes a second",
                     "faults      1 on"):
            self.assertIn(line, text)
        self.assertRegex(text, r"camera      listening, open connections: [12]")

    def test_help_shows_every_line(self):
        self.start()
        lines = self.details("help")
        text = harness.run("--help").stdout
        with open(os.path.join(ROOT, "simulator", "README.md"), encoding="utf-8") as file:
            page = file.read()
        self.assertEqual(13, len(lines))
        for line in lines:
            self.assertIn(line, text)
            word = line.split()[0]
            self.assertRegex(page, rf"(?m)^\| .*`{word}\b", word)
            answer = self.control(word)
            self.assertNotIn("no control line", answer)
            while answer.startswith("  "):
                answer = self.answers.get(timeout=harness.LIMIT)

    def test_nothing_may_follow_a_line_without_arguments(self):
        self.start()
        self.assertEqual('error nothing may follow, not "now"', self.control("quit now"))

    def follow(self, started, sent, typed=None):
        """Runs the commands of a page: `started`, which starts the simulator and the window, then
        each command of `sent`, which sends control lines. Returns the output of each of the latter.
        If `typed` is given, it is entered into the shell that `started` opens and must end that
        shell; the remaining output of `started` is then added to the result. The commands are found
        both where the source tree has them and by their installed names."""
        binaries = os.path.dirname(harness.program)
        commands = os.path.join(self.folder, "commands")
        for path, target in (("build/bin", binaries), ("tools", os.path.join(ROOT, "tools")),
                             ("commands/belun-simulator", harness.program),
                             ("commands/belun-download", os.path.join(binaries, "belun-download")),
                             ("commands/belun-verify", os.path.join(binaries, "belun-verify"))):
            os.makedirs(os.path.dirname(os.path.join(self.folder, path)), exist_ok=True)
            os.symlink(target, os.path.join(self.folder, path))
        # With --own the command creates a new network, as it does for users, and ends everything in
        # that network when it exits.
        with open(os.path.join(commands, "belun-private-network"), "w", encoding="utf-8") as file:
            os.fchmod(file.fileno(), 0o755)
            file.write(f'#!/bin/sh\nexec "{NETWORK}" --own "$@"\n')
        options = {"cwd": self.folder, "env": {**os.environ, "HOME": self.folder,
                                               "PATH": f"{commands}:{os.environ['PATH']}"}}
        window = subprocess.Popen(["sh", "-c", started], start_new_session=True,
                                  stdin=subprocess.PIPE, stdout=subprocess.PIPE, **options)
        self.addCleanup(window.stdin.close)  # while open, it keeps the page's shell running
        self.addCleanup(window.stdout.close)
        self.addCleanup(window.wait, harness.LIMIT)
        self.addCleanup(lambda: window.poll() is None and os.killpg(window.pid, signal.SIGKILL))
        self.assertEqual(b"belun-simulator ready\n", window.stdout.readline())
        answers = [subprocess.run(["sh", "-c", line], check=True, text=True, stdout=subprocess.PIPE,
                                  timeout=harness.LIMIT, **options).stdout for line in sent]
        self.assertIsNone(window.poll())
        if typed:
            answers.append(window.communicate(typed.encode(), timeout=harness.LIMIT)[0].decode())
        return answers

    def recipe(self, page, start, send):
        with open(os.path.join(ROOT, page), encoding="utf-8") as file:
            text = file.read()
        return (re.search(rf"(?m)^{start} .* --control .*& .*$", text)[0],
                re.findall(rf"(?m)^{send} --send .*$", text))

    def test_recipe_of_the_simulators_page(self):
        answers = self.follow(*self.recipe("simulator/README.md", "tools/private-network",
                                           "build/bin/belun-simulator"))
        self.assertEqual(3, len(answers))
        self.assertTrue(answers[0].startswith("ok fault stall=50\n"), answers)
        self.assertEqual(["ok clear all\nok drop control\n", "ok quit\n"], answers[1:])

    def test_recipe_of_the_readme(self):
        for page in ("README.md", "README.zh.md"):
            with self.subTest(page):
                answers = self.follow(*self.recipe(page, "belun-private-network",
                                                   "belun-simulator"), "belun-verify\nexit\n")
                self.assertEqual(3, len(answers))
                self.assertTrue(answers[0].startswith("ok fault stall=50\n"), answers)
                self.assertEqual("ok clear all\n", answers[1])
                self.assertIn("not known to be safe (9 of 9)", answers[2])
                self.doCleanups()
                self.setUp()


if __name__ == "__main__":
    harness.main()
