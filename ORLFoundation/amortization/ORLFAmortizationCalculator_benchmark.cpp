// How fast the internal rate of return of many cash flows is found: of 10,000 flows within 50 ms.

#include <ORLFoundation/amortization/ORLFAmortizationCalculator.h>
#include <ORLFoundation/platform/object/NSArray.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

namespace {

using namespace ORLFoundation;

constexpr double kDaysInYear = 365, kRate = 0.07;
constexpr std::int64_t kFlows = 10000;

/// A daily payment of 1 over so many days, and what they are worth at the rate before them.
struct Flows {
  explicit Flows(std::int64_t count) : members(std::vector<id>(places(count), id(NSInteger{1}))) {
    values.push_back(0);
    for (std::int64_t day = 1; day < count; ++day) {
      values.push_back(1);
      values.front() -= std::pow(1 + kRate, -static_cast<double>(day) / kDaysInYear);
    }
  }
  static std::size_t places(std::int64_t count) { return static_cast<std::size_t>(count); }

  [[nodiscard]] std::optional<NSDecimalNumber> rate(NSUInteger options) const {
    return ORLFAmortizationCalculator::internalRateOfReturnForDataset(
        members, options, [this](const id& /*object*/, NSUInteger index, bool& /*stop*/) {
          return ORLFCashFlowPoint{static_cast<double>(index) / kDaysInYear, values[index]};
        });
  }

  NSArray members;
  std::vector<double> values;
};

void internalRateOfReturn(benchmark::State& state, NSUInteger options) {
  const Flows flows(kFlows);
  const auto rate = flows.rate(options);
  if (!rate || std::fabs(rate->doubleValue() - kRate) > 0.00002) {
    state.SkipWithError("the rate is wrong");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(flows.rate(options));
}
BENCHMARK_CAPTURE(internalRateOfReturn, inOrder, NSUInteger{0})
    ->Name("internalRateOfReturnOf10000Flows/ours")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(internalRateOfReturn, concurrent, NSUInteger{NSEnumerationConcurrent})
    ->Name("internalRateOfReturnConcurrently/ours")
    ->Unit(benchmark::kMillisecond);

void levelPayment(benchmark::State& state) {
  const auto principal = NSDecimalNumber::decimalNumberWithString("250000");
  const auto rate = NSDecimalNumber::decimalNumberWithString("0.00375");
  const auto payment = ORLFAmortizationCalculator::paymentOnInitialPrincipal(principal, rate, 360);
  if (!payment || std::fabs(payment->doubleValue() - 1266.7132745647017) > 1e-9) {
    state.SkipWithError("the payment is wrong");
    return;
  }
  for (auto _ : state)
    benchmark::DoNotOptimize(
        ORLFAmortizationCalculator::paymentOnInitialPrincipal(principal, rate, 360));
}
BENCHMARK(levelPayment)->Name("levelPayment/ours");

}  // namespace
