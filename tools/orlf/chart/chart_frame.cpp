#include "chart/chart_frame.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "cli/failure.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr int kMostNumberTicks = 9, kMostDateTicks = 11;

/// Halved, so that the difference of the largest numbers stays finite.
double partBetween(double low, double high, double value) {
  return (value / 2 - low / 2) / (high / 2 - low / 2);
}

/// The point itself, or where the way to the other one enters the band of values.
Point pulledInside(Point point, Point toward, const ChartFrame& frame) {
  const double edge = std::clamp(point.y, frame.low, frame.high);
  if (edge == point.y) return point;
  return {point.x + partBetween(point.y, toward.y, edge) * (toward.x - point.x), edge};
}

/// The line as seconds after the frame's start and values.
std::vector<Point> cornersOfLine(const ChartLine& line, bool isStepped, NSDate start) {
  std::vector<Point> corners;
  for (const ChartPoint& point : line.points) {
    if (!std::isfinite(point.value)) continue;
    const double seconds = point.date.timeIntervalSinceDate(start);
    if (isStepped && !corners.empty()) corners.push_back({seconds, corners.back().y});
    corners.push_back({seconds, point.value});
  }
  return corners;
}

bool liesOutside(Point from, Point to, const ChartFrame& frame) {
  return std::max(from.y, to.y) < frame.low || std::min(from.y, to.y) > frame.high;
}

}  // namespace

double ChartFrame::x(NSDate date) const {
  const double part = date.timeIntervalSinceDate(from) / to.timeIntervalSinceDate(from);
  return plot.left + part * (plot.right - plot.left);
}

double ChartFrame::y(double value) const {
  return plot.bottom - partBetween(low, high, value) * (plot.bottom - plot.top);
}

ChartFrame makeChartFrame(const Chart& chart) {
  ChartFrame frame;
  frame.from = NSDate::distantFuture();
  frame.to = NSDate::distantPast();
  frame.low = std::numeric_limits<double>::infinity();
  frame.high = -frame.low;
  const bool onlyReferences = std::all_of(chart.lines.begin(), chart.lines.end(),
                                          [](const ChartLine& line) { return line.isReference; });
  for (const ChartLine& line : chart.lines)
    for (const ChartPoint& point : line.points) {
      if (!std::isfinite(point.value)) continue;
      if (point.date.compare(frame.from) == NSOrderedAscending) frame.from = point.date;
      if (point.date.compare(frame.to) == NSOrderedDescending) frame.to = point.date;
      if (line.isReference && !onlyReferences) continue;
      frame.low = std::min(frame.low, point.value);
      frame.high = std::max(frame.high, point.value);
    }
  if (frame.from.compare(frame.to) != NSOrderedAscending || !(frame.low <= frame.high))
    throw JobFailure("the chart needs balances on at least two dates");
  NumberScale numbers = numberScale(frame.low, frame.high, kMostNumberTicks, chart.locale);
  frame.low = numbers.low;
  frame.high = numbers.high;
  frame.numbers = std::move(numbers.ticks);
  frame.dates = dateTicks(frame.from, frame.to, kMostDateTicks, *chart.calendar, chart.locale);
  return frame;
}

std::vector<std::vector<Point>> pathsOfLine(const ChartLine& line, bool isStepped,
                                            const ChartFrame& frame) {
  const std::vector<Point> corners = cornersOfLine(line, isStepped, frame.from);
  std::vector<std::vector<Point>> paths;
  const auto onPage = [&frame](Point corner) {
    return Point{frame.x(frame.from.dateByAddingTimeInterval(corner.x)), frame.y(corner.y)};
  };
  bool goesOn = false;
  for (std::size_t i = 1; i < corners.size(); ++i) {
    const Point from = corners[i - 1], to = corners[i];
    if (liesOutside(from, to, frame)) {
      goesOn = false;
      continue;
    }
    if (!goesOn) paths.push_back({onPage(pulledInside(from, to, frame))});
    paths.back().push_back(onPage(pulledInside(to, from, frame)));
    goesOn = pulledInside(to, from, frame) == to;
  }
  return paths;
}

}  // namespace orlftool
