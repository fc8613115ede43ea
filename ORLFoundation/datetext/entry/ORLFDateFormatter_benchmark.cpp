// How fast typed dates are read and printed, with ICU itself in the same run. Promised, a second:
// 250,000 dates by the format, 100,000 by the scan, 400,000 printed wide.

#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/time/NSTimeZone.h>
#include <benchmark/benchmark.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <memory>
#include <string>

namespace {

using namespace ORLFoundation;

constexpr double kDay = 1613174400;  // 2021-02-13T00:00:00Z

std::shared_ptr<ORLFDateFormatter> monthFirstFormatter() {
  NSLocale::setCurrentLocale(std::make_shared<NSLocale>("en_US"));
  NSTimeZone::setDefaultTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
  NSDate::setClock([] { return NSDate::dateWithTimeIntervalSince1970(kDay); });
  return std::make_shared<ORLFDateFormatter>();
}

void readOurs(benchmark::State& state, const char* text, const char* expected) {
  const auto formatter = monthFirstFormatter();
  const auto read = formatter->dateFromString(text);
  if (!read || formatter->stringFromDate(*read) != expected) {
    state.SkipWithError("the text was not read");
    return;
  }
  std::optional<NSDate> date;
  for (auto _ : state) benchmark::DoNotOptimize(formatter->getObjectValue(&date, text));
  state.SetItemsProcessed(state.iterations());
}

std::unique_ptr<icu::SimpleDateFormat> icuFormat(const char* pattern) {
  UErrorCode status = U_ZERO_ERROR;
  auto format = std::make_unique<icu::SimpleDateFormat>(icu::UnicodeString(pattern),
                                                        icu::Locale("en_US"), status);
  format->adoptTimeZone(icu::TimeZone::createTimeZone("America/New_York"));
  format->setLenient(true);
  return format;
}

void readICU(benchmark::State& state, const char* text) {
  const auto format = icuFormat("M/d/yy");
  const icu::UnicodeString units(text);
  for (auto _ : state) {
    icu::ParsePosition position(0);
    benchmark::DoNotOptimize(format->parse(units, position));
  }
  state.SetItemsProcessed(state.iterations());
}

BENCHMARK_CAPTURE(readOurs, format, "2/13/2021", "2/13/21")->Name("readByFormat/ours");
BENCHMARK_CAPTURE(readICU, format, "2/13/2021")->Name("readByFormat/icu");
BENCHMARK_CAPTURE(readOurs, marks, "2-13-2021", "2/13/21")->Name("readOtherMarks/ours");
BENCHMARK_CAPTURE(readICU, marks, "2-13-2021")->Name("readOtherMarks/icu");
BENCHMARK_CAPTURE(readOurs, scan, "13/2/2021", "2/13/21")->Name("readByScan/ours");
BENCHMARK_CAPTURE(readICU, scan, "13/2/2021")->Name("readByScan/icu");
BENCHMARK_CAPTURE(readOurs, year_first, "2021-02-13", "2/13/21")->Name("readYearFirst/ours");
BENCHMARK_CAPTURE(readICU, year_first, "2021-02-13")->Name("readYearFirst/icu");
BENCHMARK_CAPTURE(readOurs, day_alone, "5", "2/5/21")->Name("readDayAlone/ours");
BENCHMARK_CAPTURE(readICU, day_alone, "5")->Name("readDayAlone/icu");

void printWideOurs(benchmark::State& state) {
  const auto formatter = monthFirstFormatter();
  formatter->setForceWideYear(true);
  formatter->setForceWideMonth(true);
  formatter->setForceWideDay(true);
  const NSDate date = NSDate::dateWithTimeIntervalSince1970(kDay);
  if (formatter->stringFromDate(date) != "02/12/2021") {
    state.SkipWithError("another text was printed");
    return;
  }
  for (auto _ : state) benchmark::DoNotOptimize(formatter->stringFromDate(date));
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(printWideOurs)->Name("printWide/ours");

void printWideICU(benchmark::State& state) {
  const auto format = icuFormat("MM/dd/yyyy");
  for (auto _ : state) {
    icu::UnicodeString text;
    std::string utf8;
    format->format(kDay * 1000, text);
    benchmark::DoNotOptimize(text.toUTF8String(utf8));
  }
  state.SetItemsProcessed(state.iterations());
}
BENCHMARK(printWideICU)->Name("printWide/icu");

}  // namespace
