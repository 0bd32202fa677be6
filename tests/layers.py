#!/usr/bin/env python3
"""Checks who includes whom, and that no Qt gets into the libraries and the simulator.

usage: layers.py SOURCE-DIR
"""
import pathlib
import re
import sys

CONSOLE = ["app", "operations", "link", "usersystemdata", "files", "device", "foundation"]

# What a folder may include, as prefixes of the spelled path.
ALLOWED = {folder: [f"{below}/" for below in CONSOLE[i:]] for i, folder in enumerate(CONSOLE)}
ALLOWED["libs/files"] = ["libs/files/", "device/FilesInc.h", "device/ImageSuffixes.h", "foundation/LibraryTypes.h"]
ALLOWED["libs/zvbl"] = ["libs/zvbl/", "link/ZVBLLIB.h", "foundation/LibraryTypes.h"]

# The rooms of the simulated chip, the upper ones first.
ROOMS = ["program", "ports", "links", "bootloader", "chip"]
for i, room in enumerate(ROOMS):
    ALLOWED[f"sim/{room}"] = [f"sim/{below}/" for below in ROOMS[i:]] + ["libs/zvbl/wire/Wire.h"]

# Whoever includes one of these can open a file descriptor, or wait for one.
DESCRIPTORS = re.compile(r"(unistd|poll|fcntl|termios|fstream|sys/\w+|linux/.*|net/.*)(\.h)?$")
WITHOUT_DESCRIPTORS = ["sim/links", "sim/bootloader", "sim/chip"]

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.M)


def complaints(root):
    rooms = sorted(path.name for path in (root / "sim").iterdir() if path.is_dir())
    if rooms != sorted(ROOMS):
        yield f"sim: the rooms are {rooms}"
    for folder, allowed in ALLOWED.items():
        sources = [p for p in (root / folder).rglob("*") if p.suffix in (".h", ".cpp")]
        if not sources:
            yield f"{folder}: no sources found"
        for path in sources:
            for kind, name in INCLUDE.findall(path.read_text()):
                where = f"{path.relative_to(root)}: {name}"
                if kind == '"' and not any(name.startswith(prefix) for prefix in allowed):
                    yield f"{where} is not for {folder}"
                if folder in WITHOUT_DESCRIPTORS and kind == "<" and DESCRIPTORS.match(name):
                    yield f"{where}: no file descriptor belongs into {folder}"
                if kind == "<" and folder not in CONSOLE and re.match(r"Q[A-Z]", name):
                    yield f"{where} is Qt"


def main():
    found = list(complaints(pathlib.Path(sys.argv[1])))
    print("\n".join(found) if found else "layers: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
