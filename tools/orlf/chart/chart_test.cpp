#include "chart/chart.h"

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "chart/chart_testing.h"
#include "chart/svg_testing.h"
#include "cli/failure.h"

namespace {

using namespace orlftool;

class DrawChart : public orlftest::TemporaryFolderTest {
 protected:
  std::string draw(const std::string& name) {
    drawChart(chart_, path(name));
    return read(name);
  }

  Chart chart_ = chartOf({lineThrough("Balance", {{0, 0}, {50, 80}, {100, 100}}),
                          lineThrough("Contributions", {{0, 0}, {100, 60}}, true)});
};

TEST_F(DrawChart, WritesTheKindOfFileThatItsNameSays) {
  EXPECT_NE(draw("a.svg").find("<svg"), std::string::npos);
  EXPECT_TRUE(draw("a.png").starts_with("\x89PNG\r\n"));
  EXPECT_TRUE(draw("A.PDF").starts_with("%PDF-"));
  EXPECT_EQ(names().size(), 3U);
}

/// The points of a path that begins in one place.
std::vector<Point> pointsOfPath(const std::string& data) {
  std::vector<Point> points;
  std::istringstream text(data);
  char command = 0;
  Point point;
  while (text >> command >> point.x >> point.y) {
    EXPECT_EQ(command, points.empty() ? 'M' : 'L') << data;
    points.push_back(point);
  }
  return points;
}

TEST_F(DrawChart, DrawsEachLineFromItsFirstPointToItsLast) {
  const std::string svg = draw("a.svg");
  std::map<std::string, std::vector<Point>> lines;
  double lowest = 0;
  for (const SvgElement& path : elementsNamed(svg, "path")) {
    const std::vector<Point> points = pointsOfPath(path.attributes.at("d"));
    for (const Point& point : points) lowest = std::max(lowest, point.y);
    if (path.text.empty()) {
      // Of the frame and the legend: upright or level.
      ASSERT_EQ(points.size(), 2U);
      EXPECT_TRUE(points[0].x == points[1].x || points[0].y == points[1].y);
    } else {
      EXPECT_TRUE(lines.emplace(path.text, points).second) << path.text;
    }
  }
  ASSERT_EQ(lines.size(), 2U);
  const std::vector<Point>& balance = lines["Balance"];
  ASSERT_EQ(balance.size(), 3U);
  EXPECT_NEAR(balance[1].x, (balance[0].x + balance[2].x) / 2, 0.02);
  EXPECT_NEAR(balance[1].y, balance[0].y + 0.8 * (balance[2].y - balance[0].y), 0.02);
  const std::vector<Point>& contributions = lines["Contributions"];
  ASSERT_EQ(contributions.size(), 2U);
  EXPECT_EQ(contributions[0], balance[0]);
  EXPECT_NEAR(contributions[1].y, balance[0].y + 0.6 * (balance[2].y - balance[0].y), 0.02);
  // Ticks reach a little below the axis, nothing else does.
  EXPECT_NEAR(lowest, balance[0].y + 5, 0.02);
}

TEST_F(DrawChart, KeepsNamesThatAreNoXML) {
  chart_.title = "<&>\"'\x01";
  chart_.lines[0].name = "a < b & c\n";
  const std::string svg = draw("a.svg");
  EXPECT_EQ(elementsNamed(svg, "title").front().text, R"(<&>"'\u0001)");
  const auto texts = elementsNamed(svg, "text");
  EXPECT_TRUE(std::any_of(texts.begin(), texts.end(),
                          [](const SvgElement& text) { return text.text == R"(a < b & c\n)"; }));
}

TEST_F(DrawChart, RefusesOtherFilesAndChartsWithoutBalances) {
  EXPECT_THROW((void)draw("a.gif"), UsageFailure);
  EXPECT_THROW((void)draw("svg"), UsageFailure);
  chart_.lines.clear();
  EXPECT_THROW((void)draw("a.svg"), JobFailure);
  chart_.lines.push_back(lineThrough("One date", {{0, 1}}));
  EXPECT_THROW((void)draw("a.svg"), JobFailure);
  EXPECT_TRUE(names().empty());
}

}  // namespace
