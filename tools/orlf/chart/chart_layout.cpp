#include "chart/chart_layout.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "chart/chart_frame.h"
#include "chart/chart_legend.h"
#include "chart/chart_notes.h"
#include "chart/chart_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kWidth = 960, kHeight = 540, kMargin = 28;
constexpr double kTextSize = 12, kTitleSize = 18, kSmallestTitle = 13, kTickLength = 5, kGap = 8;
constexpr double kSwatch = 22, kLegendRow = kTextSize * 1.5;
constexpr int kMostLegendRows = static_cast<int>((kHeight / 5 - kGap) / kLegendRow);
constexpr std::size_t kMostMarks = 12;

constexpr Color kInk{0.13, 0.15, 0.18}, kFaint{0.88, 0.89, 0.91}, kGrey{0.45, 0.48, 0.52};
/// Told apart by readers who do not see all colours.
constexpr std::array kColors{Color{0.00, 0.45, 0.70}, Color{0.84, 0.37, 0.00},
                             Color{0.00, 0.62, 0.45}, Color{0.80, 0.47, 0.65},
                             Color{0.34, 0.71, 0.91}, Color{0.90, 0.62, 0.00},
                             Color{0.35, 0.30, 0.65}};

class ChartLayout {
 public:
  ChartLayout(const Chart& chart, const TextRuler& ruler)
      : chart_(chart), ruler_(ruler), frame_(makeChartFrame(chart)) {}

  Drawing layOut() {
    drawing_.width = kWidth;
    drawing_.height = kHeight;
    drawing_.title = visibleText(chart_.title);
    drawing_.description = describeChart(chart_);
    const double top = addLegend(addTitle(kMargin)) + kTextSize;
    frame_.plot = {kMargin + widestNumber() + kGap, top, kWidth - kMargin,
                   kHeight - kMargin - kTextSize - kGap};
    addNumberAxis();
    addDateAxis();
    addMarks();
    addLines();
    addNotes(chart_, frame_, ruler_, drawing_);
    return std::move(drawing_);
  }

 private:
  double addTitle(double top);
  double addLegend(double top);
  [[nodiscard]] double widestNumber() const;
  void addNumberAxis();
  void addDateAxis();
  void addMarks();
  void addLines();
  [[nodiscard]] Stroke strokeOfLine(std::size_t index) const;

  void addStroke(Point from, Point to, Color color, double width = 1, bool isDashed = false) {
    drawing_.strokes.push_back({{from, to}, color, width, isDashed, ""});
  }
  void addText(const std::string& text, Point at, TextAnchor anchor, TextStyle style = {}) {
    drawing_.labels.push_back({text, at, anchor, style, kInk, false});
  }

  const Chart& chart_;
  const TextRuler& ruler_;
  ChartFrame frame_;
  Drawing drawing_;
};

/// A long title is written smaller, and cut when that does not do.
double ChartLayout::addTitle(double top) {
  if (drawing_.title.empty()) return top;
  constexpr double kRoom = kWidth - 2 * kMargin;
  TextStyle style{kTitleSize, true};
  const double width = ruler_.width(drawing_.title, style);
  if (width > kRoom) style.size = std::max(kSmallestTitle, kTitleSize * kRoom / width);
  addText(fittedText(drawing_.title, kRoom, style, ruler_), {kMargin, top + style.size * 0.8},
          TextAnchor::kStart, style);
  return top + kTitleSize + kGap;
}

double ChartLayout::addLegend(double top) {
  LegendRequest request{.width = kWidth - 2 * kMargin,
                        .mostRows = kMostLegendRows,
                        .swatch = kSwatch,
                        .gap = kGap,
                        .style = {kTextSize}};
  for (const ChartLine& line : chart_.lines) {
    request.names.push_back(visibleText(line.name));
    request.isReference.push_back(line.isReference);
  }
  double bottom = top;
  for (const LegendEntry& entry : layOutLegend(request, ruler_)) {
    const Point at{kMargin + entry.left, top + kTextSize + entry.row * kLegendRow};
    double textLeft = at.x;
    if (entry.line) {
      const double middle = at.y - kTextSize * 0.35;
      Stroke swatch = strokeOfLine(*entry.line);
      swatch.points = {{at.x, middle}, {at.x + kSwatch, middle}};
      swatch.name.clear();
      drawing_.strokes.push_back(std::move(swatch));
      textLeft += kSwatch + kGap;
    }
    addText(entry.text, {textLeft, at.y}, TextAnchor::kStart);
    bottom = at.y + kGap;
  }
  return bottom;
}

double ChartLayout::widestNumber() const {
  double widest = 0;
  for (const NumberTick& tick : frame_.numbers)
    widest = std::max(widest, ruler_.width(tick.label, {kTextSize}));
  return widest;
}

void ChartLayout::addNumberAxis() {
  const Box& plot = frame_.plot;
  for (const NumberTick& tick : frame_.numbers) {
    const double height = frame_.y(tick.value);
    const bool isZero = tick.value == 0;
    addStroke({plot.left, height}, {plot.right, height}, isZero ? kGrey : kFaint, isZero ? 1.2 : 1);
    addText(tick.label, {plot.left - kGap, height + kTextSize * 0.35}, TextAnchor::kEnd);
  }
}

void ChartLayout::addDateAxis() {
  const Box& plot = frame_.plot;
  addStroke({plot.left, plot.bottom}, {plot.right, plot.bottom}, kGrey);
  double free = 0;  // where the last label ends
  for (const DateTick& tick : frame_.dates) {
    const double at = frame_.x(tick.date);
    addStroke({at, plot.bottom}, {at, plot.bottom + kTickLength}, kGrey);
    const double width = ruler_.width(tick.label, {kTextSize});
    const double left = std::clamp(at - width / 2, 0.0, kWidth - kGap - width);
    if (left < free) continue;
    addText(tick.label, {left + width / 2, plot.bottom + kTickLength + kTextSize + 2},
            TextAnchor::kMiddle);
    free = left + width + kGap;
  }
}

void ChartLayout::addMarks() {
  if (chart_.marks.size() > kMostMarks) return;
  for (const NSDate mark : chart_.marks) {
    const double at = frame_.x(mark);
    addStroke({at, frame_.plot.top}, {at, frame_.plot.bottom}, kGrey, 0.8, true);
  }
}

Stroke ChartLayout::strokeOfLine(std::size_t index) const {
  const ChartLine& line = chart_.lines[index];
  return {{},
          line.isReference ? kGrey : kColors[index % kColors.size()],
          line.isReference ? 1.4 : 2.4,
          line.isReference,
          visibleText(line.name)};
}

/// Lines for reference lie below the others.
void ChartLayout::addLines() {
  for (const bool reference : {true, false})
    for (std::size_t i = 0; i < chart_.lines.size(); ++i) {
      if (chart_.lines[i].isReference != reference) continue;
      for (std::vector<Point>& path : pathsOfLine(chart_.lines[i], chart_.isStepped, frame_)) {
        drawing_.strokes.push_back(strokeOfLine(i));
        drawing_.strokes.back().points = std::move(path);
      }
    }
}

}  // namespace

Drawing layOutChart(const Chart& chart, const TextRuler& ruler) {
  return ChartLayout(chart, ruler).layOut();
}

}  // namespace orlftool
