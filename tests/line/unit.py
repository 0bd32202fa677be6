#!/usr/bin/env python3
"""Makes one unit as zv32-line does, over any link, by talking to the process that does it. Prints the steps and the end.

usage: unit.py LINK PORT CHIP [KEY=VALUE...] [--image FILE@ADDRESS] [--stop STEP] [--refuse] [--json] -- PROGRAM...

LINK is the name of a link, KEY=VALUE a member of the order in JSON: 'access="on"' 'sectors=[0,1]'.
--stop says "stop" when that step begins, --refuse says no to what can't be undone. PROGRAM is zv32-unit, with what
stands in front of it. Whatever is made, there is one percent in each half of a second at most.
"""
import argparse
import collections
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
PAUSE = 500  # ms, in each of which there is one percent at most


class Unit:
    """The process, and lines of JSON with it."""

    def __init__(self, program):
        ours, theirs = socket.socketpair()
        self.image = os.memfd_create("unit")
        # The process finds its end at descriptor 3, and the image at 4.
        self.process = subprocess.Popen(["/bin/sh", "-c", f'exec "$@" 3<&{theirs.fileno()} 4<&{self.image}', "sh", *program],
                                        pass_fds=[theirs.fileno(), self.image], stdin=subprocess.DEVNULL)
        theirs.close()
        self.stream = ours.makefile("rw", encoding="utf-8")
        self.step = None
        self.percents = collections.Counter()  # by step

    def say(self, message):
        self.stream.write(json.dumps(message) + "\n")
        self.stream.flush()

    def hear(self):
        line = self.stream.readline()
        message = json.loads(line) if line else {}
        if message.get("event") == "step":
            self.step = message["step"]
            self.percents[self.step] = 0
        elif message.get("event") == "percent":
            self.percents[self.step] += 1
        for step, time in message.get("ms", {}).items():
            if self.percents[step] > time // PAUSE + 2:
                sys.exit(f"{step}: {self.percents[step]} percents in {time} ms")
        return message or None


def lay(image, words):
    """Writes files one after the other, and tells where in the chip they are."""
    runs = []
    for word in words:
        name, _, address = word.rpartition("@")
        with open(name, "rb") as file:
            runs.append({"at": int(address, 16), "length": os.write(image, file.read())})
    return runs


def answer(unit, message, given):
    event = message["event"]
    if event == "step" and not given.json:
        print(message["step"], flush=True)
    if event == "step" and message["step"] == given.stop:
        unit.say({"do": "stop"})
    elif event == "identified":
        unit.say({"do": "go", "image": lay(unit.image, given.image)})
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
