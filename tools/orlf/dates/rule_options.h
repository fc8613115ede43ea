/// Recurrence rules on the command line: an iCalendar text, or one option a field.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

class Options;

/// The options as they were typed. The text stands alone.
struct RuleArguments {
  std::optional<std::string> rule;
  std::string frequency;
  std::string interval = "1";
  std::vector<std::string> weekdays, monthDays, months, yearDays, weeks, setPositions;
  std::optional<std::string> anchor;
  bool absolute = false;
};

/// Adds --freq, --interval and the lists that a description tells. None goes together with the
/// option or argument `textName` that takes the iCalendar text.
void addRuleOptions(Options& options, RuleArguments& arguments, const std::string& textName);
/// Adds the other fields of a rule, which no description tells.
void addFurtherRuleOptions(Options& options, RuleArguments& arguments, const std::string& textName);

/// A weekday with an optional place before it: "MO", "2TU" (the second Tuesday), "-1FR" (the last
/// Friday); "day", "weekday" and "weekend" stand for any day, any working day and any day of the
/// weekend. Capitals do not matter. Null for other text.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFDateRecurrenceDayOfWeek> readWeekday(
    std::string_view text);

/// The rule of the text or of the options. `textName` is what messages call the text: "--rule".
/// Throws UsageFailure for a text that is no rule, for an unknown word, a number out of range and
/// where neither a text nor a frequency was given. Numbers of a text are not looked at.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFDateRecurrenceRule> readRule(
    const RuleArguments& arguments, const std::string& textName);

}  // namespace orlftool
