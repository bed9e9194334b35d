"""Trying one mutant: compile what it is in, link, run the tests until one fails."""

import re
import shutil
import subprocess

from mutation_build import run_tests

# Comparisons over whole domains. They take long, so they come last and for their own folder alone.
SLOW_SUITES = "*Reference.*"

INCLUDE_LINE = re.compile(r"^#include .*$", re.MULTILINE)


class NotCompiling(Exception):
    pass


class Trial:
    """A scratch directory in which one mutant after the other is tried. One thread's alone."""

    def __init__(self, build, scratch):
        self._build = build
        self._scratch = scratch
        self._new_objects = {}

    def run(self, path, source, mutant):
        """Tries a mutant of the file at `path`: its outcome, and the tests that decided it.

        The outcome is "killed", "timed out", "survived" or "not compiling".
        """
        shutil.rmtree(self._scratch, ignore_errors=True)
        self._scratch.mkdir(parents=True)
        self._new_objects = {}
        steps = self._header_steps if path.endswith(".h") else self._source_steps
        try:
            for program, suites in steps(path, source, mutant):
                limit = self._build.time_limit(program, suites)
                outcome = run_tests(self._program(program), suites, self._scratch, limit)
                if outcome != "passed":
                    killed = "killed" if outcome == "failed" else outcome
                    return killed, f"{program} {suites}"
        except NotCompiling:
            return "not compiling", ""
        return "survived", ""

    def _source_steps(self, path, source, mutant):
        """Compiles a changed .cc file, then yields what to run: (program, suites)."""
        folder = path.split("/")[0]
        prelude, _ = split_prelude(source)
        _, body = split_prelude(mutant)
        changed = self._scratch / "mutant.cc"
        changed.write_text(body)
        self._compile(path, changed, prelude)
        self._link(f"libfernwick_{folder}.so")
        own_suites = self._build.own_suites(path)
        if own_suites:
            yield f"{folder}_test", joined(own_suites)
        yield f"{folder}_test", f"-{SLOW_SUITES}:{joined(own_suites)}"
        for name in self._build.folders_above(folder):
            yield f"{name}_test", f"-{SLOW_SUITES}"
        yield from self._last_tests(folder)

    def _header_steps(self, path, _, mutant):
        """Compiles what includes a changed header, a folder after the other, and yields what to run.

        What tests share is left as it is: it stands outside of what is tested.
        """
        overlay = self._scratch / path
        overlay.parent.mkdir()
        overlay.write_text(mutant)
        folder = path.split("/")[0]
        for name in [folder] + self._build.folders_above(folder):
            users = self._build.users(path, name)
            tests = [user for user in users if user.endswith("_test.cc")]
            own_test = path.removesuffix(".h") + "_test.cc"
            self._compile_users([user for user in users if user not in tests])
            self._link(f"libfernwick_{name}.so")
            own_suites = self._build.own_suites(path) if own_test in tests else []
            if own_suites:
                self._compile_users([own_test])
                self._link(f"{name}_test")
                yield f"{name}_test", joined(own_suites)
            self._compile_users([test for test in tests if test != own_test])
            self._link(f"{name}_test")
            yield f"{name}_test", f"-{SLOW_SUITES}"
        yield from self._last_tests(folder)

    def _last_tests(self, folder):
        for program in self._build.program_tests():
            yield program, "*"
        yield f"{folder}_test", SLOW_SUITES

    def _compile_users(self, users):
        prelude = self._build.system_headers()
        for user in users:
            self._compile(user, self._build.root / user, prelude)

    def _compile(self, path, source, prelude):
        """Compiles the file `source` as the file at `path` is compiled, into the scratch directory."""
        how = self._build.compilation(path)
        header = self._build.precompiled(prelude, how)
        new_object = self._scratch / f"{len(self._new_objects)}.o"
        command = how.compiler + [f"-I{self._scratch}"] + how.flags
        command += ["-include", header, "-c", source, "-o", new_object]
        if not succeeds(command, self._build.directory):
            raise NotCompiling
        self._new_objects[how.object] = new_object

    def _link(self, target):
        """Links a library or program anew when an object of it is new."""
        command = self._build.link_command(target)
        if not self._new_objects.keys() & set(command):
            return
        words = [str(self._new_objects.get(word, word)) for word in command]
        words[words.index("-o") + 1] = str(self._scratch / target)
        if not succeeds(words, self._build.directory):
            raise NotCompiling

    def _program(self, name):
        relinked = self._scratch / name
        return relinked if relinked.exists() else self._build.directory / name


def split_prelude(source):
    """The lines of a file up to its last #include, and the rest at its own line numbers."""
    includes = list(INCLUDE_LINE.finditer(source))
    end = includes[-1].end() if includes else 0
    return source[:end] + "\n", "\n" * source[:end].count("\n") + source[end:]


def joined(suites):
    """A filter for the suites, with parameters or without."""
    return ":".join(f"{suite}.*:*/{suite}.*" for suite in suites)


def succeeds(command, directory):
    return subprocess.run(command, cwd=directory, stdin=subprocess.DEVNULL,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0
