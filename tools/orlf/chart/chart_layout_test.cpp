#include "chart/chart_layout.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "chart/chart_frame.h"
#include "chart/chart_notes.h"
#include "chart/chart_testing.h"
#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using namespace orlftool;

Drawing layOut(const Chart& chart) { return layOutChart(chart, SquareRuler()); }

/// The plot, as the grid lines of the axis tell it.
Box plotOf(const Drawing& drawing, const char* lowest, const char* highest) {
  constexpr double kHalfText = 12 * 0.35;
  Box plot;
  plot.bottom = labelWithText(drawing, lowest).at.y - kHalfText;
  plot.top = labelWithText(drawing, highest).at.y - kHalfText;
  for (const Stroke& stroke : drawing.strokes)
    if (stroke.points.size() == 2 && stroke.points[0].y == plot.bottom &&
        stroke.points[1].y == plot.bottom) {
      plot.left = stroke.points[0].x;
      plot.right = stroke.points[1].x;
    }
  return plot;
}

void expectPath(const Stroke& stroke, const std::vector<Point>& points) {
  ASSERT_EQ(stroke.points.size(), points.size());
  for (std::size_t i = 0; i < points.size(); ++i) {
    EXPECT_NEAR(stroke.points[i].x, points[i].x, 1e-6) << i;
    EXPECT_NEAR(stroke.points[i].y, points[i].y, 1e-6) << i;
  }
}

TEST(ChartLayout, DrawsALineThroughItsPoints) {
  const Drawing drawing = layOut(chartOf({lineThrough("Balance", {{0, 0}, {25, 50}, {100, 100}})}));
  const Box plot = plotOf(drawing, "0", "100");
  const std::vector<Stroke> lines = strokesNamed(drawing, "Balance");
  ASSERT_EQ(lines.size(), 1U);
  const double width = plot.right - plot.left;
  expectPath(lines[0], {{plot.left, plot.bottom},
                        {plot.left + width / 4, (plot.top + plot.bottom) / 2},
                        {plot.right, plot.top}});
  EXPECT_EQ(plot.right, drawing.width - 28);
}

TEST(ChartLayout, DrawsAllLinesAsStairsOrNone) {
  Chart chart =
      chartOf({lineThrough("A", {{0, 0}, {50, 40}}), lineThrough("B", {{50, 40}, {100, 100}}),
               lineThrough("C", {{0, 0}, {100, 10}}, true)});
  for (const bool isStepped : {false, true}) {
    chart.isStepped = isStepped;
    const Drawing drawing = layOut(chart);
    for (const char* name : {"A", "B", "C"}) {
      const std::vector<Stroke> lines = strokesNamed(drawing, name);
      ASSERT_EQ(lines.size(), 1U) << name;
      ASSERT_EQ(lines[0].points.size(), isStepped ? 3U : 2U) << name;
      if (isStepped) {
        EXPECT_EQ(lines[0].points[1].y, lines[0].points[0].y) << name;
        EXPECT_EQ(lines[0].points[1].x, lines[0].points[2].x) << name;
      }
    }
  }
}

TEST(ChartLayout, LetsNoReferenceDriveTheScale) {
  const Drawing drawing = layOut(chartOf({lineThrough("Balance", {{0, 0}, {100, 100}}),
                                          lineThrough("R", {{0, 0}, {100, 400}}, true)}));
  const Box plot = plotOf(drawing, "0", "100");
  EXPECT_EQ(labelWithText(drawing, "200").text, "");
  const std::vector<Stroke> reference = strokesNamed(drawing, "R");
  ASSERT_EQ(reference.size(), 1U);
  // It leaves through the top of the plot after a quarter of the time.
  expectPath(reference[0],
             {{plot.left, plot.bottom}, {plot.left + (plot.right - plot.left) / 4, plot.top}});
}

TEST(ChartLayout, DrawsAgainWhatComesBackIntoThePlot) {
  const Drawing drawing = layOut(chartOf(
      {lineThrough("Balance", {{0, 0}, {100, 100}}),
       lineThrough("R", {{0, 50}, {20, 150}, {40, 1e308}, {60, -50}, {70, -50}, {80, 50}}, true)}));
  const Box plot = plotOf(drawing, "0", "100");
  const std::vector<Stroke> reference = strokesNamed(drawing, "R");
  ASSERT_EQ(reference.size(), 3U);
  const double day = (plot.right - plot.left) / 100;
  const double middle = (plot.top + plot.bottom) / 2;
  expectPath(reference[0], {{plot.left, middle}, {plot.left + 10 * day, plot.top}});
  expectPath(reference[2], {{plot.left + 75 * day, plot.bottom}, {plot.left + 80 * day, middle}});
  for (const Stroke& part : reference)
    for (const Point& point : part.points) {
      EXPECT_GE(point.y, plot.top - 1e-6);
      EXPECT_LE(point.y, plot.bottom + 1e-6);
    }
}

TEST(ChartLayout, ScalesAReferenceThatIsAlone) {
  const Drawing drawing = layOut(chartOf({lineThrough("R", {{0, 0}, {100, 400}}, true)}));
  EXPECT_EQ(labelWithText(drawing, "400").text, "400");
  EXPECT_EQ(strokesNamed(drawing, "R").size(), 1U);
}

TEST(ChartLayout, LeavesOutValuesThatAreNotFinite) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const Drawing whole = layOut(chartOf({lineThrough("A", {{0, 0}, {50, 40}, {100, 100}})}));
  const Drawing broken = layOut(chartOf({lineThrough(
      "A", {{0, 0}, {10, kNaN}, {50, 40}, {60, kInfinity}, {70, -kInfinity}, {100, 100}})}));
  EXPECT_EQ(strokesNamed(broken, "A")[0].points, strokesNamed(whole, "A")[0].points);
  EXPECT_EQ(broken.description, whole.description);
}

TEST(ChartLayout, MarksDatesUnlessThereAreMany) {
  Chart chart = chartOf({lineThrough("A", {{0, 0}, {100, 100}})});
  chart.marks = {dayOf(50)};
  const Drawing one = layOut(chart);
  const Box plot = plotOf(one, "0", "100");
  const auto marks = [](const Drawing& drawing) {
    std::vector<Stroke> found;
    for (const Stroke& stroke : drawing.strokes)
      if (stroke.isDashed) found.push_back(stroke);
    return found;
  };
  const double middle = (plot.left + plot.right) / 2;
  ASSERT_EQ(marks(one).size(), 1U);
  expectPath(marks(one)[0], {{middle, plot.top}, {middle, plot.bottom}});
  chart.marks.assign(13, dayOf(50));
  EXPECT_TRUE(marks(layOut(chart)).empty());
}

TEST(ChartLayout, GivesTheLegendAFifthAtMost) {
  Chart chart = chartOf({});
  for (int i = 0; i < 60; ++i)
    chart.lines.push_back(
        lineThrough("A segment with quite a long name " + std::to_string(i), {{0, 0}, {100, 100}}));
  const Drawing drawing = layOut(chart);
  const double titleBottom = 28 + 18 + 8;
  double lowest = 0;
  for (const Label& label : drawing.labels)
    if (label.text.starts_with("A segment") || label.text.starts_with("and "))
      lowest = std::max(lowest, label.at.y);
  EXPECT_GT(lowest, titleBottom);
  EXPECT_LE(lowest + 8, titleBottom + drawing.height / 5);
}

TEST(ChartLayout, CutsTitlesThatDoNotFitAndTellsThemWhole) {
  Chart chart = chartOf({lineThrough("A", {{0, 0}, {100, 100}})});
  chart.title = std::string(500, 'W');
  const Drawing drawing = layOut(chart);
  EXPECT_EQ(drawing.title, chart.title);
  const Label& title = drawing.labels.front();
  EXPECT_TRUE(title.text.ends_with("W…")) << title.text;
  EXPECT_LE(SquareRuler().width(title.text, title.style), drawing.width - 2 * 28);
  EXPECT_EQ(title.style.size, 13);
}

TEST(ChartLayout, ShowsControlCharactersWrittenOut) {
  Chart chart = chartOf({lineThrough("A\nB", {{0, 0}, {100, 100}})});
  chart.title = "T\x07";
  const Drawing drawing = layOut(chart);
  EXPECT_EQ(drawing.title, R"(T\u0007)");
  EXPECT_EQ(labelWithText(drawing, R"(A\nB)").text, R"(A\nB)");
  EXPECT_EQ(strokesNamed(drawing, R"(A\nB)").size(), 1U);
}

TEST(ChartLayout, RefusesWhatHasNoTwoDates) {
  EXPECT_THROW((void)layOut(chartOf({})), JobFailure);
  EXPECT_THROW((void)layOut(chartOf({lineThrough("One date", {{0, 1}})})), JobFailure);
}

TEST(ChartNotes, TellStartEndPeakAndTrough) {
  const Drawing drawing =
      layOut(chartOf({lineThrough("A", {{0, 200}, {30, 900}, {60, -350}, {100, 425}}),
                      lineThrough("R", {{0, 5000}, {100, -5000}}, true)}));
  ASSERT_EQ(drawing.dots.size(), 4U);
  const std::vector<Point> path = strokesNamed(drawing, "A")[0].points;
  ASSERT_EQ(path.size(), 4U);
  const std::pair<const char*, Point> expected[] = {
      {"200", path[0]}, {"425", path[3]}, {"900", path[1]}, {"−350", path[2]}};
  for (std::size_t i = 0; i < 4; ++i) {
    const auto& [text, at] = expected[i];
    EXPECT_EQ(drawing.dots[i].center, at) << text;
    const Label label = drawing.labels[drawing.labels.size() - 4 + i];
    EXPECT_EQ(label.text, text);
    EXPECT_TRUE(label.hasHalo);
    EXPECT_LT(std::abs(label.at.y - at.y), 35) << text;
    EXPECT_LT(std::abs(label.at.x - at.x), 40) << text;
  }
  EXPECT_EQ(drawing.description,
            "From 200 on Jan 1, 2001 to 425 on Apr 11, 2001; highest 900 on Jan 31, 2001, lowest "
            "−350 on Mar 2, 2001.");
}

TEST(ChartNotes, StandOnceWhereStartOrEndIsTheExtreme) {
  const Drawing drawing = layOut(chartOf({lineThrough("A", {{0, 300}, {50, 100}, {100, 0}})}));
  EXPECT_EQ(drawing.dots.size(), 2U);
  const Drawing flat = layOut(chartOf({lineThrough("A", {{0, 5}, {50, 5}, {100, 5}})}));
  EXPECT_EQ(flat.dots.size(), 2U);
}

TEST(ChartNotes, DoNotLieOnEachOther) {
  // Peak and trough stand close together in the middle.
  const Drawing drawing = layOut(
      chartOf({lineThrough("A", {{0, 50}, {50, 100}, {50.5, 99}, {51, 0}, {51.2, 2}, {100, 50}})}));
  std::vector<Box> boxes;
  for (const Label& label : drawing.labels) {
    if (!label.hasHalo) continue;
    const double half = SquareRuler().width(label.text, label.style) / 2;
    boxes.push_back({label.at.x - half, label.at.y - 10, label.at.x + half, label.at.y + 2});
  }
  ASSERT_EQ(boxes.size(), 4U);
  for (std::size_t i = 0; i < boxes.size(); ++i)
    for (std::size_t j = 0; j < i; ++j)
      EXPECT_TRUE(boxes[i].right <= boxes[j].left || boxes[j].right <= boxes[i].left ||
                  boxes[i].bottom <= boxes[j].top || boxes[j].bottom <= boxes[i].top)
          << i << ' ' << j;
}

}  // namespace
