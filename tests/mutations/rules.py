"""Which small mistakes can be made in a source: operators, constants, borders, truth values and calls that are left out."""
import re

# Literals and comments, whose text is not the code's.
TEXT = re.compile(r'R"\((?:.|\n)*?\)"|"(?:\\.|[^"\\\n])*"|\'(?:\\.|[^\'\\\n])+\'|//[^\n]*|/\*(?:.|\n)*?\*/')
# Lines that say nothing at run time.
SILENT = re.compile(r"^\s*(#|static_assert|using |namespace |template|extern |friend )")

# Binary operators stand between spaces, which tells them from brackets of templates, pointers and references.
SWAPS = {
    "<": ["<=", ">"], "<=": ["<", ">"], ">": [">=", "<"], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"], "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"], "&": ["|"], "|": ["&"],
    "^": ["|"], "<<": [">>"], ">>": ["<<"], "+=": ["-="], "-=": ["+="], "|=": ["&="], "&=": ["|="],
}
BINARY = re.compile(r"(?<= )(" + "|".join(re.escape(one) for one in sorted(SWAPS, key=len, reverse=True)) + r")(?= |$)", re.M)
NOT = re.compile(r"(?<![\w)])!(?=[\w(:])")
NUMBER = re.compile(r"(?<![\w.'])(0[xX][0-9A-Fa-f]+|\d+)(?=[uUlL]*(?![\w.']))")
TRUTH = re.compile(r"\b(true|false)\b")
STEP = re.compile(r"\+\+|--")
CALL = re.compile(r"^ +(?!return\b|delete\b|throw\b|co_)[A-Za-z_][\w:.]*(?:(?:->|\.)\w+|\[\w+\])*\(.*\);$", re.M)


def code_of(source):
    """The source with literals, comments and silent lines blanked, every character at its place."""
    def blank(found):
        return re.sub(r"[^\n]", " ", found.group())

    lines = TEXT.sub(blank, source).split("\n")
    return "\n".join(" " * len(line) if SILENT.match(line) else line for line in lines)


def number_after(text, step):
    value = int(text, 0) if text[:2].lower() == "0x" or text == "0" or text[0] != "0" else int(text, 8)
    return f"0x{value + step:X}" if text[:2].lower() == "0x" else str(value + step)


def balanced(text):
    depth = 0
    for letter in text:
        depth += {"(": 1, ")": -1}.get(letter, 0)
        if depth < 0:
            return False
    return depth == 0


def mistakes(source):
    """(begin, end, what comes there, kind) of every mistake that the rules know."""
    code = code_of(source)
    for found in BINARY.finditer(code):
        for other in SWAPS[found.group()]:
            yield found.start(), found.end(), other, "operator"
    for found in NOT.finditer(code):
        yield found.start(), found.end(), "", "negation"
    for found in NUMBER.finditer(code):
        for step in (1, -1):
            if step > 0 or int(found.group(), 0 if found.group() == "0" or found.group()[0] != "0" or found.group()[:2] in ("0x", "0X") else 8) > 0:
                yield found.start(), found.end(), number_after(found.group(), step), "constant"
    for found in TRUTH.finditer(code):
        yield found.start(), found.end(), {"true": "false", "false": "true"}[found.group()], "truth"
    for found in STEP.finditer(code):
        yield found.start(), found.end(), {"++": "--", "--": "++"}[found.group()], "step"
    for found in CALL.finditer(code):
        before = code[: found.start()].rstrip()
        if balanced(found.group()) and before[-1:] in "{};:)" or before.endswith("else"):
            begin = found.start() + len(found.group()) - len(found.group().lstrip())
            yield begin, found.end(), ";", "call"
