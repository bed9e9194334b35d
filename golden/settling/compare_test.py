#!/usr/bin/python3
"""Tests that the comparison notices a difference."""

import unittest

import compare

ROW = {
    "outcome": "stuck",
    "runs": 2,
    "comesBack": None,
    "controllers": [{"entry": "IOService:/hpm0", "after": 171}],
}
SETTLED = ("settled", 2, None, {"hpm0": 171, "ridge0": 41.05})


class Compare(unittest.TestCase):
    def test_equal(self):
        self.assertEqual(compare.compare(ROW, SETTLED), "")

    def test_outcome_runs_and_state(self):
        for expected in (("no plan", 2, None), ("settled", 1, None), ("settled", 2, 0)):
            self.assertNotEqual(compare.compare(ROW, (*expected, SETTLED[3])), "")

    def test_version(self):
        for version in (172, None):
            self.assertNotEqual(compare.compare(ROW, (*SETTLED[:3], {"hpm0": version})), "")


if __name__ == "__main__":
    unittest.main()
