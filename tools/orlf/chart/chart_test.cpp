

#include "chart/chart.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "chart/chart_scale.h"
#include "cli/failure.h"
#include "session.h"
#include "values/date_text.h"

namespace {

using namespace ORLFoundation;
using orlftool::Chart;

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
  EXPECT_EQ(numberLabels(-300000, 426000), (Labels{"-400K", "-200K", "0", "200K", "400K", "600K"}));
  EXPECT_EQ(numberLabels(0, 93), (Labels{"0", "20", "40", "60", "80", "100"}));
  EXPECT_EQ(numberLabels(0, 5.2e6), (Labels{"0", "1M", "2M", "3M", "4M", "5M", "6M"}));
  EXPECT_EQ(numberLabels(0, 1), (Labels{"0", "0.2", "0.4", "0.6", "0.8", "1"}));
  EXPECT_EQ(numberLabels(93, 0), numberLabels(0, 93));
}

TEST(NumberScale, WidensARangeWithoutLengthAroundItsValue) {
  EXPECT_EQ(numberLabels(1000, 1000), (Labels{"900", "950", "1K", "1.05K", "1.1K"}));
  EXPECT_EQ(numberLabels(0, 0).front(), "-1");
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

TEST(NumberScale, StaysFewAndCoversTheRangeWhateverItsSize) {
  for (const double size : {1e-300, 1e-12, 1e-3, 1.0, 7.3, 99.0, 1e6, 123456789.0, 1e13, 1e300})
    for (const double low : {-size, -size / 3, 0.0, size / 3}) {
      const orlftool::NumberScale scale = orlftool::numberScale(low, size, 9, "en_US");
      ASSERT_GE(scale.ticks.size(), 2U) << low << ' ' << size;
      EXPECT_LE(scale.ticks.size(), 9U) << low << ' ' << size;
      EXPECT_LE(scale.low, low);
      EXPECT_GE(scale.high, size);
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

class DrawChart : public testing::Test {
 protected:
  void SetUp() override {
    std::string pattern = testing::TempDir() + "/chartXXXXXX";
    ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
    folder_ = pattern;
    chart_.title = "A title";
    chart_.calendar = orlftool::makeCalendar("UTC", "en_US");
    chart_.lines.push_back({"Balance", points(100), false});
    chart_.lines.push_back({"Contributions", points(50), true});
    chart_.marks.push_back(NSDate::dateWithTimeIntervalSinceReferenceDate(3e8));
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  static std::vector<orlftool::ChartPoint> points(double growth) {
    std::vector<orlftool::ChartPoint> points;
    for (int i = 0; i <= 100; ++i)
      points.push_back({NSDate::dateWithTimeIntervalSinceReferenceDate(i * 6e6), i * growth});
    return points;
  }
  std::string draw(const std::string& name) {
    orlftool::drawChart(chart_, folder_ / name);
    std::ifstream file(folder_ / name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  std::filesystem::path folder_;
  Chart chart_;
};

TEST_F(DrawChart, WritesTheKindOfFileThatItsNameSays) {
  EXPECT_NE(draw("a.svg").find("<svg"), std::string::npos);
  EXPECT_TRUE(draw("a.png").starts_with("\x89PNG\r\n"));
  EXPECT_TRUE(draw("A.PDF").starts_with("%PDF-"));
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_),
                          std::filesystem::directory_iterator()),
            3);
}

TEST_F(DrawChart, DrawsWhatItIsGiven) {
  const std::string whole = draw("a.svg");
  chart_.lines.pop_back();
  const std::string oneLine = draw("b.svg");
  chart_.title.clear();
  const std::string noTitle = draw("c.svg");
  EXPECT_GT(whole.size(), oneLine.size());
  EXPECT_GT(oneLine.size(), noTitle.size());
}

TEST_F(DrawChart, LeavesOutValuesThatAreNotFinite) {
  chart_.lines[0].points[50].value = std::nan("");
  chart_.lines[0].points[51].value = std::numeric_limits<double>::infinity();
  const std::string drawn = draw("a.svg");
  EXPECT_NE(drawn.find("<svg"), std::string::npos);
  EXPECT_EQ(drawn.find("nan"), std::string::npos);
  EXPECT_EQ(drawn.find("inf"), std::string::npos);
}

TEST_F(DrawChart, ManyLinesAndLongNamesDraw) {
  for (int i = 0; i < 60; ++i)
    chart_.lines.push_back(
        {"A segment with quite a long name " + std::to_string(i), points(i), false});
  chart_.title = std::string(500, 'W');
  EXPECT_NE(draw("a.svg").find("<svg"), std::string::npos);
}

TEST_F(DrawChart, RefusesOtherFilesAndChartsWithoutBalances) {
  EXPECT_THROW((void)draw("a.gif"), orlftool::UsageFailure);
  EXPECT_THROW((void)draw("svg"), orlftool::UsageFailure);
  chart_.lines.clear();
  EXPECT_THROW((void)draw("a.svg"), orlftool::JobFailure);
  chart_.lines.push_back({"One date", {{NSDate(), 1}}, false});
  EXPECT_THROW((void)draw("a.svg"), orlftool::JobFailure);
  EXPECT_TRUE(std::filesystem::is_empty(folder_));
}

}  // namespace
