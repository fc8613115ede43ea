#include "chart/chart_scale.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "cli/failure.h"
#include "session.h"
#include "values/date_text.h"

namespace {

using namespace ORLFoundation;

std::vector<std::string> labelsOf(const auto& ticks) {
  std::vector<std::string> labels;
  for (const auto& tick : ticks) labels.push_back(tick.label);
  return labels;
}

using Labels = std::vector<std::string>;

Labels numberLabels(double low, double high, const std::string& locale = "en_US") {
  return labelsOf(orlftool::numberScale(low, high, 9, locale).ticks);
}

TEST(NumberScale, StandsAtRoundNumbersAroundTheRange) {
  EXPECT_EQ(numberLabels(-300000, 426000), (Labels{"−400K", "−200K", "0", "200K", "400K", "600K"}));
  EXPECT_EQ(numberLabels(0, 93), (Labels{"0", "20", "40", "60", "80", "100"}));
  EXPECT_EQ(numberLabels(0, 5.2e6), (Labels{"0", "1M", "2M", "3M", "4M", "5M", "6M"}));
  EXPECT_EQ(numberLabels(0, 1), (Labels{"0", "0.2", "0.4", "0.6", "0.8", "1"}));
  EXPECT_EQ(numberLabels(93, 0), numberLabels(0, 93));
}

TEST(NumberScale, WidensARangeWithoutLengthAroundItsValue) {
  EXPECT_EQ(numberLabels(1000, 1000), (Labels{"900", "950", "1K", "1.05K", "1.1K"}));
  EXPECT_EQ(numberLabels(0, 0).front(), "−1");
  EXPECT_EQ(numberLabels(0, 0).back(), "1");
}

TEST(NumberScale, FollowsTheLocale) {
  EXPECT_EQ(numberLabels(0, 10000, "de_DE")[1], "2K");
  EXPECT_EQ(numberLabels(1000, 1000, "de_DE")[3], "1,05K");
  EXPECT_EQ(numberLabels(2000000, 2000200, "de_DE").front(), "2.000.000");
}

TEST(NumberScale, WritesNumbersInFullWhereShortLabelsReadAlike) {
  EXPECT_EQ(numberLabels(250000, 250001),
            (Labels{"250,000", "250,000.2", "250,000.4", "250,000.6", "250,000.8", "250,001"}));
  EXPECT_EQ(numberLabels(2000000, 2000200).front(), "2,000,000");
}

TEST(NumberScale, WritesHugeNumbersInPowersOfTen) {
  EXPECT_EQ(numberLabels(0, 1e30).back(), "1e+30");
}

TEST(ValueText, TellsAThousandthOfItsSpanApart) {
  EXPECT_EQ(orlftool::valueText(300000, 300000, "en_US"), "300,000");
  EXPECT_EQ(orlftool::valueText(-1234.567, 5000, "en_US"), "−1,235");
  EXPECT_EQ(orlftool::valueText(1234.567, 200, "en_US"), "1,234.57");
  EXPECT_EQ(orlftool::valueText(1234.567, 200, "de_DE"), "1.234,57");
  EXPECT_EQ(orlftool::valueText(0.01234567, 0.02, "en_US"), "0.01235");
  EXPECT_EQ(orlftool::valueText(-0.004, 1000, "en_US"), "0");
  EXPECT_EQ(orlftool::valueText(-1e30, 1e30, "en_US"), "−1e+30");
}

TEST(NumberScale, DividesRangesBelowOneAsItDoesLargeOnes) {
  EXPECT_EQ(numberLabels(0, 0.1), (Labels{"0", "0.02", "0.04", "0.06", "0.08", "0.1"}));
  EXPECT_EQ(numberLabels(0, 0.19), (Labels{"0", "0.05", "0.1", "0.15", "0.2"}));
  EXPECT_EQ(numberLabels(-0.003, 0.003),
            (Labels{"−0.003", "−0.002", "−0.001", "0", "0.001", "0.002", "0.003"}));
  EXPECT_EQ(numberLabels(5.01, 5.03), (Labels{"5.01", "5.015", "5.02", "5.025", "5.03"}));
  EXPECT_EQ(numberLabels(0, 4e-9).back(), "0.000000004");
  EXPECT_EQ(numberLabels(0, 4e-20).back(), "4e−20");
}

TEST(NumberScale, StaysFewAndCoversTheRangeWhateverItsSize) {
  for (const double size : {1e-300, 1e-12, 1e-3, 1.0, 7.3, 99.0, 1e6, 123456789.0, 1e13, 1e300})
    for (const double low : {-size, -size / 3, 0.0, size / 3}) {
      const orlftool::NumberScale scale = orlftool::numberScale(low, size, 9, "en_US");
      ASSERT_GE(scale.ticks.size(), 2U) << low << ' ' << size;
      EXPECT_LE(scale.ticks.size(), 9U) << low << ' ' << size;
      EXPECT_LE(scale.low, low);
      EXPECT_GE(scale.high, size);
      EXPECT_LE(scale.high - scale.low, 2.5 * (size - low)) << low << ' ' << size;
      Labels labels = labelsOf(scale.ticks);
      EXPECT_EQ(std::adjacent_find(labels.begin(), labels.end()), labels.end()) << low;
    }
}

TEST(NumberScale, RefusesEndsThatAreTooFarApart) {
  const double most = std::numeric_limits<double>::max();
  EXPECT_THROW((void)orlftool::numberScale(-most, most, 9, "en_US"), orlftool::JobFailure);
}

TEST(DateTicks, StandOnRoundYearsMonthsAndDays) {
  const auto calendar = orlftool::makeCalendar("America/New_York", "en_US");
  const auto labels = [&](const char* from, const char* to) {
    return labelsOf(orlftool::dateTicks(orlftool::readDate(from, *calendar).value(),
                                        orlftool::readDate(to, *calendar).value(), 11, *calendar,
                                        "en_US"));
  };
  EXPECT_EQ(labels("2024-02-01", "2064-02-01"),
            (Labels{"2025", "2030", "2035", "2040", "2045", "2050", "2055", "2060"}));
  EXPECT_EQ(labels("2024-01-01", "2024-08-15"),
            (Labels{"Jan 2024", "Feb 2024", "Mar 2024", "Apr 2024", "May 2024", "Jun 2024",
                    "Jul 2024", "Aug 2024"}));
  EXPECT_EQ(labels("2024-03-08", "2024-03-12"),
            (Labels{"Mar 8, 2024", "Mar 9, 2024", "Mar 10, 2024", "Mar 11, 2024", "Mar 12, 2024"}));
}

TEST(DateTicks, AreNoneWithoutALength) {
  const auto calendar = orlftool::makeCalendar("UTC", "en_US");
  EXPECT_TRUE(orlftool::dateTicks(NSDate(), NSDate(), 11, *calendar, "en_US").empty());
}

}  // namespace
