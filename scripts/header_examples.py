#!/usr/bin/env python3
"""Writes the examples in the headers' comments into one source, so that a compiler reads them.

    scripts/header_examples.py GIVEN OUTPUT [ROOT]

An example is a run of comment lines that begin with "///" and five blanks, in a header that
orlf_add_folder lists. Each becomes a function of a class of its own; classes, and functions of
classes, that it defines stand before that. "..." alone, and "{ ... }", stand for what the reader fills in.
The file GIVEN holds the names that examples take for given: declarations under [*] hold for all,
those under [Header.h] for the examples of that header alone.

An example that the formatter broke is a fault even where it still compiles: a line that goes on with
a statement is indented deeper than the statement's first line.
"""

import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent))
from check_includes import read_folders  # noqa: E402

EXAMPLE = re.compile(r"^\s*///     (\s*\S.*)$")
EMPTY = re.compile(r"^\s*///\s*$")
# What begins a definition at namespace scope: a class, or a function of one.
OVERRIDE = re.compile(r"\) const override \{$|\) override \{$")
DEFINITION = re.compile(r"^(?:class|struct|enum|template|constinit)\b"
                        r"|^[\w:<>&*, ]*\w+::~?\w+\(.*[{}]$|" + OVERRIDE.pattern)

GIVEN_VARIABLES = re.compile(r"^extern .*?[\s&*](\w+(?:, \w+)*);$", re.MULTILINE)


class Example:
    def __init__(self, header, number):
        self.header = header
        self.number = number
        self.lines = []  # an empty one between paragraphs


def examples_of(header, text):
    current = None
    for number, line in enumerate(text.splitlines(), 1):
        match = EXAMPLE.match(line)
        if match:
            if current is None:
                current = Example(header, number)
            current.lines.append(match.group(1))
        elif current is not None and EMPTY.match(line):
            current.lines.append("")
        elif current is not None:
            yield current
            current = None
    if current is not None:
        yield current


def without_comment(line):
    """The code of a line; an address in a text is none."""
    return re.sub(r"(?<!:)//.*$", "", line).rstrip()


def filled(line):
    if line.strip() == "...":
        return ""
    return line.replace("{ ... }", "{}")


def indent(line):
    return len(line) - len(line.lstrip())


def statements(lines):
    """Runs of lines, each a statement at the outermost level, or a definition with all its body."""
    current = []
    for line in map(filled, lines):
        code = without_comment(line)
        if not current and not code.strip():
            continue
        current.append(line)
        is_definition = DEFINITION.search(without_comment(current[0])) is not None
        text = "\n".join(map(without_comment, current))
        ends = code.endswith(";") or (code.endswith("}") and not code.startswith(" "))
        if is_balanced(text) and ends and (not is_definition or code.endswith(("}", ";"))):
            yield is_definition, current
            current = []
    if current:
        yield False, [*current[:-1], finished(current[-1])]


def finished(line):
    """An expression that stands alone, as a statement."""
    code = without_comment(line)
    return line if code.endswith((";", "}")) else code + ";"


def broken_lines(example):
    """Numbers of lines that go on with a statement and stand no deeper than its beginning."""
    beginning = None
    for offset, line in enumerate(example.lines):
        code = without_comment(line)
        if not code.strip():
            continue
        closes = code.lstrip().startswith(("}", ")", "{"))
        if beginning is not None and indent(line) <= beginning and not closes:
            yield example.number + offset
        is_label = re.match(r"^\s*(?:public|private|protected):$", code) is not None
        if code.endswith((";", "{", "}")) or is_label or code.strip() == "..." or is_template(code):
            beginning = None
        elif beginning is None and not (code.endswith(",") and is_balanced(code)):
            beginning = indent(line)


def is_balanced(code):
    return all(code.count(a) == code.count(b) for a, b in ("{}", "()"))


def is_template(code):
    return re.match(r"^\s*template\s*<.*>$", code) is not None


def read_given(text):
    """Declarations by header name."""
    given, current = {}, None
    for line in text.splitlines():
        match = re.match(r"^\[(\S+)\]$", line)
        if match:
            current = given.setdefault(match.group(1), [])
        elif current is not None:
            current.append(line)
    return {name: "\n".join(lines).strip("\n") for name, lines in given.items()}


def listed_headers(root):
    """Headers with the namespace that their room keeps from users, where they are not for them."""
    for folder in read_folders(root).values():
        for key in ("HEADERS", "HOUSE_HEADERS"):
            for header in folder[key]:
                yield f"{folder.path}/{header}", folder.path.split("/")[-1], key == "HOUSE_HEADERS"


def definition(lines):
    """A function that overrides one stands in a class, whose bases are given."""
    text = "\n".join(lines)
    return f"struct Example : ExampleBase {{\n{text}\n}};" if OVERRIDE.search(lines[0]) else text


def parameters(given):
    """What is given as variables, as parameters too: a lambda cannot capture a variable of a namespace."""
    names = [name for group in GIVEN_VARIABLES.findall(given) for name in group.split(", ")]
    return ", ".join(f"decltype({name})& {name}" for name in names)


def code_of(example, given, room):
    """An example in a namespace of its own; a specialization can stand in none."""
    parts = list(statements(example.lines))
    definitions = [definition(lines) for is_definition, lines in parts if is_definition]
    body = ["\n".join(lines) for is_definition, lines in parts if not is_definition]
    is_global = any(text.startswith("template <>") for text in definitions)
    name = f"example_{re.sub(r'[^A-Za-z0-9]', '_', Path(example.header).stem)}_{example.number}"
    lines = [f"// {example.header}:{example.number}"]
    lines += [] if is_global else [f"namespace {name} {{"]
    lines += [f"using namespace ORLFoundation::internal::{room};"] if room else []
    lines += [given] if given else []
    lines += definitions
    lines += [f"struct {name} : NSObject {{", f"auto example({parameters(given)}) {{ {{", *body, "} }", "};"]
    lines += [] if is_global else ["}"]
    return "\n".join(lines)


def generate(root, given_text):
    """The source, and what is wrong with the examples."""
    given = read_given(given_text)
    includes, parts, faults, names = [], [], [], {"*"}
    for header, room, is_house in sorted(listed_headers(root)):
        names.add(Path(header).name)
        if is_house or header.endswith("_testing.h"):
            includes.append(header)
        for example in examples_of(header, (root / header).read_text()):
            faults += [f"{header}:{line}: this line goes on with a statement that begins as deep"
                       for line in broken_lines(example)]
            parts.append(code_of(example, given.get(Path(header).name, ""), room if is_house else ""))
    faults += [f"names are given for {name}, which no room lists" for name in sorted(set(given) - names)]
    head = ["// Written by scripts/header_examples.py from the headers' comments.",
            "#include <ORLFoundation/ORLFoundation.h>",
            *(f"#include <{header}>" for header in includes), given.get("*", "")]
    return "\n".join([*head, *parts]) + "\n", faults, len(parts)


def main(arguments):
    given, output = Path(arguments[1]), Path(arguments[2])
    root = Path(arguments[3] if len(arguments) > 3 else Path(__file__).resolve().parent.parent)
    source, faults, count = generate(root, given.read_text())
    for fault in faults:
        print(fault)
    output.write_text(source)
    print(f"examples in headers: {count}, {len(faults)} faults")
    return 1 if faults or count == 0 else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
