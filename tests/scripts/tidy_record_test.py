#!/usr/bin/env python3
"""Tests of the record of what clang-tidy passed."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent.parent.parent / "scripts"))

from tidy_record import (Hashes, changed, read_record, record_text, record_with,  # noqa: E402
                         sources_of, tenth)

TREE = {
    "ORLFoundation/a/A.cpp": "#include <ORLFoundation/a/A.h>\n#include <vector>\n",
    "ORLFoundation/a/A.h": "#include <ORLFoundation/b/B.h>\n",
    "ORLFoundation/a/A_test.cpp": "#include <ORLFoundation/a/A.h>\n",
    "ORLFoundation/b/B.h": "#include <ORLFoundation/a/A.h>\n",
    "ORLFoundation/b/C.h": "\n",
    "tools/orlf/tool.cpp": "#include <cli/words.h>\n",
    "tools/orlf/cli/words.h": "\n",
}


class Record(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for name, text in TREE.items():
            self.write(name, text)

    def write(self, name, text):
        (self.root / name).parent.mkdir(parents=True, exist_ok=True)
        (self.root / name).write_text(text)

    def hash_of(self, source, configuration="checks"):
        return Hashes(self.root, ["", "tools/orlf"], configuration).of(source)

    def changes_by(self, source, name):
        before = self.hash_of(source)
        self.write(name, TREE[name] + "int more;\n")
        return self.hash_of(source) != before

    def test_tests_are_no_sources(self):
        self.assertEqual(sources_of(self.root), ["ORLFoundation/a/A.cpp", "tools/orlf/tool.cpp"])

    def test_the_source_counts(self):
        self.assertTrue(self.changes_by("ORLFoundation/a/A.cpp", "ORLFoundation/a/A.cpp"))

    def test_a_header_counts(self):
        self.assertTrue(self.changes_by("ORLFoundation/a/A.cpp", "ORLFoundation/a/A.h"))

    def test_a_header_of_a_header_counts(self):
        self.assertTrue(self.changes_by("ORLFoundation/a/A.cpp", "ORLFoundation/b/B.h"))

    def test_a_header_of_the_tool_counts(self):
        self.assertTrue(self.changes_by("tools/orlf/tool.cpp", "tools/orlf/cli/words.h"))

    def test_other_headers_do_not_count(self):
        self.assertFalse(self.changes_by("ORLFoundation/a/A.cpp", "ORLFoundation/b/C.h"))

    def test_the_configuration_counts(self):
        before, after = (self.hash_of("ORLFoundation/a/A.cpp", checks) for checks in ("", "other"))
        self.assertNotEqual(before, after)

    def test_a_record_is_read_as_it_was_written(self):
        hashes = {"a.cpp": "01", "b.cpp": "02"}
        self.assertEqual(read_record(record_text(hashes)), hashes)

    def test_new_and_changed_sources_are_changed(self):
        hashes = {"a": "1", "b": "2", "c": "3"}
        self.assertEqual(changed(hashes, {"a": "1", "b": "1", "gone": "4"}), ["b", "c"])

    def test_a_record_keeps_what_has_not_changed_and_takes_what_passed(self):
        hashes = {"a": "1", "b": "2", "c": "2"}
        record = {"a": "1", "b": "1", "c": "1", "gone": "1"}
        self.assertEqual(record_with(hashes, record, {"c"}), {"a": "1", "c": "2"})

    def test_a_tenth_is_another_one_by_another_commit_and_all_are_met(self):
        sources = [f"{number}.cpp" for number in range(95)]
        self.assertEqual(len(tenth(sources, "one")), 10)
        self.assertEqual(tenth(sources, "one"), tenth(sources, "one"))
        self.assertNotEqual(tenth(sources, "one"), tenth(sources, "two"))
        met = {source for commit in range(200) for source in tenth(sources, str(commit))}
        self.assertEqual(met, set(sources))

    def test_a_tenth_of_few_is_one_and_of_none_is_none(self):
        self.assertEqual(len(tenth(["a", "b"], "one")), 1)
        self.assertEqual(tenth([], "one"), [])


if __name__ == "__main__":
    unittest.main()
