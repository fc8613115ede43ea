"""The examples of headers become functions that compile, and broken ones are found."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import header_examples  # noqa: E402

ROOM = "ORLFoundation/calendar"
GIVEN = "Words.\n\n[*]\nextern int date;\n\n[Days.h]\nextern int day;\n"


def comment(*lines):
    return "".join(f"///     {line}\n" if line else "///\n" for line in lines)


class HeaderExamples(unittest.TestCase):
    def generate(self, text, given=GIVEN, key="HEADERS"):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            (root / ROOM).mkdir(parents=True)
            (root / ROOM / "CMakeLists.txt").write_text(
                f"orlf_add_folder(calendar LAYER 20 {key} Days.h)\n")
            (root / ROOM / "Days.h").write_text(text)
            return header_examples.generate(root, given)

    def lines(self, *example):
        source, faults, _ = self.generate("/// Words.\n///\n" + comment(*example))
        self.assertEqual(faults, [])
        return source.splitlines()

    def faults(self, *example):
        return self.generate("/// Words.\n///\n" + comment(*example))[1]

    def test_statements_stand_in_a_function_with_what_is_given(self):
        lines = self.lines("next(day);", "if (day) return;  // text")
        self.assertEqual(lines[1], "#include <ORLFoundation/ORLFoundation.h>")
        self.assertEqual(lines[2:], [
            "extern int date;", f"// {ROOM}/Days.h:3", "namespace example_Days_3 {",
            "extern int day;", "struct example_Days_3 : NSObject {",
            "auto example(decltype(day)& day) { {", "next(day);", "if (day) return;  // text", "} }",
            "};", "}"])

    def test_each_variable_that_is_given_is_a_parameter(self):
        source, _, _ = self.generate(comment("use([a, b] {});"), "[Days.h]\nextern Kind<int, long>& a;\n"
                                     "extern int b, c;\nint call();\n")
        self.assertIn("auto example(decltype(a)& a, decltype(b)& b, decltype(c)& c) { {\n", source)

    def test_an_expression_becomes_a_statement(self):
        self.assertIn("text(day);", self.lines("text(day)  // 5"))

    def test_what_a_reader_fills_in_is_left_out(self):
        self.assertIn("call([] {});", self.lines("...", "call([] { ... });"))

    def test_definitions_stand_before_the_function(self):
        lines = self.lines("class Loan {", " public:", "  int term();", "};", "", "Loan loan;",
                           "int Loan::term() {", "  return 1;", "}")
        function = lines.index("auto example(decltype(day)& day) { {")
        self.assertLess(lines.index("class Loan {"), function)
        self.assertLess(lines.index("int Loan::term() {"), function)
        self.assertGreater(lines.index("Loan loan;"), function)

    def test_a_function_that_overrides_stands_in_a_class(self):
        lines = self.lines("int copy() const override {", "  return 1;", "}")
        self.assertIn("struct Example : ExampleBase {", lines)

    def test_a_specialization_stands_in_no_namespace(self):
        lines = self.lines("template <>", "struct Kind<Loan>", "    : Base {", "};")
        self.assertNotIn("namespace example_Days_3 {", lines)

    def test_headers_of_the_house_see_their_room(self):
        source, _, count = self.generate(comment("use(day);"), key="HOUSE_HEADERS")
        self.assertEqual(count, 1)
        self.assertIn("#include <ORLFoundation/calendar/Days.h>\n", source)
        self.assertIn("using namespace ORLFoundation::internal::calendar;\n", source)

    def test_every_example_of_a_header_counts(self):
        _, _, count = self.generate(comment("one();") + "\nint a;\n  " + comment("two();"))
        self.assertEqual(count, 2)

    def test_lines_that_the_formatter_moved_are_faults(self):
        place = f"{ROOM}/Days.h:4: this line goes on with a statement that begins as deep"
        self.assertEqual(self.faults("const auto rule =", "make(1);"), [place])
        self.assertEqual(self.faults('call("a",', '"b"); other();'), [place])

    def test_lines_that_go_on_deeper_are_none(self):
        self.assertEqual(self.faults("call({.a = 1,", "      .b = 2},", "     day);"), [])
        self.assertEqual(self.faults("table({", "    one(1),", "    two(2),", "});"), [])
        self.assertEqual(self.faults("class Loan {", " public:", "  Loan();", "};"), [])

    def test_names_for_a_header_that_is_gone_are_a_fault(self):
        _, faults, _ = self.generate("", "[Gone.h]\nextern int a;\n")
        self.assertEqual(faults, ["names are given for Gone.h, which no room lists"])


if __name__ == "__main__":
    unittest.main()
