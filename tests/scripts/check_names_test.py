"""The name check finds each kind of name that users would trip over, and none in a sound tree."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import check_names  # noqa: E402

LIST = "orlf_add_folder(platform_value LAYER 1 HEADERS NSDate.h HOUSE_HEADERS Table.h)\n"
PUBLIC = """/// An instant; {braces} and "quotes" in a comment do no harm.
#pragma once
#include <string>
namespace ORLFoundation {
class NSObject;
class NSDate {
 public:
  int value() const { return value_; }
 private:
  struct Part { int first; };
  int value_ = '{';
};
using NSTimeInterval = double;
/// Told.
struct Told { int first = 0; };
namespace internal::value {
class Hidden;
}
inline constexpr const char* kORLFBrace = "}";
}  // namespace ORLFoundation
template <>
struct std::hash<ORLFoundation::NSDate> {
  int operator()(ORLFoundation::NSDate) const { return 0; }
};
"""
INNER = """#pragma once
namespace ORLFoundation {
class NSDate;
}
namespace ORLFoundation::internal::value {
struct Instant { int seconds = 0; };
inline int seconds(const Instant& instant) { return instant.seconds; }
namespace civil {
inline constexpr int kDays = 7;
}
}  // namespace ORLFoundation::internal::value
"""


class NameCheck(unittest.TestCase):
    def faults(self, public=PUBLIC, table=INNER, inner=INNER):
        with tempfile.TemporaryDirectory() as folder:
            room = Path(folder) / "ORLFoundation/platform/value"
            (room / "internal").mkdir(parents=True)
            for name, text in {"CMakeLists.txt": LIST, "NSDate.h": public, "Table.h": table,
                               "internal/Field.h": inner}.items():
                (room / name).write_text(text)
            return list(check_names.faults(Path(folder)))

    def assert_one(self, header, line, text, **changes):
        found = self.faults(**changes)
        self.assertEqual(len(found), 1, found)
        self.assertTrue(found[0].startswith(f"ORLFoundation/platform/value/{header}:{line}: "), found)
        self.assertIn(text, found[0])

    def test_a_sound_tree_has_no_fault(self):
        self.assertEqual(self.faults(), [])

    def test_a_name_of_an_internal_header_in_the_users_namespace(self):
        self.assert_one("internal/Field.h", 3, "internal::value",
                        inner=INNER.replace("class NSDate;", "struct Field { int index = 0; };"))

    def test_a_name_of_a_house_header_in_the_users_namespace(self):
        self.assert_one("Table.h", 3, "internal::value",
                        table=INNER.replace("class NSDate;", "int rows();"))

    def test_a_name_in_the_namespace_of_all_rooms(self):
        for home in ("ORLFoundation::internal", "ORLFoundation::internal::object"):
            text = f"namespace {home} {{\nint rows() {{ return 1; }}\n}}\n"
            self.assert_one("internal/Field.h", 2, "internal::value", inner=text)

    def test_a_name_outside_of_all_namespaces(self):
        self.assert_one("internal/Field.h", 13, "internal::value", inner=INNER + "\nint rows();\n")

    def test_an_internal_name_of_another_room_in_a_public_header(self):
        for other in ("internal", "internal::object", "internal::values"):
            self.assert_one("NSDate.h", 17, "internal::value", public=PUBLIC.replace(
                "namespace internal::value {", f"namespace {other} {{"))

    def test_a_helper_that_no_comment_tells(self):
        helpers = ("struct Instant { int seconds = 0; };", "int daysOf(int seconds);",
                   "template <class T>\nconcept Boxed = true;", "inline constexpr int kDays = 7;",
                   "using Seconds = double;", "enum class Field { Day };",
                   "template <class T>\nT boxed(T value) { return value; }")
        for helper in helpers:
            self.assert_one("NSDate.h", 13, "no comment", public=PUBLIC.replace(
                "using NSTimeInterval = double;", helper))
            told = PUBLIC.replace("using NSTimeInterval = double;", "/// For all.\n" + helper)
            self.assertEqual(self.faults(public=told), [])


if __name__ == "__main__":
    unittest.main()
