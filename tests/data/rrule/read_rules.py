#!/usr/bin/env python3
"""What a rule text holds, read independently of the library: writes rules_read.tsv beside this file.

Columns: the text, and "nil" or its fields: frequency code, interval, and the lists of weekdays
(day/number), days of the month, months, weeks and days of the year, in the order of the text.
"""
import pathlib
import re

HERE = pathlib.Path(__file__).parent
FREQUENCIES = {"DAILY": 16, "WEEKLY": 8192, "MONTHLY": 8, "YEARLY": 4}
WEEKDAYS = ["SU", "MO", "TU", "WE", "TH", "FR", "SA"]
LISTS = ["BYMONTHDAY", "BYMONTH", "BYWEEKNO", "BYYEARDAY"]


def integer(text):
    found = re.match(r"\s*([+-]?[0-9]+)", text)
    return int(found.group(1)) if found else 0


def read(text):
    before, mark, parts = text.partition("RRULE:")
    if not mark:
        return "nil"
    frequency, interval, days = 4, 1, []
    lists = {key: [] for key in LISTS}
    for part in parts.split(";"):
        if part.count("=") != 1:
            return "nil"
        key, value = part.split("=")
        if key == "FREQ":
            if value not in FREQUENCIES:
                return "nil"
            frequency = FREQUENCIES[value]
        elif key == "INTERVAL":
            interval = integer(value)
            if interval == 0:
                return "nil"
        elif key == "BYDAY":
            for item in value.split(","):
                number = integer(item[:-2])
                if item[-2:] not in WEEKDAYS or (item[:-2] and number == 0):
                    return "nil"
                days.append(f"{WEEKDAYS.index(item[-2:]) + 1}/{number}")
        elif key in lists:
            numbers = [integer(item) for item in value.split(",")]
            if 0 in numbers:
                return "nil"
            lists[key] += map(str, numbers)
    named = [("days", days)] + [(key.lower(), lists[key]) for key in LISTS]
    texts = [f"{name}={','.join(values)}" for name, values in named if values]
    return " ".join([str(frequency), str(interval)] + texts)


if __name__ == "__main__":
    rows = (HERE / "rrule_dev.tsv").read_text().splitlines()[1:]
    rules = [row.split("\t")[0] for row in rows]
    lines = ["rule\tread"] + [f"{rule}\t{read(rule)}" for rule in rules]
    (HERE / "rules_read.tsv").write_text("\n".join(lines) + "\n")
