/// What tests of charts share: a ruler without fonts, lines and charts, the pieces of a drawing.
#pragma once

#include <algorithm>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "chart/chart.h"
#include "chart/drawing.h"
#include "cli/table.h"
#include "session.h"

namespace orlftool {

/// Every character is half as wide as high.
class SquareRuler : public TextRuler {
 public:
  [[nodiscard]] double width(std::string_view text, TextStyle style) const override {
    return static_cast<double>(characterCount(text)) * style.size / 2;
  }
};

inline ORLFoundation::NSDate dayOf(double day) {
  return ORLFoundation::NSDate::dateWithTimeIntervalSinceReferenceDate(day * 86400);
}

/// A line through days after 2001-01-01 and values.
inline ChartLine lineThrough(std::string name,
                             std::initializer_list<std::pair<double, double>> points,
                             bool isReference = false) {
  ChartLine line;
  line.name = std::move(name);
  line.isReference = isReference;
  for (const auto& [day, value] : points) line.points.push_back({dayOf(day), value});
  return line;
}

inline Chart chartOf(std::vector<ChartLine> lines) {
  Chart chart;
  chart.title = "A title";
  chart.lines = std::move(lines);
  chart.calendar = makeCalendar("UTC", "en_US");
  return chart;
}

/// The strokes that stand for lines of the chart, by their name.
inline std::vector<Stroke> strokesNamed(const Drawing& drawing, std::string_view name) {
  std::vector<Stroke> found;
  for (const Stroke& stroke : drawing.strokes)
    if (stroke.name == name) found.push_back(stroke);
  return found;
}

/// The label with a text; its text is empty where there is none.
inline Label labelWithText(const Drawing& drawing, std::string_view text) {
  const auto found = std::find_if(drawing.labels.begin(), drawing.labels.end(),
                                  [text](const Label& label) { return label.text == text; });
  return found == drawing.labels.end() ? Label{} : *found;
}

}  // namespace orlftool
