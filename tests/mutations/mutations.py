#!/usr/bin/env python3
"""Makes small mistakes in the sources, one at a time and chosen by a seed, and looks whether the tests notice. Works on a
copy of the tree in build/mutations. What came out stands in a file there, a line for each, and a second run goes on behind it.

usage: mutations.py [--seed SEED] [--count COUNT] [--folder FOLDER]... [--by COMMAND] [--prepare|--keep]
  --by       a command that builds and tests are run by, such as "nice"
  --prepare  only copies and builds
  --keep     takes the copy as it is, whatever has changed in the tree since it was made
"""
import argparse
import collections
import json
import pathlib
import random
import re
import shlex
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import rules

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
HOME = ROOT / "build/mutations"
TREE, BUILD = HOME / "tree", HOME / "build"

MODEL = (["model_test", "model_library_test"], "^model[.]")
# Of each folder: the programs that know it best, and the names of their tests.
NEAREST = {
    "app": (["app_test", "console_test", "ZV32_ISP_Console"], "^(app|console)[.]"),
    "operations": (["operations_test"], "^operations[.]"),
    "link": (["link_test", "operations_test"], "^(link|operations)[.]"),
    "usersystemdata": MODEL, "files": MODEL, "device": MODEL, "foundation": MODEL,
    "libs/files": (["libfiles_test", "libfiles_fault_test", "hex-fuzz", "srecord-fuzz", "binary-fuzz", "map-fuzz"],
                   "^(libfiles[.]|fuzz[.](hex|srecord|binary|map)$)"),
    "libs/zvbl": (["zvbl_test", "zvbl_can_test", "zvbl_dfu_test", "zvbl_nodes_test", "zvbl_tty_test"], "^zvbl[.]"),
    "sim": (["sim_test", "zv32-sim", "zv32-sim-dev"], "^sim[.]"),
}
# All tests that look at what the programs do, and not at how they are written or packed.
BEHAVIOUR = "^(app|console|damage|e2e|fuzz|libfiles|line|link|look|matrix|model|operations|ring|sim|zvbl)[.]"
SECONDS_TO_BUILD, SECONDS_TO_TEST = 230, 900


class Works:
    def __init__(self, by):
        self.by = shlex.split(by)

    def run(self, command, limit):
        """(exit status or None when the time was up, what it said)"""
        try:
            done = subprocess.run([*self.by, "timeout", str(limit), *command], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
        except OSError as error:
            sys.exit(f"mutations: {error}")
        return (None if done.returncode == 124 else done.returncode), done.stdout

    def build(self, targets):
        return self.run(["ninja", "-C", str(BUILD), "-j2", *targets], SECONDS_TO_BUILD)

    def failure(self, names, *options):
        """The first of the tests that fails, or None."""
        command = ["ctest", "--test-dir", str(BUILD), "-j4", "--timeout", "120", "--stop-on-failure", "--no-tests=error", "-R", names]
        status, told = self.run([*command, *options], SECONDS_TO_TEST)
        if status == 0:
            return None
        failed = re.search(r"^\s*\d+ - (\S+) \(", told, re.M)
        return failed[1] if failed else "time"

    def test(self, names):
        """The first test that fails, and again when it runs alone: a busy machine makes others fail. None without one."""
        passed = []
        while True:
            failed = self.failure(names, *(["-E", f"^({'|'.join(passed)})$"] if passed else []))
            if failed in (None, "time") or self.failure(f"^{re.escape(failed)}$"):
                return failed
            passed.append(re.escape(failed))


def copy_tree():
    """Brings the copy to what git knows, and leaves alone what is the same."""
    names = subprocess.run(["git", "-C", ROOT, "ls-files", "-co", "--exclude-standard"], check=True, stdout=subprocess.PIPE, text=True).stdout.split("\n")
    for name in filter(None, names):
        source, target = ROOT / name, TREE / name
        if source.is_file() and not (target.exists() and target.read_bytes() == source.read_bytes()):
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(source.read_bytes())
            target.chmod(source.stat().st_mode)


def prepare(works, keeps):
    if not keeps:
        copy_tree()
    if not (BUILD / "build.ninja").exists():
        status, told = works.run(["cmake", "--preset", "debug", "-S", str(TREE), "-B", str(BUILD), "-DCMAKE_CXX_FLAGS_DEBUG=-O0"], 300)
        if status != 0:
            sys.exit(told)
    status, told = works.build([])
    while status is None:
        status, told = works.build([])
    if status != 0:
        sys.exit(told[-4000:])


Mutant = collections.namedtuple("Mutant", "folder name line begin end before after kind text")


def folder_of(name):
    return next((folder for folder in NEAREST if name.startswith(folder + "/")), None)


def mutants(folders):
    for folder in folders:
        for path in sorted((TREE / folder).rglob("*.cpp")):
            source = path.read_text()
            for begin, end, after, kind in rules.mistakes(source):
                line = source.count("\n", 0, begin) + 1
                yield Mutant(folder, str(path.relative_to(TREE)), line, begin, end, source[begin:end], after, kind, source.split("\n")[line - 1].strip())


def verdict(works, mutant):
    """("refused", ""): the compiler does not take it; ("noticed", test); ("survived", "")."""
    path = TREE / mutant.name
    whole = path.read_text()
    programs, tests = NEAREST[mutant.folder]
    try:
        path.write_text(whole[: mutant.begin] + mutant.after + whole[mutant.end :])
        for targets, names in ((programs, tests), ([], BEHAVIOUR)):
            status, _ = works.build(targets)
            if status != 0:
                return "refused", ""
            noticed = works.test(names)
            if noticed:
                return "noticed", noticed
        return "survived", ""
    finally:
        path.write_text(whole)


def told_before(results):
    rows = [json.loads(line) for line in results.read_text().split("\n") if line] if results.exists() else []
    return {tuple(row["mutant"]): row for row in rows}


def table(rows):
    print(f"{'folder':<16}{'mutants':>9}{'noticed':>9}{'%':>8}")
    for folder in [*NEAREST, ""]:
        told = [row["verdict"] for row in rows if row["verdict"] != "refused" and row["folder"].startswith(folder)]
        if told:
            print(f"{folder or 'all':<16}{len(told):>9}{told.count('noticed'):>9}{100 * told.count('noticed') / len(told):>8.1f}")
    for row in rows:
        if row["verdict"] == "survived":
            print("survived: {0}:{1}: {2!r} -> {3!r} in: {4}".format(*row["mutant"][:2], *row["mutant"][3:6]))


def main():
    words = argparse.ArgumentParser(usage=__doc__)
    words.add_argument("--seed", type=int, default=1)
    words.add_argument("--count", type=int, default=500)
    words.add_argument("--folder", action="append")
    words.add_argument("--by", default="")
    words.add_argument("--prepare", action="store_true")
    words.add_argument("--keep", action="store_true")
    asked = words.parse_args()
    works = Works(asked.by)
    prepare(works, asked.keep)
    if asked.prepare:
        return 0
    results = HOME / f"results-{asked.seed}.jsonl"
    before, rows = told_before(results), []
    chosen = sorted(mutants(asked.folder or NEAREST))
    random.Random(asked.seed).shuffle(chosen)
    for mutant in chosen:
        if sum(row["verdict"] != "refused" for row in rows) == asked.count:
            break
        key = (mutant.name, mutant.line, mutant.begin, mutant.before, mutant.after, mutant.text)
        row = before.get(key)
        if not row:
            start = time.time()
            answer, test = verdict(works, mutant)
            row = {"folder": mutant.folder, "kind": mutant.kind, "mutant": key, "verdict": answer, "test": test, "seconds": round(time.time() - start)}
            with open(results, "a") as file:
                file.write(json.dumps(row) + "\n")
            print(f"{answer:<9}{mutant.name}:{mutant.line}: {mutant.before!r} -> {mutant.after!r} {test}", flush=True)
        rows.append(row)
    table(rows)
    return 1 if any(row["verdict"] == "survived" for row in rows) else 0


if __name__ == "__main__":
    sys.exit(main())
