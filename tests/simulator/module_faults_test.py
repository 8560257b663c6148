"""Tests what a client of the modules receives with each fault, as literal bytes."""

import signal
import time

import harness
from harness import (CAMERA, CONTROL, COUNT, GROUND, GROUND_HEARTBEAT, HEARTBEAT, SimulatorTest,
                     VERSION)

BEAT = 300  # milliseconds, to keep the tests short
QUIET = 1.0
ATTEMPTS = 20

# faults, module, the first segments of a connection
SEGMENTS = [
    ("wrong-start", CONTROL, [b"\xbb" + HEARTBEAT[1:], b"\xbb" + VERSION[1:]]),
    ("wrong-start", GROUND, [HEARTBEAT]),
    ("wrong-start=5c", CONTROL, [b"\x5c" + HEARTBEAT[1:], b"\x5c" + VERSION[1:]]),
    ("no-version", CONTROL, [HEARTBEAT] * 3),
    ("split-frames", CONTROL, [HEARTBEAT[:3], HEARTBEAT[3:], VERSION[:7], VERSION[7:]]),
    ("split-frames", GROUND, [GROUND_HEARTBEAT[:3], GROUND_HEARTBEAT[3:]]),
    ("split-version", CONTROL, [HEARTBEAT, VERSION[:7], VERSION[7:], HEARTBEAT]),
    ("two-frames", CONTROL, [HEARTBEAT + VERSION] * 2),
    ("two-frames=version", CONTROL, [VERSION + HEARTBEAT] * 2),
    ("long-segment no-version", CONTROL, [HEARTBEAT + b"\x55" * 94 + HEARTBEAT] * 2),
    ("long-segment=12 no-version", CONTROL, [HEARTBEAT * 2]),
    ("high-bit-version", CONTROL, [HEARTBEAT, bytes.fromhex("aaaf0009ff01908000ffff0080e8")]),
    ("reset-mid-frame", CONTROL, [HEARTBEAT, VERSION, HEARTBEAT, HEARTBEAT[:3], "reset"]),
    ("split-frames only=ground", CONTROL, [HEARTBEAT]),
    ("split-frames only=ground", GROUND, [GROUND_HEARTBEAT[:3]]),
    ("split-frames only=list", CONTROL, [HEARTBEAT[:3]]),
]


class ModuleFaultsTest(SimulatorTest):
    def start_with(self, *faults):
        self.start("--heartbeat", str(BEAT), *[a for f in faults for a in ("--fault", f)])

    def assert_segments(self, expected, address):
        """Checks that a connection begins with these segments.

        A slow reader receives several segments as one; the check is then repeated on a new
        connection. The bytes must be right each time.
        """
        wanted = b"".join(piece for piece in expected if piece != "reset")
        for _ in range(ATTEMPTS):
            peer = self.peer(address)
            pieces = [peer.segment() for _ in expected]
            peer.close()
            if pieces == expected:
                return
            received = b"".join(piece for piece in pieces if piece != "reset")
            self.assertEqual(wanted[:len(received)], received[:len(wanted)])
        self.assertEqual(expected, pieces)

    def test_segments_of_each_fault(self):
        self.start_with()
        for faults, address, segments in SEGMENTS:
            with self.subTest(faults=faults, address=address):
                self.switch("clear all")
                for fault in faults.split():
                    self.switch("fault " + fault)
                self.assert_segments(segments, address)

    def test_no_heartbeat(self):
        self.start_with("no-heartbeat")
        control, ground = self.peer(CONTROL), self.peer(GROUND)
        self.assertEqual(VERSION, control.exactly(14))
        self.assertTrue(control.quiet_for(QUIET))
        self.assertTrue(ground.quiet_for(0.1))
        self.switch("fault no-heartbeat=ground")
        self.assertEqual(HEARTBEAT, control.exactly(6))
        self.switch("clear no-heartbeat")
        self.assertEqual(GROUND_HEARTBEAT, ground.exactly(6))

    def test_heartbeat_stops(self):
        self.start_with("heartbeat-stops=1")
        peer = self.peer(CONTROL)
        peer.exactly(20)
        beats = 1
        while not peer.quiet_for(QUIET) and time.monotonic() - peer.opened < harness.LIMIT:
            self.assertEqual(HEARTBEAT, peer.exactly(6))
            beats += 1
        # One at once, then one every 300 ms for one second.
        self.assertLessEqual(beats, 4)
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))

    def test_heartbeat_pause(self):
        self.start_with("heartbeat-pause=3")
        peer = self.peer(GROUND)
        self.assertEqual(GROUND_HEARTBEAT * 2, peer.exactly(12))
        self.assertEqual(GROUND_HEARTBEAT, peer.exactly(6))
        self.assertGreater(time.monotonic() - peer.opened, 2.9)
        self.assertEqual(GROUND_HEARTBEAT * 2, peer.exactly(12))

    def test_heartbeat_interval(self):
        self.start_with("heartbeat-interval", "no-version")
        # On a busy machine, heartbeats may come late. The test then tries a new connection.
        for _ in range(5):
            peer = self.peer(CONTROL)
            self.assertEqual(HEARTBEAT * 11, peer.exactly(66))
            elapsed = time.monotonic() - peer.opened
            self.assertGreater(elapsed, 1.0)
            if elapsed < 2.0:
                return
        self.fail(f"{elapsed} s")

    def test_unknown_type(self):
        self.start_with("unknown-type", "no-heartbeat", "no-version")
        control, ground = self.peer(CONTROL), self.peer(GROUND)
        self.assertEqual(bytes.fromhex("aaaf7f0101da") * 2, control.exactly(12))
        self.assertEqual(bytes.fromhex("bbaf7f0101da"), ground.exactly(6))

    def test_early_version(self):
        self.start("--heartbeat", "4000", "--fault", "early-version")
        peer = self.peer(CONTROL)
        self.assertEqual(VERSION, peer.exactly(14))
        self.assertTrue(peer.quiet_for(0.5))
        self.assertEqual(HEARTBEAT, peer.exactly(6))

    def test_half_close(self):
        self.start_with("half-close")
        peer = self.peer(GROUND)
        self.assertEqual((GROUND_HEARTBEAT * 2, "closed"), peer.rest())
        peer.send(b"\x00")
        self.eventually(lambda: self.journal(device="ground", event="received"),
                        "a half-closed module that still listens")

    def test_refuse(self):
        self.start_with()
        old = self.peer(CONTROL)
        old.exactly(20)
        self.switch("fault refuse=control")
        with self.assertRaises(ConnectionRefusedError):
            self.peer(CONTROL)
        self.assertEqual(HEARTBEAT, old.exactly(6))
        self.assertEqual(GROUND_HEARTBEAT, self.peer(GROUND).exactly(6))
        self.switch("clear refuse")
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))

    def test_all_devices_can_refuse_from_the_start(self):
        self.start_with("refuse")
        for address in (CONTROL, GROUND, CAMERA):
            with self.assertRaises(ConnectionRefusedError):
                self.peer(address)

    def test_silent_and_never_accept(self):
        self.start_with()
        for fault in ("silent", "never-accept"):
            with self.subTest(fault=fault):
                self.switch(f"fault {fault}=control,ground")
                control, ground = self.peer(CONTROL), self.peer(GROUND)
                self.assertTrue(control.quiet_for(QUIET / 2))
                self.assertTrue(ground.quiet_for(0.1))
                self.switch("clear " + fault)
                self.assertEqual(HEARTBEAT + VERSION, control.exactly(20))
                self.assertEqual(GROUND_HEARTBEAT, ground.exactly(6))

    def test_late_module_sends_first_what_was_due_first(self):
        self.start_with("silent")
        peer = self.peer(CONTROL)
        self.eventually(lambda: self.journal(event="open"), "the connection")
        self.process.send_signal(signal.SIGSTOP)
        self.process.stdin.write(b"clear silent\n")
        self.process.stdin.flush()
        time.sleep(0.5)  # until both frames are due
        self.process.send_signal(signal.SIGCONT)
        self.assertEqual("ok clear silent", self.answers.get(timeout=harness.LIMIT))
        self.assertEqual(HEARTBEAT + VERSION, peer.exactly(20))

    def test_down(self):
        self.start_with()
        old = self.peer(CONTROL)
        old.exactly(20)
        self.switch("fault down=control")
        with self.assertRaises(TimeoutError):
            self.peer(CONTROL, 0.5)
        while not old.quiet_for(QUIET / 2):
            self.assertEqual(HEARTBEAT, old.exactly(6))  # sent before the switch
        self.assertEqual(GROUND_HEARTBEAT, self.peer(GROUND).exactly(6))
        self.switch("clear down")
        self.assertEqual("reset", old.segment())
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))

    def test_reboot_ends_by_itself(self):
        self.start_with()
        old = self.peer(GROUND)
        old.exactly(6)
        start = time.monotonic()
        self.switch("fault reboot=2")
        with self.assertRaises(TimeoutError):
            self.peer(GROUND, 0.5)
        data, end = old.rest()
        self.assertEqual(("reset", b""), (end, data.replace(GROUND_HEARTBEAT, b"")))
        self.assertTrue(1.99 < time.monotonic() - start < 6.0, time.monotonic() - start)
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))
        self.assertIn(b'count="11"', self.ask(COUNT))
        self.assertEqual(1, len(self.journal(event="control", line="clear reboot")))

    def test_flapping(self):
        self.start_with("flapping=600", "no-version")
        peer = self.eventually(self.reach, "a connection while up")
        data, end = peer.rest()
        self.assertEqual(("reset", b""), (end, data.replace(HEARTBEAT, b"")))
        self.eventually(lambda: not self.reach(), "a refusal while down")
        self.eventually(lambda: (up := self.reach()) and up.segment()[:6] == HEARTBEAT, "up again")

    def reach(self):
        try:
            return self.peer(CONTROL)
        except ConnectionRefusedError:
            return None


if __name__ == "__main__":
    harness.main()
