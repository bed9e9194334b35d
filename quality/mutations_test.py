#!/usr/bin/python3
"""Tests of mutations.py: each line of source with all that it is changed to."""

import unittest

import mutations


def changed(source):
    """The source in each of its changed forms."""
    return [mutation.apply(source) for mutation in mutations.mutations_of(source)]


class Changes(unittest.TestCase):
    def expect(self, source, *expected):
        self.assertEqual(changed(source), list(expected))

    def test_a_comparison_becomes_its_boundary_neighbour_and_its_negation(self):
        self.expect("return a == b;", "return a != b;")
        self.expect("return a != b;", "return a == b;")
        self.expect("return a < b;", "return a <= b;", "return a >= b;")
        self.expect("return a <= b;", "return a < b;", "return a > b;")
        self.expect("return a > b;", "return a >= b;", "return a <= b;")
        self.expect("return a >= b;", "return a > b;", "return a < b;")

    def test_and_becomes_or(self):
        self.expect("return a && b;", "return a || b;")
        self.expect("return a || b;", "return a && b;")

    def test_a_sum_becomes_a_difference(self):
        self.expect("n = a + b;", "n = a - b;")
        self.expect("n -= b - c;", "n += b - c;", "n -= b + c;")

    def test_a_negation_is_dropped(self):
        self.expect("return !a;", "return a;")

    def test_a_truth_value_is_flipped(self):
        self.expect("return true;", "return false;")
        self.expect("return false;", "return true;")

    def test_brackets_references_and_signs_are_no_operators(self):
        self.expect("std::vector<T> F(T&& a, T<U>* b);")
        self.expect("template <typename T>\nbool F(T a);")
        self.expect("n = -a;")

    def test_an_integer_becomes_its_neighbours(self):
        self.expect("n = 0;", "n = 1;")
        self.expect("n = 7u;", "n = 8u;", "n = 6u;")
        self.expect("n = 0x1F;", "n = 0x20;", "n = 0x1E;")
        self.expect("n = 1'000;", "n = 1001;", "n = 999;")

    def test_a_real_number_becomes_another(self):
        self.expect("x = 1.5e-3;", "x = (1.5e-3 * 2 + 1);")

    def test_a_character_becomes_another(self):
        self.expect("c = 'a';", "c = 'b';")
        self.expect("c = '&';", "c = 'x';")
        self.expect("c = '~';", "c = 'x';")
        self.expect("c = '\\n';", "c = 'x';")
        self.expect("c = '\\0';", "c = '\\1';")

    def test_a_text_changes_in_its_middle(self):
        self.expect('s = "abc";', 's = "axc";')
        self.expect('s = "xxx";', 's = "xyx";')
        self.expect('s = "a\\nc";', 's = "axc";')
        self.expect('s = "\\303\\204";', 's = "\\303x";')
        self.expect('s = "";', 's = "x";')
        self.expect('s = R"-(a")-";', 's = R"-(a"x)-";')

    def test_a_condition_is_negated(self):
        self.expect("if (F(a)) return;", "if (!(F(a))) return;")
        self.expect("while (a) F();", "while (!(a)) F();")
        self.expect("if constexpr (B<T>) F();", "if constexpr (!(B<T>)) F();")
        self.expect("if (F(a, b ? c : d)) G();", "if (!(F(a, b ? c : d))) G();",
                    "if (F(a, !(b) ? c : d)) G();")

    def test_a_condition_is_negated_behind_its_declaration(self):
        self.expect("if (const auto* a = F()) G();", "if (const auto* a = F(); !(a)) G();")
        self.expect("if (auto a = F(); a.ok) G();", "if (auto a = F(); !(a.ok)) G();")

    def test_a_condition_is_negated_over_its_lines(self):
        self.expect("if (a &&\n    b) F();", "if (!(a &&\n    b)) F();", "if (a ||\n    b) F();")

    def test_a_condition_is_not_negated_where_another_change_does_it(self):
        self.expect("if (!a) F();", "if (a) F();")
        self.expect("if (a == b) F();", "if (a != b) F();")
        self.expect("while (true) F();", "while (false) F();")

    def test_the_condition_of_an_expression_is_negated(self):
        self.expect("return a ? b : c;", "return !(a) ? b : c;")
        self.expect("n = F(a, b) ? c : d;", "n = !(F(a, b)) ? c : d;")
        self.expect("F(a, b.c ? d : e);", "F(a, !(b.c) ? d : e);")
        self.expect("return a == b ? c : d;", "return a != b ? c : d;")

    def test_comments_and_what_the_compiler_reads_are_left_alone(self):
        self.expect('// a == 1\n/* "b" */')
        self.expect("#pragma once\n#if X == 1 && \\\n    Y == 2\n#endif")
        self.expect('static_assert(sizeof(a) == 4, "size");')
        self.expect("a.reserve((n + 2) / 3 * 4);")
        self.expect('extern "C" void F();')


class Places(unittest.TestCase):
    def test_a_change_is_known_by_its_lines(self):
        source = "  // How many.\n  n = 0;\n\n  // How many.\n  n = 0;\n"
        found = mutations.mutations_of(source)
        self.assertEqual(
            [(each.line, each.above, each.before, each.after, each.ordinal) for each in found],
            [(2, "// How many.", "n = 0;", "n = 1;", 0),
             (5, "// How many.", "n = 0;", "n = 1;", 1)])

    def test_a_change_over_several_lines_is_known_by_the_first(self):
        found = mutations.mutations_of("if (a(1,\n  b)) c();")
        self.assertEqual([each.after for each in found],
                         ["if (!(a(1,", "if (a(2,", "if (a(0,"])


if __name__ == "__main__":
    unittest.main()
