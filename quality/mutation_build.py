"""The build that mutants are tried in.

Every folder is a shared library here. To try a change, only the files that hold it are compiled anew
and only their library is linked anew, both in a scratch directory; the programs, built once, find
the changed library there first through LD_LIBRARY_PATH.
"""

import hashlib
import json
import math
import os
import pathlib
import re
import shlex
import shutil
import signal
import subprocess
import threading
import time

import include_order

MEMORY_LIMIT = 2 << 30  # bytes of address space
SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\((\w+),", re.MULTILINE)
SYSTEM_INCLUDE = re.compile(r"^#include <[^>]*>$", re.MULTILINE)
PROGRAM_TESTS = ["golden_test", "programs_test"]


class BuildError(Exception):
    """The source as it is does not build or pass."""


class Build:
    """The unchanged programs and libraries, and how each was made.

    Made precompiled headers are kept for the lifetime of the object, because their headers may be
    edited after it.
    """

    def __init__(self, root, directory, jobs):
        self.root = root
        self.directory = directory
        self._jobs = jobs
        self._lock = threading.RLock()
        self._preludes = directory / "preludes"
        self._limits = {}

    def bring_up_to_date(self):
        if not (self.directory / "build.ninja").exists():
            self._run(configure_command(self.root, self.directory))
        self._run(["ninja", "-C", self.directory, f"-j{self._jobs}"])
        shutil.rmtree(self._preludes, ignore_errors=True)
        self._preludes.mkdir()
        entries = json.loads((self.directory / "compile_commands.json").read_text())
        self._compilations = {
            str(pathlib.Path(entry["file"]).relative_to(self.root)): Compilation(entry)
            for entry in entries
        }
        self._links = {}
        self._folders = include_order.read_folders(self.root)
        self._includes = include_order.read_includes(self.root)

    def _run(self, command):
        done = subprocess.run(command, cwd=self.root, capture_output=True, text=True)
        if done.returncode != 0:
            raise BuildError(f"{shlex.join(map(str, command))}\n{done.stdout}{done.stderr}")

    def compilation(self, source):
        return self._compilations[source]

    def link_command(self, target):
        """The command that links `target` in the build directory, as a list of words."""
        with self._lock:
            if target not in self._links:
                commands = subprocess.run(["ninja", "-t", "commands", target], cwd=self.directory,
                                          capture_output=True, text=True, check=True).stdout
                words = shlex.split(commands.splitlines()[-1])
                self._links[target] = [word for word in words if word not in (":", "&&")]
            return self._links[target]

    def folders_above(self, folder):
        """The folders with tests that use this one, from the ground up."""
        return [
            name for name, used in self._folders.items()
            if folder in used and (self.directory / f"{name}_test").exists()
        ]

    def program_tests(self):
        return [name for name in PROGRAM_TESTS if (self.directory / name).exists()]

    def users(self, header, folder):
        """The files of the folder that are compiled with the header."""
        return [
            path for path in self._compilations
            if path.startswith(folder + "/") and header in self._closure(path)
        ]

    def _closure(self, path):
        reached, left = set(), [path]
        while left:
            for included in self._includes.get(left.pop(), []):
                if included not in reached:
                    reached.add(included)
                    left.append(included)
        return reached

    def own_suites(self, path):
        """The test suites that a file's own test holds."""
        test = self.root / re.sub(r"\.(cc|h)$", "_test.cc", path)
        return sorted(set(SUITE.findall(test.read_text()))) if test.exists() else []

    def system_headers(self):
        """A text that includes every header from outside that any file includes."""
        found = set()
        for path in self._compilations:
            found.update(SYSTEM_INCLUDE.findall((self.root / path).read_text()))
        return "".join(line + "\n" for line in sorted(found) if "gtest" not in line)

    def precompiled(self, text, compilation):
        """The path of a precompiled header that holds `text` for files compiled like this one."""
        name = hashlib.sha256(repr((text, compilation.flags)).encode()).hexdigest()[:16]
        header = self._preludes / f"{name}.h"
        with self._lock:
            if not header.exists():
                header.write_text(text)
                command = compilation.compiler + compilation.flags + ["-x", "c++-header"]
                if "clang" in compilation.compiler[0]:
                    command += ["-Xclang", "-fpch-instantiate-templates"]
                self._run(command + [header, "-o", f"{header}.gch"])
        return header

    def time_limit(self, program, suites):
        """Seconds of processor time that no run takes unless it hangs."""
        with self._lock:
            if (program, suites) not in self._limits:
                self._limits[program, suites] = self._measure(program, suites)
            return self._limits[program, suites]

    def _measure(self, program, suites):
        begin = time.monotonic()
        if run_tests(self.directory / program, suites, self.directory, limit=600) != "passed":
            raise BuildError(f"the unchanged source does not pass {program} {suites}")
        return math.ceil(2 + 3 * (time.monotonic() - begin))


class Compilation:
    """How one file is compiled: REQUIRES an entry of compile_commands.json."""

    def __init__(self, entry):
        words = shlex.split(entry["command"])
        if pathlib.Path(words[0]).name == "ccache":
            del words[0]
        output = words.index("-o")
        self.object = words[output + 1]
        del words[output:output + 2]
        del words[words.index("-c"):]
        self.compiler = words[:1]
        self.flags = [word for word in words[1:] if not is_dropped(word)] + ["-O0", "-w"]


def is_dropped(flag):
    """Whether a mutant does without a flag: it is compiled quickly, and nobody reads warnings."""
    return flag.startswith(("-W", "-O")) or flag.endswith("_EXPORTS")


def configure_command(root, directory):
    command = [
        "cmake", "-S", root, "-B", directory, "-G", "Ninja", "-DBUILD_SHARED_LIBS=ON",
        "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O1",
        "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON"
    ]
    if shutil.which("clang++"):  # compiles a mutant in half the time
        command.append("-DCMAKE_CXX_COMPILER=clang++")
    if shutil.which("ccache"):
        command.append("-DCMAKE_CXX_COMPILER_LAUNCHER=ccache")
    return command


def run_tests(program, suites, scratch, limit):
    """Runs a test program with the libraries of `scratch`: "passed", "failed" or "timed out".

    `suites` is a filter as the program takes it; `limit` bounds the processor time, in seconds.
    """
    temporary = scratch / "tmp"
    temporary.mkdir(exist_ok=True)
    environment = {**os.environ, "LD_LIBRARY_PATH": str(scratch), "TMPDIR": str(temporary)}
    command = ["prlimit", f"--cpu={limit}", f"--as={MEMORY_LIMIT}", "--core=0", "--",
               program, "--gtest_fail_fast", f"--gtest_filter={suites}"]
    child = subprocess.Popen(command, cwd=temporary, env=environment, start_new_session=True,
                             stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                             stderr=subprocess.DEVNULL)
    try:
        status = child.wait(timeout=60 + 10 * limit)
    except subprocess.TimeoutExpired:  # waits for something that never comes
        status = -signal.SIGXCPU
        os.killpg(child.pid, signal.SIGKILL)
        child.wait()
    shutil.rmtree(temporary, ignore_errors=True)
    if status == -signal.SIGXCPU:
        return "timed out"
    return "passed" if status == 0 else "failed"
