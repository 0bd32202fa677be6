#!/usr/bin/env python3
"""The chip at a CAN bus, as a process: behind its own serial-line adapter, on an interface where candump
and cansend of can-utils are the host, and behind slcanpty as a foreign adapter.
usage: can_test.py ZV32-SIM DOUBLES-DIR [unittest's own words]"""

import contextlib
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import time
import tty
import unittest

from simulator import CHIP, SIM, SimulatorTest, run, wait_for

DOUBLES = sys.argv.pop(1)
SHIM = os.path.join(DOUBLES, "libcan_shim.so")
HAVE_UTILS = all(map(shutil.which, ("candump", "cansend", "slcanpty")))


def content(path):
    with open(path, encoding="ascii") as file:
        return file.read()


class Process:
    """A program that runs until it is ended; its standard output is read line by line."""

    def __init__(self, *words, **more):
        self.process = subprocess.Popen(words, stdout=subprocess.PIPE, stderr=subprocess.PIPE, **more)
        self.unread = b""

    def says_something(self, seconds):
        return b"\n" in self.unread or bool(select.select([self.process.stdout], [], [], seconds)[0])

    def line(self):
        """The next one, which has to come within ten seconds."""
        while b"\n" not in self.unread:
            if not self.says_something(10):
                raise AssertionError("it says nothing")
            more = os.read(self.process.stdout.fileno(), 4096)
            if not more:
                raise AssertionError("it has ended: " + self.wait()[1])
            self.unread += more
        line, self.unread = self.unread.split(b"\n", 1)
        return line.decode()

    def end(self, how=signal.SIGTERM):
        """Exit status and what it said on standard error."""
        self.process.send_signal(how)
        return self.wait()

    def wait(self):
        said = self.process.communicate(timeout=10)[1]
        return self.process.returncode, said.decode()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.kill()
        with contextlib.suppress(ValueError):  # it was waited for already
            self.process.communicate()


class Host:
    """A client of the serial-line protocol: lines of ASCII."""

    def __init__(self, port):
        self.fd = os.open(port, os.O_RDWR | os.O_NOCTTY)
        tty.setraw(self.fd)
        self.unread = b""

    def say(self, *lines):
        os.write(self.fd, b"".join(line.encode() + b"\r" for line in lines))

    def hear(self, timeout=5):
        """The next answer, without its carriage return; a bell is "!", nothing in time None."""
        while not re.search(rb"[\r\a]", self.unread):
            if not select.select([self.fd], [], [], timeout)[0]:
                return None
            more = os.read(self.fd, 4096)
            if not more:
                raise OSError("the port is gone")
            self.unread += more
        end = re.search(rb"[\r\a]", self.unread).end()
        answer, self.unread = self.unread[:end], self.unread[end:]
        return (answer[:-1] + (b"!" if answer.endswith(b"\a") else b"")).decode()

    def ask(self, line, answers=1):
        self.say(line)
        return [self.hear() for _ in range(answers)]

    def open_channel(self, speed="S5"):
        return [self.ask(line)[0] for line in (speed, "O")]

    def __enter__(self):
        return self

    def __exit__(self, *_):
        os.close(self.fd)


class CanTest(SimulatorTest):
    """One directory for each test; a can-bus in it is the interface can0."""

    def environment(self):
        more = {name: value for name, value in os.environ.items() if name != "LD_PRELOAD"}
        # The interface comes first, whatever a sanitizer would like to be.
        return {**more, "LD_PRELOAD": SHIM, "CAN_SHIM_DIR": self.directory,
                "ASAN_OPTIONS": os.environ.get("ASAN_OPTIONS", "") + ":verify_asan_link_order=0"}

    def bus(self, *words):
        bus = Process(os.path.join(DOUBLES, "can-bus"), self.path("can0"), *words, stdin=subprocess.PIPE)
        self.assertEqual(bus.line(), "ready")
        return bus

    def tell(self, bus, command):
        bus.process.stdin.write(command.encode() + b"\n")
        bus.process.stdin.flush()
        self.assertEqual(bus.line(), "ok")

    def chip(self, *words):
        chip = Process(SIM, "--chip", CHIP, *words, env=self.environment() if "--can" in words else None)
        self.assertTrue(chip.line().startswith("ready "))
        return chip

    def adapter(self, *words):
        return self.chip("--slcan", self.path("tty"), *words)

    def host(self):
        return Host(self.path("tty"))

    def cansend(self, *frames):
        for frame in frames:
            subprocess.run(["cansend", "can0", frame], env=self.environment(), check=True, timeout=10)


class Slcan(CanTest):
    def test_ready_link_and_end(self):
        with Process(SIM, "--chip", CHIP, "--slcan", self.path("tty")) as chip:
            self.assertEqual(chip.line(), f"ready {self.path('tty')}")
            self.assertTrue(os.readlink(self.path("tty")).startswith("/dev/pts/"))
            self.assertEqual(chip.end(), (0, ""))
            self.assertFalse(os.path.lexists(self.path("tty")))

    def test_a_client(self):
        with self.adapter() as chip, self.host() as host:
            self.assertEqual(host.ask("t07F0"), ["!"])
            self.assertEqual(host.open_channel(), ["", ""])
            self.assertEqual(host.ask("t07F0", 2), ["z", "t17F179"])
            self.assertEqual(host.ask("t0020", 4), ["z", "t102179", "t102704034770050732", "t102179"])
            self.assertEqual(chip.end(), (0, 'refused: adapter: "t07F0": the channel is closed\n'))

    def test_the_next_client_finds_the_channel_open(self):
        with self.adapter():
            with self.host() as host:
                host.open_channel()
                host.ask("t07F0", 2)
            with self.host() as host:
                self.assertEqual(host.ask("O"), ["!"])
                self.assertEqual(host.ask("t07F0", 2), ["z", "t17F11F"])
                self.assertEqual(host.ask("C"), [""])

    def test_memory_is_saved_when_the_bus_is_quiet(self):
        state = self.path("state")
        with self.adapter("--state", state) as chip, self.host() as host:
            before = os.stat(state).st_size
            host.open_channel()
            host.ask("t07F0", 2)
            host.ask("t0310", 2)
            host.ask("t03150800000008", 2)
            self.assertEqual(host.ask("t03160301020304" + "07", 2), ["z", "t131179"])
            wait_for(lambda: os.stat(state).st_size > before)
            chip.end(signal.SIGKILL)

    def test_the_reset_button(self):
        with self.adapter() as chip, self.host() as host:
            host.open_channel()
            host.ask("t07F0", 2)
            chip.process.send_signal(signal.SIGUSR1)
            time.sleep(0.05)
            self.assertEqual(host.ask("t07F0", 2), ["z", "t17F179"])

    def test_unplugged_for_ever(self):
        with self.adapter("--fault", "hangup@2") as chip, self.host() as host:
            host.open_channel()
            host.ask("t07F0", 2)
            host.say("t0020")
            with self.assertRaises(OSError):
                while True:
                    host.hear()
            self.assertEqual(chip.wait(), (0, "fault: hangup@2\n"))
            self.assertFalse(os.path.lexists(self.path("tty")))

    def test_unplugged_and_plugged_in_again(self):
        with self.adapter("--fault", "hangup@2:30") as chip:
            with self.host() as host:
                host.open_channel()
                host.ask("t07F0", 2)
                host.say("t0020")
                with self.assertRaises(OSError):
                    while True:
                        host.hear()
            self.assertEqual(chip.line(), f"ready {self.path('tty')}")
            time.sleep(0.03)
            with self.host() as host:
                self.assertEqual(host.ask("O"), ["!"])  # it has no speed any more
                self.assertEqual(host.open_channel(), ["", ""])
                self.assertEqual(host.ask("t07F0", 2), ["z", "t17F179"])

    def test_pace_holds(self):
        # The opcode and its answer, the address and its, the length and its, 32 full frames and one byte.
        bits = 3 * 59 + 50 + (47 + 40 + 7) + (47 + 16 + 5) + 32 * 120 + 59
        with self.adapter("--baud-pace") as chip, self.host() as host:
            host.open_channel()
            # What one of the four answers is late by is given back, and 50 us more of each, which are 50 bits in all: the
            # opening frame and its answer, not counted above, take longer.
            begin = time.monotonic()
            host.ask("t07F0", 2)
            host.ask("t0110", 2)
            host.ask("t01150800000008", 2)
            host.ask("t0112FF00", 35)
            self.assertGreaterEqual(time.monotonic() - begin, bits / 250000)
            self.assertEqual(chip.end()[0], 0)


@unittest.skipUnless(HAVE_UTILS, "can-utils are not installed")
class CanUtils(CanTest):
    @contextlib.contextmanager
    def candump(self):
        """It says nothing when it is ready, so a frame tells."""
        with Process("stdbuf", "-oL", "candump", "can0", env=self.environment()) as dump:
            while not dump.says_something(0.02):
                self.cansend("700#")
            yield dump

    def frames(self, dump, count):
        """The next frames, as candump writes them, without those that told that it was ready."""
        frames = []
        while len(frames) < count:
            line = " ".join(dump.line().split()[1:])
            if not line.startswith("700"):
                frames.append(line)
        return frames

    def talk(self, dump, frame, *answers):
        self.cansend(frame)
        sent, data = frame.split("#")
        spaced = " ".join(data[at:at + 2] for at in range(0, len(data), 2))
        self.assertEqual(self.frames(dump, 1 + len(answers)), [f"{sent} [{len(data) // 2}] {spaced}".strip(), *answers])

    def test_commands_by_hand(self):
        with self.bus(), self.chip("--can", "can0") as chip, self.candump() as dump:
            self.talk(dump, "07F#", "17F [1] 79")
            self.talk(dump, "000#", "100 [1] 79", "100 [8] 16 21 00 01 02 11 21 31",
                      "100 [8] 44 63 73 82 92 03 5A AC", "100 [8] B3 B7 D1 D2 D3 D4 E1 E2", "100 [1] 87", "100 [1] 79")
            self.talk(dump, "002#", "102 [1] 79", "102 [7] 04 03 47 70 05 07 32", "102 [1] 79")
            self.talk(dump, "031#", "131 [1] 79")
            self.talk(dump, "031#0800000008", "131 [1] 79")
            self.talk(dump, "031#0701020304050607")
            self.talk(dump, "031#080F", "131 [1] 79")
            self.talk(dump, "011#", "111 [1] 79")
            self.talk(dump, "011#0800000008", "111 [1] 79")
            self.talk(dump, "011#0BF4", "111 [1] 79", "111 [8] 01 02 03 04 05 06 07 08", "111 [5] FF FF FF FF 08")
            self.talk(dump, "044#", "144 [1] 79")
            self.talk(dump, "044#0000000000", "144 [1] 79")
            self.talk(dump, "011#", "111 [1] 79")
            self.talk(dump, "011#0800000008", "111 [1] 79")
            self.talk(dump, "011#03FC", "111 [1] 79", "111 [5] FF FF FF FF 00")
            self.assertEqual(chip.end(), (0, ""))

    def test_only_what_is_for_the_chip(self):
        with self.bus(), self.chip("--can") as chip, self.candump() as dump:
            self.talk(dump, "07F#", "17F [1] 79")
            self.cansend("0000007F#", "07F#R", "131#00")
            self.assertEqual(self.frames(dump, 3), ["0000007F [0]", "07F [0] remote request", "131 [1] 00"])
            self.talk(dump, "07F#", "17F [1] 1F")
            self.assertEqual(chip.end(), (0, "ignored: frame 131: the identifier is the chip's own\n"))

    def test_an_interface_that_comes_and_goes(self):
        with self.bus() as bus, self.chip("--can", "can0", "--verbose") as chip:
            with self.candump() as dump:
                self.talk(dump, "07F#", "17F [1] 79")
            self.tell(bus, "down")
            self.tell(bus, "up")
            with self.candump() as dump:
                self.talk(dump, "07F#", "17F [1] 1F")
            self.tell(bus, "unplug")
            self.tell(bus, "plug")
            with self.candump() as dump:
                while True:  # until the chip has found it again
                    self.cansend("07F#")
                    self.frames(dump, 1)
                    if dump.says_something(0.05):
                        break
                self.assertEqual(self.frames(dump, 1), ["17F [1] 1F"])
            self.assertRegex(chip.end()[1], r"the interface has gone away\n(.*\n)*.*the interface is back\n")

    def test_what_it_says_while_the_interface_is_down_is_lost(self):
        log, lost = self.path("log"), "frame 102 is lost: the interface is not up"
        with self.bus() as bus, self.chip("--can", "can0", "--verbose", "--log", log):
            with self.candump() as dump:
                self.talk(dump, "07F#", "17F [1] 79")
            self.tell(bus, "busy -1")
            self.tell(bus, "frame 002#")
            wait_for(lambda: "GET_ID" in content(log))
            self.tell(bus, "down")
            wait_for(lambda: content(log).count(lost) >= 3)
            self.tell(bus, "busy 0")
            self.tell(bus, "up")
            with self.candump() as dump:
                self.talk(dump, "07F#", "17F [1] 1F")
            self.assertEqual(content(log).count(lost), 3)

    def test_a_full_queue_holds_the_chip_up_and_nothing_is_lost(self):
        with self.bus() as bus, self.chip("--can", "can0"), self.candump() as dump:
            self.talk(dump, "07F#", "17F [1] 79")
            self.tell(bus, "busy 3")
            self.tell(bus, "frame 001#")
            self.assertEqual(self.frames(dump, 4)[1:], ["101 [1] 79", "101 [4] 21 34 12 07", "101 [1] 79"])

    def test_the_chip_leaves_and_comes_back(self):
        with self.bus(), self.chip("--can", "can0", "--fault", "hangup@2:30") as chip, self.candump() as dump:
            self.talk(dump, "07F#", "17F [1] 79")
            self.talk(dump, "002#")
            self.assertEqual(chip.line(), "ready can0")
            time.sleep(0.03)
            self.talk(dump, "07F#", "17F [1] 79")

    def test_it_leaves_for_ever(self):
        with self.bus(), self.chip("--can", "can0", "--fault", "hangup@1") as chip:
            self.cansend("07F#")
            self.assertEqual(chip.wait(), (0, "fault: hangup@1\n"))

    def test_the_reset_button(self):
        with self.bus(), self.chip("--can", "can0") as chip, self.candump() as dump:
            self.talk(dump, "07F#", "17F [1] 79")
            chip.process.send_signal(signal.SIGUSR1)
            time.sleep(0.05)
            self.talk(dump, "07F#", "17F [1] 79")

    def test_a_foreign_adapter(self):
        with self.bus(), self.chip("--can", "can0"):
            with Process("stdbuf", "-oL", "slcanpty", "/dev/ptmx", "can0", stdin=subprocess.DEVNULL,
                         env=self.environment()) as bridge:
                with Host(re.search(r"/dev/pts/\d+", bridge.line()).group(0)) as host:
                    self.assertEqual(host.ask("C"), [""])
                    self.assertEqual(host.open_channel(), ["", ""])
                    self.assertEqual(host.ask("t07F0", 2), ["", "t17F179"])
                    self.assertEqual(host.ask("t0020", 4), ["", "t102179", "t102704034770050732", "t102179"])
                    host.ask("t0110", 2)
                    host.ask("t01150800000008", 2)
                    self.assertEqual(host.ask("t011203FC", 3), ["", "t111179", "t1115FFFFFFFF00"])


class NoInterface(CanTest):
    def test_is_status_1(self):
        for words in (["--can", "nocan7"], ["--can", "lo"]):
            result = run("--chip", CHIP, *words)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(words[1], result.stderr)


if __name__ == "__main__":
    unittest.main()
