// Segments and plans against recorded answers.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <functional>

namespace orlftest {
namespace {

std::shared_ptr<ORLFDecimalNumberHandler> behaviorFrom(const Json& value) {
  if (value.is_null()) return nullptr;
  return rounding(static_cast<NSRoundingMode>(value.at("mode").get<NSUInteger>()),
                  value.at("scale").get<std::int16_t>());
}

Period periodFrom(const Json& value) {
  if (value.is_null()) return nullptr;
  return every(value.at(1).get<NSInteger>(), value.at(0).get<NSInteger>());
}

Segment segmentFrom(const Json& value) {
  auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
  segment->setStartDate(dateFromVector(value.at("startDate")));
  segment->setCurrentPrincipal(decimalFrom(value.at("currentPrincipal")));
  segment->setContribution(decimalFrom(value.at("contribution")));
  segment->setContributionFrequncy(periodFrom(value.at("contributionFrequncy")));
  segment->setAnualCompoundingRate(decimalFrom(value.at("anualCompoundingRate")));
  segment->setCompoundingFrequncy(periodFrom(value.at("compoundingFrequncy")));
  segment->setAnualInflationRate(decimalFrom(value.at("anualInflationRate")));
  return segment;
}

Plan planFrom(const Json& value) {
  auto plan = std::make_shared<ORLFAmortizationPlan>();
  std::vector<Segment> members;
  for (const Json& member : value.at("segments")) members.push_back(segmentFrom(member));
  plan->setSegments(std::move(members));
  plan->setEndDate(dateFromVector(value.at("endDate")));
  return plan;
}

/// One unit of the last digit that a balance shows.
NSDecimalNumber lastDigit(const Json& behavior) {
  const int scale = behavior.is_null() ? 6 : behavior.at("scale").get<int>();
  return NSDecimalNumber::decimalNumberWithMantissa(1, static_cast<std::int16_t>(-scale), false);
}

bool isNear(const NSDecimalNumber& value, const NSDecimalNumber& other, const NSDecimalNumber& by) {
  const NSDecimalNumber difference = value.decimalNumberBySubtracting(other);
  const NSDecimalNumber zero = NSDecimalNumber::zero();
  return difference.compare(by) != NSOrderedDescending &&
         zero.decimalNumberBySubtracting(difference).compare(by) != NSOrderedDescending;
}

/// Equal decimals; without a behaviour the sixth decimal, which the last bit of a double decides,
/// may differ by one.
std::string compareBalances(const Decimal& expected, const Decimal& actual, const Json& behavior) {
  if (!expected || !actual) return disagreement(textOf(expected), textOf(actual));
  if (expected->compare(*actual) == NSOrderedSame) return {};
  if (behavior.is_null() && isNear(*expected, *actual, lastDigit(behavior))) return {};
  return disagreement(textOf(expected), textOf(actual));
}

std::string compareSegments(const Segment& expected, const Segment& actual) {
  if (!expected || !actual) return expected == actual ? "" : "one of the segments is nil";
  return expected->isEqual(actual.get())
             ? ""
             : "expected " + expected->description() + ", got " + actual->description();
}

std::string comparePlans(const Plan& expected, const Plan& actual) {
  return expected->isEqual(actual.get())
             ? ""
             : "expected " + expected->description() + ", got " + actual->description();
}

// ---- segments ----

std::string checkPlannedPrincipal(const Json& in, const Json& out) {
  const Json& terms = in.at("terms");
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  const auto balance = ORLFAmortizationPlanSegment::plannedPrincipalOnDate(
      {.date = *dateFromVector(in.at("date")),
       .startingWithPrincipal = decimalFrom(in.at("startingWithPrincipal")),
       .fristContributionDate = *dateFromVector(in.at("fristContributionDate")),
       .contribution = decimalFrom(terms.at("contribution")),
       .contributionFrequncy = periodFrom(terms.at("contributionFrequncy")),
       .anualCompoundingRate = decimalFrom(terms.at("anualCompoundingRate")),
       .anualInflationRate = decimalFrom(terms.at("anualInflationRate")),
       .usingCalendar = *calendar,
       .roundingBehavior = behavior.get()});
  return compareBalances(decimalFrom(out), balance, in.at("behavior"));
}

std::string checkPeriodsToReachBalance(const Json& in, const Json& out) {
  const Json& terms = in.at("terms");
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  const NSUInteger periods = ORLFAmortizationPlanSegment::numberOfContributionPeriodsToReachBalance(
      ORLFAmortizationPlanSegment::PeriodsToReachBalance{
          .balance = decimalFrom(in.at("balance")),
          .startingWithPrincipal = decimalFrom(in.at("startingWithPrincipal")),
          .fristContributionDate = dateFromVector(in.at("fristContributionDate")),
          .contribution = decimalFrom(terms.at("contribution")),
          .contributionFrequncy = periodFrom(terms.at("contributionFrequncy")),
          .anualCompoundingRate = decimalFrom(terms.at("anualCompoundingRate")),
          .compoundingFrequncy = periodFrom(terms.at("compoundingFrequncy")),
          .anualInflationRate = decimalFrom(terms.at("anualInflationRate")),
          .usingCalendar = *calendar,
          .roundingBehavior = behavior.get()});
  const NSUInteger expected = out == "NSIntegerMax" ? NSIntegerMax : out.get<NSUInteger>();
  return disagreement(expected, periods);
}

std::string checkStartingPrincipal(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  return compareBalances(decimalFrom(out),
                         ORLFAmortizationPlanSegment::startingPrincipalForRecuringPayment(
                             {.payment = decimalFrom(in.at("payment")),
                              .paymentFrequncey = periodFrom(in.at("paymentFrequncey")),
                              .numberOfPayments = in.at("numberOfPayments").get<NSUInteger>(),
                              .anualCompoundingRate = decimalFrom(in.at("anualCompoundingRate")),
                              .anualInflationRate = decimalFrom(in.at("anualInflationRate")),
                              .usingCalendar = *calendar,
                              .roundingBehavior = behavior.get()}),
                         in.at("behavior"));
}

std::string checkPresentValue(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  return compareBalances(decimalFrom(out),
                         ORLFAmortizationPlanSegment::presentValueForFurureValue(
                             {.furureValue = decimalFrom(in.at("value")),
                              .numberOfPeriods = in.at("numberOfPeriods").get<NSUInteger>(),
                              .compoundingFrequncy = periodFrom(in.at("compoundingFrequncy")),
                              .anualCompoundingRate = decimalFrom(in.at("anualCompoundingRate")),
                              .anualInflationRate = decimalFrom(in.at("anualInflationRate")),
                              .usingCalendar = *calendar,
                              .roundingBehavior = behavior.get()}),
                         in.at("behavior"));
}

std::string checkFurureValue(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  return compareBalances(decimalFrom(out),
                         ORLFAmortizationPlanSegment::furureValueForPresentValue(
                             {.presentValue = decimalFrom(in.at("value")),
                              .numberOfPeriods = in.at("numberOfPeriods").get<NSUInteger>(),
                              .compoundingFrequncy = periodFrom(in.at("compoundingFrequncy")),
                              .anualInflationRate = decimalFrom(in.at("anualInflationRate")),
                              .usingCalendar = *calendar,
                              .roundingBehavior = behavior.get()}),
                         in.at("behavior"));
}

std::string checkSegmentContributions(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  return compareBalances(
      decimalFrom(out),
      segmentFrom(in.at("segment"))
          ->plannedContributionsFromStartDate({.startDate = *dateFromVector(in.at("from")),
                                               .toEndDate = *dateFromVector(in.at("to")),
                                               .usingCalendar = *calendar,
                                               .continuous = in.at("continuous").get<bool>(),
                                               .roundingBehavior = behavior.get()}),
      in.at("behavior"));
}

TEST(ORLFAmortizationPlanSegment, AgreesWithVectors) {
  runJsonVectors("planning_segment",
                 {{"plannedPrincipalOnDate", checkPlannedPrincipal},
                  {"numberOfContributionPeriodsToReachBalance", checkPeriodsToReachBalance},
                  {"startingPrincipalForRecuringPayment", checkStartingPrincipal},
                  {"presentValueForFurureValue", checkPresentValue},
                  {"furureValueForPresentValue", checkFurureValue},
                  {"plannedContributionsFromStartDate", checkSegmentContributions},
                  {"contributionDateAfterCount",
                   [](const Json& in, const Json& out) {
                     return disagreement(
                         dateFromVector(out),
                         ORLFAmortizationPlanSegment::contributionDateAfterCount(
                             in.at("count").get<NSUInteger>(), *dateFromVector(in.at("startDate")),
                             periodFrom(in.at("contributionFrequncy")),
                             *calendarFromVector(in.at("calendar"))));
                   }},
                  {"contributionDateAfterDate", [](const Json& in, const Json& out) {
                     return disagreement(
                         dateFromVector(out),
                         segmentFrom(in.at("segment"))
                             ->contributionDateAfterDate(*dateFromVector(in.at("date")),
                                                         *calendarFromVector(in.at("calendar"))));
                   }}});
}

// ---- plans ----

std::string checkBalance(const Json& in, const Json& out) {
  const auto balance =
      planFrom(in.at("plan"))
          ->plannedBalanceOnDate(*dateFromVector(in.at("date")), in.at("inclusive").get<bool>(),
                                 *calendarFromVector(in.at("calendar")),
                                 behaviorFrom(in.at("behavior")).get());
  return compareBalances(decimalFrom(out), balance, in.at("behavior"));
}

/// Whether a plan's last member starts after the plan's end: its balance at the end then counts
/// periods below zero as an unsigned number, for which no answer is recorded (null).
bool endsBeforeItsLastMember(const Json& plan) {
  const auto lastStart = dateFromVector(plan.at("segments").back().at("startDate"));
  return dateFromVector(plan.at("endDate"))->compare(*lastStart) == NSOrderedAscending;
}

std::string checkBalances(const Json& in, const Json& out) {
  const auto dates = datesFromVector(in.at("dates"));
  const auto balances = planFrom(in.at("plan"))
                            ->plannedBalancesOnDates(dates, in.at("inclusive").get<bool>(),
                                                     *calendarFromVector(in.at("calendar")),
                                                     behaviorFrom(in.at("behavior")).get());
  if (balances.size() != out.size()) return disagreement(out.size(), balances.size());
  for (std::size_t index = 0; index < balances.size(); ++index) {
    if (out[index].is_null() && endsBeforeItsLastMember(in.at("plan"))) continue;
    const auto difference =
        compareBalances(decimalFrom(out[index]), balances[index], in.at("behavior"));
    if (!difference.empty()) return "[" + std::to_string(index) + "]: " + difference;
  }
  return {};
}

using Extreme =
    Decimal (ORLFAmortizationPlan::*)(const ORLFAmortizationPlan::BalanceBetweenDates&) const;

JsonCheck checkExtreme(Extreme extreme) {
  return [extreme](const Json& in, const Json& out) {
    const auto calendar = calendarFromVector(in.at("calendar"));
    const auto behavior = behaviorFrom(in.at("behavior"));
    std::optional<NSDate> date;
    const Decimal balance =
        ((*planFrom(in.at("plan"))).*extreme)({.startDate = dateFromVector(in.at("from")),
                                               .endDate = dateFromVector(in.at("to")),
                                               .usingCalendar = *calendar,
                                               .roundingBehavior = behavior.get(),
                                               .peakDate = &date});
    const auto difference =
        compareBalances(decimalFrom(out.at("balance")), balance, in.at("behavior"));
    return difference.empty() ? disagreement(dateFromVector(out.at("date")), date) : difference;
  };
}

std::string checkSegmentForDate(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  std::optional<NSDate> start;
  std::optional<NSDate> end;
  std::optional<NSDate> last;
  const Segment segment = planFrom(in.at("plan"))
                              ->planSegementForDate({.date = dateFromVector(in.at("date")),
                                                     .usingCalendar = *calendar,
                                                     .startDate = &start,
                                                     .endDate = &end,
                                                     .lastContributionDate = &last});
  if (out.is_null()) return disagreement(false, segment != nullptr);
  for (const std::string& difference :
       {compareSegments(segmentFrom(out.at("segment")), segment),
        disagreement(dateFromVector(out.at("startDate")), start),
        disagreement(dateFromVector(out.at("endDate")), end),
        disagreement(dateFromVector(out.at("lastContributionDate")), last)}) {
    if (!difference.empty()) return difference;
  }
  return {};
}

std::string checkPlanContributions(const Json& in, const Json& out) {
  const auto calendar = calendarFromVector(in.at("calendar"));
  const auto behavior = behaviorFrom(in.at("behavior"));
  return compareBalances(
      decimalFrom(out),
      planFrom(in.at("plan"))
          ->plannedContributionsFromStartDate({.startDate = dateFromVector(in.at("from")),
                                               .toEndDate = *dateFromVector(in.at("to")),
                                               .usingCalendar = *calendar,
                                               .continuous = in.at("continuous").get<bool>(),
                                               .roundingBehavior = behavior.get()}),
      in.at("behavior"));
}

std::string checkInsertion(const Json& in, const Json& out) {
  const Plan plan = planFrom(in.at("plan"));
  plan->setPlanSegment(segmentFrom(in.at("segment")), dateFromVector(in.at("from")),
                       dateFromVector(in.at("to")), in.at("lastSegmentOfPlan").get<bool>());
  return comparePlans(planFrom(out), plan);
}

std::string checkTrim(const Json& in, const Json& out) {
  const Plan plan = planFrom(in.at("plan"));
  plan->trimPlanSegmentsToStartDate(dateFromVector(in.at("from")), dateFromVector(in.at("to")));
  return comparePlans(planFrom(out), plan);
}

TEST(ORLFAmortizationPlan, AgreesWithVectors) {
  runJsonVectors(
      "planning_plan",
      {{"plannedBalanceOnDate", checkBalance},
       {"plannedBalancesOnDates", checkBalances},
       {"plannedPeakBalance",
        checkExtreme(&ORLFAmortizationPlan::plannedPeakBalanceBetweenStartDate)},
       {"plannedTroughBalance",
        checkExtreme(&ORLFAmortizationPlan::plannedTroughBalanceBetweenStartDate)},
       {"planSegementForDate", checkSegmentForDate},
       {"plannedContributions", checkPlanContributions},
       {"setPlanSegment", checkInsertion},
       {"trimPlanSegments", checkTrim},
       {"amortizationPlanWithStartDate",
        [](const Json& in, const Json& out) {
          return comparePlans(planFrom(out),
                              planFrom(in.at("plan"))
                                  ->amortizationPlanWithStartDate(dateFromVector(in.at("from")),
                                                                  dateFromVector(in.at("to"))));
        }},
       {"amortizationPlanByMerging",
        [](const Json& in, const Json& out) {
          return comparePlans(planFrom(out), planFrom(in.at("plan"))
                                                 ->amortizationPlanByMergingWithAmortizationPlan(
                                                     *planFrom(in.at("other"))));
        }},
       {"contributionDateAfterDate",
        [](const Json& in, const Json& out) {
          return disagreement(dateFromVector(out), planFrom(in.at("plan"))
                                                       ->contributionDateAfterDate(
                                                           dateFromVector(in.at("date")),
                                                           *calendarFromVector(in.at("calendar"))));
        }},
       {"contributionDateBeforeDate", [](const Json& in, const Json& out) {
          return disagreement(dateFromVector(out), planFrom(in.at("plan"))
                                                       ->contributionDateBeforeDate(
                                                           *dateFromVector(in.at("date")),
                                                           *calendarFromVector(in.at("calendar"))));
        }}});
}

}  // namespace
}  // namespace orlftest
