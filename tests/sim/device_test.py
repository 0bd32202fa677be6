#!/usr/bin/env python3
"""The simulator behind emulated device nodes: i2c-tools on its I2C bus, a client of its own kind at its
spidev node. Called with the path of zv32-sim, then unittest's own words."""

import contextlib
import os
import random
import shutil
import signal
import subprocess
import sys
import time
import unittest

from simulator import CHIP, SIM, SimulatorTest, wait_for

HERE = os.path.dirname(os.path.abspath(__file__))
TOOLS = os.environ["PATH"] + ":/usr/sbin:/sbin"


class Simulator:
    """One running simulator with a device node."""

    def __init__(self, *words):
        self.process = subprocess.Popen([SIM, "--chip", CHIP, *words], text=True, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE)
        self.ready = self.process.stdout.readline()
        self.node, self.root = self.ready.split()[1:] if self.ready else ("", "")

    def near(self, *words, **more):
        """A program that sees the node. Signals are blocked in an emulated call: only a kill ends it."""
        return subprocess.run(["timeout", "-s", "KILL", "20", *words], capture_output=True, text=True,
                              env={**os.environ, "PATH": TOOLS, "LD_PRELOAD": "libumockdev-preload.so.0",
                                   "UMOCKDEV_DIR": self.root}, **more)

    def press_reset(self):
        self.process.send_signal(signal.SIGUSR1)
        time.sleep(0.05)

    def end(self):
        """Exit status and what it said on standard error."""
        self.process.terminate()
        return self.wait()

    def wait(self):
        said = self.process.communicate(timeout=10)[1]
        return self.process.returncode, said


class DeviceTest(SimulatorTest):
    front = ""

    @contextlib.contextmanager
    def simulator(self, *words):
        simulator = Simulator(self.front, *words)
        try:
            yield simulator
        finally:
            if simulator.process.poll() is None:
                simulator.process.kill()
                simulator.process.communicate()
            if simulator.root:
                shutil.rmtree(simulator.root, ignore_errors=True)


class Nodes(DeviceTest):
    def test_ready_node_and_directory_until_the_end(self):
        for words, node in ((["--i2c"], "i2c-1"), (["--i2c", "i2c-7"], "i2c-7"), (["--spi"], "spidev0.0"),
                            (["--spi=spidev3.1"], "spidev3.1")):
            for how in (signal.SIGTERM, signal.SIGINT):
                with self.simulator_at(words) as simulator:
                    self.assertEqual(simulator.node, node)
                    self.assertTrue(os.path.exists(f"{simulator.root}/dev/{node}"))
                    simulator.process.send_signal(how)
                    self.assertEqual(simulator.wait(), (0, ""))
                    self.assertFalse(os.path.exists(simulator.root))

    @contextlib.contextmanager
    def simulator_at(self, words):
        self.front = words[0]
        with self.simulator(*words[1:]) as simulator:
            yield simulator

    def test_names_that_are_none(self):
        for front, name in (("--i2c", "i2c"), ("--i2c", "../x"), ("--i2c", "i2c-1x"), ("--spi", "spidev0"),
                            ("--spi", "/dev/spidev0.0")):
            result = subprocess.run([SIM, "--chip", CHIP, front, name], capture_output=True, text=True, timeout=10)
            self.assertEqual((result.returncode, result.stdout), (1, ""), name)
            self.assertIn(name, result.stderr)

    def test_without_the_preload_it_says_so(self):
        program = os.path.join(os.path.dirname(SIM), "zv32-sim-dev")
        result = subprocess.run([program, "--chip", CHIP, "--i2c"], capture_output=True, text=True, timeout=10)
        self.assertEqual((result.returncode, result.stdout), (1, ""))
        self.assertIn("libumockdev-preload.so.0 as a preload, of the package umockdev", result.stderr)


    def test_without_the_program_the_package_is_named(self):
        alone = shutil.copy(SIM, self.path("zv32-sim"))
        for word in ("--dfu", "--i2c", "--spi", "--tty"):
            result = subprocess.run([alone, "--chip", CHIP, word], capture_output=True, text=True, timeout=10)
            self.assertEqual((result.returncode, result.stdout), (1, ""))
            self.assertIn(f'{word} is served by "{self.path("zv32-sim-dev")}"', result.stderr)
            self.assertIn("the package libumockdev-dev", result.stderr)


class I2c(DeviceTest):
    """With the tools of Debian's i2c-tools."""

    front = "--i2c"

    def setUp(self):
        super().setUp()
        if not shutil.which("i2ctransfer", path=TOOLS):
            self.skipTest("i2c-tools is not installed")

    def talk(self, simulator, *words):
        """What was read, by i2ctransfer's own words without their addresses: w2 ... r1."""
        described = [word + "@0x3c" if word[0] in "wr" else "0x" + word for word in " ".join(words).split()]
        result = simulator.near("i2ctransfer", "-y", "1", *described)
        return result.stdout.replace("0x", "").split("\n")[:-1] if result.returncode == 0 else result.stderr.strip()

    def gone(self, answer):
        self.assertEqual(answer, "Error: Sending messages failed: No such device")

    def nobody(self, answer):
        self.assertEqual(answer, "Error: Sending messages failed: No such device or address")

    def test_i2cdetect_finds_it(self):
        with self.simulator() as simulator:
            for way in ((), ("-r",), ("-q",)):
                found = simulator.near("i2cdetect", "-y", *way, "1").stdout
                table = [word for line in found.splitlines()[1:] for word in line.split()[1:]]
                self.assertEqual([word for word in table if word != "--"], ["3c"], found)
            if os.path.ismount("/sys"):  # where i2cdetect looks whether there is one
                self.assertIn("zv32-sim", simulator.near("i2cdetect", "-l").stdout)
            self.assertEqual(simulator.end(), (0, ""))

    def test_get_and_get_id(self):
        with self.simulator() as simulator:
            self.assertEqual(self.talk(simulator, "w2 00 ff r1 r23 r1"),
                             ["79", "15 21 00 01 02 11 21 31 44 63 73 82 92 5a ac b3 b7 d1 d2 d3 d4 e1 e2", "79"])
            # As a host does that does not know the length.
            self.assertEqual(self.talk(simulator, "w2 02 fd r1 r1"), ["79", "04"])
            self.assertEqual(self.talk(simulator, "w2 02 fd r1 r6 r1"), ["79", "04 03 47 70 05 07", "79"])

    def test_write_read_and_erase_by_hand(self):
        read = "w2 11 ee r1 w5 08 00 00 00 08 r1 w2 03 fc r1 r4"
        with self.simulator() as simulator:
            self.assertEqual(self.talk(simulator, "w2 31 ce r1"), ["79"])
            self.assertEqual(self.talk(simulator, "w5 08 00 00 00 08"), [])
            self.assertEqual(self.talk(simulator, "r1"), ["79"])
            self.assertEqual(self.talk(simulator, "w6 03 11 22 33 44 47 r1"), ["79"])
            self.assertEqual(self.talk(simulator, read), ["79", "79", "79", "11 22 33 44"])
            self.assertEqual(self.talk(simulator, "w2 44 bb r1 w3 00 00 00 r1 w3 00 00 00 r1"), ["79", "79", "79"])
            self.assertEqual(self.talk(simulator, read), ["79", "79", "79", "ff ff ff ff"])

    def test_other_addresses_are_nobody(self):
        with self.simulator() as simulator:
            result = simulator.near("i2ctransfer", "-y", "1", "w2@0x3d", "0x02", "0xfd")
            self.nobody(result.stderr.strip())

    def test_refusals_are_told(self):
        with self.simulator() as simulator:
            self.assertEqual(self.talk(simulator, "w3 00 ff 00 r1"), ["1f"])
            self.assertEqual(simulator.end(), (0, "refused: 3 bytes where an opcode and its complement belong\n"))

    def test_busy(self):
        with self.simulator("--flash-time=300,0") as simulator:
            self.assertEqual(self.talk(simulator, "w2 44 bb r1 w3 00 00 00 r1 w3 00 00 00 r1"), ["79", "79", "76"])
            self.nobody(self.talk(simulator, "w2 02 fd"))
            wait_for(lambda: self.talk(simulator, "r1") == ["79"])

    def test_go_and_the_reset_button(self):
        with self.simulator() as simulator:
            self.talk(simulator, "w2 21 de r1 w5 08 00 00 00 08 r1")
            self.nobody(self.talk(simulator, "w2 02 fd"))
            simulator.press_reset()
            self.assertEqual(self.talk(simulator, "w2 02 fd r1"), ["79"])

    def test_memory_is_saved_when_the_bus_is_quiet(self):
        state = self.path("state")
        with self.simulator("--state", state) as simulator:
            before = os.stat(state).st_size
            self.talk(simulator, "w2 31 ce r1 w5 08 00 00 00 08 r1 w6 03 11 22 33 44 47 r1")
            wait_for(lambda: os.stat(state).st_size > before)
            simulator.process.kill()
            simulator.wait()
        with self.simulator("--state", state) as simulator:
            self.assertEqual(self.talk(simulator, "w2 11 ee r1 w5 08 00 00 00 08 r1 w2 03 fc r1 r4")[3], "11 22 33 44")

    def test_unplugged_for_ever(self):
        with self.simulator("--fault", "hangup@4") as simulator:
            self.gone(self.talk(simulator, "w2 11 ee r1 w5 08 00 00 00 08 r1"))
            self.assertEqual(simulator.wait(), (0, "fault: hangup@4\n"))
            self.assertFalse(os.path.exists(simulator.root))

    def test_unplugged_and_plugged_in_again(self):
        with self.simulator("--fault", "tx-hangup@3:100") as simulator:
            self.gone(self.talk(simulator, "w2 02 fd r1 r6 r1"))
            wait_for(lambda: not os.path.exists(f"{simulator.root}/dev/i2c-1"))
            self.assertEqual(simulator.process.stdout.readline(), simulator.ready)
            time.sleep(0.05)
            self.assertEqual(self.talk(simulator, "w2 02 fd r1"), ["79"])
            self.assertEqual(simulator.end(), (0, "fault: tx-hangup@3:100\n"))

    def test_pace(self):
        with self.simulator("--baud-pace") as simulator:
            begin = time.monotonic()
            self.talk(simulator, "r4000")
            self.assertGreaterEqual(time.monotonic() - begin, 4000 * 9 / 400000)


class Spi(DeviceTest):
    front = "--spi"

    def script(self, simulator, lines):
        """What a script of the client prints; `spi` is an open client."""
        result = simulator.near(sys.executable, "-B", "-c",
                                f"from spi_client import *\nspi = Spi('/dev/spidev0.0')\n{lines}", cwd=HERE)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        return result.stdout.split()

    def test_by_hand(self):
        with self.simulator() as simulator:
            self.assertEqual(self.script(simulator, """
for out in ("00000000", "5a7f", "00000000", "5a02fd", "00000000000000000000000000", "5a7f", "000000"):
    print(spi.transfer(bytes.fromhex(out)).hex())
"""), ["00000000", "0000", "5a790000", "000000", "5a795a04034770050732" "5a7900", "0000", "5a1f00"])
            self.assertEqual(simulator.end(), (0, ""))

    def test_chip_select(self):
        with self.simulator() as simulator:
            self.assertEqual(self.script(simulator, """
spi.open()
# Selected over the transfers of a call: one message.
spi.transfer(b"\\x5a", b"\\x02", b"\\xfd")
print(spi.transfer(bytes(2)).hex())
# Two messages, of which the second begins with 02.
spi.transfer(b"\\x5a", b"\\x02\\xfd", cs_change=[0])
print(spi.transfer(bytes(2)).hex())
# After the last transfer it is the other way round: the next call goes on with the message.
spi.transfer(b"\\x5a", cs_change=[0])
spi.transfer(b"\\x02\\xfd")
print(spi.transfer(bytes(2)).hex())
# A message and its answer in one call.
print(spi.transfer(b"\\x5a\\x01\\xfe", bytes(10), cs_change=[0]).hex())
"""), ["5a79", "5a1f", "5a79", "000000" "5a795a213412075a7900"])
            self.assertIn("ignored: a message that begins with 02", simulator.end()[1])

    def test_what_the_node_refuses(self):
        with self.simulator() as simulator:
            self.assertEqual(self.script(simulator, """
def number(call, *words):
    try:
        call(*words)
    except OSError as error:
        return error.errno
    return 0
print(number(spi.set_mode, 0), number(spi.set_mode, 1), number(spi.transfer, bytes(4096)),
      number(spi.transfer, bytes(4097)), number(fcntl.ioctl, spi.fd, 0x5401, bytes(100)))
"""), ["0", "22", "0", "90", "25"])
            self.assertEqual(simulator.end(), (0, "refused: SPI: mode 1\n"))

    def test_a_whole_image_by_the_client_s_own_command(self):
        image = self.path("image")
        with open(image, "wb") as out:
            out.write(random.Random(3).randbytes(5001))
        client = os.path.join(HERE, "spi_client.py")
        with self.simulator() as simulator:
            result = simulator.near(sys.executable, "-B", client, "/dev/spidev0.0", image)
            self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_who_has_it_open_when_it_is_unplugged_never_gets_it_back(self):
        with self.simulator("--fault", "hangup@3:50") as simulator:
            self.assertEqual(self.script(simulator, """
def number():
    try:
        spi.open()
    except OSError as error:
        return error.errno
    return 0
print(number(), number())
time.sleep(0.2)
print(number(), Spi("/dev/spidev0.0").open())
"""), ["0", "19", "19", "True"])
            self.assertEqual(simulator.end(), (0, "fault: hangup@3:50\n"))

    def test_an_open_node_does_not_hold_the_simulator_for_long(self):
        with self.simulator("--fault", "hangup@3") as simulator:
            self.assertEqual(self.script(simulator, """
spi.open()
for _ in range(100):
    try:
        spi.open()
    except OSError as error:
        print(error.errno)
"""), ["19"] * 100)
            self.assertEqual(simulator.wait(), (0, "fault: hangup@3\n"))

    def test_pace(self):
        with self.simulator("--baud-pace") as simulator:
            times = self.script(simulator, """
for spi.speed in (100000, 1000000):
    begin = time.monotonic()
    spi.transfer(bytes(2000))
    print(time.monotonic() - begin)
""")
            self.assertGreaterEqual(float(times[0]), 0.16)
            self.assertGreaterEqual(float(times[1]), 0.016)
            self.assertLess(float(times[1]), float(times[0]))


if __name__ == "__main__":
    unittest.main()
