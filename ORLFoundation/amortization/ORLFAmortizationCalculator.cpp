
#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>

#include <ORLFoundation/amortization/internal/ORLFRateSearch.h>
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/base/FixedText.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <cmath>

namespace ORLFoundation {

using namespace internal::amortization;

namespace {

using PointGenerator = ORLFAmortizationCalculator::PointGenerator;

// The members' cash flows, each at its own index.
ORLFCashFlows flowsOf(const NSArray& dataset, NSUInteger options, const PointGenerator& generator) {
  ORLFCashFlows flows;
  flows.times.resize(dataset.count());
  flows.values.resize(dataset.count());
  dataset.enumerateObjectsWithOptions(options, [&](const id& object, NSUInteger index, bool& stop) {
    const ORLFCashFlowPoint point = generator(object, index, stop);
    flows.times[index] = point.x;
    flows.values[index] = point.y;
  });
  return flows;
}

// "%0.17f" read back: the rate to 17 places.
NSDecimalNumber decimalFromRate(double rate) {
  constexpr int kPlaces = 17;
  return NSDecimalNumber::decimalNumberWithString(internal::base::FixedText<kPlaces>(rate).view());
}

}  // namespace

std::optional<NSDecimalNumber> ORLFAmortizationCalculator::paymentPeriodRateForIntervalRate(
    std::optional<NSDecimalNumber> intervalRate, std::int32_t compoundingPeriodsPerInterval,
    std::int32_t paymentPeriodsPerInterval) {
  if (!intervalRate) return std::nullopt;
  const NSDecimalNumber compounding = orlfDecimalNumberWithInt(compoundingPeriodsPerInterval);
  const NSDecimalNumber payments = orlfDecimalNumberWithInt(paymentPeriodsPerInterval);
  const NSDecimalNumber base = intervalRate->decimalNumberByDividingBy(compounding)
                                   .decimalNumberByAdding(NSDecimalNumber::one());
  const NSDecimalNumber exponent = compounding.decimalNumberByDividingBy(payments);
  const double growth = std::pow(base.doubleValue(), exponent.doubleValue());
  // `initWithDouble:`, which keeps the double's full precision, and not the rounded decimal.
  return NSDecimalNumber(NSDecimal::fromDouble(growth))
      .decimalNumberBySubtracting(NSDecimalNumber::one());
}

std::optional<NSDecimalNumber> ORLFAmortizationCalculator::paymentOnInitialPrincipal(
    std::optional<NSDecimalNumber> initialPrincipal,
    std::optional<NSDecimalNumber> atPaymentPeriodRate, std::int32_t forNumberOfPeriods) {
  if (!initialPrincipal || !atPaymentPeriodRate) return std::nullopt;
  const NSDecimalNumber one = NSDecimalNumber::one();
  const NSDecimalNumber growth = one.decimalNumberByAdding(*atPaymentPeriodRate)
                                     .decimalNumberByRaisingToPower(forNumberOfPeriods);
  const NSDecimalNumber top = initialPrincipal->decimalNumberByMultiplyingBy(
      atPaymentPeriodRate->decimalNumberByMultiplyingBy(growth));
  return top.decimalNumberByDividingBy(growth.decimalNumberBySubtracting(one));
}

std::optional<NSDecimalNumber> ORLFAmortizationCalculator::interestForCurrentPrincipal(
    std::optional<NSDecimalNumber> currentPrincipal,
    std::optional<NSDecimalNumber> atPaymentPeriodRate) {
  return orlfDecimalNumberByMultiplyingBy(currentPrincipal, atPaymentPeriodRate);
}

std::optional<NSDecimalNumber> ORLFAmortizationCalculator::internalRateOfReturnForDataset(
    const NSArray& dataset, NSUInteger options, const PointGenerator& pointGenerator) {
  const auto rate = ORLFRateOfReturn(flowsOf(dataset, options, pointGenerator));
  if (!rate) return std::nullopt;
  return decimalFromRate(*rate);
}

double ORLFAmortizationCalculator::annualIntervalFromDate(std::optional<NSDate> fromDate,
                                                          std::optional<NSDate> toDate,
                                                          const NSCalendar* usingCalendar) {
  if (!fromDate || !toDate || usingCalendar == nullptr) return 0.0;
  constexpr double kDaysInYear = 365.0;
  const NSInteger days = usingCalendar->components(NSCalendarUnitDay, *fromDate, *toDate, 0).day();
  return days == NSDateComponentUndefined ? 0.0 : static_cast<double>(days) / kDaysInYear;
}

}  // namespace ORLFoundation
