#!/usr/bin/python3
"""Tests of coverage.py over reports made up for each."""

import unittest

import coverage
from coverage import Figures, Listed, Miss


def line(number, count, *branches):
    """A line of a report: how often it was reached, and each of its branches."""
    return {"line_number": number, "count": count, "branches": [{"count": n} for n in branches]}


def report(*lines, file="value/a.cc"):
    return [{"file": file, "lines": list(lines)}]


SOURCE = "int a;\n  if (a) b();\nc();\n"


def misses_of(*lines):
    return coverage.find_misses(report(*lines), {"value/a.cc": SOURCE}.__getitem__)


BRANCH = Miss("value/a.cc", "if (a) b();", "1 of 2 branches")


class FindMisses(unittest.TestCase):
    def test_what_is_reached_is_no_miss(self):
        self.assertEqual(misses_of(line(1, 5), line(2, 5, 2, 3)), [])

    def test_a_branch_never_taken_is_a_miss(self):
        self.assertEqual(misses_of(line(2, 5, 0, 5)), [(BRANCH, 2)])

    def test_a_line_never_reached_is_a_miss_whatever_its_branches(self):
        self.assertEqual(misses_of(line(2, 0, 0, 0)),
                         [(Miss("value/a.cc", "if (a) b();", "the line"), 2)])

    def test_a_line_without_code_is_none(self):
        self.assertEqual(misses_of({**line(1, 0), "gcovr/noncode": True}), [])


class DescribeMisses(unittest.TestCase):
    def test_a_listed_miss_is_told_with_its_reason(self):
        self.assertEqual(
            coverage.describe_misses([(BRANCH, 2)], [Listed(BRANCH, "It cannot.")]),
            (["value/a.cc:2: 1 of 2 branches missed: if (a) b();\n  It cannot.\n"], 0))

    def test_another_miss_is_a_fault(self):
        self.assertEqual(
            coverage.describe_misses([(BRANCH, 2)], []),
            (["value/a.cc:2: 1 of 2 branches missed: if (a) b();\n  NOT LISTED\n"], 1))

    def test_an_entry_stands_for_one_line(self):
        texts, faults = coverage.describe_misses([(BRANCH, 2), (BRANCH, 9)],
                                                 [Listed(BRANCH, "It cannot.")])
        self.assertEqual((len(texts), faults), (2, 1))

    def test_a_listed_miss_that_misses_more_is_a_fault_twice(self):
        worse = Miss(BRANCH.file, BRANCH.line, "the line")
        self.assertEqual(
            coverage.describe_misses([(worse, 2)], [Listed(BRANCH, "It cannot.")]),
            (["value/a.cc:2: the line missed: if (a) b();\n  NOT LISTED\n",
              "value/a.cc: REACHED OR GONE, BUT LISTED: 1 of 2 branches of: if (a) b();\n"], 2))


class ReadListed(unittest.TestCase):
    def test_entries_stand_between_blank_lines_and_comments(self):
        text = ("# About this list.\n\nfile: value/a.cc\nline: if (a) b();\n"
                "missed: 1 of 2 branches\nreason: It cannot.\n\n\n"
                "# And\nfile: b.cc\nline: x: y\nmissed: the line\nreason: r\n")
        self.assertEqual(coverage.read_listed(text),
                         [Listed(BRANCH, "It cannot."),
                          Listed(Miss("b.cc", "x: y", "the line"), "r")])

    def test_an_empty_list_is_one(self):
        self.assertEqual(coverage.read_listed("# Nothing.\n"), [])

    def test_any_other_form_is_refused(self):
        for text in ("file: a\nline: b\nmissed: c\n",
                     "file: a\nline: b\nmissed: c\nreason: d\nmore: e\n",
                     "file: a\nline: b\nmissed: c\nreason: d\nnothing\n"):
            with self.assertRaises(ValueError, msg=text):
                coverage.read_listed(text)


class FiguresOfFolders(unittest.TestCase):
    def test_each_folder_counts_by_itself_and_in_all(self):
        files = report(line(1, 5, 0, 5), line(2, 0)) + report(line(1, 1), file="plan/b.cc")
        self.assertEqual(coverage.figures_of(files, ["value", "plan"]),
                         {"value": Figures(2, 1, 2, 1), "plan": Figures(1, 1, 0, 0),
                          "all": Figures(3, 2, 2, 1)})

    def test_the_table_never_rounds_up_to_the_whole(self):
        self.assertEqual(
            coverage.table({"value": Figures(100000, 99999, 3, 2), "plan": Figures(2, 2, 0, 0)}),
            "folder   lines  reached            branches  taken          \n"
            "value   100000    99999   99.99 %         3      2   66.66 %\n"
            "plan         2        2  100.00 %         0      0  100.00 %\n")

    def test_the_measured_folders_are_those_of_the_tool(self):
        folders = coverage.measured_folders(coverage.ROOT)
        self.assertEqual(folders[-1], "driver")
        self.assertTrue({"lab", "testing"}.isdisjoint(folders))


if __name__ == "__main__":
    unittest.main()
