#!/usr/bin/python3
"""Tests the report of belun-verify and its exit status."""

import json
import os
import shutil

import verify_harness
from harness import LIMIT, ok
from verify_harness import ScriptedCamera, VerifyTest

SIZES_ONLY = "Sizes only; --content compares every byte."


def same(name, size):
    return f"{name}: same size ({size:,} bytes)"


class TwoHundred(VerifyTest):
    """200 recordings: one truncated, one with an old tail, one changed, one missing, one renamed.
    """

    def setUp(self):
        super().setUp()
        self.names = [f"REC_{number:04}.MP4" for number in range(1, 201)]
        contents = {name: bytes([number % 251]) * (1000 + number)
                    for number, name in enumerate(self.names, 1)}
        card = self.make_card(**{name[:-4]: content for name, content in contents.items()})
        for name, content in contents.items():
            self.write(name, content)
        self.write("REC_0010.MP4", contents["REC_0010.MP4"][:600])
        self.write("REC_0020.MP4", contents["REC_0020.MP4"] + b"old" * 100)
        changed = bytearray(contents["REC_0030.MP4"])
        changed[700] ^= 1
        self.write("REC_0030.MP4", bytes(changed))
        os.remove(self.path("REC_0040.MP4"))
        os.rename(self.path("REC_0150.MP4"), self.path("REC_0150 (1).MP4"))
        self.start("--card", card)

    def expected(self, contents):
        lines = [f"{name}: the same, byte for byte ({1000 + number:,} bytes)" if contents
                 else same(name, 1000 + number) for number, name in enumerate(self.names, 1)]
        lines[9] = "REC_0010.MP4: shorter by 410 bytes: the download was cut"
        lines[19] = "REC_0020.MP4: longer by 300 bytes: the tail of an older file"
        if contents:
            lines[29] = "REC_0030.MP4: same size, but the contents differ from byte 701 onwards"
        lines[39] = "REC_0040.MP4: not on this computer (1,040 bytes)"
        lines[149] = "REC_0150.MP4: not on this computer (1,150 bytes)"
        return [*lines, "REC_0150 (1).MP4: not on the card"]

    def judge(self, *options):
        before = self.snapshot()
        result = self.verify(*options)
        self.assertEqual(self.expected("--content" in options), result.lines[:-1])
        self.assertEqual((1, ""), (result.status, result.err))
        self.assertEqual(before, self.snapshot())
        return result.summary

    def test_sizes_are_judged(self):
        summary = self.judge()
        self.assertRegex(summary, "^" + (
            r"Do not delete yet: not known to be safe \(4 of 200\): REC_0010\.MP4, REC_0020\.MP4, "
            r"REC_0040\.MP4, REC_0150\.MP4\. Missing here: 2,600 bytes; free in .*/DCIM/: "
            r"[0-9,]+ bytes\. The window lists only the first 128 recordings of a card\.$"))

    def test_contents_are_judged(self):
        summary = self.judge("--content")
        self.assertIn("safe (5 of 200): REC_0010.MP4, REC_0020.MP4, REC_0030.MP4, REC_0040.MP4, "
                      "REC_0150.MP4. Missing here: 2,600 bytes;", summary)

    def test_the_named_ones_are_judged(self):
        self.check(self.verify("REC_0002.MP4", "REC_0001.MP4"), 0,
                   same("REC_0001.MP4", 1001), same("REC_0002.MP4", 1002),
                   f"All 2 named recordings are on this computer with the same size. {SIZES_ONLY}")
        self.check(self.verify("REC_0002.MP4", "--content"), 0,
                   "REC_0002.MP4: the same, byte for byte (1,002 bytes)",
                   "The named recording is on this computer, the same, byte for byte.")
        self.check(self.verify("REC_0001.MP4", "nothing", "../DCIM/REC_0001.MP4",
                               "REC_0150 (1).MP4"), 1,
                   same("REC_0001.MP4", 1001),
                   "../DCIM/REC_0001.MP4: neither on the card nor on this computer",
                   "REC_0150 (1).MP4: not on the card",
                   "nothing: neither on the card nor on this computer",
                   "Do not delete yet: not known to be safe (3 of 4): ../DCIM/REC_0001.MP4, "
                   "REC_0150 (1).MP4, nothing. The window lists only the first 128 recordings of a "
                   "card.")

    def test_each_object_is_a_line(self):
        result = self.verify("--json")
        *recordings, summary = [json.loads(line) for line in result.lines]
        self.assertEqual({"type": "recording", "name": "REC_0010.MP4", "result": "shorter",
                          "safe": False, "cardBytes": 1010, "localBytes": 600}, recordings[9])
        self.assertEqual(("not-on-card", "REC_0150 (1).MP4"),
                         (recordings[200]["result"], recordings[200]["name"]))
        self.assertEqual(201, len(recordings))
        self.assertEqual(
            ("summary", "not-safe", 1, False, 196, 4, 2600, 200, 200, True, False),
            tuple(summary[key] for key in (
                "type", "result", "status", "contentsCompared", "safe", "notSafe", "missingBytes",
                "counted", "listed", "complete", "cardChanged")))
        self.assertTrue(json.loads(self.verify("--json", "--content").summary)["contentsCompared"])

    def test_one_connection_at_a_time_and_one_for_each_request(self):
        self.verify("--content")
        # count, list, list with one more entry; details; contents of equal size; the first three
        # again
        requests = 3 + 200 + 196 + 3
        self.eventually(lambda: self.journal(device="camera", event="close", connection=requests),
                        "the end of the last connection")
        self.assertEqual(requests, len(self.journal(device="camera", event="request")))
        events = [(line["event"], line["connection"]) for line in self.journal(device="camera")
                  if line["event"] in ("open", "close")]
        self.assertEqual([(event, number) for number in range(1, requests + 1)
                          for event in ("open", "close")], events)


class SmallCard(VerifyTest):
    def setUp(self):
        super().setUp()
        self.write("A.MP4", b"a" * 500)
        self.write("B.MP4", b"b" * 40_000)

    def start_card(self, *faults):
        card = self.make_card(A=b"a" * 500, B=b"b" * 40_000)
        self.start("--card", card, *(word for fault in faults for word in ("--fault", fault)))

    def test_all_of_them_are_there(self):
        self.start_card()
        self.check(self.verify(), 0, same("A.MP4", 500), same("B.MP4", 40_000),
                   "All 2 recordings of the card are on this computer with the same size. "
                   + SIZES_ONLY)
        self.check(self.verify("--content"), 0,
                   "A.MP4: the same, byte for byte (500 bytes)",
                   "B.MP4: the same, byte for byte (40,000 bytes)",
                   "All 2 recordings of the card are on this computer, the same, byte for byte.")

    def test_an_empty_card_holds_no_recordings(self):
        self.start_card("entries=0")
        self.check(self.verify(), 0, "A.MP4: not on the card", "B.MP4: not on the card",
                   "The card holds no recordings.")

    def test_what_has_the_name_but_is_no_file_is_not_compared(self):
        self.start_card()
        os.rename(self.path("A.MP4"), self.path("C"))
        os.symlink("C", self.path("A.MP4"))
        os.remove(self.path("B.MP4"))
        for make, what in ((os.mkfifo, "what has this name on this computer is not a file"),
                           (os.mkdir, "a folder has this name on this computer")):
            make(self.path("B.MP4"))
            for options in ((), ("--content",)):
                self.check(self.verify(*options), 2,
                           "A.MP4: cannot be compared: a link has this name on this computer",
                           f"B.MP4: cannot be compared: {what}", "C: not on the card",
                           "Do not delete yet: not known to be safe (2 of 2): A.MP4, B.MP4.")
            if make is os.mkfifo:
                os.remove(self.path("B.MP4"))

    def test_recordings_of_two_gibibytes_are_not_compared(self):
        self.start_card("info-size=2147483648", "only=info")
        line = ("{}.MP4: cannot be compared: it has 2 GiB or more, which the window cannot "
                "download (2,147,483,648 bytes)")
        self.check(self.verify(), 2, line.format("A"), line.format("B"),
                   "Do not delete yet: not known to be safe (2 of 2): A.MP4, B.MP4.")

    def test_one_byte_less_is_compared(self):
        self.start_card("info-size=2147483647", "only=info")
        result = self.verify()
        self.assertEqual((1, "A.MP4: shorter by 2,147,483,147 bytes: the download was cut"),
                         (result.status, result.lines[0]))

    def test_missing_bytes_are_held_against_the_free_space(self):
        os.remove(self.path("A.MP4"))
        os.remove(self.path("B.MP4"))
        self.start_card("info-size=2147483647", "only=info")
        free = shutil.disk_usage(self.dcim).free
        summary = self.verify().summary
        self.assertIn("Missing here: 4,294,967,294 bytes; free in ", summary)
        self.assertEqual(free < 4_294_967_294, "Make room first." in summary)

    def test_a_folder_that_is_missing_holds_nothing(self):
        self.start_card()
        shutil.rmtree(self.dcim)
        result = self.verify()
        self.assertEqual((1, "A.MP4: not on this computer (500 bytes)"),
                         (result.status, result.lines[0]))
        self.assertFalse(os.path.exists(self.dcim))

    def test_what_is_no_folder_cannot_be_read(self):
        self.start_card()
        shutil.rmtree(self.dcim)
        with open(self.dcim, "wb"):
            pass
        self.check(self.verify(), 2,
                   "Do not delete yet: the comparison could not be completed.",
                   err=f"belun-verify: The folder {self.dcim}/ cannot be read: Not a directory.\n")

    def test_wrong_options_ask_nothing(self):
        self.start_card()
        for arguments, message in (
                (["--contents"], "There is no option --contents."),
                (["--timeout", "0"], "--timeout takes whole seconds from 1 to 3600, not 0."),
                (["--timeout"], "The option --timeout needs a value."),
                (["--json=1"], "The option --json takes no value.")):
            self.check(self.verify(*arguments), 64,
                       err=f"belun-verify: {message} See belun-verify --help.\n")
        self.check(self.verify("--desktop", self.path("A.MP4")), 64,
                   err=f"belun-verify: {self.path('A.MP4')} is no folder. "
                       "See belun-verify --help.\n")
        self.assertEqual([], self.journal(device="camera"))

    def test_help_and_version_ask_nothing(self):
        self.start_card()
        self.assertIn("--content", self.verify("--help").out)
        self.assertRegex(self.verify("--version").out, r"^belun-verify [0-9.]+\n$")
        self.assertEqual([], self.journal(device="camera"))

    def test_the_report_is_in_the_users_language(self):
        self.start_card()
        result = self.verify(env={"LANG": "zh_CN.UTF-8"})
        self.check(result, 0, "A.MP4：大小相同（500 字节）", "B.MP4：大小相同（40,000 字节）",
                   "卡内全部 2 个录像均已在本机，大小相同。仅比较了大小；--content 可逐字节比对。")
        self.assertIn("All 2", self.verify(env={"LANG": "zh_CN.GB18030"}).summary)
        self.assertIn("All 2", self.verify(env={}).summary)

    def test_the_folder_is_found_as_the_window_finds_it(self):
        self.start_card()
        home = os.path.join(self.folder, "home")
        os.makedirs(os.path.join(home, ".config"))
        for desktop, folder in (("Desktop", "Desktop"), ("桌面", "桌面"),
                                ("Büro", b"B\xfcro".decode("utf-8", "surrogateescape"))):
            with open(os.path.join(home, ".config/user-dirs.dirs"), "w", encoding="utf-8") as file:
                file.write(f'XDG_DESKTOP_DIR="$HOME/{desktop}"\n')
            target = os.path.join(home, folder, "DCIM")
            shutil.copytree(self.dcim, target)
            command = [verify_harness.program]
            environment = {"HOME": home, "LANG": "en_US.UTF-8", "LC_ALL": "C.UTF-8"}
            self.command = lambda *arguments, words=command: [*words, *arguments]
            self.assertIn("All 2", self.verify(env=environment).summary, desktop)


class ChangingCard(VerifyTest):
    """Tests with a camera whose count and list may change between requests."""

    def camera(self, counts, lists, size=b"4", content=b"abcd"):
        self.write("A", b"abcd")

        def answer(target, _):
            for part, answers in ((b"filecount", counts), (b"filelist", lists)):
                if part in target:
                    return ok(answers.pop(0) if len(answers) > 1 else answers[0])
            return ok(b'size="' + size + b'";' if b"fileinfo" in target else content)
        return ScriptedCamera(self, answer)

    # what changes or disagrees: counts, lists, report; "Do not delete yet: " precedes its last line
    DOUBTS = {
        "a new recording meanwhile": (
            [b'="1";', b'="2";'], [b"ZEPNA/A;\r", b"ZEPNA/A;\r", b"ZEPNA/A;ZEPNA/B;\r"],
            ["A: same size (4 bytes)", "the card changed meanwhile, so compare again."]),
        "another recording meanwhile": (
            [b'="1";'], [b"ZEPNA/A;\r", b"ZEPNA/A;\r", b"ZEPNA/B;\r"],
            ["A: same size (4 bytes)", "the card changed meanwhile, so compare again."]),
        "a count and a list that disagree": (
            [b'="2";'], [b"ZEPNA/A;\r"],
            ["A: same size (4 bytes)", "the camera's count (2) and its list (1) disagree."]),
        "a count without a list": (
            [b'="1";'], [b"\r"],
            ["A: not on the card", "the camera's count (1) and its list (0) disagree."]),
        "entries of one name": (
            [b'="2";'], [b"ZEPNA/A;ZEPNA/A;\r"],
            ["A: cannot be compared: the card's list has this name more than once",
             "not known to be safe (1 of 1): A."]),
        "entries without a name": (
            [b'="3";'], [b"ZEPNA/;ZEPNA/A;x;\r"],
            ["entry 1 of the list: cannot be compared: it has no name", "A: same size (4 bytes)",
             "entry 3 of the list: cannot be compared: it has no name",
             "not known to be safe (2 of 3): entry 1 of the list, entry 3 of the list."]),
    }

    def test_a_doubt_is_no_permission_to_delete(self):
        for what, (counts, lists, report) in self.DOUBTS.items():
            with self.subTest(what):
                camera = self.camera(list(counts), list(lists))
                result = self.verify()
                camera.stop()
                self.check(result, 2, *report[:-1], "Do not delete yet: " + report[-1])

    def test_a_card_that_stays_is_safe(self):
        self.camera([b'="1";'], [b"ZEPNA/A;\r"])
        self.assertEqual(0, self.verify("--content").status)

    def test_a_count_that_is_too_small_hides_nothing(self):
        def answer(target, _):
            if b"filelist" in target:
                return ok(b"ZEPNA/A;\r" if target.endswith(b"-end=1") else b"ZEPNA/A;ZEPNA/B;\r")
            return ok(b'="1";size="4";')
        self.write("A", b"abcd")
        ScriptedCamera(self, answer)
        result = self.verify()
        self.assertEqual((2, "B: not on this computer (4 bytes)"), (result.status, result.lines[1]))
        self.assertIn("the camera's count (1) and its list (2) disagree; not known to be safe (1 "
                      "of 2): B.", result.summary)

    def test_a_camera_that_gives_no_more_than_it_counts_is_not_blamed(self):
        def answer(target, _):
            if b"filelist" in target:
                return ok(b"ZEPNA/A;\r") if target.endswith(b"-end=1") else b""
            return ok(b'="1";size="4";')
        self.write("A", b"abcd")
        ScriptedCamera(self, answer)
        self.assertEqual(0, self.verify().status)

    def test_a_length_that_is_not_the_size_is_not_compared(self):
        self.camera([b'="1";'], [b"ZEPNA/A;\r"], content=b"abcde")
        self.assertEqual("A: cannot be compared: the camera sends 5 bytes, and its details say 4 "
                         "bytes", self.verify("--content").lines[0])

    def test_a_file_that_changes_meanwhile_is_not_compared(self):
        def answer(target, _):
            if b"sd/DCIM" in target and b"cgi" not in target:
                os.utime(self.path("A"), (1, 1))
                return ok(b"abcd")
            return ok(b'="1";size="4";' if b"filelist" not in target else b"ZEPNA/A;\r")
        self.write("A", b"abcd")
        ScriptedCamera(self, answer)
        self.assertEqual("A: cannot be compared: the file on this computer was changed meanwhile",
                         self.verify("--content").lines[0])

    def test_nothing_is_read_once_a_byte_differs(self):
        size = 500_000_000

        def content():
            yield b"HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\nx" % size
            for _ in range(size // 1_000_000):
                sent.append(1)
                yield bytes(1_000_000)

        def answer(target, _):
            if b"cgi" not in target:
                return content()
            return ok(b'="1";size="%d";' % size if b"filelist" not in target else b"ZEPNA/A;\r")
        sent = []
        with open(self.path("A"), "wb") as file:
            file.truncate(size)
        ScriptedCamera(self, answer)
        result = self.verify("--content")
        self.assertEqual((1, "A: same size, but the contents differ from byte 1 onwards"),
                         (result.status, result.lines[0]))
        self.assertLess(len(sent), 100, f"of {size // 1_000_000} pieces, within {LIMIT} s")


if __name__ == "__main__":
    verify_harness.main()
