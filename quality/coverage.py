#!/usr/bin/python3 -B
"""Runs every test of a coverage build and prints which lines and branches of the tool none reached.

What is counted is driver/ and the folders that it uses; not the lab, not the tests and what they share. A line
or branch that no test can reach has a comment that says why, before the line or at its end:

    // coverage: 1 of 4 branches: The enumeration has no fourth value.

or "the line" instead of the branches. Whatever is not reached without such a comment is a fault, and so is a
comment where something else, or nothing, is not reached.

usage: coverage.py BUILD-DIRECTORY [ROOT]    exit status 1 when there is a fault or a test fails
"""

import collections
import json
import os
import pathlib
import re
import subprocess
import sys
import tempfile

import include_order

MARKER = re.compile(r"// coverage: (the line|\d+ of \d+ branches): (.+)")


def zero_counters(build):
    for counters in build.rglob("*.gcda"):
        counters.unlink()


def tests_pass(build):
    """Runs every test. What those that fail print goes to standard error."""
    return subprocess.call(["ctest", "--test-dir", build, "--parallel", str(os.cpu_count()),
                            "--output-on-failure"], stdout=sys.stderr) == 0


def count_reached(build, root, folders):
    """Every line with code of the folders: [(path, line as in the JSON of gcovr)].

    No branch is left out. Those that compilers add lead to the handlers of exceptions, and a coverage build
    has none.
    """
    with tempfile.TemporaryDirectory() as directory:
        report = pathlib.Path(directory) / "report.json"
        subprocess.run(
            ["gcovr", "--root", root, "--object-directory", build, build,
             "--filter", f"{root}/({'|'.join(folders)})/", "--exclude", r".*_test\.cc",
             "-j", str(os.cpu_count()), "--json", report],
            check=True, cwd=build)
        files = json.loads(report.read_text())["files"]
    return [(file["file"], line) for file in files for line in file["lines"] if not line.get("gcovr/noncode")]


def missed_branches(line):
    return sum(branch["count"] == 0 for branch in line["branches"])


def find_misses(lines):
    """What no test reaches: {(path, line number): "the line" or "N of M branches"}."""
    misses = {}
    for path, line in lines:
        if line["count"] == 0:
            misses[path, line["line_number"]] = "the line"
        elif missed_branches(line):
            misses[path, line["line_number"]] = f"{missed_branches(line)} of {len(line['branches'])} branches"
    return misses


def find_markers(path, text):
    """The markers of a file: {(path, line number): (missed, reason)}. One that is a comment of its own, and may
    go on for more lines, belongs to the line after the comment."""
    markers, pending = {}, None
    for number, line in enumerate(text.splitlines(), 1):
        code, slashes, _ = line.partition("//")
        is_comment = slashes and not code.strip()
        if match := MARKER.search(line):
            pending = match.groups()
        if pending and not is_comment:
            markers[path, number] = pending
            pending = None
    return markers


def describe(misses, markers):
    """A text for each miss and each marker, and how many of them are faults."""
    texts, faults = [], 0
    for path, number in sorted(misses.keys() | markers.keys()):
        missed = misses.get((path, number), "nothing")
        marked, reason = markers.get((path, number), ("nothing", ""))
        if missed != marked:
            faults += 1
            reason = f"FAULT: {marked} marked"
        texts.append(f"{path}:{number}: {missed} missed: {reason}\n")
    return "".join(texts), faults


def table(lines, folders):
    """The figures of each folder and of all."""
    figures = collections.defaultdict(lambda: [0, 0, 0, 0])
    for path, line in lines:
        branches = len(line["branches"])
        counts = 1, line["count"] > 0, branches, branches - missed_branches(line)
        for name in (path.split("/")[0], "all"):
            figures[name] = [sum(pair) for pair in zip(figures[name], counts)]
    rows = [["folder", "lines", "reached", "", "branches", "taken", ""]]
    for name in folders + ["all"]:
        all_lines, reached, branches, taken = figures[name]
        rows.append([name, all_lines, reached, share(reached, all_lines),
                     branches, taken, share(taken, branches)])
    return "".join("{:11} {:>6} {:>8} {:>9} {:>9} {:>6} {:>9}\n".format(*row) for row in rows)


def share(part, whole):
    """A percentage, never rounded up to the whole."""
    return f"{int(10000 * part / whole) / 100 if whole else 100:.2f} %"


def main():
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    build, root = (pathlib.Path(path).resolve() for path in (*sys.argv[1:], __file__ + "/../..")[:2])
    dependencies = include_order.read_folders(root)
    folders = [folder for folder in dependencies if folder in dependencies["driver"] + ["driver"]]
    zero_counters(build)
    if not tests_pass(build):
        return 1
    lines = count_reached(build, root, folders)
    markers = {}
    for file in (file for folder in folders for file in (root / folder).rglob("*.[ch]*")):
        markers |= find_markers(str(file.relative_to(root)), file.read_text())
    texts, faults = describe(find_misses(lines), markers)
    print(texts + table(lines, folders), end="")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
