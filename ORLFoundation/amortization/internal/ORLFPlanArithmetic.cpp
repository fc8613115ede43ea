
#include <ORLFoundation/amortization/internal/ORLFPlanArithmetic.h>

#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation::internal {
namespace {

void refuseZero(NSInteger interval) {
  if (interval == 0) {
    throw NSException(NSInvalidArgumentException, "The interval of a contribution frequency is 0");
  }
}

template <class Count>
std::optional<NSDate> dateAfter(Count periods, const ORLFDateRecurrencePeriod& period, NSDate start,
                                const NSCalendar& calendar) {
  NSInteger units = 0;
  if (__builtin_mul_overflow(periods, period.interval(), &units)) return std::nullopt;
  return calendar.dateByAddingUnit(unitOf(period), units, start, 0);
}

}  // namespace

NSInteger dividedByInterval(NSInteger count, NSInteger interval) {
  refuseZero(interval);
  // The one quotient that does not fit, the smallest number over -1, stays the smallest number.
  if (interval == -1) return static_cast<NSInteger>(-static_cast<NSUInteger>(count));
  return count / interval;
}

NSUInteger dividedByUnsignedInterval(NSUInteger count, NSInteger interval) {
  refuseZero(interval);
  return count / static_cast<NSUInteger>(interval);
}

NSCalendarUnit unitOf(const ORLFDateRecurrencePeriod& period) noexcept {
  return static_cast<NSCalendarUnit>(period.frequency());
}

std::optional<NSDate> dateAfterPeriods(NSInteger periods, const ORLFDateRecurrencePeriod& period,
                                       NSDate start, const NSCalendar& calendar) {
  return dateAfter(periods, period, start, calendar);
}

std::optional<NSDate> dateAfterPeriods(NSUInteger periods, const ORLFDateRecurrencePeriod& period,
                                       NSDate start, const NSCalendar& calendar) {
  return dateAfter(periods, period, start, calendar);
}

}  // namespace ORLFoundation::internal
