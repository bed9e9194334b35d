"""Trying one mutant: running the tests with it until one fails.

Most mutants of a .cc file are compiled together (mutation_switch.py) and chosen when the tests are
run. Those that cannot be, and those of headers, are compiled each by itself.
"""

import re
import shutil
import threading

from mutation_build import Workshop, run_tests
from mutation_switch import HEADER, switched
from mutations import mutations_of

# Comparisons over whole domains and over many computers. They take long, so they come last and for
# their own folder alone.
SLOW_SUITES = "*Reference.*:ExplainAgreement.*:*Reach.*"

INCLUDE_LINE = re.compile(r"^#include .*$", re.MULTILINE)


class NotCompiling(Exception):
    pass


class SwitchedFile:
    """One .cc file with its mutants to choose from, compiled and linked.

    `reached` are the numbers of those that can be chosen: those whose place some test of the folder
    or of the programs passes at run time. There are none where the file behaves differently so.
    """

    def __init__(self, build, path, source):
        name = path.replace("/", "-")
        self._build = build
        self._notes = build.directory / f"switched/{name}.notes"
        self.workshop = Workshop(build, build.directory / "switched" / name)
        self.workshop.clear()
        self.reached = frozenset()
        held = self._compile(path, source)
        if held and self.workshop.link(f"libfernwick_{folder_of(path)}.so"):
            self.reached = self._pass_tests(path) & frozenset(held)

    def _compile(self, path, source):
        """Compiles the file without what does not compile so, and returns the numbers it holds."""
        mutations = mutations_of(source)
        prelude = split_prelude(source)[0] + f'#include "{HEADER}"\n'
        left_out = set()
        while True:
            text, held = switched(source, mutations, left_out)
            changed = self.workshop.write("mutants.cc", split_prelude(text)[1])
            errors = self.workshop.compile(path, changed, prelude, "-O1")
            if not errors:
                return held
            lines = {int(line) for line in re.findall(r"mutants\.cc:(\d+):", errors)}
            if lines <= left_out:
                return []
            left_out |= lines

    def _pass_tests(self, path):
        self._notes.unlink(missing_ok=True)
        variables = {"MUTANT_NOTES": str(self._notes)}
        folder = folder_of(path)
        for program, suites in [(f"{folder}_test", f"-{SLOW_SUITES}")] + last_tests(
                self._build, folder):
            if run_tests(self.workshop, program, suites, 600, variables) != "passed":
                return frozenset()
        return frozenset(map(int, self._notes.read_text().split())) if self._notes.exists() \
            else frozenset()


class SwitchedFiles:
    """Makes the SwitchedFile of each file once, when it is first asked for."""

    def __init__(self, build):
        self._build = build
        self._lock = threading.Lock()
        self._files = {}

    def of(self, path, source):
        with self._lock:
            if path not in self._files:
                self._files[path] = SwitchedFile(self._build, path, source)
            return self._files[path]


class Trial:
    """A scratch directory in which one mutant after the other is tried. One thread's alone."""

    def __init__(self, build, switched_files, scratch):
        self._build = build
        self._switched_files = switched_files
        self._workshop = Workshop(build, scratch)

    def run(self, mutant):
        """Tries a mutant: its outcome, and the tests that decided it.

        The outcome is "killed", "timed out", "survived" or "not compiling".
        """
        self._workshop.clear()
        if mutant.path.endswith(".h"):
            return self._decide(self._workshop, self._header_steps(mutant))
        file = self._switched_files.of(mutant.path, mutant.source)
        if mutant.number in file.reached:
            variables = {"MUTANT_CHOSEN": str(mutant.number)}
            return self._decide(file.workshop, source_tests(self._build, mutant.path), variables)
        return self._decide(self._workshop, self._source_steps(mutant))

    def _decide(self, workshop, steps, variables=None):
        try:
            for program, suites in steps:
                limit = self._build.time_limit(program, suites)
                outcome = run_tests(workshop, program, suites, limit, variables,
                                    self._workshop.directory / "tmp")
                if outcome != "passed":
                    killed = "killed" if outcome == "failed" else outcome
                    return killed, f"{program} {suites}"
        except NotCompiling:
            return "not compiling", ""
        return "survived", ""

    def _source_steps(self, mutant):
        """Compiles a changed .cc file, then yields what to run: (program, suites)."""
        changed = self._workshop.write("mutant.cc", split_prelude(mutant.text)[1])
        self._compile(mutant.path, changed, split_prelude(mutant.source)[0])
        self._link(f"libfernwick_{folder_of(mutant.path)}.so")
        yield from source_tests(self._build, mutant.path)

    def _header_steps(self, mutant):
        """Compiles what includes a changed header, a folder after the other, and yields what to run.

        What tests share is left as it is: it stands outside of what is tested.
        """
        path = mutant.path
        self._workshop.write(path, mutant.text)
        folder = folder_of(path)
        for name in [folder] + self._build.folders_above(folder):
            users = self._build.users(path, name)
            tests = [user for user in users if user.endswith("_test.cc")]
            own_test = path.removesuffix(".h") + "_test.cc"
            self._compile_users([user for user in users if user not in tests])
            self._link(f"libfernwick_{name}.so")
            if own_test in tests:
                self._compile_users([own_test])
                self._link(f"{name}_test")
                yield f"{name}_test", joined(self._build.own_suites(path))
            self._compile_users([test for test in tests if test != own_test])
            self._link(f"{name}_test")
            yield f"{name}_test", f"-{SLOW_SUITES}"
        yield from last_tests(self._build, folder)

    def _compile_users(self, users):
        prelude = self._build.system_headers()
        for user in users:
            self._compile(user, self._build.root / user, prelude)

    def _compile(self, path, source, prelude):
        if self._workshop.compile(path, source, prelude):
            raise NotCompiling

    def _link(self, target):
        if not self._workshop.link(target):
            raise NotCompiling


def source_tests(build, path):
    """What to run against a mutant of a .cc file, soonest what most likely tells: its own test."""
    folder = folder_of(path)
    own_suites = build.own_suites(path)
    if own_suites:
        yield f"{folder}_test", joined(own_suites)
    yield f"{folder}_test", f"-{SLOW_SUITES}:{joined(own_suites)}"
    for name in build.folders_above(folder):
        yield f"{name}_test", f"-{SLOW_SUITES}"
    yield from last_tests(build, folder)


def last_tests(build, folder):
    return [(program, "*") for program in build.program_tests()] + [(f"{folder}_test", SLOW_SUITES)]


def folder_of(path):
    return path.split("/")[0]


def split_prelude(source):
    """The lines of a file up to its last #include, and the rest at its own line numbers."""
    includes = list(INCLUDE_LINE.finditer(source))
    end = includes[-1].end() if includes else 0
    return source[:end] + "\n", "\n" * source[:end].count("\n") + source[end:]


def joined(suites):
    """A filter for the suites, with parameters or without."""
    return ":".join(f"{suite}.*:*/{suite}.*" for suite in suites)
