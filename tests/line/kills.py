#!/usr/bin/env python3
"""Kills the line, and the process that makes a unit, at each of their system calls that writes, syncs or controls, and
looks at what is left: two simulated chips and one register for all kills. Prints a table; fails when anything is wrong.

usage: kills.py SOURCE-DIR BUILD-DIR [--every N]    only each N-th call
"""
import argparse
import hashlib
import json
import os
import pathlib
import shutil
import signal
import sqlite3
import subprocess
import sys
import tempfile
import time

CHIP = "ZV32F421_16K"
SIZE = 0x4000
CALLS = {"write": "write,pwrite64,writev,sendto,sendmsg", "sync": "fdatasync,fsync", "ioctl": "ioctl"}
MOST = 5000  # calls of a run; more would mean that it never completes
JOB = """format = 1
name = "kills"
quantity = 1000
[chip]
name = "{chip}"
again = "make"
[image]
file = "fw.bin"
verify = "crc"
[[unit]]
at = 0x08000400
value = "number"
series = "S"
as = "u32le"
"""
STATION = """format = 1
station = "one"
register = "{place}/units.db"
retries = 0
[link]
kind = "usart"
[series.S]
first = 1000
last = 9999
"""


class Place:
    """A directory with everything in it, and two chips."""

    def __init__(self, source, build):
        self.path = pathlib.Path(tempfile.mkdtemp(prefix="zv32-kills."))
        self.build = build
        self.mark = f"ZV32_KILLS={self.path}"
        self.environment = {**os.environ, "ZV32_MAP_DIR": str(source / "Map"), "ZV32_KILLS": str(self.path),
                            "TMPDIR": str(self.path / "tmp")}
        for name in ("tmp", "bin", "libexec"):
            (self.path / name).mkdir()
        # The program looks for its worker beside itself.
        shutil.copy2(build / "bin/zv32-line", self.path / "bin")
        self.worker(None)
        (self.path / "fw.bin").write_bytes(bytes(i * 7 % 251 for i in range(1500)))
        (self.path / "job.toml").write_text(JOB.format(chip=CHIP))
        station = STATION.format(place=self.path)
        for n in (1, 2):
            station += f'[[nest]]\nname = "A{n}"\nport = "{self.path}/port{n}"\n'
        (self.path / "station.toml").write_text(station)
        self.chips = [self.chip(n) for n in (1, 2)]
        self.known = {}
        self.closed = {}

    def chip(self, n):
        process = subprocess.Popen([self.build / "bin/zv32-sim", "--chip", CHIP, "--usart", self.path / f"port{n}", "--unit", str(n), "--log", "/dev/null"],
                                   stdout=subprocess.PIPE, stdin=subprocess.DEVNULL)
        process.stdout.readline()
        return process

    def worker(self, trace):
        """The worker, which strace kills where there is something to trace."""
        before = f"strace -D -qq -o /dev/null {trace} " if trace else ""
        script = self.path / "libexec/zv32-unit"
        script.unlink(missing_ok=True)
        script.write_text(f"#!/bin/sh\nexec {before}{self.build}/libexec/zv32-unit\n")
        script.chmod(0o755)

    def make(self, trace=""):
        words = ["strace", "-qq", "-o", "/dev/null", *trace.split()] if trace else []
        return subprocess.run([*words, self.path / "bin/zv32-line", "make", self.path / "job.toml", "--station", self.path / "station.toml", "--json"],
                              env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, timeout=120)

    def held(self, n):
        file = self.path / "held.bin"
        done = subprocess.run([self.build / "bin/ZV32_ISP_Console", "-com", "--pn", self.path / f"port{n}", "-u", "--fn", file],
                              env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, timeout=60)
        assert done.returncode == 0, "a chip can't be read"
        held = file.read_bytes()
        file.unlink()
        return held

    def processes(self):
        found = []
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if self.mark.encode() in (process / "environ").read_bytes().split(b"\0"):
                    found.append(int(process.name))
            except OSError:
                pass
        return found

    def end(self):
        for chip in self.chips:
            chip.terminate()
            chip.wait()
        shutil.rmtree(self.path)

    def leftovers(self, *killed):
        deadline = time.monotonic() + 10
        while self.processes() and time.monotonic() < deadline:
            time.sleep(0.01)
        assert not self.processes(), f"processes are left: {self.processes()}"
        allowed = {"tmp", "bin", "libexec", "fw.bin", "job.toml", "station.toml", "port1", "port2", "units.db", "units.db-wal", "units.db-shm", *killed}
        left = {p.name for p in self.path.iterdir()} - allowed | {p.name for p in (self.path / "tmp").iterdir()}
        assert not left, f"files are left: {left}"

    def look(self, told, mayBeOpen):
        """The register after a run, whose records are those that were told."""
        database = sqlite3.connect(self.path / "units.db")
        one = lambda sql: database.execute(sql).fetchall()
        assert one("PRAGMA integrity_check") == [("ok",)], "the register is not whole"
        assert not one("PRAGMA foreign_key_check"), "the register is not whole"
        numbers = one("SELECT uid, n FROM number")
        assert len({uid for uid, _ in numbers}) == len({n for _, n in numbers}) == len(numbers), "a number is not unique"
        for uid, n in numbers:
            assert self.known.setdefault(uid, n) == n, "a number has changed"
        assert mayBeOpen or not one("SELECT * FROM attempt WHERE result = 'open'"), "an attempt is open"
        rows = one("SELECT id, nest, result, text FROM attempt JOIN record ON attempt = id")
        assert len(rows) == one("SELECT count(*) FROM attempt")[0][0], "an attempt has no record"
        for attempt, nest, result, text in rows:
            if result != "open":
                assert self.closed.setdefault(attempt, text) == text, "a closed record has changed"
                assert json.loads(text)["result"] == result, "record and attempt differ"
        # What was told is in the register.
        for record in told:
            assert self.closed[record["attempt"]] == json.dumps(record, separators=(",", ":"), ensure_ascii=False), "told, and not kept"
        # Whoever passed last is what the chip holds, as nothing has been at it since.
        for nest in (1, 2):
            last = [row for row in rows if row[1] == f"A{nest}"][-1:]
            if last and last[0][2] == "pass":
                self.right(nest, json.loads(last[0][3]))
        database.close()

    def right(self, nest, record):
        wanted = bytearray(b"\xff" * SIZE)
        image = (self.path / "fw.bin").read_bytes()
        wanted[: len(image)] = image
        wanted[0x400:0x404] = record["number"].to_bytes(4, "little")
        assert self.held(nest) == bytes(wanted), "a unit passed, and is not right"
        assert record["unit_image"] == hashlib.sha256(wanted[: len(image)]).hexdigest(), "the record tells of another image"


def told(run):
    # The last line may have been cut in the middle.
    return [json.loads(line) for line in run.stdout.split("\n")[:-1]]


def kill(place, whom, calls, n):
    """One kill, and what is left after it. False when the run completed before."""
    trace = f"-e trace={calls} -e inject={calls}:signal=KILL:when={n}"
    place.worker(trace if whom == "worker" else None)
    run = place.make(trace if whom == "line" else "")
    completed = run.returncode == 0
    if whom == "line":
        assert run.returncode in (0, -signal.SIGKILL), f"status {run.returncode}: {run.stderr}"
    else:
        assert run.returncode in (0, 4), f"status {run.returncode}: {run.stderr}"
        assert all(record["result"] == "pass" or record["cause"] in ("worker-crash", "no-answer", "link-lost") for record in told(run)), run.stdout
    place.leftovers("units.db-journal")  # the next start undoes what was begun
    register = place.path / "units.db"
    if register.exists() and register.stat().st_size:
        try:
            place.look(told(run), whom == "line")
        except sqlite3.OperationalError as failure:  # killed before there was a table
            assert "no such table" in str(failure) and not place.known, failure
    place.worker(None)
    again = place.make()
    assert again.returncode == 0, f"the next start: status {again.returncode}: {again.stdout} {again.stderr}"
    place.leftovers()
    place.look(told(again), False)
    return not completed


def main():
    words = argparse.ArgumentParser()
    words.add_argument("source", type=pathlib.Path)
    words.add_argument("build", type=pathlib.Path)
    words.add_argument("--every", type=int, default=1)
    words = words.parse_args()
    # Where a sanitizer looks for leaks nobody else can trace.
    os.environ["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
    place = Place(words.source.resolve(), words.build.resolve())
    total = 0
    try:
        for whom in ("line", "worker"):
            for name, calls in CALLS.items():
                count = 0
                for n in range(1, MOST, words.every):
                    try:
                        if not kill(place, whom, calls, n):
                            break
                    except AssertionError as failure:
                        print(f"{whom}, {name} {n}: {failure}")
                        return 1
                    count += 1
                else:
                    print(f"{whom}, {name}: never completes")
                    return 1
                total += count
                print(f"{whom:7} {name:6} {count:4} kills", flush=True)
    finally:
        place.end()
    print(f"{total} kills, nothing wrong")
    return 0


if __name__ == "__main__":
    sys.exit(main())
