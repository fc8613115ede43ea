// Typed amounts and sums per second, beside ICU's own parser on the same amounts.

#include <ORLFoundation/decimal/entry/ORLFNumberFormatter.h>

#include <benchmark/benchmark.h>
#include <unicode/decimfmt.h>
#include <unicode/locid.h>

#include <array>
#include <memory>
#include <string>

namespace ORLFoundation {
namespace {

constexpr std::array<const char*, 4> kAmounts{"12.50", "1,234.56", "7", "99999.99"};
constexpr double kSumOfAmounts = 101254;

void readAmounts(benchmark::State& state, bool decimals) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter.setGeneratesDecimalNumbers(decimals);
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const char* amount : kAmounts) {
      std::optional<NSNumber> value;
      formatter.getObjectValue(&value, amount);
      sum += value->doubleValue();
    }
    benchmark::DoNotOptimize(sum);
  }
  if (sum < kSumOfAmounts || sum > kSumOfAmounts + 1) state.SkipWithError("wrong amounts");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kAmounts.size()));
}
BENCHMARK_CAPTURE(readAmounts, decimals, true)->Name("ORLFNumberFormatter/amounts/ours");
BENCHMARK_CAPTURE(readAmounts, doubles, false)->Name("ORLFNumberFormatter/amounts/ours-doubles");

void readAmountsByICU(benchmark::State& state) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::NumberFormat> format(
      icu::NumberFormat::createInstance(icu::Locale("en_US"), UNUM_DECIMAL, status));
  format->setLenient(true);
  double sum = 0;
  for (auto _ : state) {
    sum = 0;
    for (const char* amount : kAmounts) {
      icu::Formattable value;
      format->parse(icu::UnicodeString::fromUTF8(amount), value, status);
      sum += value.getDouble(status);
    }
    benchmark::DoNotOptimize(sum);
  }
  if (U_FAILURE(status) || sum < kSumOfAmounts) state.SkipWithError("wrong amounts");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kAmounts.size()));
}
BENCHMARK(readAmountsByICU)->Name("ORLFNumberFormatter/amounts/icu");

void readSum(benchmark::State& state) {
  ORLFNumberFormatter formatter;
  formatter.setLocale(std::make_shared<NSLocale>("en_US"));
  formatter.setNumberStyle(NSNumberFormatterDecimalStyle);
  formatter.setGeneratesDecimalNumbers(true);
  std::optional<NSNumber> value;
  for (auto _ : state) {
    formatter.getObjectValue(&value, "12.50+3*[4-1]");
    benchmark::DoNotOptimize(value);
  }
  if (value != NSNumber(21.5)) state.SkipWithError("wrong sum");
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(readSum)->Name("ORLFNumberFormatter/sum/ours");

}  // namespace
}  // namespace ORLFoundation
