"""Finds out which mistakes of a source can stand behind switches: what the compiler takes."""
import json
import re
import shlex
import subprocess
import tempfile

import extents
import switches


class Compiler:
    def __init__(self, build):
        rows = json.loads((build / "compile_commands.json").read_text())
        self.build, self.commands = build, {row["file"]: row["command"] for row in rows}

    def said(self, path, text):
        """None when it takes the text for the file of this path; else the lines of it that it has something against."""
        words = shlex.split(self.commands[str(path)])
        words = words[: words.index("-o")] + ["-fsyntax-only", "-fmax-errors=30"]
        with tempfile.NamedTemporaryFile("w", suffix=".cpp", encoding="latin-1") as file:
            file.write(text)
            file.flush()
            done = subprocess.run([*words, f"-I{path.parent}", file.name], cwd=self.build, stderr=subprocess.PIPE, text=True, errors="replace")
            if done.returncode == 0:
                return None
            found = re.findall(rf"^(?:{re.escape(str(path))}|{re.escape(file.name)}):(\d+):\d+: (error|note)", done.stderr, re.M)
        return [(int(line), kind) for line, kind in found]


class Source:
    """One source with the mistakes that were chosen in it: a list of (number, mutant)."""

    def __init__(self, compiler, whole, path, chosen, notes, header):
        """`whole` is the file as it is, `path` the one that is built."""
        self.compiler, self.path = compiler, path
        self.file = extents.File(whole, compiler.commands[str(path)])
        self.source = self.file.source
        self.extents = {number: self.file.extent(mutant) or raw(mutant) for number, mutant in chosen}
        self.switchable = {number for number, mutant in chosen if self.file.extent(mutant)}
        self.head = switches.HEAD.format(notes=notes, header=header, path=path)
        self.relaxed = set()

    def lines(self, extent):
        return range(self.line(extent.begin), self.line(extent.end) + 1)

    def line(self, offset):
        return self.source.count("\n", 0, offset) + 1

    def text(self):
        constants = [one for one in self.file.constants if one in self.relaxed or any(one.begin <= self.extents[n].begin < one.end for n in self.switchable)]
        return switches.switched(self.source, [(number, self.extents[number]) for number in sorted(self.switchable)], constants, self.head)

    def settle(self):
        """Takes out of the switchable ones what the compiler wants to know, or does not take at all."""
        while self.switchable:
            said = self.compiler.said(self.path, self.text())
            if said is None:
                return
            errors, notes = ({line for line, kind in said if kind == wanted} for wanted in ("error", "note"))
            self.take(errors) or self.relax(errors) or self.take(notes) or self.take_from_constants(notes) or self.switchable.clear()

    def take(self, lines):
        gone = {number for number in self.switchable if lines & set(self.lines(self.extents[number]))}
        self.switchable -= gone
        return bool(gone)

    def relax(self, lines):
        found = {one for one in self.file.constants if one not in self.relaxed and lines & set(self.lines(one))}
        self.relaxed |= found
        return bool(found)

    def take_from_constants(self, lines):
        noted = [one for one in self.file.constants if lines & set(self.lines(one))]
        gone = {number for number in self.switchable if any(one.begin <= self.extents[number].begin < one.end for one in noted)}
        self.switchable -= gone
        return bool(gone)

    def single(self, number):
        return switches.single(self.source, self.extents[number])

    def refused(self, number):
        return self.compiler.said(self.path, self.single(number)) is not None


def raw(mutant):
    return extents.Extent(mutant.begin, mutant.end, [], lambda: mutant.after, mutant.kind)
