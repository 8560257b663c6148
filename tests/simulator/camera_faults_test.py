"""Tests what a client of the camera receives with each fault, as literal bytes."""

import time

import harness
from harness import (ALPHA, BOTH, CAMERA, CONTROL, COUNT, DELETE, DELETE_ALL, ERROR, FORMAT, INFO,
                     LIST, NONE, NOT_FOUND, RECORDING, SUCCESS, TWO, SimulatorTest, chunked, ok,
                     ok_head)

COUNT_BODY = b'var count="2";\r\n'
LIST_BODY = b"sd/DCIM/100ZEPNA/A.MP4;sd/DCIM/100ZEPNA/B.MP4;\r\n"
CREATE = b'var create="20200131124502";\r\n'
SIZE = b'var size="500";\r\n'
TIME = b'var time="1";\r\n'

TYPE = b"Content-Type: text/plain\r\n"
LENGTH = b"Content-Length: 16\r\n"
CLOSE = b"Connection: close\r\n"
OK_LINE = b"HTTP/1.1 200 OK\r\n"
HEAD = OK_LINE + TYPE + LENGTH + CLOSE + b"\r\n"
CHUNK = b"10\r\n" + COUNT_BODY + b"\r\n"
LAST = b"0\r\n\r\n"

# target: fault: the whole answer
ANSWERS = {
    COUNT: {
        "status": NOT_FOUND,
        "status=201": TWO.replace(b"200", b"201"),
        "status=500":
            b"HTTP/1.1 500 Internal Server Error\r\nContent-Type: text/html\r\n"
            b"Content-Length: 53\r\nConnection: close\r\n\r\n"
            b"<html><body>500 Internal Server Error</body></html>\r\n",
        "no-reason": b"HTTP/1.1 200\r\n" + TYPE + LENGTH + CLOSE + b"\r\n" + COUNT_BODY,
        "lower-case-names":
            OK_LINE + b"content-type: text/plain\r\ncontent-length: 16\r\nconnection: close\r\n\r\n"
            + COUNT_BODY,
        "no-length": OK_LINE + TYPE + CLOSE + b"\r\n" + COUNT_BODY,
        "length-offset": ok_head(26) + COUNT_BODY,
        "length-offset=-5": ok_head(11) + COUNT_BODY,
        "length-offset=-99": ok_head(0) + COUNT_BODY,
        "length-text": ok_head(4294967296) + COUNT_BODY,
        "length-text=-1": ok_head(-1) + COUNT_BODY,
        "empty-answer": ok_head(0),
        "chunked": chunked(CHUNK + LAST),
        "chunk-extension": chunked(b"10;name=value\r\n" + CHUNK[4:] + LAST),
        "chunk-bad-hex": chunked(b"zz\r\n" + CHUNK[4:] + LAST),
        "chunk-size": chunked(b"80000000\r\n" + CHUNK[4:] + LAST),
        "chunk-no-last": chunked(CHUNK),
        "chunk-trailers": chunked(CHUNK + b"0\r\nX-First: 1\r\nX-Second: 2\r\n\r\n"),
        "bare-lf": HEAD.replace(b"\r\n", b"\n") + COUNT_BODY,
        "odd-head-end": HEAD[:-4] + b"\n\n\r\n" + COUNT_BODY,
        "continue-first": b"HTTP/1.1 100 Continue\r\n\r\n" + TWO,
        "long-header=20": HEAD[:-2] + b"X-Long: xxxxxxxxxx\r\n\r\n" + COUNT_BODY,
        "long-header": HEAD[:-2] + b"X-Long: " + b"x" * 102390 + b"\r\n\r\n" + COUNT_BODY,
        "many-headers=2":
            HEAD[:-2] + b"X-Header-1: value\r\nX-Header-2: value\r\n\r\n" + COUNT_BODY,
        "many-headers":
            HEAD[:-2] + b"".join(b"X-Header-%d: value\r\n" % i for i in range(1, 10001)) + b"\r\n"
            + COUNT_BODY,
        "long-type":
            OK_LINE + b"Content-Type: application/" + b"x" * 188 + b"\r\n" + LENGTH + CLOSE
            + b"\r\n" + COUNT_BODY,
        "close-before-head": b"",
        "close-in-head": HEAD[:len(HEAD) // 2],
        "close-after-head": HEAD,
        "close-mid-body": HEAD + COUNT_BODY[:8],
        "close-mid-body=3": HEAD + COUNT_BODY[:3],
        "count=": ok(b'var count="";\r\n'),
        "count=-3": ok(b'var count="-3";\r\n'),
        "count=abc": ok(b'var count="abc";\r\n'),
        "count-offset=-1": ok(b'var count="1";\r\n'),
        "count-offset=5": ok(b'var count="7";\r\n'),
        "no-count-markers": ok(b"2\r\n"),
        "entries": ok(b'var count="128";\r\n'),
        "no-card": ok(b'var count="0";\r\n'),
    },
    LIST + b"2": {
        "no-list-end": ok(LIST_BODY[:-2]),
        "no-semicolon": ok(b"sd/DCIM/100ZEPNA/A.MP4 sd/DCIM/100ZEPNA/B.MP4 \r\n"),
        "no-list-markers": ok(b"A.MP4;B.MP4;\r\n"),
        "list-padding=3": ok(b"xxx" + LIST_BODY),
        "list-padding=2k": ok(b"x" * 2048 + LIST_BODY),
        "list-padding": ok(b"x" * 10240 + LIST_BODY),
        "no-card": NONE,
        "write-protected": BOTH,
    },
    LIST + b"9": {
        "entries=3": ok(b"sd/DCIM/100ZEPNA/REC00001.MP4;sd/DCIM/100ZEPNA/REC00002.MP4;"
                        b"sd/DCIM/100ZEPNA/REC00003.MP4;\r\n"),
    },
    INFO + b"A.MP4": {
        "no-card": NOT_FOUND,
        "info-reordered": ok(TIME + SIZE + CREATE),
        "info-missing": ok(b""),
        "info-missing=size": ok(CREATE + TIME),
        "info-missing=create,time": ok(SIZE),
        "info-create": ok(b'var create="20200131";\r\n' + SIZE + TIME),
        "info-size": ok(CREATE + b'var size="2147483648";\r\n' + TIME),
        "info-time": ok(CREATE + SIZE + b'var time="-1";\r\n'),
        "info-long=3": ok(b'var create="111";\r\nvar size="111";\r\nvar time="111";\r\n'),
        "info-fails=2": ok(CREATE + SIZE + TIME),
    },
    INFO + b"REC00128.MP4": {
        "entries": ok(b'var create="20200131124502";\r\nvar size="4000";\r\nvar time="4";\r\n'),
    },
    RECORDING + b"A.MP4": {
        "close-mid-body": ok_head(500, b"video/mp4") + ALPHA[:100],
        "no-card": NOT_FOUND,
    },
    DELETE + b"A.MP4": {"no-card": ERROR, "write-protected": ERROR, "error-word": ERROR},
    DELETE_ALL: {"write-protected": ERROR, "success-and-more": ok(b"Success\r\nDone\r\n")},
    FORMAT: {
        "no-card": ERROR,
        "write-protected": ERROR,
        "success-bare": ok(b"Success"),
        "error-word=No card": ok(b"No card\r\n"),
    },
}

# As above, for answers after which the connection is reset.
RESETS = {
    COUNT: {
        "reset-before-head": b"",
        "reset-in-head": HEAD[:len(HEAD) // 2],
        "reset-after-head": HEAD,
        "reset-mid-body=3": HEAD + COUNT_BODY[:3],
    },
    INFO + b"B.MP4": {"info-fails=2": b""},
}

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
    def test_answers_are_spoilt_as_the_fault_says_and_healthy_after_it(self):
        self.start_two()
        for table, end in ((ANSWERS, "closed"), (RESETS, "reset")):
            for target, answers in table.items():
                for fault, answer in answers.items():
                    with self.subTest(fault=fault, target=target):
                        self.play("clear all", "reload", "fault " + fault)
                        self.assertEqual((answer, end), self.request(target).rest())
                        self.play("clear " + fault.partition("=")[0], "reload", (COUNT, TWO))

    def test_strange_names_are_listed_and_reached(self):
        self.start_two()
        for fault, name in NAMES:
            with self.subTest(fault=fault):
                self.play("clear all", "fault " + fault,
                          (LIST + b"2", ok(b"sd/DCIM/100ZEPNA/" + name + b";" + LIST_BODY[23:])),
                          (INFO + name, ok(CREATE + SIZE + TIME)),
                          (RECORDING + name, ok(ALPHA, b"video/mp4")),
                          (INFO + b"A.MP4", NOT_FOUND))

    def test_name_with_line_end_breaks_the_request(self):
        self.start_two("--fault", "name-line-end")
        self.assertIn(b"/REC\r\nX-Injected: 1;", self.ask(LIST + b"2"))
        self.assertEqual(b"HTTP/1.1 400 ", self.ask(INFO + b"REC\r\nX-Injected: 1")[:13])

    def test_two_names_at_once_rename_two_recordings(self):
        self.start_two("--fault", "name-hash", "--fault", "name-space")
        self.play((LIST + b"2", ok(b"sd/DCIM/100ZEPNA/REC 20200131 12.MP4;"
                                   b"sd/DCIM/100ZEPNA/REC#1.MP4;\r\n")),
                  (DELETE + b"REC 20200131 12.MP4", SUCCESS),
                  (LIST + b"2", ok(b"sd/DCIM/100ZEPNA/REC#1.MP4;\r\n")))

    def test_commands_that_fail_change_nothing(self):
        self.start_two("--fault", "only=delete,deleteall,format")
        for fault in ("status=500", "error-word", "no-card", "write-protected"):
            self.switch("fault " + fault)
            for target in (DELETE + b"A.MP4", DELETE_ALL, FORMAT):
                expected = b"HTTP/1.1 500 " if fault == "status=500" else ERROR
                self.assertEqual(expected, self.ask(target)[:len(expected)], fault)
            self.play("clear " + fault.partition("=")[0], (COUNT, TWO))

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
        self.play((LIST + b"2", BOTH), (INFO + b"A.MP4", ok(CREATE + SIZE + TIME)),
                  (RECORDING + b"A.MP4", NOT_FOUND), (LIST + b"2", OTHER_LIST))
        self.assertEqual(ok_head(4000, b"video/mp4"), self.ask(RECORDING + b"REC00001.MP4")[:-4000])
        self.play((DELETE + b"REC00001.MP4", SUCCESS), (COUNT, ok(b'var count="1";\r\n')),
                  "clear swapped-card", (LIST + b"2", BOTH),
                  "fault swapped-card", (LIST + b"2", BOTH))

    def test_answers_of_two_cameras_are_swapped(self):
        self.start_two("--fault", "swapped-cameras")
        self.play(*[(LIST + b"2", answer) for answer in (BOTH, OTHER_LIST, BOTH, OTHER_LIST)])

    def test_only_limits_a_fault_to_some_requests(self):
        self.start_two("--fault", "no-length", "--fault", "only=list,recording")
        recording = ok(ALPHA, b"video/mp4")
        without = recording.replace(b"Content-Length: 500\r\n", b"")
        self.play((COUNT, TWO), (LIST + b"2", BOTH.replace(b"Content-Length: 48\r\n", b"")),
                  (RECORDING + b"A.MP4", without),
                  "fault only=cgi", (COUNT, TWO.replace(LENGTH, b"")),
                  (RECORDING + b"A.MP4", recording),
                  "fault only=control", (RECORDING + b"A.MP4", without))

    def test_chunked_begins_with_the_exchange_named(self):
        self.start_two("--fault", "chunked=2")
        self.play((COUNT, TWO), (COUNT, chunked(CHUNK + LAST)), (COUNT, chunked(CHUNK + LAST)))

    def test_long_bodies_come_in_many_chunks(self):
        self.start_two("--fault", "chunked", "--fault", "list-padding=8192")
        padding = b"1000\r\n" + b"x" * 4096 + b"\r\n"
        self.play((LIST + b"2", chunked(padding * 2 + b"30\r\n" + LIST_BODY + b"\r\n" + LAST)),
                  (RECORDING + b"A.MP4",
                   chunked(b"1f4\r\n" + ALPHA + b"\r\n" + LAST, b"video/mp4")))

    def test_unending_list_goes_on(self):
        self.start_two("--fault", "infinite-list")
        peer = self.request(LIST + b"2")
        self.assertEqual(ok_head(2147483647), peer.exactly(len(ok_head(2147483647))))
        self.assertEqual(LIST_BODY[:-2] * 20000, peer.exactly(46 * 20000))
        peer.close()
        self.play((COUNT, TWO))

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
        start = time.monotonic()
        self.play((COUNT, TWO))
        self.assertGreater(time.monotonic() - start, 0.09)
        half = len(HEAD) // 2
        self.assertEqual([HEAD[:half], HEAD[half:] + COUNT_BODY], self.sent_pieces("camera", 2))

    def test_single_bytes(self):
        self.start_two("--fault", "byte-by-byte=5", "--journal-full")
        start = time.monotonic()
        self.play((COUNT, TWO))
        self.assertGreater(time.monotonic() - start, 0.004 * len(TWO))
        self.assertEqual([TWO[at:at + 1] for at in range(len(TWO))],
                         self.sent_pieces("camera", len(TWO)))

    def test_garbage_takes_the_place_of_the_answer(self):
        self.start_two("--fault", "garbage")
        data = self.ask(COUNT)
        self.assertEqual(4096, len(data))
        self.assertNotIn(b"HTTP", data)

    def test_answer_delay(self):
        self.start_two("--fault", "answer-delay=400")
        start = time.monotonic()
        self.play((COUNT, TWO))
        self.assertGreater(time.monotonic() - start, 0.39)

    def test_link_lost_mid_command(self):
        self.start_two("--heartbeat", "60000", "--fault", "link-lost-mid-command")
        control = self.peer(CONTROL)
        control.exactly(20)
        start = time.monotonic()
        peer = self.request(FORMAT)
        self.assertEqual("reset", control.segment())
        self.assertEqual((SUCCESS, "closed"), peer.rest())
        self.assertGreater(time.monotonic() - start, 0.49)

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
                self.assertEqual((TWO, "closed"), peer.rest())

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
        self.play((COUNT, TWO))


if __name__ == "__main__":
    harness.main()
