/// Rules, calendars and dates by chance, with what makes sense and what callers can store beside
/// it: every shape of rule, zones with every kind of clock change, odd start dates.
#pragma once

#include <ORLFoundation/platform/time/ZoneTable.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrence_testing.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>

namespace orlftest::chance {

using namespace ORLFoundation;

struct Start {
  int year, month, day, hour, minute;
  double fraction = 0;
};

// Month ends, leap days, times that clock changes leave out or double, both sides of the year 1.
inline constexpr Start kStarts[] = {
    {2020, 1, 31, 9, 30}, {2020, 2, 29, 0, 0},   {2021, 3, 14, 2, 30},  {2021, 3, 30, 23, 59},
    {2021, 11, 7, 1, 30}, {2011, 12, 30, 12, 0}, {2011, 10, 29, 10, 0}, {1993, 7, 21, 8, 0},
    {1, 1, 31, 6, 0},     {1880, 12, 31, 12, 0}, {29990, 5, 31, 9, 0},  {2024, 10, 31, 9, 0, 0.25}};

inline constexpr std::string_view kZones[] = {"UTC",
                                              "America/New_York",
                                              "Europe/Dublin",
                                              "Asia/Kathmandu",
                                              "Australia/Lord_Howe",
                                              "Pacific/Apia",
                                              "Pacific/Kwajalein",
                                              "America/Santiago",
                                              "Africa/Casablanca"};

inline constexpr ORLFDateRecurrenceFrequency kFrequencies[] = {kYearly, kMonthly, kDaily,
                                                               kQuarterly, kWeekly};

// What callers can store beside what makes sense: other units, several at once, none, no unit.
inline constexpr NSInteger kOddFrequencies[] = {
    2, 32, 64, 256,  512, 1024,    4096,         16384,       32768,
    0, 1,  24, 8200, -8,  1 << 20, NSIntegerMin, NSIntegerMax};
inline constexpr NSInteger kIntervals[] = {1, 1, 1, 2, 3, 14, -1};
inline constexpr NSInteger kOddIntervals[] = {
    0, -2, -53, 100, 4000, 1L << 40, -(1L << 40), NSIntegerMin, NSIntegerMax};
inline constexpr NSInteger kMonths[] = {1, 2, 3, 11, 12, 14};
inline constexpr NSInteger kDays[] = {1, 2, 7, 15, 28, 29, 30, 31, -1};
inline constexpr NSInteger kWeeks[] = {1, 20, 53};
inline constexpr NSInteger kDaysOfTheYear[] = {1, 100, 366};
/// For any list.
inline constexpr NSInteger kOddValues[] = {0,   -1, -12,          8,           13, 32, 54,
                                           400, -5, NSIntegerMin, NSIntegerMax};
inline constexpr NSInteger kWeekdays[] = {1, 2, 4, 6, 7, -1, -2};
inline constexpr NSInteger kOddWeekdays[] = {0, 8, -3, -4, 100, NSIntegerMin, NSIntegerMax};
inline constexpr NSInteger kNumbers[] = {0, 1, 2, 4, 5, -1, 6};
inline constexpr NSInteger kOddNumbers[] = {-2, -6, 28, 29, 53, NSIntegerMin, NSIntegerMax};
// Instants of no calendar, of its last days, and beyond whole numbers.
inline const double kOddStarts[] = {std::numeric_limits<double>::quiet_NaN(),
                                    HUGE_VAL,
                                    -HUGE_VAL,
                                    1e300,
                                    -1e12,
                                    9.99e11,
                                    4.3e13,
                                    -4.3e13,
                                    -0.0,
                                    0x1p-1074};

/// A clock that goes ahead of GMT by a day and behind it by a day in turns, each month.
inline std::shared_ptr<NSTimeZone> zoneOfGreatChanges() {
  using internal::time::ZoneTable;
  constexpr std::int64_t kDay = 86400;
  std::vector<ZoneTable::Segment> segments = {{ZoneTable::kBeginningOfTime, 0, 0, 0, false}};
  for (std::int32_t month = 0; month < 600; ++month)
    segments.push_back({(18'000 + 31 * month) * kDay + 3600 * month, 0, 0,
                        (month % 2 == 0 ? -25 : 25) * 3600, month % 2 == 0});
  return std::make_shared<NSTimeZone>("Test/GreatChanges",
                                      std::make_shared<const ZoneTable>(segments, false));
}

class RandomWalks {
 public:
  [[nodiscard]] NSInteger below(NSInteger bound) {
    return static_cast<NSInteger>(engine_() % static_cast<std::uint64_t>(bound));
  }
  template <class Table>
  [[nodiscard]] const auto& oneOf(const Table& table) {
    return table[static_cast<std::size_t>(below(std::ssize(table)))];
  }
  /// One of the second table now and then.
  template <class Table, class OddTable>
  [[nodiscard]] auto mostlyOf(const Table& table, const OddTable& odd) {
    return below(12) == 0 ? static_cast<std::remove_cvref_t<decltype(table[0])>>(oneOf(odd))
                          : oneOf(table);
  }

  [[nodiscard]] Rule::Recurrence rule() {
    Rule::Recurrence fields{.frequency = mostlyOf(kFrequencies, kOddFrequencies)};
    fields.interval = mostlyOf(kIntervals, kOddIntervals);
    fields.absolute = below(8) == 0;
    if (below(3) == 0) fields.monthsOfTheYear = list(kMonths);
    if (below(3) == 0)
      fields.daysOfTheMonth = list(kDays);
    else if (below(2) == 0)
      fields.daysOfTheWeek = entries(fields.frequency);
    if (below(12) == 0) fields.weeksOfTheYear = list(kWeeks);
    if (below(12) == 0) fields.daysOfTheYear = list(kDaysOfTheYear);
    if (below(12) == 0) fields.setPositions = list(kOddValues);
    return fields;
  }
  [[nodiscard]] NSDate start(const NSCalendar& calendar) {
    if (below(20) == 0) return NSDate::dateWithTimeIntervalSinceReferenceDate(oneOf(kOddStarts));
    if (below(3) == 0) return startNearClockChange(*calendar.timeZone());
    const Start& start = oneOf(kStarts);
    return at(calendar, start.year, start.month, start.day, start.hour, start.minute)
        .dateByAddingTimeInterval(start.fraction);
  }
  [[nodiscard]] std::shared_ptr<NSCalendar> calendar() {
    auto calendar = calendarIn(oneOf(kZones));
    if (below(12) == 0) calendar->setTimeZone(zoneOfGreatChanges());
    calendar->setFirstWeekday(oneOf(std::array<NSInteger, 3>{1, 2, 7}));
    calendar->setMinimumDaysInFirstWeek(oneOf(std::array<NSInteger, 3>{1, 1, 4}));
    if (below(4) == 0) calendar->setLocaleIdentifier("ar_EG");
    return calendar;
  }

 private:
  /// Empty now and then, as archives can hold it.
  template <class Table>
  [[nodiscard]] std::vector<NSInteger> list(const Table& table) {
    std::vector<NSInteger> values;
    if (below(20) == 0) return values;
    for (NSInteger count = below(3); count >= 0; --count)
      values.push_back(mostlyOf(table, kOddValues));
    return values;
  }
  [[nodiscard]] Rule::DaysOfTheWeek entries(ORLFDateRecurrenceFrequency frequency) {
    Rule::DaysOfTheWeek days(std::in_place);
    const bool plain = frequency == kWeekly && below(4) != 0;
    for (NSInteger count = below(3); count >= 0; --count) {
      const NSInteger weekday = plain ? 1 + below(7) : mostlyOf(kWeekdays, kOddWeekdays);
      const NSInteger number = plain ? 0 : mostlyOf(kNumbers, kOddNumbers);
      days->push_back(std::make_shared<ORLFDateRecurrenceDayOfWeek>(weekday, number));
    }
    return days;
  }

  /// Within four days of a change, on a quarter of an hour.
  [[nodiscard]] NSDate startNearClockChange(const NSTimeZone& zone) {
    constexpr NSInteger kDay = 86400;
    constexpr NSInteger kQuarter = 900;
    const NSDate some =
        NSDate::dateWithTimeIntervalSince1970(static_cast<double>(kDay * (below(80'000) - 30'000)));
    const NSDate change = zone.nextDaylightSavingTimeTransitionAfterDate(some).value_or(some);
    return change.dateByAddingTimeInterval(
        static_cast<double>((below(8 * kDay / kQuarter) - 4 * kDay / kQuarter) * kQuarter));
  }

  std::mt19937_64 engine_{20200131};
};

inline std::string textOf(const Rule& rule) {
  std::string text = "frequency " + std::to_string(static_cast<NSInteger>(rule.frequency())) +
                     " by " + std::to_string(rule.interval());
  const auto append = [&text](std::string_view name, const Rule::Integers& values) {
    if (!values) return;
    text.append(" ").append(name);
    for (const NSInteger value : *values) text.append(" ").append(std::to_string(value));
  };
  append("months", rule.monthsOfTheYear());
  append("days", rule.daysOfTheMonth());
  append("weeks", rule.weeksOfTheYear());
  append("days of the year", rule.daysOfTheYear());
  append("positions", rule.setPositions());
  for (const auto& day : rule.daysOfTheWeek().value_or(Rule::DaysOfTheWeek::value_type{}))
    text +=
        " weekday " + std::to_string(day->dayOfTheWeek()) + "/" + std::to_string(day->weekNumber());
  return text;
}

}  // namespace orlftest::chance
