
#include <ORLFoundation/amortization/internal/ORLFPlanProjection.h>

#include <ORLFoundation/calendar/ORLFCalendarArithmetic.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cmath>

namespace ORLFoundation::internal::amortization {
namespace {

/// Both as unsigned numbers, so that a date before the first contribution gives a huge count.
NSUInteger unsignedPeriods(NSInteger units, NSInteger interval) {
  if (interval == 0)
    throw NSException(NSInvalidArgumentException, "The interval of a contribution frequency is 0");
  return static_cast<NSUInteger>(units) / static_cast<NSUInteger>(interval);
}

}  // namespace

ORLFPlanProjection::ORLFPlanProjection(const ORLFPlanTerms& terms, NSDate fristContributionDate,
                                       const NSCalendar& calendar,
                                       const NSDecimalNumberBehaviors* behavior)
    : calendar_(&calendar),
      behavior_(behavior),
      fristContributionDate_(fristContributionDate),
      step_(ORLFContributionStep::of(terms.contributionFrequncy)),
      contribution_(terms.contribution.value_or(NSDecimalNumber::zero())),
      grows_(isGrowth(terms.anualCompoundingRate)) {
  if (!grows_) return;
  contributionAsDouble_ = contribution_.doubleValue();
  growth_ =
      ORLFPlanGrowth(step_, step_.unitsPerYear(calendar, fristContributionDate),
                     terms.anualCompoundingRate->doubleValue(), doubleOf(terms.anualInflationRate));
}

std::optional<NSDecimalNumber> ORLFPlanProjection::principalOnDate(
    NSDate date, const NSDecimalNumber& startingWithPrincipal) const {
  if (!grows_) return principalWithoutGrowth(date, startingWithPrincipal);
  return decimalOfProjection(principalWithGrowth(date, startingWithPrincipal.doubleValue()),
                             behavior_);
}

std::optional<NSDecimalNumber> ORLFPlanProjection::principalWithoutGrowth(
    NSDate date, const NSDecimalNumber& principal) const {
  const NSInteger units =
      orlfIntervalInCalendarUnit(*calendar_, step_.unit, fristContributionDate_, date);
  const NSUInteger periods = unsignedPeriods(units, step_.interval);
  const bool topBit = static_cast<NSInteger>(periods) < 0;
  const auto contributed = contribution_.decimalNumberByMultiplyingBy(
      NSDecimalNumber::decimalNumberWithMantissa(periods, 0, topBit), behavior_);
  if (!contributed) return std::nullopt;
  return principal.decimalNumberByAdding(*contributed, behavior_);
}

double ORLFPlanProjection::principalWithGrowth(NSDate date, double principal) const {
  const double units =
      orlfCountOfCalendarUnit(*calendar_, step_.unit, fristContributionDate_, date);
  const double periods = growth_.periods(std::floor(units / static_cast<double>(step_.interval)));
  const double growth = growth_.afterPeriods(periods);
  const double contributed =
      growth_.hasNoRate() && !growth_.hasInflation()
          ? contributionAsDouble_ * periods
          : growth_.annuity(growth, periods) * contributionAsDouble_ * growth_.base();
  return contributed + principal * growth;
}

}  // namespace ORLFoundation::internal::amortization
