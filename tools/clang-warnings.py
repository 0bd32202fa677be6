#!/usr/bin/env python3
"""Reads with clang++, for its warnings alone, what tools/tidy.sh does not look at: tests, benchmarks, what is generated.
By the commands of the clang build, which has to be configured: cmake --preset clang. A file that goes into several
programs is read once. Nothing is written; ends with 1 when there was a warning.

usage: tools/clang-warnings.py
"""
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
looked_at = subprocess.run([root / "tools/tidy.sh", "--list"], cwd=root, capture_output=True, text=True, check=True)
tidied = {str(root / name) for name in looked_at.stdout.split()}


def commands():
    """One command for each file that exists, and is not one of those of tools/tidy.sh. What only compiles headers in
    advance needs those of a whole build."""
    seen = set(tidied)
    for entry in json.loads((root / "build/clang/compile_commands.json").read_text()):
        name = entry["file"]
        if name not in seen and os.path.exists(name) and "cmake_pch" not in entry["command"]:
            seen.add(name)
            words = shlex.split(entry["command"])
            out = words.index("-o")
            yield entry["directory"], words[:out] + words[out + 2 :] + ["-fsyntax-only"]


def read(command):
    directory, words = command
    return subprocess.run(words, cwd=directory, capture_output=True, text=True)


with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
    results = list(pool.map(read, commands()))
for result in results:
    sys.stderr.write(result.stderr)
sys.exit(any(result.returncode or result.stderr for result in results))
