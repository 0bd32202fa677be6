"""What every test of the simulator as a process stands on: one that runs, and a directory for each test.
The program's path is the first word of the command line."""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

SIM = sys.argv.pop(1)
CHIP = "ZV32F403A_1024K"
SECTOR = 2048


def run(*words):
    return subprocess.run([SIM, *words], capture_output=True, text=True, timeout=10)


def wait_for(condition):
    deadline = time.monotonic() + 10
    while not condition():
        if time.monotonic() > deadline:
            raise AssertionError("it never came")
        time.sleep(0.002)


class Simulator:
    """One running simulator."""

    def __init__(self, directory, *words, chip=CHIP):
        self.port = os.path.join(directory, "tty")
        self.process = subprocess.Popen([SIM, "--chip", chip, "--usart", self.port, *words], text=True,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        self.ready = self.process.stdout.readline()

    def end(self, how=signal.SIGTERM):
        """Exit status and what it said on standard error."""
        self.process.send_signal(how)
        return self.wait()

    def wait(self):
        said = self.process.communicate(timeout=10)[1]
        return self.process.returncode, said


class SimulatorTest(unittest.TestCase):
    def setUp(self):
        self.directory = tempfile.mkdtemp(prefix="zv32-sim-")
        self.addCleanup(shutil.rmtree, self.directory)

    def path(self, name):
        return os.path.join(self.directory, name)

    @contextlib.contextmanager
    def simulator(self, *words, **more):
        simulator = Simulator(self.directory, *words, **more)
        try:
            yield simulator
        finally:
            if simulator.process.poll() is None:
                simulator.process.kill()
                simulator.process.communicate()
