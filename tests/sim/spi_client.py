#!/usr/bin/env python3
"""A client of the bootloader protocol over SPI, with nothing but the standard library.

It knows the SPI part of docs/wire-protocol.md and shares no code with the rest of the project.

    spi_client.py NODE FILE     erase everything, write FILE to 08000000, read it back, compare
"""

import ctypes
import fcntl
import os
import struct
import sys
import time

START, ACK, NACK, OPENING = 0x5A, 0x79, 0x1F, 0x7F
FLASH = 0x08000000


class Refused(Exception):
    """The chip answered NACK."""


class Silent(Exception):
    """The chip did not answer in time, or something else answered."""


def xor(data):
    result = 0
    for byte in data:
        result ^= byte
    return bytes([result])


class Spi:
    def __init__(self, node, speed=1000000, timeout=2.0):
        self.fd = os.open(node, os.O_RDWR)
        self.speed = speed
        self.timeout = timeout
        self.received = b""

    def close(self):
        os.close(self.fd)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    # ---- messages

    def transfer(self, *pieces, cs_change=()):
        """One call with a transfer for each piece; what came in. `cs_change`: the numbers of those that have it."""
        out = [ctypes.create_string_buffer(piece, len(piece)) for piece in pieces]
        back = [ctypes.create_string_buffer(len(piece)) for piece in pieces]
        transfers = b"".join(
            struct.pack("=QQIIHBBBBBB", ctypes.addressof(out[i]), ctypes.addressof(back[i]), len(piece), self.speed,
                        0, 8, i in cs_change, 0, 0, 0, 0)
            for i, piece in enumerate(pieces))
        fcntl.ioctl(self.fd, 0x40006B00 | len(transfers) << 16, transfers)
        return b"".join(bytes(piece) for piece in back)

    def set_mode(self, mode):
        fcntl.ioctl(self.fd, 0x40016B01, bytes([mode]))

    def message(self, group):
        self.received = b""
        self.transfer(bytes([START]) + group)

    def answer(self, length):
        """The next answer, which has so many bytes."""
        deadline = time.monotonic() + self.timeout
        while len(self.received) < 1 + length:
            self.received = (self.received + self.transfer(bytes(32))).lstrip(b"\0")
            if self.received and self.received[0] != START:
                raise Silent(f"{self.received[0]:02X} where 5A belongs")
            if time.monotonic() > deadline:
                raise Silent("no answer")
        answer = self.received[1:1 + length]
        self.received = self.received[1 + length:].lstrip(b"\0")
        return answer

    def acknowledged(self):
        answer = self.answer(1)[0]
        if answer == NACK:
            raise Refused()
        if answer != ACK:
            raise Silent(f"{answer:02X} where an answer belongs")

    def group(self, data):
        self.message(data)
        self.acknowledged()

    def reply(self, length):
        data = self.answer(length + 1)
        if xor(data) != b"\0":
            raise Silent("a damaged reply")
        return data[:-1]

    # ---- commands

    def open(self):
        """True when the chip was not in its command state yet."""
        self.message(bytes([OPENING]))
        return self.answer(1)[0] == ACK

    def command(self, opcode):
        self.group(bytes([opcode, opcode ^ 0xFF]))

    def address(self, address):
        data = address.to_bytes(4, "big")
        self.group(data + xor(data))

    def get_id(self):
        self.command(0x02)
        data = self.reply(6)
        self.acknowledged()
        return data[1:]

    def read(self, address, length):
        data = b""
        while len(data) < length:
            count = min(256, length - len(data))
            self.command(0x11)
            self.address(address + len(data))
            self.group(bytes([count - 1, (count - 1) ^ 0xFF]))
            data += self.reply(count)
        return data

    def write(self, address, data):
        for at in range(0, len(data), 256):
            piece = data[at:at + 256]
            piece += b"\xff" * (-len(piece) % 4)
            self.command(0x31)
            self.address(address + at)
            packet = bytes([len(piece) - 1]) + piece
            self.group(packet + xor(packet))

    def erase_everything(self):
        self.command(0x44)
        self.group(b"\xff\xff\x00")


def main(node, name):
    with open(name, "rb") as file:
        data = file.read()
    with Spi(node) as spi:
        spi.open()
        spi.erase_everything()
        spi.write(FLASH, data)
        return 0 if spi.read(FLASH, len(data)) == data else 1


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2]))
