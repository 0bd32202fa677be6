#!/usr/bin/env python3
"""A client of the fixed bootloader protocol over a serial port, with nothing but the standard library.

It knows the fixed part of docs/wire-protocol.md and shares no code with the rest of the project.

    client.py PORT FILE     erase what FILE needs, write it to 08000000, read it back, compare
"""

import os
import select
import sys
import termios
import tty

ACK, NACK, SYNC = 0x79, 0x1F, 0x7F
FLASH = 0x08000000


class Refused(Exception):
    """The chip answered NACK."""


class Silent(Exception):
    """The chip did not answer in time, or the port is gone."""


def xor(data):
    result = 0
    for byte in data:
        result ^= byte
    return bytes([result])


class Client:
    def __init__(self, port, baud=termios.B115200, timeout=2.0):
        self.timeout = timeout
        self.fd = os.open(port, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self.fd)
        settings = termios.tcgetattr(self.fd)
        settings[4] = settings[5] = baud
        try:
            termios.tcsetattr(self.fd, termios.TCSANOW, settings)
        except termios.error:
            pass  # a pseudo terminal that keeps its rate is as good

    def close(self):
        os.close(self.fd)

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    # ---- bytes

    def send(self, data):
        while data:
            data = data[os.write(self.fd, data):]

    def receive(self, count):
        data = b""
        while len(data) < count:
            if not select.select([self.fd], [], [], self.timeout)[0]:
                raise Silent(f"{len(data)} of {count} bytes came")
            try:
                piece = os.read(self.fd, count - len(data))
            except OSError as error:
                raise Silent(str(error)) from error
            if not piece:
                raise Silent("the port is gone")
            data += piece
        return data

    def acknowledged(self):
        answer = self.receive(1)[0]
        if answer == NACK:
            raise Refused()
        if answer != ACK:
            raise Silent(f"{answer:02X} where an answer belongs")

    def group(self, data):
        self.send(data)
        self.acknowledged()

    def command(self, opcode):
        self.group(bytes([opcode, opcode ^ 0xFF]))

    def address(self, address):
        data = address.to_bytes(4, "big")
        self.group(data + xor(data))

    # ---- commands

    def sync(self):
        """True when the chip was not in its command state yet."""
        self.send(bytes([SYNC]))
        answer = self.receive(1)[0]
        if answer not in (ACK, NACK):
            raise Silent(f"{answer:02X} where an answer belongs")
        return answer == ACK

    def get(self):
        """The version and the list of opcodes."""
        self.command(0x00)
        count = self.receive(1)[0]
        data = self.receive(1 + count)
        self.acknowledged()
        return data[0], data[1:]

    def get_version(self):
        self.command(0x01)
        data = self.receive(3)
        self.acknowledged()
        return tuple(data)

    def get_id(self):
        self.command(0x02)
        data = self.receive(self.receive(1)[0] + 1)
        self.acknowledged()
        return data

    def read(self, address, length):
        data = b""
        while len(data) < length:
            count = min(256, length - len(data))
            self.command(0x11)
            self.address(address + len(data))
            self.group(bytes([count - 1, (count - 1) ^ 0xFF]))
            data += self.receive(count)
        return data

    def write(self, address, data):
        for at in range(0, len(data), 256):
            piece = data[at:at + 256]
            piece += b"\xff" * (-len(piece) % 4)
            self.command(0x31)
            self.address(address + at)
            packet = bytes([len(piece) - 1]) + piece
            self.group(packet + xor(packet))

    def erase(self, sectors):
        """By the command that the chip has: the seventh of its list."""
        if self.get()[1][6] == 0x44:
            data = (len(sectors) - 1).to_bytes(2, "big") + b"".join(s.to_bytes(2, "big") for s in sectors)
            self.command(0x44)
        else:
            data = bytes([len(sectors) - 1]) + bytes(sectors)
            self.command(0x43)
        self.group(data + xor(data))

    def erase_everything(self):
        if self.get()[1][6] == 0x44:
            self.command(0x44)
            self.group(b"\xff\xff\x00")
        else:
            self.command(0x43)
            self.group(b"\xff\x00")

    def go(self, address):
        self.command(0x21)
        self.address(address)


def main(port, name):
    with open(name, "rb") as file:
        data = file.read()
    with Client(port) as client:
        client.sync()
        client.erase_everything()
        client.write(FLASH, data)
        return 0 if client.read(FLASH, len(data)) == data else 1


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2]))
