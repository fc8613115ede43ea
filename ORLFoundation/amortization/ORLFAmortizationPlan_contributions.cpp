
#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/amortization/internal/ORLFPlanDates.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <algorithm>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

/// The last contribution date of a member that runs until `end`; none when it never ends.
std::optional<NSDate> lastContributionDateOf(const ORLFAmortizationPlanSegment& member,
                                             std::optional<NSDate> end,
                                             const NSCalendar& calendar) {
  const auto& start = member.startDate();
  const auto& frequency = member.contributionFrequncy();
  if (!start || !frequency || !isBefore(end, NSDate::distantFuture())) return std::nullopt;
  const NSInteger periods = intervalInRecurrencePeriod(calendar, *frequency, *start, *end);
  return dateByAddingRecurrencePeriod(calendar, *frequency, periods, *start, 0);
}

}  // namespace

std::optional<std::size_t> ORLFAmortizationPlan::memberOnDate(NSDate date) const {
  if (isBefore(date, planStartDate())) return std::nullopt;
  for (std::size_t index = segments_.size(); index-- > 0;) {
    if (isAfter(segments_[index]->startDate(), date)) continue;
    if (!orlfIsBefore(date, endOfMember(index))) return std::nullopt;
    return index;
  }
  return std::nullopt;
}

NSDate ORLFAmortizationPlan::endOfMember(std::size_t index) const {
  const auto& end = index + 1 < segments_.size() ? segments_[index + 1]->startDate() : endDate_;
  return end.value_or(NSDate::distantFuture());
}

ORLFAmortizationPlan::Segment ORLFAmortizationPlan::planSegementNoCopyForDate(
    const SegementForDate& arguments) const {
  const auto date = arguments.date ? arguments.date : planStartDate();
  const auto index = date ? memberOnDate(*date) : std::nullopt;
  if (!index) return nullptr;
  const Segment& member = segments_[*index];
  const NSDate end = endOfMember(*index);
  if (arguments.startDate) *arguments.startDate = member->startDate();
  if (arguments.endDate) *arguments.endDate = end;
  if (arguments.lastContributionDate) {
    *arguments.lastContributionDate = lastContributionDateOf(*member, end, arguments.usingCalendar);
  }
  return member;
}

ORLFAmortizationPlan::Segment ORLFAmortizationPlan::planSegementForDate(
    const SegementForDate& arguments) const {
  return copyOf(planSegementNoCopyForDate(arguments));
}

std::optional<NSDecimalNumber> ORLFAmortizationPlan::plannedContributionsFromStartDate(
    const PlannedContributions& arguments) const {
  std::optional<NSDecimalNumber> total = NSDecimalNumber::zero();
  auto cursor =
      isAfter(arguments.startDate, planStartDate()) ? arguments.startDate : planStartDate();
  while (total && isBefore(cursor, arguments.toEndDate)) {
    const auto index = memberOnDate(*cursor);
    if (!index) break;
    const ORLFAmortizationPlanSegment& member = *segments_[*index];
    const NSDate end = endOfMember(*index);
    const auto last = lastContributionDateOf(member, end, arguments.usingCalendar);
    const NSDate stop = isBefore(last, arguments.toEndDate) ? *last : arguments.toEndDate;
    if (!orlfIsAfter(*cursor, stop)) {
      const auto contributions = member.plannedContributionsFromStartDate(
          {.startDate = *cursor,
           .toEndDate = stop,
           .usingCalendar = arguments.usingCalendar,
           .continuous = arguments.continuous,
           .roundingBehavior = arguments.roundingBehavior});
      if (contributions) {
        total = total->decimalNumberByAdding(*contributions, arguments.roundingBehavior);
      }
    }
    cursor = end;
  }
  return total;
}

std::optional<NSDate> ORLFAmortizationPlan::contributionDateAfterDate(
    std::optional<NSDate> date, const NSCalendar& usingCalendar) const {
  if (!date || isBefore(date, planStartDate())) return planStartDate();
  const auto index = memberOnDate(*date);
  if (!index) return std::nullopt;
  return segments_[*index]->contributionDateAfterDate(*date, usingCalendar);
}

std::optional<NSDate> ORLFAmortizationPlan::contributionDateBeforeDate(
    NSDate date, const NSCalendar& usingCalendar) const {
  std::optional<NSDate> before;
  for (auto cursor = planStartDate(); isBefore(cursor, date);) {
    before = cursor;
    cursor = contributionDateAfterDate(*before, usingCalendar);
    // An interval below zero steps back: the dates have run out.
    if (!isAfter(cursor, before)) break;
  }
  return before;
}

}  // namespace ORLFoundation
