
#include <ORLFoundation/amortization/internal/ORLFPlanGrowth.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>

#include <cmath>

namespace ORLFoundation::internal::amortization {

ORLFContributionStep ORLFContributionStep::of(const ORLFDateRecurrencePeriod* period) noexcept {
  if (!period) return {};
  return {.unit = static_cast<NSCalendarUnit>(period->frequency()), .interval = period->interval()};
}

double ORLFContributionStep::unitsPerYear(const NSCalendar& calendar, NSDate date) const noexcept {
  if (unit == NSCalendarUnitYear) return 1;
  return static_cast<double>(calendar.rangeOfUnit(unit, NSCalendarUnitYear, date).length);
}

ORLFPlanGrowth::ORLFPlanGrowth(const ORLFContributionStep& step, double unitsPerYear,
                               double anualCompoundingRate, double anualInflationRate) noexcept
    : unitsPerYear_(unitsPerYear),
      periodsPerYear_(unitsPerYear / static_cast<double>(step.interval)),
      rate_(anualCompoundingRate / periodsPerYear_),
      inflation_(anualInflationRate / periodsPerYear_),
      base_(1 + rate_),
      hasInflation_(inflation_ != 0 && rate_ - inflation_ != 0) {}

double ORLFPlanGrowth::afterPeriods(double periods) const noexcept {
  return std::pow(base_, periods);
}

double ORLFPlanGrowth::annuity(double growth, double periods) const noexcept {
  if (!hasInflation_) return (growth - 1) / rate_;
  return (growth - std::pow(1 + inflation_, periods)) / (rate_ - inflation_);
}

bool isGrowth(const std::optional<NSDecimalNumber>& rate) {
  return rate && orlfCompareWithZero(*rate) == NSOrderedDescending;
}

double doubleOf(const std::optional<NSDecimalNumber>& number) noexcept {
  return number ? number->doubleValue() : 0;
}

std::optional<NSDecimalNumber> decimalOfProjection(double total,
                                                   const NSDecimalNumberBehaviors* behavior) {
  return orlfDecimalNumberWithDouble(total).decimalNumberByRoundingAccordingToBehavior(behavior);
}

}  // namespace ORLFoundation::internal::amortization
