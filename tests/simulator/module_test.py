"""Tests the control and the ground module: frames, checks, control lines."""

import signal
import time

import harness
from harness import (ANSWER, CAMERA, CONTROL, COUNT, GROUND, GROUND_HEARTBEAT, HEARTBEAT,
                     SimulatorTest, VERSION)


class ModuleTest(SimulatorTest):
    def test_control_sends_heartbeat_and_version_each_in_its_segment(self):
        self.start()
        # On a busy machine a late receive may return heartbeat and version together, or shorten the
        # measured pause. The test then tries a new connection.
        for _ in range(10):
            peer = self.peer(CONTROL)
            segments, times = [], []
            for _ in range(3):
                segments.append(peer.segment())
                times.append(time.monotonic() - times[0] if times else time.monotonic())
            if (segments == [HEARTBEAT, VERSION, HEARTBEAT] and times[1] > 0.05
                    and abs(times[2] - 1.0) < 0.3):
                return
        self.fail(f"{segments}, {times[1]:.3f} s and {times[2]:.3f} s after the first")

    def test_ground_sends_heartbeats_and_no_version(self):
        self.start("--heartbeat", "300")
        peer = self.peer(GROUND)
        self.assertEqual(GROUND_HEARTBEAT * 4, peer.exactly(24))

    def test_clients_are_served_side_by_side(self):
        self.start("--heartbeat", "300")
        probe = self.peer(CONTROL)
        probe.close()
        peers = [self.peer(CONTROL) for _ in range(3)]
        for peer in peers:
            self.assertEqual(HEARTBEAT + VERSION + HEARTBEAT, peer.exactly(26))
        self.assertEqual("ok connections control=3 ground=0 camera=0",
                         self.control("connections"))

    def test_answered_heartbeat_gives_no_complaint(self):
        self.start("--heartbeat", "200")
        # On a busy machine an answer may come a second late. The test then tries again.
        for _ in range(5):
            peer = self.peer(CONTROL)
            ground = self.peer(GROUND)
            self.assertEqual(HEARTBEAT + VERSION, peer.exactly(20))
            for _ in range(8):
                peer.send(ANSWER[:2])
                peer.send(ANSWER[2:])
                self.assertEqual(HEARTBEAT, peer.exactly(6))
                self.assertEqual(GROUND_HEARTBEAT, ground.exactly(6))
                ground.send(ANSWER)
            peer.close()
            ground.close()
            if self.complaints.empty():
                return
            said = [self.complaints.get() for _ in range(self.complaints.qsize())]
        self.fail(said)

    def test_complaints(self):
        self.start("--heartbeat", "60000")

        def complains(expected):
            # A late test may also cause complaints that a heartbeat was not answered.
            while (said := self.complaints.get(timeout=harness.LIMIT)) != expected:
                self.assertIn("heartbeat not answered", said)

        for sent, complaint in (("", "heartbeat not answered (connection 1)"),
                                ("aaaf0401025f", "wrong answer (connection 2) aaaf0401025f"),
                                (ANSWER.hex() * 2, "answer without a heartbeat (connection 3) "
                                                   + ANSWER.hex())):
            peer = self.peer(CONTROL)
            peer.exactly(6)
            peer.send(bytes.fromhex(sent))
            complains("control: " + complaint)
            peer.close()
        self.assertEqual("heartbeat not answered", self.journal(event="complaint")[0]["text"])
        self.peer(GROUND)
        complains("ground: heartbeat not answered (connection 1)")

    def test_versions_are_as_asked_for(self):
        self.start("--versions", "-1,400,-2,65535,0", "--heartbeat", "60000")
        peer = self.peer(CONTROL)
        self.assertEqual(HEARTBEAT, peer.exactly(6))
        self.assertEqual(bytes.fromhex("aaaf0009ff0190fffeffff0000e5"), peer.exactly(14))
        self.switch("versions 7,300,600,100,10")
        self.assertEqual(VERSION, peer.exactly(14))
        self.assertEqual("error versions takes five numbers, like 7,300,600,100,10",
                         self.control("versions 7,300,600,100"))

    def test_drop_closes_the_connections_of_one_device(self):
        self.start("--heartbeat", "60000")
        control, ground, camera = (self.peer(a) for a in (CONTROL, GROUND, CAMERA))
        self.assertEqual(HEARTBEAT + VERSION, control.exactly(20))
        self.switch("drop control")
        self.assertEqual(b"", control.segment())
        self.switch("drop camera")
        self.assertEqual(b"", camera.segment())
        self.assertEqual(GROUND_HEARTBEAT, ground.exactly(6))
        self.assertTrue(ground.quiet_for(0.2))
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))
        self.assertEqual("error drop takes control, ground or camera", self.control("drop all"))

    def test_send_puts_any_bytes_on_the_wire(self):
        self.start("--heartbeat", "60000")
        peer = self.peer(GROUND)
        self.assertEqual(GROUND_HEARTBEAT, peer.segment())
        self.switch("send ground 00ff10")
        self.assertEqual(b"\x00\xff\x10", peer.segment())
        for line in ("send ground 0", "send ground xx", "send camera 00", "send ground"):
            self.assertEqual("error send takes control or ground, then an even number of hex "
                             "digits", self.control(line))

    def test_segments_do_not_wait_for_each_other(self):
        self.start("--fault", "silent")
        peer = self.peer(CONTROL)
        self.eventually(lambda: self.journal(event="open"), "the connection")
        delays = []
        while len(delays) < 50 and min(delays, default=1) > 0.03:
            # After sending, the client delays its acknowledgements; segment 03 must not wait for
            # the acknowledgement of 02.
            self.switch("send control 01")
            self.assertEqual(b"\x01", peer.exactly(1))
            peer.send(ANSWER)
            self.process.stdin.write(b"send control 02\nsend control 03\n")
            self.process.stdin.flush()
            peer.exactly(1)
            start = time.monotonic()
            peer.exactly(1)
            delays.append(time.monotonic() - start)
            self.answers.get(timeout=harness.LIMIT)
            self.answers.get(timeout=harness.LIMIT)
        self.assertLess(min(delays), 0.03, delays)

    def test_flooding_client_hurts_nobody_else(self):
        self.start("--heartbeat", "60000")
        flood = self.peer(CONTROL)
        camera = self.peer(CAMERA)
        for _ in range(200):
            flood.send(b"\x00" * 50000)
        camera.send(b"\x00" * 60000)
        self.assertIn(b'count="11"', self.ask(COUNT))

    def test_client_that_never_reads_is_let_go(self):
        self.start("--fault", "long-segment=20000", "--fault", "heartbeat-interval=5")
        self.peer(CONTROL)
        self.assertEqual("the client does not read", self.eventually(
            lambda: self.journal(device="control", event="close"), "the end")[0]["reason"])

    def test_clients_beyond_the_limit_wait_for_their_turn(self):
        self.start(descriptors=200)
        waiting = [self.peer(CAMERA) for _ in range(100)]
        late = self.request(COUNT)
        self.assertTrue(late.quiet_for(0.3))
        self.assertEqual(HEARTBEAT, self.peer(CONTROL).exactly(6))
        for peer in waiting:
            peer.close()
        self.assertIn(b'count="11"', late.rest()[0])

    def test_quit_ends_with_status_0(self):
        self.start()
        self.switch("quit")
        self.assertEqual(0, self.process.wait(harness.LIMIT))

    def test_signals_end_with_status_0(self):
        for number in (signal.SIGTERM, signal.SIGINT, signal.SIGHUP):
            self.start()
            peer = self.peer(CONTROL)
            peer.exactly(6)
            self.process.send_signal(number)
            self.assertEqual(0, self.process.wait(harness.LIMIT))
            self.stop()

    def test_journal_has_every_frame_both_ways(self):
        self.start("--heartbeat", "60000")
        peer = self.peer(GROUND)
        self.assertEqual(GROUND_HEARTBEAT, peer.exactly(6))
        peer.send(ANSWER)
        self.eventually(lambda: self.journal(event="received"), "the answer in the journal")
        self.switch("send ground 0102")
        self.assertEqual(b"\x01\x02", peer.exactly(2))
        peer.close()
        self.eventually(lambda: self.journal(event="close"), "the close in the journal")
        self.assertEqual(
            [("open", None), ("sent", GROUND_HEARTBEAT.hex()), ("received", ANSWER.hex()),
             ("sent", "0102"), ("close", None)],
            [(line["event"], line.get("bytes")) for line in self.journal(device="ground")])


if __name__ == "__main__":
    harness.main()
