/// What `orlf dates` was asked for, checked: every word understood, every number in its range.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dates/rule_options.h"

namespace orlftool {

/// The options as they were typed.
struct DatesArguments : RuleArguments {
  std::string start;
  std::optional<std::string> from, to, reference, until;
  bool inclusive = false;
  std::optional<std::string> count;
  bool backwards = false;
  bool exact = false;
  bool older = false;
};

/// The last date that counts, or the first that does not.
struct DateBound {
  ORLFoundation::NSDate date;
  bool inclusive = false;
};

struct DatesRequest {
  std::shared_ptr<ORLFoundation::ORLFDateRecurrenceRule> rule;
  std::shared_ptr<ORLFoundation::NSCalendar> calendar;
  ORLFoundation::NSDate start;
  std::optional<ORLFoundation::NSDate> from, to, reference;
  bool inclusive = false;  // of --to
  std::optional<DateBound> until;
  /// The end in time that the rule's own text sets, whichever way the walk goes.
  std::optional<DateBound> ruleEnd;
  /// The most dates to print; nil where another bound ends the walk.
  std::optional<std::int64_t> count;
  bool backwards = false;
  bool exact = false;
  bool older = false;
  /// Leaves out a date that the one before it equals; the older walk may give some twice.
  bool eachOnce = false;
  /// Gives the first instant of each date's day.
  bool wholeDays = false;
  /// Keys of the rule's text that the dates do not heed.
  std::vector<std::string> passedOver;

  [[nodiscard]] bool asksForRange() const { return from.has_value(); }
};

/// Throws UsageFailure for an unknown word, a number out of range and options that do not go
/// together.
[[nodiscard]] DatesRequest readDatesRequest(const DatesArguments& arguments,
                                            std::shared_ptr<ORLFoundation::NSCalendar> calendar);

}  // namespace orlftool
