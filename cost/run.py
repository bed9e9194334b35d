#!/usr/bin/python3 -B
"""Measures whether a command costs more than its input.

Each kind of input is made at two sizes, the second twice the first, and given to each command that
reads it. Instructions may double, or grow as n log n does; where the results that are asked for are
pairs, they may grow fourfold. The peak of memory may be 64 MB and 40 bytes for each byte of the
input. What exceeds that is marked, and makes the status 1.
"""

import argparse
import dataclasses
import math
import os
import pathlib
import sys
import tempfile

import commands
import inputs
import measure

sys.path.append(str(pathlib.Path(__file__).resolve().parent.parent / "bench"))
import processes  # noqa: E402
import text_table  # noqa: E402

WRONG_USAGE = 64
FIXED_MEMORY = 64_000_000
MEMORY_PER_BYTE = 40
TOLERANCE = 1.1  # of the growth of instructions, for steps such as those of a growing buffer

# Of the first input, in bytes.
SIZE = 50_000
SHORT_SIZE = 6_000

# The short form counts the instructions of one in so many kinds, and the memory of all.
SHORT_COUNTS = 4


@dataclasses.dataclass
class Run:
    """One run of a command: the size of its input, and what measure.py found."""
    size: int
    status: int
    peak: int
    seconds: float
    printed: int
    instructions: int = None


@dataclasses.dataclass
class Row:
    """A command over two inputs of one kind. `start` are the instructions of a run without input."""
    family: inputs.Family
    command: str
    small: Run
    large: Run
    start: int = 0

    def growth(self):
        """Of the instructions, and of the input: None where instructions are not counted."""
        if self.small.instructions is None or self.large.instructions is None:
            return None
        own = [max(run.instructions - self.start, 1) for run in (self.small, self.large)]
        return own[1] / own[0]

    def allowed_growth(self):
        small, large = self.small.size, self.large.size
        # Of a small input much may be the same at both sizes, but what is repeated is doubled.
        allowed = max(large / small, 2) * math.log(large) / math.log(small)
        return TOLERANCE * (allowed ** 2 if self.family.pairs else allowed)

    def findings(self):
        found = []
        for run in (self.small, self.large):
            if run.status < 0:
                found.append(f"ended by signal {-run.status}")
            elif run.status == 71:
                found.append("out of memory")
            elif run.peak > FIXED_MEMORY + MEMORY_PER_BYTE * run.size:
                found.append("MEMORY")
        growth = None if self.family.constant else self.growth()
        if growth is not None and growth > self.allowed_growth():
            found.append("TIME")
        return ", ".join(dict.fromkeys(found))

    def cells(self):
        large, growth = self.large, self.growth()
        per_byte = "" if growth is None else f"{(large.instructions - self.start) / large.size:.0f}"
        return [self.family.name, self.command, f"{large.size:,}", str(large.status), per_byte,
                "" if growth is None else f"{growth:.2f}", f"{large.seconds:.2f}",
                f"{large.peak / 1e6:.1f}", f"{large.peak / large.size:.0f}",
                f"{large.printed / 1e6:.2f}", self.findings()]


HEADINGS = ["INPUT", "COMMAND", "BYTES", "STATUS", "INSTR/BYTE", "GROWTH", "SECONDS", "PEAK MB",
            "PEAK/BYTE", "PRINTED MB", ""]


def count_instructions(words, standard_input):
    return processes.instructions(words, standard_input or os.devnull, 3 * measure.MAX_SECONDS)


def measure_run(lab, name, directory, counts):
    size = inputs.input_size(directory)
    command = commands.command(name, directory)
    words = [lab, *command.words]
    found = measure.peak(words, command.standard_input,
                         4 * (FIXED_MEMORY + MEMORY_PER_BYTE * size))
    run = Run(size, **found)
    if counts and run.status >= 0:
        run.instructions = count_instructions(words, command.standard_input)
    for written in directory.glob("out*"):
        written.unlink()
    return run


def measure_family(lab, family, names, size, counts, start):
    """Yields a row for each command."""
    with tempfile.TemporaryDirectory(prefix="fernwick-cost-") as directory:
        directories = [pathlib.Path(directory) / name for name in ("small", "large")]
        for each, factor in zip(directories, (1, 2)):
            each.mkdir()
            family.write(each, factor * size)
        for name in names:
            small, large = (measure_run(lab, name, each, counts) for each in directories)
            yield Row(family, name, small, large, start)


class Arguments(argparse.ArgumentParser):
    def error(self, message):
        self.exit(WRONG_USAGE, f"cost: {message}\n")


def parse_arguments(arguments):
    parser = Arguments(prog="cost", description=__doc__,
                       formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("build", type=pathlib.Path, help=argparse.SUPPRESS)
    parser.add_argument("inputs", nargs="*", metavar="INPUT",
                        help="which kinds of input, by words of their names (default: all)")
    parser.add_argument("--command", help="only this command, by words of its name")
    parser.add_argument("--size", type=int, metavar="BYTES",
                        help=f"of the smaller input (default: {SIZE:,})")
    parser.add_argument("--memory", action="store_true", help="do not count instructions")
    parser.add_argument("--short", action="store_true",
                        help="small inputs, and one command for each kind: a test")
    parser.add_argument("--list", action="store_true", help="list the kinds of input")
    return parser.parse_intermixed_args(arguments)


def selected(options):
    families = [family for family in inputs.FAMILIES
                if not options.inputs or any(words in family.name for words in options.inputs)]
    for family in families:
        names = [name for name in commands.names_of(family)
                 if not options.command or options.command in name]
        if options.short:  # another one for each kind, so that each command has its turn
            names = names[len(family.name) % len(names):][:1] if names else []
        if names:
            yield family, names


def main(arguments):
    options = parse_arguments(arguments)
    if options.list:
        for family in inputs.FAMILIES:
            print(f"{family.name}: {', '.join(commands.names_of(family))}")
        return 0
    lab = options.build.resolve() / "fernwick-lab"
    start = None if options.memory else count_instructions([lab, "--version"], None)
    if start is None and not options.memory:
        print("cost: without valgrind no instructions are counted", file=sys.stderr)
    size = options.size or (SHORT_SIZE if options.short else SIZE)
    rows = []
    for number, (family, names) in enumerate(selected(options)):
        print(f"cost: measuring {family.name}", file=sys.stderr)
        counts = start is not None and not (options.short and number % SHORT_COUNTS)
        rows += measure_family(lab, family, names, size, counts, start or 0)
    print(text_table.table([HEADINGS] + [row.cells() for row in rows]), end="")
    found = [row for row in rows if row.findings()]
    print(f"{len(rows)} measured, {len(found)} cost more than their input")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
