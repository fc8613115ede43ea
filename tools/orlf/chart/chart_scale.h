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

struct NumberScale {
  double low = 0, high = 0;  // its ends, where the first and the last mark stand
  std::vector<NumberTick> ticks;
};

/// The axis of `ORLFMathematicalAxis` from at or below `low` to at or above `high`, with at most
/// `mostTicks` marks (3 or more). Labels are short, "250K", or in full where short ones would read
/// alike, in the locale's manner; "1e+20" where they would be too long. A range without length is
/// widened around its value. Both ends must be finite. Throws JobFailure where they lie too far
/// apart for an axis.
[[nodiscard]] NumberScale numberScale(double low, double high, int mostTicks,
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
