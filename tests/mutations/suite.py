"""The tests that ctest knows, each with what it passes and how long it takes, and the running of them until one fails."""
import concurrent.futures
import json
import os
import pathlib
import re
import signal
import subprocess
import tempfile
import threading
import time

# All tests that look at what the programs do, and not at how they are written or packed.
BEHAVIOUR = "(app|console|damage|e2e|faults|fuzz|host|libfiles|line|link|look|matrix|model|operations|preload|ring|sim|zvbl)[.]"
WORKERS = 2


class Test:
    def __init__(self, row):
        self.name, self.command = row["name"], row.get("command")
        properties = {one["name"]: one["value"] for one in row["properties"]}
        self.place = properties.get("WORKING_DIRECTORY")
        self.skip = properties.get("SKIP_RETURN_CODE", 0)
        self.environment = dict(os.environ)
        self.environment.update(one.split("=", 1) for one in properties.get("ENVIRONMENT", []))
        for one in properties.get("ENVIRONMENT_MODIFICATION", []):
            name, change = one.split("=", 1)
            self.environment[name] = change.split(":", 1)[1]
        self.alone = properties.get("RUN_SERIAL", False)
        self.seconds, self.passes = 5.0, set()

    def start(self):
        # Some look at what their own output is, and a device is not what ctest gives them.
        with tempfile.TemporaryFile() as told:
            return subprocess.Popen(self.command, cwd=self.place, env=self.environment, stdin=subprocess.DEVNULL, stdout=told, stderr=told,
                                    start_new_session=True)


def known(build):
    told = subprocess.run(["ctest", "--test-dir", str(build), "--show-only=json-v1"], check=True, stdout=subprocess.PIPE).stdout
    rows = [row for row in json.loads(told)["tests"] if re.match(BEHAVIOUR, row["name"])]
    return [Test(row) for row in rows if row.get("command")]


def end(process):
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()


class Run:
    """Some tests at a time, in their order, until one has failed."""

    def __init__(self, limit):
        self.limit, self.failed, self.passed, self.running = limit, None, set(), {}
        self.lock = threading.Lock()

    def one(self, test):
        with self.lock:
            if self.failed:
                return
            process = self.running[test] = test.start()
        try:
            status = process.wait(self.limit(test))
        except subprocess.TimeoutExpired:
            status = "time"
        with self.lock:
            del self.running[test]
            end(process)
            if status in (0, test.skip):
                self.passed.add(test)
            elif not self.failed:
                self.failed = test
                for other in self.running.values():
                    end(other)

    def all(self, tests):
        """The test that failed, or None."""
        with concurrent.futures.ThreadPoolExecutor(WORKERS) as pool:
            list(pool.map(self.one, tests))
        return self.failed


def limit(test):
    """Three times as long as the good run, and some seconds for a busy machine."""
    return 3 * test.seconds + 3


def passes_alone(test, times=1):
    return not Run(lambda one: times * limit(one)).all([test])


def measure(test):
    """(start, end, whether it passed), in microseconds of the system's clock since it was switched on."""
    start = time.clock_gettime_ns(time.CLOCK_MONOTONIC) // 1000
    passed = not Run(lambda _: 400).all([test])
    stop = time.clock_gettime_ns(time.CLOCK_MONOTONIC) // 1000
    test.seconds = (stop - start) / 1e6
    return start, stop, passed
