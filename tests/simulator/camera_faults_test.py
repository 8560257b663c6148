"""Tests what a client of the camera receives with each fault, as literal bytes."""

import time

import harness
from harness import (CAMERA, CONTROL, COUNT, DELETE, DELETE_ALL, FORMAT, INFO, LIST, NOT_FOUND,
                     RECORDING, SimulatorTest, ok, ok_head)

ALPHA = b"alpha" * 100
COUNT_BODY = b'var count="2";\r\n'
LIST_BODY = b"sd/DCIM/100ZEPNA/A.MP4;sd/DCIM/100ZEPNA/B.MP4;\r\n"
CREATE = b'var create="20200131124502";\r\n'
SIZE = b'var size="500";\r\n'
TIME = b'var time="1";\r\n'

TYPE = b"Content-Type: text/plain\r\n"
LENGTH = b"Content-Length: 16\r\n"
CLOSE = b"Connection: close\r\n"
OK_LINE = b"HTTP/1.1 200 OK\r\n"
CHUNKED_HEAD = OK_LINE + TYPE + b"Transfer-Encoding: chunked\r\n" + CLOSE + b"\r\n"
HEAD = ok_head(16)

# fault, target, the whole answer, how it ends
ANSWERS = [
    ("status", COUNT, NOT_FOUND, "closed"),
    ("status=201", COUNT, ok(COUNT_BODY).replace(b"200", b"201"), "closed"),
    ("status=500", COUNT,
     b"HTTP/1.1 500 Internal Server Error\r\nContent-Type: text/html\r\nContent-Length: 53\r\n"
     b"Connection: close\r\n\r\n<html><body>500 Internal Server Error</body></html>\r\n", "closed"),
    ("no-reason", COUNT, b"HTTP/1.1 200\r\n" + TYPE + LENGTH + CLOSE + b"\r\n" + COUNT_BODY,
     "closed"),
    ("lower-case-names", COUNT,
     OK_LINE + b"content-type: text/plain\r\ncontent-length: 16\r\nconnection: close\r\n\r\n"
     + COUNT_BODY, "closed"),
    ("no-length", COUNT, OK_LINE + TYPE + CLOSE + b"\r\n" + COUNT_BODY, "closed"),
    ("length-offset", COUNT, ok_head(26) + COUNT_BODY, "closed"),
    ("length-offset=-5", COUNT, ok_head(11) + COUNT_BODY, "closed"),
    ("length-offset=-99", COUNT, ok_head(0) + COUNT_BODY, "closed"),
    ("length-text", COUNT, ok_head(4294967296) + COUNT_BODY, "closed"),
    ("length-text=-1", COUNT, ok_head(-1) + COUNT_BODY, "closed"),
    ("empty-answer", COUNT, ok_head(0), "closed"),
    ("chunked", COUNT, CHUNKED_HEAD + b"10\r\n" + COUNT_BODY + b"\r\n0\r\n\r\n", "closed"),
    ("chunk-extension", COUNT,
     CHUNKED_HEAD + b"10;name=value\r\n" + COUNT_BODY + b"\r\n0\r\n\r\n", "closed"),
    ("chunk-bad-hex", COUNT, CHUNKED_HEAD + b"zz\r\n" + COUNT_BODY + b"\r\n0\r\n\r\n", "closed"),
    ("chunk-size", COUNT, CHUNKED_HEAD + b"80000000\r\n" + COUNT_BODY + b"\r\n0\r\n\r\n",
     "closed"),
    ("chunk-no-last", COUNT, CHUNKED_HEAD + b"10\r\n" + COUNT_BODY + b"\r\n", "closed"),
    ("chunk-trailers", COUNT,
     CHUNKED_HEAD + b"10\r\n" + COUNT_BODY + b"\r\n0\r\nX-First: 1\r\nX-Second: 2\r\n\r\n",
     "closed"),
    ("bare-lf", COUNT, HEAD.replace(b"\r\n", b"\n") + COUNT_BODY, "closed"),
    ("odd-head-end", COUNT, HEAD[:-4] + b"\n\n\r\n" + COUNT_BODY, "closed"),
    ("continue-first", COUNT, b"HTTP/1.1 100 Continue\r\n\r\n" + HEAD + COUNT_BODY, "closed"),
    ("long-header=20", COUNT, HEAD[:-2] + b"X-Long: xxxxxxxxxx\r\n\r\n" + COUNT_BODY, "closed"),
    ("long-header", COUNT, HEAD[:-2] + b"X-Long: " + b"x" * 102390 + b"\r\n\r\n" + COUNT_BODY,
     "closed"),
    ("many-headers=2", COUNT,
     HEAD[:-2] + b"X-Header-1: value\r\nX-Header-2: value\r\n\r\n" + COUNT_BODY, "closed"),
    ("many-headers", COUNT,
     HEAD[:-2] + b"".join(b"X-Header-%d: value\r\n" % i for i in range(1, 10001)) + b"\r\n"
     + COUNT_BODY, "closed"),
    ("long-type", COUNT,
     OK_LINE + b"Content-Type: application/" + b"x" * 188 + b"\r\n" + LENGTH + CLOSE + b"\r\n"
     + COUNT_BODY, "closed"),
    ("close-before-head", COUNT, b"", "closed"),
    ("reset-before-head", COUNT, b"", "reset"),
    ("close-in-head", COUNT, HEAD[:len(HEAD) // 2], "closed"),
    ("reset-in-head", COUNT, HEAD[:len(HEAD) // 2], "reset"),
    ("close-after-head", COUNT, HEAD, "closed"),
    ("reset-after-head", COUNT, HEAD, "reset"),
    ("close-mid-body", COUNT, HEAD + COUNT_BODY[:8], "closed"),
    ("close-mid-body=3", COUNT, HEAD + COUNT_BODY[:3], "closed"),
    ("close-mid-body", RECORDING + b"A.MP4", ok_head(500, b"video/mp4") + ALPHA[:100], "closed"),
    ("reset-mid-body=3", COUNT, HEAD + COUNT_BODY[:3], "reset"),
    ("count=", COUNT, ok(b'var count="";\r\n'), "closed"),
    ("count=-3", COUNT, ok(b'var count="-3";\r\n'), "closed"),
    ("count=abc", COUNT, ok(b'var count="abc";\r\n'), "closed"),
    ("count-offset=-1", COUNT, ok(b'var count="1";\r\n'), "closed"),
    ("count-offset=5", COUNT, ok(b'var count="7";\r\n'), "closed"),
    ("no-count-markers", COUNT, ok(b"2\r\n"), "closed"),
    ("no-list-end", LIST + b"2", ok(LIST_BODY[:-2]), "closed"),
    ("no-semicolon", LIST + b"2", ok(b"sd/DCIM/100ZEPNA/A.MP4 sd/DCIM/100ZEPNA/B.MP4 \r\n"),
     "closed"),
    ("no-list-markers", LIST + b"2", ok(b"A.MP4;B.MP4;\r\n"), "closed"),
    ("list-padding=3", LIST + b"2", ok(b"xxx" + LIST_BODY), "closed"),
    ("list-padding=2k", LIST + b"2", ok(b"x" * 2048 + LIST_BODY), "closed"),
    ("list-padding", LIST + b"2", ok(b"x" * 10240 + LIST_BODY), "closed"),
    ("entries=3", LIST + b"9",
     ok(b"sd/DCIM/100ZEPNA/REC00001.MP4;sd/DCIM/100ZEPNA/REC00002.MP4;"
        b"sd/DCIM/100ZEPNA/REC00003.MP4;\r\n"), "closed"),
    ("entries", COUNT, ok(b'var count="128";\r\n'), "closed"),
    ("entries", INFO + b"REC00128.MP4",
     ok(b'var create="20200131124502";\r\nvar size="4000";\r\nvar time="4";\r\n'), "closed"),
    ("no-card", COUNT, ok(b'var count="0";\r\n'), "closed"),
    ("no-card", LIST + b"2", ok(b"\r\n"), "closed"),
    ("no-card", INFO + b"A.MP4", NOT_FOUND, "closed"),
    ("no-card", RECORDING + b"A.MP4", NOT_FOUND, "closed"),
    ("no-card", DELETE + b"A.MP4", ok(b"Error\r\n"), "closed"),
    ("no-card", FORMAT, ok(b"Error\r\n"), "closed"),
    ("write-protected", LIST + b"2", ok(LIST_BODY), "closed"),
    ("write-protected", DELETE + b"A.MP4", ok(b"Error\r\n"), "closed"),
    ("write-protected", DELETE_ALL, ok(b"Error\r\n"), "closed"),
    ("write-protected", FORMAT, ok(b"Error\r\n"), "closed"),
    ("info-reordered", INFO + b"A.MP4", ok(TIME + SIZE + CREATE), "closed"),
    ("info-missing", INFO + b"A.MP4", ok(b""), "closed"),
    ("info-missing=size", INFO + b"A.MP4", ok(CREATE + TIME), "closed"),
    ("info-missing=create,time", INFO + b"A.MP4", ok(SIZE), "closed"),
    ("info-create", INFO + b"A.MP4", ok(b'var create="20200131";\r\n' + SIZE + TIME), "closed"),
    ("info-size", INFO + b"A.MP4", ok(CREATE + b'var size="2147483648";\r\n' + TIME), "closed"),
    ("info-time", INFO + b"A.MP4", ok(CREATE + SIZE + b'var time="-1";\r\n'), "closed"),
    ("info-long=3", INFO + b"A.MP4",
     ok(b'var create="111";\r\nvar size="111";\r\nvar time="111";\r\n'), "closed"),
    ("info-fails=2", INFO + b"B.MP4", b"", "reset"),
    ("info-fails=2", INFO + b"A.MP4", ok(CREATE + SIZE + TIME), "closed"),
    ("success-bare", FORMAT, ok(b"Success"), "closed"),
    ("success-and-more", DELETE_ALL, ok(b"Success\r\nDone\r\n"), "closed"),
    ("error-word", DELETE + b"A.MP4", ok(b"Error\r\n"), "closed"),
    ("error-word=No card", FORMAT, ok(b"No card\r\n"), "closed"),
]

NAMES = [
    ("name-29", b"ZEPNA_20200131_124502_029.MP4"),
    ("name-30", b"ZEPNA_20200131_124502_0030.MP4"),
    ("name-300", b"N" * 296 + b".MP4"),
    ("name-utf8", "\u6d77\u5e95_01.MP4".encode()),
    ("name-space", b"REC 20200131 12.MP4"),
    ("name-ampersand", b"REC&-name=B&C.MP4"),
    ("name-hash", b"REC#1.MP4"),
    ("name-percent", b"REC%41%2F%s.MP4"),
    ("name-slash", b"SUB/REC.MP4"),
    ("name-outside", b"../../REC.MP4"),
    ("name-parent", b".."),
    ("name-markup", b"<b>REC</b>.MP4"),
    ("name-custom", b"REC.MP4"),
    ("name-custom=a\\x01\\\\b", b"a\x01\\b"),
]
OTHER_LIST = ok(b"sd/DCIM/100ZEPNA/REC00001.MP4;sd/DCIM/100ZEPNA/REC00002.MP4;\r\n")


class CameraFaultsTest(SimulatorTest):
    def start_two(self, *arguments):
        self.start("--card", self.make_card(A=ALPHA, B=b"bravo"), *arguments)

    def test_answers_are_spoilt_as_the_fault_says_and_healthy_after_it(self):
        self.start_two()
        for fault, target, answer, end in ANSWERS:
            with self.subTest(fault=fault, target=target):
                self.switch("fault " + fault)
                self.assertEqual((answer, end), self.request(target).rest())
                self.switch("clear " + fault.partition("=")[0])
                self.switch("reload")
                self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))

    def test_strange_names_are_listed_and_reached(self):
        self.start_two()
        for fault, name in NAMES:
            with self.subTest(fault=fault):
                self.switch("fault " + fault)
                self.assertEqual(ok(b"sd/DCIM/100ZEPNA/" + name + b";" + LIST_BODY[23:]),
                                 self.ask(LIST + b"2"))
                self.assertEqual(ok(CREATE + SIZE + TIME), self.ask(INFO + name))
                self.assertEqual(ok(ALPHA, b"video/mp4"), self.ask(RECORDING + name))
                self.assertEqual(NOT_FOUND, self.ask(INFO + b"A.MP4"))
                self.switch("clear all")

    def test_name_with_line_end_breaks_the_request(self):
        self.start_two("--fault", "name-line-end")
        self.assertIn(b"/REC\r\nX-Injected: 1;", self.ask(LIST + b"2"))
        self.assertEqual(b"HTTP/1.1 400 ", self.ask(INFO + b"REC\r\nX-Injected: 1")[:13])

    def test_two_names_at_once_rename_two_recordings(self):
        self.start_two("--fault", "name-hash", "--fault", "name-space")
        self.assertEqual(
            ok(b"sd/DCIM/100ZEPNA/REC 20200131 12.MP4;sd/DCIM/100ZEPNA/REC#1.MP4;\r\n"),
            self.ask(LIST + b"2"))
        self.ask(DELETE + b"REC 20200131 12.MP4")
        self.assertEqual(ok(b"sd/DCIM/100ZEPNA/REC#1.MP4;\r\n"), self.ask(LIST + b"2"))

    def test_status_leaves_the_card_alone(self):
        self.start_two("--fault", "status=500", "--fault", "only=delete,deleteall,format")
        for target in (DELETE + b"A.MP4", DELETE_ALL, FORMAT):
            self.assertEqual(b"HTTP/1.1 500 ", self.ask(target)[:13])
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))

    def test_error_word_leaves_the_card_alone(self):
        self.start_two("--fault", "error-word")
        self.ask(FORMAT)
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))

    def test_no_card_and_write_protection_change_nothing(self):
        self.start_two()
        for fault in ("no-card", "write-protected"):
            self.switch("fault " + fault)
            for target in (DELETE + b"A.MP4", DELETE_ALL, FORMAT):
                self.ask(target)
            self.switch("clear " + fault)
            self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))

    def test_recording_grows_while_it_is_fetched(self):
        self.start_two("--fault", "growing-recording=300")
        data = self.ask(RECORDING + b"A.MP4")
        head = ok_head(500, b"video/mp4")
        self.assertEqual(head + ALPHA, data[:len(head) + 500])
        self.assertEqual(len(head) + 800, len(data))
        self.assertIn(b'size="800"', self.ask(INFO + b"A.MP4"))
        self.switch("clear all")
        again = self.ask(RECORDING + b"A.MP4")
        self.assertEqual(ok_head(800, b"video/mp4") + data[len(head):], again)
        self.switch("fault growing-recording")
        self.assertEqual(len(again) + 4096, len(self.ask(RECORDING + b"A.MP4")))

    def test_card_is_swapped_when_a_recording_is_asked_for(self):
        self.start_two("--fault", "swapped-card")
        self.assertEqual(ok(LIST_BODY), self.ask(LIST + b"2"))
        self.assertEqual(ok(CREATE + SIZE + TIME), self.ask(INFO + b"A.MP4"))
        self.assertEqual(NOT_FOUND, self.ask(RECORDING + b"A.MP4"))
        self.assertEqual(OTHER_LIST, self.ask(LIST + b"2"))
        self.assertEqual(ok_head(4000, b"video/mp4"), self.ask(RECORDING + b"REC00001.MP4")[:-4000])
        self.ask(DELETE + b"REC00001.MP4")
        self.assertEqual(ok(COUNT_BODY.replace(b"2", b"1")), self.ask(COUNT))
        self.switch("clear swapped-card")
        self.assertEqual(ok(LIST_BODY), self.ask(LIST + b"2"))
        self.switch("fault swapped-card")
        self.assertEqual(ok(LIST_BODY), self.ask(LIST + b"2"))

    def test_answers_of_two_cameras_are_swapped(self):
        self.start_two("--fault", "swapped-cameras")
        for _ in range(2):
            self.assertEqual(ok(LIST_BODY), self.ask(LIST + b"2"))
            self.assertEqual(OTHER_LIST, self.ask(LIST + b"2"))

    def test_only_limits_a_fault_to_some_requests(self):
        self.start_two("--fault", "no-length", "--fault", "only=list,recording")
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))
        self.assertEqual(ok(LIST_BODY).replace(b"Content-Length: 48\r\n", b""),
                         self.ask(LIST + b"2"))
        self.assertNotIn(b"Content-Length", self.ask(RECORDING + b"A.MP4"))
        self.switch("fault only=cgi")
        self.assertNotIn(b"Content-Length", self.ask(COUNT))
        self.assertIn(b"Content-Length", self.ask(RECORDING + b"A.MP4"))
        self.switch("fault only=control")
        self.assertNotIn(b"Content-Length", self.ask(RECORDING + b"A.MP4"))

    def test_chunked_begins_with_the_exchange_named(self):
        self.start_two("--fault", "chunked=2")
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))
        chunked = CHUNKED_HEAD + b"10\r\n" + COUNT_BODY + b"\r\n0\r\n\r\n"
        self.assertEqual(chunked, self.ask(COUNT))
        self.assertEqual(chunked, self.ask(COUNT))

    def test_long_bodies_come_in_many_chunks(self):
        self.start_two("--fault", "chunked", "--fault", "list-padding=8192")
        self.assertEqual(
            CHUNKED_HEAD + b"1000\r\n" + b"x" * 4096 + b"\r\n1000\r\n" + b"x" * 4096
            + b"\r\n30\r\n" + LIST_BODY + b"\r\n0\r\n\r\n", self.ask(LIST + b"2"))
        self.assertEqual(
            CHUNKED_HEAD.replace(b"text/plain", b"video/mp4") + b"1f4\r\n" + ALPHA
            + b"\r\n0\r\n\r\n", self.ask(RECORDING + b"A.MP4"))

    def test_unending_list_goes_on(self):
        self.start_two("--fault", "infinite-list")
        peer = self.request(LIST + b"2")
        self.assertEqual(ok_head(2147483647), peer.exactly(len(ok_head(2147483647))))
        self.assertEqual(LIST_BODY[:-2] * 20000, peer.exactly(46 * 20000))
        peer.close()
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))

    def test_list_of_twenty_megabytes(self):
        self.start_two("--fault", "entries=444444")
        answer = self.ask(LIST + b"99999999999999")
        self.assertGreater(len(answer), 13_000_000)
        self.assertTrue(answer.endswith(b"sd/DCIM/100ZEPNA/REC444444.MP4;\r\n"))
        self.switch("fault list-padding=20000000")
        self.assertEqual(len(answer) + 20_000_000, len(self.ask(LIST + b"99999999999999")))

    def test_stall_holds_the_rest_until_cleared(self):
        self.start_two("--fault", "stall")
        peer = self.request(RECORDING + b"A.MP4")
        head = ok_head(500, b"video/mp4")
        self.assertEqual(head + ALPHA[:475], peer.exactly(len(head) + 475))
        self.assertTrue(peer.quiet_for(0.3))
        self.switch("clear stall")
        self.assertEqual((ALPHA[475:], "closed"), peer.rest())

    def test_stalled_client_that_leaves_is_forgotten(self):
        self.start_two("--fault", "stall=50")
        peer = self.request(RECORDING + b"A.MP4")
        peer.exactly(300)
        peer.close()
        self.eventually(lambda: self.control("connections").endswith("camera=0"), "the end")

    def test_split_head_comes_in_two_segments(self):
        self.start_two("--fault", "split-head")
        peer = self.request(COUNT)
        self.assertEqual(HEAD[:len(HEAD) // 2], peer.segment())
        self.assertEqual((HEAD[len(HEAD) // 2:] + COUNT_BODY, "closed"), peer.rest())

    def test_single_bytes(self):
        self.start_two("--fault", "byte-by-byte=5")
        peer = self.request(COUNT)
        segments = [peer.segment()]
        while segments[-1] and len(segments) < 1000:
            segments.append(peer.segment())
        self.assertEqual(ok(COUNT_BODY), b"".join(segments))
        self.assertGreater(len(segments), len(ok(COUNT_BODY)) * 3 // 4)

    def test_garbage_takes_the_place_of_the_answer(self):
        self.start_two("--fault", "garbage")
        data = self.ask(COUNT)
        self.assertEqual(4096, len(data))
        self.assertNotIn(b"HTTP", data)

    def test_answer_delay(self):
        self.start_two("--fault", "answer-delay=400")
        start = time.monotonic()
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))
        self.assertGreater(time.monotonic() - start, 0.39)

    def test_link_lost_mid_command(self):
        self.start_two("--heartbeat", "60000", "--fault", "link-lost-mid-command")
        control = self.peer(CONTROL)
        control.exactly(20)
        peer = self.request(FORMAT)
        self.assertEqual("reset", control.segment())
        self.assertTrue(peer.quiet_for(0.2))
        self.assertEqual((ok(b"Success\r\n"), "closed"), peer.rest())

    def test_refuse_silent_never_accept(self):
        self.start_two("--fault", "refuse=camera")
        with self.assertRaises(ConnectionRefusedError):
            self.peer(CAMERA)
        self.switch("clear refuse")
        for fault in ("silent", "never-accept"):
            with self.subTest(fault=fault):
                self.switch(f"fault {fault}=camera")
                peer = self.request(COUNT)
                self.assertTrue(peer.quiet_for(0.3))
                self.switch("clear " + fault)
                self.assertEqual((ok(COUNT_BODY), "closed"), peer.rest())

    def test_down_gives_no_reply_and_resets_when_back(self):
        self.start_two()
        old = self.peer(CAMERA)
        self.eventually(lambda: self.journal(device="camera", event="open"), "the connection")
        self.switch("fault down=camera")
        with self.assertRaises(TimeoutError):
            self.peer(CAMERA, 0.5)
        self.assertTrue(old.quiet_for(0.1))
        self.switch("clear down")
        self.assertEqual("reset", old.segment())
        self.assertEqual(ok(COUNT_BODY), self.ask(COUNT))


if __name__ == "__main__":
    harness.main()
