/// The projection of one stretch of constant terms, with all that does not depend on the asked date
/// worked out once: defaults, the rates of one contribution period, the doubles. It lives on the
/// stack of the operation that asks for balances and allocates nothing.
#pragma once

#include <ORLFoundation/amortization/internal/ORLFPlanGrowth.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>

#include <optional>

namespace ORLFoundation::internal::amortization {

/// The terms of a stretch as their owner holds them: borrowed for the construction. A null
/// frequency is monthly.
struct ORLFPlanTerms {
  const std::optional<NSDecimalNumber>& contribution;
  const ORLFDateRecurrencePeriod* contributionFrequncy;
  const std::optional<NSDecimalNumber>& anualCompoundingRate;
  const std::optional<NSDecimalNumber>& anualInflationRate;
};

class ORLFPlanProjection {
 public:
  ORLFPlanProjection(const ORLFPlanTerms& terms, NSDate fristContributionDate,
                     const NSCalendar& calendar, const NSDecimalNumberBehaviors* behavior);

  /// The balance on a date; nil when the behaviour answers an error with nil.
  [[nodiscard]] std::optional<NSDecimalNumber> principalOnDate(
      NSDate date, const NSDecimalNumber& startingWithPrincipal) const;

 private:
  [[nodiscard]] std::optional<NSDecimalNumber> principalWithoutGrowth(
      NSDate date, const NSDecimalNumber& principal) const;
  [[nodiscard]] double principalWithGrowth(NSDate date, double principal) const;

  const NSCalendar* calendar_;
  const NSDecimalNumberBehaviors* behavior_;
  NSDate fristContributionDate_;
  ORLFContributionStep step_;
  NSDecimalNumber contribution_;
  double contributionAsDouble_ = 0;
  bool grows_;
  ORLFPlanGrowth growth_;
};

}  // namespace ORLFoundation::internal::amortization
