#!/usr/bin/env python3
"""Refuses includes that the layers do not allow.

    scripts/check_includes.py [ROOT]
    scripts/check_includes.py --write-umbrella

Reads every orlf_add_folder(...) under ROOT/ORLFoundation and every include of their files, and
names each fault as file:line. A folder includes itself and what it declares under USES; it may
declare only what ALLOWED grants it; nothing goes round in a circle; public headers include nothing
but the standard library and ORLFoundation; internal/ headers stay inside their folder; every file is
listed; the umbrella header holds every public header. Where one CMakeLists.txt declares two of them,
a file belongs to the one that lists it, an unlisted header to the one that lists the source of its
name.
"""

import re
import sys
from pathlib import Path

PLATFORM_RANKS = {
    "platform_value": 0,
    "platform_object": 1,
    "platform_number": 2,
    "platform_time": 2,
    "platform_text": 2,
    "platform_image": 2,
    "platform_files": 2,
    "platform_format": 3,
    "platform_archive": 4,
    "platform_dispatch": 2,
    "platform_failure": 3,
    "platform_defaults": 5,
}

# What a subsystem may use beside the platform. diagnostics (logging and soft assertions) lies below
# all others.
ALLOWED = {
    "diagnostics": set(),
    "support": {"diagnostics", "recurrence"},
    "calendar": {"diagnostics"},
    "decimal": {"diagnostics"},
    "recurrence": {"diagnostics", "calendar"},
    "amortization": {"diagnostics", "recurrence", "calendar", "decimal"},
}

# Outside headers that a public header of ours may include, each with its reason.
HEADER_EXCEPTIONS = {
    "stddef.h": "headers that C includes too",
    "stdint.h": "headers that C includes too",
}

KEYWORDS = {"HEADERS", "SOURCES", "USES", "LINKS", "TESTS", "TEST_LINKS", "BENCHMARKS",
            "BENCHMARK_LINKS", "FUZZERS"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
UMBRELLA = "ORLFoundation/ORLFoundation.h"
UMBRELLA_HEAD = """/// Everything that the library offers, in one include. scripts/check_includes.py --write-umbrella
/// writes this file.
#pragma once

"""


class Folder:
    def __init__(self, name, path, lists):
        self.name = name
        self.path = path
        self.lists = lists

    def __getitem__(self, keyword):
        return self.lists.get(keyword, [])

    def listed(self):
        return {entry for key in ("HEADERS", "SOURCES", "TESTS", "BENCHMARKS", "FUZZERS")
                for entry in self[key]}

    def linked_for(self, file):
        """Folders that a test or benchmark links beside those of its own folder."""
        links = []
        if file.name.endswith(("_test.cpp", "_test.c", "_testing.h")):
            links = self["TEST_LINKS"]
        elif file.name.endswith("_benchmark.cpp"):
            links = self["BENCHMARK_LINKS"]
        return {link[len("orlf_"):] for link in links if link.startswith("orlf_")}


def read_folders(root):
    """Folders by name, from every CMakeLists.txt under ORLFoundation."""
    folders = {}
    for file in sorted((root / "ORLFoundation").rglob("CMakeLists.txt")):
        text = re.sub(r"#[^\n]*", "", file.read_text())
        for call in re.finditer(r"orlf_add_folder\(([^)]*)\)", text):
            name, *words = call.group(1).split()
            lists, current = {}, None
            for word in words:
                if word in KEYWORDS:
                    current = lists.setdefault(word, [])
                elif current is not None:
                    current.append(word)
            folders[name] = Folder(name, file.parent.relative_to(root).as_posix(), lists)
    return folders


def may_use(name, used):
    if name in PLATFORM_RANKS:
        return used in PLATFORM_RANKS and PLATFORM_RANKS[used] < PLATFORM_RANKS[name]
    return used in PLATFORM_RANKS or used in ALLOWED.get(name, set())


def check_declarations(folders):
    for folder in folders.values():
        place = f"{folder.path}/CMakeLists.txt"
        if folder.name not in PLATFORM_RANKS and folder.name not in ALLOWED:
            yield f"{place}: folder {folder.name} has no place in the layers of check_includes.py"
            continue
        for used in folder["USES"]:
            if used not in folders:
                yield f"{place}: {folder.name} uses {used}, which no folder is called"
            elif not may_use(folder.name, used):
                yield f"{place}: {folder.name} may not use {used}"
    yield from check_circles(folders)


def check_circles(folders):
    finished = set()

    def walk(name, path):
        if name in path:
            yield f"circle of folders: {' -> '.join(path[path.index(name):] + [name])}"
            return
        if name in finished or name not in folders:
            return
        for used in folders[name]["USES"]:
            yield from walk(used, path + [name])
        finished.add(name)

    for name in folders:
        yield from walk(name, [])


def closure(folders, names):
    seen, waiting = set(), list(names)
    while waiting:
        name = waiting.pop()
        if name in seen or name not in folders:
            continue
        seen.add(name)
        waiting.extend(folders[name]["USES"])
    return seen


def folder_of(folders, include):
    """The folder that holds an included file: the one with the longest path, and of those that
    share it the one that lists the file or a source of its stem, else the last declared."""
    holding = [f for f in folders.values() if include.startswith(f.path + "/")]
    longest = max((len(f.path) for f in holding), default=0)
    sharing = [f for f in holding if len(f.path) == longest]
    if len(sharing) < 2:
        return sharing[0] if sharing else None
    entry = include[longest + 1:]
    stem = re.sub(r"(_testing)?\.[a-z]+$", "", entry)
    for names in ({entry}, {stem + ".cpp", stem + ".c", stem + "_test.cpp"}):
        for folder in sharing:
            if names & folder.listed():
                return folder
    return sharing[-1]


def files_of(root, folder, folders):
    for file in sorted((root / folder.path).rglob("*")):
        if file.suffix not in (".h", ".cpp", ".c"):
            continue
        if folder_of(folders, file.relative_to(root).as_posix()) is folder:
            yield file


def includes_of(file):
    for number, line in enumerate(file.read_text().splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def is_standard(include):
    return re.fullmatch(r"[a-z_0-9]+", include) is not None


def is_proof(file):
    """Tests, benchmarks, fuzz targets and the headers that they share."""
    return re.search(r"_(test|benchmark|fuzz)\.(cpp|c)$|_testing\.h$", file.name) is not None


def is_public(folder, root, file):
    """Headers under HEADERS are installed; the rest of internal/ is seen by our sources alone."""
    return file.relative_to(root / folder.path).as_posix() in folder["HEADERS"]


def check_file(root, folders, folder, file):
    name = file.relative_to(root).as_posix()
    proof = is_proof(file)
    declared = {folder.name, *folder["USES"]}
    if proof:
        declared = closure(folders, declared | folder.linked_for(file))
    for number, mark, include in includes_of(file):
        place = f"{name}:{number}"
        if mark == '"':
            yield f'{place}: "{include}" is to be written <ORLFoundation/...>'
        elif include.startswith("tests/"):
            if not proof:
                yield f"{place}: only tests include <{include}>"
        elif include.endswith("_testing.h") and not proof:
            yield f"{place}: only tests include <{include}>"
        elif not include.startswith("ORLFoundation/"):
            outside = not is_standard(include) and include not in HEADER_EXCEPTIONS
            if is_public(folder, root, file) and outside:
                yield f"{place}: a public header includes the outside header <{include}>"
        else:
            yield from check_own_include(root, folders, folder, declared, place, include)


def check_own_include(root, folders, folder, declared, place, include):
    target = folder_of(folders, include)
    if not (root / include).is_file():
        yield f"{place}: <{include}> does not exist"
    elif target is None:
        yield f"{place}: <{include}> belongs to no folder"
    elif target.name not in declared:
        yield f"{place}: {folder.name} does not declare {target.name} under USES: <{include}>"
    elif target is not folder and "/internal/" in include:
        yield f"{place}: <{include}> is internal to {target.name}"


def check_lists(root, folders, folder):
    listed = folder.listed()
    for file in files_of(root, folder, folders):
        entry = file.relative_to(root / folder.path).as_posix()
        unlisted_header = file.suffix == ".h" and (
            entry.startswith("internal/") or entry.endswith("_testing.h"))
        if entry not in listed and not unlisted_header:
            yield f"{folder.path}/{entry}: not listed in {folder.path}/CMakeLists.txt"
    for header in folder["HEADERS"]:
        for _, _, include in includes_of(root / folder.path / header):
            prefix = folder.path + "/internal/"
            if include.startswith(prefix) and include[len(folder.path) + 1:] not in listed:
                yield f"{folder.path}/{header}: <{include}> must be listed under HEADERS, or users lack it"


def public_headers(folders):
    return {f"{folder.path}/{header}" for folder in folders.values()
            for header in folder["HEADERS"] if not header.startswith("internal/")}


def write_umbrella(root):
    lines = [f"#include <{header}>\n" for header in sorted(public_headers(read_folders(root)))]
    (root / UMBRELLA).write_text(UMBRELLA_HEAD + "".join(lines))


def check_umbrella(root, folders):
    included = [include for _, _, include in includes_of(root / UMBRELLA)]
    public = public_headers(folders)
    for header in sorted(public - set(included)):
        yield f"{UMBRELLA}: #include <{header}> is missing"
    for header in sorted(set(included) - public):
        yield f"{UMBRELLA}: <{header}> is no public header"


def check_tool(root):
    for file in sorted((root / "tools").rglob("*")):
        if file.suffix in (".h", ".cpp"):
            for number, _, include in includes_of(file):
                if include.startswith("ORLFoundation/") and "/internal/" in include:
                    name = file.relative_to(root).as_posix()
                    yield f"{name}:{number}: <{include}> is internal"


def faults(root):
    folders = read_folders(root)
    if not folders:
        yield "no folder found"
    yield from check_declarations(folders)
    for folder in folders.values():
        for file in files_of(root, folder, folders):
            yield from check_file(root, folders, folder, file)
        yield from check_lists(root, folders, folder)
    yield from check_umbrella(root, folders)
    yield from check_tool(root)


def main(arguments):
    root = Path(__file__).resolve().parent.parent
    if arguments[1:] == ["--write-umbrella"]:
        write_umbrella(root)
    elif len(arguments) > 1:
        root = Path(arguments[1])
    found = list(faults(root))
    for fault in found:
        print(fault)
    print(f"include check: {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
