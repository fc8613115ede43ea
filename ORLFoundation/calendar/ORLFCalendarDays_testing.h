/// What the tests of this folder share: days in short, units by their codes.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <tests/support/VectorFile.h>

#include <optional>
#include <string>

namespace orlftest {

/// The first instant of a day in UTC, from "2024-02-29".
inline ORLFoundation::NSDate day(const char* date) {
  return *dateFromVector(std::string(date) + "T00:00:00Z");
}
/// The day of a date in UTC, as `day` reads it.
inline std::string text(std::optional<ORLFoundation::NSDate> date) {
  return vectorFromDate(date).substr(0, 10);
}

inline ORLFoundation::NSCalendarUnit unitOf(const Json& code) {
  return static_cast<ORLFoundation::NSCalendarUnit>(code.get<ORLFoundation::NSUInteger>());
}

}  // namespace orlftest
