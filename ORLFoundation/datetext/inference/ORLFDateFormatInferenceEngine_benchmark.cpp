#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>

#include <benchmark/benchmark.h>
#include <time.h>
#include <unicode/gregocal.h>
#include <unicode/smpdtfmt.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

namespace {

using namespace ORLFoundation;

constexpr std::size_t kDates = 1'000'000;

/// Days of 2000 to 2027, month first; the twentieth decides.
const std::vector<std::string>& dates() {
  static const std::vector<std::string>& made = *new std::vector<std::string>([] {
    std::vector<std::string> texts;
    texts.reserve(kDates);
    for (unsigned index = 0; index < kDates; ++index) {
      std::array<char, 16> text{};
      std::snprintf(text.data(), text.size(), "%02u/%02u/%u", index % 12 + 1, index % 28 + 1,
                    2000 + index % 28);
      texts.emplace_back(text.data());
    }
    return texts;
  }());
  return made;
}

/// The readers are compared by the sum of all seconds since 1970.
void check(benchmark::State& state, double sum, std::size_t read) {
  static const double expected = [] {
    double total = 0;
    for (const std::string& text : dates()) {
      std::tm fields{};
      strptime(text.c_str(), "%m/%d/%Y", &fields);
      total += static_cast<double>(timegm(&fields));
    }
    return total;
  }();
  if (read != kDates || sum != expected) state.SkipWithError("a wrong date");
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kDates));
}

void inferAndRead(benchmark::State& state) {
  double sum = 0;
  std::size_t read = 0;
  for (auto _ : state) {
    ORLFDateFormatInferenceEngine engine;
    engine.dateParsingCalendar()->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
    for (const std::string& text : dates()) engine.processDateString(text);
    const NSInteger format = engine.possibleDateFormats().front();
    sum = 0;
    read = 0;
    for (const std::string& text : dates()) {
      const auto date = engine.dateFromString(text, format);
      if (!date) continue;
      ++read;
      sum += date->timeIntervalSince1970();
    }
  }
  check(state, sum, read);
}

void readByStrptime(benchmark::State& state) {
  double sum = 0;
  std::size_t read = 0;
  for (auto _ : state) {
    sum = 0;
    read = 0;
    for (const std::string& text : dates()) {
      std::tm fields{};
      if (strptime(text.c_str(), "%m/%d/%Y", &fields) == nullptr) continue;
      ++read;
      sum += static_cast<double>(timegm(&fields));
    }
  }
  check(state, sum, read);
}

void readByICU(benchmark::State& state) {
  UErrorCode status = U_ZERO_ERROR;
  icu::SimpleDateFormat format(u"MM/dd/yyyy", icu::Locale::getUS(), status);
  format.adoptTimeZone(icu::TimeZone::createTimeZone("UTC"));
  double sum = 0;
  std::size_t read = 0;
  for (auto _ : state) {
    sum = 0;
    read = 0;
    for (const std::string& text : dates()) {
      const UDate date = format.parse(icu::UnicodeString::fromUTF8(text), status);
      if (U_FAILURE(status)) break;
      ++read;
      sum += date / 1000;
    }
  }
  check(state, sum, read);
}

BENCHMARK(inferAndRead)->Name("a million dates/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(readByStrptime)->Name("a million dates/strptime")->Unit(benchmark::kMillisecond);
BENCHMARK(readByICU)->Name("a million dates/icu")->Unit(benchmark::kMillisecond);

}  // namespace
