
#include <ORLFoundation/amortization/ORLFAmortizationPlan.h>

#include <ORLFoundation/amortization/internal/ORLFPlanDates.h>
#include <ORLFoundation/amortization/internal/ORLFPlanProjection.h>
#include <ORLFoundation/calendar/ORLFDateOrdering.h>
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/decimal/ORLFDecimalSolver.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <algorithm>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

NSDate earlierOf(NSDate left, NSDate right) { return orlfIsBefore(right, left) ? right : left; }

ORLFPlanProjection projectionOf(const ORLFAmortizationPlanSegment& member,
                                NSDate fristContributionDate, const NSCalendar& calendar,
                                const NSDecimalNumberBehaviors* behavior) {
  return {{.contribution = member.contribution(),
           .contributionFrequncy = member.contributionFrequncy().get(),
           .anualCompoundingRate = member.anualCompoundingRate(),
           .anualInflationRate = member.anualInflationRate()},
          fristContributionDate,
          calendar,
          behavior};
}

}  // namespace

std::optional<NSDecimalNumber> ORLFAmortizationPlan::plannedBalanceOnDate(
    NSDate date, bool inclusive, const NSCalendar& usingCalendar,
    const NSDecimalNumberBehaviors* roundingBehavior) const {
  std::optional<NSDecimalNumber> balance;
  auto cursor = planStartDate();
  while (cursor && (inclusive ? orlfIsOnOrAfter(date, *cursor) : orlfIsAfter(date, *cursor))) {
    const auto index = memberOnDate(*cursor);
    if (!index) break;
    const ORLFAmortizationPlanSegment& member = *segments_[*index];
    const NSDate end = endOfMember(*index);
    const auto& own = member.currentPrincipal();
    const NSDecimalNumber start = own ? *own : balance.value_or(NSDecimalNumber::zero());
    balance = projectionOf(member, *cursor, usingCalendar, roundingBehavior)
                  .principalOnDate(earlierOf(date, end), start);
    cursor = end;
  }
  return balance;
}

/// The single pass of many balances: the member reached, its projection and the balance at its
/// start. It moves forward only, to the next member as soon as a date reaches the end of this one.
class ORLFAmortizationPlan::BalanceWalk {
 public:
  BalanceWalk(const ORLFAmortizationPlan& plan, NSDate planStart, bool inclusive,
              const NSCalendar& calendar, const NSDecimalNumberBehaviors* behavior)
      : plan_(plan),
        planStart_(planStart),
        inclusive_(inclusive),
        calendar_(calendar),
        behavior_(behavior),
        value_(NSDecimalNumber::zero()) {
    enter(0);
  }

  std::optional<NSDecimalNumber> balanceOn(NSDate date) {
    if (isBeforePlan(date)) return NSDecimalNumber::zero();
    while (!finished_) {
      if (orlfIsBefore(date, end_)) return project(date);
      const bool onBoundary = date == end_;
      moveOn();
      if (onBoundary && !finished_) return project(date);
    }
    return value_;
  }

 private:
  [[nodiscard]] bool isBeforePlan(NSDate date) const {
    return inclusive_ ? orlfIsBefore(date, planStart_) : orlfIsOnOrBefore(date, planStart_);
  }

  [[nodiscard]] std::optional<NSDecimalNumber> project(NSDate date) const {
    return projection_->principalOnDate(date, value_.value_or(NSDecimalNumber::zero()));
  }

  /// A member's own principal replaces the balance that is carried on, unless it has no length.
  void enter(std::size_t index) {
    const ORLFAmortizationPlanSegment& member = *plan_.segments_[index];
    index_ = index;
    end_ = plan_.endOfMember(index);
    const auto& start = member.startDate();
    if (member.currentPrincipal() && isBefore(start, end_)) value_ = member.currentPrincipal();
    projection_.emplace(projectionOf(member, start.value_or(planStart_), calendar_, behavior_));
  }

  /// Once the first member is behind, the plan's start is no longer in question.
  void moveOn() {
    value_ = project(end_);
    inclusive_ = true;
    finished_ = index_ + 1 == plan_.segments_.size();
    if (!finished_) enter(index_ + 1);
  }

  const ORLFAmortizationPlan& plan_;
  const NSDate planStart_;
  bool inclusive_;
  const NSCalendar& calendar_;
  const NSDecimalNumberBehaviors* behavior_;
  std::size_t index_ = 0;
  NSDate end_;
  bool finished_ = false;
  std::optional<NSDecimalNumber> value_;
  std::optional<ORLFPlanProjection> projection_;
};

std::vector<std::optional<NSDecimalNumber>> ORLFAmortizationPlan::plannedBalancesOnDates(
    std::span<const NSDate> dates, bool inclusive, const NSCalendar& usingCalendar,
    const NSDecimalNumberBehaviors* roundingBehavior) const {
  const auto start = planStartDate();
  if (!start) return {dates.size(), NSDecimalNumber::zero()};
  std::vector<std::optional<NSDecimalNumber>> balances;
  balances.reserve(dates.size());
  BalanceWalk walk(*this, *start, inclusive, usingCalendar, roundingBehavior);
  for (const NSDate date : dates) balances.push_back(walk.balanceOn(date));
  return balances;
}

/// The best of the balances seen: the highest when `beaten` is ascending, else the lowest. A tie
/// keeps the earlier one.
class ORLFAmortizationPlan::BestBalance {
 public:
  explicit BestBalance(NSComparisonResult beaten) : beaten_(beaten) {}

  void offer(const std::optional<NSDecimalNumber>& balance, NSDate date) {
    if (!balance || (best_ && best_->compare(*balance) != beaten_)) return;
    best_ = balance;
    date_ = date;
  }
  /// A segment that never ends has no best balance when it goes on beyond the one at its start.
  void offerOpenEnd(const std::optional<NSDecimalNumber>& start,
                    const std::optional<NSDecimalNumber>& later) {
    if (start && later && start->compare(*later) == beaten_) best_.reset();
  }
  [[nodiscard]] const std::optional<NSDecimalNumber>& best() const { return best_; }
  [[nodiscard]] NSDate date() const { return date_; }

 private:
  NSComparisonResult beaten_;
  std::optional<NSDecimalNumber> best_;
  NSDate date_;
};

std::optional<NSDecimalNumber> ORLFAmortizationPlan::bestBalance(
    const BalanceBetweenDates& arguments, NSComparisonResult beaten) const {
  const NSCalendar& calendar = arguments.usingCalendar;
  const NSDate end = arguments.endDate.value_or(endDate_.value_or(NSDate::distantFuture()));
  const auto balanceOn = [&](NSDate date, bool inclusive) {
    return plannedBalanceOnDate(date, inclusive, calendar, arguments.roundingBehavior);
  };

  BestBalance best(beaten);
  auto cursor =
      isAfter(arguments.startDate, planStartDate()) ? arguments.startDate : planStartDate();
  while (const auto index = cursor ? memberOnDate(*cursor) : std::nullopt) {
    const NSDate from = *cursor;
    const NSDate memberEnd = endOfMember(*index);
    const NSDate to = earlierOf(end, memberEnd);
    const auto balanceAtStart = balanceOn(from, true);
    best.offer(balanceAtStart, from);
    if (!orlfIsBefore(to, NSDate::distantFuture())) {
      // No years, not one, are added: required.
      const auto later = calendar.dateByAddingUnit(NSCalendarUnitYear, 0, from, 0);
      if (later) best.offerOpenEnd(balanceAtStart, balanceOn(*later, false));
      break;
    }
    best.offer(balanceOn(to, false), to);
    if (orlfIsAfter(memberEnd, end)) break;
    cursor = memberEnd;
  }
  if (best.best() && arguments.peakDate) *arguments.peakDate = best.date();
  return best.best();
}

std::optional<NSDecimalNumber> ORLFAmortizationPlan::plannedPeakBalanceBetweenStartDate(
    const BalanceBetweenDates& arguments) const {
  return bestBalance(arguments, NSOrderedAscending);
}

std::optional<NSDecimalNumber> ORLFAmortizationPlan::plannedTroughBalanceBetweenStartDate(
    const BalanceBetweenDates& arguments) const {
  return bestBalance(arguments, NSOrderedDescending);
}

std::optional<NSDecimalNumber> ORLFAmortizationPlan::startingPrincipalOnDate(
    const StartingPrincipal& arguments) {
  const auto plan = arguments.forAmortizationPlan.amortizationPlanWithStartDate(arguments.startDate,
                                                                                arguments.onDate);
  const Segment first = plan->firstSegment();
  const auto side = [&](const NSDecimalNumber& candidate) -> NSInteger {
    if (first) first->setCurrentPrincipal(candidate);
    const auto balance = plan->plannedBalanceOnDate(arguments.onDate, true, arguments.usingCalendar,
                                                    arguments.roundingBehavior);
    if (!balance) return NSOrderedSame;
    const auto difference = balance->decimalNumberBySubtracting(arguments.toMatchPlannedBalance,
                                                                arguments.roundingBehavior);
    return difference ? orlfCompareWithZero(*difference) : NSOrderedSame;
  };
  return aproximateValueUsingLinearRegressionLowerBound(
      std::nullopt, std::nullopt, arguments.roundingBehavior,
      [&](const NSDecimalNumber& candidate, bool&) { return side(candidate); });
}

}  // namespace ORLFoundation
