"""tools/make-maps.py: what it makes, what it says of stale files, and which tables it refuses."""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
GOOD = "ZV32F421, 09, 50020109, 2.0, 0201, 64, 1024, 4, 1, no, no, yes, -"


class MakeMaps(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        (self.root / "tools").mkdir()
        (self.root / "Map").mkdir()
        shutil.copy(ROOT / "tools" / "make-maps.py", self.root / "tools")
        table = (ROOT / "tools" / "chips.csv").read_text().splitlines()
        self.head = next(line for line in table if line.startswith("name"))

    def table(self, *rows):
        (self.root / "tools" / "chips.csv").write_text("\n".join(["# a remark", self.head, *rows]) + "\n")

    def run_tool(self, *words):
        return subprocess.run([sys.executable, "-B", self.root / "tools" / "make-maps.py", *words],
                              capture_output=True, text=True)

    def test_makes_a_map(self):
        self.table(GOOD)
        self.assertEqual(self.run_tool().returncode, 0)
        self.assertEqual((self.root / "Map" / "ZV32F421_64K.ZVmap").read_text(),
                         "[Product]\nName=ZV32F421\nPID=50020109\nSerial=09\nSectorsPerSector=4\nPacketSize=0\n\n"
                         "[Sector0]\nAddress=08000000\nSize=400\nCount=64\n")
        self.assertEqual(self.run_tool("--check").stdout, "")

    def test_check_tells_missing_stale_and_extra_files_and_writes_nothing(self):
        self.table(GOOD)
        made = self.root / "Map" / "ZV32F421_64K.ZVmap"
        result = self.run_tool("--check")
        self.assertEqual((result.returncode, result.stdout), (1, "Map/ZV32F421_64K.ZVmap: stale or missing\n"))
        self.assertFalse(made.exists())
        self.run_tool()
        made.write_text(made.read_text().replace("64", "65"))
        (self.root / "Map" / "other").write_text("")
        result = self.run_tool("--check")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout,
                         "Map/ZV32F421_64K.ZVmap: stale or missing\nMap/other: not of the table\n")

    def test_refuses_tables_that_can_not_be(self):
        for what, rows in {
            "flash size": [GOOD.replace("64,", "32,")],
            "index without a size": [GOOD.replace("50020109", "500205C9")],
            "sector": [GOOD.replace("1024", "1000")],
            "series": [GOOD.replace(" 09,", " 9,")],
            "lower case": [GOOD.replace("50020109", "5002010a")],
            "short PID of another series": [GOOD.replace("50020109", "0109")],
            "sectors a bit": [GOOD.replace(" 4,", " 0,")],
            "yes or no": [GOOD.replace("yes", "maybe")],
            "too few cells": [GOOD.rsplit(",", 1)[0]],
            "too many cells": [GOOD + ", more"],
            "twice": [GOOD, GOOD.replace("50020109", "5002010A")],
            "same PID": [GOOD, GOOD.replace("ZV32F421", "ZV32F42X")],
            "PID inside another": [GOOD, "ZV32F403_2, 02, 0109, 1.0, NA, 64, 1024, 4, 1, yes, no, no, -"],
            "one name, two series": [GOOD, "ZV32F421, 08, 5002008A, 2.0, 0201, 32, 1024, 4, 1, no, no, yes, -"],
        }.items():
            with self.subTest(what):
                self.table(*rows)
                result = self.run_tool()
                self.assertEqual(result.returncode, 1, result)
                self.assertIn("chips.csv: ", result.stderr)
                self.assertNotIn("Traceback", result.stderr)
                self.assertEqual(list((self.root / "Map").iterdir()), [])

    def test_no_table(self):
        result = self.run_tool("--check")
        self.assertEqual(result.returncode, 1)
        self.assertNotIn("Traceback", result.stderr)
        self.assertEqual(self.run_tool("--wrong").returncode, 1)


if __name__ == "__main__":
    unittest.main()
