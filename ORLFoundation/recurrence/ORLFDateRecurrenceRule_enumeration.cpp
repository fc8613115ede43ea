
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>
#include <ORLFoundation/recurrence/internal/ORLFExactPattern.h>
#include <ORLFoundation/recurrence/internal/ORLFPatternExpansion.h>

namespace ORLFoundation {

void ORLFDateRecurrenceRule::enumerateDatesForCalendarStartDate(
    const EnumerateDatesStartDate& arguments) const {
  if (arguments.exactPatternMatch && isSimpleRecurrence()) {
    auto exact = internal::exactPattern(*this, arguments.startDate, arguments.calendar);
    if (exact) {
      const ORLFDateRecurrenceRule rule(*std::move(exact));
      internal::ORLFDateWalk(rule, arguments).run();
      return;
    }
  }
  internal::ORLFDateWalk(*this, arguments).run();
}

ORLFDateRecurrenceRule::WorkingSet ORLFDateRecurrenceRule::generateDateComponentsFromDate(
    std::optional<NSDate> date, std::optional<NSDate> referenceDate, const NSCalendar* calendar,
    bool /*backwards*/) const {
  internal::ORLFPatternExpansion expansion(*this, referenceDate, calendar);
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
  auto exact = internal::exactPattern(*this, referenceDate, calendar);
  if (exact) return std::make_shared<ORLFDateRecurrenceRule>(*std::move(exact));
  return std::static_pointer_cast<ORLFDateRecurrenceRule>(shared_from_this());
}

}  // namespace ORLFoundation
