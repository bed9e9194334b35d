#!/usr/bin/python3
"""Tests of coverage.py over a source of a few lines, with a fixed report of gcovr."""

import json
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

SCRIPT = pathlib.Path(__file__).resolve().parent / "coverage.py"
SOURCE = """\
int a;
if (a) b();  // coverage: 1 of 2 branches: It is never 0.
// coverage: the line: Only a machine
// without memory gets here.
c();
d();
"""
REACHED = [(1, 5, []), (2, 5, [5, 0]), (5, 0, [])]
GCOVR = '#!/bin/sh\nwhile [ "$1" != --json ]; do shift; done\ncp "$(dirname "$0")/report" "$2"\n'
TABLE = """\
folder       lines  reached            branches  taken          
driver           3        2   66.66 %         2      1   50.00 %
all              3        2   66.66 %         2      1   50.00 %
"""
MISSES = ["driver/a.cc:2: 1 of 2 branches missed: It is never 0.\n",
          "driver/a.cc:5: the line missed: Only a machine\n"]


class Coverage(unittest.TestCase):
    def expect(self, reached, status, *output, ctest="true"):
        """Runs the script where gcovr reports (line, count, counts of branches)."""
        lines = [{"line_number": line, "count": count, "branches": [{"count": n} for n in branches]}
                 for line, count, branches in reached]
        with tempfile.TemporaryDirectory() as directory:
            root = pathlib.Path(directory)
            for path, text in {
                    "CMakeLists.txt": "fernwick_folder(driver)\nfernwick_folder(lab driver)\n",
                    "driver/a.cc": SOURCE, "lab/b.cc": SOURCE, "bin/gcovr": GCOVR, "build/a.gcda": "",
                    "bin/ctest": f"#!/bin/sh\n[ ! -f {root}/build/a.gcda ] && {ctest}\n",
                    "bin/report": json.dumps({"files": [{"file": "driver/a.cc", "lines": lines}]}),
            }.items():
                (root / path).parent.mkdir(exist_ok=True)
                (root / path).write_text(text)
                (root / path).chmod(0o755)
            done = subprocess.run(
                [sys.executable, "-B", SCRIPT, root / "build", root], capture_output=True, text=True,
                env={**os.environ, "PATH": f"{root}/bin:{os.environ['PATH']}"})
        self.assertEqual((done.stdout, done.returncode), ("".join(output), status), done.stderr)

    def test_marked_misses_are_printed_with_their_reasons(self):
        self.expect(REACHED, 0, *MISSES, TABLE)

    def test_a_miss_without_a_marker_is_a_fault(self):
        self.expect(REACHED + [(6, 9, [1, 0, 0])], 1, *MISSES,
                    "driver/a.cc:6: 2 of 3 branches missed: FAULT: nothing marked\n",
                    TABLE.replace("3        2   66.66 %         2      1   50.00",
                                  "4        3   75.00 %         5      2   40.00"))

    def test_a_marker_without_its_miss_is_a_fault(self):
        self.expect([(1, 5, []), (2, 5, [5, 5]), (5, 0, [])], 1,
                    "driver/a.cc:2: nothing missed: FAULT: 1 of 2 branches marked\n", MISSES[1],
                    TABLE.replace("1   50.00", "2  100.00"))

    def test_a_marker_of_another_miss_is_a_fault(self):
        self.expect([(1, 5, []), (2, 0, []), (5, 0, [])], 1,
                    "driver/a.cc:2: the line missed: FAULT: 1 of 2 branches marked\n", MISSES[1],
                    TABLE.replace("2   66.66 %         2      1   50.00",
                                  "1   33.33 %         0      0  100.00"))

    def test_a_share_is_never_rounded_up_to_the_whole(self):
        lines = [(1, 5, [])] * 99999 + REACHED
        self.expect(lines, 0, *MISSES, TABLE.replace("     3        2   66.66", "100002   100001   99.99"))

    def test_tests_that_fail_are_a_fault(self):
        self.expect(REACHED, 1, ctest="false")


if __name__ == "__main__":
    unittest.main()
