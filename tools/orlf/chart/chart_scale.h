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
/// `mostTicks` marks (3 or more). That axis knows no step below 0.2: ranges below 1 are scaled up
/// by a power of ten for it. Labels are short, "250K", or in full where short ones would read
/// alike, in the locale's manner with a true minus; "1e+20" where they would be too long. A range
/// without length is widened around its value. Both ends must be finite. Throws JobFailure where
/// they lie too far apart for an axis.
[[nodiscard]] NumberScale numberScale(double low, double high, int mostTicks,
                                      const std::string& locale);

/// A value in full, in the locale's manner with a true minus, with as many fraction digits as tell
/// a thousandth of a span apart, two at least where there are any: "1,234.57" in a span of 200.
/// "1e+20" where it would be too long.
[[nodiscard]] std::string valueText(double value, double span, const std::string& locale);
/// "Jan 5, 2030" in the locale's manner.
[[nodiscard]] std::string dayText(ORLFoundation::NSDate date,
                                  const ORLFoundation::NSCalendar& calendar,
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
