"""Tests recording a run, as a journal or as packets, and replaying it."""

import contextlib
import os
import subprocess
import sys
import zlib

import harness
import packets
from harness import (CONTROL, COUNT, DELETE, GROUND, GROUND_HEARTBEAT, HEARTBEAT, INFO, LIST,
                     RECORDING, VERSION, SimulatorTest)

BIG = bytes(range(256)) * 1200
# Faults that change what is sent and how the answers end. The reset comes before any byte of its
# answer, because a reset could overtake bytes.
FAULTS = ("--fault", "split-version", "--fault", "close-mid-body@5=150000", "--fault",
          "reset-before-head@8", "--fault", "info-reordered")
REQUESTS = (COUNT, LIST + b"2", INFO + b"A.MP4", RECORDING + b"B.MP4", RECORDING + b"A.MP4",
            DELETE + b"A.MP4", COUNT, RECORDING + b"A.MP4")


class RecordingTest(SimulatorTest):
    """The base class of the tests below: records and replays runs."""

    def record(self, *arguments):
        """Records a run, keeps its journal as "recorded" in self.folder, and returns what a client
        received."""
        self.start("--card", self.make_card(A=BIG, B=b"bravo"), "--heartbeat", "400", *FAULTS,
                   *arguments)
        seen = self.visit()
        self.finish()
        return seen

    def path(self, name="capture"):
        return os.path.join(self.folder, name)

    def skip_without_captures(self):
        packets.write(self.path("none"), [])
        if "reads no packet captures" in self.refused(1, "--replay", self.path("none")):
            self.skipTest("this build reads no packet captures")

    def messages_of_replay(self, path):
        """Returns the messages of a replay without a client."""
        result = harness.run("--replay", path, "--exit-with-stdin")
        self.assertEqual(0, result.returncode)
        return result.stderr

    def replay(self, path):
        self.start("--replay", path)
        seen = self.visit()
        self.finish()
        return seen

    def finish(self):
        self.end()
        # The next start overwrites the journal, so the first journal is renamed.
        kept = self.path("recorded")
        if not os.path.exists(kept):
            os.rename(self.journal_path, kept)

    def visit(self):
        """Returns what a client received from the modules and the camera, and how answers ended."""
        modules = []
        for device, address, size, count in (("control", CONTROL, 26, 4),
                                             ("ground", GROUND, 12, 2)):
            peer = self.peer(address)
            received = peer.exactly(size)
            pieces = self.sent_pieces(device, count)
            self.assertEqual(received, b"".join(pieces))
            modules.append(pieces)
            peer.close()
        return modules, [self.request(target).rest() for target in REQUESTS]


class JournalTest(RecordingTest):
    def message_that_ends(self, talk):
        """Calls `talk`, which must end a replay with status 1. Returns the replay's message."""
        with subprocess.Popen([harness.program, "--replay", self.path("recorded")], text=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.PIPE) as process:
            self.addCleanup(process.kill)
            self.assertEqual("belun-simulator ready\n", process.stdout.readline())
            talk()
            try:
                _, message = process.communicate(timeout=harness.LIMIT)
            except subprocess.TimeoutExpired:
                process.kill()
                raise AssertionError("the replay did not end") from None
        self.assertEqual(1, process.returncode)
        return message

    def test_full_journal_gives_the_same_bytes(self):
        seen = self.record("--journal-full")
        self.assertEqual([HEARTBEAT, VERSION[:7], VERSION[7:], HEARTBEAT], seen[0][0])
        self.assertEqual([GROUND_HEARTBEAT] * 2, seen[0][1])
        self.assertEqual(["closed"] * 7 + ["reset"], [end for _, end in seen[1]])
        self.assertEqual(BIG[:150000], seen[1][4][0][-150000:])
        self.assertEqual(seen, self.replay(self.path("recorded")))

    def test_replay_of_a_replay_gives_the_same_bytes(self):
        seen = self.record("--journal-full")
        first = self.path("recorded")
        again = self.path("again")
        self.start("--replay", first, "--journal-full")
        self.assertEqual(seen, self.visit())
        self.end()
        os.rename(self.journal_path, again)
        self.assertEqual(seen, self.replay(again))

    def test_ordinary_journal_is_filled_in_and_that_is_said(self):
        seen = self.record()
        journal = self.path("recorded")
        self.assertEqual(f"belun-simulator: {journal}: 150005 bytes in 2 runs are not in the file, "
                         "and are replaced by zeros\n", self.messages_of_replay(journal))
        modules, answers = self.replay(journal)
        self.assertEqual(seen[0], modules)
        for (recorded, end), (played, played_end) in zip(seen[1], answers):
            self.assertEqual((len(recorded), end), (len(played), played_end))
        self.assertEqual(seen[1][:3], answers[:3])
        self.assertEqual(b"\0" * 150000, answers[4][0][-150000:])

    def test_talk_that_is_not_in_the_file_ends_the_run(self):
        self.record("--journal-full")
        for asked, times in ((INFO + b"B.MP4", ""), (LIST + b"2", " more than 1 times")):
            message = self.message_that_ends(
                lambda asked=asked: (self.ask(LIST + b"2"), self.request(asked)))
            self.assertEqual(f'belun-simulator: {self.path("recorded")}: "GET {asked.decode()} '
                             f'HTTP/1.1" is not in the recorded run{times}\n', message)
        self.assertIn("the recorded run has no connection 2 to the ground module\n",
                      self.message_that_ends(lambda: (self.peer(GROUND), self.peer(GROUND))))

    def test_what_is_no_recording_is_an_error(self):
        def file(name, data):
            self.write_file(self.path(name), data)
            return self.path(name)

        line = (b'{"time":"2026-11-21T00:41:07.532442Z","device":"control","connection":1,'
                b'"event":"open"}\n')
        for path, reason in (
                (self.path("none"), ": No such file or directory"),
                (file("text", b"hello\n"), ": neither a journal nor a packet capture"),
                (file("empty", b""), ": neither a journal nor a packet capture"),
                (file("other", line + b'{"time":"yesterday"}\n' + line),
                 ":2: not a line of a journal"),
                (file("odd", line.replace(b'"open"', b'"sent","bytes":"abc"')),
                 ":1: not a line of a journal"),
                (file("void", line.replace(b'"open"', b'"x"') + b'{"ti'),
                 ": there is no connection to a device of the vehicle in it")):
            with self.subTest(path=path):
                message = self.refused(1, "--replay", path)
                if "this build reads no packet captures" not in message:
                    self.assertIn(f"belun-simulator: {path}{reason}", message)

    def test_options_that_exclude_each_other(self):
        for arguments, reason in (
                (["--replay", "x", "--sample"],
                 "--replay excludes --card, --sample, --fault and --scenario"),
                (["--replay", "x", "--fault", "stall"],
                 "--replay excludes --card, --sample, --fault and --scenario"),
                (["--journal-full"], "--journal-full needs --journal")):
            self.assertIn(reason, self.refused(2, *arguments))

    def test_control_lines_of_modules_do_no_harm_in_a_replay(self):
        self.record("--journal-full")
        self.start("--replay", self.path("recorded"))
        peer = self.peer(CONTROL)
        peer.exactly(20)
        self.switch("versions 1,2,3,4,5")
        self.switch("send control 0102")
        self.assertIn(b"\x01\x02", peer.exactly(8))
        self.switch("drop camera")


class PacketOrderTest(RecordingTest):
    """Tests with packets made here, in orders that a network or a capture can cause."""

    def setUp(self):
        super().setUp()
        self.skip_without_captures()

    @staticmethod
    def connection(port, last, start=1000):
        """Returns the packets of a connection to the ground module. last: the module's last packet,
        FIN or RST. start: the client's first sequence number. The module's numbers wrap around."""
        client, module_start = ("192.168.1.2", port), 2 ** 32 - 7

        def sent(flags, sequence, data=b""):
            return packets.segment(GROUND, client, flags | packets.ACK,
                                   (module_start + sequence) % 2 ** 32, start + 1, data)

        def received(flags, sequence, acknowledged=0):
            return packets.segment(client, GROUND, flags, start + sequence,
                                   (module_start + acknowledged) % 2 ** 32)

        opening = [received(packets.SYN, 0), sent(packets.SYN, 0), received(packets.ACK, 1, 1)]
        data = [sent(0, 1, b"first "), received(packets.ACK, 1, 7),
                sent(0, 7, b"second"), received(packets.ACK, 1, 13)]
        if last == packets.RST:
            return [*opening, *data, sent(packets.RST, 13)]
        return [*opening, *data, sent(packets.FIN, 13), received(packets.ACK, 1, 14),
                received(packets.FIN | packets.ACK, 1, 14), sent(0, 14)]

    def replay_connections(self, connections, expected):
        """Replays the connections; each must send the bytes and end as expected."""
        packets.write(self.path(), [(1000, packet) for each in connections for packet in each])
        self.assertEqual("", self.messages_of_replay(self.path()))
        self.start("--replay", self.path())
        for number, end in enumerate(expected, start=1):
            with contextlib.suppress(ConnectionResetError):
                peer = self.peer(GROUND)
                peer.rest()
                peer.close()
            # The journal, because a reset may come before the client has received anything.
            closed = self.eventually(
                lambda number=number: self.journal(connection=number, event="close"),
                f"the end of connection {number}")
            self.assertEqual(end, closed[0].get("how", closed[0]["by"]), f"connection {number}")
            sent = [bytes.fromhex(line["bytes"])
                    for line in self.journal(connection=number, event="sent")]
            self.assertEqual(b"first second", b"".join(sent), f"connection {number}")
        self.end()

    def test_each_packet_may_come_again_after_later_ones(self):
        for last, end in ((packets.FIN, "peer"), (packets.RST, "reset")):
            for distance in (0, 1, 2, 20):
                with self.subTest(end=end, distance=distance):
                    connections = []
                    for late in range(len(self.connection(0, last))):
                        order = self.connection(40000 + late, last)
                        order.insert(late + 1 + distance, order[late])
                        connections.append(order)
                    self.replay_connections(connections, [end] * len(connections))

    def test_port_may_be_used_again(self):
        self.replay_connections(
            [self.connection(40000, last, start)
             for last, start in ((packets.RST, 1000), (packets.FIN, 2000), (packets.RST, 3000))],
            ["reset", "peer", "reset"])

    def test_opening_may_be_missing(self):
        for missing in (0, 1):
            connections = [self.connection(40000, packets.RST, start) for start in (1000, 2000)]
            for each in connections:
                del each[missing]
            with self.subTest(missing=missing):
                self.replay_connections(connections, ["reset", "reset"])

    def test_packet_after_a_reset_by_the_client_opens_no_connection(self):
        first = self.connection(40000, packets.RST)
        first[-1] = packets.segment(("192.168.1.2", 40000), GROUND, packets.RST, 1001, 0)
        run = [*first, first[3], *self.connection(40001, packets.FIN)]
        packets.write(self.path(), [(1000, packet) for packet in run])
        self.start("--replay", self.path())
        for _ in range(2):
            peer = self.peer(GROUND)
            self.assertEqual(b"first second", peer.exactly(12))
            peer.close()


class CaptureTest(RecordingTest):
    """Tests with captured packets, skipped without the permission to capture."""

    def capture(self):
        """Records a run; returns what a client received, and the packets."""
        self.skip_without_captures()
        # A busy system may drop packets that the capturing thread does not fetch in time.
        for _ in range(5):
            try:
                capture = packets.Capture()
            except PermissionError:
                self.skipTest("this system does not allow the test to capture packets")
            seen = self.record("--journal-full")
            captured = capture.stop()
            if captured is not None:
                return seen, captured
        raise AssertionError("the system dropped packets in five captures")

    def test_capture_of_the_same_run_gives_the_same_bytes(self):
        seen, captured = self.capture()
        packets.write(self.path(), captured)
        self.assertEqual(seen, self.replay(self.path()))
        # The capture is complete: the simulator must not warn about bytes replaced with zeros.
        self.assertEqual("", self.messages_of_replay(self.path()))

    def test_repeated_and_swapped_packets_do_no_harm(self):
        seen, captured = self.capture()
        twice = [packet for packet in captured for _ in range(2)]
        for i in range(20, len(twice) - 1, 7):
            twice[i], twice[i + 1] = twice[i + 1], twice[i]
        packets.write(self.path(), twice)
        self.assertEqual(seen, self.replay(self.path()))

    def test_packets_that_are_cut_or_lost_are_filled_in(self):
        seen, captured = self.capture()
        packets.write(self.path("cut"), captured, snap=1000)
        del captured[max(range(len(captured)), key=lambda i: len(captured[i][1]))]
        packets.write(self.path("lost"), captured)
        for name in ("cut", "lost"):
            self.assertRegex(self.messages_of_replay(self.path(name)),
                             r"\d+ bytes in \d+ runs are not in the file, and are replaced")
            _, answers = self.replay(self.path(name))
            self.assertEqual([len(data) for data, _ in seen[1]], [len(data) for data, _ in answers])
            self.assertNotEqual(zlib.crc32(seen[1][4][0]), zlib.crc32(answers[4][0]))

    def test_capture_of_another_kind_is_an_error(self):
        packets.write(self.path(), [], kind=105)
        self.assertRegex(self.refused(1, "--replay", self.path()),
                         "captures of the kind IEEE802_11 are not understood|"
                         "this build reads no packet captures")


def network_with_packets():
    """Restarts this program in a network of its own, if it may capture packets only there."""
    addresses = "".join(f"ip addr add 192.168.1.{a}/32 dev lo;" for a in (120, 148, 149))
    try:
        packets.Capture().stop()
    except PermissionError:
        ways = ["unshare", "--user", "--map-root-user", "--net", "sh", "-c",
                f'ip link set lo up; {addresses} exec "$@"', "sh"]
        if subprocess.run([*ways, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0:
            os.execvp(ways[0], [*ways, sys.executable, *sys.argv])


if __name__ == "__main__":
    network_with_packets()
    harness.main()
