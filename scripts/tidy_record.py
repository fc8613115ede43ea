"""The record of the sources that clang-tidy passed, and what is left for it to read.

A line of the record holds two hashes and a source. The first hash is that of the source, of the
headers of ours that it includes, directly or not, and of the configuration. The second leaves out
all headers but the source's own, so that a change of a header that many include does not have all
of them read again at once.
"""

import hashlib
import re
from pathlib import Path

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^>"]+)[>"]', re.MULTILINE)
PROOFS = re.compile(r"_(test|benchmark|fuzz)\.cpp$")
HEAD = """\
# Sources that passed: a hash of what clang-tidy saw, one of the source and its header, the source.
# Written by make check-all.
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

    def own_files_of(self, source):
        """The source and the header of its class: that of A_more.cpp is A.h."""
        place = Path(source)
        header = place.with_name(place.stem.partition("_")[0] + ".h")
        return [source] + [header.as_posix()] * (self.root / header).is_file()

    def hash_of(self, names):
        digest = hashlib.sha256(self.configuration.encode())
        for name in names:
            digest.update(f"\0{name}\0{self.text(name)}".encode())
        return digest.hexdigest()[:16]

    def of(self, source):
        """What clang-tidy sees, and of that the source's own."""
        return self.hash_of(self.files_of(source)), self.hash_of(self.own_files_of(source))


def read_record(text):
    """Source to hashes."""
    rows = (line.split() for line in text.splitlines() if line and not line.startswith("#"))
    return {source: (seen, own) for seen, own, source in rows}


def record_text(hashes):
    return HEAD + "".join(f"{seen} {own} {source}\n" for source, (seen, own) in sorted(hashes.items()))


def changed(hashes, record):
    """The sources that are new or have changed themselves."""
    return [source for source, (_, own) in sorted(hashes.items())
            if source not in record or record[source][1] != own]


def record_with(hashes, record, passed):
    """The record of what stands in it and has not changed itself, with what has passed since."""
    found = {source: record[source] for source in set(hashes) - set(changed(hashes, record))}
    return {**found, **{source: both for source, both in hashes.items() if source in passed}}


def tenth(sources, commit):
    """A tenth of the sources, at least one of any, by the commit: other ones after each."""
    ordered = sorted(sources, key=lambda source: hashlib.sha256(f"{commit} {source}".encode()).digest())
    return sorted(ordered[:-(-len(ordered) // 10)])
