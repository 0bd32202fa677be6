#!/usr/bin/env python3
"""Checks that no function has more than 40 lines, no source file more than 350, and that each source file is built.

usage: house.py SOURCE-DIR
"""
import pathlib
import re
import sys

FUNCTION_LINES = 40
FILE_LINES = 350

FOLDERS = ["app", "bench", "device", "files", "foundation", "libs", "line", "link", "look", "operations", "programs", "sim", "tests", "usersystemdata"]

# What may be longer, and why.
LONG_FILES = {}
LONG_FUNCTIONS = {
    "tests/doubles/zvbl/Script.cpp functionKeys": "a table: each function of the library and what it can be told",
    "tests/zvbl/DfuNumbersTest.cpp DfuNumbersTest.AnotherDeviceNeverTakesThePlaceOfOneThatRestarts": "a table of calls",
    "tests/zvbl/StatusTest.cpp StatusTest.NullAndOutOfRangeArgumentsAre0x21AndSendNothing": "a table of calls",
}

CONTROL = re.compile(r"^\s*(\}?\s*else|if|for|while|switch|do|case|default|namespace|class|struct|union|enum|extern)\b")
# Literals and comments, whose braces are not the code's.
TEXT = re.compile(r'R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|//[^\n]*|/\*(?:.|\n)*?\*/')


def bare(source):
    """The source with literals and comments blanked, line by line as it was."""
    return TEXT.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), source).split("\n")


def closing(lines, start):
    """The line on which the braces that line `start` leaves open are closed."""
    depth = 0
    for number in range(start, len(lines)):
        depth += lines[number].count("{") - lines[number].count("}")
        if depth <= 0:
            return number
    return len(lines) - 1


def indent(line):
    return len(line) - len(line.lstrip())


def name_of(head):
    test = re.match(r"\s*TEST(?:_[FP])?\((\w+), (\w+)\)", head)
    return f"{test[1]}.{test[2]}" if test else head.split("(")[0].split()[-1].lstrip("*&")


def functions(lines):
    """(first line, number of lines, name) of every function; those inside others are part of them."""
    number = 0
    while number < len(lines):
        end = number
        if lines[number].rstrip().endswith("{"):
            end = closing(lines, number)
            first = number
            while first > 0 and indent(lines[first]) > indent(lines[end]):
                first -= 1
            head = " ".join(lines[first : number + 1])
            if "(" in head and not head.rstrip().endswith("= {") and not CONTROL.match(head):
                yield first, end - first + 1, name_of(head)
            else:
                end = number
        number = end + 1


def unbuilt(root):
    """Sources that no list of the build names, as NAME.cpp or as NAME."""
    lists = [path for folder in FOLDERS for path in (root / folder).rglob("CMakeLists.txt")]
    named = set(re.findall(r"[\w.-]+", " ".join(path.read_text().replace("/", " ") for path in lists)))
    for path in sorted(path for folder in FOLDERS for path in (root / folder).rglob("*.cpp")):
        if not named & {path.name, path.stem}:
            yield f"{path.relative_to(root)}: nothing builds it"


def complaints(root):
    yield from unbuilt(root)
    unused = set(LONG_FILES) | set(LONG_FUNCTIONS)
    for folder in FOLDERS:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in (".h", ".cpp"):
                continue
            name = str(path.relative_to(root))
            source = path.read_text()
            count = source.count("\n")
            if count > FILE_LINES:
                unused.discard(name)
                if name not in LONG_FILES:
                    yield f"{name}: {count} lines"
            for first, length, function in functions(bare(source)):
                if length <= FUNCTION_LINES:
                    continue
                unused.discard(f"{name} {function}")
                if f"{name} {function}" not in LONG_FUNCTIONS:
                    yield f"{name}:{first + 1}: {function} has {length} lines"
    for name in sorted(unused):
        yield f"{name}: is no exception any more"


def main():
    found = list(complaints(pathlib.Path(sys.argv[1])))
    print("\n".join(found) if found else "house: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
