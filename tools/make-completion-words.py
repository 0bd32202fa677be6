#!/usr/bin/env python3
"""Makes the table of words that the completions of the shells look into, from the tables of the programs.

usage: make-completion-words.py SOURCE-DIR OUTPUT

A line of it: an option, a sub-option, what it takes, and what may stand there. packaging/completion/values tells the last;
a value that is in no table there ends this with 1.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1] if len(sys.argv) == 3 else "")


def text(name):
    return (ROOT / name).read_text()


def values():
    """{(option, meaning): values}"""
    found = {}
    for line in text("packaging/completion/values").splitlines():
        if line and not line.startswith("#"):
            option, meaning, *what = line.split()
            found[option, meaning] = " ".join(what)
    speeds = re.findall(r"\{\d+, (\d+)\}", text("libs/zvbl/framing/CanSpeeds.h"))
    faults = re.findall(r'\{"([\w-]+)", FaultKind::', text("sim/program/FaultOption.cpp"))
    named = {"@canSpeeds": " ".join(sorted(speeds, key=int)), "@faults": " ".join(f"{fault}@" for fault in faults)}
    return {key: named.get(what, what) for key, what in found.items()}


def console_rows(known):
    table = text("app/Words.cpp")
    lists = {name: re.findall(r'\{"(--\w+)", Id::(\w+), Takes::(\w+)\}', rows)
             for name, rows in re.findall(r"SubWord (\w+)\[\] = \{(.*?)\};", table, re.S)}
    options = re.findall(r'\{"(-[\w?]+)", OptionId::(\w+), (?:std::begin\((\w+)\)|nullptr)', table)
    links = re.search(r"enum class OptionId \{(.*?)\}", text("app/Words.h"), re.S)[1].replace(",", " ").split()
    links = links[links.index("dfu") : links.index("spi") + 1]
    for option, meaning, _ in options:
        if option != "-?":
            yield "connection" if meaning in links else "action", option
    for option, _, name in options:
        for word, meaning, takes in lists.get(name, []):
            what = "" if takes in ("nothing", "confirmation") else known.pick(option, meaning)
            yield option, word, takes, what


def sim_rows(known):
    for name, argument in re.findall(r'^    \{"([\w-]+)", (\w+)_argument, ', text("sim/program/Options.cpp"), re.M):
        takes = {"required": "value", "no": "nothing", "optional": "optional"}[argument]
        yield "zv32-sim", f"--{name}", takes, "" if takes == "nothing" else known.pick("zv32-sim", name)
    ports = re.findall(r'^        \{"([\w-]+)", (nullptr|"\w+"), \w+, \w+(?:<\w+>)?(?:, ("[\w.-]+"|nullptr))?',
                       text("sim/program/SimPorts.cpp"), re.M)
    for name, argument, usual in ports:
        takes = "nothing" if argument == "nullptr" else "optional" if usual.startswith('"') else "value"
        yield "zv32-sim", f"--{name}", takes, "" if takes == "nothing" else known.pick("zv32-sim", name)


class Known:
    def __init__(self, table):
        self.table, self.unused = table, set(table)

    def pick(self, option, meaning):
        for key in ((option, meaning), ("*", meaning)):
            if key in self.table:
                self.unused.discard(key)
                return self.table[key]
        sys.exit(f"make-completion-words.py: packaging/completion/values does not tell of {meaning} of {option}")


def main():
    known = Known(values())
    rows = [*console_rows(known), *sim_rows(known)]
    if known.unused:
        sys.exit(f"make-completion-words.py: no word is like these of packaging/completion/values: {sorted(known.unused)}")
    if len({row[0] for row in rows}) < 10:
        sys.exit("make-completion-words.py: the tables of the programs are not found")
    pathlib.Path(sys.argv[2]).write_text("".join(" ".join(row).rstrip() + "\n" for row in rows))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    main()
