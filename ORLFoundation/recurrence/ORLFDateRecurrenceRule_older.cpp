
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/recurrence/internal/ORLFOlderPatterns.h>
#include <ORLFoundation/recurrence/internal/ORLFOlderWalk.h>

namespace ORLFoundation {

using namespace internal::recurrence;

std::optional<ORLFDateRecurrenceRule::WorkingSet>
ORLFDateRecurrenceRule::matchingDateComponentsOld() const {
  return olderPatterns(*this);
}

ORLFDateRecurrenceRule::WorkingSet ORLFDateRecurrenceRule::makeDateComponentsCopyOld(
    const WorkingSet& dateComponents) const {
  return olderCopy(dateComponents);
}

void ORLFDateRecurrenceRule::enumerateDatesForCalendarRefernceDate(
    const EnumerateDatesRefernceDate& arguments, ORLFDateRecurrenceBlock usingBlock) const {
  ORLFOlderWalk(*this, arguments, usingBlock).run();
}

}  // namespace ORLFoundation
