/// Short words for tests of plans: dates, decimals, roundings, segments and whole plans in a line.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>
#include <ORLFoundation/amortization/ORLFAmortizationPlanSegment.h>
#include <ORLFoundation/decimal/ORLFDecimalNumberHandler.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orlftest {

using namespace ORLFoundation;

using Decimal = std::optional<NSDecimalNumber>;
using Period = std::shared_ptr<ORLFDateRecurrencePeriod>;
using Segment = std::shared_ptr<ORLFAmortizationPlanSegment>;
using Plan = std::shared_ptr<ORLFAmortizationPlan>;

inline NSDecimalNumber number(const char* text) {
  return NSDecimalNumber::decimalNumberWithString(text);
}

/// "1000", "nil".
inline std::string textOf(const Decimal& value) { return value ? value->stringValue() : "nil"; }

inline std::shared_ptr<NSCalendar> calendarIn(const char* zone) {
  auto calendar = NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian);
  calendar->setTimeZone(NSTimeZone::timeZoneWithName(zone));
  return calendar;
}

inline const NSCalendar& utcCalendar() {
  static const std::shared_ptr<NSCalendar> calendar = calendarIn("UTC");
  return *calendar;
}

inline NSDate utc(NSInteger year, NSInteger month, NSInteger day) {
  NSDateComponents components;
  components.setYear(year);
  components.setMonth(month);
  components.setDay(day);
  return *utcCalendar().dateFromComponents(components);
}

/// Rounds as told and answers every error but loss of precision with nil.
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

}  // namespace orlftest
