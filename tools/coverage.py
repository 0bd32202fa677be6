#!/usr/bin/env python3
"""Tells by folder how many lines and branches the tests of a coverage build ran, and names the branches that they did not
take both ways. Fails where a folder falls below its goal, or tests/coverage/untaken.txt is not what is there.

usage: coverage.py BUILD-DIR [FOLDER|FILE...]
  FOLDER|FILE  only names the branches of these
"""
import json
import pathlib
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
UNTAKEN = ROOT / "tests/coverage/untaken.txt"

# Per cent of the branches that the tests have to take, without those of untaken.txt: all, or no fewer than there were.
GOALS = {
    "app": 100, "operations": 100, "link": 100, "usersystemdata": 100, "files": 100, "device": 100, "foundation": 100,
    "libs/files": 100, "libs/zvbl": 100, "sim": 95, "look": None, "line": None, "programs": None,
}


def counted_objects(build):
    """The programs and libraries of a build that count."""
    for path in sorted(build.rglob("*")):
        if path.is_file() and not path.is_symlink() and path.suffix not in (".o", ".a", ".profraw"):
            with open(path, "rb") as file:
                if file.read(4) == b"\x7fELF" and b"__llvm_covmap" in file.read():
                    yield path


def export(build):
    profiles = sorted(map(str, (build / "profiles").glob("*.profraw")))
    if not profiles:
        sys.exit(f"coverage: no profiles in {build}: run its tests first")
    merged = build / "coverage.profdata"
    subprocess.run(["llvm-profdata", "merge", "-sparse", "-o", merged, *profiles], check=True)
    first, *others = map(str, counted_objects(build))
    command = ["llvm-cov", "export", "-instr-profile", str(merged), "-skip-expansions", "-skip-functions", first]
    for other in others:
        command += ["-object", other]
    told = subprocess.run(command, check=True, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL).stdout
    return json.loads(told)["data"][0]["files"]


def folder_of(name):
    return next((folder for folder in GOALS if name.startswith(folder + "/")), None)


def count_at(segments, line, column):
    """How often the code at a place ran."""
    count = 0
    for row, place, times, counted, *_ in segments:
        if (row, place) > (line, column):
            break
        count = times if counted else 0
    return count


def text_between(lines, first, start, last, end):
    if last > len(lines):
        return "(the file is not what was built)"
    if first == last:
        return lines[first - 1][start - 1 : end - 1]
    inner = [lines[first - 1][start - 1 :], *lines[first : last - 1], lines[last - 1][: end - 1]]
    return " ".join(line.strip() for line in inner)


class File:
    def __init__(self, told):
        self.name = str(pathlib.Path(told["filename"]).relative_to(ROOT))
        self.folder = folder_of(self.name)
        self.lines, self.lines_run = told["summary"]["lines"]["count"], told["summary"]["lines"]["covered"]
        source = (ROOT / self.name).read_text().split("\n")
        taken = {}
        for branch in told["branches"]:
            both = taken.setdefault(tuple(branch[:4]), [0, 0])
            both[0] += branch[4]
            both[1] += branch[5]
        # What the compiler decides has no counts, although the code around it ran.
        self.sides = [
            (place, text_between(source, *place), side, count)
            for place, both in sorted(taken.items())
            if any(both) or not count_at(told["segments"], *place[:2])
            for side, count in zip(("true", "false"), both)
        ]


def files_of(build):
    for told in export(build):
        path = pathlib.Path(told["filename"])
        if path.exists() and path.is_relative_to(ROOT) and folder_of(str(path.relative_to(ROOT))):
            yield File(told)


def reasons():
    """{(file, side, condition): reason}: three fields between bars, and the reason."""
    rows = {}
    for line in UNTAKEN.read_text().split("\n"):
        if line.strip() and not line.startswith("#"):
            name, side, rest = line.split(" | ", 2)
            condition, reason = rest.rsplit(" | ", 1)
            rows[name, side, condition] = reason
    return rows


def row_of(folder, files, excused):
    lines, run = sum(file.lines for file in files), sum(file.lines_run for file in files)
    sides = [(file.name, side, text, count) for file in files for _, text, side, count in file.sides]
    told = [one[3] > 0 for one in sides if one[3] or one[:3] not in excused]
    return folder, run, lines, sum(told), len(told), len(sides) - len(told)


def percent(part, whole):
    return 100 * part / whole if whole else 100


def main():
    build, wanted = pathlib.Path(sys.argv[1]).resolve(), sys.argv[2:]
    files, excused = list(files_of(build)), reasons()
    failed = False
    print(f"{'folder':<16}{'lines':>14}{'%':>7}{'branches':>15}{'%':>7}  explained")
    for folder, goal in GOALS.items():
        row = row_of(folder, [file for file in files if file.folder == folder], excused)
        print(f"{row[0]:<16}{row[1]:>7}/{row[2]:<6}{percent(*row[1:3]):>7.2f}{row[3]:>8}/{row[4]:<6}{percent(*row[3:5]):>7.2f}{row[5]:>6}")
        failed |= goal is not None and percent(*row[3:5]) < goal
    unused = dict(excused)
    for file in files:
        for place, text, side, count in file.sides:
            key = (file.name, side, text)
            if not count or excused.get(key, "").startswith("sometimes"):
                unused.pop(key, None)
            asked = not wanted or any(file.name.startswith(one) for one in wanted)
            if not count and key not in excused and asked and (wanted or GOALS[file.folder] == 100):
                print(f"{file.name}:{place[0]}:{place[1]}: never {side}: {text}")
    for key in unused:
        print("untaken.txt: taken, or not there any more: " + " | ".join(key))
    return 1 if failed or unused else 0


if __name__ == "__main__":
    sys.exit(main())
