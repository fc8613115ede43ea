
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>
#include <ORLFoundation/recurrence/internal/ORLFExactPattern.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternExpansion.h>

namespace ORLFoundation {

using namespace internal::recurrence;

void ORLFDateRecurrenceRule::enumerateDatesForCalendarStartDate(
    const EnumerateDatesStartDate& arguments, ORLFDateRecurrenceBlock usingBlock) const {
  if (arguments.exactPatternMatch && isSimpleRecurrence()) {
    auto exact = exactPattern(*this, arguments.startDate, arguments.calendar);
    if (exact) {
      const ORLFDateRecurrenceRule rule(*std::move(exact));
      ORLFDateWalk(rule, arguments, usingBlock).run();
      return;
    }
  }
  ORLFDateWalk(*this, arguments, usingBlock).run();
}

ORLFDateRecurrenceRule::WorkingSet ORLFDateRecurrenceRule::generateDateComponentsFromDate(
    std::optional<NSDate> date, std::optional<NSDate> referenceDate, const NSCalendar* calendar,
    bool /*backwards*/) const {
  ORLFPatternExpansion expansion(*this, referenceDate, calendar);
  const auto& patterns = expansion.expand(date);
  return {patterns.begin(), patterns.end()};
}

ORLFDateRecurrenceRule::WorkingSet ORLFDateRecurrenceRule::makeDateComponentsCopy(
    const WorkingSet& dateComponents) const {
  return dateComponents;
}

std::shared_ptr<ORLFDateRecurrenceRule>
ORLFDateRecurrenceRule::dateRecurrenceRuleForExactMatchToReferenceDate(NSDate referenceDate,
                                                                       const NSCalendar& calendar) {
  auto exact = exactPattern(*this, referenceDate, calendar);
  if (exact) return std::make_shared<ORLFDateRecurrenceRule>(*std::move(exact));
  return receiver();
}

}  // namespace ORLFoundation
