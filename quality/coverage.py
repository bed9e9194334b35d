#!/usr/bin/python3 -B
"""Runs every test of a coverage build and tells which lines and branches of the tool none reached.

What is counted is what the tool is made of, the folders that driver/ names as its dependencies and
driver/ itself; not the lab, not what tests share, not the tests. Each line and branch that no test
reaches is listed in quality/uncovered.txt with the reason, and nothing else is: one that is missing
there, and one that stands there but is reached or gone, is a fault.

usage: coverage.py BUILD-DIRECTORY    exit status 1 when there is a fault or a test fails
"""

import collections
import dataclasses
import json
import os
import pathlib
import subprocess
import sys
import tempfile

import include_order

ROOT = pathlib.Path(__file__).resolve().parents[1]
LISTED = ROOT / "quality" / "uncovered.txt"


@dataclasses.dataclass(frozen=True)
class Miss:
    """A line that no test reaches, or one some of whose branches no test takes."""

    file: str
    line: str  # its text, without indentation: lines around it may come and go
    missed: str


@dataclasses.dataclass(frozen=True)
class Listed:
    """A miss that is meant, and why."""

    miss: Miss
    reason: str


@dataclasses.dataclass
class Figures:
    """How many lines and branches there are, and how many of them were reached."""

    lines: int = 0
    reached_lines: int = 0
    branches: int = 0
    taken_branches: int = 0

    def count(self, line):
        self.lines += 1
        self.reached_lines += line["count"] > 0
        self.branches += len(line["branches"])
        self.taken_branches += sum(branch["count"] > 0 for branch in line["branches"])


def measured_folders(root):
    """The folders of the tool, from the ground up."""
    folders = include_order.read_folders(root)
    return [folder for folder in folders if folder in folders["driver"] + ["driver"]]


def zero_counters(build):
    for counters in build.rglob("*.gcda"):
        counters.unlink()


def run_tests(build):
    """Whether every test passed. Tells of those that did not."""
    command = ["ctest", "--test-dir", str(build), "--parallel", str(os.cpu_count()),
               "--output-on-failure"]
    return subprocess.run(command, check=False, stdout=sys.stderr).returncode == 0


def count_reached(build, folders):
    """What gcovr says of every file of the folders that is no test, as its JSON has it.

    Every branch counts. What compilers are known to add to those that are written leads to where an
    exception lands, and a coverage build has none.
    """
    with tempfile.TemporaryDirectory() as directory:
        report = pathlib.Path(directory) / "report.json"
        subprocess.run(
            ["gcovr", "--root", str(ROOT), "--object-directory", str(build), str(build),
             "--filter", f"{ROOT}/({'|'.join(folders)})/", "--exclude", r".*_test\.cc",
             "-j", str(os.cpu_count()), "--json", str(report)],
            check=True, cwd=build)
        return json.loads(report.read_text())["files"]


def lines_of(files):
    """Every line with code: its file, and what gcovr says of it."""
    for file in files:
        for line in file["lines"]:
            if not line.get("gcovr/noncode"):
                yield file["file"], line


def figures_of(files, folders):
    """The figures of each folder, and of all in a last row: {name: figures}."""
    figures = {name: Figures() for name in folders + ["all"]}
    for file, line in lines_of(files):
        figures[file.split("/")[0]].count(line)
        figures["all"].count(line)
    return figures


def table(figures):
    rows = [["folder", "lines", "reached", "", "branches", "taken", ""]]
    for name, of in figures.items():
        rows.append([name, str(of.lines), str(of.reached_lines), share(of.reached_lines, of.lines),
                     str(of.branches), str(of.taken_branches),
                     share(of.taken_branches, of.branches)])
    widths = [max(map(len, column)) for column in zip(*rows)]
    return "".join("  ".join([row[0].ljust(widths[0])] +
                             [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]) + "\n"
                   for row in rows)


def share(part, whole):
    """Never rounded up to the whole."""
    return f"{int(10000 * part / whole) / 100 if whole else 100:.2f} %"


def describe_missed(line):
    """What no test reaches of a line, or nothing."""
    if line["count"] == 0:
        return "the line"
    untaken = sum(branch["count"] == 0 for branch in line["branches"])
    return f"{untaken} of {len(line['branches'])} branches" if untaken else ""


def find_misses(files, read_source):
    """Every miss with the number of its line: [(miss, number)]. `read_source` gives a file's text."""
    misses = []
    for file, line in lines_of(files):
        missed = describe_missed(line)
        if missed:
            number = line["line_number"]
            text = read_source(file).splitlines()[number - 1].strip()
            misses.append((Miss(file, text, missed), number))
    return misses


def read_listed(text):
    """The entries of a list, blank lines between them and each of the form

        file: value/number.cc
        line: the line as it is, without its indentation
        missed: the line            (or: 1 of 2 branches)
        reason: one sentence

    An entry stands for as many lines as there are entries like it. Lines that begin with "#" are
    comments. Raises ValueError for any other form.
    """
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    blocks = [block.splitlines() for block in "\n".join(lines).split("\n\n") if block.strip()]
    return [read_entry([line for line in block if line]) for block in blocks]


def read_entry(lines):
    fields = dict(line.split(": ", 1) for line in lines if ": " in line)
    if len(fields) < len(lines) or set(fields) != {"file", "line", "missed", "reason"}:
        raise ValueError("no entry for the list of what is uncovered:\n" + "\n".join(lines))
    return Listed(Miss(fields["file"], fields["line"], fields["missed"]), fields["reason"])


def describe_misses(misses, listed):
    """Each miss with its reason, or as a fault: (texts, number of faults)."""
    reasons = collections.defaultdict(list)
    for entry in listed:
        reasons[entry.miss].append(entry.reason)
    texts, faults = [], 0
    for miss, number in misses:
        reason = reasons[miss].pop(0) if reasons[miss] else None
        faults += reason is None
        texts.append(f"{miss.file}:{number}: {miss.missed} missed: {miss.line}\n"
                     f"  {reason or 'NOT LISTED'}\n")
    for miss in [miss for miss, left in reasons.items() for _ in left]:
        faults += 1
        texts.append(f"{miss.file}: REACHED OR GONE, BUT LISTED: {miss.missed} of: {miss.line}\n")
    return texts, faults


def main():
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    build = pathlib.Path(sys.argv[1]).resolve()
    listed = read_listed(LISTED.read_text())
    zero_counters(build)
    if not run_tests(build):
        return 1
    folders = measured_folders(ROOT)
    files = count_reached(build, folders)
    texts, faults = describe_misses(
        find_misses(files, lambda file: (ROOT / file).read_text()), listed)
    print("".join(texts) + table(figures_of(files, folders)), end="")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
