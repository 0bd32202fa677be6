#!/usr/bin/env python3
"""Holds debian/ to the tree: the version, that what the building takes is what package.sh installs, and that a package
takes each file of an installation.

usage: lists_test.py SOURCE-DIR BUILD-DIR
"""
import fnmatch
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

BUILD = sys.argv.pop()
ROOT = pathlib.Path(sys.argv.pop())


def text(name):
    return (ROOT / name).read_text()


class Lists(unittest.TestCase):
    def test_version(self):
        built = re.search(r"^project\(\w+ VERSION ([\d.]+)", text("CMakeLists.txt"), re.M)[1]
        packaged = re.match(r"zv32-isp \(([^)]*)\)", text("debian/changelog"))[1]
        self.assertEqual(packaged, built)
        self.assertEqual(re.search(r"^## ([\d.]+)$", text("CHANGELOG.md"), re.M)[1], built)

    def test_package_sh_installs_what_the_building_takes(self):
        field = re.search(r"^Build-Depends: (.*(?:\n +.*)*)", text("debian/control"), re.M)[1]
        needed = {re.match(r"[\w.+-]+", entry.strip())[0] for entry in field.split(",")}
        lists = dict(re.findall(r'^(\w+)="([^"]*)"', text("tools/install-packages.sh"), re.M))
        installed = set((lists["compile"] + " " + lists["package"]).split())
        self.assertLessEqual(needed - {"debhelper-compat"} | {"debhelper"}, installed)
        self.assertLessEqual(set(lists["compile"].split()) - {"g++"}, needed)


    def test_each_installed_file_is_in_a_package(self):
        lists = [*(ROOT / "debian").glob("*.install"), ROOT / "debian/not-installed"]
        patterns = [line for one in lists for line in one.read_text().splitlines() if not line.startswith("#")]
        with tempfile.TemporaryDirectory() as place:
            subprocess.run(["cmake", "--install", BUILD, "--prefix", place], check=True, stdout=subprocess.DEVNULL)
            files = [str(path.relative_to(place)) for path in pathlib.Path(place).rglob("*") if not path.is_dir()]
        self.assertGreater(len(files), 100)
        for name in files:
            packaged = re.sub(r"^lib/(?!udev)", "lib/x86_64-linux-gnu/", name).replace("ZV32_ISP_Console/", "zv32-isp/")
            taken = any(fnmatch.fnmatchcase("usr/" + packaged, pattern + end) for pattern in patterns for end in ("", "/*"))
            self.assertTrue(taken, name)


if __name__ == "__main__":
    unittest.main()
