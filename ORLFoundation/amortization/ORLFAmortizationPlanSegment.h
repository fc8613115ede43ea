/// One stretch of a savings or debt plan with constant terms: a principal at its start, a regular
/// contribution, a yearly rate of growth and one of inflation. The projection formulas of the whole
/// library stand here, as static operations that take every term and as operations of a segment
/// that take its own.
///
///     auto segment = std::make_shared<ORLFAmortizationPlanSegment>();
///     segment->setCurrentPrincipal(NSDecimalNumber::decimalNumberWithString("1000"));
///     segment->setContribution(NSDecimalNumber::decimalNumberWithString("100"));
///     auto balance = segment->plannedPrincipalOnDate(date, segment->currentPrincipal(), start,
///                                                    *calendar, nullptr);
///
/// Growth is projected in binary doubles and only the end result becomes a decimal of six places,
/// which is then rounded by the behaviour: a planning estimate, not a ledger. Without growth all
/// stays in decimals. A total that is not finite becomes not-a-number.
#pragma once

#include <ORLFoundation/platform/archive/NSSecureCoding.h>
#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation {

class NSCalendar;
class ORLFAmortizationPlan;
class ORLFDateRecurrencePeriod;

class ORLFAmortizationPlanSegment : public NSObject, public NSSecureCoding {
 public:
  /// What one projection takes; see `plannedPrincipalOnDate`.
  struct PlannedPrincipalOnDate {
    NSDate date;
    std::optional<NSDecimalNumber> startingWithPrincipal = std::nullopt;
    NSDate fristContributionDate;
    std::optional<NSDecimalNumber> contribution = std::nullopt;
    std::shared_ptr<ORLFDateRecurrencePeriod> contributionFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualCompoundingRate = std::nullopt;
    std::optional<NSDecimalNumber> anualInflationRate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct PeriodsToReachBalance {
    std::optional<NSDecimalNumber> balance = std::nullopt;
    std::optional<NSDecimalNumber> startingWithPrincipal = std::nullopt;
    std::optional<NSDate> fristContributionDate = std::nullopt;
    std::optional<NSDecimalNumber> contribution = std::nullopt;
    std::shared_ptr<ORLFDateRecurrencePeriod> contributionFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualCompoundingRate = std::nullopt;
    std::shared_ptr<ORLFDateRecurrencePeriod> compoundingFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualInflationRate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct SegmentPeriodsToReachBalance {
    std::optional<NSDecimalNumber> balance = std::nullopt;
    std::optional<NSDecimalNumber> startingWithBalance = std::nullopt;
    std::optional<NSDate> fristContributionDate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct RecuringPayment {
    std::optional<NSDecimalNumber> payment = std::nullopt;
    std::shared_ptr<ORLFDateRecurrencePeriod> paymentFrequncey = nullptr;
    NSUInteger numberOfPayments = 0;
    std::optional<NSDecimalNumber> anualCompoundingRate = std::nullopt;
    std::shared_ptr<ORLFDateRecurrencePeriod> compoundingFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualInflationRate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct PresentValue {
    std::optional<NSDecimalNumber> furureValue = std::nullopt;
    NSUInteger numberOfPeriods = 0;
    std::shared_ptr<ORLFDateRecurrencePeriod> compoundingFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualCompoundingRate = std::nullopt;
    std::optional<NSDecimalNumber> anualInflationRate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct FurureValue {
    std::optional<NSDecimalNumber> presentValue = std::nullopt;
    NSUInteger numberOfPeriods = 0;
    std::shared_ptr<ORLFDateRecurrencePeriod> compoundingFrequncy = nullptr;
    std::optional<NSDecimalNumber> anualInflationRate = std::nullopt;
    const NSCalendar& usingCalendar;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };
  struct PlannedContributions {
    NSDate startDate;
    NSDate toEndDate;
    const NSCalendar& usingCalendar;
    bool continuous = false;
    const NSDecimalNumberBehaviors* roundingBehavior = nullptr;
  };

  /// `plannedPrincipalOnDate:startingWithPrincipal:fristContributionDate:contribution:contributionFrequncy:anualCompoundingRate:anualInflationRate:usingCalendar:roundingBehavior:`
  /// The balance on a date. A nil principal, contribution or inflation counts as zero, a nil
  /// frequency as monthly; a rate that is nil or not positive means no growth, and then inflation
  /// takes no part. Contributions fall at the start of each period. With growth and an interval k
  /// above 1 the periods elapsed are divided by k once more; this is required. A date before the
  /// first contribution date is projected backwards with growth; do not ask for one without.
  /// nil when the behaviour answers an error with nil. Raises NSInvalidArgumentException for an
  /// interval of 0 without growth.
  [[nodiscard]] static std::optional<NSDecimalNumber> plannedPrincipalOnDate(
      const PlannedPrincipalOnDate& arguments);
  /// `contributionDateAfterCount:startDate:contributionFrequncy:usingCalendar:`
  /// The date `count` contributions after the start, month ends clamped from the start date. nil
  /// for a nil frequency and for a date beyond what the calendar can tell.
  [[nodiscard]] static std::optional<NSDate> contributionDateAfterCount(
      NSUInteger count, NSDate startDate,
      const std::shared_ptr<ORLFDateRecurrencePeriod>& contributionFrequncy,
      const NSCalendar& usingCalendar);
  /// `numberOfContributionPeriodsToReachBalance:startingWithPrincipal:fristContributionDate:contribution:contributionFrequncy:anualCompoundingRate:compoundingFrequncy:anualInflationRate:usingCalendar:roundingBehavior:`
  /// How many contribution periods bring the balance to the target: `NSIntegerMax` when the plan
  /// does not move toward it, when it is there already while the plan moves, when the frequency,
  /// first date, principal or target is nil, and when the dates leave the calendar before the
  /// target is reached. The count is the last point that the bisection tried, plus one when the
  /// target is still above its balance, for falling balances too; this is required.
  [[nodiscard]] static NSUInteger numberOfContributionPeriodsToReachBalance(
      const PeriodsToReachBalance& arguments);
  /// `startingPrincipalForRecuringPayment:paymentFrequncey:numberOfPayments:anualCompoundingRate:compoundingFrequncy:anualInflationRate:usingCalendar:roundingBehavior:`
  /// The opening balance that the payments bring to zero: negative for positive payments. nil
  /// without growth. Days and weeks of a year are counted in the current year.
  [[nodiscard]] static std::optional<NSDecimalNumber> startingPrincipalForRecuringPayment(
      const RecuringPayment& arguments);
  /// `presentValueForFurureValue:numberOfPeriods:compoundingFrequncy:anualCompoundingRate:anualInflationRate:usingCalendar:roundingBehavior:`
  /// A future amount in today's terms. Inflation is applied by the year and multiplies, the rate
  /// is applied by the period and divides; this is required. Not-a-number for a nil frequency.
  [[nodiscard]] static std::optional<NSDecimalNumber> presentValueForFurureValue(
      const PresentValue& arguments);
  /// `furureValueForPresentValue:numberOfPeriods:compoundingFrequncy:anualInflationRate:usingCalendar:roundingBehavior:`
  /// An amount of today in future terms, with inflation applied by the period.
  [[nodiscard]] static std::optional<NSDecimalNumber> furureValueForPresentValue(
      const FurureValue& arguments);

  /// `init`  All nil, and monthly contributions.
  ORLFAmortizationPlanSegment();
  ~ORLFAmortizationPlanSegment() override;

  /// The balance at the start; nil when it carries on from the segment before.
  [[nodiscard]] const std::optional<NSDecimalNumber>& currentPrincipal() const noexcept;
  void setCurrentPrincipal(std::optional<NSDecimalNumber> principal);
  /// What is added at each contribution date; nil counts as zero.
  [[nodiscard]] const std::optional<NSDecimalNumber>& contribution() const noexcept;
  void setContribution(std::optional<NSDecimalNumber> contribution);
  /// Unit and interval of contributions. `setContributionFrequncy:` keeps `copy` of its argument,
  /// which for a plain period is the same object.
  [[nodiscard]] const std::shared_ptr<ORLFDateRecurrencePeriod>& contributionFrequncy()
      const noexcept;
  void setContributionFrequncy(const std::shared_ptr<ORLFDateRecurrencePeriod>& frequency);
  /// Growth per year as a fraction: 0.05 is five percent. nil or not positive means none.
  [[nodiscard]] const std::optional<NSDecimalNumber>& anualCompoundingRate() const noexcept;
  void setAnualCompoundingRate(std::optional<NSDecimalNumber> rate);
  /// Stored and compared; projections compound once per contribution period whatever it says.
  /// `setCompoundingFrequncy:` keeps `copy` of its argument.
  [[nodiscard]] const std::shared_ptr<ORLFDateRecurrencePeriod>& compoundingFrequncy()
      const noexcept;
  void setCompoundingFrequncy(const std::shared_ptr<ORLFDateRecurrencePeriod>& frequency);
  /// Yearly rise of the contribution as a fraction; nil counts as zero.
  [[nodiscard]] const std::optional<NSDecimalNumber>& anualInflationRate() const noexcept;
  void setAnualInflationRate(std::optional<NSDecimalNumber> rate);
  /// The plan that holds the segment, or null; the link does not keep the plan alive.
  [[nodiscard]] std::shared_ptr<ORLFAmortizationPlan> amortizationPlan() const;
  void setAmortizationPlan(const std::shared_ptr<ORLFAmortizationPlan>& plan);
  /// First date of the segment, set by its plan.
  [[nodiscard]] const std::optional<NSDate>& startDate() const noexcept;
  void setStartDate(std::optional<NSDate> date);

  /// `plannedPrincipalOnDate:startingWithPrincipal:fristContributionDate:usingCalendar:roundingBehavior:`
  /// The static operation with the segment's terms. Takes its arguments one by one, so that a
  /// braced list always means the static operation.
  [[nodiscard]] std::optional<NSDecimalNumber> plannedPrincipalOnDate(
      NSDate date, const std::optional<NSDecimalNumber>& startingWithPrincipal,
      NSDate fristContributionDate, const NSCalendar& usingCalendar,
      const NSDecimalNumberBehaviors* roundingBehavior) const;
  /// `numberOfContributionPeriodsToReachBalance:startingWithBalance:fristContributionDate:usingCalendar:roundingBehavior:`
  /// The static operation with the segment's terms.
  [[nodiscard]] NSUInteger numberOfContributionPeriodsToReachBalance(
      const SegmentPeriodsToReachBalance& arguments) const;
  /// `plannedContributionsFromStartDate:toEndDate:usingCalendar:continuous:roundingBehavior:`
  /// What flows in between two dates: spread evenly when continuous, where a part of a period
  /// counts; else the whole periods from the last contribution date at or before the start. nil
  /// for a nil contribution. A segment without a start date counts from the first date. Dates in
  /// the wrong order give what their count as an unsigned number gives: the fault of the caller.
  [[nodiscard]] std::optional<NSDecimalNumber> plannedContributionsFromStartDate(
      const PlannedContributions& arguments) const;
  /// `contributionDateAfterDate:usingCalendar:`
  /// The first contribution date strictly after a date, counted from the segment's start so that
  /// the day of the month never drifts; the start itself for an earlier date; one period after
  /// the date when the segment has no start. nil without a frequency or beyond the calendar.
  [[nodiscard]] std::optional<NSDate> contributionDateAfterDate(
      NSDate date, const NSCalendar& usingCalendar) const;

  [[nodiscard]] std::string className() const override;
  [[nodiscard]] const NSKeyTable& keyTable() const override;
  /// `isEqual:`  A segment for which `isEqualSegment` is true.
  [[nodiscard]] bool isEqual(const NSObject* other) const override;
  /// `isEqualSegment:`  The start date and the six terms; the plan takes no part. False for nil.
  [[nodiscard]] bool isEqualSegment(const ORLFAmortizationPlanSegment* other) const;
  [[nodiscard]] NSUInteger hash() const override;
  [[nodiscard]] std::string description() const override;
  /// `copyWithZone:`  A new segment of the receiver's class with the same start and terms, and no
  /// plan.
  [[nodiscard]] std::shared_ptr<NSObject> copy() override;

  /// `encodeWithCoder:`, `initWithCoder:`  Each term under its name, nil ones left out,
  /// and the plan under "amortizationPlan". Reading takes a missing contribution frequency for
  /// monthly. The link to the plan that was read is as weak as any: keep the plan.
  void encodeWithCoder(NSCoder& coder) const override;
  [[nodiscard]] static std::shared_ptr<ORLFAmortizationPlanSegment> initWithCoder(NSCoder& coder);
  [[nodiscard]] static bool supportsSecureCoding() noexcept { return true; }
  [[nodiscard]] static const NSCodingClass& codingClass();
  [[nodiscard]] const NSCodingClass& classForCoder() const override { return codingClass(); }

 protected:
  [[nodiscard]] std::shared_ptr<NSObject> newObjectOfReceiversClass() const override;

 private:
  std::optional<NSDecimalNumber> currentPrincipal_;
  std::optional<NSDecimalNumber> contribution_;
  std::shared_ptr<ORLFDateRecurrencePeriod> contributionFrequncy_;
  std::optional<NSDecimalNumber> anualCompoundingRate_;
  std::shared_ptr<ORLFDateRecurrencePeriod> compoundingFrequncy_;
  std::optional<NSDecimalNumber> anualInflationRate_;
  std::weak_ptr<ORLFAmortizationPlan> amortizationPlan_;
  std::optional<NSDate> startDate_;
};

}  // namespace ORLFoundation
