"""Runs the built belun-verify with the simulator or with a minimal camera."""

import os
import pathlib
import socket
import subprocess
import sys
import threading
import unittest

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "simulator"))
import harness  # noqa: E402
from harness import CAMERA, LIMIT, SimulatorTest  # noqa: E402

program = ""

for name in ("LC_ALL", "LC_CTYPE", "LC_MESSAGES", "LANG", "LANGUAGE"):
    os.environ.pop(name, None)
os.environ["LANG"] = "en_US.UTF-8"


class Result:
    """The output and the exit status of a run."""

    def __init__(self, run):
        self.status = run.returncode
        self.out = run.stdout.decode("utf-8")
        self.err = run.stderr.decode("utf-8")
        self.lines = self.out.splitlines()
        self.summary = self.lines[-1] if self.lines else ""


class VerifyTest(SimulatorTest):
    """A test with its own desktop folder."""

    def setUp(self):
        super().setUp()
        self.desktop = os.path.join(self.folder, "desktop")
        self.dcim = os.path.join(self.desktop, "DCIM")
        os.makedirs(self.dcim)

    def path(self, name):
        return os.path.join(self.dcim, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)

    def command(self, *arguments):
        return [program, "--desktop", self.desktop, *arguments]

    def verify(self, *arguments, **options):
        options = {"stdin": subprocess.DEVNULL, "capture_output": True, "timeout": LIMIT, **options}
        return Result(subprocess.run(self.command(*arguments), check=False, **options))

    def check(self, result, status, *lines, err=""):
        """Checks the complete report, line by line, the messages and the status."""
        self.assertEqual((list(lines), err, status), (result.lines, result.err, result.status))

    def snapshot(self):
        """Returns the times, sizes and modes in the desktop folder, to detect changes."""
        seen = []
        for folder, _, files in os.walk(self.desktop):
            seen.append((folder, os.stat(folder).st_mtime_ns))
            for name in files:
                path = os.path.join(folder, name)
                status = os.lstat(path)
                seen.append((path, status.st_mtime_ns, status.st_size, status.st_mode))
        return sorted(seen)


class ScriptedCamera:
    """A camera that answers each request with what answer(target, number) returns: bytes, or pieces
    to send one after the other. b"" closes the connection without an answer."""

    def __init__(self, test, answer):
        self.answer = answer
        self.requests = []
        self.listener = socket.create_server(CAMERA, reuse_port=False)
        self.thread = threading.Thread(target=self.serve, daemon=True)
        self.thread.start()
        test.addCleanup(self.stop)

    def serve(self):
        while True:
            try:
                connection, _ = self.listener.accept()
            except OSError:
                return
            with connection:
                connection.settimeout(LIMIT)
                self.converse(connection)

    def converse(self, connection):
        request = b""
        try:
            while b"\r\n\r\n" not in request:
                piece = connection.recv(4096)
                if not piece:
                    return
                request += piece
            target = request.split(b" HTTP/1.1")[0][len(b"GET "):]
            self.requests.append(target)
            answer = self.answer(target, len(self.requests))
            for piece in [answer] if isinstance(answer, bytes) else answer:
                connection.sendall(piece)
        except OSError:
            pass  # the client has closed

    def stop(self):
        if self.listener.fileno() != -1:
            self.listener.shutdown(socket.SHUT_RDWR)
            self.listener.close()
        self.thread.join(LIMIT)


def main():
    global program
    program = sys.argv.pop(1)
    harness.program = sys.argv.pop(1)
    unittest.main(module="__main__", verbosity=2)
