"""Tests of how cost/ makes inputs and evaluates measurements."""

import pathlib
import plistlib
import sys
import tempfile
import unittest

import commands
import documents
import inputs
import measure
import run


class InputsTest(unittest.TestCase):
    def test_there_is_a_command_for_each_kind(self):
        self.assertGreaterEqual(len(inputs.FAMILIES), 25)
        for family in inputs.FAMILIES:
            with tempfile.TemporaryDirectory() as directory:
                for name in commands.names_of(family):
                    self.assertTrue(commands.command(name, pathlib.Path(directory)).words)

    def test_each_is_about_as_large_as_asked_for(self):
        for family in inputs.FAMILIES:
            sizes = []
            for size in (20_000, 40_000):
                with tempfile.TemporaryDirectory() as directory:
                    family.write(pathlib.Path(directory), size)
                    sizes.append(inputs.input_size(directory))
            self.assertGreater(sizes[1], 1.3 * sizes[0], family.name)
            self.assertLess(sizes[1], 5 * 40_000, family.name)


class BinaryTest(unittest.TestCase):
    def test_another_reader_reads_what_is_shared(self):
        binary = documents.Binary()
        shared = binary.array([binary.integer(7), binary.string("x" * 20), binary.data(b"ab")])
        content = binary.file(binary.named([("a", shared), ("b", shared)]))
        value = [7, "x" * 20, b"ab"]
        self.assertEqual(plistlib.loads(content), {"a": value, "b": value})


class MeasureTest(unittest.TestCase):
    def test_the_peak_is_not_that_of_who_measures(self):
        ballast = b"x" * 100_000_000
        self.assertLess(measure.peak(["/bin/true"], None, 0)["peak"], 50_000_000)
        self.assertTrue(ballast)

    def test_a_run_has_its_peak_and_its_output(self):
        grown = [sys.executable, "-c", "x = b'x' * 200_000_000; print(len(x))"]
        found = measure.peak(grown, None, 0)
        self.assertGreater(found["peak"], 200_000_000)
        self.assertEqual((found["status"], found["printed"]), (0, 10))

    def test_a_run_beyond_its_limit_fails(self):
        grown = [sys.executable, "-c", "x = b'x' * 200_000_000"]
        self.assertNotEqual(measure.peak(grown, None, 150_000_000)["status"], 0)


def row(small=(1000, 0, 1_000_000, 10_000), large=(2000, 0, 1_000_000, 20_000), pairs=""):
    runs = [run.Run(size, status, peak, 0.0, 0, count) for size, status, peak, count in (small, large)]
    return run.Row(inputs.Family("a", inputs.OTHER, None, pairs=pairs), "b", *runs)


class RowTest(unittest.TestCase):
    def test_what_doubles_is_not_marked(self):
        self.assertEqual(row().findings(), "")
        self.assertEqual(row(large=(2000, 0, 0, 24_000)).findings(), "")  # n log n

    def test_what_more_than_doubles_is(self):
        self.assertEqual(row(large=(2000, 0, 0, 25_000)).findings(), "TIME")

    def test_pairs_may_be_the_square(self):
        self.assertEqual(row(large=(2000, 0, 0, 40_000), pairs="so").findings(), "")

    def test_memory_has_a_fixed_part_and_one_for_each_byte(self):
        self.assertEqual(row(large=(2000, 0, 64_080_000, 20_000)).findings(), "")
        self.assertEqual(row(large=(2000, 0, 64_080_001, 20_000)).findings(), "MEMORY")

    def test_ends_that_are_no_answer_are_marked(self):
        self.assertEqual(row(large=(2000, 71, 0, 20_000)).findings(), "out of memory")
        self.assertEqual(row(small=(1000, -11, 0, None), large=(2000, -11, 0, None)).findings(),
                         "ended by signal 11")

    def test_without_counts_there_is_no_growth(self):
        self.assertIsNone(row(small=(1000, 0, 0, None)).growth())
        self.assertEqual(row(small=(1000, 0, 0, None)).findings(), "")


if __name__ == "__main__":
    unittest.main()
