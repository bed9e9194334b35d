"""What whole processes take: time, memory, instructions."""

import os
import re
import shutil
import statistics
import subprocess
import tempfile
import time


class Spent:
    """What one run of a process took: seconds by the clock and of processor time, and bytes."""

    def __init__(self, wall, usage):
        self.wall = wall
        self.cpu = usage.ru_utime + usage.ru_stime
        self.peak = usage.ru_maxrss * 1024  # of the largest process among it and its children


def run(command):
    """Runs a command with its output thrown away: a Spent. Its exit status is its own affair."""
    nowhere = [(os.POSIX_SPAWN_OPEN, 1, os.devnull, os.O_WRONLY, 0),
               (os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)]
    words = [os.fspath(word) for word in command]
    before = time.perf_counter()
    process = os.posix_spawn(words[0], words, os.environ, file_actions=nowhere)
    _, status, usage = os.wait4(process, 0)
    wall = time.perf_counter() - before
    if os.WIFSIGNALED(status):
        raise RuntimeError(f"{words[0]} ended by signal {os.WTERMSIG(status)}")
    return Spent(wall, usage)


def medians(commands, rounds, quantity=lambda spent: spent.wall):
    """Runs the commands in turn, so many rounds, after one that is not counted: their medians."""
    taken = [[] for _ in commands]
    for round_number in range(rounds + 1):
        for command, values in zip(commands, taken):
            value = quantity(run(command))
            if round_number > 0:
                values.append(value)
    return [statistics.median(values) for values in taken]


def instructions(command):
    """How many instructions a command executes in user mode, by callgrind. None without valgrind."""
    valgrind = shutil.which("valgrind")
    if valgrind is None:
        return None
    with tempfile.NamedTemporaryFile() as profile:
        done = subprocess.run(
            [valgrind, "--tool=callgrind", f"--callgrind-out-file={profile.name}", *command],
            stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    counted = re.search(r"Collected : (\d+)", done.stderr)
    return int(counted[1]) if counted else None
