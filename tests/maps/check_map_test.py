#!/usr/bin/env python3
"""Checks that check-map passes the maps that ship, and names every kind of fault.

usage: check_map_test.py SOURCE-DIR
"""
import pathlib
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(sys.argv[1])
TOOL = ROOT / "tools" / "check-map"

GOOD = """\
[Product]
Name=X
PID=12345678
Serial=7F
SectorsPerSector=1
PacketSize=0

[Sector0]
Address=08000000
Size=400
Count=16
"""

# A text of the good map, what stands in its place, and what is said of it.
FAULTS = [
    ("Name=X\n", "", "[Product] Name: is missing"),
    ("Name=X", "Name=" + "n" * 256, "[Product] Name: is longer than 255 bytes"),
    ("Name=X", "Name=@Variant(x)", "[Product] Name: begins with '@'; the console passes over the file"),
    ("Name=X", 'Name="\\x40"', "[Product] Name: begins with '\\'; the console passes over the file"),
    ("Name=X", "Name=Y", "the console looks for the sectors of this chip in Y_16K.ZVmap"),
    ("PID=12345678\n", "", "[Product] PID: is missing"),
    ("PID=12345678", "PID=1234567a", "[Product] PID: '1234567a' is not eight or four upper-case hexadecimal digits, "
     "several with blanks between them"),
    ("PID=12345678", "PID=12345678, 12345679",
     "[Product] PID: has a comma, which makes a list of it; quote the value, or use blanks"),
    ("Serial=7F\n", "", "[Product] Serial: is missing"),
    ("Serial=7F", "Serial=7f",
     "[Product] Serial: '7f' is not two upper-case hexadecimal digits, several with blanks between them"),
    ("SectorsPerSector=1\n", "", "[Product] SectorsPerSector: is missing"),
    ("SectorsPerSector=1", "SectorsPerSector=256", "[Product] SectorsPerSector: 256 is not from 0 to 255"),
    ("PacketSize=0", "PacketSize=257", "[Product] PacketSize: 257 is not from 0 to 256"),
    ("PacketSize=0", "PacketSize=-1", "[Product] PacketSize: '-1' is no decimal number"),
    ("PacketSize=0", "Alternate=256", "[Product] Alternate: 256 is not from 0 to 255"),
    ("PacketSize=0", "Packet=0", "[Product] Packet: is no key of a map"),
    ("PacketSize=0", "PacketSize=0\nPacketSize=0", "[Product] PacketSize: is given twice"),
    ("PacketSize=0", "hello", "line 6 is no section, key or comment"),
    ("PacketSize=0", "Packet\x1bSize=0", "[Product] Packet\\x1BSize: is no key of a map"),
    ("[Product]\n", "", "line 1: the key 'Name' stands before all sections"),
    ("[Product]", "[Product", "line 1: a section ends with ']'"),
    ("[Product]", "[Products]", "[Product]: the section is missing"),
    ("[Product]", "[Products]", "[Products]: is no section of a map"),
    ("[Sector0]", "[Sector1]", "[Sector0]: the section is missing"),
    ("[Sector0]", "[Sector00]", "[Sector00]: is no section of a map"),
    ("[Sector0]", "[Sector0]\n[Sector0]", "[Sector0]: is given twice"),
    ("Size=400\n", "", "[Sector0] Size: is missing"),
    ("Size=400", "Size=FF", "[Sector0] Size: FF is not from 100 to 10000000"),
    ("Size=400", "Size=4oo", "[Sector0] Size: '4oo' is no hexadecimal number"),
    ("Count=16", "Count=0", "[Sector0] Count: 0 is not from 1 to 32767"),
    ("Count=16", "Count=1F", "[Sector0] Count: '1F' is no decimal number"),
    ("Count=16", "Count=17", "the console looks for the sectors of this chip in X_17K.ZVmap"),
    ("Count=16", "Count=16\nAlias=100000000", "[Sector0] Alias: 100000000 is not from 0 to FFFFFFFF"),
    ("Count=16", "Count=16\nType=256", "[Sector0] Type: 256 is not from 0 to 255"),
    ("Count=16", "Count=16\nOperation=2", "[Sector0] Operation: 2 is not from 0 to 1"),
    ("Count=16", "Count=16\nErase=2", "[Sector0] Erase: 2 is not from 0 to 1"),
    ("Count=16", "Count=16\nUpload=yes", "[Sector0] Upload: 'yes' is no decimal number"),
    ("Count=16", "Count=16\nProtect=", "[Sector0] Protect: '' is no decimal number"),
    ("Address=08000000", "Address=100000000", "[Sector0] Address: 100000000 is not from 0 to FFFFFFFF"),
    ("Address=08000000", "Address=08000400", "[Sector0] Address: 8000400 should be 8000000: the console counts "
     "sectors from 8000000 without a hole"),
    ("Count=16\n", "Count=8\n[Sector1]\nSize=400\nCount=8\nAddress=08001000\n",
     "[Sector1] Address: 8001000 lies before 8002000, the end of the group before"),
    ("Count=16\n", "Count=8\n[Sector1]\nSize=400\nCount=8\nAddress=08003000\n",
     "[Sector1] Address: 8003000 should be 8002000: the console counts sectors from 8000000 without a hole"),
    ("Count=16\n", "Count=8\n[Sector1]\nSize=800\nCount=4\n",
     "[Sector1] Size: 800 is not 400, that of [Sector0], by which the console erases"),
    ("Count=16\n", "Count=16\n[Sector2]\nSize=400\n", "[Sector2]: there is no [Sector1]"),
    ("Count=16\n", "Count=16\n[Sector1]\nAddress=FFFFFC00\nSize=400\nCount=2\n",
     "[Sector1] Count: the sectors reach past 32 bits"),
    ("Count=16\n", "Count=32767\n[Sector1]\nSize=400\n", "32768 sectors are more than 32767"),
    ("Count=16\n", "Count=16\n[Sector1]\nAddress=10000000\nSize=10000000\nCount=1\n",
     "the sectors come to more than 256 MB"),
    ("Count=16", "Count=16\n" + "#" * (1 << 20), "is longer than 1 MB"),
]

# What a good map may hold all the same.
VARIANTS = [
    ("[Product]", "\ufeff; a comment\n# another\n\n [ Product ] "),
    ("Name=X", 'Name = "X" ; comment, @x'),
    ("PID=12345678", 'PID="12345678 1234"'),
    ("Size=400\n", "Size=0x400\r\nOperation=1\nErase=0\nType=255\nAlias=0\n"),
    ("Address=08000000\n", ""),
    ("Count=16\n", "Count=8\n[Sector1]\nSize=400\nCount=8\n"),
    ("Count=16\n", "Count=16\n[Sector1]\nAddress=08400000\nSize=1000\nCount=4\n"),
]


def run(*paths):
    done = subprocess.run([TOOL, *paths], capture_output=True, text=True, timeout=60)
    assert done.stderr == "", done.stderr
    return done.returncode, done.stdout.splitlines()


def written(directory, old, new):
    assert old in GOOD, old
    path = pathlib.Path(directory) / "X_16K.ZVmap"
    path.write_bytes(GOOD.replace(old, new, 1).encode())
    return path


def complaints(directory):
    for old, new, line in FAULTS:
        path = written(directory, old, new)
        status, lines = run(path)
        if status != 1 or not any(said == f"{path}: {line}" for said in lines):
            yield f"{new[:60]!r}: status {status}, wanted '{line}', got {lines}"
    for old, new in [("", "")] + VARIANTS:
        status, lines = run(written(directory, old, new))
        if (status, lines) != (0, []):
            yield f"{new[:60]!r}: status {status}, {lines}"


def main():
    maps = sorted((ROOT / "Map").glob("*.ZVmap"))
    status, lines = run(*maps)
    found = [] if len(maps) >= 74 and (status, lines) == (0, []) else [f"Map/: {len(maps)} files, {lines}"]
    with tempfile.TemporaryDirectory() as directory:
        found += complaints(directory)
        missing = f"{directory}/missing.ZVmap"
        if run(missing) != (1, [f"{missing}: No such file or directory"]):
            found.append("a missing file")
        if run(directory) not in [(1, [f"{directory}: is not a regular file"]), (1, [f"{directory}: Is a directory"])]:
            found.append("a directory")
    if subprocess.run([TOOL], capture_output=True).returncode != 2:
        found.append("a call without a file")
    print("\n".join(found) if found else "check-map: ok")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main())
