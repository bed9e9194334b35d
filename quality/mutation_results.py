"""What became of each mutant, the list of those that no test can tell, and the closing table."""

import dataclasses
import json
import threading

FOLDERS = ["value", "registry", "personality", "plan", "driver"]
COLUMNS = ["mutants", "not compiling", "killed", "timed out", "equivalent", "survived", "untried"]
LEAST_SCORE = 95  # per cent


@dataclasses.dataclass(frozen=True)
class Mutant:
    """A change of one file. REQUIRES: `mutation` was made from the text `source` of that file."""

    path: str
    source: str
    mutation: object
    number: int  # among those of the file

    @property
    def key(self):
        """What the results know the mutant by: lines around it may move and change."""
        mutation = self.mutation
        return "|".join([self.path, mutation.above, mutation.before, mutation.after,
                         str(mutation.ordinal)])

    @property
    def text(self):
        return self.mutation.apply(self.source)

    def __str__(self):
        mutation = self.mutation
        return f"{self.path}:{mutation.line}: {mutation.before}\n  as: {mutation.after}"


class Results:
    """The outcomes so far, kept in a file to which each is added at once."""

    def __init__(self, path):
        self._path = path
        self._lock = threading.Lock()
        self._outcomes = {}
        if path.exists():
            for line in path.read_text().splitlines():
                entry = json.loads(line)
                self._outcomes[entry["mutant"]] = entry["outcome"]

    def outcome(self, mutant):
        return self._outcomes.get(mutant.key, "untried")

    def add(self, mutant, outcome, tests):
        with self._lock, self._path.open("a") as file:
            self._outcomes[mutant.key] = outcome
            entry = {"mutant": mutant.key, "outcome": outcome, "tests": tests}
            file.write(json.dumps(entry) + "\n")


@dataclasses.dataclass(frozen=True)
class Equivalent:
    """A listed change that makes no difference that a test could see, and why."""

    file: str
    line: str
    mutant: str
    reason: str
    above: str = None

    def covers(self, mutant):
        mutation = mutant.mutation
        if self.above not in (None, mutation.above):
            return False
        return (self.file, self.line, self.mutant) == (mutant.path, mutation.before, mutation.after)


def read_equivalents(text):
    """The entries of a list, blank lines between them and each of the form

        file: value/number.cc
        above: the line above, where only that tells the line from others of the file
        line: the line as it is, without its indentation
        mutant: the line as changed
        reason: one sentence

    Lines that begin with "#" are comments. Raises ValueError for any other form.
    """
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    blocks = [block.splitlines() for block in "\n".join(lines).split("\n\n") if block.strip()]
    return [read_equivalent([line for line in block if line]) for block in blocks]


def read_equivalent(lines):
    fields = dict(line.split(": ", 1) for line in lines if ": " in line)
    if len(fields) < len(lines) or set(fields) - {"above"} != {"file", "line", "mutant", "reason"}:
        raise ValueError("no entry for the list of equivalent mutants:\n" + "\n".join(lines))
    return Equivalent(**fields)


def stale_entries(equivalents, mutants, results):
    """Entries that no mutant bears out any longer: none is like that, or all such are killed."""
    settled = ("killed", "timed out", "not compiling")
    for entry in equivalents:
        covered = [mutant for mutant in mutants if entry.covers(mutant)]
        if all(results.outcome(mutant) in settled for mutant in covered):
            yield entry


def is_listed(mutant, equivalents):
    return any(entry.covers(mutant) for entry in equivalents)


def verdict(mutant, results, equivalents):
    """The column of the table that the mutant counts in."""
    outcome = results.outcome(mutant)
    return "equivalent" if outcome == "survived" and is_listed(mutant, equivalents) else outcome


def count_verdicts(mutants, results, equivalents):
    """The counts of each folder, and of all in a last row: [(name, {column: count})]."""
    rows = {name: dict.fromkeys(COLUMNS, 0) for name in FOLDERS + ["all"]}
    for mutant in mutants:
        for name in (mutant.path.split("/")[0], "all"):
            rows[name]["mutants"] += 1
            rows[name][verdict(mutant, results, equivalents)] += 1
    return [(name, row) for name, row in rows.items() if row["mutants"] > 0]


def score(row):
    """The killed, hanging ones among them, per cent of those that compile and were tried."""
    tried = row["mutants"] - row["not compiling"] - row["untried"]
    return 100 * (row["killed"] + row["timed out"]) / tried if tried else 100.0


def table(rows):
    lines = [["folder"] + COLUMNS + ["score"]]
    for name, row in rows:
        lines.append([name] + [str(row[column]) for column in COLUMNS] + [f"{score(row):.1f} %"])
    widths = [max(map(len, column)) for column in zip(*lines)]
    return "".join("  ".join([line[0].ljust(widths[0])] +
                             [cell.rjust(width) for cell, width in zip(line[1:], widths[1:])]) + "\n"
                   for line in lines)
