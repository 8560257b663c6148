"""Tests the camera's commands and recordings; the expected answers are literal bytes."""

import datetime
import os
import re
import socket
import struct
import time
import zlib

import harness
from harness import (ALPHA, BRAVO, CAMERA, COUNT, DELETE, DELETE_ALL, FORMAT, INFO, LIST, NONE,
                     NOT_FOUND, RECORDING, SUCCESS, TWO, SimulatorTest, ok)


class CameraTest(SimulatorTest):
    def test_card_of_two(self):
        self.start_two()
        both = ok(b"sd/DCIM/100ZEPNA/A.MP4;sd/DCIM/100ZEPNA/B.MP4;\r\n")
        self.play(
            (COUNT, ok(b'var count="2";\r\n')),
            # At most as many entries as requested are listed; 14 or more digits request all.
            *[(LIST + end, both) for end in (b"2", b"3", b"20200131124502", b"9" * 40, b"0" * 14)],
            (LIST + b"1", ok(b"sd/DCIM/100ZEPNA/A.MP4;\r\n")),
            *[(LIST + end, ok(b"\r\n")) for end in (b"0", b"", b"-3")],
            (INFO + b"A.MP4",
             ok(b'var create="20200131124502";\r\nvar size="500";\r\nvar time="1";\r\n')),
            (RECORDING + b"B.MP4", ok(BRAVO, b"video/mp4")),
            (b"http://192.168.1.120" + RECORDING + b"A.MP4", ok(ALPHA, b"video/mp4")),
            *[(target, NOT_FOUND) for target in (
                b"/", b"/cgi-bin/hi3510/getfilecount.cgi", COUNT + b"x",
                b"/cgi-bin/hi3510/sdcommand.cgi?&-format&-partition=1", INFO + b"C.MP4",
                DELETE + b"C.MP4", RECORDING + b"C.MP4", RECORDING)])

    def test_duration_comes_from_the_movie_header(self):
        card = self.make_card(A=b"\0\0\0\x10ftypisom\0\0\2\0\0\0\0\x24moov\0\0\0\x1cmvhd"
                              + b"\0" * 12 + b"\0\0\x02\x58\0\1\0\0" + b"\0" * 8)
        wide = (b"\0\0\0\x30moov\0\0\0\x28mvhd\1\0\0\0" + b"\0" * 16 + b"\0\0\0\x0a"
                + b"\0\0\0\0\0\0\x10\0")
        self.write_file(os.path.join(card, "B.MP4"), wide)
        self.start("--card", card)
        self.assertIn(b'time="109"', self.ask(INFO + b"A.MP4"))
        self.assertIn(b'time="409"', self.ask(INFO + b"B.MP4"))

    def test_name_is_taken_as_sent(self):
        name = "A HTTP/1.1 &%41 \u6d77.MP4"
        card = self.make_card()
        os.makedirs(os.path.join(card, "A HTTP"))
        self.write_file(os.path.join(card, "C &%41 \u6d77.MP4"), ALPHA)
        self.start("--card", card)
        self.play((RECORDING + "C &%41 \u6d77.MP4".encode(), ok(ALPHA, b"video/mp4")),
                  (RECORDING + name.encode(), NOT_FOUND))
        self.assertEqual("/sd/DCIM/100ZEPNA/" + name,
                         self.journal(event="request")[-1]["target"].encode("latin-1").decode())

    def test_malformed_requests_are_refused(self):
        self.start_two()
        for data, status in ((b"GET /x HTTP/1.0\r\n\r\n", b"HTTP/1.1 400 "),
                             (b"\r\n\r\n", b"HTTP/1.1 400 "),
                             (b"POST / HTTP/1.1\r\n\r\n", b"HTTP/1.1 405 "),
                             (b"GET /" + b"x" * 70000, b"HTTP/1.1 431 ")):
            with self.subTest(data=data[:20]):
                peer = self.peer(CAMERA)
                peer.send(data)
                self.assertEqual(status, peer.exactly(13))

    def test_request_in_single_bytes_is_understood(self):
        self.start_two()
        peer = self.peer(CAMERA)
        for byte in b"GET " + COUNT + b" HTTP/1.1\r\n\r\n":
            peer.send(bytes([byte]))
        self.assertEqual((TWO, "closed"), peer.rest())

    def test_answer_survives_what_comes_behind_the_request(self):
        self.start_two()
        peer = self.peer(CAMERA)
        peer.send(b"GET " + COUNT + b" HTTP/1.1\r\n\r\n" + b"x" * 100000)
        self.assertEqual((TWO, "closed"), peer.rest())

    def test_deleting_and_formatting_change_the_card_only(self):
        self.start_two()
        self.play((DELETE + b"A.MP4", SUCCESS), (COUNT, ok(b'var count="1";\r\n')),
                  (LIST + b"2", ok(b"sd/DCIM/100ZEPNA/B.MP4;\r\n")),
                  (RECORDING + b"A.MP4", NOT_FOUND), "reload", (COUNT, TWO))
        for target in (DELETE_ALL, FORMAT):
            self.play("reload", (target, SUCCESS), (COUNT, ok(b'var count="0";\r\n')),
                      (LIST + b"0", NONE))
        self.assertEqual(["A.MP4", "B.MP4"], sorted(os.listdir(self.card)))

    def test_card_leaves_out_folders_and_hidden_files(self):
        card = self.make_card(A=ALPHA)
        os.mkdir(os.path.join(card, "folder"))
        os.mkfifo(os.path.join(card, "pipe"))
        self.write_file(os.path.join(card, ".hidden"), ALPHA)
        self.start("--card", card)
        self.play((LIST + b"9", ok(b"sd/DCIM/100ZEPNA/A.MP4;\r\n")))

    def test_card_file_that_shrinks_ends_the_answer(self):
        self.start_two()
        os.truncate(os.path.join(self.card, "B.MP4"), 100)
        self.assertEqual(BRAVO[:100], self.ask(RECORDING + b"B.MP4").split(b"\r\n\r\n")[1])

    def test_rate_paces_recordings(self):
        self.start_two("--rate", "10000", "--journal-full")
        start = time.monotonic()
        self.play((RECORDING + b"B.MP4", ok(BRAVO, b"video/mp4")))
        self.assertGreater(time.monotonic() - start, 0.45)
        _, first = self.sent_pieces("camera", 2)
        self.assertEqual(100, len(first), "the first part, which is sent without waiting")
        self.switch("rate 0")
        self.ask(RECORDING + b"B.MP4")
        _, whole = self.sent_pieces("camera", 2, connection=2)
        self.assertEqual(BRAVO, whole)

    def test_sample_card_equals_the_written_files(self):
        sample = os.path.join(self.folder, "sample")
        self.start("--sample", "--sample-to", sample, "--seed", "7")
        names = sorted(os.listdir(sample))
        self.assertEqual(b"".join(b"sd/DCIM/100ZEPNA/" + n.encode() + b";" for n in names)
                         + b"\r\n", self.ask(LIST + b"99").split(b"\r\n\r\n")[1])
        self.assertGreaterEqual(len(names), 8)
        self.assertEqual(29, max(map(len, names)))
        contents = set()
        for name in names:
            with open(os.path.join(sample, name), "rb") as file:
                content = file.read()
            contents.add(content[-300:])
            self.play((RECORDING + name.encode(), ok(content, b"video/mp4")))
        self.assertEqual(len(names), len(contents), "recordings with the same content")
        sizes = [os.path.getsize(os.path.join(sample, n)) for n in names]
        self.assertEqual((500, 67108864), (min(sizes), max(sizes)))
        first = self.ask(INFO + names[0].encode())
        self.assertIn(b'create="20200131124502";\r\nvar size="1572864";\r\nvar time="37";', first)

    def test_recordings_of_a_dive_are_believable(self):
        self.start("--sample=dive")
        names = [entry.rpartition(b"/")[2] for entry in
                 self.ask(LIST + b"99999999999999").partition(b"\r\n\r\n")[2].split(b";")[:-1]]
        self.assertEqual([b"DIVE_%04d.MP4" % i for i in range(1, 10)], names)
        ends = []
        for name in names:
            details = re.findall(rb'"(\d+)"', self.ask(INFO + name))
            created = datetime.datetime.strptime(details[0].decode(), "%Y%m%d%H%M%S")
            size, seconds = map(int, details[1:])
            self.assertTrue(240_000 < size / seconds < 260_000, details)
            self.assertTrue(not ends or created > ends[-1], details)
            ends.append(created + datetime.timedelta(seconds=seconds))
        self.assertLess(ends[-1] - ends[0], datetime.timedelta(days=2))

    def test_sample_cards_are_named(self):
        self.assertIn('--sample does not take "reef"', self.refused(2, "--sample=reef"))
        self.start("--sample=boundary")
        self.assertIn(b'count="11"', self.ask(COUNT))

    def test_sample_files_make_the_same_card(self):
        sample = os.path.join(self.folder, "sample")
        self.start("--sample", "--sample-to", sample)
        names = sorted(os.listdir(sample))
        details = [self.ask(INFO + n.encode()) for n in names]
        self.stop()
        self.start("--card", sample)
        self.assertEqual(details, [self.ask(INFO + n.encode()) for n in names])

    def test_sample_is_never_written_over_another_file(self):
        sample = os.path.join(self.folder, "sample")
        self.assertEqual(0, harness.run("--sample-to", sample).returncode)
        name = os.path.join(sample, "REC_20200131_124611_0002.MP4")
        self.write_file(name, b"mine")
        self.assertIn("0002.MP4: exists and is another file",
                      self.refused(1, "--sample-to", sample))
        with open(name, "rb") as file:
            self.assertEqual(b"mine", file.read())

    def test_many_clients_at_once(self):
        self.start_two()
        peers = [self.request(RECORDING + b"B.MP4") for _ in range(50)]
        for peer in peers:
            self.assertEqual((ok(BRAVO, b"video/mp4"), "closed"), peer.rest())

    def test_journal_tells_both_ways(self):
        self.start_two()
        self.ask(COUNT)
        self.ask(RECORDING + b"A.MP4")
        request = b"GET " + COUNT + b" HTTP/1.1\r\nHost: 192.168.1.120\r\n\r\n"
        lines = [{k: v for k, v in line.items() if k not in ("time", "peer")}
                 for line in self.journal(device="camera", connection=1)]
        self.assertEqual([
            {"device": "camera", "connection": 1, "event": "open"},
            {"device": "camera", "connection": 1, "event": "received", "bytes": request.hex()},
            {"device": "camera", "connection": 1, "event": "request", "exchange": 1,
             "kind": "count", "target": COUNT.decode()},
            {"device": "camera", "connection": 1, "event": "sent",
             "bytes": TWO.hex()},
            {"device": "camera", "connection": 1, "event": "close", "by": "device",
             "reason": "end"}], lines)
        body = self.journal(device="camera", connection=2, event="sent")[1]
        self.assertEqual((500, f"{zlib.crc32(ALPHA):08x}"), (body["count"], body["crc32"]))

    def test_reset_of_a_closed_connection_is_no_second_close(self):
        self.start_two()
        peer = self.request(COUNT)
        self.assertEqual((TWO, "closed"), peer.rest())
        peer.socket.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        peer.close()
        self.eventually(lambda: self.control("connections").endswith(" camera=0"),
                        "the connection forgotten")
        self.assertEqual([("device", "end")],
                         [(line["by"], line["reason"]) for line in self.journal(event="close")])


if __name__ == "__main__":
    harness.main()
