#include <ORLFoundation/interchange/qif/ORLFQIFDataWriter.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/format/NSDateFormatter.h>
#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/stream/NSOutputStream.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;

constexpr std::int64_t kRecords = 10'000;
// 2020-01-01, in seconds from the reference date and in days from 1970.
constexpr double kFirstDay = 599'529'600;
constexpr int kFirstCivilDay = 18'262;
constexpr double kSecondsPerDay = 86'400;
constexpr int kDays = 1'500;

struct Payment {
  std::int64_t cents;
  int day;
};
/// Amounts and days that differ from one record to the next.
Payment paymentAt(std::int64_t record) {
  return {-(record * 7919 % 1'000'000), static_cast<int>(record * 31 % kDays)};
}

void count(benchmark::State& state) { state.SetItemsProcessed(state.iterations() * kRecords); }

void writeRecords(benchmark::State& state) {
  const Replaced current(NSLocale::setCurrentLocale, std::make_shared<NSLocale>("en_US"));
  std::string text;
  for (auto _ : state) {
    ORLFQIFDataWriter writer;
    writer.dateFormatter()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    writer.beginWriting();
    for (std::int64_t record = 0; record < kRecords; ++record) {
      const Payment payment = paymentAt(record);
      const std::uint64_t cents = static_cast<std::uint64_t>(-payment.cents);
      writer.writeNonInvestmentTransactionAmount(
          {.amount = NSDecimal(cents, -2, true),
           .date = NSDate::dateWithTimeIntervalSinceReferenceDate(kFirstDay +
                                                                  payment.day * kSecondsPerDay),
           .cleared = ORLFQIFCleared,
           .refNum = "1011",
           .payee = "Grocery Store, Main Street",
           .memo = "weekly",
           .category = "Food:Groceries"});
      writer.endTransaction();
    }
    const id data = writer.stream()->propertyForKey(NSStreamDataWrittenToMemoryStreamKey);
    text = std::string(data.as<NSData>()->text());
  }
  if (!text.starts_with("D1/1/20\nT0.00\nCc\nN1011\nPGrocery Store, Main Street\nMweekly\n"
                        "LFood:Groceries\n^\nD2/1/20\nT-79.19\n"))
    state.SkipWithError("wrong records");
  count(state);
}

/// The same lines by snprintf into one text, in one fixed locale.
void printRecords(benchmark::State& state) {
  std::string text;
  for (auto _ : state) {
    text.clear();
    for (std::int64_t record = 0; record < kRecords; ++record) {
      const Payment payment = paymentAt(record);
      const std::chrono::year_month_day day{
          std::chrono::sys_days(std::chrono::days(kFirstCivilDay + payment.day))};
      const std::int64_t cents = -payment.cents;
      char line[256];
      const int length = std::snprintf(
          line, sizeof line, "D%u/%u/%02d\nT%s%lld.%02lld\nCc\nN%s\nP%s\nM%s\nL%s\n^\n",
          static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
          static_cast<int>(day.year()) % 100, cents == 0 ? "" : "-",
          static_cast<long long>(cents / 100), static_cast<long long>(cents % 100), "1011",
          "Grocery Store, Main Street", "weekly", "Food:Groceries");
      text.append(line, static_cast<std::size_t>(length));
    }
    benchmark::DoNotOptimize(text.data());
  }
  if (!text.starts_with("D1/1/20\nT0.00\nCc\n")) state.SkipWithError("wrong records");
  count(state);
}

BENCHMARK(writeRecords)->Name("QIF records/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(printRecords)->Name("QIF records/snprintf")->Unit(benchmark::kMillisecond);

}  // namespace
