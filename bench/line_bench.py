#!/usr/bin/env python3
"""Many nests at once beside one alone: how much longer a unit takes, what the line itself takes of the processor and of
memory, and what the processes that make units take.

usage: line_bench.py BIN-DIR MAP-DIR [--nests N] [--kilobytes N] [--baud N] [--rounds N] [--plain]

The simulated chips take the time of their wire, and nothing for their flash. The line draws its screen on a terminal of 80
columns and 24 lines; with --plain it prints lines. A round is one nest alone, all of them at once, and all of them waiting
for their units to be taken out.
"""
import argparse
import contextlib
import fcntl
import os
import pathlib
import pty
import random
import sqlite3
import statistics
import struct
import subprocess
import sys
import tempfile
import termios
import threading
import time

GOALS = {"ratio": 1.02, "line": 0.5, "memory": 20.0, "worker": 1.5}
SETTLING = 0.5  # seconds: a line that has begun
WAITING = 3  # seconds
JOB = """format = 1
name = "line bench"
quantity = 1000000
[chip]
name = "ZV32F403A_1024K"
again = "make"
[image]
file = "fw.bin"
verify = "crc"
[[unit]]
at = 0x080FF800
value = "number"
series = "S"
as = "u32le"
"""


def station(place, nests, baud):
    text = f'format = 1\nstation = "bench"\nregister = "{place}/units.db"\n[link]\nkind = "usart"\nrate = {baud}\n'
    text += "[series.S]\nfirst = 1\nlast = 1000000\n"
    return text + "".join(f'[[nest]]\nname = "A{i}"\nport = "{place}/nests/A{i}"\n' for i in range(nests))


def chip(programs, place, number):
    command = [programs / "zv32-sim", "--chip", "ZV32F403A_1024K", "--baud-pace", "--unit", str(number), "--log", "/dev/null",
               "--usart", place / f"chips/A{number}"]
    process = subprocess.Popen(command, stdout=subprocess.PIPE)
    process.stdout.readline()  # "ready"
    return process


def share(begin, end):
    """Percent of a core."""
    return 100 * (end[0] - begin[0]) / (end[1] - begin[1])


class Line:
    """zv32-line station at work, with a terminal that somebody reads or without one."""

    def __init__(self, programs, maps, place, name, plain):
        ours, theirs = pty.openpty()
        fcntl.ioctl(theirs, termios.TIOCSWINSZ, struct.pack("HHHH", 24, 80, 0, 0))
        environment = {**os.environ, "ZV32_MAP_DIR": str(maps), "TERM": "dumb" if plain else "xterm", "LC_ALL": "C.UTF-8"}
        self.process = subprocess.Popen([programs / "zv32-line", "station", place / "job.toml", "--station", place / name],
                                        stdin=theirs, stdout=theirs, env=environment, start_new_session=True)
        os.close(theirs)
        self.reader = threading.Thread(target=self.read, args=(ours,))
        self.reader.start()

    @staticmethod
    def read(terminal):
        with contextlib.suppress(OSError):  # how a terminal ends
            while os.read(terminal, 65536):
                pass
        os.close(terminal)

    def processor(self):
        """Seconds of it, and when that was."""
        with open(f"/proc/{self.process.pid}/schedstat", encoding="ascii") as file:
            return int(file.read().split()[0]) / 1e9, time.monotonic()

    def seconds_of_workers(self):
        """Of those that have ended."""
        with open(f"/proc/{self.process.pid}/stat", encoding="ascii") as file:
            words = file.read().rpartition(")")[2].split()
        return (int(words[13]) + int(words[14])) / os.sysconf("SC_CLK_TCK")

    def peak_megabytes(self):
        with open(f"/proc/{self.process.pid}/status", encoding="ascii") as file:
            return next(int(line.split()[1]) for line in file if line.startswith("VmHWM")) / 1024

    def end(self):
        self.process.terminate()
        self.process.wait()
        self.reader.join()


class Bench:
    def __init__(self, given, place):
        self.given = given
        self.place = place
        self.ratios, self.shares, self.peaks, self.worker_shares, self.waits = [], [], [], [], []
        (place / "chips").mkdir()
        (place / "fw.bin").write_bytes(random.Random(4711).randbytes(given.kilobytes * 1024))
        (place / "job.toml").write_text(JOB)
        (place / "one.toml").write_text(station(place, 1, given.baud))
        (place / "all.toml").write_text(station(place, given.nests, given.baud))

    def units(self, count):
        """Seconds of the last ones, when there are so many in all."""
        told = "SELECT result, (julianday(ended) - julianday(started)) * 86400 FROM attempt ORDER BY id"
        while True:
            time.sleep(0.2)
            if not (self.place / "units.db").exists():
                continue
            with contextlib.closing(sqlite3.connect(f"file:{self.place}/units.db?mode=ro", uri=True)) as register:
                with contextlib.suppress(sqlite3.OperationalError):  # it is just being made
                    rows = register.execute(told).fetchall()
                    if any(result not in ("open", "pass") for result, _ in rows):
                        raise SystemExit("line_bench: a unit failed")
                    if len([row for row in rows if row[0] == "pass"]) >= count:
                        return [seconds for _, seconds in rows]

    @contextlib.contextmanager
    def line(self, name):
        """That waits for units."""
        line = Line(self.given.programs, self.given.maps, self.place, name, self.given.plain)
        time.sleep(SETTLING)
        yield line
        line.end()
        (self.place / "nests").unlink()

    def make(self, nests):
        """Plugs all chips in at once. Seconds of each unit."""
        self.made += nests
        (self.place / "nests").symlink_to("chips")
        return self.units(self.made)[-nests:]

    def round(self):
        with self.line("one.toml"):
            (alone,) = self.make(1)
        with self.line("all.toml") as line:
            begun = line.processor()
            times = self.make(self.given.nests)
            done = line.processor()
            time.sleep(WAITING)
            self.shares.append(share(begun, done))
            self.waits.append(share(done, line.processor()))
            self.worker_shares.append(100 * line.seconds_of_workers() / sum(times))
            self.peaks.append(line.peak_megabytes())
        self.ratios.append(statistics.median(times) / alone)
        print(f"one nest {alone:.3f} s, {self.given.nests} nests median {statistics.median(times):.3f} s, "
              f"slowest {max(times):.3f} s; the line {self.shares[-1]:.2f} % of a core", flush=True)

    def run(self):
        chips = [chip(self.given.programs, self.place, number) for number in range(self.given.nests)]
        self.made = 0
        try:
            for _ in range(self.given.rounds):
                self.round()
        finally:
            for process in chips:
                process.terminate()
                process.wait()
        found = {"ratio": statistics.median(self.ratios), "line": statistics.median(self.shares), "memory": max(self.peaks),
                 "worker": statistics.median(self.worker_shares)}
        print(f"median unit of {self.given.nests} beside one alone  {found['ratio']:.4f}, goal {GOALS['ratio']}\n"
              f"the line, while they are made  {found['line']:.2f} % of a core, goal {GOALS['line']}\n"
              f"the line, while all wait  {statistics.median(self.waits):.2f} % of a core\n"
              f"its peak memory  {found['memory']:.1f} MB, goal {GOALS['memory']:.0f}\n"
              f"each process that makes a unit  {found['worker']:.2f} % of a core, goal {GOALS['worker']}")
        return 0 if all(found[name] <= goal for name, goal in GOALS.items()) else 1


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("maps", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--nests", type=int, default=16)
    parser.add_argument("--kilobytes", type=int, default=64)
    parser.add_argument("--baud", type=int, default=115200)
    parser.add_argument("--rounds", type=int, default=3)
    parser.add_argument("--plain", action="store_true")
    given = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        return Bench(given, pathlib.Path(name)).run()


if __name__ == "__main__":
    sys.exit(main())
