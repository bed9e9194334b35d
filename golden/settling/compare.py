#!/usr/bin/python3
"""Compares `settle` with repeated `replay` over recordings that this script changes itself.

Makes random computers and payloads, and compares the outcome, the number of runs, the state that comes back
and the final versions of all controllers.

usage: compare.py --lab FERNWICK-LAB [--seed N] [--count N]    exit status 1 when one differs
"""

import argparse
import collections
import json
import pathlib
import random
import subprocess
import sys
import tempfile

import computers
import simulation

BATCH = 100


def settle_rows(lab, payload, directory, arguments):
    command = [lab, "settle", "--json", "-p", payload, *arguments, directory]
    process = subprocess.run(command, capture_output=True, check=False)
    rows = [json.loads(line) for line in process.stdout.decode().splitlines()]
    never = any(row["outcome"] in ("never settles", "undecided") for row in rows)
    ended = any(row["outcome"] in ("bypassed", "abnormal end") and row["runs"] > 0 for row in rows)
    if process.returncode != int(never or ended):
        sys.exit(f"settle ended with status {process.returncode}: {process.stderr.decode()}")
    return {pathlib.Path(row["file"]).name: row for row in rows}


def real(version):
    """A version as settle prints it, where an integer and a real may be written alike."""
    return None if version is None else float(version)


def seen_of_row(row):
    outcome = "settled" if row["outcome"] == "stuck" else row["outcome"]
    versions = {each["entry"].rsplit("/", 1)[1]: real(each["after"]) for each in row["controllers"]}
    return outcome, row["runs"], row["comesBack"], versions


def compare(row, expected):
    """What differs; empty when nothing does. Only listed controllers are in a row."""
    outcome, runs, comes_back, versions = seen_of_row(row)
    if (outcome, runs, comes_back) != expected[:3]:
        return f"settle: {outcome, runs, comes_back}, replay: {expected[:3]}"
    for name, version in versions.items():
        if version != real(expected[3][name]):
            return f"settle: {name} at {version}, replay: {expected[3][name]}"
    return ""


def run_batch(lab, rng, count, directory, outcomes):
    payload, fleet = directory / "payload", directory / "fleet"
    cases = {}
    for i in range(count):
        board = f"Zed-{i:X}"
        configuration = computers.random_configuration(rng)
        recording = computers.random_computer(rng, board)
        computers.write(payload / "Fernwick" / board / "Config.plist", configuration)
        name = f"{i:03}.registry.plist"
        computers.write(fleet / name, recording)
        cases[name] = (recording, configuration)
    arguments = ["--bypassVersion"] if rng.random() < 0.15 else []
    rows = settle_rows(lab, payload, fleet, arguments)
    faults = 0
    for name, (recording, configuration) in cases.items():
        path = directory / "changed.plist"
        expected = simulation.settle(lab, recording, configuration, payload, path, arguments)
        fault = compare(rows[name], expected)
        outcomes[rows[name]["outcome"], min(rows[name]["runs"], 5)] += 1
        if fault:
            faults += 1
            print(f"{name}: {fault}\n  {json.dumps(rows[name])}\n  {configuration}\n  {recording}")
    return faults


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--lab", required=True)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=300)
    options = parser.parse_args()
    rng = random.Random(options.seed)
    outcomes = collections.Counter()
    faults = 0
    for first in range(0, options.count, BATCH):
        with tempfile.TemporaryDirectory() as directory:
            count = min(BATCH, options.count - first)
            faults += run_batch(options.lab, rng, count, pathlib.Path(directory), outcomes)
    for (outcome, runs), count in sorted(outcomes.items()):
        print(f"{outcome} after {runs}{' or more' if runs == 5 else ''}: {count}")
    print(f"{options.count} computers, {faults} differ")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
