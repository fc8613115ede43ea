"""The include check finds each kind of fault, and none in a sound tree."""

import sys
import tempfile
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import check_includes  # noqa: E402

OWN = "#include <ORLFoundation/calendar/Days.h>\n\n"

SOUND = {
    "ORLFoundation/ORLFoundation.h":
        "#include <ORLFoundation/platform/value/NSDate.h>\n"
        "#include <ORLFoundation/platform/object/NSObject.h>\n"
        "#include <ORLFoundation/calendar/Days.h>\n",
    "ORLFoundation/CMakeLists.txt":
        "add_subdirectory(platform/value)\nadd_subdirectory(platform/object)  # layer 2\n"
        "add_subdirectory(calendar)\nadd_subdirectory(bridges)\n",
    "ORLFoundation/bridges/glib/Bridge.h": "#include <ORLFoundation/calendar/Days.h>\n#include <glib.h>\n",
    "ORLFoundation/bridges/glib/Bridge_test.cpp": "#include <ORLFoundation/bridges/glib/Bridge.h>\n",
    "tests/support/VectorFile.h": "#include <string>\n",
    "tests/support/VectorFile.cpp": "#include <tests/support/VectorFile.h>\n",
    "ORLFoundation/platform/value/CMakeLists.txt":
        "orlf_add_folder(platform_value LAYER 1 HEADERS NSDate.h SOURCES NSDate.cpp)\n",
    "ORLFoundation/platform/value/NSDate.h": "#pragma once\n#include <cstdint>\n",
    "ORLFoundation/platform/value/NSDate.cpp":
        "#include <ORLFoundation/platform/value/NSDate.h>\n#include <unicode/ucal.h>\n",
    "ORLFoundation/platform/object/CMakeLists.txt":
        "orlf_add_folder(platform_object  # the root\n  LAYER 2 HEADERS NSObject.h USES platform_value)\n",
    "ORLFoundation/platform/object/NSObject.h":
        "#include <ORLFoundation/platform/value/NSDate.h>\n",
    "ORLFoundation/calendar/CMakeLists.txt":
        "orlf_add_folder(calendar LAYER 20 HEADERS Days.h SOURCES Days.cpp\n"
        "  USES platform_object TESTS Days_test.cpp)\n",
    "ORLFoundation/calendar/Days.h": "#include <ORLFoundation/platform/object/NSObject.h>\n",
    "ORLFoundation/calendar/Days.cpp":
        "#include <ORLFoundation/calendar/Days.h>\n\n"
        "#include <ORLFoundation/calendar/internal/Table.h>\n",
    "ORLFoundation/calendar/Days_test.cpp":
        "#include <ORLFoundation/platform/value/NSDate.h>\n#include <tests/support/VectorFile.h>\n",
    "ORLFoundation/calendar/internal/Table.h": "#include <array>\n",
    "tools/orlf/main.cpp": "#include <ORLFoundation/calendar/Days.h>\n",
}


class IncludeCheck(unittest.TestCase):
    def faults(self, **changes):
        """Faults of the sound tree with files changed; a path's '/' is given as '__'."""
        files = dict(SOUND)
        for path, change in changes.items():
            stem, _, kind = path.rpartition("_")
            name = stem.replace("__", "/") + "." + kind
            files[name] = change(files.get(name, "")) if callable(change) else change
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, content in files.items():
                (root / name).parent.mkdir(parents=True, exist_ok=True)
                (root / name).write_text(content)
            return list(check_includes.faults(root))

    def assert_one(self, fault, **changes):
        self.assertEqual(self.faults(**changes), [fault])

    def test_a_sound_tree_has_no_fault(self):
        self.assertEqual(self.faults(), [])

    def test_an_undeclared_folder(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp:3: calendar does not declare platform_value under "
            "USES: <ORLFoundation/platform/value/NSDate.h>",
            ORLFoundation__calendar__Days_cpp=OWN + "#include <ORLFoundation/platform/value/NSDate.h>\n")

    def test_an_upward_include(self):
        self.assert_one(
            "ORLFoundation/platform/value/NSDate.h:3: platform_value does not declare calendar "
            "under USES: <ORLFoundation/calendar/Days.h>",
            ORLFoundation__platform__value__NSDate_h=lambda text:
            text + "#include <ORLFoundation/calendar/Days.h>\n")

    def test_an_upward_declaration(self):
        self.assert_one(
            "ORLFoundation/platform/value/CMakeLists.txt: platform_value of layer 1 may not use "
            "platform_object of layer 2",
            ORLFoundation__platform__value__CMakeLists_txt=
            "orlf_add_folder(platform_value LAYER 1 HEADERS NSDate.h SOURCES NSDate.cpp\n"
            "  USES platform_object)\n")

    def test_a_declaration_within_a_layer(self):
        self.assert_one(
            "ORLFoundation/platform/object/CMakeLists.txt: platform_object of layer 1 may not use "
            "platform_value of layer 1",
            ORLFoundation__platform__object__CMakeLists_txt=
            "orlf_add_folder(platform_object LAYER 1 HEADERS NSObject.h USES platform_value)\n")

    def test_a_folder_without_a_layer(self):
        self.assert_one(
            "ORLFoundation/lone/CMakeLists.txt: lone states no layer",
            ORLFoundation__CMakeLists_txt=lambda text: text + "add_subdirectory(lone)\n",
            ORLFoundation__lone__CMakeLists_txt="orlf_add_folder(lone)\n")

    def test_a_layer_that_is_no_number(self):
        self.assert_one(
            "ORLFoundation/lone/CMakeLists.txt: lone states no layer",
            ORLFoundation__CMakeLists_txt=lambda text: text + "add_subdirectory(lone)\n",
            ORLFoundation__lone__CMakeLists_txt="orlf_add_folder(lone LAYER high)\n")

    def test_a_folder_that_is_not_added(self):
        self.assert_one(
            "ORLFoundation/CMakeLists.txt: ORLFoundation/lone is not added",
            ORLFoundation__lone__CMakeLists_txt="orlf_add_folder(lone LAYER 3)\n")

    def test_folders_that_are_not_added_from_the_ground_up(self):
        self.assert_one(
            "ORLFoundation/CMakeLists.txt: ORLFoundation/platform/object of layer 2 is to be added "
            "before ORLFoundation/calendar of layer 20",
            ORLFoundation__CMakeLists_txt="add_subdirectory(platform/value)\n"
            "add_subdirectory(calendar)\nadd_subdirectory(platform/object)\n")

    def test_a_bridge_that_needs_what_users_lack(self):
        self.assert_one(
            "ORLFoundation/bridges/glib/Bridge.h:3: <ORLFoundation/platform/value/House.h> is not "
            "installed",
            ORLFoundation__platform__value__CMakeLists_txt=
            "orlf_add_folder(platform_value LAYER 1 HEADERS NSDate.h HOUSE_HEADERS House.h\n"
            "  SOURCES NSDate.cpp)\n",
            ORLFoundation__platform__value__House_h="",
            ORLFoundation__bridges__glib__Bridge_h=lambda text:
            text + "#include <ORLFoundation/platform/value/House.h>\n")

    def test_a_bridge_that_includes_what_is_internal(self):
        self.assert_one(
            "ORLFoundation/bridges/glib/Bridge_test.cpp:2: <ORLFoundation/calendar/internal/Table.h> "
            "is internal",
            ORLFoundation__bridges__glib__Bridge_test_cpp=lambda text:
            text + "#include <ORLFoundation/calendar/internal/Table.h>\n")

    def test_a_bridge_and_a_helper_of_tests_that_do_not_begin_with_their_headers(self):
        self.assertEqual(
            self.faults(
                ORLFoundation__bridges__glib__Bridge_test_cpp=
                "#include <glib.h>\n#include <ORLFoundation/bridges/glib/Bridge.h>\n",
                tests__support__VectorFile_cpp="#include <string>\n"),
            ["ORLFoundation/bridges/glib/Bridge_test.cpp: <ORLFoundation/bridges/glib/Bridge.h> is to "
             "be its first include",
             "tests/support/VectorFile.cpp: <tests/support/VectorFile.h> is to be its first include"])

    def test_a_declared_folder_that_does_not_exist(self):
        self.assert_one(
            "ORLFoundation/platform/object/CMakeLists.txt: platform_object uses platform_gone, "
            "which no folder is called",
            ORLFoundation__platform__object__CMakeLists_txt=
            "orlf_add_folder(platform_object LAYER 2 HEADERS NSObject.h\n"
            "  USES platform_value platform_gone)\n")

    def test_an_outside_header_in_a_public_header(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.h:2: a public header includes the outside header "
            "<unicode/ucal.h>",
            ORLFoundation__calendar__Days_h=lambda text: text + "#include <unicode/ucal.h>\n")

    def test_an_outside_header_in_an_internal_header_is_no_fault(self):
        self.assertEqual(self.faults(
            ORLFoundation__calendar__internal__Table_h="#include <unicode/ucal.h>\n"), [])

    def test_a_quoted_include(self):
        self.assert_one(
            'ORLFoundation/calendar/Days.cpp:3: "Days.h" is to be written <ORLFoundation/...>',
            ORLFoundation__calendar__Days_cpp=OWN + '#include "Days.h"\n')

    def test_a_missing_file(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp:3: <ORLFoundation/calendar/Gone.h> does not exist",
            ORLFoundation__calendar__Days_cpp=OWN + "#include <ORLFoundation/calendar/Gone.h>\n")

    def test_test_helpers_outside_a_test(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp:3: only tests include <tests/support/VectorFile.h>",
            ORLFoundation__calendar__Days_cpp=OWN + "#include <tests/support/VectorFile.h>\n")

    def test_a_header_for_tests_outside_a_test(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp:3: only tests include "
            "<ORLFoundation/calendar/Days_testing.h>",
            ORLFoundation__calendar__Days_testing_h="#include <tests/support/VectorFile.h>\n",
            ORLFoundation__calendar__Days_cpp=OWN + "#include <ORLFoundation/calendar/Days_testing.h>\n")

    def test_an_internal_header_of_another_folder(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp:3: <ORLFoundation/platform/object/internal/Lock.h> is "
            "internal to platform_object",
            ORLFoundation__platform__object__internal__Lock_h="",
            ORLFoundation__calendar__Days_cpp=OWN +
            "#include <ORLFoundation/platform/object/internal/Lock.h>\n")

    def test_an_internal_header_in_the_tool(self):
        self.assert_one(
            "tools/orlf/main.cpp:1: <ORLFoundation/calendar/internal/Table.h> is internal",
            tools__orlf__main_cpp="#include <ORLFoundation/calendar/internal/Table.h>\n")

    def test_a_source_without_its_own_header(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.cpp: <ORLFoundation/calendar/Days.h> is to be its first "
            "include", ORLFoundation__calendar__Days_cpp="#include <vector>\n")

    def test_a_test_that_includes_another_header_first(self):
        self.assert_one(
            "ORLFoundation/calendar/Days_test.cpp: <ORLFoundation/calendar/Days.h> is to be its "
            "first include",
            ORLFoundation__calendar__Days_test_cpp="#include <vector>\n" + OWN)

    def test_a_file_that_no_list_names(self):
        self.assert_one(
            "ORLFoundation/calendar/Weeks.cpp: not listed in ORLFoundation/calendar/CMakeLists.txt",
            ORLFoundation__calendar__Weeks_cpp="")

    HOUSE = ("orlf_add_folder(platform_value LAYER 1 HEADERS NSDate.h HOUSE_HEADERS Words.h\n"
             "  SOURCES NSDate.cpp)\n")

    def test_a_house_header_in_a_source_of_another_folder(self):
        self.assertEqual(self.faults(
            ORLFoundation__platform__value__CMakeLists_txt=self.HOUSE,
            ORLFoundation__platform__value__Words_h="",
            ORLFoundation__calendar__CMakeLists_txt=
            "orlf_add_folder(calendar LAYER 20 HEADERS Days.h SOURCES Days.cpp\n"
            "  USES platform_object platform_value TESTS Days_test.cpp)\n",
            ORLFoundation__calendar__Days_cpp=OWN + "#include <ORLFoundation/platform/value/Words.h>\n"),
            [])

    def test_a_house_header_in_a_public_header(self):
        self.assert_one(
            "ORLFoundation/platform/object/NSObject.h: <ORLFoundation/platform/value/Words.h> must "
            "be listed under HEADERS, or users lack it",
            ORLFoundation__platform__value__CMakeLists_txt=self.HOUSE,
            ORLFoundation__platform__value__Words_h="",
            ORLFoundation__platform__object__NSObject_h=
            "#include <ORLFoundation/platform/value/Words.h>\n")

    def test_an_installed_internal_header_that_no_public_header_needs(self):
        self.assert_one(
            "ORLFoundation/calendar/internal/Table.h: no public header needs it: not to be "
            "installed",
            ORLFoundation__calendar__CMakeLists_txt=
            "orlf_add_folder(calendar LAYER 20 HEADERS Days.h internal/Table.h SOURCES Days.cpp\n"
            "  USES platform_object TESTS Days_test.cpp)\n")

    def test_a_public_header_that_the_umbrella_lacks(self):
        self.assert_one(
            "ORLFoundation/ORLFoundation.h: #include <ORLFoundation/calendar/Days.h> is missing",
            ORLFoundation__ORLFoundation_h=lambda text:
            text.replace("#include <ORLFoundation/calendar/Days.h>\n", ""))

    def test_an_internal_header_that_users_would_lack(self):
        self.assert_one(
            "ORLFoundation/calendar/Days.h: <ORLFoundation/calendar/internal/Table.h> must be "
            "listed under HEADERS, or users lack it",
            ORLFoundation__calendar__Days_h="#include <ORLFoundation/calendar/internal/Table.h>\n")


if __name__ == "__main__":
    unittest.main()
