#!/usr/bin/env python3
"""The list of mistakes, and what becomes of it when sources change.

usage: listed_test.py
"""
import pathlib
import tempfile
import types
import unittest

import listed


def mistake(line, text, before="<", after="<=", begin=0):
    return types.SimpleNamespace(name="app/A.cpp", line=line, begin=begin or line * 100, text=text, before=before, after=after)


class Listed(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.addCleanup(setattr, listed, "file_of", listed.file_of)
        listed.file_of = lambda seed: pathlib.Path(directory.name) / f"{seed}.tsv"

    def write(self, *mistakes):
        listed.write(7, {key: ("noticed", "app.Test") for key in listed.keyed(mistakes)})

    def places(self, *mistakes):
        return [(number, one.line) for number, one, _ in listed.still_there(7, mistakes)]

    def test_no_list_has_no_rows(self):
        self.assertEqual(listed.rows(7), [])

    def test_a_mistake_moves_with_its_line(self):
        self.write(mistake(3, "a < b"), mistake(9, "c < d"))
        self.assertEqual(self.places(mistake(5, "a < b"), mistake(12, "c < d")), [(1, 5), (2, 12)])

    def test_one_whose_line_is_gone_keeps_its_number_and_its_row(self):
        self.write(mistake(3, "a < b"), mistake(9, "c < d"))
        self.assertEqual(self.places(mistake(5, "c < d")), [(2, 5)])
        listed.write(7, {key: ("survived", "") for key in listed.keyed([mistake(5, "c < d")])})
        self.assertEqual([(row.text, row.verdict) for row in listed.rows(7)], [("a < b", "noticed"), ("c < d", "survived")])

    def test_equal_ones_are_counted(self):
        self.write(mistake(3, "a < b < c", begin=301), mistake(3, "a < b < c", begin=305), mistake(4, "a < b < c"))
        self.assertEqual([row.nth for row in listed.rows(7)], ["0", "1", "2"])
        self.assertEqual(self.places(mistake(8, "a < b < c")), [(1, 8)])


if __name__ == "__main__":
    unittest.main()
