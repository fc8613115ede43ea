/// Where the marks of a chart's axes stand: round numbers, and dates on which a year, a month or a
/// day begins.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <string>
#include <vector>

namespace orlftool {

struct NumberTick {
  double value = 0;
  std::string label;
};

/// Marks at multiples of 1, 2 or 5 times a power of ten, at most `mostTicks` of them, from at or
/// below `low` to at or above `high`; labels carry the locale's separators. A range without length
/// is widened around its value. Both ends must be finite.
[[nodiscard]] std::vector<NumberTick> numberTicks(double low, double high, int mostTicks,
                                                  const std::string& locale);

struct DateTick {
  ORLFoundation::NSDate date;
  std::string label;
};

/// Marks between two dates, ends included: January 1st of round years, first days of months, or
/// days, whichever is the finest that gives at most `mostTicks`. Labels are "2030", "Jan 2030" and
/// "Jan 5, 2030" in the locale's manner.
[[nodiscard]] std::vector<DateTick> dateTicks(ORLFoundation::NSDate from, ORLFoundation::NSDate to,
                                              int mostTicks,
                                              const ORLFoundation::NSCalendar& calendar,
                                              const std::string& locale);

}  // namespace orlftool
