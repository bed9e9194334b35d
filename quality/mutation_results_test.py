#!/usr/bin/python3
"""Tests of mutation_results.py."""

import pathlib
import tempfile
import unittest

from mutation_results import (Equivalent, Mutant, Results, read_equivalents, stale_entries, verdict)
from mutations import mutations_of

ENTRY = """\
# What is told of the list.

file: value/a.cc
line: return a: b;
mutant: return b: a;
reason: It is all the same.
"""


def mutants(source):
    return [Mutant("value/a.cc", source, mutation, number)
            for number, mutation in enumerate(mutations_of(source))]


class Equivalents(unittest.TestCase):
    def test_entries_are_read(self):
        self.assertEqual(
            read_equivalents(ENTRY),
            [Equivalent("value/a.cc", "return a: b;", "return b: a;", "It is all the same.")])

    def test_an_entry_may_name_the_line_above(self):
        entry = ENTRY.replace("line:", "above: int b;\nline:")
        self.assertEqual(read_equivalents(entry)[0].above, "int b;")

    def test_an_entry_without_a_reason_is_refused(self):
        with self.assertRaises(ValueError):
            read_equivalents(ENTRY.replace("reason: It is all the same.\n", ""))

    def test_an_entry_with_an_unknown_field_is_refused(self):
        with self.assertRaises(ValueError):
            read_equivalents(ENTRY + "because: of that\n")

    def test_the_line_above_tells_lines_apart(self):
        first, second = mutants("int a;\nreturn true;\nint b;\nreturn true;\n")
        entry = Equivalent("value/a.cc", "return true;", "return false;", "Because.", "int b;")
        self.assertFalse(entry.covers(first))
        self.assertTrue(entry.covers(second))


class Outcomes(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.path = pathlib.Path(directory.name) / "results.jsonl"

    def test_outcomes_are_kept_through_unrelated_edits(self):
        Results(self.path).add(mutants("return true;\n")[0], "killed", "tests")
        results = Results(self.path)
        self.assertEqual(results.outcome(mutants("return true;\nreturn 1;\n")[0]), "killed")
        self.assertEqual(results.outcome(mutants("return false;\n")[0]), "untried")

    def test_the_last_outcome_holds(self):
        mutant = mutants("return true;\n")[0]
        results = Results(self.path)
        results.add(mutant, "survived", "")
        results.add(mutant, "killed", "tests")
        self.assertEqual(Results(self.path).outcome(mutant), "killed")

    def test_an_entry_excuses_a_survivor_and_is_stale_otherwise(self):
        mutant = mutants("return true;\n")[0]
        entry = Equivalent("value/a.cc", "return true;", "return false;", "Because.")
        results = Results(self.path)
        results.add(mutant, "survived", "")
        self.assertEqual(verdict(mutant, results, [entry]), "equivalent")
        self.assertEqual(list(stale_entries([entry], [mutant], results)), [])
        results.add(mutant, "killed", "tests")
        self.assertEqual(verdict(mutant, results, [entry]), "killed")
        self.assertEqual(list(stale_entries([entry], [mutant], results)), [entry])
        self.assertEqual(list(stale_entries([entry], [], results)), [entry])


if __name__ == "__main__":
    unittest.main()
