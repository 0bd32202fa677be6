#!/usr/bin/env python3
"""What the completions offer: the table of cases is asked of the script that knows, and a case of each kind of bash, zsh
and fish themselves, the first two at a terminal.

usage: completion_test.py SOURCE-DIR BUILD-DIR
"""
import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv.pop()).resolve()
ROOT = pathlib.Path(sys.argv.pop()).resolve()
SHELLS = ROOT / "packaging/completion"
LINKS = "-dfu -com -i2c -can -spi"
ACTIONS = "-e -p -d -u -usd -o -r -enspim -otp"

# A line up to the place of the cursor, and all that is offered there.
CASES = {
    "ZV32_ISP_Console ": f"{LINKS} -?",
    "ZV32_ISP_Console -c": "-com -can",
    "ZV32_ISP_Console -x": "",
    "ZV32_ISP_Console -com ": f"--pn --br --db --pr --to --auto {ACTIONS}",
    "ZV32_ISP_Console -com --pn ttyS0 --": "--br --db --pr --to --auto",
    "ZV32_ISP_Console -com --pr ": "EVEN NONE ODD",
    "ZV32_ISP_Console -com --auto 1": "1 10 11 12",
    "ZV32_ISP_Console -com --pn ./p": "./port",
    "ZV32_ISP_Console -i2c --dc 1": "16:9",
    "ZV32_ISP_Console -can --speed 1": "100000 125000 1000000",
    "ZV32_ISP_Console -dfu -d --": "--addr --v --o --fn",
    "ZV32_ISP_Console -dfu -d --fn ": "./fine.HEX ./dir/ ./a b.bin",
    "ZV32_ISP_Console -dfu -d --fn fi": "./fine.HEX",
    "ZV32_ISP_Console -dfu -d --fn ./dir/": "./dir/in.s19",
    "ZV32_ISP_Console -dfu -d --v --fn ./fine.HEX --": "--addr --o",
    "ZV32_ISP_Console -dfu -d --a ": "",  # it takes a value that nobody looks at
    "ZV32_ISP_Console -dfu -usd --get ": "--fn",
    "ZV32_ISP_Console -dfu -usd --set --fn ./a": "./a b.bin",
    "ZV32_ISP_Console -dfu -p --efap2 --y": "--y",
    "ZV32_ISP_Console -dfu -p --efap2 --y --d": "--dfap --drp --depp --dwp",
    "ZV32_ISP_Console -dfu -e --all -d --fn ./fine.HEX -": f"--addr --v --o {ACTIONS}",
    "ZV32_ISP_Console -dfu -otp --fn ": "./once.ZVTP ./dir/",
    "zv32-sim --chip ZV32L": "ZV32L021_16K ZV32L021_32K ZV32L021_64K",
    "zv32-sim --ch": "--chip",
    "zv32-sim --fault nack": "nack@",
    "zv32-sim --tty t": "ttyUSB0",
    "zv32-check-map ": "./m.ZVmap ./dir/",
    "zv32-look im": "image",
    "zv32-line check --pl": "--plan",
    "zv32-line check ./j": "./job.toml",
    "zv32-line po": "ports",
    "zv32-line ports ": "--help --version --station --json",
    "zv32-line rehearse --keep no": "./notes.txt",
    "zv32-line check --station ./j": "./job.toml",
    "zv32-line make --order ": "",
    "zv32-line make --station ./job.toml --nest ": "A1 A2 B1",
    "zv32-line make --station ./job.toml --nest A1,A": "A1,A1 A1,A2",
    "zv32-line station --start ": "plug key",
    "zv32-line units --result p": "pass",
    "zv32-line rehearse ./job.toml --supply ": "batch= mac=",
    "zv32-line rehearse ./job.toml --supply m": "mac=",
    "zv32-look options --to": "--toml",
    "zv32-look options --diff ./j": "./job.toml",
    "zv32-look doctor --pr o": "odd",
    "zv32-look image --j": "--json",
    "zv32-look image ./fine": "./fine.HEX",
    "zv32-look chip -com --pr E": "EVEN",
    "zv32-look chip -com --pn ttyS0 --b": "--br",
    "zv32-look line -- -dfu -d --fn fi": "./fine.HEX",
}
# The same on a machine with these devices.
DEVICES = {"dev/ttyUSB0": "", "dev/ttyACM1": "", "dev/i2c-1": "", "dev/spidev0.0": "",
           "sys/class/tty/ttyS4/type": "4", "sys/class/tty/ttyS5/type": "0", "sys/class/net/can0/type": "280",
           "sys/class/net/lo/type": "772"}
PORTS = {
    "ZV32_ISP_Console -com --pn ": "ttyUSB0 ttyACM1 ttyS4",
    "ZV32_ISP_Console -com --pn ttyU": "ttyUSB0",
    "ZV32_ISP_Console -i2c --pn ": "i2c-1",
    "ZV32_ISP_Console -spi --pn ": "spidev0.0",
    "ZV32_ISP_Console -can --pn ": "can0 ttyUSB0 ttyACM1 ttyS4",
    "zv32-sim --can c": "can0",
}
# One of each kind, and the only word that fits.
AT_A_TERMINAL = {
    "ZV32_ISP_Console -co": "-com",
    "ZV32_ISP_Console -com --pr E": "EVEN",
    "ZV32_ISP_Console -i2c --dc 16": "16:9",
    "ZV32_ISP_Console -dfu -d --fn fi": "./fine.HEX",
    "ZV32_ISP_Console -dfu -d --fn ./di": "./dir/",
    "ZV32_ISP_Console -dfu -d --fn ./a": "./a b.bin",
    "zv32-sim --fault na": "nack@",
    "zv32-sim --chip ZV32L021_1": "ZV32L021_16K",
    "zv32-look im": "image",
}


def install(place):
    """The files as an installation lays them out, and a directory to stand in."""
    share = place / "share"
    for target, source in {
        "zv32-isp-console/complete": SHELLS / "complete", "zv32-isp-console/words": BUILD / "packaging/words",
        "bash-completion/completions/ZV32_ISP_Console": SHELLS / "zv32-isp.bash",
        "zsh/vendor-completions/_zv32-isp": SHELLS / "_zv32-isp", "fish/vendor_completions.d/c.fish": SHELLS / "zv32-isp.fish",
    }.items():
        (share / target).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(source, share / target)
    (place / "here/dir").mkdir(parents=True)
    for name in ("fine.HEX", "notes.txt", "a b.bin", "once.ZVTP", "m.ZVmap", "job.toml", "port", "dir/in.s19"):
        (place / "here" / name).touch()
    nests = "".join(f'[[nest]]\nname = "{name}"\nport = "/dev/{name}"\n' for name in ("A1", "A2", "B1"))
    supplies = "".join(f'[[unit]]\nvalue = "supply"\nsupply = "{name}"\n' for name in ("batch", "mac"))
    (place / "here/job.toml").write_text(f'format = 1\nname = "ZX"\n{nests}[series.ZX]\nfirst = 1\n{supplies}')
    return share


class Terminal:
    """An interactive shell. A line is typed, completed, and then made a comment that a marker tells the end of."""

    def __init__(self, command, place, environment):
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.chdir(place / "here")
            os.execvpe(command[0], command, environment)
        self.seen = ""

    def type(self, text):
        os.write(self.fd, text.encode())

    def until(self, pattern):
        while not (found := re.search(pattern, self.seen, re.S)):
            ready, _, _ = select.select([self.fd], [], [], 30)
            if not ready:
                raise AssertionError(f"nothing like {pattern!r} in {self.seen!r}")
            self.seen += os.read(self.fd, 65536).decode(errors="replace")
        self.seen = self.seen[found.end() :]
        return found

    def completed(self, line):
        """The line after the tabulator: the beginning of the line becomes a call that prints all of it."""
        self.type(f"{line}\t\x05'\x01shown '\r")
        return self.until(r"<<(.*?)>>")[1]

    def close(self):
        os.close(self.fd)
        os.waitpid(self.pid, 0)


class Completion(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.scratch = tempfile.TemporaryDirectory()
        cls.place = pathlib.Path(cls.scratch.name)
        cls.share = install(cls.place)
        cls.environment = {"PATH": f"{BUILD}/bin:/usr/bin:/bin", "HOME": str(cls.place), "TERM": "dumb", "LC_ALL": "C.UTF-8",
                           "PS1": "", "ASAN_OPTIONS": "detect_leaks=0:verify_asan_link_order=0"}

    @classmethod
    def tearDownClass(cls):
        cls.scratch.cleanup()

    def run_in_place(self, *command, **more):
        return subprocess.run(command, cwd=self.place / "here", env={**self.environment, **more}, capture_output=True,
                              text=True).stdout

    def offers(self, cases, **more):
        for line, offered in cases.items():
            *words, current = line.split(" ")
            got = self.run_in_place(self.share / "zv32-isp-console/complete", *words, current, **more).splitlines()
            with self.subTest(line=line):
                self.assertEqual(sorted(got), sorted(re.findall(r"\./a b\.bin|\S+", offered)))

    def test_what_is_offered(self):
        self.offers(CASES)

    def test_ports_that_are_there(self):
        for name, content in DEVICES.items():
            path = self.place / "machine" / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(content + "\n")
        self.offers(PORTS, UMOCKDEV_DIR=str(self.place / "machine"), LD_PRELOAD="libumockdev-preload.so.0")

    def test_words_that_take_a_value(self):
        """Behind each of them, as the program tells of it itself, no other option is offered."""
        for program in "zv32-line", "zv32-look":
            verbs = self.run_in_place(self.share / "zv32-isp-console/complete", program, "").split()
            told = {(verb, option) for verb in verbs if not verb.startswith("-")
                    for option in re.findall(r"^ +(--?[a-z]+) [A-Z]+", self.run_in_place(program, verb, "--help"), re.M)}
            self.assertGreater(len(told), 5)
            for verb, option in told:
                got = self.run_in_place(self.share / "zv32-isp-console/complete", program, verb, option, "").split()
                with self.subTest(program=program, verb=verb, option=option):
                    self.assertEqual([word for word in got if word.startswith("-")], [])

    def at_a_terminal(self, command, setup):
        shell = Terminal(command, self.place, self.environment)
        try:
            shell.type(setup + " echo rea''dy\r")
            shell.until("ready")
            for line, word in AT_A_TERMINAL.items():
                with self.subTest(line=line):
                    whole = line.rpartition(" ")[0] + " " + word.replace(" ", "\\ ")
                    self.assertEqual(shell.completed(line).rstrip(), whole)
        finally:
            shell.close()

    def test_bash(self):
        self.at_a_terminal(["bash", "--noprofile", "--norc", "-i"],
                           "shown() { printf '<%s>>' \"<$1\"; }; bind 'set enable-bracketed-paste off'; "
                           ". /usr/share/bash-completion/bash_completion; "
                           f". {self.share}/bash-completion/completions/ZV32_ISP_Console;")

    def test_zsh(self):
        self.at_a_terminal(["zsh", "-f", "-i"],
                           "shown() { printf '<%s>>' \"<$1\"; }; bindkey -e; unsetopt zle_bracketed_paste; "
                           f"fpath=({self.share}/zsh/vendor-completions $fpath); autoload -U compinit; "
                           f"compinit -D -u; ")

    def test_fish(self):
        load = f"source {self.share}/fish/vendor_completions.d/c.fish; complete -C "
        for line, word in AT_A_TERMINAL.items():
            if not word.startswith(line.rpartition(" ")[2]):
                continue  # fish puts nothing in front of a word that is begun
            with self.subTest(line=line):
                offered = self.run_in_place("fish", "--no-config", "-c", f"{load}'{line}'")
                self.assertEqual(offered.split("\t")[0].rstrip("\n"), word)


if __name__ == "__main__":
    unittest.main()
