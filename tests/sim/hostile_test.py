#!/usr/bin/env python3
"""The simulator where its surroundings are not what they should be: closed descriptors, files that are none
or far too long, no room. Called with the path of zv32-sim, then unittest's own words."""

import os
import resource
import signal
import stat
import subprocess
import sys
import unittest

from client import Client, Refused
from simulator import CHIP, SECTOR, SIM, SimulatorTest, run, wait_for

MEGABYTE = 1024 * 1024


def limited(*limits):
    """For a process that is to have them."""
    def set_all():
        for kind, most in limits:
            resource.setrlimit(kind, (most, most))
    return set_all


class Descriptors(SimulatorTest):
    def closed(self, which, *words):
        """A simulator without the descriptors of `which`, as a shell closes them."""
        process = subprocess.Popen(["sh", "-c", f'exec "$0" "$@" {which}', SIM, "--chip", CHIP, *words],
                                   stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        self.addCleanup(process.communicate)
        self.addCleanup(process.kill)
        return process

    def target(self, process, number):
        return os.readlink(f"/proc/{process.pid}/fd/{number}")

    def test_what_is_closed_is_nothing_and_no_port(self):
        port = self.path("tty")
        process = self.closed("0<&- 1>&- 2>&-", "--usart", port, "--verbose")
        wait_for(lambda: os.path.lexists(port))
        self.assertEqual([self.target(process, number) for number in range(3)], ["/dev/null"] * 3)
        with Client(port) as client:
            self.assertTrue(client.sync())
            with self.assertRaises(Refused):
                client.write(0x40000000, b"word")  # the log tells of it, and not to the client
            self.assertEqual(client.get_id(), bytes.fromhex("0347700507"))

    @unittest.skipUnless(os.path.exists(os.path.join(os.path.dirname(SIM), "zv32-sim-dev")) or
                         os.path.exists(os.path.join(os.path.dirname(SIM), "dev", "zv32-sim-dev")), "not built")
    def test_nor_a_device_node(self):
        process = self.closed("2>&-", "--i2c")
        self.assertTrue(process.stdout.readline().startswith("ready i2c-1 "))
        self.assertEqual(self.target(process, 2), "/dev/null")
        process.send_signal(signal.SIGTERM)
        self.assertEqual(process.wait(10), 0)


class Files(SimulatorTest):
    def refused(self, state):
        result = run("--chip", CHIP, "--usart", self.path("tty"), "--state", state)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn(state, result.stderr)
        return result.stderr

    def test_a_state_that_is_no_file(self):
        os.mkfifo(self.path("pipe"))
        for place in (self.path("pipe"), self.directory, "/dev/zero"):
            self.assertIn("is not a file", self.refused(place))

    def test_a_state_that_is_far_too_long_is_not_read(self):
        state = self.path("state")
        with open(state, "wb") as file:
            file.truncate(1024 * MEGABYTE)
        self.assertIn("too long", self.refused(state))

    def test_the_mode_of_the_state_stays(self):
        state = self.path("state")
        for word in (b"one.", b"two."):
            with self.simulator("--state", state) as simulator, Client(simulator.port) as client:
                client.sync()
                client.erase([0])
                client.write(0x08000000, word)
                self.assertEqual(simulator.end()[0], 0)
            if word == b"two.":
                self.assertEqual(stat.S_IMODE(os.stat(state).st_mode), 0o600)
            os.chmod(state, 0o600)
        self.assertEqual(sorted(os.listdir(self.directory)), ["state"])

    def test_a_state_that_does_not_fit_on_the_disk_leaves_the_old_one(self):
        state = self.path("state")
        with self.simulator("--state", state) as simulator:
            simulator.end()
        with open(state, "rb") as file:
            before = file.read()
        result = subprocess.Popen([SIM, "--chip", CHIP, "--usart", self.path("tty"), "--state", state], text=True,
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                  preexec_fn=limited((resource.RLIMIT_FSIZE, SECTOR)))
        self.assertTrue(result.stdout.readline().startswith("ready "))
        with Client(self.path("tty")) as client:
            client.sync()
            client.erase([0, 1])
            client.write(0x08000000, bytes(2 * SECTOR))
        result.send_signal(signal.SIGTERM)
        said = result.communicate(timeout=10)[1]
        self.assertEqual(result.returncode, 1)
        self.assertIn(f'cannot write "{state}": File too large', said)
        with open(state, "rb") as file:
            self.assertEqual(file.read(), before)
        self.assertEqual(os.listdir(self.directory), ["state"])

    def test_a_log_that_nobody_reads(self):
        log = self.path("log")
        os.mkfifo(log)
        result = run("--chip", CHIP, "--usart", self.path("tty"), "--log", log)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn(log, result.stderr)

    def test_a_log_that_nobody_reads_any_further(self):
        log = self.path("log")
        os.mkfifo(log)
        reader = os.open(log, os.O_RDONLY | os.O_NONBLOCK)
        self.addCleanup(os.close, reader)
        with self.simulator("--verbose", "--log", log) as simulator, Client(simulator.port) as client:
            client.sync()
            for _ in range(6000):  # "command: GET_ID" each: more than a pipe holds
                client.get_id()
            self.assertEqual(simulator.end()[0], 0)
        self.assertTrue(os.read(reader, 100).startswith(b"command: GET_ID\n"))


class Room(SimulatorTest):
    def test_no_memory_is_told(self):
        with open(SIM, "rb") as file:
            if b"__asan_init" in file.read():
                self.skipTest("the address sanitizer needs the room for itself")
        words = [SIM, "--chip", "ZV32F437_4032K", "--spim", "64", "--usart", self.path("tty")]
        result = subprocess.run(words, capture_output=True, text=True, timeout=10,
                                preexec_fn=limited((resource.RLIMIT_AS, 48 * MEGABYTE)))
        self.assertEqual((result.returncode, result.stdout, result.stderr), (1, "", "zv32-sim: out of memory\n"))


if __name__ == "__main__":
    unittest.main()
