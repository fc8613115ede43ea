
#include <ORLFoundation/amortization/ORLFAmortizationPlanSegment.h>

#include <ORLFoundation/amortization/internal/ORLFBalanceSearch.h>
#include <ORLFoundation/amortization/internal/ORLFPlanGrowth.h>
#include <ORLFoundation/amortization/internal/ORLFPlanProjection.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <cmath>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

/// The date `periods` periods after the start; nil when their count or the date is out of range.
std::optional<NSDate> dateAfterPeriods(NSUInteger periods, const ORLFDateRecurrencePeriod& period,
                                       NSDate start, const NSCalendar& calendar) {
  if (periods > static_cast<NSUInteger>(NSIntegerMax)) return std::nullopt;
  return dateByAddingRecurrencePeriod(calendar, period, static_cast<NSInteger>(periods), start, 0);
}

}  // namespace

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::plannedPrincipalOnDate(
    const PlannedPrincipalOnDate& arguments) {
  const ORLFPlanProjection projection({.contribution = arguments.contribution,
                                       .contributionFrequncy = arguments.contributionFrequncy.get(),
                                       .anualCompoundingRate = arguments.anualCompoundingRate,
                                       .anualInflationRate = arguments.anualInflationRate},
                                      arguments.fristContributionDate, arguments.usingCalendar,
                                      arguments.roundingBehavior);
  return projection.principalOnDate(
      arguments.date, arguments.startingWithPrincipal.value_or(NSDecimalNumber::zero()));
}

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::plannedPrincipalOnDate(
    NSDate date, const std::optional<NSDecimalNumber>& startingWithPrincipal,
    NSDate fristContributionDate, const NSCalendar& usingCalendar,
    const NSDecimalNumberBehaviors* roundingBehavior) const {
  return plannedPrincipalOnDate({.date = date,
                                 .startingWithPrincipal = startingWithPrincipal,
                                 .fristContributionDate = fristContributionDate,
                                 .contribution = contribution_,
                                 .contributionFrequncy = contributionFrequncy_,
                                 .anualCompoundingRate = anualCompoundingRate_,
                                 .anualInflationRate = anualInflationRate_,
                                 .usingCalendar = usingCalendar,
                                 .roundingBehavior = roundingBehavior});
}

std::optional<NSDate> ORLFAmortizationPlanSegment::contributionDateAfterCount(
    NSUInteger count, NSDate startDate,
    const std::shared_ptr<ORLFDateRecurrencePeriod>& contributionFrequncy,
    const NSCalendar& usingCalendar) {
  if (!contributionFrequncy) return std::nullopt;
  return dateAfterPeriods(count, *contributionFrequncy, startDate, usingCalendar);
}

NSUInteger ORLFAmortizationPlanSegment::numberOfContributionPeriodsToReachBalance(
    const PeriodsToReachBalance& arguments) {
  if (!arguments.contributionFrequncy || !arguments.fristContributionDate ||
      !arguments.startingWithPrincipal || !arguments.balance) {
    return NSIntegerMax;
  }
  const ORLFPlanProjection projection({.contribution = arguments.contribution,
                                       .contributionFrequncy = arguments.contributionFrequncy.get(),
                                       .anualCompoundingRate = arguments.anualCompoundingRate,
                                       .anualInflationRate = arguments.anualInflationRate},
                                      *arguments.fristContributionDate, arguments.usingCalendar,
                                      arguments.roundingBehavior);
  const auto balanceAfter = [&](NSUInteger periods) -> std::optional<NSDecimalNumber> {
    const auto date = dateAfterPeriods(periods, *arguments.contributionFrequncy,
                                       *arguments.fristContributionDate, arguments.usingCalendar);
    if (!date) return std::nullopt;
    return projection.principalOnDate(*date, *arguments.startingWithPrincipal);
  };
  return periodsToReachBalance(*arguments.balance, *arguments.startingWithPrincipal, balanceAfter);
}

NSUInteger ORLFAmortizationPlanSegment::numberOfContributionPeriodsToReachBalance(
    const SegmentPeriodsToReachBalance& arguments) const {
  return numberOfContributionPeriodsToReachBalance(
      PeriodsToReachBalance{.balance = arguments.balance,
                            .startingWithPrincipal = arguments.startingWithBalance,
                            .fristContributionDate = arguments.fristContributionDate,
                            .contribution = contribution_,
                            .contributionFrequncy = contributionFrequncy_,
                            .anualCompoundingRate = anualCompoundingRate_,
                            .compoundingFrequncy = compoundingFrequncy_,
                            .anualInflationRate = anualInflationRate_,
                            .usingCalendar = arguments.usingCalendar,
                            .roundingBehavior = arguments.roundingBehavior});
}

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::startingPrincipalForRecuringPayment(
    const RecuringPayment& arguments) {
  if (!isGrowth(arguments.anualCompoundingRate)) return std::nullopt;
  const auto step = ORLFContributionStep::of(arguments.paymentFrequncey.get());
  const ORLFPlanGrowth perPeriod(step, step.unitsPerYear(arguments.usingCalendar, NSDate::date()),
                                 arguments.anualCompoundingRate->doubleValue(),
                                 doubleOf(arguments.anualInflationRate));
  const double periods = perPeriod.periods(static_cast<double>(arguments.numberOfPayments));
  const double growth = perPeriod.afterPeriods(periods);
  const double paid = doubleOf(arguments.payment) * perPeriod.annuity(growth, periods);
  return decimalOfProjection(-perPeriod.base() * paid / growth, arguments.roundingBehavior);
}

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::presentValueForFurureValue(
    const PresentValue& arguments) {
  const double periods = static_cast<double>(arguments.numberOfPeriods);
  const double perYear =
      arguments.compoundingFrequncy ? arguments.compoundingFrequncy->frequencyPerYear() : 0;
  const double inflation = std::pow(1 + doubleOf(arguments.anualInflationRate), periods / perYear);
  const double growth = std::pow(1 + doubleOf(arguments.anualCompoundingRate) / perYear, periods);
  return decimalOfProjection(doubleOf(arguments.furureValue) * inflation / growth,
                             arguments.roundingBehavior);
}

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::furureValueForPresentValue(
    const FurureValue& arguments) {
  const double perYear =
      arguments.compoundingFrequncy ? arguments.compoundingFrequncy->frequencyPerYear() : 0;
  const double inflation = std::pow(1 + doubleOf(arguments.anualInflationRate) / perYear,
                                    static_cast<double>(arguments.numberOfPeriods));
  return decimalOfProjection(doubleOf(arguments.presentValue) * inflation,
                             arguments.roundingBehavior);
}

namespace {

/// How many contribution dates lie between two dates, as whole periods counted from the last one at
/// or before the first of them. nil when the calendar cannot tell that date.
std::optional<NSInteger> wholePeriodsBetween(std::optional<NSDate> segmentStart, NSDate from,
                                             NSDate to, const ORLFDateRecurrencePeriod& period,
                                             const NSCalendar& calendar) {
  const NSDate start = segmentStart.value_or(from);
  const NSInteger before = intervalInRecurrencePeriod(calendar, period, start, from);
  const auto last = dateByAddingRecurrencePeriod(calendar, period, before, start, 0);
  if (!last) return std::nullopt;
  const NSInteger periods = intervalInRecurrencePeriod(calendar, period, *last, to);
  return orlfIsBefore(from, *last) ? periods + 1 : periods;
}

}  // namespace

std::optional<NSDecimalNumber> ORLFAmortizationPlanSegment::plannedContributionsFromStartDate(
    const PlannedContributions& arguments) const {
  if (!contribution_ || !contributionFrequncy_) return std::nullopt;
  const ORLFDateRecurrencePeriod& period = *contributionFrequncy_;
  if (arguments.continuous) {
    const double periods = countInRecurrencePeriod(arguments.usingCalendar, period,
                                                   arguments.startDate, arguments.toEndDate);
    return contribution_->decimalNumberByMultiplyingBy(orlfDecimalNumberWithDouble(periods),
                                                       arguments.roundingBehavior);
  }
  const auto periods = wholePeriodsBetween(startDate_, arguments.startDate, arguments.toEndDate,
                                           period, arguments.usingCalendar);
  if (!periods) return std::nullopt;
  return contribution_->decimalNumberByMultiplyingBy(
      NSDecimalNumber::decimalNumberWithMantissa(static_cast<NSUInteger>(*periods), 0, false),
      arguments.roundingBehavior);
}

std::optional<NSDate> ORLFAmortizationPlanSegment::contributionDateAfterDate(
    NSDate date, const NSCalendar& usingCalendar) const {
  if (startDate_ && orlfIsBefore(date, *startDate_)) return startDate_;
  if (!contributionFrequncy_) return std::nullopt;
  const ORLFDateRecurrencePeriod& period = *contributionFrequncy_;
  if (!startDate_) return dateByAddingRecurrencePeriod(usingCalendar, period, 1, date, 0);
  const NSInteger periods = intervalInRecurrencePeriod(usingCalendar, period, *startDate_, date);
  return dateByAddingRecurrencePeriod(usingCalendar, period, periods + 1, *startDate_, 0);
}

}  // namespace ORLFoundation
