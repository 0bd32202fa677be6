#!/usr/bin/env python3
"""Measures what zv32-line tells of a register of many units beside the sqlite3 shell, which asks it for the same:
interleaved, the best of some runs, as ratios, with the seconds beside them.

usage: books_bench.py BUILD-DIR [--units N] [--register FILE]   (a register that is there is used as it is)
"""
import argparse
import os
import subprocess
import tempfile
import time

RUNS = 3
COUNTED = """SELECT nest, count(*), sum(result = 'pass'), sum(result = 'fail'), sum(result = 'refused'),
    sum(result = 'interrupted'), sum(result = 'open'),
    avg(CASE result WHEN 'pass' THEN julianday(ended) - julianday(started) END) FROM attempt GROUP BY nest;
    SELECT cause, count(*) FROM attempt WHERE cause IS NOT NULL GROUP BY cause;
    SELECT count(DISTINCT uid), count(DISTINCT CASE result WHEN 'pass' THEN uid END) FROM attempt;"""
RECORDS = "SELECT text FROM attempt JOIN record ON attempt = id ORDER BY id"
KEYS = ["attempt", "station", "nest", "order", "uid", "series", "number", "plan", "result", "cause", "started", "options.before", "ms.write"]
TABLE = "SELECT " + ", ".join(f"json_extract(text, '$.{key}')" for key in KEYS) + " FROM attempt JOIN record ON attempt = id ORDER BY id"


def seconds(command):
    began = time.monotonic()
    subprocess.run(command, stdout=subprocess.DEVNULL, check=True)
    return time.monotonic() - began


def measure(name, ours, theirs, goal):
    pairs = [(seconds(ours), seconds(theirs)) for _ in range(RUNS)]
    best = [min(times) for times in zip(*pairs)]
    print(f"{name:<14} {best[0]:7.2f} s  {best[1]:7.2f} s  {best[0] / best[1]:6.2f}  at most {goal} s", flush=True)


def main():
    words = argparse.ArgumentParser()
    words.add_argument("build")
    words.add_argument("--units", type=int, default=1000000)
    words.add_argument("--register")
    asked = words.parse_args()
    with tempfile.TemporaryDirectory() as scratch:
        register = os.path.abspath(asked.register or f"{scratch}/units.db")
        if not os.path.exists(register):
            subprocess.run([f"{asked.build}/bin/fill-register", register, str(asked.units)], check=True)
        station = f"{scratch}/station.toml"
        with open(station, "w", encoding="utf-8") as file:
            file.write(f'format = 1\nstation = "bench"\nregister = "{register}"\n')
        line = [f"{asked.build}/bin/zv32-line"]
        shell = ["sqlite3", "-readonly", register]
        print("               zv32-line    sqlite3   ratio")
        measure("stats", line + ["stats", "--station", station], shell + [COUNTED], 1.5)
        measure("units --json", line + ["units", "--station", station, "--json"], shell + [RECORDS], 10)
        measure("units --csv", line + ["units", "--station", station, "--csv"], shell + ["-csv", TABLE], 10)


main()
