#!/usr/bin/python3
"""Makes small mistakes in the sources, chosen by a seed, and looks whether the tests notice. Works on a copy of the tree in
build/mutations, which is built once with all of them, each behind a switch; what cannot stand behind one is built by itself.
What came out stands in a file there, a line for each, and at the end in the list of the seed beside this program; a second
run goes on where the first one ended.

usage: mutations.py [--seed SEED] [--count COUNT] [--folder FOLDER]... [--when COMMAND] [--workers COUNT] [--anew]
                    [--keep [--again NAMES]]
  --when   waits before each mistake until this command succeeds
  --workers  so many tests at a time
  --anew   judges what the list of the seed knows already too, beginning with the test that noticed it
  --keep   takes the mistakes as they are, whatever has changed since, and only the tests from the tree
  --again  judges once more what survived, by those tests of its folder whose names begin so
"""
import argparse
import collections
import concurrent.futures
import hashlib
import json
import pathlib
import random
import re
import struct
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).parent))
import compiling
import copied
import listed
import programs
import rules
import suite
from copied import BUILD, HOME, SOURCE, TREE

NOTES = HOME / "notes"
HEADER = pathlib.Path(__file__).resolve().parent / "switch.h"
# What writes the sources with switches.
WRITERS = [(pathlib.Path(__file__).resolve().parent / name).read_text() for name in ("compiling.py", "extents.py", "switches.py")]
EXPLAINED = pathlib.Path(__file__).resolve().parent / "explained.txt"

# Of each folder: the tests that know it best.
MODEL = "model[.]"
NEAREST = {
    "app": "(app|console)[.]", "operations": "operations[.]", "link": "(link|operations)[.]", "usersystemdata": MODEL, "files": MODEL,
    "device": MODEL, "foundation": MODEL, "libs/files": "(libfiles[.]|fuzz[.](hex|srecord|binary|map)$)", "libs/zvbl": "zvbl[.]", "sim": "sim[.]",
}
# What is asked first about every mistake, and what about those that this did not notice: the names of the tests, and how many
# seconds they take at the most.
NEAR = "(app|console|fuzz|libfiles|link|model|operations|sim|zvbl)[.]"
FAR = "(e2e[.](?!books|hooks|line|make|rehearse|station|README)|look[.]|preload[.]|ring[.])"
ROUNDS = ((NEAR, 1.0), (NEAR, 1e9), (FAR, 1e9), ("", 1e9))

WIDTHS = (16, 9, 7, 9, 7, 8, 11, 6, 12)

Mutant = collections.namedtuple("Mutant", "folder name line begin end before after kind text")


def folder_of(name):
    return next(folder for folder in NEAREST if name.startswith(folder + "/"))


def mutants(folders):
    for folder in folders:
        for path in sorted((SOURCE / folder).rglob("*.cpp")):
            source = path.read_text(encoding="latin-1")
            for begin, end, after, kind in rules.mistakes(source):
                line = source.count("\n", 0, begin) + 1
                yield Mutant(folder, str(path.relative_to(SOURCE)), line, begin, end, source[begin:end], after, kind, source.split("\n")[line - 1].strip())


def settled(name, chosen):
    """(the source with its switches, how each of its mistakes is built: "switch", "single" or "refused")."""
    source = compiling.Source(compiling.Compiler(BUILD), SOURCE / name, TREE / name, chosen, NOTES, HEADER)
    source.settle()
    how = {number: "switch" if number in source.switchable else "refused" if source.refused(number) else "single" for number, _ in chosen}
    return source.text(), how


def settle_all(chosen):
    """How each mistake is built; writes the sources with switches into the copy, and what was found out to a file beside it."""
    sources = collections.defaultdict(list)
    for number, mutant in chosen:
        sources[mutant.name].append((number, mutant))
    file = HOME / "settled.json"
    known, how = json.loads(file.read_text()) if file.exists() else {}, {}
    with concurrent.futures.ProcessPoolExecutor(2) as pool:
        asked = {}
        for name, here in sources.items():
            key = hashlib.sha256(json.dumps([here, (SOURCE / name).read_text(encoding="latin-1"), WRITERS]).encode()).hexdigest()
            asked[name] = key, None if key in known else pool.submit(settled, name, here)
        for name, (key, answer) in asked.items():
            if answer:
                known[key] = answer.result()
            copied.write(TREE / name, known[key][0].encode("latin-1"))
            how.update({int(number): one for number, one in known[key][1].items()})
    file.write_text(json.dumps(known))
    return how, set(sources)


class Judge:
    def __init__(self, results, when, known):
        """`known`: by mistake the test that noticed it before."""
        self.results, self.when = results, when
        self.tests, self.programs = suite.known(BUILD), programs.Programs(BUILD)
        self.programs.find()
        self.noticed = collections.defaultdict(list)
        for mutant, test in known.items():
            self.remember(mutant, test)

    def remember(self, mutant, name):
        self.noticed[mutant.name].append(name)
        self.noticed[pathlib.Path(mutant.name).parent].append(name)

    def wait(self):
        while self.when and copied.run("sh", "-c", self.when)[0] != 0:
            time.sleep(1)

    def measure(self, names):
        """The tests that begin so and pass without a mistake; what they pass is found out where it is not known."""
        file = HOME / "measured.json"
        known = json.loads(file.read_text()) if file.exists() else {}
        new = [test for test in self.tests if re.match(names, test.name) and test.name not in known]
        for at in range(0, len(new), 20):
            known.update(self.measured(new[at : at + 20]))
            file.write_text(json.dumps(known))
        for test in self.tests:
            if test.name in known:
                test.seconds, test.passed, passes = known[test.name]
                test.passes = set(passes)
        return [test for test in self.tests if re.match(names, test.name) and test.passed]

    def measured(self, tests):
        """Runs them while all mistakes that are passed are written down: two at a time, and both have passed what was passed
        meanwhile."""
        NOTES.write_bytes(b"")
        self.programs.make(-1)
        with concurrent.futures.ThreadPoolExecutor(suite.WORKERS) as pool:
            runs = dict(zip(tests, pool.map(lambda test: (self.wait(), suite.measure(test))[1], tests)))
        self.programs.make(0)
        notes, known = list(struct.iter_unpack("qq", NOTES.read_bytes())), {}
        for test, (start, stop, passed) in runs.items():
            passes = sorted({number for number, when in notes if start <= when <= stop})
            if not passed:
                # What counts system calls is disturbed by the writing down.
                passed, passes = suite.measure(test)[2], list(range(8192))
            if not passed:
                print(f"fails without a mistake, and is left out: {test.name}", flush=True)
            known[test.name] = test.seconds, passed, passes
        return known

    def ordered(self, mutant, tests):
        """First the tests that noticed something in the same file, or are those of a chip that the line names; then those of the
        folder, beginning with such that noticed something near by; each with the quick ones in front."""
        def rank(test):
            if test.name in self.noticed[mutant.name] or any(word in test.name for word in re.findall(r"\w*[A-Z]\w*\d{3}\w*", mutant.text)):
                return 0, test.seconds
            nearest = re.match(NEAREST[mutant.folder], test.name)
            return (3 if not nearest else 1 if test.name in self.noticed[pathlib.Path(mutant.name).parent] else 2), test.seconds

        return sorted(tests, key=rank)

    def failing(self, mutant, tests, make):
        """The first test that fails with the mistake twice, and not without it. `make` makes it (True) and unmakes it."""
        tests = self.ordered(mutant, tests)
        while tests:
            make(True)
            now = suite.Run(suite.limit)
            failed = now.all(tests)
            self.programs.end_those_left()
            if not failed:
                return None
            if not suite.passes_alone(failed):
                make(False)
                self.programs.end_those_left()
                if suite.passes_alone(failed, 3):
                    return failed
            tests = [test for test in tests if test is not failed and test not in now.passed]
        return None

    def switched(self, number, mutant, tests):
        try:
            return self.failing(mutant, tests, lambda on: self.programs.make(number if on else 0))
        finally:
            self.programs.make(0)
            self.programs.end_those_left()

    def single(self, number, mutant, tests):
        path = TREE / mutant.name
        whole = path.read_text(encoding="latin-1")
        source = compiling.Source(compiling.Compiler(BUILD), SOURCE / mutant.name, path, [(number, mutant)], NOTES, HEADER)
        mistaken = source.single(number)

        def make(on):
            copied.write(path, (mistaken if on else whole).encode("latin-1"))
            copied.build()

        try:
            return self.failing(mutant, tests, make)
        finally:
            make(False)
            self.programs.find()

    def judge(self, number, mutant, how, tests, turn):
        """The row of what came out."""
        self.wait()
        start = time.time()
        test = (self.switched if how == "switch" else self.single)(number, mutant, tests)
        if test:
            self.remember(mutant, test.name)
        row = {"mutant": mutant, "how": how, "verdict": "noticed" if test else "survived", "test": test.name if test else "", "round": turn, "seconds": round(time.time() - start, 1)}
        with open(self.results, "a") as file:
            file.write(json.dumps(row) + "\n")
        print(f"{row['verdict']:<9}{number} {mutant.name}:{mutant.line}: {mutant.before!r} -> {mutant.after!r} {row['test']} {row['seconds']}", flush=True)
        return row


def told_before(results):
    """By mistake what was told last."""
    rows = [json.loads(line) for line in results.read_text().split("\n") if line] if results.exists() else []
    return {Mutant(*row["mutant"]): row for row in rows}


def explained():
    """(file, text of the line, before, after) of each mistake that cannot be noticed; "*" is any."""
    lines = EXPLAINED.read_text().split("\n") if EXPLAINED.exists() else []
    return [line.split(" :: ")[:4] for line in lines if line and not line.startswith("#")]


def is_explained(mutant, reasons):
    told = mutant.name, mutant.text, mutant.before, mutant.after
    return any(all(one in ("*", other) for one, other in zip(reason, told)) for reason in reasons)


def rows_of(asked, results, there):
    """By mistake what was told last, here or, where it was noticed, in the list; `there`: what of it can still be made."""
    rows = [] if asked.anew or asked.folder else there
    noticed = {mutant: {"verdict": row.verdict, "test": row.test} for _, mutant, row in rows if row.verdict == "noticed"}
    return {**noticed, **told_before(results)}


def verdict_of(mutant, rows, reasons):
    verdict = rows[mutant]["verdict"] if mutant in rows else "survived"
    return "explained" if verdict == "survived" and is_explained(mutant, reasons) else verdict


def table(verdicts):
    """`verdicts`: by mistake ("noticed", "survived" or "explained", the test that noticed it). Whether one survived."""
    rings = ["parts", "console", "whole", "sweeps"]
    print("".join(f"{word:>{width}}" for word, width in zip(["folder", "mistakes", *rings, "explained", "left", "noticed, %"], WIDTHS)))
    for folder in [*NEAREST, ""]:
        told = [one for mutant, one in verdicts.items() if mutant.folder.startswith(folder)]
        if told:
            counts = [sum(verdict == "noticed" and ring_of(test) == ring for verdict, test in told) for ring in rings]
            reasoned, left = (sum(verdict == one for verdict, _ in told) for one in ("explained", "survived"))
            percent = f"{100 * sum(counts) / max(1, len(told) - reasoned):.1f}"
            print("".join(f"{word:>{width}}" for word, width in zip([folder or "all", len(told), *counts, reasoned, left, percent], WIDTHS)))
    survived = [mutant for mutant, (verdict, _) in verdicts.items() if verdict == "survived"]
    for mutant in survived:
        print(f"survived: {mutant.name}:{mutant.line}: {mutant.before!r} -> {mutant.after!r} in: {mutant.text}")
    return bool(survived)


def ring_of(test):
    """Who noticed: tests of single parts, of the console beside doubles, of whole programs and jobs, or sweeps."""
    start = test.split(".")[0]
    return {"console": "console", "damage": "sweeps", "faults": "sweeps", "host": "sweeps"}.get(start, "parts" if re.match(NEAR, test) else "whole")


def asked_for():
    words = argparse.ArgumentParser(usage=__doc__)
    words.add_argument("--seed", type=int, default=1)
    words.add_argument("--count", type=int, default=500)
    words.add_argument("--folder", action="append")
    words.add_argument("--when", default="")
    words.add_argument("--workers", type=int, default=2)
    words.add_argument("--anew", action="store_true")
    words.add_argument("--keep", action="store_true")
    words.add_argument("--again", default="")
    return words.parse_args()


def judge_again(judge, names, mistakes, rows):
    for number, mutant, how in mistakes:
        if rows.get(mutant, {}).get("verdict") == "survived":
            tests = [test for test in judge.tests if re.match(names, test.name) and re.match(NEAREST[mutant.folder], test.name)]
            rows[mutant] = judge.judge(number, mutant, how, tests, rows[mutant]["round"])


def judge_all(judge, mistakes, rows):
    asked = set()
    for turn, (names, seconds) in enumerate(ROUNDS):
        tests = [test for test in judge.measure(names) if test.seconds <= seconds and test not in asked]
        asked.update(tests)
        for number, mutant, how in mistakes:
            row = rows.get(mutant)
            if not row or row["verdict"] == "survived" and row["round"] < turn:
                passing = [test for test in tests if number in test.passes or how == "single"]
                rows[mutant] = judge.judge(number, mutant, how, passing, turn)


def choice(asked, everywhere, there):
    """(number, mistake): those of the list of this seed that can still be made; where there is none some by chance, and more
    than are asked for: some of them the compiler does not take."""
    if listed.rows(asked.seed) and not asked.folder:
        return [(number, mutant) for number, mutant, _ in there]
    chosen = [mutant for mutant in everywhere if mutant.folder in (asked.folder or NEAREST)]
    random.Random(asked.seed).shuffle(chosen)
    return list(enumerate(chosen[: asked.count + asked.count // 8 + 5], 1))


def main():
    asked = asked_for()
    suite.WORKERS = asked.workers
    copied.bring(asked.keep)
    everywhere = sorted(mutants(NEAREST))
    there = listed.still_there(asked.seed, everywhere)
    chosen = choice(asked, everywhere, there)
    # The compiler is asked about sources with the headers of the copy.
    copied.bring_rest({mutant.name for _, mutant in chosen})
    how, _ = settle_all(chosen)
    copied.build()
    results = HOME / f"results-{asked.seed}.jsonl"
    told = [(number, mutant, how[number]) for number, mutant in chosen if how[number] != "refused"][: asked.count]
    rows, reasons = rows_of(asked, results, there), explained()
    mistakes = [one for one in sorted(told, key=lambda one: one[2] == "single") if not is_explained(one[1], reasons)]
    known = {mutant: row.test for _, mutant, row in there if row.test}
    judge = Judge(results, asked.when, {**known, **{mutant: row["test"] for mutant, row in rows.items() if row["test"]}})
    if asked.again:
        judge_again(judge, asked.again, mistakes, rows)
    judge_all(judge, mistakes, rows)
    verdicts = {mutant: (verdict_of(mutant, rows, reasons), rows.get(mutant, {}).get("test", "")) for _, mutant, _ in told}
    if not asked.folder:
        listed.write(asked.seed, {key: verdicts[mutant] for key, mutant in listed.keyed(everywhere).items() if mutant in verdicts})
    return 1 if table(verdicts) else 0


if __name__ == "__main__":
    sys.exit(main())
