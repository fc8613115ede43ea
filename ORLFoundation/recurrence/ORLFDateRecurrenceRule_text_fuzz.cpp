// Reads any text as a recurrence line and describes what came of it.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using ORLFoundation::ORLFDateRecurrenceRule;
  const auto rule = ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(
      {reinterpret_cast<const char*>(data), size});
  if (!rule) return 0;
  if (rule->interval() == 0) std::abort();
  const auto& months = rule->monthsOfTheYear();
  const bool named = !months || std::all_of(months->begin(), months->end(),
                                            [](auto month) { return month >= 1 && month <= 12; });
  if (named && rule->humanReadableDescription().empty()) std::abort();
  return 0;
}
