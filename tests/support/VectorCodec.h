/// Dates, calendars and components in the forms that vector files write them, both ways. What
/// cannot be read throws, which fails the row. Tests that use the calendar forms link the time
/// folder.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <tests/support/VectorFile.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlftest {

/// "2024-01-31T14:30:00Z", with a fraction "2024-01-31T14:30:00.500Z", "@n" for n seconds since
/// the reference date, "distantFuture", "distantPast"; nil for null or an absent text.
[[nodiscard]] std::optional<ORLFoundation::NSDate> dateFromVector(const std::string& text);
[[nodiscard]] std::optional<ORLFoundation::NSDate> dateFromVector(const char* text);
[[nodiscard]] std::optional<ORLFoundation::NSDate> dateFromVector(
    const std::optional<std::string>& text);
[[nodiscard]] std::optional<ORLFoundation::NSDate> dateFromVector(const Json& value);

/// The plain form for whole milliseconds of the years 1 to 9999, "distantFuture" and
/// "distantPast" for these dates, else "@n"; "nil" for nil.
[[nodiscard]] std::string vectorFromDate(std::optional<ORLFoundation::NSDate> date);

/// A list of dates, none of them nil.
[[nodiscard]] std::vector<ORLFoundation::NSDate> datesFromVector(const Json& list);

/// A Gregorian calendar from `zone`, `first_weekday`, `min_days` and, where given, `locale`.
[[nodiscard]] std::shared_ptr<ORLFoundation::NSCalendar> calendarFromVector(const Json& value);
[[nodiscard]] std::shared_ptr<ORLFoundation::NSCalendar> calendarFromVector(const TsvRow& row);

/// "year=2024 month=1 day=31", or the same as a JSON object; fields not named stay unset.
[[nodiscard]] ORLFoundation::NSDateComponents componentsFromVector(const std::string& text);
[[nodiscard]] ORLFoundation::NSDateComponents componentsFromVector(const char* text);
[[nodiscard]] ORLFoundation::NSDateComponents componentsFromVector(const Json& object);
/// The set fields, from era to yearForWeekOfYear, in the order in which the files write them.
[[nodiscard]] std::string vectorFromComponents(const ORLFoundation::NSDateComponents& components);

/// "" when equal to the last bit, else "expected X, got Y".
[[nodiscard]] std::string disagreement(std::optional<ORLFoundation::NSDate> expected,
                                       std::optional<ORLFoundation::NSDate> actual);
[[nodiscard]] std::string disagreement(const ORLFoundation::NSDateComponents& expected,
                                       const ORLFoundation::NSDateComponents& actual);
[[nodiscard]] std::string disagreement(const std::vector<ORLFoundation::NSDate>& expected,
                                       const std::vector<ORLFoundation::NSDate>& actual);

}  // namespace orlftest
