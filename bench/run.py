#!/usr/bin/python3 -B
"""Measures durations, each as a ratio to a duration measured in the same run.

Prints a table, and writes it as JSON where --json says. Nothing here judges: a figure that is not
reached is a row like any other.
"""

import argparse
import json
import math
import pathlib
import shlex
import shutil
import subprocess
import sys
import tempfile

import fleet
import processes
import reading
import samples
import text_table
from text_table import megabytes, milliseconds

WRONG_USAGE = 64
SMOKE_COMPUTERS = 20
ROOT = pathlib.Path(__file__).resolve().parent.parent


class Size:
    """The size of the measurement: large enough for results, or only for a test that it works."""

    def __init__(self, smoke):
        self.starts = 3 if smoke else 1001
        self.rounds = 1 if smoke else 5
        self.recordings = (5, 20) if smoke else (1_000, 10_000)
        self.personalities = (10, 20, 40) if smoke else (1_000, 10_000, 100_000)
        self.matcher = (["--benchmark_filter=by Version$|/personalities:10/controllers:1$",
                         "--benchmark_min_time=0"] if smoke else
                        ["--benchmark_repetitions=25", "--benchmark_min_time=0.05",
                         "--benchmark_enable_random_interleaving=true"])
        self.megabytes = (1,) if smoke else (1, 20)
        self.readings = 1 if smoke else 15


class Row:
    """One figure, and what it is to be: at most `at_most`, at least `at_least`, or not said."""

    def __init__(self, what, measured, against, figure, at_most=None, at_least=None):
        self.what = what
        self.measured = measured
        self.against = against
        self.figure = figure
        self.at_most = at_most
        self.at_least = at_least

    def goal(self):
        if self.at_most is not None:
            return f"at most {self.at_most:g}"
        return f"at least {self.at_least:g}" if self.at_least is not None else ""

    def reached(self):
        """Whether it is what it is to be; None where that is not said."""
        if self.at_most is not None:
            return self.figure <= self.at_most
        return self.figure >= self.at_least if self.at_least is not None else None

    def cells(self):
        verdict = {True: "reached", False: "NOT REACHED", None: ""}[self.reached()]
        return [self.what, self.measured, self.against, f"{self.figure:.2f}", self.goal(), verdict]

    def as_json(self):
        return {"what": self.what, "measured": self.measured, "against": self.against,
                "figure": self.figure, "atMost": self.at_most, "atLeast": self.at_least,
                "reached": self.reached()}


def installed(program, directory):
    """A copy, as an installed program is one: what the linker wrote piece by piece is paged in piece
    by piece, which needs an eighth of the time of a replay."""
    return shutil.copy(program, directory) if program.exists() else program


class Bench:
    def __init__(self, build, size, computers, directory):
        self.build = build
        self.size = size
        self.computers = computers  # of the fleet
        self.directory = directory
        self.lab = installed(build / "fernwick-lab", directory)
        self.rows = []
        self.left_out = []

    def add(self, *cells, **goal):
        self.rows.append(Row(*cells, **goal))

    def leave_out(self, what, why):
        self.left_out.append(f"{what} ({why})")


def measure_replay(bench):
    """A replay of each example that has a plan, beside a process that does nothing."""
    for name in ("ports-below-thunderbolt", "ports-only", "thunderbolt-only"):
        replay = [bench.lab, "replay", ROOT / f"examples/{name}.registry.plist", "-p",
                  ROOT / "examples/payload"]
        what = f"replay of {name}"
        ours, floor = processes.medians([replay, ["/bin/true"]], bench.size.starts)
        bench.add(f"{what}, time", milliseconds(ours), f"/bin/true {milliseconds(floor)}",
                  ours / floor, at_most=1.2)
        counts = [processes.instructions(command) for command in (replay, ["/bin/true"])]
        if None in counts:
            bench.leave_out(f"{what}, instructions", "valgrind does not count them")
            continue
        bench.add(f"{what}, instructions", f"{counts[0]:,}", f"/bin/true {counts[1]:,}",
                  counts[0] / counts[1])


def measure_matcher(bench):
    """The requirement checks over all pairs, each rejected."""
    program = bench.build / "bench" / "matcher_bench"
    if not program.exists():
        return bench.leave_out("matcher", "libbenchmark-dev is missing")
    done = subprocess.run([program, "--benchmark_format=json", *bench.size.matcher],
                          stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, check=True)
    pairs = {}  # the most of all repetitions, which others that use the computer slow down
    for run in json.loads(done.stdout)["benchmarks"]:
        if run["run_type"] == "iteration":
            name = run["name"].partition("/")[2]
            pairs[name] = max(run["items_per_second"], pairs.get(name, 0))
    for name, rate in pairs.items():
        what = name.replace("/", ", ").replace(":", " ")
        is_mixture = name.startswith("by all")  # one reason alone is no computer's
        bench.add(f"matcher, rejected {what}", f"{1e9 / rate:.1f} ns a pair",
                  "10^6 pairs a second", rate / 1e6, at_least=5 if is_mixture else None)
    rates = [rate for name, rate in pairs.items() if name.startswith("by all")]
    bench.add("matcher, of the largest and smallest", f"{1e9 / min(rates):.1f} ns a pair",
              f"{1e9 / max(rates):.1f} ns", max(rates) / min(rates), at_most=1.5)


def measure_survey(bench):
    """A survey of many computers, beside a process for each."""
    payload = ROOT / "examples/payload"
    peaks = []
    for count in bench.size.recordings:
        recordings = bench.directory / f"recordings-{count}"
        samples.write_recordings(recordings, count)
        survey = [bench.lab, "survey", "-p", payload, recordings]
        # By a list, as the names in a directory are sorted, and so kept; a table has all its lines in
        # memory for the widths of its columns.
        peaks.append(processes.peak_memory(
            ["/bin/sh", "-c", f"printf '%s\\n' {shlex.quote(str(recordings))}/* | "
             f"{shlex.quote(str(bench.lab))} survey -p {shlex.quote(str(payload))} --format ndjson -"]))
    loop = ["/bin/sh", "-c", f"printf '%s\\0' {shlex.quote(str(recordings))}/*.registry.plist | "
            f"xargs -0 -P2 -I RECORDING {shlex.quote(str(bench.lab))} replay RECORDING "
            f"-p {shlex.quote(str(payload))}"]
    ours, theirs = processes.medians([survey, loop], bench.size.rounds)
    bench.add(f"survey of {count:,} computers", milliseconds(ours),
              f"a loop of replays {milliseconds(theirs)}", theirs / ours, at_least=5)
    one, two = processes.medians([survey + ["-j1"], survey + ["-j2"]], bench.size.rounds)
    bench.add(f"survey of {count:,} computers, one thread", milliseconds(one),
              f"two threads {milliseconds(two)}", one / two, at_least=1.8)
    few, many = bench.size.recordings
    bench.add(f"survey of {many:,} computers, memory", megabytes(peaks[1]),
              f"of {few:,} {megabytes(peaks[0])}", peaks[1] / max(peaks[0], 1), at_most=1.1)


def measure_lint(bench):
    """Configurations that grow tenfold, whose personalities are each its own, or all alike."""
    for make in (samples.personality, samples.alike):
        measure_lint_of(bench, make)


def measure_lint_of(bench, make):
    before = None
    for count in bench.size.personalities:
        payload = bench.directory / f"payload-{make.__name__}-{count}"
        samples.write_payload(payload, count, make)
        lint = [bench.lab, "lint", payload]
        (seconds,) = processes.medians([lint], bench.size.rounds, lambda spent: spent.cpu)
        if before is not None:
            what = "alike" if make is samples.alike else "of their own"
            bench.add(f"lint of {count:,} personalities {what}", milliseconds(seconds),
                      f"of {before[0]:,} {milliseconds(before[1])}",
                      seconds / max(before[1], 1e-9), at_most=n_log_n(count) / n_log_n(before[0]))
        before = (count, seconds)


def n_log_n(count):
    return count * math.log(count)


def measure_reading(bench):
    """Property lists, beside other readers."""
    program = bench.build / "bench" / "reading_bench"
    if not program.exists():
        return bench.leave_out("reading", "libbenchmark-dev is missing")
    present, missing = reading.readers(program)
    for size in bench.size.megabytes:
        for each in reading.measure(program, present, bench.directory, size, bench.size.readings):
            if each.reader == reading.OURS:
                ours = each
            else:
                add_reading(bench, ours, each)
    for package in missing:
        bench.leave_out("a reader", f"{package} is missing")


def add_reading(bench, ours, other):
    what = f"{ours.form}, {ours.document}"
    bench.add(what, milliseconds(ours.seconds), f"{other.reader} {milliseconds(other.seconds)}",
              other.seconds / ours.seconds, at_least=READING_GOALS.get((ours.form, other.reader)))
    if other.reader == "libplist":
        bench.add(f"{what}, memory", megabytes(ours.peak), f"libplist {megabytes(other.peak)}",
                  ours.peak / max(other.peak, 1), at_most=1)


# How many times as fast as another reader ours is to be.
READING_GOALS = {
    ("XML", "libplist"): 3,
    ("XML", "plistlib"): 12,
    ("XML", "memchr scan for <"): 0.1,
    ("binary", "libplist"): 4,
    ("binary", "plistlib"): 12,
}

SUBJECTS = {
    "replay": measure_replay,
    "matcher": measure_matcher,
    "survey": measure_survey,
    "lint": measure_lint,
    "reading": measure_reading,
    "fleet": fleet.measure,
}

HEADINGS = ["WHAT", "MEASURED", "AGAINST", "FIGURE", "TO REACH", ""]


def table(rows):
    return text_table.table([HEADINGS] + [row.cells() for row in rows])


class Arguments(argparse.ArgumentParser):
    def error(self, message):
        self.exit(WRONG_USAGE, f"bench: {message}\n")


def parse_arguments(arguments):
    parser = Arguments(prog="bench", description=__doc__,
                       formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("subjects", nargs="*", metavar="SUBJECT",
                        help=f"what to measure (default: all): {', '.join(SUBJECTS)}")
    parser.add_argument("--json", type=pathlib.Path, metavar="FILE",
                        help="also write the figures there")
    parser.add_argument("--smoke", action="store_true",
                        help="measure next to nothing, to see that it works")
    parser.add_argument("--computers", type=int, metavar="NUMBER",
                        help="of the fleet (default: 1000000)")
    options = parser.parse_intermixed_args(arguments)
    if options.computers is None:
        options.computers = SMOKE_COMPUTERS if options.smoke else 1_000_000
    for subject in options.subjects:
        if subject not in SUBJECTS:
            parser.error(f"there is no subject \"{subject}\"; see --help")
    return options


def main(arguments):
    options = parse_arguments(arguments)
    with tempfile.TemporaryDirectory(prefix="fernwick-bench-") as directory:
        bench = Bench(options.build.resolve(), Size(options.smoke), options.computers,
                      pathlib.Path(directory))
        for name, measure in SUBJECTS.items():
            if not options.subjects or name in options.subjects:
                print(f"bench: measuring {name}", file=sys.stderr)
                measure(bench)
    print(table(bench.rows), end="")
    for what in bench.left_out:
        print(f"left out: {what}")
    if options.json:
        figures = {"figures": [row.as_json() for row in bench.rows], "leftOut": bench.left_out}
        options.json.write_text(json.dumps(figures, indent=2) + "\n")
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
