#!/usr/bin/env python3
"""Refuses names that users of the library would trip over.

    scripts/check_names.py [ROOT]

Whoever writes `using namespace ORLFoundation` sees what the public headers put there. Headers in
internal/ folders and those under HOUSE_HEADERS declare in ORLFoundation::internal::<room> alone, a
public header does so with what users are not to call, and what else it declares bears a prefix of
ours or a comment. Each fault is named as file:line.
"""

import re
import sys
from pathlib import Path

from check_includes import read_folders

PREFIX = re.compile(r"^(?:NS|ORLF|orlf|_?k?ORLF|CG|kCG|UT|NL|LLVM)")
# Names of tools that a header of ours specializes rather than declares.
SPECIALIZATION = re.compile(r"^template\s*<\s*>")
FORWARD = re.compile(r"^(?:template\s*<[^{]*>\s*)?(?:class|struct|enum(?:\s+class)?)\s+(\w+)(?:\s*:\s*[\w:]+)?$")
NAMESPACE = re.compile(r"^(?:inline\s+)?namespace\s*([\w:]*)$")


def without_comments(text):
    """Comments and literals blanked out, every line where it was."""
    def blank(match):
        return re.sub(r"[^\n]", " ", match.group(0))
    pattern = r'//[^\n]*|/\*.*?\*/|R"(\w*)\(.*?\)\1"|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])*\''
    text = re.sub(pattern, blank, text, flags=re.S)
    return re.sub(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", blank, text, flags=re.M)


def declarations(text):
    """(namespace, line, text without body) of each declaration outside of classes and functions."""
    code = without_comments(text)
    namespaces, start, at = [], None, 0
    has_body = False
    while at < len(code):
        c = code[at]
        if start is None:
            if c == "}":
                if namespaces:
                    namespaces.pop()
            elif not c.isspace() and c != ";":
                start, has_body = at, False
                continue
        elif c == ";":
            yield "::".join(namespaces), line_of(code, start), head_of(code[start:at]), has_body
            start = None
        elif c == "{":
            opened = NAMESPACE.match(" ".join(code[start:at].split()))
            if opened:
                namespaces.append(opened.group(1))
                start = None
            elif code[start:at].strip() == 'extern':  # extern "C", whose text is blanked
                namespaces.append("")
                start = None
            else:
                at = end_of_braces(code, at)
                has_body = True
                if ends_declaration(code, start, at):
                    yield "::".join(namespaces), line_of(code, start), head_of(code[start:at]), True
                    start = None
        at += 1


def end_of_braces(code, at):
    depth = 0
    for place in range(at, len(code)):
        depth += {"{": 1, "}": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return len(code) - 1


def ends_declaration(code, start, at):
    """A function's body ends its declaration; those of classes and values go on to a semicolon."""
    rest = code[at + 1:].lstrip()
    head = head_of(code[start:at])
    is_type = re.match(r"(?:template\s*<.*>\s*)?(?:class|struct|enum|union)\b", head)
    goes_on = is_type or re.search(r"\brequires\s*(?:\(.*\))?$", head)
    return not goes_on and not rest.startswith((";", "(", "=", ","))


def line_of(code, at):
    return code.count("\n", 0, at) + 1


def head_of(text):
    """The text without what stands in braces."""
    while (shorter := re.sub(r"\{[^{}]*\}", " ", text)) != text:
        text = shorter
    return " ".join(text.split("{")[0].split())


def name_of(head):
    """The name that is declared; "" where it is declared elsewhere."""
    if SPECIALIZATION.match(head) or re.search(r"\w::~?\w+\s*\(|\b(?:class|struct)\s+\w+\s*<", head):
        return ""
    words = re.sub(r"^template\s*<.*?>\s*(?=\w|\[)", "", head)
    words = words.split(" = ")[0]
    found = re.search(r"(?:class|struct|enum(?:\s+class)?|concept|using)\s+(\w+)", words) or \
        re.search(r"(operator\S+|\w+)\s*\(", words) or re.search(r"(\w+)\s*(?:=|$)", words)
    return found.group(1) if found else words


def is_documented(lines, line):
    """Whether the lines above, as far as none is blank, hold a comment."""
    for above in range(line - 2, -1, -1):
        text = lines[above].strip()
        if not text or text.startswith("}"):
            return False
        if text.startswith(("///", "//", "/**", "*")):
            return True
    return False


def check_internal(name, room, text):
    home = f"ORLFoundation::internal::{room}"
    for namespace, line, head, has_body in declarations(text):
        known = FORWARD.match(head) is not None and not has_body
        if namespace != home and not namespace.startswith(home + "::") and not known and \
                not SPECIALIZATION.match(head):
            yield f"{name}:{line}: to be declared in {home}: {head[:60]}"


def check_public(name, room, text):
    home = f"ORLFoundation::internal::{room}"
    lines = text.splitlines()
    told = {"", Path(name).stem.lower()}  # the comment at the start tells of the header's own name
    for namespace, line, head, has_body in declarations(text):
        if FORWARD.match(head) and not has_body and "internal" not in namespace:
            continue
        if "internal" in namespace.split("::"):
            if namespace != home and not namespace.startswith(home + "::"):
                yield f"{name}:{line}: to be declared in {home}: {head[:60]}"
        elif PREFIX.match(name_of(head)) or name_of(head).lower() in told:
            continue
        elif is_documented(lines, line):
            told.add(name_of(head).lower())
        else:
            yield f"{name}:{line}: users see it and no comment tells what it is: {head[:60]}"


def faults(root):
    for folder in read_folders(root).values():
        room = folder.path.rpartition("/")[2]
        base = root / folder.path
        inner = {header.relative_to(base).as_posix() for header in base.glob("internal/*.h")}
        inner |= set(folder["HOUSE_HEADERS"])
        for header in sorted(inner | set(folder["HEADERS"])):
            if not (base / header).is_file():
                continue
            check = check_internal if header in inner else check_public
            yield from check(f"{folder.path}/{header}", room, (base / header).read_text())


def main(arguments):
    root = Path(arguments[1]) if len(arguments) > 1 else Path(__file__).resolve().parent.parent
    found = list(faults(root))
    for fault in found:
        print(fault)
    print(f"name check: {len(found)} faults")
    return 1 if found else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
