
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>

#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/platform/time/ZoneTable.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>

#include <algorithm>
#include <bit>
#include <cmath>

namespace ORLFoundation::internal::recurrence {
namespace {

using Rule = ORLFDateRecurrenceRule;

using base::civil::floorModulo;
using base::civil::kSecondsPerDay;

/// Years of one era that every step below can count with.
constexpr NSInteger kFirstYear = 1;
constexpr NSInteger kLastYear = 30'000;
constexpr std::int32_t kFirstDay = base::civil::dayFromDate(kFirstYear, 1, 1);
constexpr std::int32_t kLastDay = base::civil::dayFromDate(kLastYear, 12, 31);
constexpr std::int64_t kFirstMonth = base::civil::monthNumber(kFirstYear, 1);
constexpr std::int64_t kLastMonth = base::civil::monthNumber(kLastYear, kMonthsPerYear);
constexpr NSInteger kFarthestStep = 100'000'000;
/// No clock is farther from GMT than 25 hours, so that none changes by more than 50: farther from a
/// change each time is shown once.
constexpr double kReachOfClockChange = 50 * 3600;
constexpr auto kWeek = static_cast<std::int32_t>(kDaysPerWeek);
/// Every month has as many days, and none has more.
constexpr NSInteger kDaysOfAnyMonth = 28;
constexpr NSInteger kMostDaysOfAMonth = 31;

bool stepsByMonths(const Rule& rule) {
  return rule.frequency() != ORLFDateRecurrenceFrequencyDaily &&
         rule.frequency() != ORLFDateRecurrenceFrequencyWeekly;
}

/// How many months or days a rule's unit has; nil for a frequency outside the enumeration.
std::optional<NSInteger> lengthOfUnit(ORLFDateRecurrenceFrequency frequency) {
  switch (frequency) {
    case ORLFDateRecurrenceFrequencyYearly:
      return kMonthsPerYear;
    case ORLFDateRecurrenceFrequencyQuarterly:
      return kMonthsPerQuarter;
    case ORLFDateRecurrenceFrequencyWeekly:
      return kDaysPerWeek;
    case ORLFDateRecurrenceFrequencyMonthly:
    case ORLFDateRecurrenceFrequencyDaily:
      return 1;
  }
  return std::nullopt;
}

/// A pattern takes the one value that means "not set" for just that.
bool leavesADayOpen(const Rule& rule) {
  const auto& days = rule.daysOfTheMonth();
  return holdsEntries(days) &&
         std::find(days->begin(), days->end(), NSDateComponentUndefined) != days->end();
}

bool namesOnlyMonthsOfTheYear(const Rule& rule) {
  const auto& months = rule.monthsOfTheYear();
  return !holdsEntries(months) || std::all_of(months->begin(), months->end(), [](NSInteger month) {
    return month >= 1 && month <= kMonthsPerYear;
  });
}

/// The nth weekday, the last weekday of the date's own month, the last day, or a day that every
/// month has.
bool namesPlaceInMonth(const ORLFDateRecurrenceDayOfWeek& day, bool ofListedMonths) {
  if (day.dayOfTheWeek() == kAnyDay) return day.weekNumber() <= kDaysOfAnyMonth;
  if (day.weekNumber() == NSDateComponentUndefined) return false;
  return day.dayOfTheWeek() >= 1 && day.dayOfTheWeek() <= kDaysPerWeek &&
         (day.weekNumber() > 0 || !ofListedMonths);
}

/// Which day it is of a month of that length that begins on that weekday; 0 where it has none.
std::int32_t dayOfEntry(const ORLFDateRecurrenceDayOfWeek& entry, std::int32_t weekdayOfFirst,
                        std::int32_t length) {
  const NSInteger number = entry.weekNumber();
  if (entry.dayOfTheWeek() == kAnyDay)
    return number > 0 ? static_cast<std::int32_t>(number) : length;
  const auto later = static_cast<std::int32_t>(entry.dayOfTheWeek()) - weekdayOfFirst;
  const std::int32_t first = 1 + (later < 0 ? later + kWeek : later);
  const std::int32_t lastPlace = first + 4 * kWeek <= length ? 5 : 4;
  if (number > lastPlace) return 0;
  return first + kWeek * ((number > 0 ? static_cast<std::int32_t>(number) : lastPlace) - 1);
}

bool namesWeekdayOfTheWeek(const ORLFDateRecurrenceDayOfWeek& day) {
  return day.dayOfTheWeek() >= 1 && day.dayOfTheWeek() <= kDaysPerWeek && day.weekNumber() == 0;
}

/// The days 1 to `last` of a month.
constexpr std::uint32_t daysUpTo(std::int32_t last) {
  return static_cast<std::uint32_t>((std::uint64_t{2} << last) - 2);
}

}  // namespace

std::optional<ORLFCivilWindows> ORLFCivilWindows::forRule(
    const Rule& rule, const Rule::EnumerateDatesStartDate& arguments) {
  const auto source = sourceOf(rule);
  const auto units = lengthOfUnit(rule.frequency());
  const auto step =
      units ? base::checkedProduct(rule.interval(), arguments.backwards ? -*units : *units)
            : std::nullopt;
  const bool isNear = step && *step >= -kFarthestStep && *step <= kFarthestStep;
  if (!source || !isNear ||
      arguments.calendar.calendarIdentifier() != NSCalendarIdentifierGregorian)
    return std::nullopt;
  std::optional<ORLFCivilWindows> windows(
      ORLFCivilWindows(rule, arguments.calendar, *source, *step, arguments.backwards));
  if (!windows->startAt(arguments.startDate)) windows.reset();
  return windows;
}

ORLFCivilWindows::ORLFCivilWindows(const Rule& rule, const NSCalendar& calendar, Source source,
                                   NSInteger step, bool backwards)
    : zone_(*calendar.timeZone()),
      firstWeekday_(static_cast<std::int32_t>(calendar.firstWeekday())),
      source_(source),
      byMonths_(stepsByMonths(rule)),
      backwards_(backwards),
      standsOrWalksAway_(rule.interval() <= 0),
      daysOfTheWeek_(rule.daysOfTheWeek()),
      step_(step) {
  if (const auto& days = rule.daysOfTheMonth())
    for (const NSInteger day : *days)
      if (day >= 1 && day <= kMostDaysOfAMonth) daysOfTheMonth_ |= DaySet{1} << day;
  if (const auto& months = rule.monthsOfTheYear())
    for (const NSInteger month : *months) months_ |= 1U << month;
  if (source == Source::kDaysOfTheWeek)
    mayLog_ = !std::all_of(daysOfTheWeek_->begin(), daysOfTheWeek_->end(), [](const auto& entry) {
      return entry->dayOfTheWeek() != kAnyDay && entry->weekNumber() > 0;
    });
  if (source == Source::kDaysOfTheSameWeek)
    for (const auto& entry : *daysOfTheWeek_)
      daysOfTheSameWeek_ |= 1U << floorModulo(entry->dayOfTheWeek() - firstWeekday_, kDaysPerWeek);
}

/// nil where the lists work together otherwise than each month (or week) by itself.
std::optional<ORLFCivilWindows::Source> ORLFCivilWindows::sourceOf(const Rule& rule) {
  if (rule.isSimpleRecurrence()) return Source::kNearEnd;
  if (holdsEntries(rule.weeksOfTheYear()) || holdsEntries(rule.daysOfTheYear()) ||
      !namesOnlyMonthsOfTheYear(rule) || leavesADayOpen(rule))
    return std::nullopt;
  const bool weekly = rule.frequency() == ORLFDateRecurrenceFrequencyWeekly;
  const bool ofListedMonths = holdsEntries(rule.monthsOfTheYear());
  if (!holdsEntries(rule.daysOfTheWeek())) {
    if (weekly) return std::nullopt;
    return holdsEntries(rule.daysOfTheMonth()) ? Source::kDaysOfTheMonth : Source::kDayOfTheDate;
  }
  if (holdsEntries(rule.daysOfTheMonth()) || (!weekly && !stepsByMonths(rule)) ||
      (weekly && ofListedMonths))
    return std::nullopt;
  const auto isServed = [=](const auto& day) {
    return weekly ? namesWeekdayOfTheWeek(*day) : namesPlaceInMonth(*day, ofListedMonths);
  };
  if (!std::all_of(rule.daysOfTheWeek()->begin(), rule.daysOfTheWeek()->end(), isServed))
    return std::nullopt;
  return weekly ? Source::kDaysOfTheSameWeek : Source::kDaysOfTheWeek;
}

/// A date with a fraction of a second, however small, is left to the general walk, which knows how
/// fields round it.
bool ORLFCivilWindows::startAt(NSDate startDate) {
  const double sinceReference = startDate.timeIntervalSinceReferenceDate();
  constexpr double kFarthest = 1e12;
  if (!(std::abs(sinceReference) < kFarthest) || sinceReference != std::floor(sinceReference))
    return false;
  const double seconds = startDate.timeIntervalSince1970();
  const auto local = static_cast<std::int64_t>(seconds) + zone_.secondsFromGMTForDate(startDate);
  secondOfDay_ = floorModulo(local, kSecondsPerDay);
  const auto start = civilDay(base::civil::floorDivide(local, kSecondsPerDay));
  if (!start) return false;
  reached_ = byMonths_ ? base::civil::monthNumber(start->year, start->month) : start->day;
  dayOfMonth_ = start->dayOfMonth;
  ends_.front().isServed = setEnd(*start, ends_.front());
  return true;
}

// What follows runs for each window: it is inline, from the smallest to the one that calls them
// all.

inline std::optional<ORLFCivilWindows::CivilDay> ORLFCivilWindows::civilDay(
    std::int64_t number) noexcept {
  if (number < kFirstDay || number > kLastDay) return std::nullopt;
  const auto day = static_cast<Day>(number);
  const base::civil::Date date = base::civil::dateFromDay(day);
  return CivilDay{day, date.year, date.month, date.day,
                  base::civil::daysInMonth(date.year, date.month)};
}

/// Each has the start date's day of the month where its month has one, so that a day that clamps
/// once comes back. Past the first or the last year none is served again: steps go one way.
inline std::optional<ORLFCivilWindows::CivilDay> ORLFCivilWindows::moveToNextEnd() noexcept {
  reached_ += step_;
  if (!byMonths_) return civilDay(reached_);
  if (reached_ < kFirstMonth || reached_ > kLastMonth) return std::nullopt;
  const auto [year, month] = base::civil::yearMonthFromNumber(reached_);
  const std::int32_t length = base::civil::daysInMonth(year, month);
  const std::int32_t dayOfMonth = std::min(dayOfMonth_, length);
  return CivilDay{base::civil::dayFromDate(year, month, dayOfMonth), year, month, dayOfMonth,
                  length};
}

inline ORLFCivilWindows::DaySet ORLFCivilWindows::placesInMonth(Day before,
                                                                std::int32_t length) const {
  const std::int32_t weekdayOfFirst = base::civil::weekdayOfDay(before + 1);
  DaySet days = 0;
  for (const auto& entry : *daysOfTheWeek_)
    days |= DaySet{1} << dayOfEntry(*entry, weekdayOfFirst, length);
  return days;
}

/// Only those in the day's own month: a week that runs over its end loses the rest, as required.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::daysOfTheWeekOf(const CivilDay& day) const {
  const std::int32_t later = base::civil::weekdayOfDay(day.day) - firstWeekday_;
  const std::int32_t firstOfWeek = day.dayOfMonth - (later < 0 ? later + kWeek : later);
  return firstOfWeek < 0 ? daysOfTheSameWeek_ >> -firstOfWeek : daysOfTheSameWeek_ << firstOfWeek;
}

/// In a month of the day's year.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::daysNamed(const CivilDay& day, Day before,
                                                            std::int32_t length) const {
  switch (source_) {
    case Source::kDaysOfTheMonth:
      return daysOfTheMonth_ & daysUpTo(length);
    case Source::kDayOfTheDate:
      return (DaySet{1} << day.dayOfMonth) & daysUpTo(length);
    case Source::kDaysOfTheWeek:
      return placesInMonth(before, length) & daysUpTo(length);
    case Source::kDaysOfTheSameWeek:
      return daysOfTheWeekOf(day) & daysUpTo(length);
    case Source::kNearEnd:
      break;
  }
  return 0;
}

/// A window has its near end and not its far one.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::aheadInMonth(const CivilDay& day,
                                                               std::int32_t month) const noexcept {
  constexpr DaySet kAll = ~DaySet{0};
  if (month != day.month) return (month > day.month) != backwards_ ? kAll : DaySet{0};
  return backwards_ ? (DaySet{2} << day.dayOfMonth) - 1 : kAll << day.dayOfMonth;
}

inline void ORLFCivilWindows::nameDays(const CivilDay& day, WindowEnd& end) const {
  if (months_ == 0) {
    const Day before = day.day - day.dayOfMonth;
    end.monthCount = 1;
    end.months[0] = {before, daysNamed(day, before, day.daysInMonth), aheadInMonth(day, day.month)};
    return;
  }
  end.monthCount = 0;
  for (std::uint32_t rest = months_; rest != 0; rest &= rest - 1) {
    const std::int32_t month = std::countr_zero(rest);
    const Day before = base::civil::dayFromDate(day.year, month, 0);
    const std::int32_t length = base::civil::daysInMonth(day.year, month);
    end.months[end.monthCount++] = {before, daysNamed(day, before, length),
                                    aheadInMonth(day, month)};
  }
}

inline std::optional<NSDate> ORLFCivilWindows::dateOfDay(Day day) noexcept {
  constexpr auto kDayLength = static_cast<double>(kSecondsPerDay);
  double date = static_cast<double>(day) * kDayLength + secondsFromMidnight_;
  if (!(date >= firstSteady_ && date <= lastSteady_)) {
    if (!findStretch(day)) return std::nullopt;
    date = static_cast<double>(day) * kDayLength + secondsFromMidnight_;
  }
  return NSDate::dateWithTimeIntervalSinceReferenceDate(date);
}

/// Whether the end's windows are the same wherever on its day and on the next ones it lies: its own
/// month and those beside it are not listed, and what is listed depends on its year alone.
inline bool ORLFCivilWindows::isFarFromNamedDays(const CivilDay& day) const noexcept {
  constexpr std::uint32_t kThreeMonths = 7;
  return source_ == Source::kDaysOfTheMonth && months_ != 0 && day.month != kMonthsPerYear &&
         (months_ >> (day.month - 1) & kThreeMonths) == 0;
}

/// The general walk may log of an entry that names a last day or any day where a clock change
/// leaves its time out, and take another day for it, inside the window or not.
inline bool ORLFCivilWindows::areSteady(const WindowEnd& end) noexcept {
  for (std::size_t i = 0; i < end.monthCount; ++i)
    for (DaySet rest = end.months[i].named; rest != 0; rest &= rest - 1)
      if (!dateOfDay(end.months[i].before + std::countr_zero(rest))) return false;
  return true;
}

inline bool ORLFCivilWindows::setEnd(const CivilDay& day, WindowEnd& end) {
  end.day = day.day;
  if (!isFarFromNamedDays(day) && !dateOfDay(day.day)) return false;
  if (source_ == Source::kNearEnd) return true;
  nameDays(day, end);
  return !mayLog_ || areSteady(end);
}

/// In the order of the walk.
inline bool ORLFCivilWindows::add(Day before, DaySet days, Dates& window) {
  for (DaySet rest = days; rest != 0;) {
    const int place =
        backwards_ ? static_cast<int>(std::bit_width(rest)) - 1 : std::countr_zero(rest);
    rest ^= DaySet{1} << place;
    const std::optional<NSDate> date = dateOfDay(before + place);
    if (!date) return false;
    window.push_back(*date);
  }
  return true;
}

/// Both ends name days of the same months, or all months of the one come before those of the other.
inline bool ORLFCivilWindows::gather(const WindowEnd& nearEnd, const WindowEnd& farEnd,
                                     Dates& window) {
  const bool nameTheSame = nearEnd.months[0].before == farEnd.months[0].before;
  const std::size_t count = nearEnd.monthCount;
  const auto inOrder = [&](std::size_t index) { return backwards_ ? count - 1 - index : index; };
  for (std::size_t i = 0; i < count; ++i) {
    const MonthOfDays& month = nearEnd.months[inOrder(i)];
    const MonthOfDays& other = farEnd.months[inOrder(i)];
    const DaySet days = nameTheSame ? (month.named | other.named) & ~other.ahead : month.named;
    if (!add(month.before, days & month.ahead, window)) return false;
  }
  for (std::size_t i = 0; !nameTheSame && i < count; ++i) {
    const MonthOfDays& month = farEnd.months[inOrder(i)];
    if (!add(month.before, month.named & ~month.ahead, window)) return false;
  }
  return true;
}

[[gnu::flatten]] bool ORLFCivilWindows::collectNext(Dates& window) {
  const WindowEnd& nearEnd = ends_[isNearFirst_ ? 0 : 1];
  WindowEnd& farEnd = ends_[isNearFirst_ ? 1 : 0];
  isNearFirst_ = !isNearFirst_;
  const std::optional<CivilDay> end = moveToNextEnd();
  farEnd.isServed = end && setEnd(*end, farEnd);
  if (!nearEnd.isServed || !farEnd.isServed) return false;
  window.clear();
  if (source_ == Source::kNearEnd) return add(nearEnd.day - 1, DaySet{2}, window);
  return standsOrWalksAway_ || gather(nearEnd, farEnd, window);
}

/// Finds the stretch of dates around that day or, near a clock change, that day alone.
bool ORLFCivilWindows::findStretch(Day day) noexcept {
  using time::ZoneTable;
  const ZoneTable& zone = zone_.table();
  const std::int64_t midnight = base::civil::joinSeconds(day, 0);
  const std::int64_t local = midnight + secondOfDay_;
  const ZoneTable::Stretch stretch = zone.stretchAt(local);
  const auto setStretch = [&](std::int64_t instant, double first, double last) {
    firstSteady_ = first - NSTimeIntervalSince1970;
    lastSteady_ = last - NSTimeIntervalSince1970;
    secondsFromMidnight_ = static_cast<double>(instant - midnight) - NSTimeIntervalSince1970;
  };
  const auto instant = static_cast<double>(local - stretch.offset);
  // The ends of time are as good as any beyond the years that are counted with.
  const double first = static_cast<double>(stretch.begin) + kReachOfClockChange;
  const double last = static_cast<double>(stretch.end) - kReachOfClockChange;
  if (instant >= first && instant <= last) {
    setStretch(local - stretch.offset, first, last);
    return true;
  }
  const std::int64_t shown = zone.firstInstantOfLocal(local);
  const bool isShownOnce =
      shown == zone.lastInstantOfLocal(local) && shown + zone.offsetAt(shown) == local;
  const auto alone = static_cast<double>(shown);
  setStretch(shown, alone, isShownOnce ? alone : alone - 1);
  return isShownOnce;
}

}  // namespace ORLFoundation::internal::recurrence
