#!/usr/bin/env python3
"""What becomes of a source with mistakes behind switches.

usage: switches_test.py
"""
import types
import unittest

import rules
import switches


def extent(source, text, kind, parts=(), wrong=lambda: "", last=False):
    begin = source.rindex(text) if last else source.index(text)
    return types.SimpleNamespace(begin=begin, end=begin + len(text), parts=list(parts), wrong=wrong, kind=kind)


def swapped(source, text, operator, other):
    one = extent(source, text, "operator", wrong=lambda left, right: f"(({left}){other}({right}))")
    middle = one.begin + text.index(operator)
    one.parts = [(one.begin, middle), (middle + len(operator), one.end)]
    return one


class Switches(unittest.TestCase):
    def test_a_mistake_stands_beside_what_is_right(self):
        source = "return a < 7;\n"
        one = swapped(source, "a < 7", "<", "<=")
        self.assertEqual(switches.single(source, one), "return ((a)<=(7));\n")
        self.assertEqual(switches.switched(source, [(3, one)], [], "HEAD\n"), "HEAD\nreturn (mutations::madeIs(3) ? ((a)<=(7)) : a < 7);\n")

    def test_one_within_another_is_in_both_sides_of_it(self):
        source = "return a < 7;\n"
        edits = [(3, swapped(source, "a < 7", "<", "<=")), (4, extent(source, "7", "constant", wrong=lambda: "8"))]
        seven = "(mutations::madeIs(4) ? 8 : 7)"
        self.assertEqual(switches.switched(source, edits, [], ""), f"return (mutations::madeIs(3) ? ((a)<=({seven})) : a < {seven});\n")

    def test_two_at_one_place_are_asked_for_in_turn(self):
        source = "return 7;\n"
        edits = [(number, extent(source, "7", "constant", wrong=lambda text=text: text)) for number, text in ((1, "8"), (2, "6"))]
        self.assertEqual(switches.switched(source, edits, [], ""), "return (mutations::madeIs(1) ? 8 : mutations::madeIs(2) ? 6 : 7);\n")

    def test_a_call_that_is_left_out_takes_no_else(self):
        source = "if (a)\n    b();\nelse\n    c();\n"
        self.assertEqual(switches.switched(source, [(5, extent(source, "b();", "call"))], [], ""),
                         "if (a)\n    { if (!mutations::madeIs(5)) b(); }\nelse\n    c();\n")

    def test_lines_stay_where_they_are(self):
        source = "return a < // so it is\n       7;\nconstexpr int b = 1;\n"
        relaxed = types.SimpleNamespace(relaxed=extent(source, "constexpr ", "word", wrong=lambda: "const "))
        text = switches.switched(source, [(3, swapped(source, "a < // so it is\n       7", "<", ">"))], [relaxed], "")
        self.assertEqual(text, "return (mutations::madeIs(3) ? ((a)>(7)) : a < // so it is\n       7);\nconst int b = 1;\n")

    def test_the_rules_leave_texts_and_templates_alone(self):
        source = 'std::vector<int> a(3); // 1 < 2\nsay("4 + 5");\n'
        self.assertEqual([(source[begin:end], after) for begin, end, after, _ in rules.mistakes(source)], [("3", "4"), ("3", "2")])


if __name__ == "__main__":
    unittest.main()
