/// The values that a chart writes beside its lines: where they start and end, their highest and
/// their lowest.
#pragma once

#include <string>
#include <vector>

#include "chart/chart.h"
#include "chart/chart_frame.h"
#include "chart/drawing.h"

namespace orlftool {

/// The points of the lines that stand out; those for reference carry none, unless there are no
/// others.
struct ChartHighlights {
  ChartPoint start, end, peak, trough;
};

/// The earliest of equal peaks and troughs.
[[nodiscard]] ChartHighlights highlightsOf(const Chart& chart);

/// A dot and a text for each of them, once where several fall on one point. Each text stands above
/// or below its point, where it crosses least.
void addNotes(const Chart& chart, const ChartFrame& frame, const TextRuler& ruler,
              Drawing& drawing);

/// The same in a sentence.
[[nodiscard]] std::string describeChart(const Chart& chart);

}  // namespace orlftool
