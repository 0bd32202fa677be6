"""Writes sources that hold many mistakes, each behind a switch, and such with one mistake that is always made."""
import re

import rules

HEAD = '#define MUTATIONS_NOTES "{notes}"\n#include "{header}"\n#line 1 "{path}"\n'


def one_line(text):
    """Without comments and line ends: what stands in a source a second time does not move the lines."""
    def blank(found):
        return "" if found.group().startswith(("//", "/*")) else found.group()

    return re.sub(r"\s*\n\s*", " ", rules.TEXT.sub(blank, text)).strip()


def text_of(source, begin, end, edits):
    """What becomes of source[begin:end] with `edits`: a list of (number, extent)."""
    pieces = []
    while edits:
        first = min(edits, key=lambda one: (one[1].begin, -one[1].end))[1]
        here = [one for one in edits if (one[1].begin, one[1].end) == (first.begin, first.end)]
        inside = [one for one in edits if one not in here and one[1].end <= first.end]
        pieces += [source[begin : first.begin], switch(source, here, inside)]
        begin = first.end
        edits = [one for one in edits if one not in here and one not in inside]
    return "".join(pieces) + source[begin:end]


def wrong(source, extent, inside):
    def part(begin, end):
        return one_line(text_of(source, begin, end, [one for one in inside if begin <= one[1].begin and one[1].end <= end]))

    return extent.wrong(*(part(begin, end) for begin, end in extent.parts))


def switch(source, here, inside):
    number, first = here[0]
    if first.kind == "word":
        return first.wrong()
    right = text_of(source, first.begin, first.end, inside)
    if first.kind == "call":
        return f"{{ if (!mutations::madeIs({number})) {right} }}"
    asked = "".join(f"mutations::madeIs({number}) ? {wrong(source, extent, inside)} : " for number, extent in here)
    return f"({asked}{right})"


def switched(source, numbered, constants, head):
    """The source with every mistake of `numbered`; `constants` are made ones that the compiler need not know."""
    return head + text_of(source, 0, len(source), [*numbered, *((0, one.relaxed) for one in constants)])


def single(source, extent):
    return source[: extent.begin] + wrong(source, extent, []) + source[extent.end :]
