"""Which part of an expression a small mistake is made in, as clang sees it, so that the sources can hold the mistake and what
is right side by side."""
import re
import shlex

import clang.cindex
from clang.cindex import CursorKind

OPERATORS = (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR, CursorKind.CALL_EXPR)
UNARY = (CursorKind.UNARY_OPERATOR, CursorKind.CALL_EXPR)
LITERALS = (CursorKind.INTEGER_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR)
CLASSES = (CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL)
FUNCTIONS = (CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR)


class Extent:
    """Bytes [begin, end) of a file. `wrong` makes the mistaken text of the texts of the parts."""

    def __init__(self, begin, end, parts, wrong, kind):
        self.begin, self.end, self.parts, self.wrong, self.kind = begin, end, parts, wrong, kind


class Constant:
    """A variable or a function whose value the compiler knows, and how it is declared when the compiler need not know it."""

    def __init__(self, cursor, begin, end, next_word):
        self.begin, self.end = cursor.extent.start.offset, cursor.extent.end.offset
        if cursor.kind != CursorKind.VAR_DECL:
            word = "inline "
        elif cursor.semantic_parent.kind in CLASSES:
            word = "inline const "
        else:
            word = "" if next_word == "const" else "const "
        self.relaxed = Extent(begin, end, [], lambda: word, "word")


class File:
    """The expressions and constants of one source. `command` is how it is compiled."""

    def __init__(self, path, command):
        words = shlex.split(command)[1:]
        arguments = [word for word in words if word.startswith(("-I", "-D", "-std"))]
        arguments += [word for at, word in enumerate(words) if "-isystem" in words[max(0, at - 1) : at + 1]]
        self.source = path.read_text(encoding="latin-1")
        unit = clang.cindex.Index.create().parse(str(path), args=[*arguments, "-w"])
        self.cursors, self.constants = [], []
        for cursor in unit.cursor.get_children():
            if cursor.location.file and cursor.location.file.name == str(path):
                self.walk(cursor)

    def walk(self, cursor):
        start, end = cursor.extent.start, cursor.extent.end
        if cursor.kind in OPERATORS + UNARY + LITERALS:
            self.cursors.append((start.offset, end.offset, cursor))
        if cursor.kind == CursorKind.VAR_DECL or cursor.kind in FUNCTIONS:
            found = re.match(r"[\w ]*\bconstexpr\b ?", self.source[start.offset : end.offset])
            if found:
                begin = start.offset + found.group().index("constexpr")
                self.constants.append(Constant(cursor, begin, start.offset + found.end(), re.match(r"\w*", self.source[start.offset + found.end() :])[0]))
        for child in cursor.get_children():
            self.walk(child)

    def extent(self, mutant):
        """Where the mistake is, or None where clang does not see it as the rules do."""
        make = {"operator": self.operator, "negation": self.negation, "step": self.step, "call": self.call}
        return make.get(mutant.kind, self.literal)(mutant)

    def around(self, kinds, fits):
        found = [(end - begin, begin, end, cursor) for begin, end, cursor in self.cursors if cursor.kind in kinds and fits(begin, end, cursor)]
        return min(found, key=lambda one: one[0])[1:] if found else None

    def operator(self, mutant):
        def fits(begin, end, cursor):
            if not begin < mutant.begin < mutant.end < end:
                return False
            ends = [(child.extent.start.offset, child.extent.end.offset) for child in cursor.get_children()]
            ends = [one for one in ends if one != (mutant.begin, mutant.end)]
            return len(ends) == 2 and ends[0][0] == begin and ends[0][1] <= mutant.begin and ends[1][0] >= mutant.end and ends[1][1] == end

        found = self.around(OPERATORS, fits)
        if not found:
            return None
        begin, end, _ = found
        return Extent(begin, end, [(begin, mutant.begin), (mutant.end, end)], lambda left, right: f"(({left}){mutant.after}({right}))", mutant.kind)

    def negation(self, mutant):
        found = self.around(UNARY, lambda begin, end, _: begin == mutant.begin)
        return found and Extent(*found[:2], [(mutant.end, found[1])], "static_cast<bool>({})".format, mutant.kind)

    def step(self, mutant):
        found = self.around(UNARY, lambda begin, end, _: begin == mutant.begin or end == mutant.end)
        if not found:
            return None
        begin, end, _ = found
        if begin == mutant.begin:
            return Extent(begin, end, [(mutant.end, end)], lambda text: f"({mutant.after}{text})", mutant.kind)
        return Extent(begin, end, [(begin, mutant.begin)], lambda text: f"({text}{mutant.after})", mutant.kind)

    def literal(self, mutant):
        found = self.around(LITERALS, lambda begin, end, _: begin == mutant.begin)
        if not found:
            return None
        suffix = self.source[mutant.end : found[1]]
        return Extent(*found[:2], [], lambda: mutant.after + suffix, mutant.kind)

    def call(self, mutant):
        return Extent(mutant.begin, mutant.end, [], lambda: "", mutant.kind)
