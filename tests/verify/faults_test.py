#!/usr/bin/python3
"""Tests the output of belun-verify for each fault of the camera. Each fault must have a row."""

import re
import subprocess

import verify_harness
import harness  # verify_harness sets the path
from verify_harness import VerifyTest

BOTH = ["A.MP4: the same, byte for byte (500 bytes)",
        "B.MP4: the same, byte for byte (40,000 bytes)"]
SAFE = (0, [*BOTH, "All 2 recordings of the card are on this computer, the same, byte for byte."],
        "")
NO_ANSWER = "the camera closed the connection before its answer was complete"
NOT_UNDERSTOOD = "the camera's answer was not understood"
TOO_LONG = "the camera's answer is too long"
STATUS = "the camera answered with status 404"


def failed(message):
    return (2, ["Do not delete yet: the comparison could not be completed."],
            f"belun-verify: {message}.\n")


def no_count(why):
    return failed(f"The recordings cannot be counted: {why}")


def no_list(why):
    return failed(f"The recordings cannot be listed: {why}")


def neither(why):
    return (2, [f"A.MP4: cannot be compared: {why}", f"B.MP4: cannot be compared: {why}",
                "Do not delete yet: not known to be safe (2 of 2): A.MP4, B.MP4."], "")


def renamed(name):
    """Returns the output if the card has A.MP4 under this name: it can be downloaded, and
    A.MP4 itself is only on this computer."""
    return (1, [f"{name}: not on this computer (500 bytes)", BOTH[1], "A.MP4: not on the card",
                f"Do not delete yet: not known to be safe (1 of 2): {name}. Missing here: 500 "
                "bytes; free in DCIM: ROOM bytes."], "")


def unusable(name, why="the window cannot download a recording of this name"):
    return (2, [f"{name}: cannot be compared: {why}", BOTH[1], "A.MP4: not on the card",
                f"Do not delete yet: not known to be safe (1 of 2): {name}."], "")


# faults; what is printed: status, report, standard error; None if the output may vary
CASES = [
    # Reaching the camera
    ("refuse=camera", no_count("the camera at 192.168.1.120 refuses the connection")),
    ("silent=camera", no_count("the camera sent nothing for 1 s")),
    ("never-accept=camera", no_count("the camera sent nothing for 1 s")),
    ("down=camera", no_count("the camera at 192.168.1.120 did not answer within 1 s")),
    ("reboot", no_count("the camera at 192.168.1.120 did not answer within 1 s")),

    # Any answer
    ("answer-delay=200", SAFE),
    ("answer-delay=3000", no_count("the camera sent nothing for 1 s")),
    ("link-lost-mid-command", SAFE),
    ("status", no_count(STATUS)),
    ("status=201", no_count("the camera answered with status 201")),
    ("status only=list", no_list(STATUS)),
    ("status only=info", neither(f"no details: {STATUS}")),
    ("status only=recording", neither(f"no content: {STATUS}")),
    ("no-reason", SAFE),
    ("lower-case-names", SAFE),
    ("no-length", SAFE),
    ("length-offset", no_count(NO_ANSWER)),
    ("length-offset=-5", no_count(NOT_UNDERSTOOD)),
    ("length-offset=9 only=recording",
     (2, ["A.MP4: cannot be compared: the camera sends 509 bytes, and its details say 500 bytes",
          "B.MP4: cannot be compared: the camera sends 40,009 bytes, and its details say 40,000 "
          "bytes", "Do not delete yet: not known to be safe (2 of 2): A.MP4, B.MP4."], "")),
    ("length-text", no_count(TOO_LONG)),
    ("length-text=many", no_count(NOT_UNDERSTOOD)),
    ("empty-answer", no_count(NOT_UNDERSTOOD)),
    ("chunked", SAFE),
    ("chunk-extension", SAFE),
    ("chunk-bad-hex", no_count(NOT_UNDERSTOOD)),
    ("chunk-size", no_count(TOO_LONG)),
    ("chunk-no-last", no_count(NO_ANSWER)),
    ("chunk-no-last only=recording", neither(f"no content: {NO_ANSWER}")),
    ("chunk-trailers", SAFE),
    ("bare-lf", no_count(NO_ANSWER)),
    ("odd-head-end", SAFE),
    ("continue-first", SAFE),
    ("long-header", no_count(TOO_LONG)),
    ("many-headers", no_count(TOO_LONG)),
    ("long-type", SAFE),
    ("close-before-head", no_count(NO_ANSWER)),
    ("reset-before-head", no_count(NO_ANSWER)),
    ("close-in-head", no_count(NO_ANSWER)),
    ("reset-in-head", no_count(NO_ANSWER)),
    ("close-after-head", no_count(NO_ANSWER)),
    ("reset-after-head", no_count(NO_ANSWER)),
    ("close-mid-body", no_count(NO_ANSWER)),
    ("reset-mid-body", no_count(NO_ANSWER)),
    ("close-mid-body only=recording", neither(f"no content: {NO_ANSWER}")),
    ("reset-mid-body only=recording", neither(f"no content: {NO_ANSWER}")),
    ("stall", no_count("the camera sent nothing for 1 s")),
    ("stall only=recording", failed("No content of A.MP4: the camera sent nothing for 1 s")),
    ("split-head", SAFE),
    ("byte-by-byte only=cgi", SAFE),
    ("byte-by-byte=400 only=cgi", no_count("the camera's answer took more than 4 s")),
    ("garbage", no_count(NOT_UNDERSTOOD)),

    # The count
    ("count=x", no_count(NOT_UNDERSTOOD)),
    ("count=0", (2, [BOTH[0], "B.MP4: not on the card",
                     "Do not delete yet: the camera's count (0) and its list (1) disagree."], "")),
    ("count-offset=1", (2, [*BOTH, "Do not delete yet: the camera's count (3) and its list (2) "
                                   "disagree."], "")),
    ("count-offset=-1", (2, [*BOTH, "Do not delete yet: the camera's count (1) and its list (2) "
                                    "disagree."], "")),
    ("no-count-markers", no_count(NOT_UNDERSTOOD)),

    # The card
    ("entries=0", (0, ["A.MP4: not on the card", "B.MP4: not on the card",
                       "The card holds no recordings."], "")),
    ("no-card", (0, ["A.MP4: not on the card", "B.MP4: not on the card",
                     "The card holds no recordings."], "")),
    ("write-protected", SAFE),
    ("growing-recording", neither("no content: the camera sent more than it announced")),
    ("swapped-card", (2, [f"{name}.MP4: cannot be compared: no content: {STATUS}"
                          for name in "AB"] + [
                              "Do not delete yet: the card changed meanwhile, so compare again; "
                              "not known to be safe (2 of 2): A.MP4, B.MP4."], "")),
    ("swapped-cameras", None),

    # The list
    ("no-list-end", no_list(NOT_UNDERSTOOD)),
    ("infinite-list", no_list(TOO_LONG)),
    ("no-semicolon", no_list(NOT_UNDERSTOOD)),
    ("no-list-markers", (2, ["entry 1 of the list: cannot be compared: it has no name",
                             "entry 2 of the list: cannot be compared: it has no name",
                             "A.MP4: not on the card", "B.MP4: not on the card",
                             "Do not delete yet: not known to be safe (2 of 2): entry 1 of the "
                             "list, entry 2 of the list."], "")),
    ("list-padding", SAFE),
    ("list-padding=20000000", no_list(TOO_LONG)),

    # Names
    ("name-29", renamed("ZEPNA_20200131_124502_029.MP4")),
    ("name-30", renamed("ZEPNA_20200131_124502_0030.MP4")),
    ("name-300", unusable("N" * 296 + ".MP4", "no file on this computer can have this name")),
    ("name-utf8", unusable("海底_01.MP4")),
    ("name-space", renamed("REC 20200131 12.MP4")),
    ("name-ampersand", renamed("REC&-name=B&C.MP4")),
    ("name-hash", renamed("REC#1.MP4")),
    ("name-percent", renamed("REC%41%2F%s.MP4")),
    ("name-slash", unusable("SUB/REC.MP4")),
    ("name-outside", unusable("../../REC.MP4")),
    ("name-parent", unusable("..")),
    ("name-line-end", unusable("REC\\u{D}\\u{A}X-Injected: 1")),
    ("name-markup", unusable("<b>REC</b>.MP4")),
    ("name-custom=R.MP4", renamed("R.MP4")),
    ("name-custom=\\x1b]0,title\\x07\\x9b.MP4", unusable("\\u{1B}]0,title\\u{7}\\x9B.MP4")),
    ("name-custom=\\x1b[2J\\x7f", renamed("\\u{1B}[2J\\u{7F}")),
    ("name-custom=B.MP4", (2, ["B.MP4: cannot be compared: the card's list has this name more than "
                               "once", "A.MP4: not on the card",
                               "Do not delete yet: not known to be safe (1 of 1): B.MP4."], "")),

    # The details
    ("info-reordered", SAFE),
    ("info-missing=create,time", SAFE),
    ("info-missing", neither(f"no details: {NOT_UNDERSTOOD}")),
    ("info-create", SAFE),
    ("info-size", neither("it has 2 GiB or more, which the window cannot download (2,147,483,648 "
                          "bytes)")),
    ("info-size=-1", neither(f"no details: {NOT_UNDERSTOOD}")),
    ("info-time", SAFE),
    ("info-long", neither(f"no details: {NOT_UNDERSTOOD}")),
    ("info-fails=2", (2, [BOTH[0], f"B.MP4: cannot be compared: no details: {NO_ANSWER}",
                          "Do not delete yet: not known to be safe (1 of 2): B.MP4."], "")),
]

# Groups of faults that affect only the modules or requests that belun-verify never sends. The two
# names below are in other groups: a fault of the modules, and "only", which limits other faults.
ELSEWHERE = ("Frames of the modules", "Delete and format")
NO_FAULTS_OF_THE_CAMERA = {"flapping", "only"}


class Faults(VerifyTest):
    def judge(self, faults, expected):
        card = self.make_card(A=b"a" * 500, B=b"b" * 40_000)
        self.write("A.MP4", b"a" * 500)
        self.write("B.MP4", b"b" * 40_000)
        self.start("--card", card,
                   *(word for fault in faults.split(" ") for word in ("--fault", fault)))
        before = self.snapshot()
        # Only a row that expects the limit needs a short one; a busy camera may be late in any row.
        limit = "1" if expected is None or re.search(r" \d s\b", str(expected)) else "15"
        result = self.verify("--content", "--timeout", limit)
        self.assertEqual(before, self.snapshot())
        for text in (result.out, result.err):
            self.assertTrue(all(letter.isprintable() or letter == "\n" for letter in text), text)
        if expected is None:  # the output depends on which requests the other camera answers
            self.assertIn(result.status, (1, 2))
            self.assertTrue(result.summary.startswith("Do not delete yet: "))
            return
        out = result.out.replace(self.dcim + "/", "DCIM")
        out = re.sub(r"[0-9,]+ bytes\.$", "ROOM bytes.", out, flags=re.M)
        self.assertEqual(expected, (result.status, out.splitlines(), result.err))

    def test_every_fault_of_the_camera_has_a_row(self):
        listing = subprocess.run([harness.program, "--list-faults"], check=True, timeout=20,
                                 capture_output=True, text=True).stdout
        known = set()
        group = ""
        for line in listing.splitlines():
            if re.match(r"\S.*:$", line) or re.match(r"\S.*\(@.*\):$", line):
                group = line
            found = re.match(r"(?:  )?([a-z][a-z0-9-]+)(?:\[?=| |\[|$)", line)
            if found and not group.startswith(ELSEWHERE):
                known.add(found[1])
        self.assertGreater(len(known), 60)
        rows = {fault.split("=")[0] for faults, _ in CASES for fault in faults.split(" ")}
        self.assertEqual(set(), known - rows - NO_FAULTS_OF_THE_CAMERA)


def add(number, faults, expected):
    def test(self):
        self.judge(faults, expected)
    name = re.sub("[^a-z0-9]+", "_", faults.lower())[:40]
    setattr(Faults, f"test_{number:03}_{name}", test)


for place, case in enumerate(CASES, 1):
    add(place, *case)


if __name__ == "__main__":
    verify_harness.main()
