
#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>

#include <ORLFoundation/amortization/internal/ORLFRateSearch.h>
#include <ORLFoundation/decimal/ORLFDecimalNumber.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cmath>
#include <exception>
#include <mutex>
#include <string_view>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using PointGenerator = ORLFAmortizationCalculator::PointGenerator;

// Fills the lists of cash flows, each member at its own index. The visit ends when the generator
// says so; an exception of the generator ends it too and reaches the caller.
class CashFlowVisit {
 public:
  CashFlowVisit(const NSArray& dataset, const PointGenerator& generator)
      : dataset_(dataset), generator_(generator) {
    flows_.times.resize(dataset.count());
    flows_.values.resize(dataset.count());
  }

  void visitInOrder(bool reverse) {
    const std::size_t count = flows_.times.size();
    for (std::size_t i = 0; i < count && !stopped_; ++i) visit(reverse ? count - 1 - i : i);
  }

  void visitConcurrently() {
    const std::size_t count = flows_.times.size();
    const std::size_t workers =
        std::min<std::size_t>(count, std::max(2U, std::thread::hardware_concurrency()));
    std::vector<std::jthread> threads;
    threads.reserve(workers);
    for (std::size_t i = 0; i < workers; ++i) threads.emplace_back([this] { takeMembers(); });
    threads.clear();  // waits for all of them
    if (failure_) std::rethrow_exception(failure_);
  }

  [[nodiscard]] const ORLFCashFlows& flows() const { return flows_; }

 private:
  void visit(std::size_t index) {
    bool stop = false;
    const ORLFCashFlowPoint point = generator_(dataset_.objectAtIndex(index), index, stop);
    flows_.times[index] = point.x;
    flows_.values[index] = point.y;
    if (stop) stopped_ = true;
  }

  // Each thread takes the next members that nobody has taken, some at a time.
  void takeMembers() noexcept {
    constexpr std::size_t kTaken = 64;
    const std::size_t count = flows_.times.size();
    try {
      for (std::size_t begin = next_.fetch_add(kTaken); begin < count && !stopped_;
           begin = next_.fetch_add(kTaken)) {
        const std::size_t end = std::min(begin + kTaken, count);
        for (std::size_t i = begin; i < end && !stopped_; ++i) visit(i);
      }
    } catch (...) {
      stopped_ = true;
      const std::lock_guard lock(failureMutex_);
      if (!failure_) failure_ = std::current_exception();
    }
  }

  const NSArray& dataset_;
  const PointGenerator& generator_;
  ORLFCashFlows flows_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::mutex failureMutex_;
  std::exception_ptr failure_;
};

// "%0.17f" read back: the rate to 17 places.
NSDecimalNumber decimalFromRate(double rate) {
  constexpr int kPlaces = 17;
  char text[400];
  const auto end =
      std::to_chars(std::begin(text), std::end(text), rate, std::chars_format::fixed, kPlaces);
  return NSDecimalNumber::decimalNumberWithString(
      std::string_view(text, static_cast<std::size_t>(end.ptr - text)));
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
  CashFlowVisit visit(dataset, pointGenerator);
  if ((options & NSEnumerationConcurrent) != 0) {
    visit.visitConcurrently();
  } else {
    visit.visitInOrder((options & NSEnumerationReverse) != 0);
  }
  const std::optional<double> rate = ORLFRateOfReturn(visit.flows());
  if (!rate) return std::nullopt;
  return decimalFromRate(*rate);
}

double ORLFAmortizationCalculator::annualIntervalFromDate(std::optional<NSDate> fromDate,
                                                          std::optional<NSDate> toDate,
                                                          const NSCalendar* usingCalendar) {
  if (!fromDate || !toDate || usingCalendar == nullptr) return 0.0;
  constexpr double kDaysInYear = 365.0;
  const NSDateComponents between =
      usingCalendar->components(NSCalendarUnitDay, *fromDate, *toDate, 0);
  return static_cast<double>(between.day()) / kDaysInYear;
}

}  // namespace ORLFoundation
