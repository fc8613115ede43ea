// Insertion, trim, ranges and merges of plans, and what observers hear of them.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orlftest {
namespace {

using testing::ElementsAre;

NSDate year(NSInteger number) { return utc(number, 1, 1); }

/// "2024 2025 | 2026": the years of the members' starts and of the plan's end.
std::string yearsOf(const ORLFAmortizationPlan& plan) {
  const auto yearOf = [](std::optional<NSDate> date) {
    return date == NSDate::distantFuture() ? "open" : vectorFromDate(date).substr(0, 4);
  };
  std::string shape;
  for (const Segment& member : plan.segments()) shape += yearOf(member->startDate()) + " ";
  return shape + "| " + yearOf(plan.endDate());
}

/// Members of three years each, told apart by their principal: 1 from 2024, 2 from 2027, 3 from
/// 2030 until 2033.
Plan threeMembers() {
  return makePlan({{year(2024), {.principal = number("1"), .contribution = number("10")}},
                   {year(2027), {.principal = number("2"), .contribution = number("20")}},
                   {year(2030), {.principal = number("3"), .contribution = number("30")}}},
                  year(2033));
}

/// "1 9 3": the members' principals, "-" for nil.
std::string principalsOf(const ORLFAmortizationPlan& plan) {
  std::string text;
  for (const Segment& member : plan.segments()) {
    text += member->currentPrincipal() ? member->currentPrincipal()->stringValue() : "-";
    text += " ";
  }
  return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

struct InsertionCase {
  const char* name;
  std::optional<NSDate> from;
  std::optional<NSDate> to;
  bool isLast;
  const char* shape;
  const char* principals;
};

const InsertionCase kInsertionCases[] = {
    {"CoversAMember", year(2027), year(2030), false, "2024 2027 2030 | 2033", "1 9 3"},
    {"CoversPartOfAMemberAndMovesItsStart", year(2027), year(2028), false,
     "2024 2027 2028 2030 | 2033", "1 9 2 3"},
    {"CutsAMemberShort", year(2028), year(2030), false, "2024 2027 2028 2030 | 2033", "1 2 9 3"},
    {"LeavesNoRestOfAMemberItLiesWithin", year(2028), year(2029), false,
     "2024 2027 2028 2030 | 2033", "1 2 9 3"},
    {"ReachesAcrossMembers", year(2025), year(2031), false, "2024 2025 2031 | 2033", "1 9 3"},
    {"CoversTheWholePlan", year(2024), year(2033), false, "2024 | 2033", "9"},
    {"MovesAnEarlierStart", year(2022), year(2025), false, "2022 2025 2027 2030 | 2033", "9 1 2 3"},
    {"FillsTheGapBeforeThePlan", year(2020), year(2022), false, "2020 2022 2024 2027 2030 | 2033",
     "9 - 1 2 3"},
    {"FillsTheGapBehindThePlan", year(2035), year(2037), false, "2024 2027 2030 2033 2035 | 2037",
     "1 2 3 - 9"},
    {"LeavesNoGapForTheLastSegment", year(2035), year(2037), true, "2024 2027 2030 2035 | 2037",
     "1 2 3 9"},
    {"FollowsThePlanWithoutAGap", year(2033), year(2037), false, "2024 2027 2030 2033 | 2037",
     "1 2 3 9"},
    {"KeepsTheLaterEnd", year(2032), year(2033), false, "2024 2027 2030 2032 | 2033", "1 2 3 9"},
    {"DropsLaterMembersAsTheLast", year(2028), year(2029), true, "2024 2027 2028 | 2029", "1 2 9"},
    {"ShortensThePlanAsTheLast", year(2031), year(2032), true, "2024 2027 2030 2031 | 2032",
     "1 2 3 9"},
    {"KeepsLaterMembersWhenItIsTheLastButTheFirst", year(2023), year(2025), true,
     "2023 2025 2027 2030 | 2025", "9 1 2 3"},
    {"TakesNoEndAsForEver", year(2031), std::nullopt, false, "2024 2027 2030 2031 | open",
     "1 2 3 9"},
};

class Insertion : public testing::TestWithParam<InsertionCase> {};

TEST_P(Insertion, MatchesTable) {
  const InsertionCase& row = GetParam();
  const Plan plan = threeMembers();
  plan->setPlanSegment(makeSegment({.principal = number("9")}), row.from, row.to, row.isLast);
  EXPECT_EQ(yearsOf(*plan), row.shape);
  EXPECT_EQ(principalsOf(*plan), row.principals);
  for (const Segment& member : plan->segments()) EXPECT_EQ(member->amortizationPlan(), plan);
}

INSTANTIATE_TEST_SUITE_P(ORLFAmortizationPlan, Insertion, testing::ValuesIn(kInsertionCases),
                         [](const auto& row) { return row.param.name; });

TEST(ORLFAmortizationPlan, InsertsACopy) {
  const Plan plan = threeMembers();
  const Segment segment = makeSegment({.principal = number("9")});
  plan->setPlanSegment(segment, year(2027), year(2030), false);
  EXPECT_NE(plan->segments()[1], segment);
  EXPECT_EQ(segment->startDate(), std::nullopt);
  EXPECT_EQ(segment->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlan, ClearsTheMembersThatLeave) {
  const Plan plan = threeMembers();
  const Segment first = plan->segments()[0];
  const Segment second = plan->segments()[1];
  const Segment third = plan->segments()[2];
  plan->setPlanSegment(makeSegment({}), year(2024), year(2031), false);
  for (const Segment& removed : {first, second}) {
    EXPECT_EQ(removed->startDate(), std::nullopt);
    EXPECT_EQ(removed->amortizationPlan(), nullptr);
  }
  EXPECT_EQ(third->startDate(), year(2031));
  EXPECT_EQ(third->amortizationPlan(), plan);
}

TEST(ORLFAmortizationPlan, ClearsTheMembersBehindTheLast) {
  const Plan plan = threeMembers();
  const Segment third = plan->segments()[2];
  plan->setPlanSegment(makeSegment({}), year(2028), year(2029), true);
  EXPECT_EQ(third->startDate(), std::nullopt);
  EXPECT_EQ(third->amortizationPlan(), nullptr);
}

TEST(ORLFAmortizationPlan, FillsGapsWithoutChangingTheBalance) {
  const Plan plan = makePlan({{year(2024),
                               {.principal = number("1000"),
                                .contribution = number("100"),
                                .frequency = monthly(2),
                                .rate = number("0.05")}}},
                             year(2025));
  plan->setPlanSegment(makeSegment({.contribution = number("1"), .frequency = monthly(3)}),
                       year(2027), year(2028), false);
  const Segment filler = plan->segments()[1];
  EXPECT_EQ(filler->startDate(), year(2025));
  EXPECT_EQ(textOf(filler->contribution()), "0");
  EXPECT_EQ(filler->contributionFrequncy()->interval(), 3);
  EXPECT_EQ(filler->currentPrincipal(), std::nullopt);
  EXPECT_EQ(filler->anualCompoundingRate(), std::nullopt);
  EXPECT_EQ(filler->anualInflationRate(), std::nullopt);
  EXPECT_EQ(filler->compoundingFrequncy(), nullptr);
  EXPECT_EQ(filler->amortizationPlan(), plan);
  const auto balance = [&](NSDate date) {
    return textOf(plan->plannedBalanceOnDate(date, true, utcCalendar(), cents()));
  };
  EXPECT_EQ(balance(year(2025)), balance(utc(2026, 12, 31)));
}

TEST(ORLFAmortizationPlan, InsertsWithoutAStartFromItsOwnStart) {
  const Plan plan = threeMembers();
  plan->setPlanSegment(makeSegment({.principal = number("9")}), std::nullopt, year(2027), false);
  EXPECT_EQ(principalsOf(*plan), "9 2 3");
  EXPECT_EQ(plan->firstSegment()->startDate(), std::nullopt);
}

TEST(ORLFAmortizationPlan, StopsItsScanAtAMemberBehindTheRange) {
  // A trim leaves members out of order; what lies behind the first one past the range is not seen.
  const Plan plan = threeMembers();
  plan->trimPlanSegmentsToStartDate(year(2028), std::nullopt);
  ASSERT_EQ(yearsOf(*plan), "2028 2027 2030 | 2033");
  plan->setPlanSegment(makeSegment({.principal = number("9")}), year(2026), utc(2027, 7, 1), false);
  EXPECT_EQ(yearsOf(*plan), "2026 2027 2028 2027 2030 | 2033");
  EXPECT_EQ(principalsOf(*plan), "9 - 1 2 3");
}

// ---- trim ----

TEST(ORLFAmortizationPlan, TrimMovesTheStartOfAPlanOfOneSegment) {
  const Plan plan = makePlan({{year(2024), {}}}, year(2030));
  plan->trimPlanSegmentsToStartDate(year(2026), std::nullopt);
  EXPECT_EQ(yearsOf(*plan), "2026 | 2030");
}

TEST(ORLFAmortizationPlan, TrimIgnoresAnEarlierEndAndTakesALaterOne) {
  const Plan plan = threeMembers();
  plan->trimPlanSegmentsToStartDate(std::nullopt, year(2028));
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2033");
  plan->trimPlanSegmentsToStartDate(std::nullopt, year(2040));
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2040");
}

TEST(ORLFAmortizationPlan, TrimIgnoresAnEarlierStart) {
  const Plan plan = threeMembers();
  plan->trimPlanSegmentsToStartDate(year(2020), std::nullopt);
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2033");
}

TEST(ORLFAmortizationPlan, TrimKeepsItsMembersAndMovesTheStartOfOne) {
  const Plan behindSecond = threeMembers();
  behindSecond->trimPlanSegmentsToStartDate(year(2028), std::nullopt);
  EXPECT_EQ(yearsOf(*behindSecond), "2028 2027 2030 | 2033");
  const Plan behindFirst = threeMembers();
  behindFirst->trimPlanSegmentsToStartDate(year(2025), std::nullopt);
  EXPECT_EQ(yearsOf(*behindFirst), "2024 2027 2025 | 2033");
}

TEST(ORLFAmortizationPlan, TrimDoesNothingForAStartThatIsNotBeforeTheEnd) {
  const Plan plan = threeMembers();
  plan->trimPlanSegmentsToStartDate(year(2040), year(2040));
  plan->trimPlanSegmentsToStartDate(year(2041), year(2040));
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2033");
}

// ---- ranges and merges ----

TEST(ORLFAmortizationPlan, RangeFillsUpToAnEarlierStart) {
  const Plan plan = threeMembers();
  const Plan range = plan->amortizationPlanWithStartDate(year(2020), year(2040));
  EXPECT_EQ(yearsOf(*range), "2020 2024 2027 2030 | 2040");
  EXPECT_EQ(principalsOf(*range), "- 1 2 3");
  EXPECT_EQ(textOf(range->firstSegment()->contribution()), "0");
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2033");
}

TEST(ORLFAmortizationPlan, RangeWithoutDatesIsACopy) {
  const Plan plan = threeMembers();
  const Plan range = plan->amortizationPlanWithStartDate(std::nullopt, std::nullopt);
  EXPECT_NE(range, plan);
  EXPECT_TRUE(range->isEqual(plan.get()));
}

TEST(ORLFAmortizationPlan, RangeAppendsAFillerWhereTheTrimLeftTheEnd) {
  // The range is empty, so the trim does nothing and the end is still the plan's.
  const Plan range = threeMembers()->amortizationPlanWithStartDate(year(2040), year(2040));
  EXPECT_EQ(yearsOf(*range), "2024 2027 2030 2033 | 2040");
  EXPECT_EQ(principalsOf(*range), "1 2 3 -");
}

TEST(ORLFAmortizationPlan, MergeLetsTheOtherPlanWin) {
  const Plan plan = threeMembers();
  const Plan other =
      makePlan({{year(2026), {.principal = number("8")}}, {year(2028), {.principal = number("9")}}},
               year(2031));
  const Plan merged = plan->amortizationPlanByMergingWithAmortizationPlan(*other);
  EXPECT_EQ(yearsOf(*merged), "2024 2026 2028 2031 | 2033");
  EXPECT_EQ(principalsOf(*merged), "1 8 9 3");
  EXPECT_EQ(yearsOf(*plan), "2024 2027 2030 | 2033");
  EXPECT_EQ(yearsOf(*other), "2026 2028 | 2031");
}

// ---- failures ----

TEST(ORLFAmortizationPlan, RefusesAStartAfterItsEnd) {
  LogCapture log;
  EXPECT_EQ(ORLFAmortizationPlan::initWithStartDate(year(2025), makeSegment({}), year(2024)),
            nullptr);
  EXPECT_THAT(log.lines(),
              ElementsAre("Condition Failed: [startDate compare:endDate] != NSOrderedDescending "
                          "endDate must be after startDate"));
}

TEST(ORLFAmortizationPlan, RefusesASegmentWithoutAFrequency) {
  for (const Segment& segment : {Segment(), makeSegment({.frequency = noPeriod()})}) {
    LogCapture log;
    EXPECT_EQ(ORLFAmortizationPlan::initWithStartDate(year(2024), segment, year(2025)), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("Condition Failed: segment.contributionFrequncy != nil "
                                         "segment.contributionFrequncy cannont be nil"));
  }
}

TEST(ORLFAmortizationPlan, StartsOnTheDayOfItsEnd) {
  LogCapture log;
  EXPECT_NE(ORLFAmortizationPlan::initWithStartDate(year(2024), makeSegment({}), year(2024)),
            nullptr);
  EXPECT_THAT(log.lines(), testing::IsEmpty());
}

// ---- observation ----

class Listener {
 public:
  Listener(const Plan& plan, const char* keyPath)
      : token_(plan->addObserver(keyPath, NSKeyValueObservingOptionNew,
                                 [this](const NSKeyValueChange& change) {
                                   values_.push_back(vectorFromDate(change.newValue.as<NSDate>()));
                                 })) {}

  [[nodiscard]] const std::vector<std::string>& values() const { return values_; }

 private:
  std::vector<std::string> values_;
  std::shared_ptr<NSKeyValueObservation> token_;
};

TEST(ORLFAmortizationPlan, TellsObserversOfDerivedDates) {
  const Plan plan = threeMembers();
  const Listener start(plan, "planStartDate");
  const Listener end(plan, "planEndDate");
  const Listener last(plan, "lastIntrestingDate");
  plan->setEndDate(NSDate::distantFuture());
  EXPECT_THAT(end.values(), ElementsAre("nil"));
  EXPECT_THAT(last.values(), ElementsAre("2030-01-01T00:00:00Z"));
  plan->firstSegment()->setStartDate(year(2023));
  EXPECT_THAT(start.values(), ElementsAre("2023-01-01T00:00:00Z"));
  plan->lastSegment()->setStartDate(year(2031));
  EXPECT_THAT(last.values(), ElementsAre("2030-01-01T00:00:00Z", "2031-01-01T00:00:00Z"));
}

TEST(ORLFAmortizationPlan, TellsObserversOfTheFirstSegmentThatAnInsertionBrings) {
  const Plan plan = threeMembers();
  const Listener start(plan, "planStartDate");
  plan->setPlanSegment(makeSegment({}), year(2020), year(2024), false);
  ASSERT_FALSE(start.values().empty());
  EXPECT_EQ(start.values().back(), "2020-01-01T00:00:00Z");
  // The observation has moved to the new first segment.
  plan->firstSegment()->setStartDate(year(2019));
  EXPECT_EQ(start.values().back(), "2019-01-01T00:00:00Z");
}

TEST(ORLFAmortizationPlan, InsertsAndMovesItsEndBeforeItReplacesItsSegments) {
  const Plan plan = threeMembers();
  std::vector<std::string> heard;
  const auto note = [&](const NSKeyValueChange& change) {
    heard.push_back(std::string(change.keyPath) + ": " + yearsOf(*plan));
  };
  const auto end = plan->addObserver("endDate", NSKeyValueObservingOptionNew, note);
  const auto segments = plan->addObserver("segments", NSKeyValueObservingOptionNew, note);
  plan->setPlanSegment(makeSegment({}), year(2028), year(2040), false);
  // While the end is told, the list is still the old one; its covered members have left already.
  EXPECT_THAT(heard,
              ElementsAre("endDate: 2024 2027 nil | 2040", "segments: 2024 2027 2028 | 2040"));
}

TEST(ORLFAmortizationPlan, TellsObserversOfTheLastSegmentWhenItsSegmentsChange) {
  const Plan plan = threeMembers();
  std::vector<Segment> heard;
  const auto token = plan->addObserver(
      "lastSegment", NSKeyValueObservingOptionNew, [&](const NSKeyValueChange& change) {
        heard.push_back(change.newValue.as<ORLFAmortizationPlanSegment>());
      });
  plan->setPlanSegment(makeSegment({}), year(2032), year(2034), true);
  EXPECT_THAT(heard, ElementsAre(plan->lastSegment()));
  plan->setSegments({plan->firstSegment()});
  EXPECT_THAT(heard, testing::SizeIs(2));
  EXPECT_EQ(heard.back(), plan->firstSegment());
  plan->setEndDate(year(2050));
  EXPECT_THAT(heard, testing::SizeIs(2));
}

TEST(ORLFAmortizationPlan, MovesTheMemberBesideTheLastOneInAPlanWithoutAnEnd) {
  const Plan plan = makePlan({{year(2024), {}}, {year(2027), {}}}, year(2030));
  plan->setEndDate(std::nullopt);
  plan->setPlanSegment(makeSegment({}), year(2023), year(2025), false);
  EXPECT_EQ(yearsOf(*plan), "2023 2025 2027 | 2025");
}

TEST(ORLFAmortizationPlan, LogsNothingWhereItInserts) {
  const LogCapture log;
  for (const bool isLast : {false, true}) {
    for (const NSInteger first : {2020, 2024, 2026, 2030, 2032, 2033, 2040})
      threeMembers()->setPlanSegment(makeSegment({}), year(first), year(first + 1), isLast);
  }
  EXPECT_THAT(log.lines(), ElementsAre());
}

TEST(ORLFAmortizationPlan, FillsARangeOfWhichNothingIsTrimmedAsTheLastOfThePlan) {
  const Plan plan = makePlan({{year(2024), {}}, {year(2029), {}}}, year(2032));
  plan->setEndDate(year(2026));
  // The start is not before the end: no trim, and the filler up to the end is all that follows.
  EXPECT_EQ(yearsOf(*plan->amortizationPlanWithStartDate(year(2028), year(2028))),
            "2024 2026 | 2028");
}

TEST(ORLFAmortizationPlan, ReadsDerivedValuesByKey) {
  const Plan plan = threeMembers();
  EXPECT_EQ(plan->valueForKey("planStartDate").as<NSDate>(), year(2024));
  EXPECT_EQ(plan->valueForKey("planEndDate").as<NSDate>(), year(2033));
  EXPECT_EQ(plan->valueForKey("lastIntrestingDate").as<NSDate>(), year(2033));
  EXPECT_EQ(plan->valueForKeyPath("lastSegment.startDate").as<NSDate>(), year(2030));
  EXPECT_EQ(plan->valueForKey("firstSegment").as<ORLFAmortizationPlanSegment>(),
            plan->firstSegment());
}

}  // namespace
}  // namespace orlftest
