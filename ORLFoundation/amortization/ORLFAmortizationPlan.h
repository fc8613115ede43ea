/// A timeline of segments in order of their start, with one end date for the whole. Each segment
/// runs until the next one starts, the last one until the plan's end, which is exclusive. The plan
/// tells balances, contributions, peaks and troughs, and solves for a starting principal.
///
///     auto plan = ORLFAmortizationPlan::initWithStartDate(start, mortgage, std::nullopt);
///     plan->setPlanSegment(savings, payoff, std::nullopt, true);
///     auto balance = plan->plannedBalanceOnDate(date, true, *calendar, &cents);
///
/// `firstSegment`, `lastSegment`, `planStartDate`, `planEndDate` and `lastIntrestingDate` are
/// derived; whoever observes one is told when what it rests on changes. A plan is used from one
/// thread at a time.
#pragma once

#include <ORLFoundation/amortization/ORLFAmortizationPlanSegment.h>
#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSCalendar;

class ORLFAmortizationPlan : public NSObject, public NSSecureCoding {
 public:
  using Segment = std::shared_ptr<ORLFAmortizationPlanSegment>;

  struct SegementForDate {
    std::optional<NSDate> date = std::nullopt;
    const NSCalendar& usingCalendar;
    std::optional<NSDate>* startDate = nullptr;
    std::optional<NSDate>* endDate = nullptr;
    std::optional<NSDate>* lastContributionDate = nullptr;
  };
  struct PlannedContributions {
    std::optional<NSDate> startDate = std::nullopt;
    NSDate toEndDate;
    const NSCalendar& usingCalendar;
    bool continuous = false;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct BalanceBetweenDates {
    std::optional<NSDate> startDate = std::nullopt;
    std::optional<NSDate> endDate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
    std::optional<NSDate>* peakDate = nullptr;
  };
  struct StartingPrincipal {
    NSDate startDate;
    const ORLFAmortizationPlan& forAmortizationPlan;
    NSDecimalNumber toMatchPlannedBalance;
    NSDate onDate;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };

  /// `initWithStartDate:segment:endDate:`  A plan of one segment, a copy of the one given. A nil
  /// start is the current date, a nil end `NSDate::distantFuture()`. Null, with a line on the log,
  /// for a start after the end and for a segment without a contribution frequency.
  [[nodiscard]] static std::shared_ptr<ORLFAmortizationPlan> initWithStartDate(
      std::optional<NSDate> startDate, const Segment& segment, std::optional<NSDate> endDate);
  /// A plan without segments and end, for readers that fill it through the setters.
  ORLFAmortizationPlan();
  ~ORLFAmortizationPlan() override;

  [[nodiscard]] const std::vector<Segment>& segments() const noexcept;
  /// Keeps a copy of the list and links each member to this plan. Raises
  /// NSInvalidArgumentException, and changes nothing, for a null member.
  void setSegments(std::vector<Segment> segments);
  /// The end, exclusive; `setEndDate:` moves it without a look at the segments.
  [[nodiscard]] const std::optional<NSDate>& endDate() const noexcept;
  void setEndDate(std::optional<NSDate> endDate);

  // Derived values; null or nil where a plan has none.
  [[nodiscard]] Segment firstSegment() const;
  [[nodiscard]] Segment lastSegment() const;
  /// `planStartDate`  The first segment's start.
  [[nodiscard]] std::optional<NSDate> planStartDate() const;
  /// `planEndDate`  nil for an open plan.
  [[nodiscard]] std::optional<NSDate> planEndDate() const;
  /// `lastIntrestingDate`  The last date on which anything changes.
  [[nodiscard]] std::optional<NSDate> lastIntrestingDate() const;

  /// `setPlanSegment:fromStartDate:toEndDate:lastSegmentOfPlan:`  Puts a copy of a segment over a
  /// range: members inside it leave the plan (their start and plan become nil), a member that runs
  /// past it starts at its end, a gap is filled by a segment that carries the balance on. With the
  /// flag the plan ends with the range and all later members go. A nil end is distantFuture; with
  /// a nil start the range begins with the plan, and the new member has no start date. Observers
  /// hear of the end before the segments. Raises NSInvalidArgumentException for a null segment.
  void setPlanSegment(const Segment& segment, std::optional<NSDate> fromStartDate,
                      std::optional<NSDate> toEndDate, bool lastSegmentOfPlan);
  /// `trimPlanSegmentsToStartDate:afterEndDate:`  Moves one member's start to a later start, and
  /// the plan's end to a later end. Members stay in the plan whatever the dates, and an earlier
  /// end changes nothing; this is required.
  void trimPlanSegmentsToStartDate(std::optional<NSDate> startDate,
                                   std::optional<NSDate> afterEndDate);
  /// `amortizationPlanByMergingWithAmortizationPlan:`  A new plan in which the other plan wins
  /// wherever it has a segment.
  [[nodiscard]] std::shared_ptr<ORLFAmortizationPlan> amortizationPlanByMergingWithAmortizationPlan(
      const ORLFAmortizationPlan& other) const;
  /// `amortizationPlanWithStartDate:endDate:`  A new plan trimmed to a range, and filled up to it
  /// with segments without contributions.
  [[nodiscard]] std::shared_ptr<ORLFAmortizationPlan> amortizationPlanWithStartDate(
      std::optional<NSDate> startDate, std::optional<NSDate> endDate) const;

  /// `planSegementNoCopyForDate:usingCalendar:startDate:endDate:lastContributionDate:`  The member
  /// in force on a date (nil: the plan's start). Null before the plan, on its end and after it; the
  /// outputs are then left as they were. A segment that never ends has no last contribution date.
  [[nodiscard]] Segment planSegementNoCopyForDate(const SegementForDate& arguments) const;
  /// `planSegementForDate:usingCalendar:startDate:endDate:lastContributionDate:`  The same, with a
  /// copy of the member.
  [[nodiscard]] Segment planSegementForDate(const SegementForDate& arguments) const;

  /// `plannedContributionsFromStartDate:toEndDate:usingCalendar:continuous:roundingBehavior:`
  /// What flows in between two dates, over all segments; zero outside the plan. nil when the
  /// behaviour answers an error with nil.
  [[nodiscard]] std::optional<NSDecimalNumber> plannedContributionsFromStartDate(
      const PlannedContributions& arguments) const;
  /// `plannedBalanceOnDate:inclusive:usingCalendar:roundingBehavior:`  nil before the plan; past
  /// its end the balance at the end. Where one segment ends and the next starts, inclusive means
  /// the balance of the next, which its own principal may reset, else the end of the one before.
  [[nodiscard]] std::optional<NSDecimalNumber> plannedBalanceOnDate(
      NSDate date, bool inclusive, const NSCalendar& usingCalendar,
      const NSDecimalNumberBehaviors* roundingBehavior) const;
  /// `plannedBalancesOnDates:inclusive:usingCalendar:roundingBehavior:`  One value for each of the
  /// ascending dates, in one pass over the segments. Differs from the single form: zero before the
  /// plan, and inclusive for all dates after the first that passes a segment's end.
  [[nodiscard]] std::vector<std::optional<NSDecimalNumber>> plannedBalancesOnDates(
      std::span<const NSDate> dates, bool inclusive, const NSCalendar& usingCalendar,
      const NSDecimalNumberBehaviors* roundingBehavior) const;
  /// `plannedPeakBalanceBetweenStartDate:endDate:usingCalendar:roundingBehavior:peakDate:`  The
  /// highest balance at the ends of the segments in a range, the plan's own by default, and its
  /// date, the earliest on a tie. nil, with the date left as it was, when there is none and when
  /// the search meets a segment without end that rises.
  std::optional<NSDecimalNumber> plannedPeakBalanceBetweenStartDate(
      const BalanceBetweenDates& arguments) const;
  /// `plannedTroughBalanceBetweenStartDate:endDate:usingCalendar:roundingBehavior:peakDate:`  The
  /// same for the lowest balance; its date also goes to `peakDate`.
  std::optional<NSDecimalNumber> plannedTroughBalanceBetweenStartDate(
      const BalanceBetweenDates& arguments) const;

  /// `contributionDateAfterDate:usingCalendar:`  The plan's start for nil and for earlier dates;
  /// else the next contribution date of the segment in force, even beyond that segment's end. nil
  /// where no segment is in force.
  [[nodiscard]] std::optional<NSDate> contributionDateAfterDate(
      std::optional<NSDate> date, const NSCalendar& usingCalendar) const;
  /// `contributionDateBeforeDate:usingCalendar:`  The last contribution date before a date; nil
  /// when the first is not earlier. Costs a step for each contribution since the plan's start.
  [[nodiscard]] std::optional<NSDate> contributionDateBeforeDate(
      NSDate date, const NSCalendar& usingCalendar) const;

  /// `startingPrincipalOnDate:forAmortizationPlan:toMatchPlannedBalance:onDate:usingCalendar:roundingBehavior:`
  /// The principal at a start date from which the plan reaches a balance on a date, to the scale of
  /// the behaviour: give one with a fixed scale for which loss of precision is no error
  /// (`ORLFRoundingBehavior`), since large principals are tried. What is solved is the first
  /// segment of `amortizationPlanWithStartDate` for the two dates, and the plan itself is left
  /// untouched: before the plan that is a stretch without contributions, and past its end the last
  /// segment goes on. On the first date of a segment the balance is that segment's. nil when no
  /// principal leads there, as where a later segment starts from its own. Where there is no
  /// balance, before the plan or where the behaviour answers an error with nil, the first principal
  /// tried counts as the answer: zero. An error that the behaviour raises reaches the caller.
  [[nodiscard]] static std::optional<NSDecimalNumber> startingPrincipalOnDate(
      const StartingPrincipal& arguments);

  [[nodiscard]] std::string className() const override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;
  /// `isEqual:`  A plan for which `isEqualAmortizationPlan` is true.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  /// `isEqualAmortizationPlan:`  Equal ends and equal segments in order. False for nil.
  [[nodiscard]] bool isEqualAmortizationPlan(const ORLFAmortizationPlan* other) const;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string description() const override;
  /// `copyWithZone:` (`NSCopying`)  A new plan of the receiver's class with copies of all
  /// segments, linked to it.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Under "segments" and "endDate", a nil end left out.
  /// Segments that were read are linked to the plan. Null where a member is no segment.
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFAmortizationPlan> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  class BalanceWalk;
  class BestBalance;

  static void refuseNull(const Segment& segment);

  [[nodiscard]] std::shared_ptr<ORLFAmortizationPlan> copyOfPlan() const;
  /// The last member that does not start after a date; none before the plan and from its end on.
  [[nodiscard]] std::optional<std::size_t> memberOnDate(NSDate date) const;
  [[nodiscard]] NSDate endOfMember(std::size_t index) const;
  std::optional<NSDecimalNumber> bestBalance(const BalanceBetweenDates& arguments,
                                             NSComparisonResult beaten) const;

  std::vector<Segment> segments_;
  std::optional<NSDate> endDate_;
};

}  // namespace ORLFoundation
