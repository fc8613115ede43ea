// Dates of six rules through the main enumeration, 10,000 each from 2020-01-31 09:30 in New York
// and in UTC, beside libical's iterator. Both give their dates before anything is timed, and the
// program stops where they differ. libical walks local times without a zone and ends with the year
// 2582; its walk then begins anew until it has given as many dates. Every date is compared by its
// local day and time; ours may leave out a date whose time a clock change leaves out, which none of
// these is.
//
// One rule is shaped differently on purpose: a weekly rule's weekdays are looked for in the same
// week of the month as the two ends of each window, so that a week over a month's end can miss one.
// For it ours must be a part of libical's dates, in order.
//
// And how long the first date takes, of a rule that is held and of one that is read from its text.

#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <ORLFoundation/platform/time/NSCalendar.h>
#include <benchmark/benchmark.h>
#include <libical/ical.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

namespace {

using namespace ORLFoundation;
using Rule = ORLFDateRecurrenceRule;

constexpr std::size_t kDates = 10'000;

/// Year to minute as one number, 202001310930.
using LocalTime = std::int64_t;

LocalTime localTime(std::int64_t year, std::int64_t month, std::int64_t day, std::int64_t hour,
                    std::int64_t minute) {
  return (((year * 100 + month) * 100 + day) * 100 + hour) * 100 + minute;
}

struct Work {
  const char* name;
  Rule::Recurrence fields;
  const char* text;
  bool isPartOfPeers = false;
  /// The last day of a month has no text of ours: day -1 is a day that no month has.
  bool hasTextOfOurs = true;
};

std::shared_ptr<ORLFDateRecurrenceDayOfWeek> weekday(NSInteger day, NSInteger number) {
  return std::make_shared<ORLFDateRecurrenceDayOfWeek>(day, number);
}

const std::vector<Work>& works() {
  static const std::vector<Work> all = {
      {"monthlyDay31",
       {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheMonth = {{31}}},
       "FREQ=MONTHLY;BYMONTHDAY=31"},
      {"monthlySecondTuesday",
       {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheWeek = {{weekday(3, 2)}}},
       "FREQ=MONTHLY;BYDAY=2TU"},
      {"weeklyMondayFriday",
       {.frequency = ORLFDateRecurrenceFrequencyWeekly,
        .daysOfTheWeek = {{weekday(2, 0), weekday(6, 0)}}},
       "FREQ=WEEKLY;BYDAY=MO,FR",
       true},
      {"yearlyMarch15",
       {.frequency = ORLFDateRecurrenceFrequencyYearly,
        .daysOfTheMonth = {{15}},
        .monthsOfTheYear = {{3}}},
       "FREQ=YEARLY;BYMONTH=3;BYMONTHDAY=15"},
      {"everyThreeDays",
       {.frequency = ORLFDateRecurrenceFrequencyDaily, .interval = 3},
       "FREQ=DAILY;INTERVAL=3"},
      {"monthlyLastDay",
       {.frequency = ORLFDateRecurrenceFrequencyMonthly, .daysOfTheWeek = {{weekday(-1, -1)}}},
       "FREQ=MONTHLY;BYMONTHDAY=-1",
       false,
       false},
  };
  return all;
}

constexpr const char* kNewYork = "America/New_York";

class Ours {
 public:
  explicit Ours(const Work& work, const char* zone = kNewYork)
      : calendar_(NSCalendar::initWithCalendarIdentifier(NSCalendarIdentifierGregorian)),
        rule_(Rule::ruleWithFields(work.fields)) {
    calendar_->setTimeZone(NSTimeZone::timeZoneWithName(zone));
    NSDateComponents start;
    start.setYear(2020);
    start.setMonth(1);
    start.setDay(31);
    start.setHour(9);
    start.setMinute(30);
    start_ = *calendar_->dateFromComponents(start);
  }

  template <class Visit>
  void walk(std::size_t most, Visit visit) const {
    walk(*rule_, most, visit);
  }
  template <class Visit>
  void walk(const Rule& rule, std::size_t most, Visit visit) const {
    rule.enumerateDatesForCalendarStartDate({.calendar = *calendar_, .startDate = start_},
                                            [&](NSDate date, NSUInteger count, bool& stop) {
                                              visit(date);
                                              stop = count >= most;
                                            });
  }
  [[nodiscard]] std::vector<LocalTime> localTimes() const {
    std::vector<LocalTime> times;
    walk(kDates, [&](NSDate date) {
      const auto at =
          calendar_->components(NSCalendarUnitYear | NSCalendarUnitMonth | NSCalendarUnitDay |
                                    NSCalendarUnitHour | NSCalendarUnitMinute,
                                date);
      times.push_back(localTime(at.year(), at.month(), at.day(), at.hour(), at.minute()));
    });
    return times;
  }

 private:
  std::shared_ptr<NSCalendar> calendar_;
  std::shared_ptr<Rule> rule_;
  NSDate start_;
};

class Libical {
 public:
  explicit Libical(const Work& work) : rule_(icalrecurrencetype_from_string(work.text)) {}

  /// Answers how many dates the walk gave.
  template <class Visit>
  std::size_t walk(std::size_t most, Visit visit) const {
    icalrecur_iterator* iterator =
        icalrecur_iterator_new(rule_, icaltime_from_string("20200131T093000"));
    std::size_t count = 0;
    for (; count < most; ++count) {
      const icaltimetype time = icalrecur_iterator_next(iterator);
      if (icaltime_is_null_time(time)) break;
      visit(time);
    }
    icalrecur_iterator_free(iterator);
    return count;
  }
  [[nodiscard]] std::vector<LocalTime> localTimes() const {
    std::vector<LocalTime> times;
    walk(kDates, [&](const icaltimetype& time) {
      times.push_back(localTime(time.year, time.month, time.day, time.hour, time.minute));
    });
    return times;
  }

 private:
  icalrecurrencetype rule_;
};

void stopUnlessEqual(const Work& work) {
  std::vector<LocalTime> ours = Ours(work).localTimes();
  const bool agreeInUtc = ours == Ours(work, "UTC").localTimes();
  const std::vector<LocalTime> peers = Libical(work).localTimes();
  bool agree = ours.size() == kDates && agreeInUtc && !peers.empty();
  ours.erase(std::upper_bound(ours.begin(), ours.end(), peers.back()), ours.end());
  if (work.isPartOfPeers)
    agree = agree && std::includes(peers.begin(), peers.end(), ours.begin(), ours.end());
  else
    agree = agree && ours == peers;
  std::fprintf(stderr, "%s: %zu dates to compare, %zu of libical's: %s\n", work.name, ours.size(),
               peers.size(), agree ? "equal" : "DIFFERENT");
  if (!agree) std::exit(EXIT_FAILURE);
}

void runOurs(benchmark::State& state, const Work& work, const char* zone) {
  const Ours ours(work, zone);
  for ([[maybe_unused]] auto _ : state)
    ours.walk(kDates, [](NSDate date) { benchmark::DoNotOptimize(date); });
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kDates));
}

void runLibical(benchmark::State& state, const Work& work) {
  const Libical libical(work);
  for ([[maybe_unused]] auto _ : state) {
    for (std::size_t count = 0; count < kDates;)
      count +=
          libical.walk(kDates - count, [](icaltimetype time) { benchmark::DoNotOptimize(time); });
  }
  state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kDates));
}

void firstDateOfHeldRule(benchmark::State& state, const Work& work) {
  const Ours ours(work);
  for ([[maybe_unused]] auto _ : state)
    ours.walk(1, [](NSDate date) { benchmark::DoNotOptimize(date); });
}

void firstDateOfText(benchmark::State& state, const Work& work) {
  const Ours ours(work);
  const std::string text = std::string("RRULE:") + work.text;
  for ([[maybe_unused]] auto _ : state)
    ours.walk(*Rule::dateRecurrenceRuleFromICalendarString(text), 1,
              [](NSDate date) { benchmark::DoNotOptimize(date); });
}

const bool kRegistered = [] {
  for (const Work& work : works()) {
    stopUnlessEqual(work);
    const std::string name = work.name;
    benchmark::RegisterBenchmark((name + "/ours").c_str(), runOurs, work, kNewYork)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/inUtc").c_str(), runOurs, work, "UTC")
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "/libical").c_str(), runLibical, work)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark((name + "First/ours").c_str(), firstDateOfHeldRule, work);
    if (work.hasTextOfOurs)
      benchmark::RegisterBenchmark((name + "First/fromText").c_str(), firstDateOfText, work);
  }
  return true;
}();

}  // namespace
