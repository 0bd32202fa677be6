#!/usr/bin/env python3
"""Prints the console blocks of a page as one transcript.

usage: blocks.py PAGE.md

A block that opens with ```console holds commands behind "$ " and their output. Blocks of one page run
in one shell, one after the other. An HTML comment of the form <!-- setup: COMMAND --> runs COMMAND
unseen by the reader.
"""
import re
import sys


def transcript(text):
    inside = False
    for line in text.splitlines():
        hidden = re.fullmatch(r"<!-- setup: (.*) -->", line)
        if hidden:
            yield f"  $ {hidden.group(1)}"
        elif line.startswith("```"):
            inside = not inside and line == "```console"
            yield ""
        elif inside:
            yield f"  {line}"


if __name__ == "__main__":
    lines = list(transcript(open(sys.argv[1], encoding="utf-8").read()))
    if not any(line.startswith("  $ ") for line in lines):
        sys.exit(f"{sys.argv[1]}: no console block")
    print("\n".join(lines))
