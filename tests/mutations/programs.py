"""The programs of a build that hold mistakes: which one is made stands in their files."""
import os
import pathlib
import shutil
import signal

MARK = b"number of the mistake: \0"


class Programs:
    def __init__(self, build):
        self.build, self.places = build, {}

    def find(self):
        """Has to be called again after each build."""
        self.places = {}
        for path in self.build.rglob("*"):
            if path.is_symlink() or not path.is_file() or not (os.access(path, os.X_OK) or ".so" in path.name):
                continue
            content = path.read_bytes()
            if content[:4] == b"\x7fELF" and MARK in content:
                self.places[path] = list(finds(content))

    def make(self, number):
        for path, places in self.places.items():
            time = path.stat()
            with writable(path) as file:
                for place in places:
                    file.seek(place + len(MARK))
                    file.write(number.to_bytes(4, "little", signed=True))
            os.utime(path, ns=(time.st_atime_ns, time.st_mtime_ns))

    def end_those_left(self):
        """Ends what a test has left running of these programs."""
        for process in pathlib.Path("/proc").glob("[0-9]*"):
            try:
                if pathlib.Path(os.readlink(process / "exe").removesuffix(" (deleted)")).is_relative_to(self.build):
                    os.kill(int(process.name), signal.SIGKILL)
            except (FileNotFoundError, PermissionError, ProcessLookupError):
                pass


def finds(content):
    at = content.find(MARK)
    while at >= 0:
        yield at
        at = content.find(MARK, at + 1)


def writable(path):
    """The file, or where a process still runs it a copy in its place."""
    try:
        return open(path, "r+b")
    except OSError:
        copy = path.with_name(path.name + ".copy")
        shutil.copy2(path, copy)
        copy.rename(path)
        return open(path, "r+b")
