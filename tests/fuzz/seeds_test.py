"""Tests the program that writes the bytes of conversations as seeds for the fuzz targets.

The command line gives the program, possibly after an emulator.
"""

import pathlib
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv[1:]

CONVERSATIONS = r"""
# head
client readHeader
< A: b\r\n
< \r\n = true

# line
client readLine 9
< A: c\n = 5 "A: c\n"

# limit
client readLimit 1
< d = 1 "d"

# chunks: two
client readBody given chunked
< 0\r\n\r\n = true chunked last

# rest
client readBody given length=5 received=3
< lo = true length=5 received=5

# both
client get /1
< \r\n1 = true
client post /2 data
< \r\n2 = true

# recording
client download a.mp4
< HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n\x00b ! pause
< ! close = status=200 length=12 progress=2/12 "\x00b"

# count
client count
< ="1"; = "1"

# list
client list
< \r = no entry

# details
client details
< size="1 = "--  ::" "KB" "s"

# largest
client list
< \(512 x) = -

# too large
client list
< \(513 x) = -
"""

SEEDS = {
    "AnswerHead/x-head": b"A: b\r\n\r\n",
    "AnswerHead/x-line": b"A: c\n",
    "AnswerHead/x-limit": b"d",
    "AnswerHead/x-both": b"\r\n1",
    "AnswerHead/x-both-next": b"\r\n2",
    "VerifyAnswer/x-head": b"\xFFA: b\r\n\r\n",
    "VerifyAnswer/x-line": b"\xFFA: c\n",
    "VerifyAnswer/x-limit": b"\xFFd",
    "VerifyAnswer/x-both": b"\xFF\r\n1",
    "VerifyAnswer/x-both-next": b"\xFF\r\n2",
    "ChunkedBody/x-chunks-two": b"0\r\n\r\n",
    "PlainBody/x-rest": b"5 3 511\nlo",
    "DownloadHead/x-recording": b"HTTP/1.1 200 OK\r\nContent-Length: 12\r\n\r\n\0b",
    "DownloadBody/x-recording": b"12 511\n\0b",
    "FileCount/x-count": b'="1";',
    "FileList/x-list": b"\r",
    "FileList/x-largest": 512 * b"x",
    "FileInfo/x-details": b'size="1',
    "VerifyCard/x-count": b'="1";',
    "VerifyCard/x-list": b"\r",
    "VerifyCard/x-details": b'size="1',
    "VerifyCard/x-largest": 512 * b"x",
}


class Seeds(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.conversations = pathlib.Path(folder.name, "conversations")
        self.seeds = pathlib.Path(folder.name, "seeds")
        self.conversations.mkdir()

    def write(self, text):
        """Writes the seeds of one file of conversations; returns the status and the message."""
        (self.conversations / "x.txt").write_text(text)
        run = subprocess.run(
            [*PROGRAM, self.seeds, self.conversations], capture_output=True, text=True, timeout=30)
        return run.returncode, run.stderr

    def written(self):
        return {str(path.relative_to(self.seeds)): path.read_bytes()
                for path in self.seeds.rglob("*") if path.is_file()}

    def test_each_call_becomes_a_seed_of_its_targets(self):
        self.assertEqual(self.write(CONVERSATIONS), (0, ""))
        self.assertEqual(self.written(), SEEDS)

    def test_earlier_seeds_are_removed(self):
        self.write(CONVERSATIONS)
        self.assertEqual(self.write("# one\nclient count\n< a = none\n"), (0, ""))
        self.assertEqual(self.written(), {"FileCount/x-one": b"a", "VerifyCard/x-one": b"a"})

    def test_errors_are_reported(self):
        for text, message in (
            ("# one\nclient count\n< \\t = none\n", "x.txt:3: unknown escape\n"),
            ("# one\nclient dive\n< a = none\n", "no fuzz target for the call: dive\n"),
            (2 * "# one\nclient count\n< a = none\n\n", "FileCount/x-one\n"),
        ):
            with self.subTest(message):
                status, error = self.write(text)
                self.assertEqual(status, 1)
                self.assertTrue(error.endswith(message), error)

    def test_usage(self):
        run = subprocess.run([*PROGRAM, self.seeds], capture_output=True, text=True, timeout=30)
        self.assertEqual((run.returncode, run.stderr[:6]), (2, "usage:"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
