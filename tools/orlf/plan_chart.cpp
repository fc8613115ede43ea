#include "plan_chart.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr int kSamplesOfChart = 480, kFewestSamples = 3;

bool isEarlier(NSDate left, NSDate right) { return left.compare(right) == NSOrderedAscending; }

double valueOf(const std::optional<NSDecimalNumber>& number) {
  return number ? number->doubleValue() : std::numeric_limits<double>::quiet_NaN();
}

/// Dates at equal distances, both ends included.
std::vector<NSDate> sampleDates(NSDate from, NSDate to, int count) {
  std::vector<NSDate> dates;
  const double step = to.timeIntervalSinceDate(from) / (count - 1);
  for (int i = 0; i + 1 < count; ++i) dates.push_back(from.dateByAddingTimeInterval(i * step));
  dates.push_back(to);
  return dates;
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
    const NSDate left = std::max(from, segments[i].start, isEarlier);
    const NSDate right = std::min(to, end, isEarlier);
    if (isEarlier(left, right)) found.push_back({i, left, right});
  }
  return found;
}

/// The line ends on the balance that the segment leaves, not on the one that the next begins with.
ChartLine lineOfStretch(const PlanModel& model, const Stretch& stretch, double wholeLength) {
  const double share = stretch.to.timeIntervalSinceDate(stretch.from) / wholeLength;
  std::vector<NSDate> dates =
      sampleDates(stretch.from, stretch.to,
                  std::max(kFewestSamples, static_cast<int>(std::lround(share * kSamplesOfChart))));
  dates.pop_back();
  const auto balances =
      model.plan->plannedBalancesOnDates(dates, true, model.calendar(), model.rounding.get());
  ChartLine line;
  line.name = segmentName(model.file, stretch.segment);
  for (std::size_t i = 0; i < dates.size(); ++i)
    line.points.push_back({dates[i], valueOf(balances[i])});
  line.points.push_back(
      {stretch.to, valueOf(model.plan->plannedBalanceOnDate(stretch.to, false, model.calendar(),
                                                            model.rounding.get()))});
  return line;
}

ChartLine lineOfContributions(const PlanModel& model, NSDate from, NSDate to) {
  ChartLine line;
  line.name = "Without interest";
  line.isReference = true;
  const double start =
      valueOf(model.plan->plannedBalanceOnDate(from, true, model.calendar(), model.rounding.get()));
  for (const NSDate date : sampleDates(from, to, kSamplesOfChart / 2)) {
    const double paid = valueOf(
        model.plan->plannedContributionsFromStartDate({.startDate = from,
                                                       .toEndDate = date,
                                                       .usingCalendar = model.calendar(),
                                                       .roundingBehavior = model.rounding.get()}));
    line.points.push_back({date, start + paid});
  }
  return line;
}

}  // namespace

Chart makePlanChart(const PlanModel& model, NSDate from, NSDate to, const std::string& locale) {
  from = std::max(from, model.start(), isEarlier);
  if (model.file.end) to = std::min(to, *model.file.end, isEarlier);
  Chart chart;
  chart.title = model.file.title;
  chart.calendar = model.file.calendar;
  chart.locale = locale;
  const double length = to.timeIntervalSinceDate(from);
  for (const Stretch& stretch : stretches(model, from, to)) {
    chart.lines.push_back(lineOfStretch(model, stretch, length));
    if (isEarlier(from, stretch.from)) chart.marks.push_back(stretch.from);
  }
  if (isEarlier(from, to)) chart.lines.push_back(lineOfContributions(model, from, to));
  return chart;
}

}  // namespace orlftool
