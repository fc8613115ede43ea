/// The arithmetic of loans, and the internal rate of return of dated cash flows. Class operations
/// only; nothing is kept between calls.
///
///     auto rate = ORLFAmortizationCalculator::paymentPeriodRateForIntervalRate(yearly, 2, 12);
///     auto payment =
///         ORLFAmortizationCalculator::paymentOnInitialPrincipal(principal, rate, 360);
///
/// `net_present_value` stands in a header of its own, which C can include.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <functional>
#include <optional>

namespace ORLFoundation {

class id;
class NSArray;
class NSCalendar;

/// A cash flow: its time in years from the present, and its amount.
struct ORLFCashFlowPoint {
  double x = 0;
  double y = 0;
};

class ORLFAmortizationCalculator : public NSObject {
 public:
  /// Makes the cash flow of a member. Setting `stop` ends the visit; members not visited count as
  /// an amount of 0 at time 0. Under `NSEnumerationConcurrent` it is called on several threads, and
  /// what it throws ends the visit and reaches the caller: see
  /// `NSArray::enumerateObjectsWithOptions`, which takes the options.
  using PointGenerator =
      std::function<ORLFCashFlowPoint(const id& object, NSUInteger index, bool& stop)>;

  /// `paymentPeriodRateForIntervalRate:compoundingPeriodsPerInterval:paymentPeriodsPerInterval:`
  /// The rate of one payment period for a nominal rate of an interval (0.05 a year), compounded so
  /// many times and paid so many times in it. nil for a nil rate. Counts of 0 raise as divisions
  /// by zero.
  [[nodiscard]] static std::optional<NSDecimalNumber> paymentPeriodRateForIntervalRate(
      std::optional<NSDecimalNumber> intervalRate, std::int32_t compoundingPeriodsPerInterval,
      std::int32_t paymentPeriodsPerInterval);

  /// `paymentOnInitialPrincipal:atPaymentPeriodRate:forNumberOfPeriods:`  The level payment, not
  /// rounded. nil when the principal or the rate is; a rate of 0 raises as a division by zero.
  [[nodiscard]] static std::optional<NSDecimalNumber> paymentOnInitialPrincipal(
      std::optional<NSDecimalNumber> initialPrincipal,
      std::optional<NSDecimalNumber> atPaymentPeriodRate, std::int32_t forNumberOfPeriods);

  /// `interestForCurrentPrincipal:atPaymentPeriodRate:`  Their product; nil when either is nil.
  [[nodiscard]] static std::optional<NSDecimalNumber> interestForCurrentPrincipal(
      std::optional<NSDecimalNumber> currentPrincipal,
      std::optional<NSDecimalNumber> atPaymentPeriodRate);

  /// `internalRateOfReturnForDataset:options:pointGenerator:`  The rate per year at which the
  /// members' cash flows are worth nothing, to within 0.00001 of the rate or of the worth. nil when
  /// no rate is found, as for flows of one sign. An empty list gives a large meaningless rate.
  [[nodiscard]] static std::optional<NSDecimalNumber> internalRateOfReturnForDataset(
      const NSArray& dataset, NSUInteger options, const PointGenerator& pointGenerator);

  /// `annualIntervalFromDate:toDate:usingCalendar:`  Years of 365 days, negative backward; 0 when
  /// a date or the calendar is nil, and for a date that the calendar cannot place.
  [[nodiscard]] static double annualIntervalFromDate(std::optional<NSDate> fromDate,
                                                     std::optional<NSDate> toDate,
                                                     const NSCalendar* usingCalendar);

  [[nodiscard]] std::string className() const override { return "ORLFAmortizationCalculator"; }
};

}  // namespace ORLFoundation
