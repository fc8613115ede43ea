
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

/// Which day it is of that month; 0 where it has none.
std::int32_t dayOfEntry(const ORLFDateRecurrenceDayOfWeek& entry, ORLFCivilMonth month) {
  const std::int32_t length = month.length();
  const NSInteger number = entry.weekNumber();
  if (entry.dayOfTheWeek() == kAnyDay)
    return number > 0 ? static_cast<std::int32_t>(number) : length;
  const auto later = static_cast<std::int32_t>(entry.dayOfTheWeek()) - month.weekdayOfFirst();
  const std::int32_t first = 1 + (later < 0 ? later + kWeek : later);
  const std::int32_t lastPlace = first + 4 * kWeek <= length ? 5 : 4;
  if (number > lastPlace) return 0;
  return first + kWeek * ((number > 0 ? static_cast<std::int32_t>(number) : lastPlace) - 1);
}

bool namesWeekdayOfTheWeek(const ORLFDateRecurrenceDayOfWeek& day) {
  return day.dayOfTheWeek() >= 1 && day.dayOfTheWeek() <= kDaysPerWeek && day.weekNumber() == 0;
}

/// A day of the month as a set; none for a number that no month has.
constexpr std::uint32_t setOfDay(NSInteger day) {
  return day >= 1 && day <= kMostDaysOfAMonth ? 1U << day : 0;
}
static_assert(setOfDay(0) == 0 && setOfDay(1) == 2 && setOfDay(31) == 1U << 31 &&
              setOfDay(32) == 0);

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
    for (const NSInteger day : *days) daysOfTheMonth_ |= setOfDay(day);
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
  reached_ = base::civil::floorDivide(local, kSecondsPerDay);
  if (!moveToDay(end_)) return false;
  if (byMonths_) reached_ = end_.monthNumber;
  dayOfMonth_ = end_.dayOfMonth;
  pickMonths(end_);
  end_.isServed = isServed(end_);
  return true;
}

// What follows runs for each window: it is inline, from the smallest to the one that calls them
// all.

inline std::int64_t ORLFCivilWindows::localTimeOn(Day day) const noexcept {
  return base::civil::joinSeconds(day, secondOfDay_);
}

inline bool ORLFCivilWindows::isSteady(std::int64_t local) noexcept {
  return static_cast<std::uint64_t>(local) - static_cast<std::uint64_t>(firstSteady_) <
             steadyLength_ ||
         findSteadyTimes(local);
}

inline NSDate ORLFCivilWindows::dateOfSteadyTime(std::int64_t local) const noexcept {
  return NSDate::dateWithTimeIntervalSinceReferenceDate(static_cast<double>(local + timeZero_));
}

inline bool ORLFCivilWindows::moveToDay(WindowEnd& end) const noexcept {
  if (reached_ < kFirstDay || reached_ > kLastDay) return false;
  const auto day = static_cast<Day>(reached_);
  end.dayOfMonth = day - end.month.before;
  if (end.dayOfMonth >= 1 && end.dayOfMonth <= end.month.length()) return true;
  const base::civil::Date date = base::civil::dateFromDay(day);
  end.monthNumber = static_cast<std::int32_t>(base::civil::monthNumber(date.year, date.month));
  end.month = civilMonth(end.monthNumber);
  end.dayOfMonth = date.day;
  return true;
}

/// Each has the start date's day of the month where its month has one, so that a day that clamps
/// once comes back. Past the first or the last year none is served again: steps go one way.
inline bool ORLFCivilWindows::moveToNext(WindowEnd& end) {
  reached_ += step_;
  if (!byMonths_) {
    if (!moveToDay(end)) return false;
  } else {
    if (reached_ < kFirstMonth || reached_ > kLastMonth) return false;
    end.monthNumber = static_cast<std::int32_t>(reached_);
    end.month = civilMonth(reached_);
    end.dayOfMonth = std::min(dayOfMonth_, end.month.length());
  }
  return true;
}

/// Never empty: bit 0 stands for an entry that has no day there.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::placesInMonth(ORLFCivilMonth month) const {
  DaySet days = 0;
  for (const auto& entry : *daysOfTheWeek_) days |= DaySet{1} << dayOfEntry(*entry, month);
  return days;
}

/// Only those in the end's own month: a week that runs over its end loses the rest, as required.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::daysOfTheWeekOf(const WindowEnd& end) const {
  const std::int32_t later = base::civil::weekdayOfDay(end.day()) - firstWeekday_;
  const std::int32_t firstOfWeek = end.dayOfMonth - (later < 0 ? later + kWeek : later);
  return static_cast<DaySet>((std::uint64_t{daysOfTheSameWeek_} << (firstOfWeek + kWeek)) >> kWeek);
}

inline ORLFCivilWindows::DaySet ORLFCivilWindows::daysNamedInKind(ORLFCivilMonth month) {
  DaySet& named = namedInKind_[month.kind];
  if (named == 0)
    named = source_ == Source::kDaysOfTheMonth ? daysOfTheMonth_ : placesInMonth(month);
  return named;
}

/// In the end's own month or a listed one.
inline ORLFCivilWindows::DaySet ORLFCivilWindows::daysNamed(const WindowEnd& end,
                                                            ORLFCivilMonth month) {
  const DaySet named =
      source_ == Source::kDayOfTheDate ? DaySet{1} << end.dayOfMonth : daysNamedInKind(month);
  return named & daysUpTo(month.length());
}

inline void ORLFCivilWindows::pickMonths(WindowEnd& end) {
  if (months_ != 0)
    end.monthOfYear = base::civil::yearMonthFromNumber(end.monthNumber).month;
  else if (source_ == Source::kDaysOfTheSameWeek)
    end.named = daysOfTheWeekOf(end) & daysUpTo(end.month.length());
  else if (source_ != Source::kNearEnd)
    end.named = daysNamed(end, end.month);
}

/// The days of a month, or the months of a year, that the walk reaches after one of them.
inline std::uint32_t ORLFCivilWindows::ahead(std::int32_t place) const noexcept {
  return notBehind(place) & ~(1U << place);
}

inline std::uint32_t ORLFCivilWindows::notBehind(std::int32_t place) const noexcept {
  constexpr std::uint32_t kAll = ~std::uint32_t{0};
  return backwards_ ? kAll >> (31 - place) : kAll << place;
}

/// The first in the order of the walk.
inline int ORLFCivilWindows::takeNext(std::uint32_t& places) const noexcept {
  const int place =
      backwards_ ? static_cast<int>(std::bit_width(places)) - 1 : std::countr_zero(places);
  places ^= 1U << place;
  return place;
}

/// Whether the end's windows are the same wherever on its day and on the next ones it lies: its own
/// month and the one after it are not listed, and what is listed depends on its year alone.
inline bool ORLFCivilWindows::isFarFromNamedDays(const WindowEnd& end) const noexcept {
  constexpr std::uint32_t kTwoMonths = 3;
  return source_ == Source::kDaysOfTheMonth && months_ != 0 && end.monthOfYear != kMonthsPerYear &&
         (months_ >> end.monthOfYear & kTwoMonths) == 0;
}

/// The general walk may log of an entry that names a last day or any day where a clock change
/// leaves its time out, and take another day for it, inside the window or not.
inline bool ORLFCivilWindows::isServed(const WindowEnd& end) {
  return (isFarFromNamedDays(end) || isSteady(localTimeOn(end.day()))) &&
         (!mayLog_ || areNamedDaysSteady(end));
}

inline bool ORLFCivilWindows::areNamedDaysSteady(const WindowEnd& end) {
  const auto areSteady = [this](Day before, DaySet days) {
    for (; days != 0; days &= days - 1)
      if (!isSteady(localTimeOn(before + std::countr_zero(days)))) return false;
    return true;
  };
  if (months_ == 0) return areSteady(end.month.before, end.named);
  for (std::uint32_t rest = months_; rest != 0; rest &= rest - 1) {
    const ORLFCivilMonth month = civilMonth(end.monthBeforeYear() + std::countr_zero(rest));
    if (!areSteady(month.before, daysNamed(end, month))) return false;
  }
  return true;
}

/// In the order of the walk.
inline bool ORLFCivilWindows::add(Day before, DaySet days, Dates& window) {
  while (days != 0) {
    const std::int64_t local = localTimeOn(before + takeNext(days));
    if (!isSteady(local)) return false;
    window.push_back(dateOfSteadyTime(local));
  }
  return true;
}

/// A window has its near end and not its far one.
inline bool ORLFCivilWindows::gatherFromOwnMonths(const WindowEnd& nearEnd, const WindowEnd& farEnd,
                                                  Dates& window) {
  const DaySet notBehindNear = notBehind(nearEnd.dayOfMonth);
  const DaySet behindFar = ~notBehind(farEnd.dayOfMonth);
  if (nearEnd.monthNumber == farEnd.monthNumber)
    return add(nearEnd.month.before, (nearEnd.named | farEnd.named) & notBehindNear & behindFar,
               window);
  return add(nearEnd.month.before, nearEnd.named & notBehindNear, window) &&
         add(farEnd.month.before, farEnd.named & behindFar, window);
}

/// Ends of one year name days in the same months.
inline bool ORLFCivilWindows::gatherFromListedMonths(const WindowEnd& nearEnd,
                                                     const WindowEnd& farEnd, Dates& window) {
  const bool isOneYear = nearEnd.monthBeforeYear() == farEnd.monthBeforeYear();
  const auto addMonths = [&](const WindowEnd& end, std::uint32_t months) {
    while (months != 0) {
      const std::int32_t number = end.monthBeforeYear() + takeNext(months);
      const ORLFCivilMonth month = civilMonth(number);
      DaySet days = daysNamed(end, month);
      if (isOneYear && source_ == Source::kDayOfTheDate) days |= daysNamed(farEnd, month);
      if (number == nearEnd.monthNumber) days &= notBehind(nearEnd.dayOfMonth);
      if (number == farEnd.monthNumber) days &= ~notBehind(farEnd.dayOfMonth);
      if (!add(month.before, days, window)) return false;
    }
    return true;
  };
  const std::uint32_t notBehindNear = months_ & notBehind(nearEnd.monthOfYear);
  const std::uint32_t notAheadOfFar = months_ & ~ahead(farEnd.monthOfYear);
  if (isOneYear) return addMonths(nearEnd, notBehindNear & notAheadOfFar);
  return addMonths(nearEnd, notBehindNear) && addMonths(farEnd, notAheadOfFar);
}

inline bool ORLFCivilWindows::gather(const WindowEnd& nearEnd, const WindowEnd& farEnd,
                                     Dates& window) {
  if (source_ == Source::kNearEnd) return add(nearEnd.day() - 1, DaySet{2}, window);
  if (standsOrWalksAway_) return true;
  return months_ == 0 ? gatherFromOwnMonths(nearEnd, farEnd, window)
                      : gatherFromListedMonths(nearEnd, farEnd, window);
}

/// From one end of the window to the other, so that a clock change is met once.
[[gnu::flatten]] bool ORLFCivilWindows::collectNext(Dates& window) {
  const WindowEnd nearEnd = end_;
  window.clear();
  if (!moveToNext(end_)) return false;
  pickMonths(end_);
  const bool isGathered = nearEnd.isServed && gather(nearEnd, end_, window);
  end_.isServed = isServed(end_);
  return isGathered && end_.isServed;
}

bool ORLFCivilWindows::findSteadyTimes(std::int64_t local) noexcept {
  const time::ZoneTable::LocalStretch stretch = zone_.table().localStretchAt(local);
  firstSteady_ = stretch.begin;
  steadyLength_ = static_cast<std::uint64_t>(std::max(stretch.end, stretch.begin)) -
                  static_cast<std::uint64_t>(stretch.begin);
  timeZero_ = -stretch.offset - static_cast<std::int64_t>(NSTimeIntervalSince1970);
  return local < stretch.end;
}

}  // namespace ORLFoundation::internal::recurrence
