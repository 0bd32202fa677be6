#!/usr/bin/env python3
"""How long a line takes from plugging something in at a nest to the first byte that it sends there.

usage: first_byte.py BIN-DIR MAP-DIR [--tries N]

A pseudo terminal is plugged in by a link to it, and is silent; the nests beside it have nothing. Prints median, slowest and
how many milliseconds of the processor all tries took of the line itself. The goal is 500 ms.
"""
import argparse
import os
import pathlib
import select
import statistics
import subprocess
import sys
import tempfile
import time
import tty

NESTS = 16
GOAL = 0.5  # seconds
JOB = """format = 1
name = "first byte"
quantity = 1
[chip]
name = "ZV32L021_16K"
[image]
file = "fw.bin"
verify = "crc"
"""


def station(place):
    text = f'format = 1\nstation = "bench"\nregister = "{place}/units.db"\nstop_after = 0\nretries = 0\n[link]\nkind = "usart"\n'
    return text + "".join(f'[[nest]]\nname = "A{i}"\nport = "{place}/nests/A{i}"\n' for i in range(NESTS))


def seconds_to_first_byte(link):
    """Of one plugging in."""
    ours, theirs = os.openpty()
    tty.setraw(theirs)
    node = os.ttyname(theirs)
    begun = time.monotonic()
    link.symlink_to(node)
    if not select.select([ours], [], [], 30)[0]:
        raise SystemExit("first_byte: nothing came")
    taken = time.monotonic() - begun
    link.unlink()
    os.close(ours)
    os.close(theirs)
    return taken


def until(lines, text):
    for line in lines:
        if text in line:
            return
    raise SystemExit(f"first_byte: the line ended, and did not tell {text}")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("programs", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("maps", type=lambda path: pathlib.Path(path).resolve())
    parser.add_argument("--tries", type=int, default=40)
    arguments = parser.parse_args()
    with tempfile.TemporaryDirectory() as name:
        place = pathlib.Path(name)
        (place / "nests").mkdir()
        (place / "fw.bin").write_bytes(bytes(range(256)))
        (place / "job.toml").write_text(JOB)
        (place / "station.toml").write_text(station(place))
        line = subprocess.Popen([arguments.programs / "zv32-line", "station", place / "job.toml", "--station", place / "station.toml"],
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                                env={**os.environ, "ZV32_MAP_DIR": str(arguments.maps)})
        until(line.stdout, "first byte")
        taken = []
        for number in range(arguments.tries):
            nest = f"A{number % NESTS}"
            time.sleep(0.05 + 0.013 * (number % 20))  # at every moment between two looks
            taken.append(seconds_to_first_byte(place / "nests" / nest))
            until(line.stdout, f"{nest} FAIL")
            until(line.stdout, f"{nest} empty")
        line.terminate()
        line.wait()
    print(f"from plugging in to the first byte, {arguments.tries} tries: median {statistics.median(taken) * 1000:.0f} ms, "
          f"slowest {max(taken) * 1000:.0f} ms, goal {GOAL * 1000:.0f} ms")
    return 0 if max(taken) <= GOAL else 1


if __name__ == "__main__":
    sys.exit(main())
