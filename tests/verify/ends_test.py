#!/usr/bin/python3
"""Tests how belun-verify ends: interrupted, without a reader or a camera, and on a terminal."""

import fcntl
import os
import pty
import re
import select
import signal
import struct
import subprocess
import termios
import time

import verify_harness
from harness import LIMIT, ok
from verify_harness import ScriptedCamera, VerifyTest

INTERRUPTED = "belun-verify: Interrupted. Do not delete yet.\n"
SIZE = 40_000_000


class Ends(VerifyTest):
    def start_large(self, *arguments):
        """Starts the simulator with one recording of 40 MB, which is also on this computer."""
        content = bytes(range(250)) * (SIZE // 250)
        self.write("A.MP4", content)
        self.start("--card", self.make_card(A=content), *arguments)

    def run_(self, *arguments, **options):
        options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE,
                   "stderr": subprocess.PIPE, **options}
        process = subprocess.Popen(self.command(*arguments), **options)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        for stream in (process.stdout, process.stderr):
            if stream:
                self.addCleanup(stream.close)
        return process

    def end(self, process):
        """Returns status, report and messages."""
        out, err = process.communicate(timeout=LIMIT)
        return process.returncode, (out or b"").decode(), (err or b"").decode()

    def requested(self, kind):
        return lambda: self.journal(device="camera", event="request", kind=kind)

    def interrupt(self, process):
        started = time.monotonic()
        process.send_signal(signal.SIGINT)
        result = self.end(process)
        self.assertLess(time.monotonic() - started, LIMIT / 4, "the program took too long to exit")
        return result

    def test_an_interruption_ends_the_wait_for_a_silent_camera(self):
        self.start_large("--fault", "silent=camera")
        process = self.run_()
        self.eventually(lambda: self.journal(device="camera", event="open"), "a connection")
        self.assertEqual((130, "", INTERRUPTED), self.interrupt(process))

    def test_an_interruption_ends_the_wait_for_a_connection(self):
        self.start("--fault", "down=camera")
        process = self.run_("--timeout", "3600")
        # The journal does not record connection attempts; look for a socket in SYN_SENT instead.
        self.eventually(lambda: " 02 " in self.sockets(), "an attempt to connect")
        self.assertEqual((130, "", INTERRUPTED), self.interrupt(process))

    @staticmethod
    def sockets():
        with open("/proc/net/tcp", encoding="ascii") as file:
            return file.read()

    def test_an_interruption_ends_a_comparison(self):
        self.start_large("--rate", "1000000")
        process = self.run_("--content")
        self.eventually(self.requested("recording"), "a recording")
        self.assertEqual((130, "", INTERRUPTED), self.interrupt(process))

    def test_an_interruption_ends_the_wait_for_a_reader(self):
        self.start("--fault", "entries=500")
        reading, writing = os.pipe()
        self.addCleanup(os.close, reading)
        fcntl.fcntl(writing, fcntl.F_SETPIPE_SZ, 4096)
        process = self.run_(stdout=writing)
        os.close(writing)

        def full():
            return struct.unpack("i", fcntl.ioctl(reading, termios.FIONREAD, bytes(4)))[0] > 4000
        self.eventually(full, "a full pipe")
        self.assertEqual((130, "", INTERRUPTED), self.interrupt(process))

    def test_a_full_pipe_is_waited_for(self):
        self.start("--fault", "entries=3000")
        process = self.run_()
        self.eventually(lambda: select.select([process.stdout], [], [], 0)[0], "a report")
        status, out, err = self.end(process)
        self.assertEqual((1, 3001, ""), (status, len(out.splitlines()), err))

    def test_a_reader_that_has_gone_is_a_failure(self):
        self.start("--fault", "entries=3")
        reading, writing = os.pipe()
        os.close(reading)
        process = self.run_(stdout=writing)
        os.close(writing)
        self.assertEqual((2, "", "belun-verify: The report cannot be written: Broken pipe.\n"),
                         self.end(process))

    def test_a_closed_output_leaves_the_status(self):
        self.start("--fault", "entries=0")
        for closed in (">&-", "2>&-", "<&- >&- 2>&-"):
            result = subprocess.run(["sh", "-c", f'exec "$@" {closed}', "sh", *self.command()],
                                    check=False, capture_output=True, timeout=LIMIT)
            self.assertEqual((0, b""), (result.returncode, result.stderr))

    def test_a_full_disk_is_a_failure(self):
        self.start("--fault", "entries=3")
        with open("/dev/full", "wb") as full:
            for arguments in ((), ("--json",), ("--help",)):
                self.assertEqual(
                    (2, "", "belun-verify: The report cannot be written: No space left on "
                            "device.\n"), self.end(self.run_(*arguments, stdout=full)))

    def test_a_camera_that_is_gone_half_way_is_a_failure(self):
        self.start_large("--rate", "1000000")
        process = self.run_("--content")
        self.eventually(self.requested("recording"), "a recording")
        self.process.stdin.close()
        self.process.wait(LIMIT)
        status, out, err = self.end(process)
        self.assertEqual(
            (2, "A.MP4: cannot be compared: no content: the camera closed the connection before "
                "its answer was complete\n"
                "Do not delete yet: the comparison could not be completed; not known to be safe (1 "
                "of 1): A.MP4.\n"), (status, out))
        # The next request may arrive before the last socket of the camera is closed.
        self.assertRegex(err, "^belun-verify: The recordings cannot be counted: the camera (at "
                              "192.168.1.120 refuses|closed) the connection.*\\.\n$")

    def test_a_camera_without_power_half_way_is_a_failure(self):
        self.start_large("--rate", "1000000")
        process = self.run_("--content", "--timeout", "1")
        self.eventually(self.requested("recording"), "a recording")
        self.switch("fault down=camera")
        self.assertEqual(
            (2, "Do not delete yet: the comparison could not be completed.\n",
             "belun-verify: No content of A.MP4: the camera sent nothing for 1 s.\n"),
            self.end(process))

    def on_terminal(self, *arguments, typed=b"", columns=80):
        """Returns the output on a terminal that is used for all three streams, and the status."""
        master, slave = pty.openpty()
        self.addCleanup(os.close, master)
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
        process = self.run_(*arguments, stdin=slave, stdout=slave, stderr=slave)
        os.close(slave)
        shown = b""
        deadline = time.monotonic() + LIMIT
        while time.monotonic() < deadline:
            if select.select([master], [], [], 0.1)[0]:
                try:
                    shown += os.read(master, 65536)
                except OSError:
                    break  # the terminal's other end is closed
            if typed and typed[:4] in shown:
                os.write(master, b"\n")
                typed = b""
        process.wait(LIMIT)
        return shown.decode().replace("\r\n", "\n"), process.returncode

    def test_a_terminal_shows_rate_and_time_left(self):
        self.start_large("--rate", "20000000")
        shown, status = self.on_terminal("--content")
        self.assertEqual(0, status)
        self.assertTrue(shown.startswith("\r\x1b[KCounting the recordings\r"), shown[:100])
        self.assertRegex(shown, r"\r\x1b\[K1/1 A\.MP4: \d+ %, \d+\.\d MB/s, 00:0\d left")
        rest = re.sub(r"\r\x1b\[K[^\r\n]*(?=\r\x1b\[K)", "", shown)
        self.assertEqual(f"\r\x1b[KA.MP4: the same, byte for byte ({SIZE:,} bytes)",
                         rest.split("\n")[0])
        self.assertTrue(shown.endswith("the same, byte for byte.\n"), shown[-200:])

    def test_progress_is_narrower_than_the_terminal(self):
        self.start("--fault", "entries=0")
        for columns in (24, 23):
            with self.subTest(columns=columns):
                shown, status = self.on_terminal(columns=columns)
                self.assertEqual(0, status)
                text = "Counting the recordings"[:columns - 1]
                self.assertTrue(shown.startswith(f"\r\x1b[K{text}\r"), shown[:100])

    def test_nothing_but_a_terminal_gets_progress(self):
        self.start_large("--rate", "40000000")
        status, out, err = self.end(self.run_("--content"))
        self.assertEqual((0, 2, ""), (status, len(out.splitlines()), err))
        self.assertNotIn("\r", out)

    def test_the_end_waits_for_enter(self):
        self.start("--fault", "entries=0")
        shown, status = self.on_terminal("--wait", typed=b"Press Enter")
        self.assertEqual(0, status)
        self.assertTrue(shown.split("\x1b[K")[-1].startswith(
            "The card holds no recordings.\nPress Enter to close.\n"), repr(shown))
        self.assertEqual((0, "The card holds no recordings.\n", "Press Enter to close.\n"),
                         self.end(self.run_("--wait")))

    def test_memory_stays_the_same_however_much_comes(self):
        def peak(*faults):
            simulator = ["--fault", "entries=1", *(word for fault in faults
                                                   for word in ("--fault", fault))]
            self.start(*simulator)
            process = self.run_()
            process.stdout.read()
            _, status, usage = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            self.stop()
            return usage.ru_maxrss  # KiB
        usual = peak()
        for fault in ("infinite-list", "long-header=10000000", "list-padding=100000000"):
            self.assertLess(peak(fault), usual + 3 * 16 * 1024, fault)

    def test_a_trickling_head_ends(self):
        def trickle():
            for _ in range(1000):
                yield b"x"
                time.sleep(0.2)  # paces the camera; synchronises nothing
        ScriptedCamera(self, lambda target, number: trickle())
        status, _, err = self.end(self.run_("--timeout", "1"))
        self.assertEqual((2, "belun-verify: The recordings cannot be counted: the camera's answer "
                             "took more than 4 s.\n"), (status, err))

    def test_answers_after_the_end_are_ignored(self):
        ScriptedCamera(self, lambda target, number: ok(b'="0";') + b"more" if b"count" in target
                       else ok(b"\r"))
        self.assertEqual(0, self.end(self.run_())[0])


if __name__ == "__main__":
    verify_harness.main()
