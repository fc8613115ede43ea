#!/usr/bin/env python3
"""Reads archives that the library wrote, with another reader of property lists.

    read_archives.py WRITER

WRITER fills a folder with archives and the values that they hold. Each archive is read with
plistlib, its table of objects is checked, and its root is compared with the value.
"""

import json
import plistlib
import subprocess
import sys
import tempfile
from datetime import datetime, timedelta, timezone
from decimal import Context, Decimal
from pathlib import Path

REFERENCE = datetime(2001, 1, 1, tzinfo=timezone.utc)
DISTANT_FUTURE = 63113904000
DECIMAL_CHAIN = ["NSDecimalNumberPlaceholder", "NSDecimalNumber", "NSNumber", "NSValue", "NSObject"]
RULE_LISTS = ["daysOfTheWeek", "daysOfTheMonth", "monthsOfTheYear", "weeksOfTheYear",
              "daysOfTheYear", "setPositions"]
SEGMENT_FIELDS = ["startDate", "currentPrincipal", "contribution", "contributionFrequncy",
                  "anualCompoundingRate", "compoundingFrequncy", "anualInflationRate"]


def with_references(value):
    """XML has dictionaries of one entry for references, which plistlib leaves as they are."""
    if isinstance(value, list):
        return [with_references(member) for member in value]
    if not isinstance(value, dict):
        return value
    if list(value) == ["CF$UID"]:
        return plistlib.UID(value["CF$UID"])
    return {key: with_references(member) for key, member in value.items()}


class Archive:
    def __init__(self, bytes):
        root = with_references(plistlib.loads(bytes))
        assert list(sorted(root)) == ["$archiver", "$objects", "$top", "$version"], root.keys()
        assert root["$archiver"] == "NSKeyedArchiver" and root["$version"] == 100000
        assert root["$top"] == {"root": plistlib.UID(1)}, root["$top"]
        self.objects = root["$objects"]
        assert self.objects[0] == "$null"
        self.check_table()

    def check_table(self):
        """Every reference leads somewhere, and each class is described once."""
        names = []
        for entry in self.objects[1:]:
            assert entry != "$null"
            if isinstance(entry, dict) and "$classname" in entry:
                assert entry["$classes"][0] == entry["$classname"]
                assert entry["$classes"][-1] == "NSObject"
                names.append(entry["$classname"])
            elif isinstance(entry, dict):
                assert "$classname" in self.objects[entry["$class"].data]
                for value in entry.values():
                    for reference in value if isinstance(value, list) else [value]:
                        if isinstance(reference, plistlib.UID):
                            assert reference.data < len(self.objects)
        assert len(names) == len(set(names)), names

    def root(self):
        return self.value(plistlib.UID(1))

    def value(self, reference):
        entry = self.objects[reference.data]
        if reference.data == 0:
            return None
        if isinstance(entry, bytes):
            return as_data(entry)
        if not isinstance(entry, dict):
            return entry
        described = self.objects[entry["$class"].data]
        return READERS[described["$classname"]](self, entry, described)

    def field(self, entry, key):
        return self.value(entry[key]) if key in entry else None

    def values(self, entry, key):
        return [self.value(reference) for reference in entry[key]]


def as_data(bytes):
    import base64
    return {"base64": base64.b64encode(bytes).decode()}


def read_date(_, entry, __):
    if entry["NS.time"] == DISTANT_FUTURE:
        return "distantFuture"
    return (REFERENCE + timedelta(seconds=entry["NS.time"])).strftime("%Y-%m-%dT%H:%M:%SZ")


def read_decimal(_, entry, described):
    assert described["$classes"] == DECIMAL_CHAIN, described
    assert entry["NS.mantissa.bo"] == 1 and len(entry["NS.mantissa"]) == 16
    used = 2 * entry["NS.length"]
    assert not any(entry["NS.mantissa"][used:]), "unused words are zero"
    mantissa = int.from_bytes(entry["NS.mantissa"][:used], "little")
    if mantissa == 0:
        return "NaN" if entry["NS.negative"] else "0"
    assert entry["NS.compact"] and mantissa % 10 != 0
    value = Decimal(-mantissa if entry["NS.negative"] else mantissa)
    return format(value.scaleb(entry["NS.exponent"], Context(prec=60)), "f")


def read_period(_, entry, __):
    return {"frequency": entry["frequency"], "interval": entry["interval"]}


def pair(period):
    return period and [period["frequency"], period["interval"]]


def read_rule(archive, entry, _):
    rule = {key: entry[key] for key in ("frequency", "interval", "anchorIndex", "absolute")}
    assert type(entry["absolute"]) is bool
    for key in RULE_LISTS:
        rule[key] = archive.field(entry, key)
    if rule["daysOfTheWeek"] is not None:
        rule["daysOfTheWeek"] = [[day["dayOfTheWeek"], day["weekNumber"]]
                                 for day in rule["daysOfTheWeek"]]
    return rule


def read_fields(_, entry, __):
    return {key: value for key, value in entry.items() if key != "$class"}


def read_segment(archive, entry, _):
    segment = {key: archive.field(entry, key) for key in SEGMENT_FIELDS}
    for key in ("contributionFrequncy", "compoundingFrequncy"):
        segment[key] = pair(segment[key])
    if "amortizationPlan" in entry:
        assert entry["amortizationPlan"] == plistlib.UID(1), "the plan is the root"
    return segment


def read_dictionary(archive, entry, _):
    return dict(zip(archive.values(entry, "NS.keys"), archive.values(entry, "NS.objects")))


READERS = {
    "NSArray": lambda archive, entry, _: archive.values(entry, "NS.objects"),
    "NSSet": lambda archive, entry, _: {"set": sorted(archive.values(entry, "NS.objects"))},
    "NSDictionary": read_dictionary,
    "NSDate": read_date,
    "NSNull": lambda *_: None,
    "NSDecimalNumberPlaceholder": read_decimal,
    "NSURL": lambda archive, entry, _: archive.field(entry, "NS.relative"),
    "NSUUID": lambda _, entry, __: "-".join(
        entry["NS.uuidbytes"].hex().upper()[begin:end]
        for begin, end in ((0, 8), (8, 12), (12, 16), (16, 20), (20, 32))),
    "ORLFDateRecurrencePeriod": read_period,
    "ORLFDateRecurrenceDayOfWeek": read_fields,
    "ORLFDateRecurrenceEnd": lambda archive, entry, _: {
        "endDate": archive.field(entry, "endDate"), "occurrenceCount": entry["occurrenceCount"]},
    "ORLFDateRecurrenceRule": read_rule,
    "ORLFDecimalNumberHandler": read_fields,
    "ORLFMutableDecimalNumberHandler": read_fields,
    "ORLFAmortizationPlanSegment": read_segment,
    "ORLFAmortizationPlan": lambda archive, entry, _: {
        "endDate": archive.field(entry, "endDate"), "segments": archive.field(entry, "segments")},
    "ORLFSerializableObject": lambda archive, entry, _: archive.field(entry, "data"),
}


def main(writer):
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        subprocess.run([writer, folder], check=True)
        files = sorted(Path(folder).glob("*.json"))
        for file in files:
            expected = json.loads(file.read_text())
            for form in (".archive", ".xml"):
                actual = Archive(file.with_suffix(form).read_bytes()).root()
                if json.dumps(actual, sort_keys=True) != json.dumps(expected, sort_keys=True):
                    failed += 1
                    print(f"{file.stem}{form}: expected {expected}, got {actual}")
    print(f"{2 * len(files)} archives read, {failed} failed")
    return 1 if failed or not files else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
