// The segment as an object: its terms, copies, equality, description and observers.
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlftest {
namespace {

using Class = ORLFAmortizationPlanSegment;

const NSDate kStart = utc(2024, 1, 1);
const NSDate kYearLater = utc(2025, 1, 1);

TEST(ORLFAmortizationPlanSegment, StartsMonthlyAndOtherwiseEmpty) {
  const Class segment;
  EXPECT_TRUE(segment.contributionFrequncy()->isEqual(monthly().get()));
  EXPECT_EQ(segment.compoundingFrequncy(), nullptr);
  EXPECT_EQ(segment.amortizationPlan(), nullptr);
  EXPECT_EQ(segment.startDate(), std::nullopt);
  for (const Decimal& term : {segment.currentPrincipal(), segment.contribution(),
                              segment.anualCompoundingRate(), segment.anualInflationRate()}) {
    EXPECT_EQ(term, std::nullopt);
  }
}

TEST(ORLFAmortizationPlanSegment, KeepsACopyOfAPeriodWhichIsThePeriodItself) {
  const auto segment = makeSegment({});
  const Period period = monthly();
  segment->setContributionFrequncy(period);
  period->setInterval(3);
  EXPECT_EQ(segment->contributionFrequncy()->interval(), 3);
  EXPECT_EQ(segment->contributionFrequncy(), period);
}

TEST(ORLFAmortizationPlanSegment, EqualsASegmentOfTheSameValues) {
  const Terms terms{.principal = number("1.50"),
                    .contribution = number("2"),
                    .rate = number("0.05"),
                    .inflation = number("0.01")};
  const auto left = makeSegment(terms);
  const auto right = makeSegment(terms);
  right->setCurrentPrincipal(number("1.5"));
  EXPECT_TRUE(left->isEqual(right.get()));
  EXPECT_EQ(left->hash(), right->hash());
  EXPECT_FALSE(left->isEqual(nullptr));
  EXPECT_FALSE(left->isEqual(monthly().get()));
}

TEST(ORLFAmortizationPlanSegment, DiffersByEachOfItsValues) {
  const Terms terms{.principal = number("1"), .contribution = number("2")};
  using Change = void (*)(Class&);
  const Change changes[] = {
      [](Class& segment) { segment.setStartDate(kStart); },
      [](Class& segment) { segment.setCurrentPrincipal(std::nullopt); },
      [](Class& segment) { segment.setContribution(number("3")); },
      [](Class& segment) { segment.setContributionFrequncy(monthly(2)); },
      [](Class& segment) { segment.setContributionFrequncy(nullptr); },
      [](Class& segment) { segment.setAnualCompoundingRate(number("0")); },
      [](Class& segment) { segment.setCompoundingFrequncy(monthly()); },
      [](Class& segment) { segment.setAnualInflationRate(number("0")); },
  };
  for (const Change change : changes) {
    const auto left = makeSegment(terms);
    const auto right = makeSegment(terms);
    change(*right);
    EXPECT_FALSE(left->isEqualSegment(right.get())) << right->description();
    EXPECT_FALSE(right->isEqualSegment(left.get())) << right->description();
  }
}

TEST(ORLFAmortizationPlanSegment, CopiesItsValuesAndNoPlan) {
  const auto plan = makePlan({{kStart, {.principal = number("1")}}}, kYearLater);
  const Segment segment = plan->firstSegment();
  segment->setCompoundingFrequncy(monthly(6));
  const Segment copy = copyOf(segment);
  EXPECT_NE(copy, segment);
  EXPECT_TRUE(copy->isEqual(segment.get()));
  EXPECT_EQ(segment->amortizationPlan(), plan);
  EXPECT_EQ(copy->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlanSegment, DoesNotKeepItsPlanAlive) {
  auto plan = makePlan({{kStart, {}}}, kYearLater);
  const Segment segment = plan->firstSegment();
  EXPECT_EQ(segment->amortizationPlan(), plan);
  plan.reset();
  EXPECT_EQ(segment->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlanSegment, DescribesItsValues) {
  const auto segment = makeSegment({.principal = number("1000"),
                                    .contribution = number("12.50"),
                                    .frequency = monthly(2),
                                    .rate = number("0.05")});
  segment->setStartDate(kStart);
  EXPECT_EQ(segment->description(),
            "2024-01-01 00:00:00 +0000, bal: 1000, con: 12.5, frq: 2 month, comp: 0.05, "
            "comp freq: (null), inflat: (null)");
}

TEST(ORLFAmortizationPlanSegment, TellsObserversOfItsTerms) {
  const auto segment = makeSegment({});
  std::vector<std::string> heard;
  std::vector<std::shared_ptr<NSKeyValueObservation>> tokens;
  for (const char* key :
       {"currentPrincipal", "contribution", "contributionFrequncy", "anualCompoundingRate",
        "compoundingFrequncy", "anualInflationRate", "startDate"}) {
    tokens.push_back(segment->addObserver(
        key, NSKeyValueObservingOptionNew,
        [&](const NSKeyValueChange& change) { heard.emplace_back(change.keyPath); }));
  }
  segment->setCurrentPrincipal(number("1"));
  segment->setContribution(number("1"));
  segment->setContributionFrequncy(monthly(2));
  segment->setAnualCompoundingRate(number("1"));
  segment->setCompoundingFrequncy(monthly(2));
  segment->setValueForKey(number("1"), "anualInflationRate");
  segment->setStartDate(kStart);
  EXPECT_THAT(heard,
              testing::ElementsAre("currentPrincipal", "contribution", "contributionFrequncy",
                                   "anualCompoundingRate", "compoundingFrequncy",
                                   "anualInflationRate", "startDate"));
}

}  // namespace
}  // namespace orlftest
