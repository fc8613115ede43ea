"""How the build tree compiles a source, for the scripts that compile it in another way."""

import json
import shlex
import sys
from pathlib import Path


def entries_of(build):
    """The entries of compile_commands.json."""
    return json.loads((Path(build) / "compile_commands.json").read_text())


def arguments_of(build, source):
    """The words that compile a source, and its object as the build names it."""
    source = str(Path(source).resolve())
    for entry in entries_of(build):
        if entry["file"] == source:
            words = shlex.split(entry["command"])
            return words, entry.get("output") or words[words.index("-o") + 1]
    sys.exit(f"{source} is not compiled in {build}")


def without_precompiled(words):
    """The command without a precompiled header, which only its own compiler can read."""
    kept, waiting = [], iter(words)
    for word in waiting:
        if word == "-Xclang":  # -Xclang -include-pch -Xclang FILE -Xclang -include -Xclang FILE
            option = next(waiting)
            if option not in ("-include-pch", "-include"):
                kept += [word, option]
            else:
                next(waiting), next(waiting)
        elif word == "-include":
            header = next(waiting)
            if not header.endswith("cmake_pch.hxx"):
                kept += [word, header]
        elif word != "-Winvalid-pch":
            kept.append(word)
    return kept


def plain_arguments(words):
    """The compiler with its macros and folders: no input, no output, no warning, no optimization."""
    kept, waiting = [], iter(without_precompiled(words))
    for word in waiting:
        if word in ("-o", "-c", "-MF", "-MT"):
            next(waiting)
        elif not word.startswith(("-W", "-O", "-g", "-M")) and Path(word).name != "ccache":
            kept.append(word)
    return kept
