#!/usr/bin/env python3
"""Plugs simulated chips in and out of the nests of a line, in no order, and holds to it that each unit was made once, at
the nest where it was, and that what the line told of a nest was true of the chip in it.

usage: replug.py BIN-DIR MAP-DIR [--nests N] [--rounds N] [--seed N]

A round plugs a new chip in at each nest. In some, the chips are taken out while they are made and go on at another nest; in
some, those that are made come to another nest, and none may be made again; in some, another chip is there before anybody
could see that the first one has gone.
"""
import argparse
import os
import pathlib
import random
import select
import sqlite3
import struct
import subprocess
import sys
import tempfile
import time

CHIP = "ZV32L021_16K"
STEPS = ("connect", "identify", "erase", "write", "verify", "PASS")
MARKER = b"unit follows it:"
PATIENCE = 60  # seconds, for a machine that does much else
JOB = f"""format = 1
name = "replug"
quantity = 1000000
[chip]
name = "{CHIP}"
[image]
file = "fw.bin"
verify = "crc"
[[unit]]
at = 0x08000010
value = "number"
series = "S"
as = "u32le"
[[unit]]
at = 0x08000014
value = "uid"
as = "hex"
"""


class Chip:
    """A simulated chip of its own. Plugged in it is a process, whose port is the nest; it keeps its memory."""

    plugged = set()

    def __init__(self, place, programs, number):
        self.state = place / f"{number}.state"
        self.words = [programs / "zv32-sim", "--chip", CHIP, "--unit", str(number), "--state", self.state, "--log", "/dev/null"]
        self.made_at = None  # a nest
        self.told = None  # the number that the line told there

    def plug(self, port):
        self.process = subprocess.Popen([*self.words, "--usart", port], stdout=subprocess.PIPE)
        Chip.plugged.add(self)

    def unplug(self):
        self.process.terminate()

    def wait_until_out(self):
        self.process.wait()
        self.process.stdout.close()
        Chip.plugged.discard(self)

    def memory(self):
        """Number and identifier that are in its flash; None where nothing is."""
        memory = self.state.read_bytes()
        self.state.unlink()
        at = memory.find(MARKER)
        if at < 0:
            return None
        number, uid = struct.unpack_from("<I12s", memory, at + len(MARKER))
        return number, uid.hex()


class Line:
    """zv32-line at work, and what it tells of each nest."""

    def __init__(self, command, environment):
        self.process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
        self.told = {}
        self.passed = {}  # numbers since the nest was empty
        self.rest = b""
        self.lines = []

    def read(self, seconds, ended=False):
        if not select.select([self.process.stdout], [], [], seconds)[0]:
            return
        got = os.read(self.process.stdout.fileno(), 65536)
        if not got and ended:
            return
        if not got:
            raise SystemExit("replug: the line has ended\n" + "\n".join(self.lines[-20:]))
        *lines, self.rest = (self.rest + got).split(b"\n")
        for line in lines:
            self.lines.append(line.decode())
            nest, _, words = line.decode().partition(" ")
            self.told[nest] = words
            if words.startswith("PASS"):
                self.passed.setdefault(nest, []).append(int(words.split()[1]))

    def until(self, nest, beginning):
        end = time.monotonic() + PATIENCE
        while not self.told.get(nest, "").startswith(beginning):
            if time.monotonic() > end:
                raise SystemExit(f"replug: {nest} never told {beginning}\n" + "\n".join(self.lines[-40:]))
            self.read(1)
        return self.told[nest]

    def end(self):
        self.process.terminate()
        end = time.monotonic() + PATIENCE
        while self.process.poll() is None and time.monotonic() < end:
            self.read(0.1, ended=True)
        self.read(0, ended=True)
        self.process.stdout.close()
        return self.process.wait()


class Replug:
    def __init__(self, arguments, place):
        self.programs = arguments.programs
        self.place = place
        self.random = random.Random(arguments.seed)
        self.nests = [f"A{i + 1}" for i in range(arguments.nests)]
        self.chips = 0
        self.wrong = []
        self.made = {}  # identifier: number, nest
        self.taken_out = self.again = 0
        (place / "nests").mkdir()
        (place / "fw.bin").write_bytes(MARKER + bytes(16) + bytes(range(256)) * 8)
        (place / "job.toml").write_text(JOB)
        station = f'format = 1\nstation = "replug"\nregister = "{place}/units.db"\nstop_after = 0\nretries = 0\n[link]\nkind = "usart"\n'
        for nest in self.nests:
            station += f'[[nest]]\nname = "{nest}"\nport = "{place}/nests/{nest}"\n'
        (place / "station.toml").write_text(station + "[series.S]\nfirst = 1\nlast = 1000000\n")
        self.line = Line([self.programs / "zv32-line", "station", place / "job.toml", "--station", place / "station.toml"],
                         {**os.environ, "ZV32_MAP_DIR": str(arguments.maps)})

    def plug(self, nest, chip):
        self.line.passed[nest] = []
        self.line.told.pop(nest, None)  # what is told from here on is told of this chip
        chip.plug(self.place / "nests" / nest)

    def take_out(self, nests, chips):
        """All that was told of a nest before it is empty was told of the chip that was in it."""
        for chip in chips:
            chip.unplug()
        for nest, chip in zip(nests, chips):
            chip.wait_until_out()
            self.line.until(nest, "empty")
            self.note(nest, chip)

    def note(self, nest, chip):
        for number in self.line.passed[nest]:
            if chip.made_at:
                self.wrong.append(f"{nest} told PASS {number} of a chip that was made at {chip.made_at}")
            chip.made_at, chip.told = nest, number

    def plug_in(self, chips):
        at = list(zip(self.nests, chips))
        self.random.shuffle(at)
        for nest, chip in at:
            self.plug(nest, chip)

    def see(self, chips):
        """Each is made where it is, or refused where it was made before."""
        for nest, chip in zip(self.nests, chips):
            self.line.until(nest, "REFUSED" if chip.made_at else "PASS")
            self.again += 1 if chip.made_at else 0

    def new_chips(self):
        chips = [Chip(self.place, self.programs, self.chips + i) for i in range(len(self.nests))]
        self.chips += len(chips)
        return chips

    def exchange(self, chips):
        """A new chip takes the place of each, and no moment is between them: the link to its port replaces that to the other."""
        others = self.new_chips()
        for nest, chip in zip(self.nests, chips):
            self.note(nest, chip)
        self.plug_in(others)
        self.see(others)
        for chip in chips:
            chip.unplug()
            chip.wait_until_out()
            self.hold(chip)
        return others

    def round(self, kind):
        chips = self.new_chips()
        self.plug_in(chips)
        if kind == 1:  # they leave while they are made, and go on at another nest
            for nest, chip in zip(self.nests, chips):
                self.line.until(nest, STEPS[self.random.randrange(len(STEPS)):])
                chip.unplug()
            self.take_out(self.nests, chips)
            self.taken_out += sum(chip.made_at is None for chip in chips)
        else:
            self.see(chips)
        if kind == 2:
            self.take_out(self.nests, chips)
        if kind == 3:
            chips = self.exchange(chips)
        elif kind > 0:
            chips = chips[1:] + chips[:1]
            self.plug_in(chips)
            self.see(chips)
        self.take_out(self.nests, chips)
        for chip in chips:
            self.hold(chip)

    def rounds(self, count):
        for number in range(count):
            self.round(number % 4)

    def hold(self, chip):
        found = chip.memory()
        if found is None:
            self.wrong.append(f"{chip.made_at} told PASS {chip.told} of a chip that holds nothing")
            return
        number, uid = found
        if number != chip.told:
            self.wrong.append(f"{chip.made_at} told PASS {chip.told} of the chip {uid} that holds {number}")
        if uid in self.made:
            self.wrong.append(f"two chips are {uid}")
        self.made[uid] = number, chip.made_at

    def hold_register(self):
        books = sqlite3.connect(self.place / "units.db")
        passed = {}
        for uid, number, nest in books.execute("SELECT uid, n, nest FROM attempt WHERE result = 'pass'"):
            passed.setdefault(uid, []).append((number, nest))
        for uid, unit in self.made.items():
            if passed.get(uid) != [unit]:
                self.wrong.append(f"the chip {uid} is {unit}, and the register has {passed.get(uid)}")
        for uid in passed.keys() - self.made.keys():
            self.wrong.append(f"the register has {uid}, which nobody plugged in")
        (open_ones,) = books.execute("SELECT count(*) FROM attempt WHERE result = 'open'").fetchone()
        if open_ones:
            self.wrong.append(f"{open_ones} attempts are open")
        (again,) = books.execute("SELECT count(*) FROM attempt WHERE result = 'refused' AND cause = 'already-made'").fetchone()
        if again != self.again:
            self.wrong.append(f"{self.again} chips that were made came again, and {again} attempts are refused for it")
        books.close()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("maps", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--nests", type=int, default=16)
    parser.add_argument("--rounds", type=int, default=200)
    parser.add_argument("--seed", type=int, default=1)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as place:
        replug = Replug(arguments, pathlib.Path(place))
        begun = time.monotonic()
        try:
            replug.rounds(arguments.rounds)
        finally:
            status = replug.line.end()
            for chip in Chip.plugged:
                chip.process.kill()
        replug.hold_register()
        if status not in (0, 4):  # some units may have failed: those that were taken out
            replug.wrong.append(f"the line ended with {status}")
        if "what is being made is finished; Ctrl-C again leaves it" not in replug.line.lines:
            replug.wrong.append("the operator was not told what becomes of units that are being made")
    print("\n".join(replug.wrong[:50]))
    print(f"{arguments.rounds} rounds at {arguments.nests} nests: {len(replug.made)} units made, {replug.taken_out} taken out while they "
          f"were made, {replug.again} refused at another nest, {len(replug.wrong)} wrong, {time.monotonic() - begun:.0f} s")
    return 1 if replug.wrong else 0


if __name__ == "__main__":
    sys.exit(main())
