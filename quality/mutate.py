#!/usr/bin/python3 -B
"""Makes one small change at a time to the source of the tool and prints those that no test notices.

The source of the lab, of the tests and of the scripts is not changed.

A mutant is tried with the tests of its folder, then of the folders of the tool that use it, then with the
golden cases. The first test that fails or takes too long kills it. If none does, it survives: a test is
missing, the code is needless, or the change makes no difference. A reviewer decides.

Everything is built in build-mutation/. Outcomes are appended to a file there, from which another run over the
same source continues. The exit status is 1 if a mutant survives.
"""

import argparse
import collections
import concurrent.futures
import itertools
import math
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time

import include_order
import mutations

FOLDERS = ["value", "platform", "registry", "personality", "plan", "driver"]
PROGRAM_TESTS = ["golden_test", "programs_test", "hosts_test"]
SWITCH = pathlib.Path(__file__).resolve().parent / "mutation_switch.h"
# In the working directory, the root of the source: a copy in which files are changed, and its build.
COPY, BUILD = pathlib.Path("build-mutation/source"), pathlib.Path("build-mutation/build")
# The mutations of a file are known by their offsets in the list.
File = collections.namedtuple("File", "path source mutations")


def run(*command, **variables):
    """Runs a command and returns what it prints. Raises CalledProcessError with that if it fails."""
    return subprocess.run(command, check=True, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          env={**os.environ, **variables}).stdout


def set_up():
    """Makes the copy equal to what git has or would add, and configures the build. Files that are equal already
    are not written: they need not be compiled. Returns the name of the source as a tree of git."""
    COPY.mkdir(parents=True, exist_ok=True)
    index = str(BUILD.with_name("index").resolve())
    run("git", "add", "--all", GIT_INDEX_FILE=index + "-new")
    tree = run("git", "write-tree", GIT_INDEX_FILE=index + "-new").strip()
    run("git", f"--work-tree={COPY}", "read-tree", "--reset", "-u", tree, GIT_INDEX_FILE=index)
    clang = ["-DCMAKE_CXX_COMPILER=clang++"] if shutil.which("clang++") else []  # compiles faster
    run("cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DBUILD_SHARED_LIBS=ON",
        "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
        f"-DCMAKE_CXX_FLAGS=-w -include {SWITCH}", *clang)
    return tree


def build(target, path, text):
    """Builds a target with this text as a file. Returns what the compiler prints if it fails, or nothing."""
    if (COPY / path).read_text() != text:
        (COPY / path).write_text(text)
    try:
        return run("ninja", "-C", BUILD, f"-j{os.cpu_count()}", "--quiet", target) and ""
    except subprocess.CalledProcessError as error:
        return error.stdout or "failed"


def compiled_tool():
    """What the source of the tool was last compiled to."""
    files = [BUILD / f"libfernwick_{folder}.so" for folder in FOLDERS] + [BUILD / "fernwick"]
    return [file.read_bytes() for file in files if file.exists()]


def test_programs(path):
    """The test programs for the mutants of a file, first that of its folder."""
    own, used = path.split("/")[0], include_order.read_folders(COPY)
    folders = [own] + [folder for folder in FOLDERS if own in used.get(folder, [])]
    return [f"{folder}_test" for folder in folders if any(COPY.glob(f"{folder}/**/*_test.cc"))] + \
        [program for program in PROGRAM_TESTS if (COPY / f"golden/{program}.cc").exists()]


def fails(program, limit, **variables):
    """Whether a test fails, or takes more than `limit` seconds of processor time or 2 GiB of memory."""
    command = (f"exec timeout -s KILL {60 + 10 * limit} "  # it may wait for something
               f"prlimit --cpu={limit} --as={2 << 30} --core=0 "
               f"'{(BUILD / program).resolve()}' --gtest_fail_fast </dev/null >/dev/null 2>&1")
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as scratch:
        os.chmod(scratch, 0o755)  # some tests continue as another user
        return subprocess.call(command, shell=True, cwd=scratch,
                               env={**os.environ, "TMPDIR": scratch, **variables}) != 0


def build_all(program, file, left_out):
    """Builds a test program with all mutations of a file but those of the lines `left_out`, to which the lines
    that do not work so are added. Returns the numbers that its tests reach, and how long a test may take."""
    while True:
        included = {n: mutation for n, mutation in enumerate(file.mutations) if mutation.line not in left_out}
        errors = build(program, file.path, mutations.apply(file.source, included))
        begin = time.monotonic()
        with tempfile.NamedTemporaryFile("r") as notes:
            if not errors and not fails(program, 600, MUTANT_NOTES=notes.name):
                return set(map(int, notes.read().split())), math.ceil(2 + 5 * (time.monotonic() - begin))
        if not included:
            sys.exit(f"mutate: {program} does not build or pass without a change\n{errors}")
        lines = {int(line) for line in re.findall(rf"{re.escape(file.path)}:(\d+):", errors)}
        left_out |= lines if lines - left_out else {mutation.line for mutation in file.mutations}


def try_file(file, numbers, record, expired):
    """Tries mutants of a file and records the outcome of each, until the time has expired."""
    left, reached, left_out, limits = set(numbers), set(), set(), {}
    for program in test_programs(file.path):
        noted, limits[program] = build_all(program, file, left_out)
        reached |= noted
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            tried = sorted(left & noted)
            killed = pool.map(lambda number: not expired() and fails(
                program, limits[program], MUTANT=str(number)), tried)
            for number in itertools.compress(tried, killed):
                record(number, "killed")
                left.remove(number)
        if not left or expired():
            break
    if left and not expired():
        build("fernwick", file.path, file.source)
        tool = compiled_tool()
        for number in sorted(left):
            passed = number in reached and file.mutations[number].line not in left_out
            if not expired():
                record(number, try_alone(file, number, tool, {} if passed else limits))
    (COPY / file.path).write_text(file.source)


def try_alone(file, number, tool, limits):
    """The outcome of a mutant that is compiled by itself. `tool` is what the unchanged source is compiled to;
    `limits` has the test programs that the mutant has not passed yet, and how long each may take."""
    text = mutations.apply(file.source, {number: file.mutations[number]}, "true", "true")
    if build("fernwick", file.path, text):
        return "not compiling"
    if compiled_tool() == tool:
        return "equal"
    killed = any(build(program, file.path, text) or fails(program, limit) for program, limit in limits.items())
    return "killed" if killed else "survived"


def source_files():
    """The files that are changed; last the headers, which take longest."""
    paths = [path for folder in FOLDERS for path in sorted(pathlib.Path(folder).rglob("*.*"))]
    return [str(path) for suffix in (".cc", ".h") for path in paths
            if path.suffix == suffix and not path.stem.endswith("_test")]


def changed_lines(commit, tree, path):
    """The numbers of the lines of a file in a tree that a commit does not have."""
    diff = run("git", "diff", "--unified=0", "--no-ext-diff", "--no-color", commit, tree, "--", path)
    hunks = re.findall(r"^@@ .*\+(\d+)(?:,(\d+))? @@", diff, re.MULTILINE)
    return {int(first) + i for first, count in hunks for i in range(int(count or 1))}


def parse_arguments():
    parser = argparse.ArgumentParser(prog="./dev mutate", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.error = lambda message: parser.exit(64, f"mutate: {message}\n")
    which = parser.add_mutually_exclusive_group()
    which.add_argument("--since", metavar="COMMIT", default="HEAD~1",
                       help="only the lines that are not in COMMIT (default: %(default)s)")
    which.add_argument("--file", nargs="+", metavar="PATH", help="only these files, as in value/number.cc")
    which.add_argument("--all", action="store_true", help="every file")
    parser.add_argument("--minutes", type=float, metavar="N", default=math.inf, help="end after N minutes")
    arguments = parser.parse_args()
    if unknown := set(arguments.file or []) - set(source_files()):
        parser.error(f"{unknown.pop()} is not a source file of {', '.join(FOLDERS)}")
    return arguments


def main():
    arguments = parse_arguments()
    deadline = time.monotonic() + 60 * arguments.minutes
    tree = set_up()
    log = BUILD.with_name(f"results-{tree}").open("a+", buffering=1)
    log.seek(0)
    outcomes = dict(line.rstrip().split("=") for line in log)
    counts = dict.fromkeys(["killed", "not compiling", "equal", "survived", "untried"], 0)
    for path in arguments.file or source_files():
        source = (COPY / path).read_text()
        file = File(path, source, mutations.mutations_of(source))
        is_whole = arguments.file or arguments.all
        lines = range(source.count("\n") + 2) if is_whole else changed_lines(arguments.since, tree, path)
        chosen = {n: f"{path} {n}" for n, mutation in enumerate(file.mutations) if mutation.line in lines}

        def record(number, outcome):
            outcomes[chosen[number]] = outcome
            log.write(f"{chosen[number]}={outcome}\n")

        untried = [number for number, name in chosen.items() if name not in outcomes]
        if untried and time.monotonic() < deadline:
            try_file(file, untried, record, lambda: time.monotonic() > deadline)
        for number, name in chosen.items():
            counts[outcomes.get(name, "untried")] += 1
            if outcomes.get(name) == "survived":
                line, description, _ = file.mutations[number]
                print(f"{path}:{line}: {source.splitlines()[line - 1].strip()}\n  {description}", flush=True)
    print(f"{sum(counts.values())} mutants: " + ", ".join(f"{n} {name}" for name, n in counts.items()))
    return 1 if counts["survived"] else 0


if __name__ == "__main__":
    try:
        sys.exit(main())
    except subprocess.CalledProcessError as error:
        sys.exit(f"mutate: {error}\n{error.stdout}")
