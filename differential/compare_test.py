#!/usr/bin/python3
"""Tests of the comparison itself: it has to fail where it should."""

import contextlib
import io
import pathlib
import subprocess
import sys
import unittest

import readers
from compare import Comparison
from descriptions import Outcome, describe, tokens_of, unquote
from documents import DocumentMaker
from examples import binary_file
from rules import PLISTLIB, RULES, Reading, Rule, explain

TRUE = b"<plist><true/></plist>"
YES = Outcome("true")
NO = Outcome("false")
REFUSED = Outcome(None, "line 1, column 8: a fault")


def failures(ours, theirs, document=TRUE, expected=None, rules=RULES, serialisation="xml"):
    """The report of comparing one document when the readers return these outcomes."""
    comparison = Comparison(lambda documents: [(serialisation, ours)] * len(documents),
                            lambda reader, read: theirs, rules)
    comparison.compare([(document, expected)])
    return [failure.partition("\n")[0] for failure in comparison.report.failures]


class TheComparison(unittest.TestCase):
    def test_the_same_value_is_agreement(self):
        self.assertEqual(failures(YES, YES, expected="true"), [])

    def test_two_refusals_are_agreement(self):
        self.assertEqual(failures(REFUSED, Outcome(None, "another reason")), [])

    def test_another_value_is_a_failure(self):
        self.assertEqual(failures(YES, NO), ["no rule explains plistlib"])

    def test_a_refusal_of_ours_alone_is_a_failure(self):
        self.assertEqual(failures(REFUSED, YES), ["no rule explains plistlib"])

    def test_a_refusal_of_theirs_alone_is_a_failure(self):
        self.assertEqual(failures(YES, REFUSED), ["no rule explains plistlib"])

    def test_another_value_than_the_one_written_is_a_failure(self):
        self.assertEqual(failures(YES, YES, expected="false"), ["not the value that was written"])

    def test_both_others_are_asked_about_a_binary_document(self):
        self.assertEqual(failures(YES, NO, document=binary_file([b"\x09"]), serialisation="binary"),
                         ["no rule explains plistlib", "no rule explains plistutil"])

    def test_a_stale_rule_is_a_failure(self):
        comparison = Comparison(lambda documents: [("xml", YES)], lambda reader, read: YES,
                                [Rule("old", (PLISTLIB,), "A reason.", (TRUE,))])
        comparison.check_rules_by_their_examples()
        self.assertEqual([failure.partition("\n")[0] for failure in comparison.report.failures],
                         ["the rule old is stale for plistlib"])


class TheRules(unittest.TestCase):
    def test_a_message_without_ground_in_the_document_explains_nothing(self):
        """For every rule about a refusal: the same words about a document that is sound."""
        words = {"binary": "byte 8", "xml": "line 1, column 8", "text": "line 1, column 8"}
        sound = {"binary": binary_file([b"\x51a"]), "xml": TRUE, "text": TRUE}
        for rule in RULES:
            if rule.message is None:
                continue
            text = rule.message.replace("\\\\", "\\").replace("\\^", "^").replace(".*", "a")
            error = Outcome(None, f"{words[rule.form]}: {text}")
            with self.subTest(rule.name):
                self.assertRegex(text, rule.message)
                for reader in rule.readers:
                    self.assertIsNone(explain(sound[rule.form], reader,
                                              Reading(rule.form, error), YES, RULES))

    def test_a_rule_is_about_the_readers_that_it_names(self):
        rule = next(rule for rule in RULES if rule.name == "set")
        error = Outcome(None, "byte 8: a set is no property-list value")
        reading = Reading("binary", error)
        self.assertEqual(explain(rule.examples[0], "plistutil", reading, YES, RULES), [rule])
        self.assertIsNone(explain(rule.examples[0], "plistlib", reading, YES, RULES))

    def test_one_leaf_that_no_rule_explains_outweighs_one_that_a_rule_does(self):
        document = binary_file([b"\xa2\x01\x02", b"\x23\xff\xf8" + bytes(6), b"\x09"])
        ours = Reading("binary", Outcome("[real(fff8000000000000), true]"))
        lost = Outcome("[real(7ff8000000000000), true]")
        wrong = Outcome("[real(7ff8000000000000), false]")
        self.assertEqual([rule.name for rule in explain(document, "plistutil", ours, lost, RULES)],
                         ["nan"])
        self.assertIsNone(explain(document, "plistutil", ours, wrong, RULES))

    def test_one_difference_can_hide_another(self):
        document = (b"\xef\xbb\xbf<?xml version='1.0' encoding='ISO-8859-1'?><plist><array>"
                    b"<integer>+0x1F</integer><string>\xc3\xa9</string></array></plist>")
        ours = Reading("xml", Outcome('[31, "\\xc3\\xa9"]'))
        met = explain(document, PLISTLIB, ours, readers.read_plistlib(document), RULES)
        self.assertEqual([rule.name for rule in met], ["signed-hexadecimal", "byte-order-mark"])

    def test_a_leaf_that_is_missing_is_explained_by_no_rule(self):
        ours = Reading("binary", Outcome('["a\\x0d", true]'))
        self.assertIsNone(explain(b"bplist00", "plistutil", ours, Outcome('["a\\x0a"]'), RULES))


class TheReaders(unittest.TestCase):
    def test_a_describer_that_says_too_little_is_reported(self):
        with self.assertRaises(readers.DescriberFailure):
            readers.read_ours("/bin/true", [TRUE])

    def test_a_describer_that_fails_is_reported(self):
        with self.assertRaises(readers.DescriberFailure):
            readers.read_ours("/bin/false", [TRUE])

    def test_the_whole_run_fails_with_a_describer_that_crashes(self):
        script = pathlib.Path(__file__).with_name("compare.py")
        finished = subprocess.run(
            [sys.executable, "-B", script, "--describer", "/bin/false", "--count", "1"],
            capture_output=True, check=False)
        self.assertEqual(finished.returncode, 1)


class Descriptions(unittest.TestCase):
    def test_the_kinds_are_distinguished(self):
        values = [1, True, 1.0, "1", b"1", [1], {"1": 1}, None]
        self.assertEqual([describe(value) for value in values],
                         ["1", "true", "real(3ff0000000000000)", '"1"', "<31>", "[1]", '{"1": 1}',
                          "null"])

    def test_a_value_that_contains_itself_ends(self):
        value = []
        value.append(value)
        self.assertEqual(describe(value), "[cycle]")

    def test_tokens_are_whole_leaves(self):
        text = '{"a, b": [real(0000000000000000), <00>, "\\x22"], "": date(-1)}'
        self.assertEqual("".join(tokens_of(text)), text)
        self.assertIn('"a, b"', tokens_of(text))
        self.assertIn("date(-1)", tokens_of(text))
        self.assertEqual(unquote('"\\x22\\xc3\\xa9"'), '"é')


class TheDocuments(unittest.TestCase):
    def test_the_same_seed_makes_the_same_documents(self):
        makers = [DocumentMaker(7, lambda xml: xml) for _ in range(2)]
        first, second = ([maker.make() for _ in range(50)] for maker in makers)
        self.assertEqual(first, second)
        self.assertNotEqual(first, [DocumentMaker(8, lambda xml: xml).make() for _ in range(50)])


if __name__ == "__main__":
    unittest.main()
