// The segment as an object: its terms, copies, equality, description and observers.
#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>
#include <string>

namespace orlftest {
namespace {

using Class = ORLFAmortizationPlanSegment;

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

/// A period whose copy is another object.
class CopiedPeriod : public ORLFDateRecurrencePeriod {
 public:
  using ORLFDateRecurrencePeriod::ORLFDateRecurrencePeriod;
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return std::make_shared<CopiedPeriod>(frequency(), interval());
  }
};

TEST(ORLFAmortizationPlanSegment, KeepsCopiesOfBothPeriods) {
  const auto segment = makeSegment({});
  const auto period = std::make_shared<CopiedPeriod>(ORLFDateRecurrenceFrequencyMonthly, 2);
  segment->setContributionFrequncy(period);
  segment->setCompoundingFrequncy(period);
  period->setInterval(7);
  EXPECT_NE(segment->contributionFrequncy(), period);
  EXPECT_NE(segment->compoundingFrequncy(), period);
  EXPECT_EQ(segment->contributionFrequncy()->interval(), 2);
  EXPECT_EQ(segment->compoundingFrequncy()->interval(), 2);
  // A copy of the segment has periods of its own too.
  const Segment copy = copyOf(segment);
  segment->contributionFrequncy()->setInterval(8);
  segment->compoundingFrequncy()->setInterval(9);
  EXPECT_EQ(copy->contributionFrequncy()->interval(), 2);
  EXPECT_EQ(copy->compoundingFrequncy()->interval(), 2);
}

/// A segment with a name of its own, and one that says nothing of new objects.
class NamedSegment : public ORLFAmortizationPlanSegment {
 public:
  std::string name = "untitled";

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override {
    auto segment = std::make_shared<NamedSegment>();
    segment->name = name;
    return segment;
  }
};
class NamelessSegment : public ORLFAmortizationPlanSegment {};

TEST(ORLFAmortizationPlanSegment, CopiesToItsOwnClass) {
  const auto segment = std::make_shared<NamedSegment>();
  segment->name = "house";
  segment->setContribution(number("5"));
  const auto copy = std::dynamic_pointer_cast<NamedSegment>(segment->copy());
  ASSERT_TRUE(copy);
  EXPECT_NE(copy, segment);
  EXPECT_EQ(copy->name, "house");
  EXPECT_TRUE(copy->isEqual(segment.get()));
  EXPECT_THROW((void)std::make_shared<NamelessSegment>()->copy(), NSException);
}

TEST(ORLFAmortizationPlanSegment, KeepsItsClassInAPlan) {
  const auto plan =
      ORLFAmortizationPlan::initWithStartDate(kJan24, std::make_shared<NamedSegment>(), kJan25);
  EXPECT_TRUE(std::dynamic_pointer_cast<NamedSegment>(plan->firstSegment()));
  plan->setPlanSegment(std::make_shared<NamedSegment>(), kJan25, kJan26, true);
  EXPECT_TRUE(std::dynamic_pointer_cast<NamedSegment>(plan->lastSegment()));
  EXPECT_TRUE(std::dynamic_pointer_cast<NamedSegment>(copyOf(plan)->lastSegment()));
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
      [](Class& segment) { segment.setStartDate(kJan24); },
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

TEST(ORLFAmortizationPlanSegment, SpreadsItsHashOverEachOfItsValues) {
  std::set<NSUInteger> hashes;
  for (NSInteger index = 1; index <= 20; ++index) {
    const NSDecimalNumber value = number(std::to_string(index));
    for (int field = 0; field < 7; ++field) {
      const auto segment = makeSegment({.frequency = noPeriod()});
      if (field == 0) segment->setStartDate(utc(2000 + index, 1, 1));
      if (field == 1) segment->setCurrentPrincipal(value);
      if (field == 2) segment->setContribution(value);
      if (field == 3) segment->setContributionFrequncy(monthly(index));
      if (field == 4) segment->setAnualCompoundingRate(value);
      if (field == 5) segment->setCompoundingFrequncy(monthly(index));
      if (field == 6) segment->setAnualInflationRate(value);
      hashes.insert(segment->hash());
    }
  }
  EXPECT_GT(hashes.size(), 130U);
}

TEST(ORLFAmortizationPlanSegment, CopiesItsValuesAndNoPlan) {
  const auto plan = makePlan({{kJan24, {.principal = number("1")}}}, kJan25);
  const Segment segment = plan->firstSegment();
  segment->setCompoundingFrequncy(monthly(6));
  const Segment copy = copyOf(segment);
  EXPECT_NE(copy, segment);
  EXPECT_TRUE(copy->isEqual(segment.get()));
  EXPECT_EQ(segment->amortizationPlan(), plan);
  EXPECT_EQ(copy->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlanSegment, DoesNotKeepItsPlanAlive) {
  auto plan = makePlan({{kJan24, {}}}, kJan25);
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
  segment->setStartDate(kJan24);
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
  segment->setStartDate(kJan24);
  EXPECT_THAT(heard,
              testing::ElementsAre("currentPrincipal", "contribution", "contributionFrequncy",
                                   "anualCompoundingRate", "compoundingFrequncy",
                                   "anualInflationRate", "startDate"));
}

}  // namespace
}  // namespace orlftest
