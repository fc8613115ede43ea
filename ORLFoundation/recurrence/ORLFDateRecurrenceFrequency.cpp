
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <ORLFoundation/platform/log/ORLFFatalError.h>

namespace ORLFoundation {
namespace {

struct FrequencyWords {
  ORLFDateRecurrenceFrequency frequency;
  NSInteger countInYear;
  std::string_view description;
};

constexpr FrequencyWords kFrequencies[] = {
    {ORLFDateRecurrenceFrequencyYearly, 1, "yearly"},
    {ORLFDateRecurrenceFrequencyMonthly, 12, "monthly"},
    {ORLFDateRecurrenceFrequencyDaily, 365, "daily"},
    {ORLFDateRecurrenceFrequencyQuarterly, 4, "quarterly"},
    {ORLFDateRecurrenceFrequencyWeekly, 52, "weekly"},
};

const FrequencyWords& wordsOf(ORLFDateRecurrenceFrequency frequency) {
  for (const FrequencyWords& words : kFrequencies)
    if (words.frequency == frequency) return words;
  constexpr int kLine = 28;  // readers of crash reports know the place by this number
  ORLFFatalError("Fatal error", "ORLFoundation/DateRecurrenceRule", kLine);
}

}  // namespace

NSInteger countInYear(ORLFDateRecurrenceFrequency frequency) {
  return wordsOf(frequency).countInYear;
}

std::string_view description(ORLFDateRecurrenceFrequency frequency) {
  return wordsOf(frequency).description;
}

bool operator<(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right) {
  return countInYear(right) < countInYear(left);
}
bool operator<=(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right) {
  return !(right < left);
}
bool operator>(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right) {
  return right < left;
}
bool operator>=(ORLFDateRecurrenceFrequency left, ORLFDateRecurrenceFrequency right) {
  return !(left < right);
}

}  // namespace ORLFoundation
