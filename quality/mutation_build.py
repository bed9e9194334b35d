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

import include_order

MEMORY_LIMIT = 2 << 30  # bytes of address space
SUITE = re.compile(r"^(?:TYPED_)?TEST(?:_[FP])?\((\w+),", re.MULTILINE)
SYSTEM_INCLUDE = re.compile(r"^#include <[^>]*>$", re.MULTILINE)
PROGRAM_TESTS = ["golden_test", "programs_test"]


class BuildError(Exception):
    """The source as it is does not build or pass."""


class Build:
    """The unchanged programs and libraries, and how each was made.

    Precompiled headers are made anew for each: what they hold may have been edited in between.
    """

    def __init__(self, root, directory, jobs):
        self.root = root
        self.directory = directory
        self._jobs = jobs
        self._lock = threading.RLock()
        self._preludes = directory / "preludes"
        self._limits = {}

    def bring_up_to_date(self):
        self._folders = include_order.read_folders(self.root)
        self._includes = include_order.read_includes(self.root)
        if not (self.directory / "build.ninja").exists():
            self._run(configure_command(self.root, self.directory))
        targets = [f"{name}_test" for name in self._tested_folders()] + self.program_tests()
        self._run(["ninja", "-C", self.directory, f"-j{self._jobs}"] + targets)
        shutil.rmtree(self._preludes, ignore_errors=True)
        self._preludes.mkdir()
        entries = json.loads((self.directory / "compile_commands.json").read_text())
        self._compilations = {
            str(pathlib.Path(entry["file"]).relative_to(self.root)): Compilation(entry)
            for entry in entries
        }
        self._links = {}

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
        return [name for name in self._tested_folders() if folder in self._folders[name]]

    def _tested_folders(self):
        return [name for name in self._folders
                if name != "testing" and any((self.root / name).rglob("*_test.cc"))]

    def program_tests(self):
        return [name for name in PROGRAM_TESTS if (self.root / f"golden/{name}.cc").exists()]

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
        return "".join(line + "\n" for line in sorted(found))

    def precompiled(self, text, compilation, level):
        """The path of a precompiled header that holds `text` for files compiled like this one."""
        flags = compilation.flags + [level]
        name = hashlib.sha256(repr((text, flags)).encode()).hexdigest()[:16]
        header = self._preludes / f"{name}.h"
        with self._lock:
            if not header.exists():
                header.write_text(text)
                command = compilation.compiler + flags + ["-x", "c++-header"]
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
        begin = time_of_children()
        if run_tests(Workshop(self, self.directory), program, suites, 600) != "passed":
            raise BuildError(f"the unchanged source does not pass {program} {suites}")
        return math.ceil(2 + 5 * (time_of_children() - begin))


class Workshop:
    """A directory in which files are compiled anew, and libraries and programs with them linked."""

    def __init__(self, build, directory):
        self._build = build
        self.directory = directory
        self._new_objects = {}

    def clear(self):
        shutil.rmtree(self.directory, ignore_errors=True)
        self.directory.mkdir(parents=True)
        self._new_objects = {}

    def write(self, path, text):
        """Writes a file. A header at its path from the root is then the one that is included."""
        file = self.directory / path
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text)
        return file

    def compile(self, path, source, prelude, level="-O0"):
        """Compiles the file `source` as the one at `path` is, behind the text `prelude`.

        Returns what the compiler says when it fails, otherwise nothing.
        """
        how = self._build.compilation(path)
        header = self._build.precompiled(prelude, how, level)
        new_object = self.directory / f"{len(self._new_objects)}.o"
        errors = errors_of(how.compiler + [f"-I{self.directory}"] + how.flags +
                           [level, "-include", header, "-c", source, "-o", new_object],
                           self._build.directory)
        if not errors:
            self._new_objects[how.object] = new_object
        return errors

    def link(self, target):
        """Links a library or program anew when an object of it is new. Returns whether that went."""
        command = self._build.link_command(target)
        if not self._new_objects.keys() & set(command):
            return True
        words = [str(self._new_objects.get(word, word)) for word in command]
        words[words.index("-o") + 1] = str(self.directory / target)
        return not errors_of(words, self._build.directory)

    def program(self, name):
        relinked = self.directory / name
        return relinked if relinked.exists() else self._build.directory / name


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
        self.flags = [word for word in words[1:] if not is_dropped(word)] + ["-w"]


def is_dropped(flag):
    """Whether a mutant does without a flag: it is compiled quickly, and nobody reads warnings."""
    return flag.startswith(("-W", "-O")) or flag.endswith("_EXPORTS")


def errors_of(command, directory):
    """Runs a compiler or linker: what it says when it fails, otherwise nothing."""
    done = subprocess.run(command, cwd=directory, stdin=subprocess.DEVNULL, text=True,
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)
    return (done.stderr or "failed") if done.returncode != 0 else ""


def time_of_children():
    """Seconds of processor time that the processes which were started and have ended took."""
    times = os.times()
    return times.children_user + times.children_system


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


def run_tests(workshop, program, suites, limit, variables=None, temporary=None):
    """Runs a test program with what was linked anew: "passed", "failed" or "timed out".

    `suites` is a filter as the program takes it; `limit` bounds the processor time, in seconds;
    `variables` are added to the environment; `temporary` is emptied afterwards.
    """
    temporary = temporary or workshop.directory / "tmp"
    temporary.mkdir(parents=True, exist_ok=True)
    environment = {**os.environ, **(variables or {}), "TMPDIR": str(temporary),
                   "LD_LIBRARY_PATH": str(workshop.directory)}
    command = ["prlimit", f"--cpu={limit}", f"--as={MEMORY_LIMIT}", "--core=0", "--",
               workshop.program(program), "--gtest_fail_fast", f"--gtest_filter={suites}"]
    child = subprocess.Popen(command, cwd=temporary, env=environment, process_group=0,
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
