#!/usr/bin/python3 -B
"""Changes the source in one place at a time and tells which changes no test notices.

Each comparison, constant, condition and literal of value/, registry/, personality/, plan/ and driver/
is changed by itself. A mutant that compiles is killed by the first test that fails or hangs; one that
passes every test survives: a test is missing, the code at that place is needless, or the change makes
no difference, which quality/equivalent_mutants.txt then gives the reason for.

The outcomes are kept in build-mutation/, so that a run that was cut off goes on where it was.
"""

import argparse
import atexit
import concurrent.futures
import os
import pathlib
import queue
import random
import shutil
import sys
import tempfile

from mutation_build import Build, BuildError
from mutation_results import (FOLDERS, LEAST_SCORE, Mutant, Results, count_verdicts, is_listed,
                              read_equivalents, score, stale_entries, table, verdict)
from mutation_trial import SwitchedFiles, Trial
from mutations import mutations_of

WRONG_USAGE = 64


class Arguments(argparse.ArgumentParser):
    def error(self, message):
        self.exit(WRONG_USAGE, f"mutate: {message}\n")


def parse_arguments(arguments):
    parser = Arguments(prog="mutate", description=__doc__,
                       formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--file", nargs="+", metavar="PATH", default=[],
                        help="only the mutants of these files, as in value/number.cc")
    parser.add_argument("--sample", type=int, metavar="N",
                        help="only N mutants, picked at random")
    parser.add_argument("--seed", type=int, metavar="S", default=0, help="picks another sample")
    parser.add_argument("--rerun-survivors", action="store_true",
                        help="try those again that survived and are not listed as equivalent")
    parser.add_argument("--fresh", action="store_true", help="forget every outcome first")
    parser.add_argument("--jobs", type=int, metavar="N", default=os.cpu_count(),
                        help="how many mutants are tried at the same time (default: %(default)s)")
    parser.add_argument("--list", action="store_true", help="print the mutants and try none")
    parser.add_argument("--root", type=pathlib.Path, help=argparse.SUPPRESS,
                        default=pathlib.Path(__file__).resolve().parents[1])
    parsed = parser.parse_args(arguments)
    if parsed.jobs < 1:
        parser.error("--jobs takes a number above 0")
    return parsed


def source_files(root):
    """The files that are changed, by their paths from the root."""
    paths = [path for folder in FOLDERS for path in sorted((root / folder).rglob("*"))]
    return [
        str(path.relative_to(root)) for path in paths
        if path.suffix in (".cc", ".h") and not path.stem.endswith("_test")
    ]


def mutants_of(root, path):
    source = (root / path).read_text()
    return [
        Mutant(path, source, mutation, number)
        for number, mutation in enumerate(mutations_of(source))
    ]


def choose(mutants, arguments):
    """Those mutants that the arguments ask for."""
    if arguments.file:
        mutants = [mutant for mutant in mutants if mutant.path in arguments.file]
    if arguments.sample is not None and arguments.sample < len(mutants):
        picked = random.Random(arguments.seed).sample(range(len(mutants)), arguments.sample)
        mutants = [mutants[i] for i in sorted(picked)]
    return mutants


def fast_directory():
    """Where files that are written for every mutant cost least; None for the usual place."""
    return "/dev/shm" if os.access("/dev/shm", os.W_OK) else None


def try_all(build, mutants, results, jobs):
    """Tries each mutant and adds its outcome to the results."""
    trials = queue.SimpleQueue()
    files = SwitchedFiles(build)
    for _ in range(jobs):
        scratch = tempfile.mkdtemp(prefix="fernwick-mutant-", dir=fast_directory())
        atexit.register(shutil.rmtree, scratch, ignore_errors=True)
        trials.put(Trial(build, files, pathlib.Path(scratch)))

    def try_one(mutant):
        trial = trials.get()
        try:
            outcome, tests = trial.run(mutant)
        finally:
            trials.put(trial)
        results.add(mutant, outcome, tests)

    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        tried = [pool.submit(try_one, mutant) for mutant in mutants]
        try:
            for count, one in enumerate(concurrent.futures.as_completed(tried), 1):
                one.result()
                if count % 100 == 0 or count == len(tried):
                    print(f"mutate: {count} of {len(tried)} tried", file=sys.stderr, flush=True)
        except BaseException:
            pool.shutdown(cancel_futures=True)
            raise


def report(chosen, mutants, results, equivalents):
    """Prints survivors, stale entries and the table. Returns whether all is well."""
    survivors = [each for each in chosen if verdict(each, results, equivalents) == "survived"]
    for survivor in survivors:
        print(f"survived: {survivor}")
    stale = list(stale_entries(equivalents, mutants, results))
    for entry in stale:
        print(f"listed as equivalent without need: {entry.file}: {entry.line}\n"
              f"  as: {entry.mutant}")
    rows = count_verdicts(chosen, results, equivalents)
    print(table(rows), end="")
    is_enough = len(chosen) < len(mutants) or score(dict(rows)["all"]) >= LEAST_SCORE
    return not survivors and not stale and is_enough


def try_untried(arguments, mutants, equivalents):
    """Brings the build up to date and tries what the arguments ask for. Returns all results."""
    build = Build(arguments.root, arguments.root / "build-mutation", arguments.jobs)
    build.bring_up_to_date()
    path = build.directory / "results.jsonl"
    if arguments.fresh:
        path.unlink(missing_ok=True)
    results = Results(path)
    wanted = {"untried"} | ({"survived"} if arguments.rerun_survivors else set())
    left = [each for each in mutants if verdict(each, results, equivalents) in wanted]
    # A header takes many files with it, and what is taken to survive takes every test: last.
    left.sort(key=lambda each: (is_listed(each, equivalents), each.path.endswith(".h")))
    try_all(build, left, results, arguments.jobs)
    return results


def main():
    arguments = parse_arguments(sys.argv[1:])
    files = source_files(arguments.root)
    for path in arguments.file:
        if path not in files:
            print(f"mutate: {path} is no source file of {', '.join(FOLDERS)}", file=sys.stderr)
            return WRONG_USAGE
    mutants = [mutant for path in files for mutant in mutants_of(arguments.root, path)]
    chosen = choose(mutants, arguments)
    if arguments.list:
        print("".join(f"{mutant}\n" for mutant in chosen), end="")
        return 0
    try:
        equivalents = read_equivalents(
            (arguments.root / "quality/equivalent_mutants.txt").read_text())
        results = try_untried(arguments, chosen, equivalents)
    except (BuildError, ValueError) as error:
        print(f"mutate: {error}", file=sys.stderr)
        return 1
    return 0 if report(chosen, mutants, results, equivalents) else 1


if __name__ == "__main__":
    sys.exit(main())
