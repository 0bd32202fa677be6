#!/usr/bin/env python3
"""The simulator as a process: its line of readiness, its link, its signals, its files, and a client of
its own kind at the other end. Called with the path of zv32-sim, then unittest's own words."""

import array
import fcntl
import os
import random
import re
import select
import signal
import subprocess
import sys
import time
import unittest

from client import Client, FLASH, Refused, Silent
from simulator import CHIP, SECTOR, SIM, SimulatorTest, run, wait_for


class CommandLine(SimulatorTest):
    def test_list_names_every_chip_first_in_its_line(self):
        result = run("--list")
        self.assertEqual(result.returncode, 0)
        names = [line.split()[0] for line in result.stdout.splitlines()]
        self.assertEqual(len(names), len(set(names)))
        for name in ("ZV32F403_1_1024K", "ZV32F403_2_256K", "ZV32F437_4032K", "ZV32F422_64K"):
            self.assertIn(name, names)
        self.assertIn("ZV32F403_2_256K    02  0242      256 KB  2048", result.stdout.splitlines())

    def test_help(self):
        result = run("--help")
        self.assertEqual(result.returncode, 0)
        for word in ("--chip", "--usart", "--state", "--spim", "--baud-pace", "--flash-time", "--fault", "--verbose",
                     "--log", "--list", "SIGUSR1"):
            self.assertIn(word, result.stdout)

    def test_help_and_manual_name_every_fault(self):
        known = re.findall(r"^  ([a-z-]+@N)", run("--fault", "boom@1").stderr, re.M)
        self.assertGreater(len(known), 10)
        manual = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "docs", "simulator.md")
        with open(manual, encoding="utf-8") as file:
            for text in (run("--help").stdout, file.read()):
                self.assertEqual([fault for fault in known if fault not in text], [])

    def test_bad_lines_end_in_status_2(self):
        for words in (["--what"], [], ["--chip", "ZV32X", "--usart", "/x"], ["--chip", CHIP], ["--fault", "boom@1"]):
            result = run(*words)
            self.assertEqual((result.returncode, result.stdout), (2, ""), words)
            self.assertTrue(result.stderr.startswith("zv32-sim: "), result.stderr)


class Link(SimulatorTest):
    def test_ready_link_and_end(self):
        for how in (signal.SIGTERM, signal.SIGINT):
            with self.simulator() as simulator:
                self.assertEqual(simulator.ready, f"ready {simulator.port}\n")
                self.assertTrue(os.readlink(simulator.port).startswith("/dev/pts/"))
                self.assertEqual(simulator.end(how), (0, ""))
                self.assertFalse(os.path.lexists(simulator.port))

    def test_a_path_is_told_in_full(self):
        for word, name in (("--usart", "port"), ("--usart", "./port"), ("--slcan", "./port")):
            process = subprocess.Popen([SIM, "--chip", CHIP, word, name], cwd=self.directory, text=True,
                                       stdout=subprocess.PIPE)
            self.assertEqual(process.stdout.readline(), f"ready {self.path('port')}\n")
            process.terminate()
            process.communicate(timeout=10)

    def test_a_stale_link_is_replaced(self):
        for target in ("/dev/pts/99999", self.path("nowhere")):
            os.symlink(target, self.path("tty"))
            with self.simulator() as simulator:
                with Client(simulator.port) as client:
                    self.assertTrue(client.sync())
                self.assertEqual(simulator.end()[0], 0)

    def test_a_killed_simulator_leaves_a_link_that_the_next_replaces(self):
        with self.simulator() as simulator:
            simulator.end(signal.SIGKILL)
            self.assertTrue(os.path.lexists(simulator.port))
        with self.simulator() as simulator:
            with Client(simulator.port) as client:
                self.assertTrue(client.sync())

    def test_nothing_else_is_replaced(self):
        file = self.path("file")
        with open(file, "w", encoding="ascii") as out:
            out.write("mine")
        os.symlink(file, self.path("link"))
        os.mkdir(self.path("directory"))
        for place in ("file", "link", "directory"):
            result = run("--chip", CHIP, "--usart", self.path(place))
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(self.path(place), result.stderr)
        with open(file, encoding="ascii") as kept:
            self.assertEqual(kept.read(), "mine")

    def test_a_link_that_is_another_s_by_now_is_left_alone(self):
        with self.simulator() as simulator:
            os.unlink(simulator.port)
            os.symlink("/dev/pts/99999", simulator.port)
            self.assertEqual(simulator.end()[0], 0)
            self.assertEqual(os.readlink(simulator.port), "/dev/pts/99999")

    def test_no_directory_for_the_link(self):
        result = run("--chip", CHIP, "--usart", self.path("no/tty"))
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("no/tty", result.stderr)


class Clients(SimulatorTest):
    def test_come_and_go(self):
        with self.simulator() as simulator:
            for number in range(25):
                with Client(simulator.port) as client:
                    self.assertEqual(client.sync(), number == 0)
                    self.assertEqual(client.get_id(), bytes.fromhex("0347700507"))

    def test_one_that_looks_in_does_not_disturb_another(self):
        with self.simulator() as simulator, Client(simulator.port) as client:
            client.sync()
            for _ in range(50):
                client.send(bytes.fromhex("02FD"))
                os.close(os.open(simulator.port, os.O_RDWR | os.O_NOCTTY))
                self.assertEqual(client.receive(8), bytes.fromhex("7904034770050779"))

    def test_what_one_did_not_read_is_not_for_the_next(self):
        with self.simulator() as simulator:
            with Client(simulator.port) as client:
                client.sync()
                client.send(bytes.fromhex("00FF"))
                self.assertTrue(select.select([client.fd], [], [], 5)[0])
            with Client(simulator.port) as client:
                self.assertFalse(client.sync())
                self.assertEqual(client.get_version(), (0x21, 0x34, 0x12))

    def test_exclusive_use_ends_with_the_client(self):
        exclusive, is_exclusive = 0x540C, 0x80045440

        def still_exclusive():
            state = array.array("i", [-1])
            try:
                with Client(simulator.port) as client:
                    fcntl.ioctl(client.fd, is_exclusive, state)
            except OSError:  # busy: only root may open it all the same
                return True
            return state[0] == 1

        with self.simulator() as simulator:
            with Client(simulator.port) as client:
                fcntl.ioctl(client.fd, exclusive)
                self.assertTrue(still_exclusive())
            wait_for(lambda: not still_exclusive())

    def test_each_unit_has_an_identifier_of_its_own(self):
        found = set()
        for words in ((), ("--unit", "0"), ("--unit", "1"), ("--unit", "65535")):
            with self.simulator(*words) as simulator, Client(simulator.port) as client:
                client.sync()
                found.add(client.read(0x1FFFF7E8, 12))
        self.assertEqual(len(found), 3)

    def test_program_a_sector(self):
        data = random.Random(1).randbytes(SECTOR)
        for chip, base in ((CHIP, FLASH + 3 * SECTOR), ("ZV32F403_2_256K", FLASH + 3 * SECTOR)):
            with self.simulator(chip=chip) as simulator, Client(simulator.port) as client:
                self.assertTrue(client.sync())
                for _ in range(2):  # the second time over written cells
                    client.erase([3])
                    self.assertEqual(client.read(base, SECTOR), b"\xff" * SECTOR)
                    client.write(base, data)
                    self.assertEqual(client.read(base, SECTOR), data)
                self.assertEqual(client.read(base - 4, 4), b"\xff" * 4)
                with self.assertRaises(Refused):
                    client.write(base, data)

    def test_a_whole_image_by_the_client_s_own_command(self):
        image = self.path("image")
        with open(image, "wb") as out:
            out.write(random.Random(2).randbytes(100001))
        client = os.path.join(os.path.dirname(os.path.abspath(__file__)), "client.py")
        with self.simulator() as simulator:
            self.assertEqual(subprocess.run([sys.executable, client, simulator.port, image], timeout=60).returncode, 0)

    def test_go_and_the_reset_button(self):
        with self.simulator() as simulator, Client(simulator.port, timeout=0.1) as client:
            client.sync()
            client.go(FLASH)
            with self.assertRaises(Silent):
                client.sync()
            simulator.process.send_signal(signal.SIGUSR1)
            time.sleep(0.05)
            client.timeout = 2
            self.assertTrue(client.sync())


class Memory(SimulatorTest):
    def write_word(self, simulator, address, data):
        with Client(simulator.port) as client:
            client.sync()
            client.write(address, data)

    def read_word(self, simulator, address):
        with Client(simulator.port) as client:
            client.sync()
            return client.read(address, 4)

    def test_without_a_state_file_the_chip_is_new(self):
        with self.simulator() as simulator:
            self.write_word(simulator, FLASH, b"word")
            simulator.end()
        with self.simulator() as simulator:
            self.assertEqual(self.read_word(simulator, FLASH), b"\xff" * 4)

    def test_is_kept(self):
        state = ("--state", self.path("state"))
        with self.simulator(*state) as simulator:
            self.write_word(simulator, FLASH, b"word")
            self.assertEqual(simulator.end(), (0, ""))
        with self.simulator(*state) as simulator:
            self.assertEqual(self.read_word(simulator, FLASH), b"word")

    def test_survives_a_kill_once_the_line_is_quiet(self):
        state = self.path("state")
        with self.simulator("--state", state) as simulator:
            before = os.stat(state).st_size
            self.write_word(simulator, FLASH, b"word")
            wait_for(lambda: os.stat(state).st_size > before)
            simulator.end(signal.SIGKILL)
        with self.simulator("--state", state) as simulator:
            self.assertEqual(self.read_word(simulator, FLASH), b"word")

    def test_a_file_that_does_not_fit_is_refused(self):
        state = self.path("state")
        with self.simulator("--state", state) as simulator:
            simulator.end()
        for words in (["ZV32F407_512K"], [CHIP, "--spim", "8"]):
            result = run("--usart", self.path("tty"), "--state", state, "--chip", *words)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(state, result.stderr)
        with open(state, "r+b") as file:
            file.truncate(20)
        result = run("--usart", self.path("tty"), "--state", state, "--chip", CHIP)
        self.assertEqual(result.returncode, 1)
        self.assertIn("damaged", result.stderr)

    def test_a_place_that_cannot_be_written_is_told_at_once(self):
        result = run("--usart", self.path("tty"), "--chip", CHIP, "--state", self.path("no/state"))
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("no/state", result.stderr)


class Telling(SimulatorTest):
    def refuse_something(self, simulator):
        with Client(simulator.port) as client:
            client.sync()
            with self.assertRaises(Refused):
                client.write(0x40000000, b"word")

    def test_refusals_go_to_standard_error(self):
        with self.simulator() as simulator:
            self.refuse_something(simulator)
            self.assertEqual(simulator.end(), (0, "refused: WRITE 40000000: not inside a memory of this chip\n"))

    def test_or_to_a_file_with_all_the_rest(self):
        log = self.path("log")
        with self.simulator("--log", log, "--verbose") as simulator:
            self.refuse_something(simulator)
            self.assertEqual(simulator.end(), (0, ""))
        with open(log, encoding="ascii") as file:
            self.assertEqual(file.read(), "command: WRITE\nrefused: WRITE 40000000: not inside a memory of this chip\n"
                             "bytes: 8 from the host, 3 to it\n")


class Trouble(SimulatorTest):
    def test_unplugged_for_ever(self):
        with self.simulator("--fault", "hangup@3") as simulator, Client(simulator.port) as client:
            client.sync()
            with self.assertRaises(Silent):
                client.get()
            self.assertEqual(simulator.wait(), (0, "fault: hangup@3\n"))
            self.assertFalse(os.path.lexists(simulator.port))

    def test_unplugged_inside_an_answer_what_left_arrives(self):
        with self.simulator("--fault", "tx-hangup@4") as simulator, Client(simulator.port) as client:
            client.sync()
            client.send(bytes.fromhex("00FF"))
            self.assertEqual(client.receive(2), bytes.fromhex("7915"))
            with self.assertRaises(Silent):
                client.receive(1)

    def test_unplugged_and_plugged_in_again(self):
        with self.simulator("--fault", "hangup@3:30") as simulator:
            with Client(simulator.port) as client:
                client.sync()
                with self.assertRaises(Silent):
                    client.get()
            self.assertEqual(simulator.process.stdout.readline(), simulator.ready)
            time.sleep(0.05)
            with Client(simulator.port) as client:
                self.assertTrue(client.sync())
                client.get()
            self.assertEqual(simulator.end()[0], 0)

    def test_pace_holds_on_a_real_port(self):
        # 256 bytes and what stands around them: 271 byte times of 11 bits, and two of the synchronisation. What one of
        # the five answers is late by is given back, and 50 us more of each: five byte times less are enough for that.
        with self.simulator("--baud-pace") as simulator, Client(simulator.port) as client:
            begin = time.monotonic()
            client.sync()
            client.read(FLASH, 256)
            self.assertGreaterEqual(time.monotonic() - begin, 268 * 11 / 115200)


if __name__ == "__main__":
    unittest.main()
