#!/usr/bin/env python3
"""Reads and writes encrypted stores with its own means: hashlib's PBKDF2 and the program openssl.

    store_peer.py FOLDER

FOLDER/cases.json lists objects with "password", "content" and two file names: "ours" is read and has
to hold the content, "theirs" is written with it. Bytes in a content are {"data": BASE64}.
"""

import base64
import hashlib
import json
import os
import plistlib
import subprocess
import sys
from pathlib import Path


def aes(mode, key, vector, data):
    return subprocess.run(["openssl", "enc", mode, "-aes-128-cbc", "-K", key.hex(), "-iv", vector.hex()],
                          input=data, stdout=subprocess.PIPE, check=True).stdout


def key_of(password, salt):
    return hashlib.pbkdf2_hmac("sha1", password.encode(), salt, 1000, 16)


def decoded(value):
    if isinstance(value, dict):
        if set(value) == {"data"}:
            return base64.b64decode(value["data"])
        return {key: decoded(member) for key, member in value.items()}
    return [decoded(member) for member in value] if isinstance(value, list) else value


def read(path, password):
    outer = plistlib.loads(path.read_bytes(), fmt=plistlib.FMT_XML)
    sizes = {key: len(value) for key, value in outer.items()}
    assert set(sizes) == {"iv", "salt", "data"}, sizes
    assert (sizes["iv"], sizes["salt"], sizes["data"] % 16) == (16, 8, 0), sizes
    plain = aes("-d", key_of(password, outer["salt"]), outer["iv"], outer["data"])
    return plistlib.loads(plain, fmt=plistlib.FMT_XML)


def write(path, password, content):
    vector, salt = os.urandom(16), os.urandom(8)
    data = aes("-e", key_of(password, salt), vector, plistlib.dumps(content, fmt=plistlib.FMT_XML))
    path.write_bytes(plistlib.dumps({"iv": vector, "salt": salt, "data": data}, fmt=plistlib.FMT_XML))


def main():
    folder = Path(sys.argv[1])
    for case in json.loads((folder / "cases.json").read_text()):
        content = decoded(case["content"])
        found = read(folder / case["ours"], case["password"])
        assert found == content, f"{case['ours']}: {found} is not {content}"
        write(folder / case["theirs"], case["password"], content)


if __name__ == "__main__":
    main()
