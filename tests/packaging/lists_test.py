#!/usr/bin/env python3
"""Holds debian/ to the tree: the version, and that what the building takes is what package.sh installs.

usage: lists_test.py SOURCE-DIR
"""
import pathlib
import re
import sys
import unittest

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



if __name__ == "__main__":
    unittest.main()
