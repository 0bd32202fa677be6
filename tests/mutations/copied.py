"""The copy of the tree: its sources as they are, the same with mistakes, and the build of these."""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HOME = ROOT / "build/mutations"
SOURCE, TREE, BUILD = HOME / "source", HOME / "tree", HOME / "build"


def run(*command):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    return done.returncode, done.stdout


def build(*targets):
    status, told = run("ninja", "-C", str(BUILD), "-j2", *targets)
    if status != 0:
        sys.exit(told[-4000:])


def write(path, content):
    """Leaves alone what is the same, so that it is not built again."""
    if not (path.exists() and path.read_bytes() == content):
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(content)


def names():
    told = subprocess.run(["git", "-C", ROOT, "ls-files", "-co", "--exclude-standard"], check=True, stdout=subprocess.PIPE, text=True).stdout
    return [name for name in told.split("\n") if (ROOT / name).is_file()]


def copy(name, source, target):
    write(target / name, (source / name).read_bytes())
    (target / name).chmod((source / name).stat().st_mode)


def bring(keeps):
    """Brings the sources to what git knows, or only the tests of them, and makes a build of them where there is none."""
    for name in names():
        if name.startswith("tests/") or not keeps:
            copy(name, ROOT, SOURCE)
    if not (BUILD / "build.ninja").exists():
        bring_rest([])
        configure()


def bring_rest(mistaken):
    """Brings into the tree that is built what holds no mistakes."""
    for name in names():
        if name not in mistaken and (SOURCE / name).is_file():
            copy(name, SOURCE, TREE)


def configure():
    flags = "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -w -Wno-narrowing"
    status, told = run("cmake", "--preset", "debug", "-S", str(TREE), "-B", str(BUILD), flags)
    if status != 0:
        sys.exit(told)
    # The compiler is asked about sources before they are built, and reads the headers that are compiled once.
    _, told = run("ninja", "-C", str(BUILD), "-t", "targets", "all")
    build(*re.findall(r"^(\S+\.gch)(?=:)", told, re.M))
