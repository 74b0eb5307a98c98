#!/usr/bin/env python3
"""A whole supervisor in little: takes the panel's link and shows one file playing.

Usage: supervisor.py HOST FILE [SECONDS]
"""
import os
import socket
import struct
import sys
import time

PORT = 5000
FILENAME, TIME, MODE, LEVEL, KEY, DISK_STAT, DEVICE, DISK_INFO, REQUEST = 1, 2, 3, 4, 5, 6, 7, 10, 13
KEY_STOP, DISK_NORMAL, USB, PLAY_ALL, ASK_MODE = 0x01, 1, 0x01, 0x01, 8
MODES = {0: "menu", 1: "usb", 2: "aoe", 3: "radio-list", 4: "radio", 5: "netbgm", 6: "setup", 7: "dhcp", 255: "none"}

SOON = 0.5      # seconds within which a panel at rest answers many times over
BUSY = 35.0     # seconds; while it restarts the network it answers nobody for up to 30
UNHEARD = 4096  # bytes that may be under way without an answer


class Panel:
    def __init__(self, host):
        self.link = socket.create_connection((host, PORT), timeout=5)
        self.link.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)  # a packet leaves at once, in one piece
        self.unheard = 0
        self.begin()

    def begin(self):
        """The last bytes of a supervisor that died may spoil the first packet, so ask until an answer comes."""
        self.write(REQUEST, bytes([ASK_MODE]))
        if self.report(SOON) is None:
            self.write(REQUEST, bytes([ASK_MODE]))
            if self.report(BUSY) is None:
                raise TimeoutError("the panel does not answer")
            self.report(SOON)  # the first one may have been late, not lost
        self.unheard = 0

    def write(self, command, data):
        packet = struct.pack("<HH", command, len(data)) + data
        self.link.sendall(packet)  # one packet, one write
        self.unheard += len(packet)

    def send(self, command, data):
        if self.unheard + 4 + len(data) > UNHEARD:
            self.mode()
        self.write(command, data)

    def mode(self):
        """Asks for the mode; by the time the answer is there everything sent before it has been handled."""
        self.write(REQUEST, bytes([ASK_MODE]))
        code = self.report(BUSY)
        if code is None:
            raise TimeoutError("the panel does not answer; another supervisor may have taken the link")
        self.unheard = 0
        return code

    def report(self, seconds):
        """The code in the next mode report; None when the time runs out."""
        while True:
            header = self.read(4, seconds)
            if header is None:
                return None
            command, length = struct.unpack("<HH", header)
            data = self.read(length, BUSY)
            if command == REQUEST and length == 1 and data:
                return data[0]

    def read(self, size, seconds):
        self.link.settimeout(seconds)
        got = b""
        while len(got) < size:
            try:
                piece = self.link.recv(size - len(got))
            except socket.timeout:
                return None
            if not piece:
                raise ConnectionError("the panel has gone")
            got += piece
        return got


def bcd(number):
    return number // 10 * 16 + number % 10


def play(panel, path, seconds):
    panel.send(DEVICE, bytes([USB]))
    panel.send(DISK_STAT, bytes([DISK_NORMAL]))
    panel.send(DISK_INFO, struct.pack("<HH", 1, 1))
    panel.send(MODE, bytes([PLAY_ALL]))
    panel.send(FILENAME, os.fsencode(path))
    for second in range(seconds):
        panel.send(TIME, bytes([bcd(second // 3600), bcd(second // 60 % 60), bcd(second % 60)]))
        for level in (20, 200, 90, 5):
            panel.send(LEVEL, bytes([level]))
            time.sleep(0.25)
    panel.send(LEVEL, bytes([0]))
    panel.send(KEY, bytes([KEY_STOP]))


def main():
    if len(sys.argv) not in (3, 4):
        sys.exit(__doc__)
    path = os.path.realpath(sys.argv[2])
    if not os.path.exists(path):
        sys.exit("supervisor.py: no such file")
    panel = Panel(sys.argv[1])
    print("before:", MODES.get(panel.mode(), "unknown"))
    play(panel, path, int(sys.argv[3]) if len(sys.argv) == 4 else 5)
    print("after:", MODES.get(panel.mode(), "unknown"))


if __name__ == "__main__":
    try:
        main()
    except OSError as error:
        sys.exit(f"supervisor.py: {error}")
