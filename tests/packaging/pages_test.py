#!/usr/bin/env python3
"""Holds the manual pages and the tables of exit statuses to the programs.

usage: pages_test.py SOURCE-DIR DIRECTORY-OF-MANUALS
"""
import pathlib
import re
import subprocess
import sys
import unittest

MANUALS = pathlib.Path(sys.argv.pop())
ROOT = pathlib.Path(sys.argv.pop())

# What a row of the table of exit statuses has to speak of, by the name that the code has for the status.
MEANT = {
    "OP_SUCCESS": "everything", "OP_BAD_PARAM": "word", "OP_CONNECT_FAILD": "link", "OP_DOWNLOAD_FAILD": "download",
    "OP_MCU_UPLOAD_FAILD": "upload", "OP_SET_USD_FAILD": "user system data", "OP_GET_USD_FAILD": "user system data",
    "OP_ENSPIM_FAILD": "SPIM", "OP_RUN_AT_ADDR_FAILD": "run", "OP_EFAP1_FAILD": "access protection",
    "OP_EFAP2_FAILD": "access protection", "OP_DFAP_FAILD": "access protection",
    "OP_DEPP_FAILD": "erase and program protection", "OP_EEPP_FAILD": "erase and program protection",
    "OP_MCU_ALLERASE_FLASH_FAILD": "erase", "OP_MCU_ALLERASE_SPIM_FAILD": "erase", "OP_MCU_SECERASE_FAILD": "sectors",
    "OTP_FAILED": "OTP", "unexpectedEnd": "unexpected end",
}
SIGNALS = {130, 143}  # of a shell, for a program that SIGINT or SIGTERM ended


def text(*patterns):
    return "\n".join(path.read_text() for pattern in patterns for path in sorted(ROOT.glob(pattern)))


def statuses(page, before):
    """{status: meaning} of the table whose head begins like this."""
    table = text(page).split(before, 1)[1].split("\n\n")[0]
    rows = [line.strip("|").split("|", 1) for line in table.splitlines()[2:]]
    return {int(number): meaning.strip() for numbers, meaning in rows for number in re.findall(r"\d+", numbers)}


class Statuses(unittest.TestCase):
    def test_of_the_console(self):
        table = statuses("README.md", "| status | meaning")
        header = text("foundation/ShareParameter.h").split("// Exit statuses of the process.")[1].split("\n\n")[0]
        named = {name: int(value, 0) for name, value in re.findall(r"constexpr BYTE (\w+) = (\w+);", header)}
        named["unexpectedEnd"] = int(re.search(r"unexpectedEnd = (\d+)", text("app/Process.h"))[1])
        self.assertEqual(set(table) - SIGNALS, set(named.values()))
        for name, value in named.items():
            self.assertIn(MEANT[name].lower(), table[value].lower(), name)

    def test_of_the_programs_beside_the_console(self):
        named = {name: int(value) for name, value in
                 re.findall(r"^constexpr int (\w+) = (\d+);", text("programs/Status.h"), re.M)}
        for folder in ("look", "line"):
            used = {value for name, value in named.items() if re.search(rf"\b{name}\b", text(f"{folder}/**/*.cpp"))}
            told = set(statuses(f"docs/{folder}.md", "| exit status |"))
            self.assertLessEqual(used, told, folder)
            self.assertLessEqual(told, set(named.values()), folder)

    def test_of_the_simulated_chip(self):
        told = re.search(r"Exit status: ([^.]*)\.", text("docs/simulator.md"))[1]
        named = re.search(r"enum ExitStatus \{(.*?)\}", text("sim/program/Run.cpp"))[1]
        self.assertEqual(re.findall(r"(?:^|, )(\d) ", told.replace("\n", " ")), re.findall(r"\d", named))

    def test_of_check_map(self):
        told = statuses("packaging/man/zv32-check-map.1.md", "| status | meaning")
        self.assertEqual(set(told), set(map(int, re.findall(r"(?:Ends )?with (\d)", text("tools/check-map").split('"""')[1]))))

    def test_the_libraries(self):
        page = text("docs/using-the-libraries.md").split("## What can go wrong")[1]
        zvbl, files = re.findall(r"\| status \| meaning \|\n.*\n((?:\|.*\n)+)", page)
        bytes_ = re.findall(r"return (\w+);", text("libs/zvbl/Border.h").split("statusByte")[1].split("\n}\n")[0])
        bytes_ += re.findall(r"outOfMemory = (\w+);", text("libs/zvbl/Border.h"))
        words = re.findall(r"^ +\w+ = (\d+)", text("libs/files/Status.h"), re.M)
        self.assertEqual(set(map(int, re.findall(r"^\| (\d+)", zvbl, re.M))), {int(one, 0) for one in bytes_})
        self.assertEqual(set(map(int, re.findall(r"^\| (\d+)", files, re.M))), set(map(int, words)) - {0})


class Manuals(unittest.TestCase):
    def test_every_program_has_one(self):
        programs = set(re.findall(r"^usr/bin/(.*)$", text("debian/*.install"), re.M))
        packed = set(re.findall(r"^usr/share/man/man1/(.*)\.1$", text("debian/*.install"), re.M))
        self.assertEqual(packed, programs)
        for program in programs - {"zv32-sim-dev"}:
            self.assertTrue((MANUALS / f"{program}.1").exists(), program)

    def test_mandoc_is_silent(self):
        pages = sorted(MANUALS.glob("*.[15]"))
        self.assertGreaterEqual(len(pages), 6)
        said = subprocess.run(["mandoc", "-Tlint", *pages], capture_output=True, text=True)
        self.assertEqual(said.stdout + said.stderr, "")

    def test_every_variable_of_the_environment_is_told(self):
        folders = ["app", "operations", "link", "files", "device", "foundation", "libs"]
        read = set(re.findall(r'"(ZV(?:32|BL)_[A-Z_]+)"', text(*(f"{folder}/**/*.cpp" for folder in folders))))
        told = set(re.findall(r"^\| `(ZV\w+)` \|", text("packaging/man/ZV32_ISP_Console.1.md"), re.M))
        self.assertEqual(read, told)


if __name__ == "__main__":
    unittest.main()
