#!/usr/bin/env python3
"""Tests of the changes that scripts/mutate makes, and of the list of those that alter nothing."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent / "scripts"))

from mutation import Change, changes_of, read_equivalents  # noqa: E402


def body(text):
    return f"int f(int a, int b) {{\n{text}\n}}\n"


def news(text, kind):
    """What the text becomes by each change of a kind."""
    return [change.apply(text) for change in changes_of(text) if change.kind == kind]


class Changes(unittest.TestCase):
    def assert_changes(self, kind, text, expected):
        self.assertEqual(news(body(text), kind), [body(line) for line in expected])

    def test_comparisons_move_by_one_and_turn(self):
        self.assert_changes("comparison turned", "return a < b;", ["return a <= b;", "return a >= b;"])
        self.assert_changes("comparison turned", "return a == b;", ["return a != b;"])

    def test_brackets_of_templates_are_no_comparisons(self):
        self.assert_changes("comparison turned", "return std::max<int>(a, b);", [])

    def test_operators(self):
        self.assert_changes("operator changed", "return a + b;", ["return a - b;"])
        self.assert_changes("operator changed", "return a && b;", ["return a || b;"])
        self.assert_changes("operator changed", "++a;", ["--a;"])
        self.assert_changes("operator changed", "a *= b;", ["a /= b;"])
        self.assert_changes("operator changed", "return g(kOne | kTwo);", ["return g(kOne & kTwo);"])

    def test_signs_of_one_operand_stay(self):
        self.assert_changes("operator changed", "return *p + -b;", ["return *p - -b;"])
        self.assert_changes("operator changed", "const T& t = -a;", [])

    def test_constants_go_both_ways_and_not_below_nothing(self):
        self.assert_changes("constant off by one", "return 1'000U;", ["return 1001U;", "return 999U;"])
        self.assert_changes("constant off by one", "return 0;", ["return 1;"])
        self.assert_changes("constant off by one", "return 9.0F;", ["return 10.0F;", "return 8.0F;"])

    def test_constants_that_have_no_neighbour_stay(self):
        self.assert_changes("constant off by one", "return 0x1F + 18446744073709551616.0 + 1.5;", [])

    def test_flags(self):
        self.assert_changes("flag turned", "return true;", ["return false;"])

    def test_conditions_of_several_parts_are_negated(self):
        self.assert_changes("condition negated", "if (a && g(b)) return 1;",
                            ["if (!(a && g(b))) return 1;"])
        self.assert_changes("condition negated", "while (g(a)) --a;", ["while (!(g(a))) --a;"])
        self.assert_changes("condition negated", "return g(a) ? 1 : 2;", ["return !(g(a)) ? 1 : 2;"])
        self.assert_changes("condition negated", "h(a, b ? 1 : 2);", ["h(a, !(b) ? 1 : 2);"])

    def test_a_negation_is_dropped(self):
        self.assert_changes("condition negated", "if (!a) return 1;", ["if (a) return 1;"])

    def test_one_comparison_is_turned_and_not_negated(self):
        self.assert_changes("condition negated", "if (a < b) return 1;", [])

    def test_the_condition_after_a_declaration_is_negated(self):
        self.assert_changes("condition negated", "if (const auto p = g(); p->ok()) return 1;",
                            ["if (const auto p = g(); !(p->ok())) return 1;"])

    def test_neighbouring_arguments_change_places(self):
        self.assert_changes("arguments swapped", "g(a, h(b), 3);", ["g(h(b), a, 3);", "g(a, 3, h(b));"])

    def test_equal_arguments_and_parameters_stay(self):
        self.assert_changes("arguments swapped", "g(a, a);", [])

    def test_statements_are_dropped(self):
        self.assert_changes("statement dropped", "g(a);\nif (a)\n  return 1;",
                            [";\nif (a)\n  return 1;", "g(a);\nif (a)\n  ;"])
        self.assert_changes("statement dropped", "for (;;) { break; }", ["for (;;) { ; }"])
        self.assert_changes("statement dropped", "switch (a) { case 1: g(); }",
                            ["switch (a) { case 1: ; }"])
        self.assert_changes("statement dropped", "try { g(); } catch (...) { h(); }",
                            ["try { ; } catch (...) { h(); }", "try { g(); } catch (...) { ; }"])

    def test_a_statement_with_a_function_in_it_is_dropped_whole_and_within(self):
        self.assert_changes("statement dropped", "each([&](int i) { g(i); });",
                            [";", "each([&](int i) { ; });"])

    def test_a_list_of_values_is_no_body(self):
        self.assert_changes("statement dropped", "return Pair{a, b};", [";"])
        self.assertEqual(news("const Pair kPairs[] = {{a, b}, {c, d}};\n", "statement dropped"), [])

    def test_declarations_stay(self):
        text = "namespace n {\nclass A {\n  int f();\n};\nusing B = A;\n}  // namespace n\n"
        self.assertEqual(news(text, "statement dropped"), [])

    def test_bodies_of_all_forms_are_found(self):
        for head in ("int A::f() const {", "A::A() : a_(1), b_{2} {", "auto f() -> std::vector<int> {",
                     "void f() noexcept {"):
            self.assertEqual(news(head + " g(); }", "statement dropped"), [head + " ; }"])

    def test_what_no_program_does_stays(self):
        text = ('#include <a == b>\n// a == b\n/* 1 + 2 */\nconst char* k = "a == b";\n'
                'const auto r = R"(a == "b" && 1)";\nstatic_assert(1 + 1 == 2);\n'
                "template <int N = 3>\n[[deprecated(1)]] int g();\n")
        self.assertEqual(changes_of(text), [])

    def test_how_a_hash_mixes_stays(self):
        kinds = {change.kind for change in changes_of("int A::hash() const { return 31 * a_ + g(b_, 1); }")}
        self.assertEqual(kinds, {"statement dropped", "arguments swapped"})

    def test_a_change_knows_its_line_and_its_lines(self):
        text = body("  if (g(a,\n        1)) return 1;")
        change = next(c for c in changes_of(text) if c.kind == "condition negated")
        self.assertEqual(change.line(text), 2)
        self.assertEqual(change.lines(text), (("if (g(a,", "1)) return 1;"),
                                              ("if (!(g(a,", "1))) return 1;")))


class Equivalents(unittest.TestCase):
    BLOCK = "# Why this file stands here.\n\nWalk.cpp\n- if (a < b)\n+ if (a <= b)\nBoth stop\nthere.\n"

    def test_a_block_is_read(self):
        block, = read_equivalents(self.BLOCK)
        self.assertEqual((block.file, block.old, block.new, block.reason, block.line),
                         ("Walk.cpp", ("if (a < b)",), ("if (a <= b)",), "Both stop there.", 3))

    def test_a_block_covers_its_change_and_no_other(self):
        block, = read_equivalents(self.BLOCK)
        text = "  if (a < b)\n"
        covered = Change("comparison turned", 8, 9, "<=")
        self.assertTrue(block.covers("Walk.cpp", text, covered))
        self.assertFalse(block.covers("Other.cpp", text, covered))
        self.assertFalse(block.covers("Walk.cpp", text, Change("comparison turned", 8, 9, ">=")))

    def test_a_block_fits_as_many_changes_as_it_says(self):
        one, = read_equivalents("F.cpp\n- return a < b;\n+ return a <= b;\nWhy.\n")
        two, = read_equivalents("F.cpp, 2 places\n- return a < b;\n+ return a <= b;\nWhy.\n")
        self.assertEqual((two.file, two.places), ("F.cpp", 2))

        def misfits(text):
            return [block.misfit(text, changes_of(text)) for block in (one, two)]

        once, none = body("return a < b;"), body("return a;")
        self.assertEqual(misfits(none), ["fits no change of F.cpp", "fits no change of F.cpp, not 2"])
        self.assertEqual(misfits(once), [None, "fits 1 change of F.cpp, not 2"])
        self.assertEqual(misfits(once + once), ["fits 2 changes of F.cpp", None])
        self.assertEqual(misfits(once * 3), ["fits 3 changes of F.cpp", "fits 3 changes of F.cpp, not 2"])

    def test_a_block_without_a_reason_is_refused(self):
        with self.assertRaisesRegex(ValueError, "line 3"):
            read_equivalents("# Head.\n\nWalk.cpp\n- if (a < b)\n+ if (a <= b)\n")

    def test_a_block_without_a_file_is_refused(self):
        with self.assertRaisesRegex(ValueError, "line 1"):
            read_equivalents("- if (a < b)\n+ if (a <= b)\nBoth stop there.\n")


if __name__ == "__main__":
    unittest.main()
