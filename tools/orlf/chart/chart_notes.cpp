#include "chart/chart_notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kNoteSize = 12, kDotRadius = 3.2;
/// How far below its point a text's baseline may stand; less than 0 is above it.
constexpr std::array kRises{-8.0, 17.0, -20.0, 29.0, -32.0};
constexpr Color kNoteInk{0.13, 0.15, 0.18};

bool isHighlighted(const Chart& chart, const ChartLine& line) {
  return !line.isReference || std::all_of(chart.lines.begin(), chart.lines.end(),
                                          [](const ChartLine& other) { return other.isReference; });
}

bool overlap(const Box& a, const Box& b) {
  return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

/// Whether a line between two points passes through a box: cut to the box's height, it reaches into
/// its width.
bool crosses(Point from, Point to, const Box& box) {
  if (std::max(from.y, to.y) < box.top || std::min(from.y, to.y) > box.bottom) return false;
  const auto xAt = [&](double y) {
    if (from.y == to.y) return from.x;
    return from.x + (y - from.y) / (to.y - from.y) * (to.x - from.x);
  };
  double left = from.x, right = to.x;
  if (from.y != to.y) {
    left = xAt(std::clamp(from.y, box.top, box.bottom));
    right = xAt(std::clamp(to.y, box.top, box.bottom));
  }
  return std::max(left, right) > box.left && std::min(left, right) < box.right;
}

/// Finds room for one text after another.
class NotePlacer {
 public:
  NotePlacer(const ChartFrame& frame, const TextRuler& ruler, Drawing& drawing)
      : frame_(frame), ruler_(ruler), drawing_(drawing), lines_(drawing.strokes) {}

  void place(const std::string& text, Point at) {
    const double width = ruler_.width(text, {kNoteSize});
    std::optional<Point> best;
    double leastCost = 0;
    for (const double shift : {0.0, 0.6, -0.6}) {
      for (const double rise : kRises) {
        const double x = std::clamp(at.x + shift * width, frame_.plot.left + width / 2 + 2,
                                    frame_.plot.right - width / 2 - 2);
        const Point baseline{x, at.y + rise};
        const double cost =
            costOf(boxOf(baseline, width)) + std::abs(shift) + std::abs(rise) / kNoteSize;
        if (best && cost >= leastCost) continue;
        best = baseline;
        leastCost = cost;
      }
    }
    taken_.push_back(boxOf(*best, width));
    drawing_.labels.push_back(
        {text, *best, TextAnchor::kMiddle, {kNoteSize, true}, kNoteInk, true});
  }

 private:
  static Box boxOf(Point baseline, double width) {
    return {baseline.x - width / 2, baseline.y - kNoteSize * 0.8, baseline.x + width / 2,
            baseline.y + kNoteSize * 0.2};
  }

  [[nodiscard]] double costOf(const Box& box) const {
    constexpr double kOverText = 1000, kOutside = 300, kOverLine = 10;
    double cost = 0;
    for (const Box& other : taken_) cost += overlap(box, other) ? kOverText : 0;
    // Above the plot there is room for a line of text, below it stand the dates.
    if (box.bottom > frame_.plot.bottom - 2 || box.top < frame_.plot.top - kNoteSize)
      cost += kOutside;
    for (const Stroke& line : lines_)
      for (std::size_t i = 1; !line.name.empty() && i < line.points.size(); ++i)
        if (crosses(line.points[i - 1], line.points[i], box)) cost += kOverLine;
    return cost;
  }

  const ChartFrame& frame_;
  const TextRuler& ruler_;
  Drawing& drawing_;
  const std::vector<Stroke>& lines_;
  std::vector<Box> taken_;
};

}  // namespace

ChartHighlights highlightsOf(const Chart& chart) {
  ChartHighlights found;
  bool isFirst = true;
  for (const ChartLine& line : chart.lines)
    for (const ChartPoint& point : line.points) {
      if (!std::isfinite(point.value) || !isHighlighted(chart, line)) continue;
      if (isFirst) found = {point, point, point, point};
      isFirst = false;
      if (point.date.compare(found.start.date) == NSOrderedAscending) found.start = point;
      if (point.date.compare(found.end.date) != NSOrderedAscending) found.end = point;
      if (point.value > found.peak.value) found.peak = point;
      if (point.value < found.trough.value) found.trough = point;
    }
  return found;
}

void addNotes(const Chart& chart, const ChartFrame& frame, const TextRuler& ruler,
              Drawing& drawing) {
  const ChartHighlights found = highlightsOf(chart);
  NotePlacer placer(frame, ruler, drawing);
  std::vector<Point> noted;
  for (const ChartPoint& point : {found.start, found.end, found.peak, found.trough}) {
    const Point at{frame.x(point.date), frame.y(point.value)};
    const bool isNoted = std::any_of(noted.begin(), noted.end(), [at](Point other) {
      return std::hypot(at.x - other.x, at.y - other.y) < kDotRadius;
    });
    if (isNoted) continue;
    noted.push_back(at);
    drawing.dots.push_back({at, kDotRadius, kNoteInk});
    placer.place(valueText(point.value, frame.high - frame.low, chart.locale), at);
  }
}

std::string describeChart(const Chart& chart) {
  const ChartHighlights found = highlightsOf(chart);
  const double span = found.peak.value - found.trough.value;
  const auto value = [&](const ChartPoint& point) {
    return valueText(point.value, span, chart.locale);
  };
  const auto day = [&](const ChartPoint& point) {
    return dayText(point.date, *chart.calendar, chart.locale);
  };
  return "From " + value(found.start) + " on " + day(found.start) + " to " + value(found.end) +
         " on " + day(found.end) + "; highest " + value(found.peak) + " on " + day(found.peak) +
         ", lowest " + value(found.trough) + " on " + day(found.trough) + ".";
}

}  // namespace orlftool
