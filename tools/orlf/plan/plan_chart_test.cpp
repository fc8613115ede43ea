#include "plan/plan_chart.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "plan/plan_file.h"
#include "plan/plan_model.h"

namespace {

using namespace ORLFoundation;
using orlftool::Chart;
using orlftool::ChartLine;
using orlftool::PlanModel;

PlanModel modelOf(const std::string& segments) {
  return orlftool::makePlanModel(orlftool::parsePlanFile(
      R"({"title": "T", "rounding": {"scale": 2}, "end": "2026-01-01", "segments": [)" + segments +
          "]}",
      "p.json", {}));
}

Chart chartOf(const PlanModel& model) {
  return orlftool::makePlanChart(model, model.start(), model.horizon(), "en_US");
}

/// A year of twelve contributions, and another of 365.
const std::string kMonthly =
    R"({"name": "A", "start": "2024-01-01", "principal": 1000, "contribution": 100, "rate": "12%"})";
const std::string kDaily =
    R"({"name": "B", "start": "2025-01-01", "contribution": -1, "frequency": "daily"})";
const std::string kMonthlyAgain = R"({"name": "B", "start": "2025-01-01", "contribution": -10})";

TEST(PlanChart, HasALineForEachSegmentAndOneWithoutInterest) {
  const Chart chart = chartOf(modelOf(kMonthly + "," + kMonthlyAgain));
  EXPECT_EQ(chart.title, "T");
  ASSERT_EQ(chart.lines.size(), 3U);
  EXPECT_EQ(chart.lines[0].name, "A");
  EXPECT_EQ(chart.lines[1].name, "B");
  EXPECT_EQ(chart.lines[2].name, "Without interest");
  EXPECT_FALSE(chart.lines[0].isReference);
  EXPECT_TRUE(chart.lines[2].isReference);
  ASSERT_EQ(chart.marks.size(), 1U);
  EXPECT_EQ(chart.marks[0], chart.lines[1].points.front().date);
}

TEST(PlanChart, EndsALineOnTheBalanceThatItsSegmentLeaves) {
  const PlanModel model = modelOf(kMonthly + "," + kMonthlyAgain);
  const Chart chart = chartOf(model);
  const ChartLine& first = chart.lines[0];
  EXPECT_EQ(first.points.front().value, 1000);
  const auto left = model.plan->plannedBalanceOnDate(first.points.back().date, false,
                                                     model.calendar(), model.rounding.get());
  ASSERT_TRUE(left);
  EXPECT_EQ(first.points.back().value, left->doubleValue());
  EXPECT_EQ(first.points.back().date, chart.lines[1].points.front().date);
  const ChartLine& reference = chart.lines[2];
  EXPECT_EQ(reference.points.front().value, 1000);
  EXPECT_EQ(reference.points.back().value, 1000 + 12 * 100 - 12 * 10);
}

TEST(PlanChart, DrawsItsSegmentsInOneManner) {
  EXPECT_TRUE(chartOf(modelOf(kMonthly)).isStepped);
  EXPECT_TRUE(chartOf(modelOf(kMonthly + "," + kMonthlyAgain)).isStepped);
  // One segment has too many stairs to be seen: then no other has any.
  EXPECT_FALSE(chartOf(modelOf(kMonthly + "," + kDaily)).isStepped);
}

TEST(PlanChart, TakesEveryContributionUpToTheWidthOfAPage) {
  const Chart chart = chartOf(modelOf(kMonthly + "," + kDaily));
  EXPECT_EQ(chart.lines[0].points.size(), 13U);
  EXPECT_EQ(chart.lines[1].points.size(), 366U);
  const Chart many = chartOf(modelOf(
      R"({"start": "2000-01-01", "principal": 5, "contribution": 1, "frequency": "daily"})"));
  EXPECT_LE(many.lines[0].points.size(), 482U);
  EXPECT_GE(many.lines[0].points.size(), 240U);
}

TEST(PlanChart, IsCutToTheDatesAskedFor) {
  const PlanModel model = modelOf(kMonthly + "," + kMonthlyAgain);
  const Chart chart =
      orlftool::makePlanChart(model, model.file.segments[1].start, model.horizon(), "en_US");
  ASSERT_EQ(chart.lines.size(), 2U);
  EXPECT_EQ(chart.lines[0].name, "B");
  EXPECT_TRUE(chart.marks.empty());
}

}  // namespace
