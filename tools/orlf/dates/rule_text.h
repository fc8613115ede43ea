/// An iCalendar rule as it is typed: what its text says beside what becomes of it in the library's
/// rule, which has no end and no place for some keys.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct RuleText {
  /// From "RRULE:" to the end of its line.
  std::string line;
  std::optional<std::int64_t> count;
  /// As it was typed: "20241231" or "20241231T235959Z".
  std::optional<std::string> until;
  /// What dates do not heed: keys such as "WKST", each once, in their order.
  std::vector<std::string> passedOver;
};

/// Looks at the parts of a text that the library takes for a rule. `name` is what messages call the
/// text: "--rule". Throws UsageFailure for numbers that the options do not take either, such as
/// month 13, a negative interval and "15x", and for a second COUNT or UNTIL.
[[nodiscard]] RuleText readRuleText(const std::string& text, const std::string& name);
/// The keys of a rule's text that its sentence tells nothing of, such as COUNT, each once, in their
/// order.
[[nodiscard]] std::vector<std::string> keysWithoutWords(const std::string& text);
/// The line of the rule alone: further lines, which would spoil its last value, are cut off.
[[nodiscard]] std::string ruleLine(const std::string& text);

}  // namespace orlftool
