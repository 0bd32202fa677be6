#!/usr/bin/env python3
"""Makes a manual page out of markdown.

usage: make-man.py SOURCE-DIR PAGE.md MANUAL

PAGE.md begins with "# NAME(SECTION): what it is". Each "##" is a section. A line

    <!-- from: docs/map-file.md#section-product -->

stands for the text below that heading of another page, without the heading: what a manual page and a page both tell is
written once. "<!-- from: docs/map-file.md -->" is the whole page, whose headings come below the one in front. Comments and
console blocks are left out. What the date and the version are stands in debian/changelog.
"""
import pathlib
import re
import sys
import textwrap

FROM = re.compile(r"<!-- from: ([\w./-]+?)(?:#([\w-]+))? -->")
HEADING = re.compile(r"(#+) +(.*)")
FENCE = re.compile(r"```(\w*)")
BULLET = re.compile(r"(- |\d+\. )(.*)")
WIDTH = 78
MONTHS = "Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec".split()


def anchor(heading):
    """The name by which a heading is linked to."""
    return re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def outside_blocks(lines):
    """(line, whether it stands in a code block or opens or closes one)"""
    inside = False
    for line in lines:
        fence = FENCE.fullmatch(line)
        inside, marked = inside != bool(fence), inside or bool(fence)
        yield line, marked


def part_of(page, lines, wanted):
    """The lines below the heading with that anchor, to the next one of its rank."""
    rank, found = 0, []
    for line, code in outside_blocks(lines):
        heading = None if code else HEADING.fullmatch(line)
        if heading and rank and len(heading[1]) <= rank:
            break
        if rank:
            found.append(line)
        elif heading and anchor(heading[2]) == wanted:
            rank = len(heading[1])
    if not rank:
        sys.exit(f"make-man.py: {page} has no heading {wanted}")
    return found


def whole(root, lines):
    """The lines with what they take from other pages."""
    for line in lines:
        source = FROM.fullmatch(line)
        if not source:
            yield line
            continue
        taken = (root / source[1]).read_text().splitlines()
        if source[2]:
            yield from part_of(source[1], taken, source[2])
        else:
            yield from ("#" + line if HEADING.fullmatch(line) and not code else line
                        for line, code in outside_blocks(taken) if not line.startswith("# ") or code)


def quoted(text):
    """Text as the page's own language takes it."""
    text = text.replace("\\", "\\e").replace("-", "\\-").replace("~", "\\(ti").replace("^", "\\(ha").replace("`", "\\(ga")
    return text.replace("'", "\\(aq").replace('"', "\\(dq")


def inline(text):
    """A paragraph with its emphasis. A link keeps what it is called."""
    text = re.sub(r"\\([*|])", r"\1", re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", text))
    pieces = re.split(r"(``? ?.+? ?``?|\*\*.+?\*\*)", text)
    out = ""
    for piece in pieces:
        if piece.startswith("`"):
            out += "\\fB" + quoted(piece.strip("`")) + "\\fR"
        elif piece.startswith("**"):
            out += "\\fB" + quoted(piece.strip("*").replace("`", "")) + "\\fR"
        else:
            out += quoted(piece)
    return out


def filled(text):
    lines = textwrap.wrap(inline(text), WIDTH, break_long_words=False, break_on_hyphens=False)
    return [("\\&" + line) if line[:1] in ".'" else line for line in lines]


def cells(row):
    return [cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", row.strip()[1:-1])]


def table(rows):
    """A row is a tagged paragraph: the first cell, and below it the others, from the third on by the name of its column."""
    head = cells(rows[0])
    for row in rows[2:]:
        first, *others = cells(row)
        yield from (".TP", *(filled(first) or ["\\&"]))
        if len(head) == 2 or not all(head[1:]):
            yield from filled(" ".join(others)) or ["\\&"]
            continue
        told = [f"{name.lower()}: {cell}" for name, cell in zip(head[1:], others) if cell]
        if told and not others[0].isdigit():
            told[0] = others[0]
        yield from filled("; ".join(told)) or ["\\&"]
    yield ".PP"


def code(lines):
    yield from (".PP", ".RS 4", ".nf")
    for line in lines:
        line = quoted(line)
        yield "\\&" + line if line[:1] in (".", "\\") or not line else line
    yield from (".fi", ".RE", ".PP")


class Page:
    """Takes the lines of a page one by one, block by block."""

    def __init__(self, lines):
        self.lines, self.at, self.out = lines, 0, []

    def more(self):
        return self.at < len(self.lines)

    def take(self, fits):
        start = self.at
        while self.more() and fits(self.lines[self.at]):
            self.at += 1
        return self.lines[start : self.at]

    def block(self):
        line = self.lines[self.at]
        heading, fence = HEADING.fullmatch(line), FENCE.fullmatch(line)
        if not line.strip() or line.startswith("<!--"):
            self.at += 1
        elif heading:
            self.at += 1
            word = "SH" if len(heading[1]) == 2 else "SS"
            title = re.sub(r"\[([^\]]*)\]\([^)]*\)|[`\\]", r"\1", heading[2])
            self.out.append(f'.{word} "{quoted(title.upper() if word == "SH" else title)}"')
        elif fence:
            self.at += 1
            inside = self.take(lambda one: one != "```")
            self.at += 1
            self.out += code(inside) if fence[1] != "console" else []
        elif line.startswith("|"):
            self.out += table(self.take(lambda one: one.startswith("|")))
        elif BULLET.match(line):
            self.out += self.bullets()
        else:
            plain = self.take(lambda one: one.strip() and not one.startswith(("#", "```", "|", "<!--", "- ")))
            self.out += [".PP", *filled(" ".join(plain))]

    def bullets(self):
        while self.more() and BULLET.match(self.lines[self.at]):
            mark, text = BULLET.match(self.lines[self.at]).groups()
            self.at += 1
            rest = self.take(lambda one: one.startswith("  "))
            yield ".IP \\(bu 2" if mark == "- " else f".IP {mark.strip()} 4"
            yield from filled(" ".join([text, *map(str.strip, rest)]))

    def text(self):
        while self.more():
            self.block()
        return self.out


def tidy(lines):
    """Without a paragraph that nothing stands in."""
    kept = []
    for line in lines:
        while kept and kept[-1] == ".PP" and (line == ".PP" or line.startswith((".SH", ".SS", ".TP", ".IP"))):
            kept.pop()
        if line == ".PP" and kept and kept[-1].startswith((".SH", ".SS")):
            continue
        kept.append(line)
    while kept[-1] == ".PP":
        kept.pop()
    return kept


def main():
    if len(sys.argv) != 4:
        sys.exit(__doc__.strip())
    root = pathlib.Path(sys.argv[1])
    changelog = (root / "debian/changelog").read_text()
    version = re.match(r"zv32-isp \(([^)]*)\)", changelog)[1]
    day, month, year = re.search(r"^ -- .*  \w+, (\d+) (\w+) (\d+)", changelog, re.M).groups()
    lines = list(whole(root, pathlib.Path(sys.argv[2]).read_text().splitlines()))
    name, section, what = re.fullmatch(r"# ([\w-]+)\((\d)\): (.*)", lines[0]).groups()
    date = f"{year}-{MONTHS.index(month) + 1:02}-{int(day):02}"
    head = [f'.TH {quoted(name.upper())} {section} {date} "ZV32_ISP_Console {version}"',
            ".SH NAME", f"{quoted(name)} \\- {quoted(what)}"]
    pathlib.Path(sys.argv[3]).write_text("\n".join([*head, *tidy(Page(lines[1:]).text()), ""]))


if __name__ == "__main__":
    main()
