"""Captures packets of the loopback interface into a file, if the system allows it."""

import os
import select
import socket
import struct
import threading
import time

ETHERNET = 1


class Capture:
    """A capture that runs in a separate thread until `stop` is called."""

    ALL = 0x0003
    # From linux/if_packet.h, which Python's socket module does not have.
    SOL_PACKET = 263
    PACKET_STATISTICS = 6
    PACKET_IGNORE_OUTGOING = 23

    def __init__(self):
        """Starts the capture. Raises PermissionError if the caller may not capture packets."""
        self.packets = []
        self.socket = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(self.ALL))
        self.socket.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, 64 * 1024 * 1024)
        # Each packet of the loopback interface would also appear as outgoing.
        self.socket.setsockopt(self.SOL_PACKET, self.PACKET_IGNORE_OUTGOING, 1)
        self.socket.bind(("lo", 0))
        self.ending, self.end = os.pipe()
        self.thread = threading.Thread(target=self.run, daemon=True)
        self.thread.start()

    def run(self):
        while True:
            ready, _, _ = select.select([self.socket, self.ending], [], [])
            if self.socket in ready:
                data = self.socket.recv(262144)
                # Unlike the time of day, this clock never jumps: replays keep the distances.
                self.packets.append((time.monotonic(), data))
            elif self.ending in ready:
                return

    def stop(self):
        """Returns the packets, or nothing if the system had to drop packets."""
        os.write(self.end, b"x")
        self.thread.join()
        _, dropped = struct.unpack("II", self.socket.getsockopt(
            self.SOL_PACKET, self.PACKET_STATISTICS, 8))
        self.socket.close()
        os.close(self.end)
        os.close(self.ending)
        return None if dropped else self.packets


FIN, SYN, RST, ACK = 1, 2, 4, 16


def segment(source, target, flags, sequence, acknowledgement, data=b""):
    """Returns an Ethernet packet with one TCP segment. source, target: (host, port). The checksums
    are 0."""
    tcp = struct.pack("!HHIIBBHHH", source[1], target[1], sequence, acknowledgement, 5 << 4, flags,
                      65535, 0, 0) + data
    ip = struct.pack("!BBHHHBBH", 0x45, 0, 20 + len(tcp), 0, 0, 64, socket.IPPROTO_TCP, 0)
    return (bytes(12) + b"\x08\x00" + ip + socket.inet_aton(source[0])
            + socket.inet_aton(target[0]) + tcp)


def write(path, packets, snap=262144, kind=ETHERNET):
    """Writes packets, each a time and bytes, as a capture file."""
    with open(path, "wb") as file:
        file.write(struct.pack("<IHHiIII", 0xa1b2c3d4, 2, 4, 0, 0, snap, kind))
        for moment, data in packets:
            kept = data[:snap]
            file.write(struct.pack("<IIII", int(moment), int(moment % 1 * 1000000), len(kept),
                                   len(data)) + kept)
