#!/usr/bin/env python3
"""The chip on USB, as a process, with dfu-util as the host that knows nothing of this project.
usage: dfu_test.py ZV32-SIM [unittest's own words]"""

import os
import random
import re
import shutil
import signal
import subprocess
import sys
import time
import unittest

from client import Client
from simulator import CHIP, SIM, SimulatorTest, run, wait_for

PRELOAD = "libumockdev-preload.so.0"
START = "0x08000000"
CLAIMINTERFACE = 0x8004550F  # linux/usbdevice_fs.h

# Holds the interface of a device until its standard input is closed.
HOLD = f"""
import fcntl, os, struct, sys
fd = os.open(sys.argv[1], os.O_RDWR)
fcntl.ioctl(fd, {CLAIMINTERFACE}, struct.pack("I", 0))
print("claimed", flush=True)
sys.stdin.read()
"""


def preloaded(directory):
    return {**os.environ, "UMOCKDEV_DIR": directory,
            "LD_PRELOAD": ":".join(filter(None, (PRELOAD, os.environ.get("LD_PRELOAD"))))}


class Board:
    """One running simulator with its bus."""

    def __init__(self, *words, chip=CHIP):
        self.process = subprocess.Popen([SIM, "--chip", chip, "--dfu", *words], text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.ready = self.process.stdout.readline()
        self.directory = self.ready.split()[-1] if self.ready else ""

    def dfu(self, *words):
        """dfu-util on this bus. What it says differs from release to release, so hardly anything of it is looked at."""
        return subprocess.run(["timeout", "-s", "KILL", "60", "dfu-util", *words], env=preloaded(self.directory),
                              capture_output=True, text=True)

    def found(self):
        """Path, serial number and device number of each chip."""
        lines = [line for line in self.dfu("-l").stdout.splitlines() if line.startswith("Found DFU: [1209:0001]")]
        return [tuple(re.search(rf"{word}=\"?([^\",]*)", line).group(1) for word in ("path", "serial", "devnum"))
                for line in lines]

    def press_reset(self):
        self.process.send_signal(signal.SIGUSR1)
        return self.process.stdout.readline()

    def end(self):
        """Exit status and what it said on standard error."""
        self.process.send_signal(signal.SIGTERM)
        return self.wait()

    def wait(self):
        said = self.process.communicate(timeout=10)[1]
        return self.process.returncode, said

    def __enter__(self):
        return self

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.end()


class DfuTest(SimulatorTest):
    def image(self, length, seed=1):
        path = self.path(f"image{seed}")
        with open(path, "wb") as file:
            file.write(random.Random(seed).randbytes(length))
        return path

    def write(self, board, path, how="", *more):
        return board.dfu("-a", "0", "-s", START + how, "-D", path, *more).returncode

    def read(self, board, length, at=START):
        """The bytes, or none when dfu-util fails."""
        path = self.path("back")
        if os.path.exists(path):
            os.remove(path)
        result = board.dfu("-a", "0", "-s", f"{at}:{length}", "-U", path)
        if result.returncode != 0:
            return None
        with open(path, "rb") as file:
            return file.read()

    def assert_holds(self, board, path):
        with open(path, "rb") as file:
            wanted = file.read()
        self.assertEqual(self.read(board, len(wanted)), wanted)


class Memory(DfuTest):
    def test_list_names_the_chip_and_its_flash(self):
        with Board() as board:
            self.assertRegex(board.ready, r"^ready dfu /\S+\n$")
            result = board.dfu("-l")
            self.assertEqual(result.returncode, 0)
            self.assertIn('name="@Internal Flash  /0x08000000/512*002Kg"', result.stdout)
            [(path, serial, number)] = board.found()
            self.assertEqual((path, number), ("1-1", "2"))
            self.assertRegex(serial, r"^[0-9A-F]{24}$")
            self.assertEqual(board.end()[0], 0)
            self.assertFalse(os.path.exists(board.directory))

    def test_write_read_back_and_write_over_it(self):
        with Board() as board:
            for seed, length in ((1, 50000), (2, 6144)):  # the second one needs its pages erased
                image = self.image(length, seed)
                self.assertEqual(self.write(board, image), 0)
                self.assert_holds(board, image)
            self.assertNotIn("refused", board.end()[1])

    def test_erase_everything(self):
        with Board() as board:
            image = self.image(4096)
            self.assertEqual(self.write(board, image), 0)
            self.assertEqual(board.dfu("-a", "0", "-s", START + ":mass-erase:force").returncode, 0)
            self.assertEqual(self.read(board, 4096), b"\xFF" * 4096)

    def test_a_length_that_is_no_multiple_of_four_is_refused(self):
        with Board() as board:
            self.assertNotEqual(self.write(board, self.image(4099)), 0)
            self.assertIn("refused: WRITE 08001000: length is not a multiple of 4", board.end()[1])

    def test_poll_times_are_enough(self):
        with Board("--flash-time=5,800", "--baud-pace") as board:
            image = self.image(20000)
            start = time.monotonic()
            self.assertEqual(self.write(board, image), 0)
            self.assertGreater(time.monotonic() - start, 10 * 0.005 + 20000 / 256 * 0.0008)
            self.assert_holds(board, image)
            self.assertNotIn("refused", board.end()[1])

    def test_pace_is_that_of_a_full_speed_bus(self):
        with Board("--baud-pace") as board:
            start = time.monotonic()
            self.assertEqual(len(self.read(board, 0x40000)), 0x40000)
            self.assertGreater(time.monotonic() - start, 0x40000 / 64 / 19 * 0.001)

    def test_state_outlives_the_process(self):
        image = self.image(3000)
        with Board("--state", self.path("chip")) as board:
            self.assertEqual(self.write(board, image), 0)
            self.assertEqual(board.end()[0], 0)
        with Board("--state", self.path("chip")) as board:
            self.assert_holds(board, image)


class Coming(DfuTest):
    def test_leave_is_away_until_the_reset_button(self):
        with Board() as board:
            image = self.image(4096)
            [(path, serial, _)] = board.found()
            self.assertEqual(self.write(board, image, ":leave"), 0)
            wait_for(lambda: not board.found())
            self.assertEqual(board.press_reset(), board.ready)
            self.assertEqual(board.found(), [(path, serial, "3")])
            self.assert_holds(board, image)

    def test_a_protected_chip_is_opened_by_force_and_comes_back_empty(self):
        state = self.path("chip")
        with self.simulator("--state", state) as simulator:
            with Client(simulator.port) as client:
                client.sync()
                client.command(0x82)
                client.acknowledged()
            simulator.end()
        with Board("--state", state) as board:
            self.assertIsNone(self.read(board, 1024))
            self.assertNotEqual(self.write(board, self.image(1024)), 0)
            self.assertEqual(board.dfu("-a", "0", "-s", ":unprotect:force").returncode, 0)
            self.assertEqual(board.process.stdout.readline(), board.ready)
            self.assertEqual([number for _, _, number in board.found()], ["3"])
            self.assertEqual(self.read(board, 1024), b"\xFF" * 1024)
            self.assertIn("refused: READ: the chip is access-protected", board.end()[1])

    def test_unplugged_in_the_middle_and_a_second_run(self):
        with Board("--fault", "hangup@9000:100") as board:
            image = self.image(20000)
            start = time.monotonic()
            self.assertNotEqual(self.write(board, image), 0)
            self.assertLess(time.monotonic() - start, 4)  # its own time limit is 5 s
            self.assertEqual(board.process.stdout.readline(), board.ready)
            self.assertEqual(self.write(board, image), 0)
            self.assert_holds(board, image)

    def test_unplugged_for_good_ends_it(self):
        with Board("--fault", "tx-hangup@100") as board:
            self.assertNotEqual(self.write(board, self.image(20000)), 0)
            status, said = board.wait()
            self.assertEqual(status, 0)
            self.assertIn("fault: tx-hangup@100", said)
            self.assertFalse(os.path.exists(board.directory))

    def test_the_power_fails_in_the_middle(self):
        with Board("--fault", "powercut@5000") as board:
            image = self.image(20000)
            self.assertNotEqual(self.write(board, image), 0)
            self.assertEqual(board.process.stdout.readline(), board.ready)
            self.assertEqual(self.write(board, image), 0)
            self.assert_holds(board, image)

    def test_refused_once(self):
        with Board("--fault", "nack@3:31") as board:
            image = self.image(20000)
            self.assertNotEqual(self.write(board, image), 0)
            self.assertEqual(self.write(board, image), 0)


class Several(DfuTest):
    def test_two_chips_are_told_apart(self):
        with Board("--beside", "1") as board:
            first, second = board.found()
            self.assertEqual((first[0], second[0]), ("1-1", "1-2"))
            self.assertNotEqual(first[1], second[1])
            image = self.image(4096)
            self.assertNotEqual(self.write(board, image), 0)  # which one?
            self.assertEqual(self.write(board, image, ":leave", "-S", second[1]), 0)
            wait_for(lambda: board.found() == [first])
            self.assertEqual(self.read(board, 16), b"\xFF" * 16)

    def test_beside_is_for_usb_alone(self):
        result = run("--chip", CHIP, "--usart", self.path("tty"), "--beside", "1")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("--beside is not for --usart", result.stderr)

    def test_one_client_at_a_time(self):
        with Board() as board:
            holder = subprocess.Popen([sys.executable, "-c", HOLD, "/dev/bus/usb/001/002"], text=True,
                                      env=preloaded(board.directory), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
            self.assertEqual(holder.stdout.readline(), "claimed\n")
            self.assertIsNone(self.read(board, 16))
            holder.kill()  # it cannot release anything any more
            holder.communicate()
            self.assertEqual(self.read(board, 16), b"\xFF" * 16)


if __name__ == "__main__":
    if not shutil.which("dfu-util"):
        print("dfu-util is missing")
        sys.exit(77)
    unittest.main(verbosity=0)
