"""Follows a scenario: prints each step, queries the vehicle after it and prints the results.

After several steps of the same moment, the vehicle is queried once.

scenario_client.py SIMULATOR OPTION...
"""

import os
import select
import socket
import subprocess
import sys
import tempfile
import zlib

sys.dont_write_bytecode = True
import harness  # noqa: E402

QUIET = 0.15  # seconds without a further step
PATIENCE = 1.0  # seconds; longer than a fault delays an answer
TARGETS = (harness.COUNT, harness.LIST + b"2", harness.INFO + b"A.MP4",
           harness.RECORDING + b"A.MP4", harness.DELETE + b"NONE.MP4")


def talk(address, request):
    """Returns the number of bytes received, their CRC-32 and the end of the connection; after a
    reset, only "reset"."""
    data = b""
    try:
        with socket.create_connection(address, PATIENCE) as peer:
            peer.settimeout(PATIENCE)
            peer.sendall(request)
            while request or len(data) < 6:
                piece = peer.recv(65536 if request else 6 - len(data))
                if not piece:
                    break
                data += piece
            end = "closed"
    except ConnectionRefusedError:
        end = "refused"
    except ConnectionError:
        return "reset"  # a reset may overtake the bytes before it
    except TimeoutError:
        end = "silence"
    return f"{len(data)} bytes {zlib.crc32(data):08x} {end}"


def more_to_read(stream):
    """Waits up to QUIET seconds for a further step of the same moment. Returns whether one has been
    reported."""
    return bool(select.select([stream], [], [], QUIET)[0])


def main():
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "A.MP4")
        with open(path, "wb") as file:
            file.write(b"recording " * 2000)
        os.utime(path, (1580474702, 1580474702))
        with subprocess.Popen([sys.argv[1], "--card", folder, *sys.argv[2:]], bufsize=0,
                              env={**os.environ, "TZ": "UTC"}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE) as vehicle:
            for read in iter(vehicle.stdout.readline, b""):
                line = read.decode().rstrip("\n")
                print(line, flush=True)
                if not line.startswith("scenario: ok") or line == "scenario: ok quit":
                    continue
                if more_to_read(vehicle.stdout):
                    continue  # the next step of the same moment is on its way
                print("  control:", talk(harness.CONTROL, b""), flush=True)
                for target in TARGETS:
                    seen = talk(harness.CAMERA, b"GET " + target + b" HTTP/1.1\r\n\r\n")
                    print("  camera:", target.decode()[-12:], seen, flush=True)
                    if seen.startswith("0 bytes") and seen.endswith("silence"):
                        break
        return vehicle.returncode


if __name__ == "__main__":
    sys.exit(main())
