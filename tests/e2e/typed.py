#!/usr/bin/env python3
"""Types the console blocks of README.md as a person would who has just run ./try.sh, and compares what a terminal
shows with what stands there.

usage: typed.py SOURCE-DIR BUILD-DIR

All that is prepared is where that person's shell starts: in the checkout, with what ./try.sh has left in build/. Every
command has to end with 0 unless the page goes on with `echo $?`.
"""
import os
import pathlib
import queue
import re
import subprocess
import sys
import tempfile
import threading

PATIENCE = 30  # seconds for one line; a busy machine is slow
HOME = "/home/you/zv32"  # where the page has the checkout


def blocks(text):
    """(command, lines that it shows), in the order of the page."""
    for block in re.findall(r"^```console\n(.*?)^```", text, re.M | re.S):
        for line in block.splitlines():
            if line.startswith("$ "):
                command, shown = line[2:], []
                yield command, shown
            else:
                shown.append(line)


def checkout(place, source, build):
    """What the person has: the tree, and the two directories that try.sh leaves in build/."""
    for entry in source.iterdir():
        if entry.name not in ("build", ".git"):
            (place / entry.name).symlink_to(entry)
    (place / "build/try").mkdir(parents=True)
    (place / "build/release").symlink_to(build)
    (place / "build/try/Map").symlink_to("../../Map")


class Terminal:
    def __init__(self, place):
        self.place = str(place)
        environment = {"HOME": self.place, "PATH": "/usr/local/bin:/usr/bin:/bin", "LANG": "C.UTF-8", "TERM": "dumb"}
        environment.update((name, value) for name, value in os.environ.items() if name.endswith("SAN_OPTIONS"))
        self.shell = subprocess.Popen(["/bin/bash", "--norc", "--noprofile"], stdin=subprocess.PIPE, cwd=place,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, env=environment)
        self.lines = queue.Queue()
        threading.Thread(target=self.listen, daemon=True).start()

    def listen(self):
        """A carriage return goes back to the start of the line."""
        for line in iter(self.shell.stdout.readline, b""):
            self.lines.put(line.decode().rstrip("\n").split("\r")[-1].replace(self.place, HOME))

    def enter(self, text):
        self.shell.stdin.write(text.encode() + b"\n")
        self.shell.stdin.flush()

    def type(self, command, expected):
        """What it shows, and its exit status. What runs on in the background may be late with its lines."""
        self.enter(command)
        self.enter('typed=$?; echo "END $typed"; (exit $typed)')
        shown, status = [], None
        while status is None or (command.endswith("&") and len(shown) < expected):
            line = self.lines.get(timeout=PATIENCE)
            end = re.fullmatch(r"END (\d+)", line)
            if end:
                status = int(end.group(1))
            else:
                shown.append(line)
        return shown, status

    def leave(self):
        self.enter("kill $(jobs -p) 2>/dev/null; exit")
        self.shell.wait(timeout=PATIENCE)


def main():
    source, build = (pathlib.Path(word).resolve() for word in sys.argv[1:])
    typed = list(blocks((source / "README.md").read_text(encoding="utf-8")))
    bad = 0
    with tempfile.TemporaryDirectory(prefix="zv32-typed-") as name:
        place = pathlib.Path(name).resolve()
        checkout(place, source, build)
        terminal = Terminal(place)
        for number, (command, wanted) in enumerate(typed):
            shown, status = terminal.type(command, len(wanted))
            asked = number + 1 < len(typed) and typed[number + 1][0] == "echo $?"
            if shown != wanted or (status != 0 and not asked):
                bad += 1
                print(f"$ {command}\n-- the page has:", *wanted, f"-- shown, with status {status}:", *shown, sep="\n")
        terminal.leave()
    print(f"{len(typed)} commands, {bad} not as they stand in README.md")
    return 1 if bad or len(typed) < 10 else 0


if __name__ == "__main__":
    sys.exit(main())
