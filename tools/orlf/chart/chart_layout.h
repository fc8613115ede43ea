/// Lays a chart out on its page: title, legend, axes, lines and the values beside them.
#pragma once

#include "chart/chart.h"
#include "chart/drawing.h"

namespace orlftool {

/// The drawing of a chart, 960 by 540. The legend takes at most a fifth of its height, and nothing
/// of a line lies outside of the axes. Throws JobFailure as makeChartFrame does.
[[nodiscard]] Drawing layOutChart(const Chart& chart, const TextRuler& ruler);

}  // namespace orlftool
