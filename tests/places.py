#!/usr/bin/env python3
"""Holds what the pages say about files to the tree: that every file they name is there, and that the lists of
CONTRIBUTING.md tell all places of what they are about.

usage: places.py SOURCE-DIR
"""
import pathlib
import re
import sys

# Beginnings of a path in the tree.
TOP = "app bench cmake debian device docs examples files foundation libs line link look operations packaging programs sim tests tools usersystemdata Map".split()
NAMED = re.compile(r"`((?:%s)/[\w./{},*-]*)`" % "|".join(TOP))


class Tree:
    def __init__(self, root):
        self.root = root

    def text(self, *patterns):
        """All files that one of the patterns fits, as one text."""
        return "\n".join(path.read_text() for pattern in patterns for path in sorted(self.root.glob(pattern)))

    def has(self, pattern):
        return any(True for _ in self.root.glob(pattern.rstrip("/")))

    def listed(self, heading):
        """The files of the list under a heading of CONTRIBUTING.md."""
        section = self.text("CONTRIBUTING.md").split(f"### {heading}\n")[1].split("\n#")[0]
        return NAMED.findall(section)


def expanded(name):
    """The patterns that a name stands for: NAME is any, {h,cpp} is each."""
    braces = re.search(r"\{([^}]*)\}", name)
    if braces:
        return [e for one in braces[1].split(",") for e in expanded(name[: braces.start()] + one + name[braces.end() :])]
    return [name.replace("NAME", "*")]


def named_files(tree):
    for page in ["README.md", "CONTRIBUTING.md", *(f"docs/{p.name}" for p in sorted((tree.root / "docs").glob("*.md")))]:
        for name in NAMED.findall(tree.text(page)):
            for pattern in expanded(name):
                if not tree.has(pattern) and not tree.has(pattern + ".h") and not tree.has(pattern + ".cpp"):
                    yield f"{page} names {name}, which is not there"
        for link in re.findall(r"\]\(([\w./-]+\.md)(?:#[\w-]*)?\)", tree.text(page)):
            if not (tree.root / page).parent.joinpath(link).exists():
                yield f"{page} leads to {link}, which is not there"


def held(tree, heading, things, places):
    """Each thing has to be in each place: a file's name with {}, or (files, text with {})."""
    listed = {pattern for name in tree.listed(heading) for pattern in expanded(name)}
    if not things:
        yield f"{heading}: nothing found in the tree"
    for place in places:
        where, text = place if isinstance(place, tuple) else (place, None)
        if where.replace("{}", "*") not in listed:
            yield f"{heading}: the list does not name {where}"
        for thing in things:
            if text is None and not tree.has(where.format(thing)):
                yield f"{heading}: {thing} has no {where.format(thing)}"
            if text is not None and not re.search(text.format(re.escape(thing)), tree.text(where)):
                yield f"{heading}: {where} does not tell of {thing}"


def formats(tree):
    readers = set(re.findall(r"\bread(\w+), write", tree.text("libs/files/format/Formats.cpp")))
    yield from held(tree, "An image format", readers, [
        "libs/files/format/{}.h", "libs/files/format/{}.cpp", ("libs/files/CMakeLists.txt", r"format/{}\.cpp"),
        "tests/libfiles/{}Test.cpp", ("tests/libfiles/CMakeLists.txt", r"\b{}Test\.cpp"),
    ])
    suffixes = set(re.findall(r'\{"(\.\w+)", ImageFormat::', tree.text("device/ImageSuffixes.h")))
    yield from held(tree, "An image format", suffixes, [("docs/image-files.md", r"\|.*`{}`.*\|")])


def links(tree):
    links_file = tree.text("libs/zvbl/Links.cpp")
    framings = set(re.findall(r'#include "libs/zvbl/framing/(\w+)\.h"', links_file))
    ports = set(re.findall(r"make<(\w+), \w+>", links_file))
    yield from held(tree, "A link", framings, [
        "libs/zvbl/framing/{}.h", "libs/zvbl/framing/{}.cpp", ("libs/zvbl/CMakeLists.txt", r"framing/{}\.cpp")])
    yield from held(tree, "A link", ports, [
        "libs/zvbl/transport/{}.h", "libs/zvbl/transport/{}.cpp", ("libs/zvbl/CMakeLists.txt", r"transport/{}\.cpp")])
    kinds = {name.upper() for name in re.findall(r"\{link(?:Usb)?(\w+), ", links_file)}
    yield from held(tree, "A link", kinds, [("docs/links.md", r"## .*{}\n"), ("docs/wire-protocol.md", r"## .*{}")])


# Jobs that only other jobs start: they have no starter of their own.
INNER_JOBS = {"VerifyProject", "Verify", "WriteSN", "WriteUserSystemData", "WriteUserSystemDataProject"}


def jobs(tree):
    classes = set(re.findall(r"class C(\w+) : public COperation\b", tree.text("operations/**/*.h")))
    yield from held(tree, "A job", classes, [
        ("operations/Operation.h", r'#include "operations/(\w+/)?{}\.h"'), ("operations/CMakeLists.txt", r"\b{}\.cpp")])
    started = classes - INNER_JOBS
    yield from held(tree, "A job", started, [("operations/JobStarters.cpp", r"replaceJob<C{}>")])
    for name in INNER_JOBS - classes:
        yield f"A job: {name} is none any more"


def option_words(tree):
    words = set(re.findall(r'^ +\{"(-\w+)", ', tree.text("app/Words.cpp"), re.M)) - {"-"}
    told = words - {"-can", "-spi", "-otp"}  # the usage text leaves these out
    yield from held(tree, "An option word", told, [("app/Usage.cpp", r'"[^"]*{}\b')])
    acting = words - {"-dfu", "-com", "-i2c", "-can", "-spi"}  # the others are the links, which a transcript chooses
    yield from held(tree, "An option word", acting - {"-r", "-o"}, [("tests/e2e/words.sh", r"said .*(?<=\s){}\s")])


def faults(tree):
    names = set(re.findall(r'\{"([\w-]+)", FaultKind::', tree.text("sim/program/FaultOption.cpp")))
    yield from held(tree, "A fault of the simulated chip", names, [("docs/simulator.md", r"`{}@N")])


def verbs(tree):
    rows = set(re.findall(r'^ +\{"(\w+)", "', tree.text("look/Verbs.cpp"), re.M))
    yield from held(tree, "A verb of zv32-look", rows, [("docs/look.md", r"(?m)^\| `{}\b.*\|$"), ("tests/e2e/look.t", r"zv32-look {}\b")])


def line_verbs(tree):
    rows = set(re.findall(r'^ +\{"(\w+)", "', tree.text("line/program/Verbs.cpp"), re.M))
    yield from held(tree, "A verb of zv32-line", rows, [("docs/line.md", r"(?m)^\| `{}\b.*\|$")])


def chips(tree):
    rows = [re.split(r" *, *", row) for row in re.findall(r"^ZV32.*", tree.text("tools/chips.csv"), re.M)]
    yield from held(tree, "A chip", {f"{row[0]}_{row[5]}K" for row in rows}, ["Map/{}.ZVmap"])
    yield from held(tree, "A chip", {row[2].upper() for row in rows}, [("sim/chip/ChipRows.cpp", r"0x{}\b")])


def families(tree):
    rows = set(re.findall(r"^ +\{(ZV32\w+),", tree.text("device/Families.cpp"), re.M))
    yield from held(tree, "A family", rows, [("tools/chips.csv", r"(?m)^{} *,")])


def main():
    tree = Tree(pathlib.Path(sys.argv[1]))
    found = [one for check in (named_files, formats, links, jobs, option_words, faults, verbs, line_verbs, chips, families) for one in check(tree)]
    print("\n".join(found) if found else "places: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
