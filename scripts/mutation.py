"""Small changes of a C++ source, one at a time, and the list of those that alter nothing.

A change is found by tokens, not by a parser: sources are formatted by clang-format, so a binary
operator stands between blanks and an angle bracket of a template does not. What does not compile
is no loss: the caller leaves it out of the count.
"""

import re
from dataclasses import dataclass
from functools import cached_property

TOKEN = re.compile(r"""
    (?P<skip>\s+|//[^\n]*|/\*.*?\*/|\#(?:\\\n|[^\n])*)
  | (?P<text>(?:u8|[uUL])?(?:R"(?P<mark>[^()\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])*'))
  | (?P<number>(?:0[xX][0-9a-fA-F']+|0[bB][01']+|(?:[0-9][0-9']*)?\.?[0-9][0-9']*\.?(?:[eE][-+]?[0-9]+)?)[uUlLzZfF]*)
  | (?P<name>[A-Za-z_]\w*)
  | (?P<sign><=>|<<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[^\s\w])
""", re.VERBOSE | re.DOTALL)

OPENS = {"(": ")", "{": "}", "[": "]"}
OTHER_SIGNS = {
    "<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"),
    "==": ("!=",), "!=": ("==",), "&&": ("||",), "||": ("&&",),
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("/",), "&": ("|",), "|": ("&",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",), "|=": ("&=",), "&=": ("|=",),
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
SIDED = {"++": "--", "--": "++"}
WORDS = {"true": "false", "false": "true"}
LARGEST_EXACT = 1 << 53  # above it a double has no neighbour at a distance of one
CONTROL = {"if", "for", "while", "switch"}
# Before `{`: the body of a function, of a lambda or of a control statement.
BODY_OPENERS = {")", "else", "do", "try", "const", "noexcept", "override", "final", "mutable", "]"}
SCOPES = {"namespace", "class", "struct", "enum", "union", "extern"}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    begin: int

    @property
    def end(self):
        return self.begin + len(self.text)


@dataclass(frozen=True)
class Change:
    """One replacement in a text, named by what it does."""
    kind: str
    begin: int
    end: int
    new: str

    def apply(self, text):
        return text[:self.begin] + self.new + text[self.end:]

    def line(self, text):
        return text.count("\n", 0, self.begin) + 1

    def lines(self, text):
        """The lines that it touches, before and after, without their margins."""
        first = text.rfind("\n", 0, self.begin) + 1
        last = text.find("\n", self.end)
        last = len(text) if last < 0 else last
        old = text[first:last]
        new = text[first:self.begin] + self.new + text[self.end:last]
        return bare_lines(old), bare_lines(new)


def bare_lines(text):
    return tuple(line.strip() for line in text.splitlines() if line.strip())


def tokens_of(text):
    """The tokens; comments, blanks and preprocessor lines are left out."""
    found, at = [], 0
    while at < len(text):
        match = TOKEN.match(text, at)
        if match.lastgroup != "skip" and not match.group("skip"):
            kind = "text" if match.group("text") else match.lastgroup
            found.append(Token(kind, match.group(), at))
        at = match.end()
    return found


class Source:
    def __init__(self, text):
        self.text = text
        self.tokens = tokens_of(text)

    @cached_property
    def partners(self):
        """For each bracket the index of the one that belongs to it."""
        found, stack = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind != "sign":
                continue
            if token.text in OPENS:
                stack.append(index)
            elif token.text in OPENS.values() and stack:
                opened = stack.pop()
                found[opened], found[index] = index, opened
        return found

    def word(self, index):
        return self.tokens[index].text if 0 <= index < len(self.tokens) else ""

    def slice(self, first, last):
        """The text from one token to another, both included."""
        return self.text[self.tokens[first].begin:self.tokens[last].end]

    def is_between_blanks(self, token):
        return self.text[token.begin - 1:token.begin].isspace() and (
            self.text[token.end:token.end + 1].isspace())

    def start_of_phrase(self, index):
        """The first token of what stands before `index` in its statement, at its depth."""
        at = index
        while at > 0:
            before = self.word(at - 1)
            if before in (";", "{", "(", "[", ",") or (before == "}" and self.is_end_of_block(at - 1)):
                break
            at = self.partners.get(at - 1, at - 1) if before in (")", "}", "]") else at - 1
        return at

    def is_end_of_block(self, index):
        return self.partners.get(index) in self.bodies_and_scopes

    @cached_property
    def bodies_and_scopes(self):
        return self.bodies | self.scopes

    @cached_property
    def brace_kinds(self):
        """For each `{` whether it opens a body, a scope of declarations or a list of values."""
        kinds, stack = {}, []
        for index, token in enumerate(self.tokens):
            if token.kind == "sign" and token.text == "{":
                kinds[index] = self.brace_kind(index, stack[-1] if stack else "scope")
                stack.append(kinds[index])
            elif token.kind == "sign" and token.text == "}" and stack:
                stack.pop()
        return kinds

    def brace_kind(self, index, around):
        before = self.word(index - 1)
        if before in BODY_OPENERS:
            return "body"
        if before in (";", "{", "}", ":", ""):
            return "body" if around == "body" or (before == "}" and around == "scope") else "list"
        at = index - 1
        while at >= 0 and self.word(at) not in (";", "{", "}", "(", "="):
            if self.word(at) in SCOPES:
                return "scope"
            if self.word(at) == "->" and self.word(at - 1) in (")", "mutable"):
                return "body"
            at -= 1
        return "list"

    @cached_property
    def bodies(self):
        return {index for index, kind in self.brace_kinds.items() if kind == "body"}

    @cached_property
    def scopes(self):
        return {index for index, kind in self.brace_kinds.items() if kind == "scope"}

    @cached_property
    def untouchable(self):
        """Indices of tokens in static_assert(...), [[...]] and template<...>."""
        found = set()
        for index, token in enumerate(self.tokens):
            if token.text == "static_assert" and index + 1 in self.partners:
                found.update(range(index, self.partners[index + 1] + 2))
            elif token.text == "[" and self.word(index + 1) == "[" and index in self.partners:
                found.update(range(index, self.partners[index] + 1))
            elif token.text == "template" and self.word(index + 1) == "<":
                found.update(range(index, self.end_of_angle(index + 1) + 1))
        return found

    @cached_property
    def hashing(self):
        """Indices of tokens in the bodies of hash(): how they mix is nobody's business."""
        found = set()
        for index in self.bodies:
            if [self.word(at) for at in range(index - 4, index)] == ["hash", "(", ")", "const"]:
                found.update(range(index, self.partners[index] + 1))
        return found

    @cached_property
    def in_bodies(self):
        return {at for index in self.bodies for at in range(index, self.partners.get(index, index))}

    def end_of_angle(self, index):
        depth = 0
        for at in range(index, len(self.tokens)):
            depth += {"<": 1, ">": -1, ">>": -2}.get(self.word(at), 0)
            if depth <= 0:
                return at
        return index


def changed_signs(source):
    for index, token in enumerate(source.tokens):
        if index in source.hashing:
            continue
        if token.kind == "sign" and token.text in OTHER_SIGNS and source.is_between_blanks(token):
            kind = "comparison turned" if token.text in COMPARISONS else "operator changed"
            for other in OTHER_SIGNS[token.text]:
                yield index, Change(kind, token.begin, token.end, other)
        elif token.kind == "sign" and token.text in SIDED:
            yield index, Change("operator changed", token.begin, token.end, SIDED[token.text])
        elif token.kind == "name" and token.text in WORDS:
            yield index, Change("flag turned", token.begin, token.end, WORDS[token.text])
        elif token.text == "!" and token.kind == "sign":
            yield index, Change("condition negated", token.begin, token.end, "")


def changed_constants(source):
    for index, token in enumerate(source.tokens):
        match = re.fullmatch(r"(0|[1-9][0-9']*)([uUlLzZ]*|\.0[fF]?)", token.text)
        if token.kind != "number" or not match or index in source.hashing:
            continue
        value = int(match[1].replace("'", ""))
        for other in (value + 1, value - 1):
            if other >= 0 and not (other > LARGEST_EXACT and match[2].startswith(".")):
                yield index, Change("constant off by one", token.begin, token.end, f"{other}{match[2]}")


def says_the_opposite_elsewhere(source, first, last):
    """Whether another change already negates the whole condition."""
    words = [source.word(at) for at in range(first, last + 1)]
    if "&&" in words or "||" in words:
        return False
    return words[0] == "!" or sum(word in COMPARISONS and source.is_between_blanks(source.tokens[at])
                                  for at, word in enumerate(words, first)) == 1


def conditions(source):
    """First and last token of each condition of an if, a while and a `?`."""
    for index in range(len(source.tokens)):
        word = source.word(index)
        if word in ("if", "while") and source.word(index + 1) == "(" and index + 1 in source.partners:
            first, last = index + 2, source.partners[index + 1] - 1
            for at in range(first, last + 1):  # if (const auto x = f(); x > 0)
                if source.word(at) == ";":
                    first = at + 1
            yield first, last
        elif word == "?":
            first = source.start_of_phrase(index)
            for at in range(first, index):
                if source.word(at) in ("return", "=", "?", ":", "co_return"):
                    first = at + 1
            yield first, index - 1


def negated_conditions(source):
    for first, last in conditions(source):
        declares = any(source.word(at) == "=" for at in range(first, last + 1))
        if first <= last and not declares and not says_the_opposite_elsewhere(source, first, last):
            yield first, Change("condition negated", source.tokens[first].begin, source.tokens[last].end,
                                f"!({source.slice(first, last)})")


def arguments_of(source, opened):
    """First and last token of each argument between two brackets."""
    closed, found, first, at = source.partners[opened], [], opened + 1, opened + 1
    while at < closed:
        if source.word(at) in OPENS and at in source.partners:
            at = source.partners[at]
        elif source.word(at) == ",":
            found.append((first, at - 1))
            first = at + 1
        at += 1
    return found + [(first, closed - 1)]


def swapped_arguments(source):
    for index, token in enumerate(source.tokens):
        is_call = token.kind == "sign" and token.text in ("(", "{") and index in source.partners and (
            source.tokens[index - 1].kind == "name" or source.word(index - 1) == ">")
        declares = token.text == "(" and index not in source.in_bodies
        if not is_call or declares or source.brace_kinds.get(index, "list") != "list" or (
                source.word(index - 1) in CONTROL):
            continue
        listed = arguments_of(source, index)
        for left, right in zip(listed, listed[1:]):
            if left[0] > left[1] or right[0] > right[1]:
                continue
            one, other = source.slice(*left), source.slice(*right)
            if one != other:
                between = source.text[source.tokens[left[1]].end:source.tokens[right[0]].begin]
                yield index, Change("arguments swapped", source.tokens[left[0]].begin,
                                    source.tokens[right[1]].end, other + between + one)


def dropped_statements(source):
    """Each simple statement of a body. A declaration that is needed does not compile without."""
    for opened in sorted(source.bodies):
        at, closed = opened + 1, source.partners.get(opened, opened)
        while at < closed:
            at, statement = next_statement(source, at, closed)
            if statement:
                first, last = statement
                yield first, Change("statement dropped", source.tokens[first].begin,
                                    source.tokens[last].end, ";")


def next_statement(source, at, closed):
    """Where to go on, and the simple statement that begins at a token if one does."""
    word = source.word(at)
    if word in ("else", "do", "try", ";", "}") or at in source.bodies:
        return (source.partners[at] + 1 if at in source.bodies else at + 1), None
    if word in CONTROL | {"catch"}:
        head = at + 1
        while source.word(head) != "(" and head < closed:
            head += 1
        return source.partners.get(head, head) + 1, None
    if word in ("case", "default"):
        while source.word(at) != ":" and at < closed:
            at += 1
        return at + 1, None
    end = at
    while end < closed and source.word(end) != ";":
        end = source.partners.get(end, end) + 1
    keeps = {"static_assert", "using", "typedef", "struct", "class", "enum"}
    return end + 1, None if word in keeps or end >= closed else (at, end)


def changes_of(text):
    """All changes of a text, in the order of their places."""
    source = Source(text)
    found = {}
    for operator in (changed_signs, changed_constants, negated_conditions, swapped_arguments,
                     dropped_statements):
        for index, change in operator(source):
            if index not in source.untouchable:
                found.setdefault(change.apply(text), change)
    return sorted(found.values(), key=lambda change: (change.begin, change.end, change.new))


@dataclass(frozen=True)
class Equivalent:
    """A change that alters nothing that anybody could see, with the reason."""
    file: str
    old: tuple
    new: tuple
    reason: str
    line: int
    places: int = 1

    def covers(self, file, text, change):
        return file == self.file and (self.old, self.new) == change.lines(text)

    def misfit(self, text, changes):
        """How the changes of its file that it fits are not as many as it says; None when they are."""
        count = sum(self.covers(self.file, text, change) for change in changes)
        if count == self.places:
            return None
        fits = {0: "no change", 1: "1 change"}.get(count, f"{count} changes")
        return f"fits {fits} of {self.file}" + (f", not {self.places}" if self.places > 1 else "")


def read_equivalents(text):
    """Blocks apart by blank lines: the file, its lines after `-`, the changed ones after `+`, why.

    A block that is meant for equal lines of its file says so after its name: `X.cpp, 2 places`.
    ValueError names the line of a block that lacks one of them.
    """
    found = []
    for match in re.finditer(r"(?:^[^\n]*\S[^\n]*(?:\n|\Z))+", text, re.MULTILINE):
        number = text.count("\n", 0, match.start()) + 1
        lines = [line.strip() for line in match.group().splitlines() if not line.startswith("#")]
        if not lines:
            continue
        old = tuple(line[1:].strip() for line in lines[1:] if line.startswith("-"))
        new = tuple(line[1:].strip() for line in lines[1:] if line.startswith("+"))
        reason = " ".join(line for line in lines[1:] if not line.startswith(("-", "+")))
        if not (old and new and reason) or lines[0].startswith(("-", "+")):
            raise ValueError(f"line {number}: a block is a file, lines with -, lines with +, a reason")
        file, places = re.fullmatch(r"(.*?)(?:, ([0-9]+) places)?", lines[0]).groups()
        found.append(Equivalent(file, old, new, reason, number, int(places or 1)))
    return found
