#!/usr/bin/python3
"""Tests of include_order.py, each over a source of a few files."""

import pathlib
import tempfile
import unittest

import include_order

BUILD = "fernwick_folder(value)\nfernwick_folder(plan value)\nfernwick_folder(testing value)\n"


def faults_of(files, build=BUILD):
    """The faults of a source that consists of `files`: path to text."""
    with tempfile.TemporaryDirectory() as directory:
        root = pathlib.Path(directory)
        for path, text in {"CMakeLists.txt": build, **files}.items():
            (root / path).parent.mkdir(parents=True, exist_ok=True)
            (root / path).write_text(text)
        return include_order.find_faults(root)


class IncludeOrder(unittest.TestCase):
    def test_downward_includes_are_in_order(self):
        files = {
            "value/a.h": "#include <string>\n",
            "value/a.cc": '#include "value/a.h"\n',
            "plan/b.cc": '#include "value/a.h"\n',
            "testing/t.h": '#include "value/a.h"\n',
            "value/a_test.cc": '#include "testing/t.h"\n',
            "golden/g.cc": '#include "plan/c.h"\n',
            "plan/c.h": "",
        }
        self.assertEqual(faults_of(files), [])

    def test_an_include_of_an_upper_folder_is_a_fault(self):
        files = {"value/a.cc": '# include "plan/b.h"\n', "plan/b.h": ""}
        self.assertEqual(faults_of(files), ['value/a.cc: value/ must not include "plan/b.h"'])

    def test_only_tests_include_testing(self):
        files = {"plan/b.cc": '#include "testing/t.h"\n', "testing/t.h": ""}
        self.assertEqual(faults_of(files), ['plan/b.cc: plan/ must not include "testing/t.h"'])

    def test_testing_includes_only_its_own_dependencies(self):
        files = {"testing/t.cc": '#include "plan/b.h"\n', "plan/b.h": ""}
        self.assertEqual(faults_of(files), ['testing/t.cc: testing/ must not include "plan/b.h"'])

    def test_no_folder_includes_a_file_outside(self):
        files = {"plan/b_test.cc": '#include "golden/g.h"\n', "golden/g.h": ""}
        self.assertEqual(faults_of(files), ['plan/b_test.cc: plan/ must not include "golden/g.h"'])

    def test_an_include_that_does_not_name_its_folder_is_a_fault(self):
        files = {"value/a.cc": '#include "a.h"\n', "value/a.h": ""}
        self.assertEqual(faults_of(files), ['value/a.cc: there is no "a.h"'])

    def test_a_subfolder_includes_those_before_it_and_headers_in_none(self):
        files = {
            "lab/main.cc": '#include "lab/verbs.h"\n#include "lab/survey/s.h"\n',
            "lab/verbs.h": "",
            "lab/support/m.cc": '#include "lab/verbs.h"\n',
            "lab/support/m.h": "",
            "lab/survey/s.cc": '#include "lab/support/m.h"\n#include "lab/survey/s.h"\n',
            "lab/survey/s.h": "",
        }
        self.assertEqual(faults_of(files, BUILD + "fernwick_folder(lab)\n"), [])

    def test_an_include_of_a_later_subfolder_is_a_fault(self):
        files = {
            "lab/lint/l.cc": '#include "lab/explain/e.h"\n',
            "lab/explain/e.h": "",
            "lab/verbs.h": '#include "lab/explain/e.h"\n',
        }
        self.assertEqual(
            faults_of(files, BUILD + "fernwick_folder(lab)\n"),
            [
                'lab/lint/l.cc: lab/lint/ must not include "lab/explain/e.h"',
                'lab/verbs.h: lab/ must not include "lab/explain/e.h"',
            ])

    def test_a_subfolder_without_an_order_is_a_fault_where_the_others_have_one(self):
        self.assertEqual(
            faults_of({"lab/attic/a.h": "", "value/xml/x.h": ""}, BUILD + "fernwick_folder(lab)\n"),
            ["lab/attic/ is not in the order of the subfolders of lab/"])

    def test_a_cycle_within_a_folder_is_a_fault(self):
        files = {"value/a.h": '#include "value/b.h"\n', "value/b.h": '#include "value/a.h"\n'}
        self.assertEqual(
            faults_of(files), ["cycle: value/a.h includes value/b.h includes value/a.h"])

    def test_a_dependency_that_is_declared_later_is_a_fault(self):
        build = "fernwick_folder(value plan)\nfernwick_folder(plan)\n"
        self.assertEqual(
            faults_of({"value/a.h": ""}, build),
            ["CMakeLists.txt: value/ uses plan/, which is not declared before it"])

    def test_a_root_without_source_is_a_fault(self):
        self.assertEqual(len(faults_of({})), 1)


if __name__ == "__main__":
    unittest.main()
