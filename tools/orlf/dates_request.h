/// What `orlf dates` was asked for, checked: every word understood, every number in its range.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// The options as they were typed.
struct DatesArguments {
  std::string frequency;
  std::int64_t interval = 1;
  std::vector<std::string> weekdays;
  std::vector<std::int64_t> monthDays;
  std::vector<std::int64_t> months;
  std::vector<std::int64_t> yearDays;
  std::vector<std::int64_t> weeks;
  std::vector<std::int64_t> setPositions;
  std::int64_t anchor = 0;
  bool absolute = false;
  std::string start;
  std::optional<std::string> from, to, reference, until;
  bool inclusive = false;
  std::optional<std::int64_t> count;
  bool backwards = false;
  bool exact = false;
  bool older = false;
};

struct DatesRequest {
  std::shared_ptr<ORLFoundation::ORLFDateRecurrenceRule> rule;
  std::shared_ptr<ORLFoundation::NSCalendar> calendar;
  ORLFoundation::NSDate start;
  std::optional<ORLFoundation::NSDate> from, to, reference, until;
  bool inclusive = false;
  /// The most dates to print; nil where another bound ends the walk.
  std::optional<std::int64_t> count;
  bool backwards = false;
  bool exact = false;
  bool older = false;

  [[nodiscard]] bool asksForRange() const { return from.has_value(); }
};

/// A weekday with an optional place before it: "MO", "2TU" (the second Tuesday), "-1FR" (the last
/// Friday); "day", "weekday" and "weekend" stand for any day, any working day and any day of the
/// weekend. Capitals do not matter. Null for other text.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFDateRecurrenceDayOfWeek> readWeekday(
    std::string_view text);

/// Throws UsageFailure for an unknown word, a number out of range and options that do not go
/// together.
[[nodiscard]] DatesRequest readDatesRequest(const DatesArguments& arguments,
                                            std::shared_ptr<ORLFoundation::NSCalendar> calendar);

}  // namespace orlftool
