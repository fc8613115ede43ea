/// Where dates and values of a chart lie on its page.
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

#include <vector>

#include "chart/chart.h"
#include "chart/chart_scale.h"
#include "chart/drawing.h"

namespace orlftool {

struct ChartFrame {
  ORLFoundation::NSDate from, to;
  double low = 0, high = 0;
  std::vector<NumberTick> numbers;
  std::vector<DateTick> dates;
  Box plot;

  [[nodiscard]] double x(ORLFoundation::NSDate date) const;
  [[nodiscard]] double y(double value) const;
};

/// The frame of all dates, and of the values of all lines but those for reference, which are only
/// compared with them (with those alone, they decide). The plot has no place yet. Throws JobFailure
/// when the lines do not hold finite values on two dates.
[[nodiscard]] ChartFrame makeChartFrame(const Chart& chart);

/// What of a line lies between the frame's ends, on the page; stairs where values hold until the
/// next date. Values that are not finite are left out.
[[nodiscard]] std::vector<std::vector<Point>> pathsOfLine(const ChartLine& line, bool isStepped,
                                                          const ChartFrame& frame);

}  // namespace orlftool
