"""The check of pages finds each kind of fault, and none in a sound tree."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import check_docs  # noqa: E402

SOUND = {
    "README.md":
        "# Name\n\nSee [the pages](docs/README.md), [how](CONTRIBUTING.md#where-a-thing-goes).\n\n"
        "## Where things stand\n\n| Folder | What |\n|---|---|\n| `ORLFoundation/calendar` | days |\n"
        "| `tools/orlf/dates` | commands |\n| `docs` | pages |\n\n## Limits\n\n| `no/folder` | - |\n",
    "CONTRIBUTING.md":
        "# How\n\n## Where a thing goes\n\n`ORLFoundation/calendar/Days.h`, `scripts/run FAST`,\n"
        "`ORLFoundation/<room>/X.h`.\n\n```sh\nscripts/absent\n[x](absent)\n```\n",
    "docs/README.md": "# Pages\n\n- [One](one.md)\n- [Outside](https://example.org/absent)\n",
    "docs/one.md": "# One\n\nBack to the [list](README.md).\n",
    "ORLFoundation/CMakeLists.txt": "add_subdirectory(calendar)\n",
    "ORLFoundation/calendar/CMakeLists.txt": "orlf_add_folder(calendar LAYER 20)\n",
    "ORLFoundation/calendar/Days.h": "",
    "scripts/run": "",
    "tools/orlf/dates/dates.cpp": "",
}


class DocsCheck(unittest.TestCase):
    def faults(self, changes):
        """Faults of the sound tree with files changed; None takes a file away."""
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, content in {**SOUND, **changes}.items():
                if content is None:
                    continue
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(content)
            return list(check_docs.faults(root))

    def assert_one(self, fault, changes):
        self.assertEqual(self.faults(changes), [fault])

    def test_a_sound_tree_has_no_fault(self):
        self.assertEqual(self.faults({}), [])

    def test_a_room_that_the_map_lacks(self):
        self.assert_one("README.md: the map has no row for ORLFoundation/files/repair",
                        {"ORLFoundation/files/repair/CMakeLists.txt": "orlf_add_folder(files_repair)"})

    def test_a_folder_of_the_tool_that_the_map_lacks(self):
        self.assert_one("README.md: the map has no row for tools/orlf/money",
                        {"tools/orlf/money/axis.cpp": ""})

    def test_a_row_for_a_folder_that_is_gone(self):
        self.assert_one("README.md:11: tools/orlf/gone does not exist",
                        {"README.md": SOUND["README.md"].replace("`docs`", "`tools/orlf/gone`")})

    def test_a_row_outside_of_the_map_does_not_count(self):
        text = SOUND["README.md"].replace("| `tools/orlf/dates` | commands |\n", "")
        self.assert_one("README.md: the map has no row for tools/orlf/dates",
                        {"README.md": text + "| `tools/orlf/dates` | commands |\n"})

    def test_a_page_that_is_not_listed(self):
        self.assert_one("docs/README.md: does not list docs/two.md",
                        {"docs/two.md": "# Two\n", "docs/one.md": "# One\n\n[two](two.md)\n"})

    def test_a_page_that_is_listed_twice(self):
        self.assert_one("docs/README.md:5: one.md is listed already",
                        {"docs/README.md": SOUND["docs/README.md"] + "- [Again](one.md)\n"})

    def test_a_page_that_nothing_leads_to(self):
        self.assert_one("README.md: no way leads from here to CHANGELOG.md",
                        {"CHANGELOG.md": "# Changes\n"})

    def test_a_list_that_is_missing(self):
        self.assertIn("docs/README.md: does not exist", self.faults({"docs/README.md": None}))

    def test_a_link_to_nothing(self):
        self.assert_one("docs/one.md:3: ../absent.md does not exist",
                        {"docs/one.md": "# One\n\n[absent](../absent.md)\n"})

    def test_a_link_to_a_heading_that_is_gone(self):
        self.assert_one("README.md:3: CONTRIBUTING.md has no heading #where-a-thing-goes",
                        {"CONTRIBUTING.md": "# How\n"})

    def test_a_path_that_is_gone(self):
        self.assert_one("CONTRIBUTING.md:5: ORLFoundation/calendar/Days.h does not exist",
                        {"ORLFoundation/calendar/Days.h": None})


if __name__ == "__main__":
    unittest.main()
