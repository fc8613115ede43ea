// Rules of twelve shapes: those that calendars use most among the ones that repeat the start date
// or whose lists work together, in New York from 1997-09-02 09:00. "general" is the walk that
// serves every rule, without the fast path; both give the same dates. An item is a date, or a
// period where a rule has no date at all: what its lists name never comes together. Where a
// condition of the expansion fails, the log is told, which here drops the words.

#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/recurrence/internal/ORLFDateWalk.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace {

using namespace ORLFoundation;
using internal::recurrence::ORLFDateWalk;

constexpr std::size_t kDates = 1'000;

struct Shape {
  const char* name;
  const char* text;
};
constexpr Shape kShapes[] = {
    {"daily", "FREQ=DAILY"},
    {"weekly", "FREQ=WEEKLY;INTERVAL=2"},
    {"monthly", "FREQ=MONTHLY"},
    {"yearly", "FREQ=YEARLY"},
    {"yearlyWeekAndWeekday", "FREQ=YEARLY;BYWEEKNO=20;BYDAY=MO"},
    {"yearlyMonthsAndWeekdays", "FREQ=YEARLY;BYMONTH=1,3;BYDAY=TU,TH"},
    {"yearlyDaysOfTheYear", "FREQ=YEARLY;BYYEARDAY=1,100,200,365"},
    {"yearlyWeek", "FREQ=YEARLY;BYWEEKNO=20"},
    {"yearlyMonthsAndPlaces", "FREQ=YEARLY;BYMONTH=1,3;BYDAY=1TU,-1TH"},
    {"yearlyMonthsDaysAndWeekdays", "FREQ=YEARLY;BYMONTH=1,3;BYMONTHDAY=1,3;BYDAY=TU,TH"},
    {"monthlyDaysAndWeekdays", "FREQ=MONTHLY;BYMONTHDAY=1,3;BYDAY=TU,TH"},
    {"monthlyWeekAndWeekday", "FREQ=MONTHLY;BYWEEKNO=20;BYDAY=MO"},
};

class Walk {
 public:
  explicit Walk(const Shape& shape)
      : calendar_(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian)),
        rule_(ORLFDateRecurrenceRule::dateRecurrenceRuleFromICalendarString(std::string("RRULE:") +
                                                                            shape.text)) {
    calendar_->setTimeZone(NSTimeZone::timeZoneWithName("America/New_York"));
  }

  /// Answers how many dates there were, or periods where there was no date.
  template <class Visit>
  std::size_t run(ORLFDateWalk::Paths paths, Visit visit) const {
    std::size_t given = 0;
    const NSUInteger periods = ORLFDateWalk(
                                   *rule_, {.calendar = *calendar_, .startDate = kStart},
                                   [&](NSDate date, NSUInteger count, bool& stop) {
                                     visit(date);
                                     given = count;
                                     stop = count == kDates;
                                   },
                                   paths)
                                   .run();
    return given == 0 ? periods : given;
  }

 private:
  /// 1997-09-02 09:00 in New York.
  static constexpr NSDate kStart = NSDate::dateWithTimeIntervalSince1970(873205200);

  std::shared_ptr<NSCalendar> calendar_;
  std::shared_ptr<ORLFDateRecurrenceRule> rule_;
};

void runShape(benchmark::State& state, const Shape& shape, ORLFDateWalk::Paths paths) {
  const Walk walk(shape);
  std::size_t given = 0;
  for ([[maybe_unused]] auto _ : state)
    given = walk.run(paths, [](NSDate date) { benchmark::DoNotOptimize(date); });
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(given));
}

void stopUnlessEqual(const Shape& shape) {
  const Walk walk(shape);
  std::vector<NSDate> all;
  std::vector<NSDate> general;
  walk.run(ORLFDateWalk::Paths::kAll, [&](NSDate date) { all.push_back(date); });
  walk.run(ORLFDateWalk::Paths::kGeneralOnly, [&](NSDate date) { general.push_back(date); });
  const bool agree = all == general;
  std::fprintf(stderr, "%s: %zu dates: %s\n", shape.name, all.size(),
               agree ? "equal" : "DIFFERENT");
  if (!agree) std::exit(EXIT_FAILURE);
}

const bool kRegistered = [] {
  NSSetLogSink([](std::string_view) {});
  for (const Shape& shape : kShapes) {
    stopUnlessEqual(shape);
    const std::string name = shape.name;
    benchmark::RegisterBenchmark((name + "/ours").c_str(), runShape, shape,
                                 ORLFDateWalk::Paths::kAll)
        ->Unit(benchmark::kMicrosecond);
    benchmark::RegisterBenchmark((name + "/general").c_str(), runShape, shape,
                                 ORLFDateWalk::Paths::kGeneralOnly)
        ->Unit(benchmark::kMicrosecond);
  }
  return true;
}();

}  // namespace
