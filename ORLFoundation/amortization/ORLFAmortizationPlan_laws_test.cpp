// Laws of plans over a thousand random histories of insertions, trims and merges, of a fixed seed.

#include <ORLFoundation/amortization/ORLFAmortizationPlan_testing.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <set>

namespace orlftest {
namespace {

class History {
 public:
  explicit History(unsigned seed) : random_(seed), plan_(makePlan({{date(), terms()}}, openOr())) {}

  void step() {
    for (const Segment& member : plan_->segments()) seen_.insert(member);
    switch (pick(4)) {
      case 0:
      case 1:
        plan_->setPlanSegment(makeSegment(terms()), date(), openOr(), pick(3) == 0);
        break;
      case 2:
        plan_->trimPlanSegmentsToStartDate(date(), openOr());
        break;
      default:
        plan_ = plan_->amortizationPlanByMergingWithAmortizationPlan(
            *makePlan({{utc(2024, 1, 1), terms()}, {utc(2025, 1, 1), terms()}}, utc(2026, 1, 1)));
        seen_.clear();
    }
  }

  [[nodiscard]] const Plan& plan() const { return plan_; }
  [[nodiscard]] const std::set<Segment>& seen() const { return seen_; }
  NSDate date() { return utc(2018 + pick(14), 1 + pick(12), 1 + pick(28)); }

 private:
  NSInteger pick(NSInteger count) {
    return std::uniform_int_distribution<NSInteger>(0, count - 1)(random_);
  }
  std::optional<NSDate> openOr() {
    if (pick(5) == 0) return std::nullopt;
    return utc(2033 + pick(3), 1 + pick(12), 1);
  }
  Terms terms() {
    const char* const rates[] = {"0", "0.05", "-0.01", "0.12"};
    const NSInteger units[] = {4, 8, 16, 2048, 8192};
    Terms terms{.contribution = number("10"),
                .frequency = every(1 + pick(3), units[pick(5)]),
                .rate = number(rates[pick(4)])};
    if (pick(3) == 0) terms.principal = number("1000");
    if (pick(3) == 0) terms.inflation = number("0.02");
    return terms;
  }

  std::mt19937 random_;
  Plan plan_;
  std::set<Segment> seen_;
};

/// Members in strictly rising order that all start before the plan's end.
bool isInOrder(const ORLFAmortizationPlan& plan) {
  std::optional<NSDate> before;
  for (const Segment& member : plan.segments()) {
    if (before && member->startDate()->compare(*before) != NSOrderedDescending) return false;
    before = member->startDate();
  }
  return before->compare(*plan.endDate()) == NSOrderedAscending;
}

TEST(ORLFAmortizationPlanLaws, MembersAreLinkedAndMembersThatLeftAreCleared) {
  for (unsigned seed = 0; seed < 1000; ++seed) {
    History history(seed);
    for (int step = 0; step < 6; ++step) {
      history.step();
      const auto& members = history.plan()->segments();
      ASSERT_FALSE(members.empty());
      for (const Segment& member : members) {
        ASSERT_EQ(member->amortizationPlan(), history.plan());
        ASSERT_NE(member->startDate(), std::nullopt);
      }
      for (const Segment& segment : history.seen()) {
        if (std::find(members.begin(), members.end(), segment) != members.end()) continue;
        ASSERT_EQ(segment->startDate(), std::nullopt) << "seed " << seed;
        ASSERT_EQ(segment->amortizationPlan(), nullptr) << "seed " << seed;
      }
    }
  }
}

TEST(ORLFAmortizationPlanLaws, BothFormsOfBalancesAgreeInsideAPlanInOrder) {
  int checked = 0;
  for (unsigned seed = 0; seed < 300; ++seed) {
    History history(seed);
    for (int step = 0; step < 4; ++step) history.step();
    const Plan& plan = history.plan();
    if (!isInOrder(*plan)) continue;
    std::vector<NSDate> dates;
    NSDate date = *plan->planStartDate();
    for (int month = 0; month < 200; ++month) {
      dates.push_back(date);
      date = date.dateByAddingTimeInterval(86400 * 29.5);
    }
    const auto many = plan->plannedBalancesOnDates(dates, true, utcCalendar(), cents());
    for (std::size_t index = 0; index < dates.size(); ++index) {
      ASSERT_EQ(textOf(many[index]),
                textOf(plan->plannedBalanceOnDate(dates[index], true, utcCalendar(), cents())))
          << "seed " << seed << ", " << dates[index].description();
      ++checked;
    }
  }
  EXPECT_GT(checked, 10000);
}

TEST(ORLFAmortizationPlanLaws, QueriesEndWhateverThePlanAndTheDate) {
  for (unsigned seed = 0; seed < 200; ++seed) {
    History history(seed);
    for (int step = 0; step < 8; ++step) history.step();
    const Plan& plan = history.plan();
    for (const double seconds :
         {std::nan(""), -std::numeric_limits<double>::infinity(),
          std::numeric_limits<double>::infinity(), 1e300, -1e300, 1e13, 0.0, 63113904000.0}) {
      const NSDate odd = NSDate::dateWithTimeIntervalSinceReferenceDate(seconds);
      const NSDate plain = history.date();
      for (const bool flag : {false, true}) {
        (void)plan->plannedBalanceOnDate(odd, flag, utcCalendar(), nullptr);
        (void)plan->plannedBalancesOnDates(std::vector{plain, odd}, flag, utcCalendar(), nullptr);
        (void)plan->plannedContributionsFromStartDate({.startDate = plain,
                                                       .toEndDate = odd,
                                                       .usingCalendar = utcCalendar(),
                                                       .continuous = flag});
      }
      (void)plan->plannedPeakBalanceBetweenStartDate(
          {.startDate = plain, .endDate = odd, .usingCalendar = utcCalendar()});
      (void)plan->plannedTroughBalanceBetweenStartDate(
          {.startDate = odd, .endDate = plain, .usingCalendar = utcCalendar()});
      (void)plan->contributionDateAfterDate(odd, utcCalendar());
      (void)plan->amortizationPlanWithStartDate(plain, odd);
      plan->setPlanSegment(makeSegment({}), odd, plain, seed % 2 == 0);
    }
    EXPECT_FALSE(plan->segments().empty());
  }
}

}  // namespace
}  // namespace orlftest
