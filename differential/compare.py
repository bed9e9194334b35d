#!/usr/bin/python3
"""Reads the same property lists with our reader and with two others, and compares.

The others are Python's plistlib (XML and binary) and plistutil (binary; the XML that it writes is
read by plistlib). Random values are written in many forms, some are damaged, and each document goes
through the readers. They agree when they accept it with the same value or all refuse it. Where they
do not, a rule of rules.py has to explain why; a difference that none explains is a failure, and so
is a rule whose own examples do not show it any more. The old text form has no other reader here.

usage: compare.py [--seed S] [--count N] [--describer PROGRAM] [--plistutil PROGRAM]

Exit status 1 when something has to be looked at.
"""

import argparse
import collections
import os
import sys

sys.dont_write_bytecode = True  # nothing is left in the source

import readers
from damage import wrong_documents
from descriptions import Outcome
from documents import DocumentMaker
from rules import PLISTLIB, PLISTUTIL, RULES, Reading, agree, explain

BATCH = 500  # documents for one process of ours
SHOWN = 20  # failures that are printed
MAX_EXCERPT_SIZE = 300


class Report:
    """The results of the comparisons so far."""

    def __init__(self):
        self.counts = collections.Counter()
        self.met = collections.Counter()
        self.failures = []

    def fail(self, what, document, ours=None, theirs=None):
        self.counts["failures"] += 1
        text = f"{what}\n  {document[:MAX_EXCERPT_SIZE]!r}"
        if ours:
            text += f"\n  ours:   {excerpt(ours, theirs)}\n  theirs: {excerpt(theirs, ours)}"
        if len(self.failures) < SHOWN:
            self.failures.append(text)


def excerpt(outcome, other):
    """Why there is no value, or the value from shortly before it departs from the other one."""
    if not outcome.accepted:
        return f"refused: {outcome.error}"
    shared = len(os.path.commonprefix([outcome.value, other.value or ""]))
    start = max(0, shared - 40)
    return ("..." if start else "") + outcome.value[start:start + MAX_EXCERPT_SIZE]


class Comparison:
    """Compares the readers' results; `read_other` returns the one of PLISTLIB or PLISTUTIL."""

    def __init__(self, read_ours, read_other, rules):
        self._read_ours = read_ours
        self._read_other = read_other
        self._rules = rules
        self.report = Report()

    def compare(self, documents):
        """Compares pairs of a document and its expected value, None where that is unknown."""
        ours = self._read_ours([document for document, _ in documents])
        for (document, expected), (serialisation, outcome) in zip(documents, ours):
            self.report.counts["documents"] += 1
            if expected is not None and outcome.value != expected:
                self.report.fail("not the value that was written", document, outcome,
                                 Outcome(expected))
            for reader in readers_of(document):
                self._compare_with(reader, document, Reading(serialisation, outcome))

    def _compare_with(self, reader, document, ours):
        theirs = self._read_other(reader, document)
        counts = self.report.counts
        if agree(ours.outcome, theirs):
            counts[f"{reader}: {'the same value' if theirs.accepted else 'both refuse'}"] += 1
            return
        met = explain(document, reader, ours, theirs, self._rules)
        if not met:
            self.report.fail(f"no rule explains {reader}", document, ours.outcome, theirs)
            return
        counts[f"{reader}: differ by rule"] += 1
        self.report.met.update((rule.name, reader) for rule in met)

    def check_rules_by_their_examples(self):
        """Fails for each rule that its own examples do not need, or not only that rule."""
        for rule in self._rules:
            for reader in rule.readers:
                met = [self._meets_alone(rule, reader, example) for example in rule.examples]
                if not rule.enough(met):
                    self.report.fail(f"the rule {rule.name} is stale for {reader}",
                                     rule.examples[met.index(False)])

    def _meets_alone(self, rule, reader, example):
        serialisation, ours = self._read_ours([example])[0]
        theirs = self._read_other(reader, example)
        return not agree(ours, theirs) and [rule] == explain(
            example, reader, Reading(serialisation, ours), theirs, self._rules)


def readers_of(document):
    return (PLISTLIB, PLISTUTIL) if document.startswith(b"bplist0") else (PLISTLIB,)


def print_report(report):
    for what, count in sorted(report.counts.items()):
        print(f"{count:9} {what}")
    for rule in RULES:
        for reader in rule.readers:
            if count := report.met[rule.name, reader]:
                print(f"{count:9} {reader} by {rule.name}: {rule.reason}")
    print("\n".join(report.failures), end="\n" if report.failures else "")


def parse_arguments():
    parser = argparse.ArgumentParser(description=__doc__.partition("\n")[0])
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--count", type=int, default=4000, help="documents")
    parser.add_argument("--describer", default=readers.default_describer())
    parser.add_argument("--plistutil", default="plistutil")
    return parser.parse_args()


def main():
    arguments = parse_arguments()

    def read_other(reader, document):
        if reader == PLISTLIB:
            return readers.read_plistlib(document)
        return readers.read_plistutil(arguments.plistutil, document)

    comparison = Comparison(
        lambda documents: readers.read_ours(arguments.describer, documents), read_other, RULES)
    comparison.check_rules_by_their_examples()
    comparison.compare([(document, None) for document in wrong_documents()])
    maker = DocumentMaker(
        arguments.seed, lambda xml: readers.convert_with_plistutil(arguments.plistutil, xml))
    for start in range(0, arguments.count, BATCH):
        comparison.compare([maker.make() for _ in range(min(BATCH, arguments.count - start))])
    print_report(comparison.report)
    return 1 if comparison.report.counts["failures"] else 0


if __name__ == "__main__":
    sys.exit(main())
