#!/usr/bin/env python3
"""What zv32-look says of images is what sha256sum and srec_info say of them: over the corpus of the fuzzers, and over a
real program in each format.

usage: witness.py ZV32-LOOK SOURCE-DIR
"""
import json
import pathlib
import re
import subprocess
import sys
import tempfile

FORMATS = {".hex": "-intel", ".s19": "-motorola", ".srec": "-motorola", ".bin": "-binary"}
FLASH = 0x08000000


def output(*words):
    return subprocess.run(words, capture_output=True, text=True).stdout


def look(program, path):
    run = subprocess.run([program, "image", "--json", str(path)], capture_output=True, text=True)
    return run.returncode, json.loads(run.stdout)["files"][0]


def ranges_of_srec_info(path):
    """[(first, last)], neighbours joined; None where it refuses the file."""
    run = subprocess.run(["srec_info", str(path), FORMATS[path.suffix]], capture_output=True, text=True)
    if run.returncode != 0:
        return None
    data = run.stdout.split("Data:", 1)[-1] if "Data:" in run.stdout else ""
    found = re.findall(r"([0-9A-F]+) - ([0-9A-F]+)", data.replace(" - ", "-").replace(" ", "").replace("-", " - "))
    offset = FLASH if path.suffix == ".bin" else 0
    return [(int(first, 16) + offset, int(last, 16) + offset) for first, last in found]


def complaints(program, path):
    status, facts = look(program, path)
    if facts["sha256"] != output("sha256sum", str(path)).split()[0]:
        yield f"{path}: another SHA-256 than sha256sum's"
    if facts["size"] != path.stat().st_size:
        yield f"{path}: another size"
    if status == 2:
        if not any(finding["mark"] == "error" for finding in facts.get("findings", [])):
            yield f"{path}: refused without a reason"
        return
    said = [(row["first"], row["last"]) for row in facts["ranges"]]
    witness = ranges_of_srec_info(path)
    if witness is not None and said != witness:
        yield f"{path}: {said}, and srec_info says {witness}"
    if witness is not None:
        agreed.append(path)


agreed = []


def main():
    program, root = sys.argv[1], pathlib.Path(sys.argv[2])
    with tempfile.TemporaryDirectory() as scratch:
        images = [pathlib.Path(scratch) / f"firmware{suffix}" for suffix in (".hex", ".s19", ".bin")]
        for image in images:
            subprocess.run([root / "tools/make-image.sh", image], check=True)
        corpus = [path for path in sorted((root / "tests/fuzz/corpus").rglob("*.*")) if path.suffix in FORMATS]
        found = [one for path in images + corpus for one in complaints(program, path)]
    if len(agreed) < len(images) + 5:
        found.append(f"only {len(agreed)} files were compared")
    print("\n".join(found) if found else f"witness: {len(agreed)} ranges agree")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
