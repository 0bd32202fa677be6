"""The list of the mistakes of a seed and of what came of each. It stands in the tree, so that a run goes on where another one
ended, and has the same mistakes whatever has changed in other lines since."""
import collections
import pathlib

COLUMNS = "name text nth before after verdict test".split()
Row = collections.namedtuple("Row", COLUMNS)


def file_of(seed):
    return pathlib.Path(__file__).resolve().parent / f"judged-{seed}.tsv"


def keyed(mutants):
    """By (file, text of the line, which of the equal ones in that file, before, after): the mistakes."""
    seen, found = collections.Counter(), {}
    for mutant in sorted(mutants, key=lambda one: (one.name, one.begin, one.after)):
        alike = mutant.name, mutant.text, mutant.before, mutant.after
        found[(mutant.name, mutant.text, str(seen[alike]), mutant.before, mutant.after)] = mutant
        seen[alike] += 1
    return found


def rows(seed):
    lines = file_of(seed).read_text(encoding="latin-1").split("\n")[1:] if file_of(seed).exists() else []
    return [Row(*line.split("\t")) for line in lines if line]


def still_there(seed, mutants):
    """(number, mistake, row) of those of the list that can still be made."""
    found = keyed(mutants)
    return [(number, found[row[:5]], row) for number, row in enumerate(rows(seed), 1) if row[:5] in found]


def write(seed, told):
    """`told`: by key of a mistake (verdict, test). Rows of mistakes that cannot be made any more stay as they are."""
    known = rows(seed) or [Row(*key, "", "") for key in told]
    lines = ["\t".join(COLUMNS), *("\t".join([*row[:5], *told.get(row[:5], row[5:])]) for row in known)]
    file_of(seed).write_text("\n".join(lines) + "\n", encoding="latin-1")
