#!/usr/bin/env python3
"""Checks who includes whom, that nobody does so in a circle, and that no Qt gets into the libraries and the simulator.

usage: layers.py SOURCE-DIR
"""
import pathlib
import re
import sys

CONSOLE = ["app", "operations", "link", "usersystemdata", "files", "device", "foundation"]

# What a folder may include, as prefixes of the spelled path.
ALLOWED = {folder: [f"{below}/" for below in CONSOLE[i:]] for i, folder in enumerate(CONSOLE)}
# The program that only looks stands beside the console, on what does not act. It reads the files of zv32-line too.
WORDS = ["FileNames", "LinkCommands", "LinkSettings", "OtpFile", "Requests", "Sectors", "SubOptions", "Words"]
ALLOWED["look"] = [f"app/{name}.h" for name in WORDS] + ["look/", "line/job/", "line/station/", "libs/files/AtomicFile.h", "libs/files/ImageReader.h", "programs/", "link/", "usersystemdata/", "files/", "device/", "foundation/"]
# What the programs beside the console share, and the one that makes units: without Qt, and without the two libraries,
# which a site may replace by its own. It reads files by the file library's own sources.
ALLOWED["programs"] = ["programs/"]
LINE_ROOMS = [
    "program",
    "rehearsal",
    "gang",
    "books",
    "hooks",
    "register",
    "approval",
    "plan",
    "view",
    "ports",
    "station",
    "job",
    "channel",
]
for i, room in enumerate(LINE_ROOMS):
    ALLOWED[f"line/{room}"] = [f"line/{below}/" for below in LINE_ROOMS[i:]] + ["programs/", "libs/files/", "device/Families.h", "device/MapDirectory.h", "usersystemdata/OptionNames.h"]
# Its process that makes one unit is another front end of the jobs, beside the console's.
ALLOWED["line/unit"] = ["line/unit/", "line/channel/"] + [f"{folder}/" for folder in CONSOLE[1:]]
ALLOWED["libs/files"] = ["libs/files/", "device/FilesInc.h", "device/ImageSuffixes.h", "foundation/LibraryTypes.h"]
ALLOWED["libs/zvbl"] = ["libs/zvbl/", "link/ZVBLLIB.h", "foundation/LibraryTypes.h", "foundation/Crc32.h", "foundation/TraceFile.h"]

# The rooms of the simulated chip, the upper ones first.
ROOMS = ["program", "ports", "links", "bootloader", "chip"]
for i, room in enumerate(ROOMS):
    ALLOWED[f"sim/{room}"] = [f"sim/{below}/" for below in ROOMS[i:]] + ["libs/zvbl/wire/Wire.h"]

# Whoever includes one of these can open a file descriptor, or wait for one.
DESCRIPTORS = re.compile(r"(unistd|poll|fcntl|termios|fstream|sys/\w+|linux/.*|net/.*)(\.h)?$")
WITHOUT_DESCRIPTORS = ["sim/links", "sim/bootloader", "sim/chip"]

# The floors of a folder, from the top, as beginnings of the path. A file includes its own floor and those below.
FLOORS = {
    "libs/zvbl": [
        ["libs/zvbl/Exports", "libs/zvbl/Border.", "libs/zvbl/Registry."],
        ["libs/zvbl/Session", "libs/zvbl/Links.", "libs/zvbl/Packets."],
        ["libs/zvbl/framing/"],
        ["libs/zvbl/transport/"],
        ["libs/zvbl/"],
    ],
}

# Files (a header and its source are one) that may stand in a circle with each other.
CIRCLES = [
    # The link makes the bootloader control, which asks the link for its type; the contract names both.
    {"link/BootLoader", "link/BootOption", "link/CCom"},
    # A table and its rows: the rows use the type that the table's header declares.
    {"usersystemdata/" + name for name in ("CUserSystemData", "Layouts", "SwitchByte")},
]

INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.M)


def sources_of(root, folder):
    return [path for path in (root / folder).rglob("*") if path.suffix in (".h", ".cpp")]


def complaints(root):
    rooms = sorted(path.name for path in (root / "line").iterdir() if path.is_dir())
    if rooms != sorted(LINE_ROOMS + ["unit"]):
        yield f"line: the rooms are {rooms}"
    rooms = sorted(path.name for path in (root / "sim").iterdir() if path.is_dir())
    if rooms != sorted(ROOMS):
        yield f"sim: the rooms are {rooms}"
    for folder, allowed in ALLOWED.items():
        sources = sources_of(root, folder)
        if not sources:
            yield f"{folder}: no sources found"
        for path in sources:
            for kind, name in INCLUDE.findall(path.read_text()):
                where = f"{path.relative_to(root)}: {name}"
                if kind == '"' and not any(name.startswith(prefix) for prefix in allowed):
                    yield f"{where} is not for {folder}"
                if folder in WITHOUT_DESCRIPTORS and kind == "<" and DESCRIPTORS.match(name):
                    yield f"{where}: no file descriptor belongs into {folder}"
                if kind == "<" and folder not in CONSOLE + ["look", "line/unit"] and re.match(r"Q[A-Z]", name):
                    yield f"{where} is Qt"


def floor_of(name, floors):
    for number, beginnings in enumerate(floors):
        if any(name.startswith(beginning) for beginning in beginnings):
            return number
    return None


def upward(root):
    for folder, floors in FLOORS.items():
        for path in sources_of(root, folder):
            name = str(path.relative_to(root))
            for _, other in INCLUDE.findall(path.read_text()):
                above = floor_of(other, floors)
                if above is not None and above < floor_of(name, floors):
                    yield f"{name}: {other} is a floor above"


def parts(root):
    """What each header with its source includes: {"link/CCom": {"link/BootLoader", ...}}."""
    graph = {}
    for folder in ALLOWED:
        for path in sources_of(root, folder):
            part = graph.setdefault(str(path.relative_to(root).with_suffix("")), set())
            part.update(re.sub(r"\.\w+$", "", name) for kind, name in INCLUDE.findall(path.read_text()) if kind == '"')
    return graph


def reachable(graph, start):
    seen, todo = set(), [start]
    while todo:
        for other in graph.get(todo.pop(), ()):
            if other not in seen:
                seen.add(other)
                todo.append(other)
    return seen


def circles(root):
    graph = parts(root)
    below = {part: reachable(graph, part) - {part} for part in graph}
    found = {frozenset({part} | {other for other in below[part] if part in below.get(other, ())}) for part in graph}
    for circle in found:
        if len(circle) > 1 and not any(circle <= allowed for allowed in CIRCLES):
            yield "a circle: " + ", ".join(sorted(circle))


def main():
    root = pathlib.Path(sys.argv[1])
    found = [*complaints(root), *upward(root), *sorted(circles(root))]
    print("\n".join(found) if found else "layers: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
