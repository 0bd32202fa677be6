#!/usr/bin/env python3
"""Measures what zv32-line tells of a register of many units beside the sqlite3 shell, which asks it for the same:
interleaved, the best of some runs, as ratios, with the seconds beside them, and the peak of memory, which a register of a
tenth as many units must not bring down.

usage: books_bench.py BUILD-DIR [--units N] [--register FILE]   (a register that is there is used as it is)
"""
import argparse
import contextlib
import os
import subprocess
import sys
import tempfile
import time

RUNS = 3
LOOKING = 0.002  # seconds
GROWS = 1.5  # where it does not
COUNTED = """SELECT nest, count(*), sum(result = 'pass'), sum(result = 'fail'), sum(result = 'refused'),
    sum(result = 'interrupted'), sum(result = 'open'),
    avg(CASE result WHEN 'pass' THEN julianday(ended) - julianday(started) END) FROM attempt GROUP BY nest;
    SELECT cause, count(*) FROM attempt WHERE cause IS NOT NULL GROUP BY cause;
    SELECT count(DISTINCT uid), count(DISTINCT CASE result WHEN 'pass' THEN uid END) FROM attempt;"""
RECORDS = "SELECT text FROM attempt JOIN record ON attempt = id ORDER BY id"
KEYS = ["attempt", "station", "nest", "order", "uid", "series", "number", "plan", "result", "cause", "started", "options.before", "ms.write"]
TABLE = "SELECT " + ", ".join(f"json_extract(text, '$.{key}')" for key in KEYS) + " FROM attempt JOIN record ON attempt = id ORDER BY id"


def run(command):
    """Seconds that it takes, and megabytes at most, as seen every few milliseconds."""
    peak = 0
    began = time.monotonic()
    process = subprocess.Popen(command, stdout=subprocess.DEVNULL)
    while process.poll() is None:
        with contextlib.suppress(OSError), open(f"/proc/{process.pid}/status", encoding="ascii") as file:
            peak = max([peak] + [int(line.split()[1]) / 1024 for line in file if line.startswith("VmHWM")])
        time.sleep(LOOKING)
    taken = time.monotonic() - began
    if process.returncode != 0:
        raise SystemExit(f"books_bench: {command[0]} ended with {process.returncode}")
    return taken, peak


class Bench:
    def __init__(self, given, scratch):
        self.given = given
        self.whole = self.station(scratch, "whole", given.units, given.register)
        self.tenth = self.station(scratch, "tenth", given.units // 10, None)
        self.good = True

    def station(self, scratch, name, units, register):
        """A line's command behind its verb, and its register."""
        register = os.path.abspath(register or f"{scratch}/{name}.db")
        if not os.path.exists(register):
            began = time.monotonic()
            subprocess.run([f"{self.given.build}/bin/fill-register", register, str(units)], check=True)
            print(f"{units} attempts filled in, {time.monotonic() - began:.0f} s", flush=True)
        file = f"{scratch}/{name}.toml"
        with open(file, "w", encoding="utf-8") as station:
            station.write(f'format = 1\nstation = "bench"\nregister = "{register}"\n')
        return ["--station", file], register

    def measure(self, words, shell, goal):
        ours = [f"{self.given.build}/bin/zv32-line"] + words
        (station, register), (other, _) = self.whole, self.tenth
        pairs = [run(ours + station) + run(["sqlite3", "-readonly", register] + shell) for _ in range(RUNS)]
        taken, _, theirs, _ = (min(column) for column in zip(*pairs))
        _, peak, _, their_peak = (max(column) for column in zip(*pairs))
        tenth = run(ours + other)[1]
        print(f"{' '.join(words):<14} {taken:7.2f} s  {theirs:7.2f} s  {taken / theirs:6.2f}   {goal:4} s  {peak:9.1f} MB  "
              f"{tenth:8.1f} MB  {their_peak:7.1f} MB", flush=True)
        self.good = self.good and taken <= goal and peak <= GROWS * tenth

    def run(self):
        print("               zv32-line    sqlite3   ratio  at most  its memory  of a tenth    sqlite3's")
        self.measure(["stats"], [COUNTED], 1.5)
        self.measure(["units", "--json"], [RECORDS], 10)
        self.measure(["units", "--csv"], ["-csv", TABLE], 10)
        return 0 if self.good else 1


def main():
    words = argparse.ArgumentParser()
    words.add_argument("build")
    words.add_argument("--units", type=int, default=1000000)
    words.add_argument("--register")
    with tempfile.TemporaryDirectory() as scratch:
        return Bench(words.parse_args(), scratch).run()


if __name__ == "__main__":
    sys.exit(main())
