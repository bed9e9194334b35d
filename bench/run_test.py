"""Tests of how bench/run.py evaluates measurements."""

import contextlib
import io
import json
import pathlib
import sys
import tempfile
import unittest

import processes
import reading
import run


class RowTest(unittest.TestCase):
    def test_a_bound_is_reached_at_the_bound(self):
        self.assertTrue(run.Row("a", "", "", 1.2, most=1.2).reached())
        self.assertFalse(run.Row("a", "", "", 1.21, most=1.2).reached())
        self.assertTrue(run.Row("a", "", "", 5, least=5).reached())
        self.assertFalse(run.Row("a", "", "", 4.9, least=5).reached())
        self.assertIsNone(run.Row("a", "", "", 4.9).reached())

    def test_the_table_aligns_its_columns(self):
        rows = [run.Row("a row", "2 ms", "1 ms", 2, most=1.2), run.Row("b", "1 s", "", 1)]
        self.assertEqual(run.table(rows), ("WHAT   MEASURED  AGAINST  FIGURE  TO REACH\n"
                                           "a row  2 ms      1 ms     2.00    at most 1.2  NOT REACHED\n"
                                           "b      1 s                1.00\n"))


class ProcessesTest(unittest.TestCase):
    def test_medians_are_of_the_quantity_asked_for(self):
        sleep = ["/bin/sleep", "0.05"]
        wall, = processes.medians([sleep], 1)
        cpu, = processes.medians([sleep], 1, lambda spent: spent.cpu)
        self.assertGreaterEqual(wall, 0.05)
        self.assertLess(cpu, wall)

    def test_peak_memory_is_that_of_the_largest_child(self):
        grown = [sys.executable, "-c",
                 "import subprocess, sys\n"
                 "subprocess.run([sys.executable, '-c', 'import time; x = b\"x\" * 200000000;"
                 " time.sleep(0.2)'])"]
        self.assertGreater(processes.peak_memory(grown), 200_000_000)

    def test_peak_memory_is_not_that_of_who_measures(self):
        ballast = b"x" * 200_000_000
        self.assertLess(processes.peak_memory(["/bin/sleep", "0.05"]), 100_000_000)
        self.assertTrue(ballast)

    def test_a_process_that_a_signal_ends_is_not_measured(self):
        with self.assertRaises(RuntimeError):
            processes.run(["/bin/sh", "-c", "kill -SEGV $$"])


class ReadingTest(unittest.TestCase):
    """Over a stub of the reading program: every read is a second longer."""

    PROGRAM = """#!/bin/sh
case $1 in
  readers) printf 'fernwick\\tXML binary\\nmemchr\\tXML \\nlibplist (libplist-dev)\\t\\n' ;;
  read) echo x >> "$3.reads"; echo "$(wc -l < "$3.reads") 500" ;;
esac
"""

    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = pathlib.Path(directory.name)
        self.program = self.directory / "program"
        self.program.write_text(self.PROGRAM)
        self.program.chmod(0o755)

    def test_readers_are_told_with_their_forms_and_what_is_missing(self):
        self.assertEqual(reading.readers(self.program),
                         ({"fernwick": ["XML", "binary"], "memchr": ["XML"],
                           "plistlib": ["XML", "binary"]}, ["libplist (libplist-dev)"]))

    def test_readers_take_turns_and_medians_are_told(self):
        path = self.directory / "computer, XML"
        present = {"fernwick": ["XML", "binary"], "memchr": ["XML"], "other": ["binary"]}
        measured = [(each.document, each.form, each.reader, each.seconds, each.peak)
                    for each in reading.measure_file(self.program, present, path, 3)]
        self.assertEqual(measured, [("computer", "XML", "fernwick", 3, 500),
                                    ("computer", "XML", "memchr", 4, 500)])


class MainTest(unittest.TestCase):
    def test_a_subject_that_there_is_not_is_wrong_usage(self):
        with contextlib.redirect_stderr(io.StringIO()) as printed, self.assertRaises(SystemExit) as end:
            run.main(["/build", "nothing"])
        self.assertEqual((end.exception.code, printed.getvalue()),
                         (64, "bench: there is no subject \"nothing\"; see --help\n"))

    def test_what_is_not_built_is_left_out_with_a_word(self):
        with tempfile.TemporaryDirectory() as directory:
            written = pathlib.Path(directory) / "figures.json"
            with contextlib.redirect_stdout(io.StringIO()) as printed, \
                    contextlib.redirect_stderr(io.StringIO()):
                run.main([directory, "matcher", "--json", str(written)])
            self.assertEqual(json.loads(written.read_text()),
                             {"figures": [], "leftOut": ["matcher (libbenchmark-dev is missing)"]})
        self.assertTrue(printed.getvalue().endswith("left out: matcher (libbenchmark-dev is missing)\n"))


if __name__ == "__main__":
    unittest.main()
