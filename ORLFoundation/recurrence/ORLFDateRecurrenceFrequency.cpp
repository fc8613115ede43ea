
#include <ORLFoundation/recurrence/ORLFDateRecurrenceFrequency.h>

#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>

namespace ORLFoundation {

using namespace internal::recurrence;

namespace {

const ORLFFrequencyFacts& factsOrStop(ORLFDateRecurrenceFrequency frequency) {
  if (const ORLFFrequencyFacts* const facts = factsOf(frequency)) return *facts;
  constexpr int kLine = 28;  // readers of crash reports know the place by this number
  ORLFFatalError("Fatal error", "ORLFoundation/DateRecurrenceRule", kLine);
}

}  // namespace

NSInteger countInYear(ORLFDateRecurrenceFrequency frequency) {
  return factsOrStop(frequency).countInYear;
}

std::string_view description(ORLFDateRecurrenceFrequency frequency) {
  return factsOrStop(frequency).description;
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
