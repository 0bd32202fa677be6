#!/usr/bin/env python3
"""Makes the map files from the table of the chips.

usage: make-maps.py [--check]
  --check  writes nothing; names the files that are stale, missing or not of the table, and ends with 1
"""
import csv
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TABLE = ROOT / "tools" / "chips.csv"
MAPS = ROOT / "Map"

# Bits 6 to 10 of the PID tell the flash size in KB.
FLASH_SIZES = (16, 24, 32, 48, 64, 72, 96, 128, 192, 256, 384, 512,
               768, 1024, 1536, 2048, 4096, 5120, 192, 960, 1984, 4032, 448)
SHORT_ID_SERIES = "02"  # the identifier of two bytes does not carry the series

PATTERNS = {
    "name": r"ZV32\w+", "series": r"[0-9A-F]{2}", "pid": r"[0-9A-F]{8}|[0-9A-F]{4}", "version": r"\d\.\d",
    "bid": r"[0-9A-F]{4}|NA", "flash": r"\d+", "sector": r"\d+", "perbit": r"\d+", "banks": r"[12]",
    "spim": "yes|no", "levels": "yes|no", "slib": "yes|no", "otp": r"-|[0-9A-F]{8}/\d+",
}

MAP = """\
[Product]
Name={name}
PID={pid}
Serial={series}
SectorsPerSector={perbit}
PacketSize=0

[Sector0]
Address=08000000
Size={size:X}
Count={count}
"""


def read_table():
    lines = [line for line in TABLE.read_text().splitlines() if line.strip() and not line.startswith("#")]
    return list(csv.DictReader(lines, skipinitialspace=True))


def target(chip):
    return f"{chip['name']}_{chip['flash']}K"


def row_errors(chip):
    """What is wrong with one row by itself."""
    if set(chip) != set(PATTERNS) or None in chip.values():
        return ["the columns are not those of the head"]
    errors = [f"{key} can't be '{chip[key]}'" for key, pattern in PATTERNS.items()
              if not re.fullmatch(pattern, chip[key])]
    if errors:
        return errors
    index = int(chip["pid"], 16) >> 6 & 31
    if index >= len(FLASH_SIZES) or FLASH_SIZES[index] != int(chip["flash"]):
        errors.append(f"PID {chip['pid']} does not tell a flash of {chip['flash']} KB")
    if int(chip["sector"]) not in (1024, 2048, 4096) or int(chip["flash"]) * 1024 % int(chip["sector"]) != 0:
        errors.append(f"no sectors of {chip['sector']} bytes")
    if len(chip["pid"]) == 4 and chip["series"] != SHORT_ID_SERIES:
        errors.append(f"four digits are a PID of series {SHORT_ID_SERIES} only")
    if int(chip["perbit"]) not in range(1, 256):
        errors.append(f"{chip['perbit']} sectors a bit")
    return errors


def table_errors(chips):
    """What is wrong with the table, one text each. A PID finds its chip as a part of the map's text."""
    errors = [f"{target(chip)}: {error}" for chip in chips for error in row_errors(chip)]
    if errors:
        return errors
    for i, chip in enumerate(chips):
        for other in chips[:i]:
            if target(chip) == target(other):
                errors.append(f"{target(chip)}: stands there twice")
            if chip["pid"] in other["pid"] or other["pid"] in chip["pid"]:
                errors.append(f"{target(chip)}: its PID is also found in that of {target(other)}")
            if chip["name"] == other["name"] and chip["series"] != other["series"]:
                errors.append(f"{target(chip)}: another series than {target(other)}")
    return errors


def content(chip):
    sector = int(chip["sector"])
    return MAP.format(**chip, size=sector, count=int(chip["flash"]) * 1024 // sector)


def main():
    if sys.argv[1:] not in ([], ["--check"]):
        sys.exit(__doc__)
    try:
        chips = read_table()
    except (OSError, csv.Error) as error:
        sys.exit(f"{TABLE.name}: {error}")
    errors = table_errors(chips)
    if errors:
        sys.exit("\n".join(f"{TABLE.name}: {error}" for error in errors))

    wanted = {MAPS / f"{target(chip)}.ZVmap": content(chip) for chip in chips}
    stale = [path for path, text in wanted.items() if not path.is_file() or path.read_bytes() != text.encode()]
    extra = sorted(set(MAPS.iterdir()) - set(wanted))
    if sys.argv[1:]:
        for path in stale + extra:
            print(f"Map/{path.name}: {'stale or missing' if path in wanted else 'not of the table'}")
        sys.exit(1 if stale or extra else 0)
    for path in stale:
        path.write_bytes(wanted[path].encode())
        print(f"Map/{path.name}: written")
    for path in extra:  # never removed: it may be somebody's own
        print(f"Map/{path.name}: not of the table", file=sys.stderr)


if __name__ == "__main__":
    main()
