"""Starts the built simulator and exchanges raw bytes with it over plain sockets."""

import json
import os
import queue
import resource
import shutil
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest

CONTROL = ("192.168.1.149", 5000)
GROUND = ("192.168.1.148", 5000)
CAMERA = ("192.168.1.120", 80)
# Seconds; long enough for a busy machine.
LIMIT = 20 * int(os.environ.get("BELUN_TIME_FACTOR", "1"))

HEARTBEAT = bytes.fromhex("aaaf0401005e")
GROUND_HEARTBEAT = bytes.fromhex("bbaf0401005e")
VERSION = bytes.fromhex("aaaf000907012c02580064000a56")
ANSWER = bytes.fromhex("aaaf0401015f")

COUNT = b"/cgi-bin/hi3510/getfilecount.cgi?"
LIST = b"/cgi-bin/hi3510/getfilelist.cgi?&-start=1&-end="
INFO = b"/cgi-bin/hi3510/getfileinfo.cgi?&-name=sd/DCIM/100ZEPNA/"
DELETE = b"/cgi-bin/hi3510/deletefile.cgi?&-name=sd/DCIM/100ZEPNA/"
DELETE_ALL = b"/cgi-bin/hi3510/deleteallfiles.cgi?"
FORMAT = b"/cgi-bin/hi3510/sdcommand.cgi?-format&-partition=1"
RECORDING = b"/sd/DCIM/100ZEPNA/"

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))

# The contents of the two recordings of start_two().
ALPHA = b"alpha" * 100
BRAVO = b"bravo" * 1000

program = ""


def run(*arguments, **options):
    """Runs the simulator until it exits by itself."""
    options = {"stdin": subprocess.DEVNULL, "stdout": subprocess.PIPE, "stderr": subprocess.PIPE,
               "text": True, "timeout": LIMIT, **options}
    return subprocess.run([program, *arguments], check=False, **options)


def ok_head(length, kind=b"text/plain"):
    return (b"HTTP/1.1 200 OK\r\nContent-Type: " + kind
            + b"\r\nContent-Length: %d\r\nConnection: close\r\n\r\n" % length)


def ok(body, kind=b"text/plain"):
    return ok_head(len(body), kind) + body


def chunked(body, kind=b"text/plain"):
    """Returns a chunked answer. The body must already be encoded as chunks."""
    return (b"HTTP/1.1 200 OK\r\nContent-Type: " + kind + b"\r\nTransfer-Encoding: chunked\r\n"
            b"Connection: close\r\n\r\n" + body)


NOT_FOUND = (b"HTTP/1.1 404 Not Found\r\nContent-Type: text/html\r\nContent-Length: 41\r\n"
             b"Connection: close\r\n\r\n<html><body>404 Not Found</body></html>\r\n")


TWO = ok(b'var count="2";\r\n')
BOTH = ok(b"sd/DCIM/100ZEPNA/A.MP4;sd/DCIM/100ZEPNA/B.MP4;\r\n")
NONE = ok(b"\r\n")
SUCCESS = ok(b"Success\r\n")
ERROR = ok(b"Error\r\n")


class Peer:
    """One connection to a device."""

    def __init__(self, address, timeout=LIMIT):
        self.opened = time.monotonic()
        self.socket = socket.create_connection(address, timeout)
        self.socket.settimeout(LIMIT)

    def send(self, data):
        self.socket.sendall(data)

    def segment(self, limit=65536):
        """Returns the result of one receive; b"" at the end, "reset" after a reset.

        A late receive returns several segments as one. sent_pieces() has them apart.
        """
        try:
            return self.socket.recv(limit)
        except ConnectionResetError:
            return "reset"

    def exactly(self, count):
        data = b""
        while len(data) < count:
            piece = self.socket.recv(count - len(data))
            if not piece:
                raise AssertionError(f"closed after {data!r}, {count} bytes were expected")
            data += piece
        return data

    def rest(self):
        """Returns everything up to the end, and how it ended: "closed" or "reset"."""
        data = bytearray()
        while True:
            piece = self.segment()
            if not piece or not isinstance(piece, bytes):
                return bytes(data), piece or "closed"
            data += piece

    def quiet_for(self, seconds):
        """Returns whether nothing arrives for that long, not even the end."""
        self.socket.settimeout(seconds)
        try:
            self.socket.recv(1, socket.MSG_PEEK)
            return False
        except TimeoutError:
            return True
        finally:
            self.socket.settimeout(LIMIT)

    def close(self):
        self.socket.close()


class SimulatorTest(unittest.TestCase):
    """A test with its own simulator."""

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="belun-simulator-test-")
        self.addCleanup(shutil.rmtree, self.folder)
        self.process = None
        self.complaints = queue.Queue()
        self.answers = queue.Queue()

    def make_card(self, **files):
        """Creates a folder with these files (name without .MP4, content); returns its path."""
        card = os.path.join(self.folder, "card")
        os.makedirs(card, exist_ok=True)
        for name, content in files.items():
            self.write_file(os.path.join(card, name + ".MP4"), content)
        return card

    def write_file(self, path, content):
        with open(path, "wb") as file:
            file.write(content)
        os.utime(path, (1580474702, 1580474702))  # 2020-01-31 12:45:02 UTC

    def start_two(self, *arguments):
        """Starts with a card of two recordings."""
        self.card = self.make_card(A=ALPHA, B=BRAVO)
        self.start("--card", self.card, *arguments)

    def start(self, *arguments, descriptors=1024):
        self.journal_path = os.path.join(self.folder, "journal")
        self.journal_number = None
        self.process = subprocess.Popen(
            [program, "--journal", self.journal_path, "--exit-with-stdin", *arguments],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, env={**os.environ, "TZ": "UTC"},
            preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_NOFILE,
                                                  (descriptors, descriptors)))
        self.reader = threading.Thread(target=self.read_lines, daemon=True)
        self.addCleanup(self.stop)
        self.reader.start()
        self.assertEqual("belun-simulator ready", self.answers.get(timeout=LIMIT))

    def end(self):
        """Stops the simulator and keeps its journal until the next start overwrites it."""
        self.assertEqual("ok quit", self.control("quit"))
        self.process.wait(LIMIT)
        self.stop()

    def read_lines(self):
        for line in self.process.stdout:
            text = line.decode("latin-1").rstrip("\n")
            complaint = text.startswith(("control: ", "ground: "))
            (self.complaints if complaint else self.answers).put(text)

    def stop(self):
        if not self.process.stdin.closed:
            self.process.stdin.close()
        try:
            self.process.wait(LIMIT)
        finally:
            self.process.kill()
            self.process.wait()
            self.reader.join()
            self.process.stdout.close()
        self.assertEqual(0, self.process.returncode, "exit status of the simulator")

    def control(self, line):
        """Sends a control line and returns its answer."""
        self.process.stdin.write(line.encode("latin-1") + b"\n")
        self.process.stdin.flush()
        return self.answers.get(timeout=LIMIT)

    def switch(self, line):
        self.assertEqual("ok " + line, self.control(line))

    def peer(self, address, timeout=LIMIT):
        peer = Peer(address, timeout)
        self.addCleanup(peer.close)
        return peer

    def request(self, target):
        """Sends a request to the camera and leaves the connection to the test."""
        peer = self.peer(CAMERA)
        peer.send(b"GET " + target + b" HTTP/1.1\r\nHost: 192.168.1.120\r\n\r\n")
        return peer

    def ask(self, target):
        """Returns the camera's complete answer; fails if the connection is reset."""
        data, end = self.request(target).rest()
        self.assertEqual("closed", end)
        return data

    def play(self, *steps):
        """Follows a conversation with the camera. A text is a control line, which must succeed; a
        pair is the target of a request and the complete answer."""
        for step in steps:
            if isinstance(step, str):
                self.switch(step)
            else:
                self.assertEqual(step[1], self.ask(step[0]), step[0])

    def refused(self, status, *arguments):
        """Returns the messages of a simulator that exits with this status before it is ready."""
        result = run(*arguments)
        self.assertEqual((status, ""), (result.returncode, result.stdout), result.stderr)
        return result.stderr

    def journal(self, **wanted):
        """Returns the lines of the journal with these values."""
        # Reads only new lines, because a waiting test calls this repeatedly.
        with open(self.journal_path, "rb") as file:
            number = os.fstat(file.fileno()).st_ino
            if number != self.journal_number:
                self.journal_number, self.journal_read, self.journal_lines = number, 0, []
            file.seek(self.journal_read)
            new = file.read()
        whole = new[:new.rfind(b"\n") + 1]  # the last line may still be incomplete
        self.journal_read += len(whole)
        self.journal_lines += [json.loads(line) for line in whole.splitlines()]
        return [line for line in self.journal_lines
                if all(line.get(name) == value for name, value in wanted.items())]

    def sent_pieces(self, device, count, connection=1):
        """Waits until a device has sent that often on a connection. Returns what it sent, one piece
        for each time. Needs --journal-full for a recording."""
        lines = self.eventually(
            lambda: (found := self.journal(device=device, connection=connection, event="sent"))
            and len(found) >= count and found[:count], f"{count} pieces of {device}")
        return [bytes.fromhex(line["bytes"]) for line in lines]

    def eventually(self, condition, what):
        """Waits until the condition returns something true, and returns that."""
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            result = condition()
            if result:
                return result
            time.sleep(0.01)
        raise AssertionError("never happened: " + what)


def main():
    global program
    program = sys.argv.pop(1)
    unittest.main(module="__main__", verbosity=2)
