// The plan as an object: how it starts, its derived values, the segment on a date, copies,
// equality.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace orlftest {
namespace {

/// "2024-01-01 2025-01-01 | 2026-01-01": starts of the members and end of the plan.
std::string shapeOf(const ORLFAmortizationPlan& plan) {
  const auto day = [](std::optional<NSDate> date) {
    return date == kOpen ? "open" : vectorFromDate(date).substr(0, 10);
  };
  std::string shape;
  for (const Segment& member : plan.segments()) shape += day(member->startDate()) + " ";
  return shape + "| " + day(plan.endDate());
}

// ---- initialiser and derived values ----

TEST(ORLFAmortizationPlan, StartsWithACopyOfItsSegment) {
  const Segment segment = makeSegment({.principal = number("1")});
  const auto plan = ORLFAmortizationPlan::initWithStartDate(kJan24, segment, kJan25);
  ASSERT_EQ(plan->segments().size(), 1U);
  EXPECT_NE(plan->firstSegment(), segment);
  EXPECT_EQ(plan->firstSegment()->startDate(), kJan24);
  EXPECT_EQ(plan->firstSegment()->amortizationPlan(), plan);
  EXPECT_EQ(segment->startDate(), std::nullopt);
  EXPECT_EQ(plan->lastSegment(), plan->firstSegment());
}

TEST(ORLFAmortizationPlan, StartsNowAndStaysOpenByDefault) {
  const Replaced clock(NSDate::setClock, [] { return utc(2024, 6, 1); });
  const auto plan = ORLFAmortizationPlan::initWithStartDate(std::nullopt, makeSegment({}), {});
  EXPECT_EQ(shapeOf(*plan), "2024-06-01 | open");
}

TEST(ORLFAmortizationPlan, TellsNoEndWhileItIsOpen) {
  const Plan plan = makePlan({{kJan24, {}}, {kJan25, {}}}, kOpen);
  EXPECT_EQ(plan->planEndDate(), std::nullopt);
  EXPECT_EQ(plan->lastIntrestingDate(), kJan25);
  plan->setEndDate(kJan26);
  EXPECT_EQ(plan->planEndDate(), kJan26);
  EXPECT_EQ(plan->lastIntrestingDate(), kJan26);
}

TEST(ORLFAmortizationPlan, AnswersWithoutSegments) {
  const auto plan = std::make_shared<ORLFAmortizationPlan>();
  EXPECT_EQ(plan->firstSegment(), nullptr);
  EXPECT_EQ(plan->lastSegment(), nullptr);
  EXPECT_EQ(plan->planStartDate(), std::nullopt);
  EXPECT_EQ(plan->planEndDate(), std::nullopt);
  EXPECT_EQ(plan->lastIntrestingDate(), std::nullopt);
  EXPECT_EQ(plan->plannedBalanceOnDate(kJan24, true, utcCalendar(), nullptr), std::nullopt);
  EXPECT_THAT(
      plan->plannedBalancesOnDates(std::vector{kJan24, kJan25}, true, utcCalendar(), nullptr),
      testing::ElementsAre(NSDecimalNumber::zero(), NSDecimalNumber::zero()));
  EXPECT_EQ(plan->plannedPeakBalanceBetweenStartDate({.usingCalendar = utcCalendar()}),
            std::nullopt);
  EXPECT_EQ(plan->planSegementNoCopyForDate({.date = kJan24, .usingCalendar = utcCalendar()}),
            nullptr);
  EXPECT_EQ(plan->contributionDateAfterDate(std::nullopt, utcCalendar()), std::nullopt);
  EXPECT_EQ(plan->contributionDateBeforeDate(kJan24, utcCalendar()), std::nullopt);
  plan->setPlanSegment(makeSegment({}), kJan24, kJan25, false);
  EXPECT_EQ(shapeOf(*plan), "2024-01-01 | 2025-01-01");
}

// ---- segment on a date ----

TEST(ORLFAmortizationPlan, EndsExclusively) {
  const Plan plan = twoYears();
  EXPECT_EQ(plan->planSegementNoCopyForDate({.date = kJan26, .usingCalendar = utcCalendar()}),
            nullptr);
  EXPECT_EQ(
      plan->planSegementNoCopyForDate({.date = utc(2025, 12, 31), .usingCalendar = utcCalendar()}),
      plan->lastSegment());
}

TEST(ORLFAmortizationPlan, TellsTheBoundsOfTheSegmentInForce) {
  const Plan plan = makePlan({{utc(2024, 1, 31), {.frequency = monthly(2)}}, {kJan25, {}}}, kJan26);
  std::optional<NSDate> start;
  std::optional<NSDate> end;
  std::optional<NSDate> last;
  const Segment segment = plan->planSegementNoCopyForDate({.date = std::nullopt,
                                                           .usingCalendar = utcCalendar(),
                                                           .startDate = &start,
                                                           .endDate = &end,
                                                           .lastContributionDate = &last});
  EXPECT_EQ(segment, plan->firstSegment());
  EXPECT_EQ(start, utc(2024, 1, 31));
  EXPECT_EQ(end, kJan25);
  EXPECT_EQ(last, utc(2024, 11, 30));
}

TEST(ORLFAmortizationPlan, LeavesTheOutputsAloneWhereNoSegmentIsInForce) {
  std::optional<NSDate> start = kOpen;
  const Plan plan = twoYears();
  for (const NSDate date : {utc(2023, 1, 1), kJan26}) {
    EXPECT_EQ(plan->planSegementNoCopyForDate(
                  {.date = date, .usingCalendar = utcCalendar(), .startDate = &start}),
              nullptr);
  }
  EXPECT_EQ(start, kOpen);
}

TEST(ORLFAmortizationPlan, HasNoLastContributionDateWhereASegmentNeverEnds) {
  std::optional<NSDate> last = kJan24;
  const Plan plan = makePlan({{kJan24, {}}}, kOpen);
  (void)plan->planSegementNoCopyForDate(
      {.date = kJan25, .usingCalendar = utcCalendar(), .lastContributionDate = &last});
  EXPECT_EQ(last, std::nullopt);
}

TEST(ORLFAmortizationPlan, HasNoLastContributionDateWithoutAFrequencyOrAStart) {
  const auto lastOf = [](const Plan& plan) {
    std::optional<NSDate> last = kJan24;
    const Segment segment = plan->planSegementNoCopyForDate(
        {.date = utc(2024, 6, 1), .usingCalendar = utcCalendar(), .lastContributionDate = &last});
    EXPECT_EQ(segment, plan->firstSegment());
    return last;
  };
  const auto withoutFrequency = std::make_shared<ORLFAmortizationPlan>();
  withoutFrequency->setPlanSegment(makeSegment({.frequency = noPeriod()}), kJan24, kJan25, true);
  EXPECT_EQ(lastOf(withoutFrequency), std::nullopt);
  const auto withoutStart = std::make_shared<ORLFAmortizationPlan>();
  withoutStart->setPlanSegment(makeSegment({}), std::nullopt, kJan25, true);
  EXPECT_EQ(lastOf(withoutStart), std::nullopt);
}

TEST(ORLFAmortizationPlan, HasNoSegmentBeforeItsStartThoughALaterMemberStartsEarlier) {
  const Plan plan = twoYears();
  plan->setSegments({plan->lastSegment(), plan->firstSegment()});
  EXPECT_EQ(
      plan->planSegementNoCopyForDate({.date = utc(2024, 6, 1), .usingCalendar = utcCalendar()}),
      nullptr);
}

TEST(ORLFAmortizationPlan, HandsOutACopyOfTheSegmentInForce) {
  const Plan plan = twoYears();
  const Segment copy = plan->planSegementForDate({.date = kJan24, .usingCalendar = utcCalendar()});
  EXPECT_NE(copy, plan->firstSegment());
  EXPECT_TRUE(copy->isEqual(plan->firstSegment().get()));
  EXPECT_EQ(copy->amortizationPlan(), nullptr);
  EXPECT_EQ(plan->planSegementForDate({.date = kJan26, .usingCalendar = utcCalendar()}), nullptr);
}

// ---- the object ----

TEST(ORLFAmortizationPlan, CopiesShareNothing) {
  const Plan plan = twoYears();
  const Plan copy = copyOf(plan);
  EXPECT_TRUE(copy->isEqual(plan.get()));
  EXPECT_EQ(copy->hash(), plan->hash());
  for (std::size_t index = 0; index < 2; ++index) {
    EXPECT_NE(copy->segments()[index], plan->segments()[index]);
    EXPECT_EQ(copy->segments()[index]->amortizationPlan(), copy);
    EXPECT_EQ(plan->segments()[index]->amortizationPlan(), plan);
  }
  copy->firstSegment()->setContribution(number("1"));
  EXPECT_FALSE(copy->isEqual(plan.get()));
  EXPECT_EQ(textOf(plan->firstSegment()->contribution()), "100");
}

TEST(ORLFAmortizationPlan, EqualsByEndAndSegments) {
  const Plan plan = twoYears();
  EXPECT_TRUE(plan->isEqual(twoYears().get()));
  EXPECT_FALSE(plan->isEqual(twoYearsWithReset().get()));
  EXPECT_FALSE(plan->isEqual(nullptr));
  EXPECT_FALSE(plan->isEqual(plan->firstSegment().get()));
  const Plan open = twoYears();
  open->setEndDate(std::nullopt);
  EXPECT_FALSE(plan->isEqual(open.get()));
  EXPECT_FALSE(open->isEqual(plan.get()));
  const Plan other = twoYears();
  other->setEndDate(std::nullopt);
  EXPECT_TRUE(open->isEqual(other.get()));
  EXPECT_FALSE(plan->isEqual(makePlan({{kJan24, {.principal = number("1000")}}}, kJan26).get()));
}

TEST(ORLFAmortizationPlan, SpreadsItsHashOverItsEndAndItsSegments) {
  std::set<NSUInteger> ofEnds;
  std::set<NSUInteger> ofSegments;
  for (NSInteger index = 1; index <= 100; ++index) {
    const Plan plan = twoYears();
    plan->setEndDate(utc(2026 + index, 1, 1));
    ofEnds.insert(plan->hash());
    const Plan other = twoYears();
    other->lastSegment()->setContribution(number(std::to_string(index)));
    ofSegments.insert(other->hash());
  }
  EXPECT_GT(ofEnds.size(), 90U);
  EXPECT_GT(ofSegments.size(), 90U);
}

TEST(ORLFAmortizationPlan, DescribesItsSegmentsAndItsEnd) {
  const Plan plan = makePlan({{kJan24, {.principal = number("1")}}}, kJan25);
  EXPECT_EQ(plan->description(),
            "(\n    \"2024-01-01 00:00:00 +0000, bal: 1, con: (null), frq: 1 month, comp: (null), "
            "comp freq: (null), inflat: (null)\"\n)\r2025-01-01 00:00:00 +0000");
}

class NamedPlan : public ORLFAmortizationPlan {
 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    return std::make_shared<NamedPlan>();
  }
};

TEST(ORLFAmortizationPlan, CopiesToItsOwnClass) {
  const auto plan = std::make_shared<NamedPlan>();
  plan->setPlanSegment(makeSegment({.principal = number("1")}), kJan24, kJan25, true);
  const auto copy = copyOf(std::static_pointer_cast<ORLFAmortizationPlan>(plan));
  EXPECT_TRUE(std::dynamic_pointer_cast<NamedPlan>(copy));
  EXPECT_TRUE(copy->isEqual(plan.get()));
  EXPECT_EQ(copy->firstSegment()->amortizationPlan(), copy);
  const auto range = plan->amortizationPlanWithStartDate(kJan24, kJan26);
  EXPECT_TRUE(std::dynamic_pointer_cast<NamedPlan>(range));
}

TEST(ORLFAmortizationPlan, RefusesNullMembersAndStaysAsItIs) {
  const Plan plan = twoYears();
  const Plan before = copyOf(plan);
  const Segment other = makeSegment({});
  EXPECT_EQ(nameOfException([&] { plan->setPlanSegment(nullptr, kJan24, kJan25, false); }),
            NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([&] {
              plan->setSegments({other, nullptr});
            }),
            NSInvalidArgumentException);
  EXPECT_EQ(nameOfException([&] {
              plan->setValueForKey(NSArray::arrayWithObjects({id(other), id("text")}), "segments");
            }),
            NSInvalidArgumentException);
  EXPECT_TRUE(plan->isEqual(before.get()));
  EXPECT_EQ(other->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlan, WorksWithoutAnOwner) {
  ORLFAmortizationPlan plan;
  plan.setPlanSegment(makeSegment({.contribution = number("1")}), kJan24, kJan25, true);
  EXPECT_EQ(plan.firstSegment()->amortizationPlan(), nullptr);
  EXPECT_EQ(textOf(plan.plannedBalanceOnDate(kJan25, true, utcCalendar(), nullptr)), "12");
}

}  // namespace
}  // namespace orlftest
