"""Measures the available readers of property lists."""

import pathlib
import statistics
import subprocess
import sys

OURS = "fernwick"
PLISTLIB = "plistlib"
PLISTLIB_SECONDS = pathlib.Path(__file__).resolve().parent / "plistlib_seconds.py"


class Reading:
    """One document, read by one reader: medians of seconds, and of bytes where they are known."""

    def __init__(self, document, form, reader, seconds, peak):
        self.document = document
        self.form = form
        self.reader = reader
        self.seconds = seconds
        self.peak = peak


def output(*command):
    return subprocess.run(command, stdout=subprocess.PIPE, check=True, text=True).stdout


def readers(program):
    """The readers that a program has, by name with the forms that they read, and what it lacks."""
    lines = [line.split("\t") for line in output(program, "readers").splitlines()]
    present = {name: forms.split() for name, forms in lines if forms}
    present[PLISTLIB] = ["XML", "binary"]
    return present, [name for name, forms in lines if not forms]


def read_once(program, reader, path):
    """Processor time in seconds and memory in bytes of a separate process; plistlib reports none."""
    if reader == PLISTLIB:
        return float(output(sys.executable, PLISTLIB_SECONDS, path)), None
    seconds, peak = output(program, "read", reader, path).split()
    return float(seconds), float(peak)


def measure_file(program, present, path, rounds):
    """A file by all that read its form, in turn, so many rounds: Readings, ours first."""
    document, form = path.name.rsplit(", ", 1)
    taken = {reader: [] for reader, forms in present.items() if form in forms}
    for _ in range(rounds):
        for reader, runs in taken.items():
            runs.append(read_once(program, reader, path))
    for reader, runs in taken.items():
        seconds, peaks = zip(*runs)
        peak = None if None in peaks else statistics.median(peaks)
        yield Reading(document, form, reader, statistics.median(seconds), peak)


def measure(program, present, directory, megabytes, rounds):
    """The documents of one size: Readings, document by document."""
    made = directory / f"documents-{megabytes}"
    made.mkdir()
    output(program, "make", made, str(megabytes))
    for path in sorted(made.iterdir()):
        yield from measure_file(program, present, path, rounds)
