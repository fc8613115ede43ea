#!/usr/bin/env python3
"""Python's csv module against `orlf csv`: csv_peer.py ORLF

What Python writes, orlf reads alike; what orlf's writer writes, Python reads alike. Values have no
line ends, and with commas as delimiters no comma beside a quotation mark or a tab: there the writer
wraps values in two layers. An empty field at the end of a row is dropped by orlf's reader, and a row
of one empty field is a blank line to Python.
"""

import csv
import io
import json
import random
import subprocess
import sys

PIECES = ["a", "bc", ",", ";", "\t", '"', '""', " ", "'", "é", "€", "日", "😀", "1,234.50", "\u00a0", "-"]


def value(choose, mode):
    text = "".join(choose.choice(PIECES) for _ in range(choose.randrange(6)))
    if mode == "comma" and "," in text and ('"' in text or "\t" in text):
        text = text.replace(",", "")
    return text


def as_read(rows):
    """Without the last field where it is empty, and without rows that then have none."""
    cut = [row[:-1] if row[-1] == "" else row for row in rows]
    return [row for row in cut if row]


def written_by_python(rows):
    text = io.StringIO()
    csv.writer(text, quoting=csv.QUOTE_ALL, lineterminator="\r\n").writerows(rows)
    return text.getvalue().encode()


def orlf(program, options, data):
    done = subprocess.run([program, "csv", "-", "--separator", "comma", *options], input=data,
                          capture_output=True)
    if done.returncode or done.stderr:
        raise SystemExit(f"orlf csv {options}: {done.returncode} {done.stderr.decode()}")
    return done.stdout.decode()


def check(name, got, expected):
    for number, (left, right) in enumerate(zip(got, expected)):
        if left != right:
            raise SystemExit(f"{name}, row {number}: {left!r} is not {right!r}")
    if len(got) != len(expected):
        raise SystemExit(f"{name}: {len(got)} rows, not {len(expected)}")


def main():
    program = sys.argv[1]
    choose = random.Random(8)
    for mode, delimiter in (("comma", ","), ("tab", "\t")):
        rows = [[value(choose, mode) for _ in range(choose.randrange(1, 6))] for _ in range(5000)]
        expected = as_read(rows)
        data = written_by_python(rows)
        check("JSON", json.loads(orlf(program, ["--json"], data)), expected)
        text = orlf(program, ["--delimiter", mode], data)
        again = list(csv.reader(io.StringIO(text, newline=""), delimiter=delimiter))
        check(mode, again, [[] if row == [""] else row for row in expected])
    print("2 x 5000 rows agree")


main()
