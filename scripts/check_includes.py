#!/usr/bin/env python3
"""Refuses includes that the layers do not allow.

    scripts/check_includes.py [ROOT]
    scripts/check_includes.py --write-umbrella

Reads every orlf_add_folder(...) under ROOT/ORLFoundation and every include of their files, and
names each fault as file:line. A folder states its layer; it includes itself and what it declares
under USES, which lies in lower layers, and folders are added from the ground up; public headers
include nothing but the standard library and installed headers of ours; internal/ headers stay inside
their folder; a source includes its own header first; every file is listed; the umbrella header holds
every public header. Headers of bridges, which are no such folders, use what is installed.
"""

import re
import sys
from pathlib import Path

# Outside headers that a public header of ours may include, each with its reason.
HEADER_EXCEPTIONS = {
    "stddef.h": "headers that C includes too",
    "stdint.h": "headers that C includes too",
}

KEYWORDS = {"LAYER", "HEADERS", "HOUSE_HEADERS", "SOURCES", "USES", "LINKS", "TESTS", "TEST_LINKS", "BENCHMARKS",
            "BENCHMARK_LINKS", "FUZZERS"}
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
UMBRELLA = "ORLFoundation/ORLFoundation.h"
BRIDGES = "ORLFoundation/bridges"
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

    @property
    def layer(self):
        stated = self["LAYER"]
        return int(stated[0]) if len(stated) == 1 and stated[0].isdigit() else None

    def listed(self):
        return {entry for key in ("HEADERS", "HOUSE_HEADERS", "SOURCES", "TESTS", "BENCHMARKS", "FUZZERS")
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


def check_declarations(folders):
    for folder in folders.values():
        place = f"{folder.path}/CMakeLists.txt"
        if folder.layer is None:
            yield f"{place}: {folder.name} states no layer"
            continue
        for used in folder["USES"]:
            if used not in folders:
                yield f"{place}: {folder.name} uses {used}, which no folder is called"
            elif folders[used].layer is not None and folders[used].layer >= folder.layer:
                yield (f"{place}: {folder.name} of layer {folder.layer} may not use {used} of layer "
                       f"{folders[used].layer}")


def check_ground_up(root, folders):
    """Folders are added in the order of their layers, and none is left out."""
    place = "ORLFoundation/CMakeLists.txt"
    text = re.sub(r"#[^\n]*", "", (root / place).read_text())
    added = [f"ORLFoundation/{name}" for name in re.findall(r"add_subdirectory\(([^)]+)\)", text)]
    layers = {folder.path: folder.layer for folder in folders.values()}
    for path in sorted(set(layers) - set(added)):
        yield f"{place}: {path} is not added"
    ordered = [path for path in added if layers.get(path) is not None]
    for below, above in zip(ordered, ordered[1:]):
        if layers[above] < layers[below]:
            yield (f"{place}: {above} of layer {layers[above]} is to be added before {below} of layer "
                   f"{layers[below]}")


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
    """The folder that holds an included file: the one with the longest path."""
    holding = [f for f in folders.values() if include.startswith(f.path + "/")]
    return max(holding, key=lambda f: len(f.path), default=None)


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


def own_header(file):
    """X.h beside X.cpp, and beside X_test.cpp, X_coding.cpp and the like."""
    stem = file.stem
    while True:
        header = file.with_name(stem + ".h")
        if header.is_file():
            return header
        if "_" not in stem:
            return None
        stem = stem.rpartition("_")[0]


def check_order(root, file, base):
    """A source shows by its first include that its header stands alone."""
    header = own_header(file) if file.suffix == ".cpp" else None
    if header is None:
        return
    own = header.relative_to(base).as_posix()
    includes = [include for _, _, include in includes_of(file)]
    missing = own not in includes and not is_proof(file)
    if missing or own in includes[1:]:
        yield f"{file.relative_to(root).as_posix()}: <{own}> is to be its first include"


def check_file(root, folders, folder, file):
    yield from check_order(root, file, root)
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


def installed_headers(folders):
    return {f"{folder.path}/{header}" for folder in folders.values() for header in folder["HEADERS"]}


def reached_headers(root, folders):
    """What the public headers include, and what that includes, and so on."""
    reached, waiting = set(), sorted(public_headers(folders))
    while waiting:
        header = waiting.pop()
        if header in reached or not (root / header).is_file():
            continue
        reached.add(header)
        waiting += [include for _, _, include in includes_of(root / header)]
    return reached


def check_lists(root, folders, folder, installed, reached):
    listed = folder.listed()
    for file in files_of(root, folder, folders):
        entry = file.relative_to(root / folder.path).as_posix()
        unlisted_header = file.suffix == ".h" and (
            entry.startswith("internal/") or entry.endswith("_testing.h"))
        if entry not in listed and not unlisted_header:
            yield f"{folder.path}/{entry}: not listed in {folder.path}/CMakeLists.txt"
    for header in folder["HEADERS"]:
        for _, _, include in includes_of(root / folder.path / header):
            if include.startswith("ORLFoundation/") and include not in installed:
                yield f"{folder.path}/{header}: <{include}> must be listed under HEADERS, or users lack it"
    for header in folder["HEADERS"]:
        if header.startswith("internal/") and f"{folder.path}/{header}" not in reached:
            yield f"{folder.path}/{header}: no public header needs it: not to be installed"


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


def sources_below(root, folder):
    return [file for file in sorted((root / folder).rglob("*")) if file.suffix in (".h", ".cpp")]


def check_tool(root):
    for file in sources_below(root, "tools"):
        yield from check_order(root, file, root / "tools/orlf")
        for number, _, include in includes_of(file):
            if include.startswith("ORLFoundation/") and "/internal/" in include:
                name = file.relative_to(root).as_posix()
                yield f"{name}:{number}: <{include}> is internal"


def check_bridges(root, installed):
    """What users include of a bridge leads to nothing that they lack."""
    for file in sources_below(root, BRIDGES):
        yield from check_order(root, file, root)
        name = file.relative_to(root).as_posix()
        is_installed = file.suffix == ".h" and "/internal/" not in name and not is_proof(file)
        for number, _, include in includes_of(file):
            if not include.startswith("ORLFoundation/") or include.startswith(BRIDGES + "/"):
                continue
            if "/internal/" in include:
                yield f"{name}:{number}: <{include}> is internal"
            elif is_installed and include not in installed:
                yield f"{name}:{number}: <{include}> is not installed"


def check_test_helpers(root):
    for file in sources_below(root, "tests"):
        yield from check_order(root, file, root)


def faults(root):
    folders = read_folders(root)
    if not folders:
        yield "no folder found"
    yield from check_declarations(folders)
    yield from check_ground_up(root, folders)
    installed = installed_headers(folders)
    reached = reached_headers(root, folders)
    for folder in folders.values():
        for file in files_of(root, folder, folders):
            yield from check_file(root, folders, folder, file)
        yield from check_lists(root, folders, folder, installed, reached)
    yield from check_umbrella(root, folders)
    yield from check_tool(root)
    yield from check_bridges(root, installed)
    yield from check_test_helpers(root)


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
