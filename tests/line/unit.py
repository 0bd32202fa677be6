#!/usr/bin/env python3
"""Makes one unit as zv32-line does, over any link, by talking to the process that does it. Prints the steps and the end.

usage: unit.py LINK PORT CHIP [KEY=VALUE...] [--image FILE@ADDRESS] [--stop STEP] [--refuse] [--json] -- PROGRAM...

LINK is the name of a link, KEY=VALUE a member of the order in JSON: 'access="on"' 'sectors=[0,1]'.
--stop says "stop" when that step begins, --refuse says no to what can't be undone. PROGRAM is zv32-unit, with what
stands in front of it. Whatever passed has put down in the shared file that its last step of many commands was whole.
"""
import argparse
import json
import os
import socket
import subprocess
import sys

LINKS = {
    "usart": lambda port: {"kind": "usart", "port": port},
    "dfu": lambda port: {"kind": "dfu", "port": port},
    "i2c": lambda port: {"kind": "i2c", "port": port},
    "spi": lambda port: {"kind": "spi", "port": port},
    "can": lambda port: {"kind": "can", "port": port},
    "slcan": lambda port: {"kind": "can", "port": port, "rate": 1000000},
}
IMAGE = 16  # where it begins in the shared file, behind the progress


class Unit:
    """The process, and lines of JSON with it."""

    def __init__(self, program):
        ours, theirs = socket.socketpair()
        self.shared = os.memfd_create("unit")
        # The process finds its end at descriptor 3, and the shared file at 4.
        self.process = subprocess.Popen(["/bin/sh", "-c", f'exec "$@" 3<&{theirs.fileno()} 4<&{self.shared}', "sh", *program],
                                        pass_fds=[theirs.fileno(), self.shared], stdin=subprocess.DEVNULL)
        theirs.close()
        self.stream = ours.makefile("rw", encoding="utf-8")
        self.steps = []

    def say(self, message):
        self.stream.write(json.dumps(message) + "\n")
        self.stream.flush()

    def hear(self):
        line = self.stream.readline()
        message = json.loads(line) if line else {}
        if message.get("event") == "step":
            self.steps.append(message["step"])
        if message.get("result") == "pass":
            self.check_progress()
        return message or None

    def check_progress(self):
        steps, percent = os.pread(self.shared, IMAGE, 0)[:2]
        if steps < self.steps.index("erase") + 1 or steps > len(self.steps) or percent != 100:
            sys.exit(f"step {steps} of {self.steps} stands at {percent} %")


def lay(shared, words):
    """Writes files one after the other, and tells where in the chip they are."""
    runs = []
    os.lseek(shared, IMAGE, os.SEEK_SET)
    for word in words:
        name, _, address = word.rpartition("@")
        with open(name, "rb") as file:
            runs.append({"at": int(address, 16), "length": os.write(shared, file.read())})
    return runs


def answer(unit, message, given):
    event = message["event"]
    if event == "step" and not given.json:
        print(message["step"], flush=True)
    if event == "step" and message["step"] == given.stop:
        unit.say({"do": "stop"})
    elif event == "identified":
        unit.say({"do": "go", "image": lay(unit.shared, given.image)})
    elif event == "irreversible":
        print("irreversible:", ", ".join(message["what"]), flush=True)
        unit.say({"do": "stop" if given.refuse else "burn"})


def main():
    split = sys.argv.index("--")
    parser = argparse.ArgumentParser()
    parser.add_argument("link")
    parser.add_argument("port")
    parser.add_argument("chip")
    parser.add_argument("members", nargs="*")
    parser.add_argument("--image", action="append", default=[])
    parser.add_argument("--stop")
    parser.add_argument("--refuse", action="store_true")
    parser.add_argument("--json", action="store_true")
    given = parser.parse_intermixed_args(sys.argv[1:split])
    order = {"do": "make", "chip": given.chip, "link": LINKS[given.link](given.port), "eraseProtected": False,
             "sectors": [0], "verify": "crc", "options": {}, "protect": [], "otp": [], "access": "leave", "run": False}
    order.update((key, json.loads(value)) for key, value in (word.split("=", 1) for word in given.members))
    unit = Unit(sys.argv[split + 1:])
    unit.say(order)
    while (message := unit.hear()) is not None:
        if message["event"] == "end":
            break
        answer(unit, message, given)
    if message is None:
        print("the process has ended")
    elif given.json:
        print(json.dumps(message, indent=2))
    else:
        print(message["result"], *(str(message[key]) for key in ("cause", "text") if key in message))
    return unit.process.wait()


if __name__ == "__main__":
    sys.exit(main())
