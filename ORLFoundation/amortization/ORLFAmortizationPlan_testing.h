/// Short words for tests of plans: dates, decimals, roundings, segments and whole plans in a line.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/amortization/ORLFAmortizationPlanSegment.h>
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrencePeriod.h>
#include <tests/support/VectorFile.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlftest {

using namespace ORLFoundation;

using Decimal = Optional;
using Period = std::shared_ptr<ORLFDateRecurrencePeriod>;
using Segment = std::shared_ptr<ORLFAmortizationPlanSegment>;
using Plan = std::shared_ptr<ORLFAmortizationPlan>;

/// A decimal of a vector; nil of null.
inline Decimal decimalFrom(const Json& value) {
  if (value.is_null()) return std::nullopt;
  return number(value.get<std::string>());
}

inline NSDate utc(NSInteger year, NSInteger month, NSInteger day) {
  NSDateComponents components;
  components.setYear(year);
  components.setMonth(month);
  components.setDay(day);
  return *utcCalendar().dateFromComponents(components);
}

/// Rounds as told and answers every error, loss of precision too, with nil.
inline std::shared_ptr<ORLFDecimalNumberHandler> rounding(NSRoundingMode mode, std::int16_t scale) {
  return ORLFDecimalNumberHandler::decimalNumberHandlerWithRoundingMode(
      {.roundingMode = mode,
       .scale = scale,
       .exactnessBehavior = ORLFDecimalErrorBehaviorReturnNil,
       .overflowBehavior = ORLFDecimalErrorBehaviorReturnNil,
       .underflowBehavior = ORLFDecimalErrorBehaviorReturnNil,
       .divideByZeroBehavior = ORLFDecimalErrorBehaviorReturnNil});
}

inline const NSDecimalNumberBehaviors* cents() {
  static const auto handler = rounding(NSRoundPlain, 2);
  return handler.get();
}

inline Period every(NSInteger interval, NSInteger frequency) {
  return std::make_shared<ORLFDateRecurrencePeriod>(
      static_cast<ORLFDateRecurrenceFrequency>(frequency), interval);
}

inline Period monthly(NSInteger interval = 1) {
  return every(interval, ORLFDateRecurrenceFrequencyMonthly);
}

inline Period noPeriod() { return nullptr; }

struct Terms {
  Decimal principal = std::nullopt;
  Decimal contribution = std::nullopt;
  Period frequency = monthly();
  Decimal rate = std::nullopt;
  Decimal inflation = std::nullopt;
};

inline Segment makeSegment(const Terms& terms) {
  auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
  segment->setCurrentPrincipal(terms.principal);
  segment->setContribution(terms.contribution);
  segment->setContributionFrequncy(terms.frequency);
  segment->setAnualCompoundingRate(terms.rate);
  segment->setAnualInflationRate(terms.inflation);
  return segment;
}

struct Stretch {
  NSDate start;
  Terms terms;
};

/// A plan of consecutive stretches.
inline Plan makePlan(const std::vector<Stretch>& stretches, std::optional<NSDate> end) {
  auto plan = ORLFAmortizationPlan::initWithStartDate(stretches.front().start,
                                                      makeSegment(stretches.front().terms), end);
  for (std::size_t index = 1; index < stretches.size(); ++index) {
    plan->setPlanSegment(makeSegment(stretches[index].terms), stretches[index].start, end, true);
  }
  return plan;
}

inline const NSDate kJan24 = utc(2024, 1, 1);
inline const NSDate kJan25 = utc(2025, 1, 1);
inline const NSDate kJan26 = utc(2026, 1, 1);
inline const NSDate kOpen = NSDate::distantFuture();

/// 2024 with 100 a month from 1000, 2025 with 50 a month on top.
inline Plan twoYears() {
  return makePlan({{kJan24, {.principal = number("1000"), .contribution = number("100")}},
                   {kJan25, {.contribution = number("50")}}},
                  kJan26);
}

/// The same, but 2025 starts again from 7000.
inline Plan twoYearsWithReset() {
  return makePlan({{kJan24, {.principal = number("1000"), .contribution = number("100")}},
                   {kJan25, {.principal = number("7000"), .contribution = number("50")}}},
                  kJan26);
}

/// A segment's terms as arguments of the static operation.
inline Decimal principalOn(NSDate date, const Terms& terms,
                           const NSDecimalNumberBehaviors* behavior = nullptr,
                           NSDate first = kJan24) {
  return ORLFAmortizationPlanSegment::plannedPrincipalOnDate(
      {.date = date,
       .startingWithPrincipal = terms.principal,
       .fristContributionDate = first,
       .contribution = terms.contribution,
       .contributionFrequncy = terms.frequency,
       .anualCompoundingRate = terms.rate,
       .anualInflationRate = terms.inflation,
       .usingCalendar = utcCalendar(),
       .roundingBehavior = behavior});
}

/// The six decimals through which a double becomes a decimal.
inline std::string sixPlaces(double value) {
  char text[400];
  std::snprintf(text, sizeof text, "%.6f", value);
  return number(text).stringValue();
}

}  // namespace orlftest
