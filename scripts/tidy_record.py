"""The record of the sources that clang-tidy passed, and what is left for it to read.

A line of the record holds a hash and a source. The hash is that of the source, of the headers of
ours that it includes, directly or not, and of the configuration.
"""

import hashlib
import re
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
PROOFS = re.compile(r"_(test|benchmark|fuzz)\.cpp$")
HEAD = """\
# Sources that passed: a hash of what clang-tidy saw, the source. Written by make check-all.
"""


def sources_of(root):
    """The sources of the library and the tool, without tests, as paths below the root."""
    return sorted(file.relative_to(root).as_posix() for folder in ("ORLFoundation", "tools")
                  for file in (root / folder).rglob("*.cpp") if not PROOFS.search(file.name))


class Hashes:
    """Hashes of sources below a root; `folders` are searched for included headers."""

    def __init__(self, root, folders, configuration):
        self.root = root
        self.folders = folders
        self.configuration = configuration
        self.texts = {}

    def text(self, name):
        if name not in self.texts:
            self.texts[name] = (self.root / name).read_text()
        return self.texts[name]

    def headers_of(self, name):
        for include in INCLUDE.findall(self.text(name)):
            for folder in self.folders:
                file = self.root / folder / include
                if file.is_file():
                    yield file.relative_to(self.root).as_posix()
                    break

    def files_of(self, source):
        seen, waiting = set(), [source]
        while waiting:
            name = waiting.pop()
            if name not in seen:
                seen.add(name)
                waiting += self.headers_of(name)
        return sorted(seen)

    def of(self, source):
        """The hash of what clang-tidy sees."""
        digest = hashlib.sha256(self.configuration.encode())
        for name in self.files_of(source):
            digest.update(f"\0{name}\0{self.text(name)}".encode())
        return digest.hexdigest()[:16]


def read_record(text):
    """Source to hash."""
    rows = (line.split() for line in text.splitlines() if line and not line.startswith("#"))
    return {source: seen for seen, source in rows}


def record_text(hashes):
    return HEAD + "".join(f"{seen} {source}\n" for source, seen in sorted(hashes.items()))


def changed(hashes, record):
    """The sources that are new, or have changed with what they include."""
    return [source for source, seen in sorted(hashes.items()) if record.get(source) != seen]


def record_with(hashes, record, passed):
    """The record of what stands in it unchanged, with what has passed since."""
    unread = set(changed(hashes, record)) - set(passed)
    return {source: seen for source, seen in hashes.items() if source not in unread}


def tenth(sources, commit):
    """A tenth of the sources, at least one of any, by the commit: other ones after each."""
    ordered = sorted(sources, key=lambda source: hashlib.sha256(f"{commit} {source}".encode()).digest())
    return sorted(ordered[:-(-len(ordered) // 10)])
