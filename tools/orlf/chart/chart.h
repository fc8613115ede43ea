/// Draws lines over time into an SVG, PNG or PDF file: title, legend, axes with round numbers and
/// readable dates, and the values that stand out.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <memory>
#include <string>
#include <vector>

namespace orlftool {

struct ChartPoint {
  ORLFoundation::NSDate date;
  double value = 0;
};

struct ChartLine {
  std::string name;
  std::vector<ChartPoint> points;  // in order of date; values that are not finite are left out
  /// Drawn thin, dashed and grey, as what the other lines are compared with: it decides nothing
  /// about the axes, and is seen as far as they reach.
  bool isReference = false;
};

struct Chart {
  std::string title;
  std::vector<ChartLine> lines;
  /// Values hold until the next date, and all lines are drawn as stairs.
  bool isStepped = false;
  /// Dates marked by an upright line, where there are not too many.
  std::vector<ORLFoundation::NSDate> marks;
  std::shared_ptr<ORLFoundation::NSCalendar> calendar;
  std::string locale = "en_US";
};

/// Whether the path ends in ".svg", ".png" or ".pdf", in capitals too.
[[nodiscard]] bool isChartPath(const std::string& path);
/// Draws the chart into the file, which is there whole or not at all. Throws UsageFailure for
/// another kind of file, JobFailure when nothing can be drawn or written.
void drawChart(const Chart& chart, const std::string& path);

}  // namespace orlftool
