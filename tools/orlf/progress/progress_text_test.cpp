#include "progress/progress_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <string>

#include "progress/rate_meter.h"

namespace {

using orlftool::columnsOfText;
using orlftool::plainProgressLine;
using orlftool::progressLine;
using orlftool::ProgressUnit;
using orlftool::ProgressView;
using orlftool::RateMeter;

ProgressView reading() {
  return {.message = "Reading bank.csv",
          .value = 104e6,
          .maximum = 200e6,
          .unit = ProgressUnit::bytes,
          .rate = 51e6,
          .seconds = 2.9};
}

TEST(ProgressLine, ShowsSpinnerMessageBarPercentageAndRate) {
  EXPECT_EQ(progressLine(reading(), 80, 0),
            "| Reading bank.csv                        [#########----------]  52%  51.0 MB/s");
  EXPECT_EQ(progressLine(reading(), 80, 1)[0], '/');
  EXPECT_EQ(progressLine(reading(), 80, 2)[0], '-');
  EXPECT_EQ(progressLine(reading(), 80, 3)[0], '\\');
  EXPECT_EQ(progressLine(reading(), 80, 4)[0], '|');
}

TEST(ProgressLine, GivesUpRateBarAndEndOfTheMessageWhereItIsNarrow) {
  EXPECT_EQ(progressLine(reading(), 40, 0), "| Readin... [####-----]  52%  51.0 MB/s");
  EXPECT_EQ(progressLine(reading(), 36, 0), "| Reading bank.csv  [####----]  52%");
  EXPECT_EQ(progressLine(reading(), 24, 0), "| Reading bank.csv  52%");
  EXPECT_EQ(progressLine(reading(), 20, 0), "| Reading b...  52%");
  EXPECT_EQ(progressLine(reading(), 8, 0), "|   52%");
  EXPECT_EQ(progressLine(reading(), 6, 0), "  52%");
  EXPECT_EQ(progressLine(reading(), 3, 0), "..");
  EXPECT_EQ(progressLine(reading(), 1, 0), "");
  EXPECT_EQ(progressLine(reading(), 0, 0), "");
}

TEST(ProgressLine, ShowsAmountsWhereNobodyKnowsTheTotal) {
  ProgressView view = reading();
  view.isIndeterminate = true;
  EXPECT_EQ(progressLine(view, 48, 0), "| Reading bank.csv          104.0 MB  51.0 MB/s");
  view.unit = ProgressUnit::steps;
  view.value = 240;
  view.rate = std::nullopt;
  EXPECT_EQ(progressLine(view, 30, 0), "| Reading bank.csv        240");
  view.value = 0;
  EXPECT_EQ(progressLine(view, 30, 0), "| Reading bank.csv           ");
}

TEST(ProgressLine, NeverReachesTheLastColumn) {
  std::mt19937 random(3);
  const std::string messages[] = {
      "",
      "x",
      "R\xC3\xA9sum\xC3\xA9 \xE5\x8F\xA3\xE5\xBA\xA7\xE6\x98\x8E\xE7\xB4\xB0.csv",
      "broken \xFF\xFE bytes",
      "tab\tand\nline end\x1B[2J",
      std::string(300, 'm'),
      "e\xCC\x81\xF0\x9F\x92\xB0"};
  const double wild[] = {
      0, 1, -1, 1e300, 5e-324, NAN, std::numeric_limits<double>::infinity(), 999.999e3};
  const auto any = [&] { return wild[random() % std::size(wild)]; };
  for (int i = 0; i < 20000; ++i) {
    ProgressView view{.message = messages[random() % std::size(messages)],
                      .isIndeterminate = random() % 3 == 0,
                      .value = any(),
                      .maximum = any(),
                      .unit = random() % 2 == 0 ? ProgressUnit::bytes : ProgressUnit::steps,
                      .rate = random() % 2 == 0 ? std::optional(any()) : std::nullopt,
                      .seconds = 1};
    const std::size_t columns = random() % 220;
    const std::string line = progressLine(view, columns, random());
    ASSERT_LE(columnsOfText(line), columns == 0 ? 0 : columns - 1) << line;
    ASSERT_EQ(line.find_first_of("\n\r\t\x1B"), std::string::npos) << line;
    ASSERT_EQ(plainProgressLine(view).find_first_of("\n\r\t\x1B"), std::string::npos);
  }
}

TEST(ProgressLine, CountsColumnsOfWideAndCombiningCharacters) {
  EXPECT_EQ(columnsOfText("abc"), 3U);
  EXPECT_EQ(columnsOfText("\xE5\x8F\xA3\xE5\xBA\xA7"), 4U);
  EXPECT_EQ(columnsOfText("e\xCC\x81"), 1U);
  EXPECT_EQ(columnsOfText("\xF0\x9F\x92\xB0"), 2U);
}

TEST(PlainProgressLine, TellsAmountsAndTime) {
  EXPECT_EQ(plainProgressLine(reading()),
            "Reading bank.csv, 52%, 104.0 MB of 200.0 MB, 51.0 MB/s, 2 s");
  ProgressView view;
  view.message = "Working";
  view.isIndeterminate = true;
  view.seconds = 61;
  EXPECT_EQ(plainProgressLine(view), "Working, 61 s");
  view.value = 1500;
  view.unit = ProgressUnit::bytes;
  EXPECT_EQ(plainProgressLine(view), "Working, 1.5 kB, 61 s");
}

TEST(ProgressView, HasAPercentageOfAKnownTotal) {
  EXPECT_EQ(reading().percent(), 52);
  const auto percent = [](double value, double maximum, bool isIndeterminate = false) {
    ProgressView view;
    view.isIndeterminate = isIndeterminate;
    view.value = value;
    view.maximum = maximum;
    return view.percent();
  };
  EXPECT_EQ(percent(0.999, 1), 99);
  EXPECT_EQ(percent(2, 1), 100);
  EXPECT_EQ(percent(-1, 1), 0);
  EXPECT_EQ(percent(1, 0), std::nullopt);
  EXPECT_EQ(percent(1, 2, true), std::nullopt);
  EXPECT_EQ(percent(NAN, 2), std::nullopt);
  EXPECT_EQ(percent(1, std::numeric_limits<double>::infinity()), std::nullopt);
}

TEST(RateMeter, MeasuresTheLastSeconds) {
  constexpr std::int64_t kSecond = 1'000'000'000;
  RateMeter meter;
  EXPECT_EQ(meter.rate(), std::nullopt);
  meter.note(0, 100);
  meter.note(kSecond / 4, 150);
  EXPECT_EQ(meter.rate(), std::nullopt);
  meter.note(kSecond, 300);
  EXPECT_EQ(meter.rate(), 200);
  for (int i = 2; i < 20; ++i) meter.note(i * kSecond, 300 + i * 10);
  EXPECT_NEAR(*meter.rate(), 10, 1e-9);
  meter.note(20 * kSecond, 5);
  EXPECT_EQ(meter.rate(), std::nullopt);
}

}  // namespace
