/// Recurrence rules on the command line: an iCalendar text, or one option a field.
#pragma once

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace orlftool {

/// The options as they were typed. The text stands alone.
struct RuleArguments {
  std::optional<std::string> rule;
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
};

/// Adds --freq, --interval and the lists that a description tells. None goes together with `text`,
/// the option or argument that takes the iCalendar text.
void addRuleOptions(CLI::App& parser, RuleArguments& arguments, CLI::Option& text);
/// Adds the other fields of a rule, which no description tells.
void addFurtherRuleOptions(CLI::App& parser, RuleArguments& arguments, CLI::Option& text);

/// A weekday with an optional place before it: "MO", "2TU" (the second Tuesday), "-1FR" (the last
/// Friday); "day", "weekday" and "weekend" stand for any day, any working day and any day of the
/// weekend. Capitals do not matter. Null for other text.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFDateRecurrenceDayOfWeek> readWeekday(
    std::string_view text);

/// The rule of the text or of the options. `textName` is what messages call the text: "--rule".
/// Throws UsageFailure for a text that is no rule, for an unknown word, a number out of range and
/// where neither a text nor a frequency was given. Numbers of a text are not looked at.
[[nodiscard]] std::shared_ptr<ORLFoundation::ORLFDateRecurrenceRule> readRule(
    const RuleArguments& arguments, std::string_view textName);
/// Throws UsageFailure for numbers of a text's rule that the options do not take either: month 13,
/// a negative interval.
void checkNumbersOfText(const ORLFoundation::ORLFDateRecurrenceRule& rule,
                        std::string_view textName);

}  // namespace orlftool
