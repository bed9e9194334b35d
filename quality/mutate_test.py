#!/usr/bin/python3
"""Runs mutate.py over a source of a few lines, from the build to the closing table."""

import pathlib
import subprocess
import sys
import tempfile
import unittest

QUALITY = pathlib.Path(__file__).resolve().parent

SOURCE = {
    "CMakeLists.txt": f"""\
cmake_minimum_required(VERSION 3.25)
project(small LANGUAGES CXX)
set(CMAKE_CXX_STANDARD 20)
enable_testing()
find_package(GTest REQUIRED)
include(GoogleTest)
include({QUALITY.parent}/cmake/Folders.cmake)
fernwick_folder(value)
fernwick_folder(testing)
""",
    "quality/equivalent_mutants.txt": "# None yet.\n",
    "testing/testing.cc": "",
    "value/limit.h": "#pragma once\n\nconstexpr int Limit = 3;\n",
    "value/room/text.h": '#pragma once\n#include <string>\n\nstd::string Shorten(std::string text);\n',
    "value/room/text.cc": """\
#include "value/room/text.h"

#include "value/limit.h"

std::string Shorten(std::string text) {
  while (text.size() > Limit) text.pop_back();
  return "<" + text;
}
""",
    "value/room/text_test.cc": """\
#include "value/room/text.h"

#include <gtest/gtest.h>

TEST(Text, LongIsShortened) {
  EXPECT_EQ(Shorten("abcde").front(), '<');
  EXPECT_LT(Shorten("abcde").size(), 5u);
}
""",
}

EQUIVALENT = """
file: value/room/text.cc
line: while (text.size() > Limit) text.pop_back();
mutant: while (text.size() >= Limit) text.pop_back();
reason: Not so, but this test wants an entry.
"""

NEEDLESS = """
file: value/room/text.cc
line: return "<" + text;
mutant: return "x" + text;
reason: Not so, and a test tells it.
"""

SURVIVORS = """\
survived: value/limit.h:3: constexpr int Limit = 3;
  as: constexpr int Limit = 2;
survived: value/room/text.cc:6: while (text.size() > Limit) text.pop_back();
  as: while (text.size() >= Limit) text.pop_back();
folder  mutants  not compiling  killed  timed out  equivalent  survived  untried   score
value         6              1       3          0           0         2        0  60.0 %
all           6              1       3          0           0         2        0  60.0 %
"""

LISTED = """\
listed as equivalent without need: value/room/text.cc: return "<" + text;
  as: return "x" + text;
folder  mutants  not compiling  killed  timed out  equivalent  survived  untried   score
value         4              1       2          0           1         0        0  66.7 %
all           4              1       2          0           1         0        0  66.7 %
"""


def write(root, files):
    for path, text in files.items():
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        (root / path).write_text(text)


def mutate(root, *arguments):
    """The exit status and standard output of mutate.py over the source at `root`."""
    command = [sys.executable, "-B", QUALITY / "mutate.py", "--root", root, "--jobs", "1"]
    done = subprocess.run(command + list(arguments), capture_output=True, text=True)
    return done.returncode, done.stdout


class Mutate(unittest.TestCase):
    def test_kills_and_lets_live(self):
        with tempfile.TemporaryDirectory() as directory:
            root = pathlib.Path(directory)
            write(root, SOURCE)
            self.assertEqual(mutate(root), (1, SURVIVORS))
            write(root, {"quality/equivalent_mutants.txt": EQUIVALENT + NEEDLESS})
            self.assertEqual(mutate(root, "--file", "value/room/text.cc"), (1, LISTED))


class CommandLine(unittest.TestCase):
    def test_an_unknown_file_is_refused(self):
        self.assertEqual(mutate(QUALITY.parent, "--file", "value/none.cc"), (64, ""))

    def test_an_unknown_option_is_refused(self):
        self.assertEqual(mutate(QUALITY.parent, "--none"), (64, ""))


if __name__ == "__main__":
    unittest.main()
