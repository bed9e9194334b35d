"""Tests of how bench/run.py evaluates measurements."""

import contextlib
import io
import json
import pathlib
import plistlib
import re
import shutil
import subprocess
import sys
import tarfile
import tempfile
import unittest

import fleet
import processes
import reading
import run
import samples


class RowTest(unittest.TestCase):
    def test_a_bound_is_reached_at_the_bound(self):
        self.assertTrue(run.Row("a", "", "", 1.2, at_most=1.2).reached())
        self.assertFalse(run.Row("a", "", "", 1.21, at_most=1.2).reached())
        self.assertTrue(run.Row("a", "", "", 5, at_least=5).reached())
        self.assertFalse(run.Row("a", "", "", 4.9, at_least=5).reached())
        self.assertIsNone(run.Row("a", "", "", 4.9).reached())

    def test_the_table_aligns_its_columns(self):
        rows = [run.Row("a row", "2 ms", "1 ms", 2, at_most=1.2), run.Row("b", "1 s", "", 1)]
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

    def test_readers_have_their_forms_and_what_is_missing(self):
        self.assertEqual(reading.readers(self.program),
                         ({"fernwick": ["XML", "binary"], "memchr": ["XML"],
                           "plistlib": ["XML", "binary"]}, ["libplist (libplist-dev)"]))

    def test_readers_take_turns_and_medians_are_printed(self):
        path = self.directory / "computer, XML"
        present = {"fernwick": ["XML", "binary"], "memchr": ["XML"], "other": ["binary"]}
        measured = [(each.document, each.form, each.reader, each.seconds, each.peak)
                    for each in reading.measure_file(self.program, present, path, 3)]
        self.assertEqual(measured, [("computer", "XML", "fernwick", 3, 500),
                                    ("computer", "XML", "memchr", 4, 500)])


class SamplesTest(unittest.TestCase):
    def test_recordings_have_identifiers_of_their_own(self):
        texts = list(samples.unique_recordings(20))
        self.assertEqual(texts, list(samples.unique_recordings(20)))
        found = [samples.IDENTIFIER.findall(text) for text in texts]
        self.assertEqual(list(map(len, found[:5])), list(map(len, found[5:10])))
        everything = sum(found, [])
        self.assertEqual(len(set(everything)), len(everything))
        for text in texts:
            plistlib.loads(text)

    def test_the_position_of_a_controller_is_kept(self):
        last_digits = [[uid[-1:] for uid in re.findall(rb"<integer>(0x[0-9A-F]{14})<", text)]
                       for text in samples.unique_recordings(2, "thunderbolt-only")]
        self.assertEqual(last_digits, [[b"2", b"3"]] * 2)

    @unittest.skipUnless(shutil.which("zstd"), "zstd is missing")
    def test_the_archive_has_the_recordings(self):
        with tempfile.TemporaryDirectory() as directory:
            path = pathlib.Path(directory) / "a.tar.zst"
            samples.write_archive(path, 1_002, samples.OF_BOARD)
            unpacked = subprocess.run(["zstd", "-dcq", path], stdout=subprocess.PIPE, check=True)
        with tarfile.open(fileobj=io.BytesIO(unpacked.stdout)) as archive:
            members = archive.getmembers()
            self.assertEqual(archive.extractfile(members[-1]).read(),
                             list(samples.unique_recordings(1_002, samples.OF_BOARD))[-1])
        self.assertEqual((len(members), members[0].name, members[-1].name),
                         (1_002, "0000/000.registry.plist", "0001/001.registry.plist"))


class FleetTest(unittest.TestCase):
    def test_times_are_for_all_and_for_each(self):
        self.assertEqual(fleet.rate(1_000_000, 40), "40.00 s, 25,000 a second")
        self.assertEqual(fleet.each(1_000_000, 40), "40.00 µs each")

    def test_commands_are_quoted_for_the_shell(self):
        self.assertEqual(fleet.shell([pathlib.Path("/a b/lab"), "survey"]), "'/a b/lab' survey")


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


    def test_the_size_of_the_fleet_is_an_option(self):
        def computers(*arguments):
            return run.parse_arguments(["/build", *arguments]).computers

        self.assertEqual(computers(), 1_000_000)
        self.assertEqual(computers("--smoke"), 20)
        self.assertEqual(computers("fleet", "--smoke", "--computers", "300"), 300)


if __name__ == "__main__":
    unittest.main()
