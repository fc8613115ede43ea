
#include <ORLFoundation/recurrence/internal/ORLFCivilWindows.h>

#include <ORLFoundation/platform/base/CheckedArithmetic.h>
#include <ORLFoundation/platform/base/CivilDays.h>
#include <ORLFoundation/recurrence/ORLFFrequencyFacts.h>
#include <ORLFoundation/recurrence/internal/ORLFRecurrenceArithmetic.h>
#include <ORLFoundation/recurrence/internal/ORLFRuleLists.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>

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
constexpr NSInteger kFarthestStep = 100'000'000;
/// Clocks change by a day at most; dates farther from a change show a time that no other instant
/// shows.
constexpr double kReachOfClockChange = kSecondsPerDay + 3600;
/// No month has more Mondays.
constexpr NSInteger kMostOfAWeekday = 5;
/// Every month has as many days.
constexpr NSInteger kDaysOfAnyMonth = 28;

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

/// The day of the month, of a month of that length that begins on `firstDay`.
NSInteger dayOfEntry(const ORLFDateRecurrenceDayOfWeek& entry, std::int32_t firstDay,
                     NSInteger length) {
  const NSInteger number = entry.weekNumber();
  if (entry.dayOfTheWeek() == kAnyDay) return number > 0 ? number : length;
  const NSInteger first =
      1 + floorModulo(entry.dayOfTheWeek() - base::civil::weekdayOfDay(firstDay), kDaysPerWeek);
  if (number > 0) return number > kMostOfAWeekday ? 0 : first + kDaysPerWeek * (number - 1);
  return first + (length - first) / kDaysPerWeek * kDaysPerWeek;
}

bool namesWeekdayOfTheWeek(const ORLFDateRecurrenceDayOfWeek& day) {
  return day.dayOfTheWeek() >= 1 && day.dayOfTheWeek() <= kDaysPerWeek && day.weekNumber() == 0;
}

}  // namespace

std::optional<ORLFCivilWindows> ORLFCivilWindows::forRule(
    const Rule& rule, const Rule::EnumerateDatesStartDate& arguments) {
  const auto source = sourceOf(rule);
  const auto units = lengthOfUnit(rule.frequency());
  const auto step = units ? base::checkedProduct(rule.interval(), *units) : std::nullopt;
  if (!source || !step || arguments.calendar.calendarIdentifier() != NSCalendarIdentifierGregorian)
    return std::nullopt;
  std::optional<ORLFCivilWindows> windows(
      ORLFCivilWindows(rule, arguments.calendar, *source, *step, arguments.backwards));
  if (!windows->startAt(arguments.startDate)) windows.reset();
  return windows;
}

ORLFCivilWindows::ORLFCivilWindows(const Rule& rule, const NSCalendar& calendar, Source source,
                                   NSInteger step, bool backwards)
    : rule_(rule),
      zone_(*calendar.timeZone()),
      firstWeekday_(calendar.firstWeekday()),
      source_(source),
      byMonths_(stepsByMonths(rule)),
      step_(step),
      backwards_(backwards) {}

/// nil where the lists work together otherwise than each month (or week) by itself.
std::optional<ORLFCivilWindows::Source> ORLFCivilWindows::sourceOf(const Rule& rule) {
  if (rule.isSimpleRecurrence() || holdsEntries(rule.weeksOfTheYear()) ||
      holdsEntries(rule.daysOfTheYear()) || !namesOnlyMonthsOfTheYear(rule) || leavesADayOpen(rule))
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
  secondsOfDay_ = floorModulo(local, kSecondsPerDay);
  const auto start = civilDay(base::civil::floorDivide(local, kSecondsPerDay));
  if (!start) return false;
  start_ = *start;
  setEnd(start_, current_);
  return true;
}

std::optional<NSDate> ORLFCivilWindows::collectNext(Dates& window) {
  const std::optional<CivilDay> end = endOfWindow(++index_);
  if (index_ > 1) std::swap(current_, next_);
  next_.date.reset();
  if (end) setEnd(*end, next_);
  if (!current_.date || !next_.date) return std::nullopt;
  gatherDays();
  window.clear();
  for (const Day day : inWindow_) {
    const std::optional<NSDate> date = dateOfDay(day);
    if (!date) return std::nullopt;
    window.push_back(*date);
  }
  return next_.date;
}

/// Counted from the start date, as every end is, so that a day that clamps once comes back.
std::optional<ORLFCivilWindows::CivilDay> ORLFCivilWindows::endOfWindow(
    NSInteger index) const noexcept {
  const auto steps = base::checkedProduct(index, backwards_ ? -1 : 1);
  const auto units = steps ? base::checkedProduct(*steps, step_) : std::nullopt;
  if (!units || *units > kFarthestStep || *units < -kFarthestStep) return std::nullopt;
  if (!byMonths_) return civilDay(start_.day + *units);
  const NSInteger months = start_.year * kMonthsPerYear + start_.month - 1 + *units;
  const NSInteger year = months / kMonthsPerYear;
  if (months < 0 || year < kFirstYear || year > kLastYear) return std::nullopt;
  CivilDay end;
  end.year = static_cast<std::int32_t>(year);
  end.month = static_cast<std::int32_t>(months % kMonthsPerYear) + 1;
  end.dayOfMonth = std::min(start_.dayOfMonth, base::civil::daysInMonth(end.year, end.month));
  end.day = base::civil::dayFromDate(end.year, end.month, end.dayOfMonth);
  return end;
}

std::optional<ORLFCivilWindows::CivilDay> ORLFCivilWindows::civilDay(std::int64_t number) noexcept {
  if (number < kFirstDay || number > kLastDay) return std::nullopt;
  const auto day = static_cast<Day>(number);
  const base::civil::Date date = base::civil::dateFromDay(day);
  return CivilDay{day, date.year, date.month, date.day};
}

void ORLFCivilWindows::setEnd(const CivilDay& day, WindowEnd& end) {
  end.date = dateOfDay(day.day);
  end.day = day.day;
  end.named.clear();
  if (!end.date) return;
  if (source_ == Source::kDaysOfTheSameWeek)
    nameDaysInWeek(day, end.named);
  else if (!holdsEntries(rule_.monthsOfTheYear()))
    nameDaysInMonth(day, day.month, end.named);
  else
    for (const NSInteger month : *rule_.monthsOfTheYear())
      nameDaysInMonth(day, static_cast<std::int32_t>(month), end.named);
  if (source_ == Source::kDaysOfTheWeek && !areSteady(end.named)) end.date.reset();
}

/// Near a clock change the general walk may log of an entry and take another day for it, inside the
/// window or not.
bool ORLFCivilWindows::areSteady(const Days& days) noexcept {
  return std::all_of(days.begin(), days.end(),
                     [this](Day day) { return dateOfDay(day).has_value(); });
}

/// In a month of the date's year. Days that the month lacks are left out.
void ORLFCivilWindows::nameDaysInMonth(const CivilDay& date, std::int32_t month,
                                       Days& named) const {
  const NSInteger length = base::civil::daysInMonth(date.year, month);
  const Day before = base::civil::dayFromDate(date.year, month, 0);
  const auto name = [&](NSInteger day) {
    if (day >= 1 && day <= length) named.push_back(before + static_cast<Day>(day));
  };
  switch (source_) {
    case Source::kDayOfTheDate:
      return name(date.dayOfMonth);
    case Source::kDaysOfTheMonth:
      for (const NSInteger day : *rule_.daysOfTheMonth()) name(day);
      return;
    case Source::kDaysOfTheWeek:
      for (const auto& entry : *rule_.daysOfTheWeek()) name(dayOfEntry(*entry, before + 1, length));
      return;
    case Source::kDaysOfTheSameWeek:
      return;
  }
}

/// Only those in the date's own month: a week that runs over its end loses the rest, as required.
void ORLFCivilWindows::nameDaysInWeek(const CivilDay& date, Days& named) const {
  const Day beforeMonth = date.day - date.dayOfMonth;
  const NSInteger length = base::civil::daysInMonth(date.year, date.month);
  const auto firstOfWeek = static_cast<Day>(
      date.day - floorModulo(base::civil::weekdayOfDay(date.day) - firstWeekday_, kDaysPerWeek));
  for (const auto& entry : *rule_.daysOfTheWeek()) {
    const auto day = static_cast<Day>(
        firstOfWeek + floorModulo(entry->dayOfTheWeek() - firstWeekday_, kDaysPerWeek));
    if (day > beforeMonth && day <= beforeMonth + length) named.push_back(day);
  }
}

/// The days of both ends that lie in the window, which has its near end and not its far one, in the
/// order of the walk and each once.
void ORLFCivilWindows::gatherDays() {
  const auto isInside = [this](Day day) {
    return backwards_ ? day <= current_.day && day > next_.day
                      : day >= current_.day && day < next_.day;
  };
  inWindow_.clear();
  std::copy_if(current_.named.begin(), current_.named.end(), std::back_inserter(inWindow_),
               isInside);
  std::copy_if(next_.named.begin(), next_.named.end(), std::back_inserter(inWindow_), isInside);
  if (inWindow_.size() < 2) return;
  if (backwards_)
    std::sort(inWindow_.begin(), inWindow_.end(), std::greater<>());
  else
    std::sort(inWindow_.begin(), inWindow_.end());
  const auto end = std::unique(inWindow_.begin(), inWindow_.end());
  inWindow_.resize(static_cast<std::size_t>(end - inWindow_.begin()));
}

/// The start date's time of day on that day; nil near a clock change.
std::optional<NSDate> ORLFCivilWindows::dateOfDay(Day day) noexcept {
  const auto local = static_cast<double>(base::civil::joinSeconds(day, secondsOfDay_));
  if (!isSteady(local - offset_)) {
    const auto stretch = zone_.offsetStretchForDate(NSDate::dateWithTimeIntervalSince1970(local));
    firstSteady_ = stretch.begin + kReachOfClockChange;
    lastSteady_ = stretch.end - kReachOfClockChange;
    offset_ = static_cast<double>(stretch.secondsFromGMT);
    if (!isSteady(local - offset_)) return std::nullopt;
  }
  return NSDate::dateWithTimeIntervalSince1970(local - offset_);
}

}  // namespace ORLFoundation::internal::recurrence
