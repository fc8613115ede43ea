
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>
#include <ORLFoundation/recurrence/internal/ORLFOlderWalk.h>

namespace ORLFoundation {

std::optional<ORLFDateRecurrenceRule::WorkingSet>
ORLFDateRecurrenceRule::matchingDateComponentsOld() const {
  return internal::olderPatterns(*this);
}

ORLFDateRecurrenceRule::WorkingSet ORLFDateRecurrenceRule::makeDateComponentsCopyOld(
    const WorkingSet& dateComponents) const {
  return internal::olderCopy(dateComponents);
}

void ORLFDateRecurrenceRule::enumerateDatesForCalendarRefernceDate(
    const EnumerateDatesRefernceDate& arguments) const {
  internal::ORLFOlderWalk(*this, arguments).run();
}

}  // namespace ORLFoundation
