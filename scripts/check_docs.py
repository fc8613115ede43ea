#!/usr/bin/env python3
"""Refuses pages that have fallen behind the tree.

    scripts/check_docs.py [ROOT]

Names each fault as file:line. The table under "Where things stand" in README.md has a row for every
room (a folder that calls orlf_add_folder) and every folder of the tool, and for none that is gone;
docs/README.md lists every page of docs/, each on one line; every page is reachable from README.md;
every link leads to a file that exists, and to a heading of it; every path in backticks that begins
with a folder of the repository exists.
"""

import re
import sys
from pathlib import Path

MAP_HEADING = "Where things stand"
ENTRY = "README.md"
LIST = "docs/README.md"
TOOL = "tools/orlf"
LINK = re.compile(r"(?<!!)\[[^\]]*\]\(([^)\s]+)\)")
CODE = re.compile(r"`([^`]+)`")
FENCE = re.compile(r"^\s*```")
# A word of code that is a path of the tree; what holds wildcards or gaps to fill is none.
PATH = re.compile(r"^((?:ORLFoundation|tools|tests|examples|docs|cmake|scripts|\.ci)/[\w./-]+)$")


def pages_of(root):
    return sorted(path.relative_to(root).as_posix()
                  for path in [*root.glob("*.md"), *(root / "docs").glob("**/*.md")])


def prose_of(root, page):
    """Numbered lines outside of code blocks."""
    inside = False
    for number, line in enumerate((root / page).read_text().splitlines(), 1):
        if FENCE.match(line):
            inside = not inside
        elif not inside:
            yield number, line


def anchor_of(heading):
    """The name under which a heading is linked."""
    words = re.sub(r"[^\w\- ]", "", heading.replace("`", "").lower())
    return words.replace(" ", "-")


def anchors_of(root, page):
    headings = (re.match(r"#+ (.*)", line) for _, line in prose_of(root, page))
    return {anchor_of(match.group(1)) for match in headings if match}


def links_of(root, page):
    """Number, target and anchor of each link into the tree; targets count from the root."""
    for number, line in prose_of(root, page):
        for address in LINK.findall(CODE.sub("", line)) + LINK.findall(line):
            if "://" in address or address.startswith("mailto:"):
                continue
            path, _, anchor = address.partition("#")
            target = (root / page).parent / path if path else root / page
            yield number, address, target.resolve(), anchor


def check_links(root, pages):
    for page in pages:
        for number, address, target, anchor in sorted(set(links_of(root, page))):
            if not target.exists():
                yield f"{page}:{number}: {address} does not exist"
            elif anchor and target.suffix == ".md":
                name = target.relative_to(root).as_posix()
                if anchor not in anchors_of(root, name):
                    yield f"{page}:{number}: {name} has no heading #{anchor}"


def check_paths(root, pages):
    for page in pages:
        for number, line in prose_of(root, page):
            for code in CODE.findall(line):
                match = PATH.match(code.split()[0])
                if match and not (root / match.group(1)).exists():
                    yield f"{page}:{number}: {match.group(1)} does not exist"


def check_reach(root, pages):
    """Every page is reached from the entry, and every one of docs/ from the list in one step."""
    linked = {page: {target for _, _, target, _ in links_of(root, page)} for page in pages}
    if LIST not in pages:
        yield f"{LIST}: does not exist"
        return
    for page in pages:
        if page.startswith("docs/") and page != LIST and (root / page).resolve() not in linked[LIST]:
            yield f"{LIST}: does not list {page}"
    lines = {}
    for number, target in sorted({(number, target) for number, _, target, _ in links_of(root, LIST)}):
        if lines.setdefault(target, number) != number:
            yield f"{LIST}:{number}: {target.name} is listed already"
    reached, waiting = set(), [ENTRY]
    while waiting:
        page = waiting.pop()
        if page in reached:
            continue
        reached.add(page)
        waiting += [other for other in pages if (root / other).resolve() in linked[page]]
    for page in pages:
        if page not in reached:
            yield f"{ENTRY}: no way leads from here to {page}"


def folders_of(root):
    rooms = {file.parent.relative_to(root).as_posix()
             for file in (root / "ORLFoundation").rglob("CMakeLists.txt")
             if re.search(r"^orlf_add_folder\(", file.read_text(), re.MULTILINE)}
    tool = {folder.relative_to(root).as_posix()
            for folder in (root / TOOL).iterdir() if folder.is_dir()}
    return rooms | tool


def mapped_folders(root):
    """The folders in the map's first column; check_paths looks for those that are gone."""
    found, inside = set(), False
    for _, line in prose_of(root, ENTRY):
        if line.startswith("#"):
            inside = line.strip("# ") == MAP_HEADING
        elif inside and line.startswith("| `"):
            found |= set(CODE.findall(line.split("|")[1]))
    return found


def check_map(root):
    for folder in sorted(folders_of(root) - mapped_folders(root)):
        yield f"{ENTRY}: the map has no row for {folder}"


def faults(root):
    root = root.resolve()
    pages = pages_of(root)
    yield from check_map(root)
    yield from check_reach(root, pages)
    yield from check_links(root, pages)
    yield from check_paths(root, pages)


def main(arguments):
    root = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parent.parent
    found = list(faults(root))
    for fault in found:
        print(fault)
    print(f"check of pages: {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
