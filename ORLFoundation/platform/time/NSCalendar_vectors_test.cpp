
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/time/NSDateComponents_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>

#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <string>

namespace {

using namespace ORLFoundation;
using orlftest::disagreement;
using orlftest::TsvRow;

NSDate dateIn(const TsvRow& row, const char* column) {
  return orlftest::dateFromVector(row.text(column)).value();
}

NSCalendarUnit unitIn(const TsvRow& row, const char* column = "unit") {
  return static_cast<NSCalendarUnit>(row.unsignedInteger(column));
}

std::string disagreementOnRange(const TsvRow& row, NSRange range, const std::string& prefix) {
  const std::string location =
      disagreement(row.unsignedInteger(prefix + "location"), range.location);
  return location + disagreement(row.unsignedInteger(prefix + "length"), range.length);
}

TEST(NSCalendarVectors, Components) {
  constexpr NSUInteger kEveryUnit = 0xffff & ~NSUInteger{NSCalendarUnitWeek};
  orlftest::runTsvVectors("calendars_components", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto expected = orlftest::componentsFromVector(row.text("components"));
    return disagreement(expected, calendar->components(kEveryUnit, dateIn(row, "date")));
  });
}

TEST(NSCalendarVectors, Offset) {
  orlftest::runTsvVectors("calendars_offset", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    return disagreement(row.integer("seconds_from_gmt"),
                        calendar->timeZone()->secondsFromGMTForDate(dateIn(row, "date")));
  });
}

TEST(NSCalendarVectors, Date) {
  orlftest::runTsvVectors("calendars_date", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto components = orlftest::componentsFromVector(row.text("components"));
    const std::string date = disagreement(orlftest::dateFromVector(row["date"]),
                                          calendar->dateFromComponents(components));
    if (!date.empty()) return date;
    return disagreement(row.boolean("valid"), components.isValidDateInCalendar(*calendar));
  });
}

TEST(NSCalendarVectors, AddUnit) {
  orlftest::runTsvVectors("calendars_add_unit", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    return disagreement(
        orlftest::dateFromVector(row["result"]),
        calendar->dateByAddingUnit(unitIn(row), row.integer("value"), dateIn(row, "date"), 0));
  });
}

TEST(NSCalendarVectors, AddComponents) {
  orlftest::runTsvVectors("calendars_add_components", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto components = orlftest::componentsFromVector(row.text("components"));
    return disagreement(orlftest::dateFromVector(row["result"]),
                        calendar->dateByAddingComponents(components, dateIn(row, "date"), 0));
  });
}

TEST(NSCalendarVectors, Difference) {
  orlftest::runTsvVectors("calendars_difference", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto expected = orlftest::componentsFromVector(row.text("components"));
    return disagreement(expected, calendar->components(row.unsignedInteger("units"),
                                                       dateIn(row, "from"), dateIn(row, "to"), 0));
  });
}

TEST(NSCalendarVectors, UnitRange) {
  orlftest::runTsvVectors("calendars_unit_range", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    NSDate start;
    NSTimeInterval seconds = 0;
    const bool found = calendar->rangeOfUnit(unitIn(row), &start, &seconds, dateIn(row, "date"));
    if (!found) return std::string("expected a range, got none");
    return disagreement(orlftest::dateFromVector(row["start"]), start) +
           disagreement(row.real("seconds"), seconds);
  });
}

TEST(NSCalendarVectors, RangeIn) {
  orlftest::runTsvVectors("calendars_range_in", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    return disagreementOnRange(
        row, calendar->rangeOfUnit(unitIn(row), unitIn(row, "in_unit"), dateIn(row, "date")), "");
  });
}

TEST(NSCalendarVectors, MaximumRange) {
  const auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  orlftest::runTsvVectors("calendars_maximum_range", [&](const TsvRow& row) {
    return disagreementOnRange(row, calendar->maximumRangeOfUnit(unitIn(row)), "maximum_") +
           disagreementOnRange(row, calendar->minimumRangeOfUnit(unitIn(row)), "minimum_");
  });
}

TEST(NSCalendarVectors, Matches) {
  orlftest::runTsvVectors("calendars_matches", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto components = orlftest::componentsFromVector(row.text("components"));
    return disagreement(row.boolean("matches"), calendar->date(dateIn(row, "date"), components));
  });
}

TEST(NSCalendarVectors, Previous) {
  orlftest::runTsvVectors("calendars_previous", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    const auto components = orlftest::componentsFromVector(row.text("components"));
    constexpr NSUInteger kOptions = NSCalendarMatchStrictly | NSCalendarSearchBackwards;
    return disagreement(orlftest::dateFromVector(row["result"]),
                        calendar->nextDateAfterDate(dateIn(row, "date"), components, kOptions));
  });
}

TEST(NSCalendarVectors, SetDay) {
  orlftest::runTsvVectors("calendars_set_day", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    return disagreement(orlftest::dateFromVector(row["result"]),
                        calendar->dateBySettingUnit(NSCalendarUnitDay, row.integer("day"),
                                                    dateIn(row, "date"), NSCalendarMatchNextTime));
  });
}

TEST(NSCalendarVectors, Weekend) {
  orlftest::runTsvVectors("calendars_weekend", [](const TsvRow& row) {
    const auto calendar = orlftest::calendarFromVector(row);
    return disagreement(row.boolean("weekend"), calendar->isDateInWeekend(dateIn(row, "date")));
  });
}

}  // namespace
