

#include "plan/plan_chart.h"

#include <ORLFoundation/calendar/ORLFDateOrdering.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr double kMostPointsOfLine = 480;
/// Of a whole chart, so that all of its segments are drawn in one manner: beyond them a stair is
/// too narrow to be seen.
constexpr double kMostStairs = 80;

double valueOf(const std::optional<NSDecimalNumber>& number) {
  return number ? number->doubleValue() : std::numeric_limits<double>::quiet_NaN();
}

struct Stretch {
  std::size_t segment;
  NSDate from, to;
};

/// The segments that lie between two dates, cut to them.
std::vector<Stretch> stretches(const PlanModel& model, NSDate from, NSDate to) {
  std::vector<Stretch> found;
  const std::vector<PlanTerms>& segments = model.file.segments;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const NSDate end = i + 1 < segments.size() ? segments[i + 1].start : to;
    const NSDate left = std::max(from, segments[i].start, orlfIsBefore);
    const NSDate right = std::min(to, end, orlfIsBefore);
    if (orlfIsBefore(left, right)) found.push_back({i, left, right});
  }
  return found;
}

/// The contribution dates of a segment within a stretch, or every so many of them where there are
/// many, with both ends of the stretch. Between two of them a balance does not change.
struct Grid {
  std::vector<NSDate> dates;
  double contributions = 0;
};

Grid gridOfStretch(const PlanModel& model, const Stretch& stretch) {
  const PlanTerms& terms = model.file.segments[stretch.segment];
  const bool quarterly = terms.frequency == NSCalendarUnitQuarter;
  const NSCalendarUnit unit = quarterly ? NSCalendarUnitMonth : terms.frequency;
  const NSInteger interval = terms.interval * (quarterly ? 3 : 1);
  const auto unitsTo = [&](NSDate date) {
    return model.calendar().components(unit, terms.start, date, 0).valueForComponent(unit);
  };
  const NSInteger first = unitsTo(stretch.from) / interval;
  const NSInteger last = unitsTo(stretch.to) / interval;
  const double periods = static_cast<double>(last - first);
  const auto skip = static_cast<NSInteger>(std::max(1.0, std::ceil(periods / kMostPointsOfLine)));
  Grid grid{{stretch.from}, periods};
  for (NSInteger index = first + skip; index <= last; index += skip) {
    const auto date = model.calendar().dateByAddingUnit(unit, index * interval, terms.start, 0);
    if (date && orlfIsBefore(grid.dates.back(), *date) && orlfIsBefore(*date, stretch.to))
      grid.dates.push_back(*date);
  }
  grid.dates.push_back(stretch.to);
  return grid;
}

/// The line ends on the balance that the segment leaves, not on the one that the next begins with.
ChartLine lineOfStretch(const PlanModel& model, const Stretch& stretch, const Grid& grid) {
  const std::span<const NSDate> inside(grid.dates.data(), grid.dates.size() - 1);
  const auto balances =
      model.plan->plannedBalancesOnDates(inside, true, model.calendar(), model.rounding.get());
  ChartLine line;
  line.name = segmentName(model.file, stretch.segment);
  for (std::size_t i = 0; i < inside.size(); ++i)
    line.points.push_back({inside[i], valueOf(balances[i])});
  line.points.push_back(
      {stretch.to, valueOf(model.plan->plannedBalanceOnDate(stretch.to, false, model.calendar(),
                                                            model.rounding.get()))});
  return line;
}

/// What the first balance and the contributions after it come to.
ChartLine lineOfContributions(const PlanModel& model, const std::vector<ChartLine>& balances) {
  ChartLine line;
  line.name = "Without interest";
  line.isReference = true;
  const ChartPoint& start = balances.front().points.front();
  const double paidBefore = valueOf(model.contributionsUntil(start.date));
  for (const ChartLine& other : balances)
    for (const ChartPoint& point : other.points) {
      line.points.push_back(
          {point.date, start.value + valueOf(model.contributionsUntil(point.date)) - paidBefore});
    }
  return line;
}

}  // namespace

Chart makePlanChart(const PlanModel& model, NSDate from, NSDate to, const std::string& locale) {
  from = std::max(from, model.start(), orlfIsBefore);
  if (model.file.end) to = std::min(to, *model.file.end, orlfIsBefore);
  Chart chart;
  chart.title = model.file.title;
  chart.calendar = model.file.calendar;
  chart.locale = locale;
  double contributions = 0;
  for (const Stretch& stretch : stretches(model, from, to)) {
    const Grid grid = gridOfStretch(model, stretch);
    chart.lines.push_back(lineOfStretch(model, stretch, grid));
    contributions += grid.contributions;
    if (orlfIsBefore(from, stretch.from)) chart.marks.push_back(stretch.from);
  }
  chart.isStepped = contributions <= kMostStairs;
  if (!chart.lines.empty()) chart.lines.push_back(lineOfContributions(model, chart.lines));
  return chart;
}

}  // namespace orlftool
