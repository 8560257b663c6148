"""Tests that the simulator answers the requests of docs/camera-protocol.md as that page states."""

import json
import os
import re
import subprocess

import harness
from harness import CAMERA, ROOT, SimulatorTest

with open(os.path.join(ROOT, "docs", "camera-protocol.md"), encoding="utf-8") as page:
    PAGE = page.read()
# Path and query, and short name, of each command.
COMMANDS = re.findall(r"(?m)^\| [a-z ]+\| `(/cgi-bin[^`]*)` *\|[^|]*\|[^|]*\| `(\w+)`", PAGE)


def exchanges():
    """Yields the bytes of each request and of its answer."""
    for block in re.findall(r"(?ms)^```exchange\n(.*?)^```$", PAGE):
        yield tuple("".join(line[2:] + "\r\n" for line in block.splitlines()
                            if line.startswith(side)).encode() for side in "><")


class ProtocolPageTest(SimulatorTest):
    def start_with_the_page_s_card(self):
        card = self.make_card()
        movie = (b"\0\0\0\x24moov\0\0\0\x1cmvhd" + b"\0" * 12
                 + b"\0\0\0\1\0\0\0\x25" + b"\0" * 8)  # 37 seconds
        for name, content, created in (("1", movie.ljust(1572864, b"\0"), 1580474702),
                                       ("2", b"the bytes of the recording\r\n", 1580475600)):
            path = os.path.join(card, f"BELUN_000{name}.mp4")
            self.write_file(path, content)
            os.utime(path, (created, created))
        self.start("--card", card)

    def test_simulator_answers_as_the_page_states(self):
        self.start_with_the_page_s_card()
        for request, answer in exchanges():
            # The page omits the line "Connection: close", which the program ignores.
            head, _, body = answer.partition(b"\r\n\r\n")
            whole = head + b"\r\nConnection: close\r\n\r\n" + body
            with self.subTest(request=request.partition(b"\r\n")[0]):
                peer = self.peer(CAMERA)
                peer.send(request)
                self.assertEqual((whole, "closed"), peer.rest())

    def test_requests_have_the_short_names_of_the_page(self):
        self.start_with_the_page_s_card()
        expected = []
        for request, _ in exchanges():
            names = [short for path, short in COMMANDS if b"GET " + path.encode() in request]
            expected += names or ["recording"]
            peer = self.peer(CAMERA)
            peer.send(request)
            peer.rest()
        self.assertEqual(expected, [line["kind"] for line in self.journal(event="request")])
        self.assertEqual({short for _, short in COMMANDS} | {"recording"}, set(expected))

    def test_fault_only_accepts_the_short_names_of_the_page(self):
        faults = json.loads(subprocess.run(
            [harness.program, "--list-faults=json"], check=True, stdout=subprocess.PIPE,
            timeout=harness.LIMIT).stdout)
        words = [fault["value"] for fault in faults if fault["name"] == "only"]
        names = [short for _, short in COMMANDS]
        self.assertGreaterEqual(len(names), 6)
        self.assertEqual(["|".join(["control", "ground", "cgi", *names, "recording", "other"])],
                         words)


if __name__ == "__main__":
    harness.main()
