"""Measures whole processes: time, memory, instructions."""

import os
import pathlib
import re
import shutil
import statistics
import subprocess
import tempfile
import time


class Spent:
    """The wall time and the processor time of one run of a process, in seconds."""

    def __init__(self, wall, usage):
        self.wall = wall
        self.cpu = usage.ru_utime + usage.ru_stime


def start(command):
    """Starts a command with its output thrown away: its process."""
    nowhere = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0),
               (os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)]
    words = [os.fspath(word) for word in command]
    return os.posix_spawn(words[0], words, os.environ, file_actions=nowhere)


def check(command, status):
    if os.WIFSIGNALED(status):
        raise RuntimeError(f"{command[0]} ended by signal {os.WTERMSIG(status)}")


def run(command):
    """Runs a command: a Spent. Its exit status is its own affair."""
    before = time.perf_counter()
    process = start(command)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - before
    check(command, status)
    return Spent(wall, usage)


def high_water_mark(process):
    """The most bytes that a process or one of its children has had in memory; 0 when it has ended."""
    try:
        status = pathlib.Path(f"/proc/{process}/status").read_text()
        children = pathlib.Path(f"/proc/{process}/task/{process}/children").read_text().split()
    except OSError:
        return 0
    own = re.search(r"^VmHWM:\s*(\d+) kB", status, re.MULTILINE)
    return max([int(own[1]) * 1024 if own else 0, *map(high_water_mark, children)])


def peak_memory(command):
    """Runs a command: the most bytes that the largest process among it and its children was seen
    to have in memory. What the kernel keeps of a process that has ended counts in what its parent
    had when it started it."""
    process = start(command)
    peak = 0
    while True:
        peak = max(peak, high_water_mark(process))
        ended, status = os.waitpid(process, os.WNOHANG)
        if ended:
            check(command, status)
            return peak
        time.sleep(0.001)


def medians(commands, rounds, quantity=lambda spent: spent.wall):
    """Runs the commands in turn, so many rounds, after one that is not counted: their medians."""
    taken = [[] for _ in commands]
    for round_number in range(rounds + 1):
        for command, values in zip(commands, taken):
            value = quantity(run(command))
            if round_number > 0:
                values.append(value)
    return [statistics.median(values) for values in taken]


def instructions(command, standard_input=os.devnull, max_seconds=None):
    """How many instructions a command executes in user mode, by callgrind. None without valgrind, and
    where the command takes longer than `max_seconds`."""
    valgrind = shutil.which("valgrind")
    if valgrind is None:
        return None
    with tempfile.NamedTemporaryFile() as profile, open(standard_input) as file:
        try:
            done = subprocess.run(
                [valgrind, "--tool=callgrind", f"--callgrind-out-file={profile.name}", *command],
                stdin=file, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, timeout=max_seconds)
        except subprocess.TimeoutExpired:
            return None
    counted = re.search(rb"Collected : (\d+)", done.stderr)
    return int(counted[1]) if counted else None
