#include "chart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "chart_scale.h"
#include "common_options.h"
#include "date_text.h"
#include "failure.h"

namespace {

using namespace ORLFoundation;
using orlftool::Chart;

std::vector<std::string> labelsOf(const auto& ticks) {
  std::vector<std::string> labels;
  for (const auto& tick : ticks) labels.push_back(tick.label);
  return labels;
}

TEST(NumberTicks, StandAtRoundNumbersAroundTheRange) {
  using Labels = std::vector<std::string>;
  const auto labels = [](double low, double high) {
    return labelsOf(orlftool::numberTicks(low, high, 8, "en_US"));
  };
  EXPECT_EQ(labels(-300000, 212000),
            (Labels{"-300,000", "-200,000", "-100,000", "0", "100,000", "200,000", "300,000"}));
  EXPECT_EQ(labels(0, 1), (Labels{"0.0", "0.2", "0.4", "0.6", "0.8", "1.0"}));
  EXPECT_EQ(labels(1000, 1000), (Labels{"900", "950", "1,000", "1,050", "1,100"}));
  EXPECT_EQ(labels(0, 0), (Labels{"-1.0", "-0.5", "0.0", "0.5", "1.0"}));
}

TEST(NumberTicks, FollowTheLocale) {
  EXPECT_EQ(orlftool::numberTicks(0, 5000, 8, "de_DE").back().label, "5.000");
}

TEST(NumberTicks, StayFewAndCoverTheRangeWhateverItsSize) {
  for (const double size : {1e-300, 1e-12, 1e-3, 1.0, 7.3, 99.0, 1e6, 123456789.0, 1e13, 1e300,
                            std::numeric_limits<double>::max()})
    for (const double low : {-size, -size / 3, 0.0, size / 3}) {
      const auto ticks = orlftool::numberTicks(low, size, 9, "en_US");
      ASSERT_GE(ticks.size(), 2U) << low << ' ' << size;
      EXPECT_LE(ticks.size(), 9U) << low << ' ' << size;
      EXPECT_LE(ticks.front().value, low + std::abs(size) * 1e-6);
      EXPECT_GE(ticks.back().value, size - std::abs(size) * 1e-6);
    }
}

TEST(DateTicks, StandOnRoundYearsMonthsAndDays) {
  using Labels = std::vector<std::string>;
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
