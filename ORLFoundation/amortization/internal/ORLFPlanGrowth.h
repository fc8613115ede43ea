/// What one contribution period does to a balance, worked out once from yearly terms, in doubles.
/// The order of the operations is part of the result.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <optional>

namespace ORLFoundation::internal::amortization {

/// Unit and interval of contributions; a null period is monthly.
struct ORLFContributionStep {
  NSCalendarUnit unit = NSCalendarUnitMonth;
  NSInteger interval = 1;

  [[nodiscard]] static ORLFContributionStep of(const ORLFDateRecurrencePeriod* period) noexcept;
  /// How many of its units the year of a date holds: 12 months, 365 or 366 days, 53 or 54 weeks.
  [[nodiscard]] double unitsPerYear(const NSCalendar& calendar, NSDate date) const noexcept;
};

class ORLFPlanGrowth {
 public:
  ORLFPlanGrowth() noexcept = default;
  ORLFPlanGrowth(const ORLFContributionStep& step, double unitsPerYear, double anualCompoundingRate,
                 double anualInflationRate) noexcept;

  /// `units / unitsPerYear` times the periods of a year. For an interval k above 1 this divides the
  /// periods elapsed by k once more; required.
  [[nodiscard]] double periods(double units) const noexcept {
    return units / unitsPerYear_ * periodsPerYear_;
  }
  /// What 1 grows to in one period, and in many.
  [[nodiscard]] double base() const noexcept { return base_; }
  [[nodiscard]] double afterPeriods(double periods) const noexcept;
  /// Whether contributions rise at a rate of their own, so that the annuity has two bases. When
  /// inflation and rate are the same the plain annuity stands.
  [[nodiscard]] bool hasInflation() const noexcept { return hasInflation_; }
  [[nodiscard]] bool hasNoRate() const noexcept { return rate_ == 0; }
  /// The sum of one contribution a period at the end of each; `growth` is `afterPeriods(periods)`.
  [[nodiscard]] double annuity(double growth, double periods) const noexcept;

 private:
  double unitsPerYear_ = 0;
  double periodsPerYear_ = 0;
  double rate_ = 0;
  double inflation_ = 0;
  double base_ = 1;
  bool hasInflation_ = false;
};

/// Whether a rate makes a balance grow: it is there and above zero.
[[nodiscard]] bool isGrowth(const std::optional<NSDecimalNumber>& rate);

/// The double of a decimal, 0 for nil.
[[nodiscard]] double doubleOf(const std::optional<NSDecimalNumber>& number) noexcept;

/// The one step from doubles to decimals: six places, then the behaviour.
[[nodiscard]] std::optional<NSDecimalNumber> decimalOfProjection(
    double total, const NSDecimalNumberBehaviors* behavior);

}  // namespace ORLFoundation::internal::amortization
