#include <ORLFoundation/platform/time/internal/OtherDays.h>

#include <ORLFoundation/platform/time/internal/CalendarFields.h>
#include <unicode/gregocal.h>
#include <unicode/simpletz.h>

#include <cmath>
#include <limits>
#include <map>
#include <mutex>
#include <string>
#include <utility>

namespace ORLFoundation::internal::time {
namespace {

constexpr double kMillisecondsPerDay = 86'400'000;
// Some ten thousand years.
constexpr std::int64_t kMaxOtherDay = 3'700'000;
constexpr NSInteger kMaxOtherField = 1'000'000;

std::unique_ptr<icu::Calendar> makeCalendar(const char* identifier) {
  UErrorCode status = U_ZERO_ERROR;
  const std::string locale = std::string("en_US@calendar=") + identifier;
  std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
      new icu::SimpleTimeZone(0, u"GMT"), icu::Locale(locale.c_str()), status));
  if (U_FAILURE(status)) return nullptr;
  // Those that count Gregorian years in eras of their own count so at all times, as ours does.
  if (auto* gregorian = dynamic_cast<icu::GregorianCalendar*>(calendar.get()))
    gregorian->setGregorianChange(-std::numeric_limits<double>::max(), status);
  return U_SUCCESS(status) ? std::move(calendar) : nullptr;
}

struct Prototypes {
  std::mutex mutex;
  std::map<const OtherCalendar::Kind*, std::unique_ptr<icu::Calendar>> calendars;
};

// One calendar of each kind is made once, for the life of the process, and cloned from then on.
std::unique_ptr<icu::Calendar> calendarOfKind(const OtherCalendar::Kind& kind) {
  static auto* const prototypes = new Prototypes;  // outlives the objects that use it
  const std::lock_guard lock(prototypes->mutex);
  std::unique_ptr<icu::Calendar>& prototype = prototypes->calendars[&kind];
  if (!prototype) prototype = makeCalendar(kind.identifier);
  return std::unique_ptr<icu::Calendar>(prototype ? prototype->clone() : nullptr);
}

bool isCounted(NSInteger value) noexcept {
  return !isSet(value) || (value >= -kMaxOtherField && value <= kMaxOtherField);
}

std::int32_t countedOr(NSInteger value, std::int32_t smallest) noexcept {
  return isSet(value) ? static_cast<std::int32_t>(value) : smallest;
}

bool areCounted(const NSDateComponents& fields) noexcept {
  constexpr NSCalendarUnit kUnits[] = {NSCalendarUnitEra,        NSCalendarUnitYear,
                                       NSCalendarUnitMonth,      NSCalendarUnitDay,
                                       NSCalendarUnitWeekday,    NSCalendarUnitWeekdayOrdinal,
                                       NSCalendarUnitQuarter,    NSCalendarUnitWeekOfMonth,
                                       NSCalendarUnitWeekOfYear, NSCalendarUnitYearForWeekOfYear};
  for (const NSCalendarUnit unit : kUnits) {
    if (!isCounted(fields.valueForComponent(unit))) return false;
  }
  return true;
}

std::int32_t otherDaysIntoWeek(const CalendarRules& rules, std::int32_t weekday) noexcept {
  const auto weeks = static_cast<std::int32_t>(civil::floorDivide(weekday - 1, 7));
  return weeks * 7 +
         static_cast<std::int32_t>(civil::floorModulo(weekday - weeks * 7 - rules.firstWeekday, 7));
}

std::int32_t dayOfOtherOrdinal(OtherDays& days, std::int32_t first, std::int32_t weekday,
                               std::int32_t ordinal) {
  const auto into =
      static_cast<std::int32_t>(civil::floorModulo(weekday - civil::weekdayOfDay(first), 7));
  if (ordinal >= 0) return first + into + (ordinal - 1) * 7;
  const std::int32_t length = days.monthFrom(first);
  return first + into + (length - 1 - into) / 7 * 7 + (ordinal + 1) * 7;
}

std::int32_t dayNamedByOtherMonth(const OtherCalendar::Kind& kind, OtherDays& days,
                                  const CalendarRules& rules, const NSDateComponents& fields) {
  const std::int32_t quarterMonth =
      kind.hasQuarters ? countedOr(fields.quarter(), 1) * 3 - 2 : std::int32_t{1};
  const std::int32_t first = days.firstOfMonth(fields, countedOr(fields.month(), quarterMonth));
  if (isSet(fields.day())) return first + countedOr(fields.day(), 1) - 1;
  const bool byWeek = isSet(fields.weekOfMonth()) && !isSet(fields.weekdayOrdinal());
  if (byWeek) {
    return firstWeekFrom(rules, first) + (countedOr(fields.weekOfMonth(), 1) - 1) * 7 +
           otherDaysIntoWeek(rules, countedOr(fields.weekday(), rules.firstWeekday));
  }
  return dayOfOtherOrdinal(days, first, countedOr(fields.weekday(), civil::weekdayOfDay(first)),
                           countedOr(fields.weekdayOrdinal(), 1));
}

std::int32_t dayNamedByOtherWeek(OtherDays& days, const CalendarRules& rules,
                                 const NSDateComponents& fields) {
  std::int32_t year = countedOr(fields.yearForWeekOfYear(), 1);
  if (!isSet(fields.yearForWeekOfYear())) {
    days.goTo(days.firstOfMonth(fields, 1));
    year = days.get(UCAL_EXTENDED_YEAR);
  }
  return days.firstOfWeekYear(year) + (countedOr(fields.weekOfYear(), 1) - 1) * 7 +
         otherDaysIntoWeek(rules, countedOr(fields.weekday(), rules.firstWeekday));
}

}  // namespace

OtherDays::OtherDays(const OtherCalendar::Kind& kind, const CalendarRules& rules)
    : rules_(rules), calendar_(calendarOfKind(kind)) {
  if (!calendar_) return;
  calendar_->setFirstDayOfWeek(static_cast<UCalendarDaysOfWeek>(rules.firstWeekday));
  calendar_->setMinimalDaysInFirstWeek(static_cast<std::uint8_t>(rules.minimumDays));
  calendar_->setLenient(true);
}

OtherDays::~OtherDays() = default;

bool OtherDays::isInRange(std::int64_t day) noexcept {
  return day >= -kMaxOtherDay && day <= kMaxOtherDay;
}

void OtherDays::goTo(std::int32_t day) {
  if (calendar_) calendar_->setTime(static_cast<double>(day) * kMillisecondsPerDay, status_);
}

std::int32_t OtherDays::day() {
  if (!isGood()) return 0;
  const double day = std::floor(calendar_->getTime(status_) / kMillisecondsPerDay);
  constexpr double kFarthest = 2e9;
  return std::abs(day) < kFarthest ? static_cast<std::int32_t>(day)
                                   : std::numeric_limits<std::int32_t>::max();
}

std::int32_t OtherDays::get(UCalendarDateFields field) {
  return isGood() ? calendar_->get(field, status_) : 0;
}

std::int32_t OtherDays::actualMaximum(UCalendarDateFields field) {
  return isGood() ? calendar_->getActualMaximum(field, status_) : 0;
}

std::int32_t OtherDays::monthFrom(std::int32_t first) {
  goTo(first);
  const std::int32_t told = actualMaximum(UCAL_DATE);
  // What is told can be a day off in the chinese calendar, where the day's numbers decide.
  for (const std::int32_t length : {told, told + 1, told - 1}) {
    goTo(first + length);
    if (get(UCAL_DATE) == 1) return length;
  }
  return told;
}

void OtherDays::add(UCalendarDateFields field, std::int32_t amount) {
  if (isGood()) calendar_->add(field, amount, status_);
}

void OtherDays::roll(UCalendarDateFields field, std::int32_t amount) {
  if (isGood()) calendar_->roll(field, amount, status_);
}

std::int32_t OtherDays::limit(UCalendarDateFields field, bool greatest, bool ofMaximum) const {
  if (!isGood()) return 0;
  if (!ofMaximum) return calendar_->getMinimum(field);
  return greatest ? calendar_->getMaximum(field) : calendar_->getLeastMaximum(field);
}

std::int32_t OtherDays::firstOfMonth(std::int32_t extendedYear, std::int32_t month) {
  if (!isGood()) return 0;
  calendar_->clear();
  calendar_->set(UCAL_EXTENDED_YEAR, extendedYear);
  calendar_->set(UCAL_MONTH, month - 1);
  calendar_->set(UCAL_DATE, 1);
  return day();
}

std::int32_t OtherDays::firstOfMonth(const NSDateComponents& fields, std::int32_t month) {
  if (!isGood()) return 0;
  calendar_->clear();
  if (isSet(fields.era())) calendar_->set(UCAL_ERA, countedOr(fields.era(), 0));
  calendar_->set(UCAL_YEAR, countedOr(fields.year(), 1));
  calendar_->set(UCAL_MONTH, month - 1);
  calendar_->set(UCAL_DATE, 1);
  return day();
}

std::int32_t OtherDays::firstOfWeekYear(std::int32_t extendedYear) {
  return firstWeekFrom(rules_, firstOfMonth(extendedYear, 1));
}

std::optional<std::int64_t> dayOfFields(const OtherCalendar::Kind& kind, const CalendarRules& rules,
                                        const NSDateComponents& fields) {
  if (!areCounted(fields)) return std::nullopt;
  OtherDays days(kind, rules);
  const std::int32_t day = isNamedByWeekOfYear(fields)
                               ? dayNamedByOtherWeek(days, rules, fields)
                               : dayNamedByOtherMonth(kind, days, rules, fields);
  if (!days.isGood() || !OtherDays::isInRange(day)) return std::nullopt;
  return day;
}

void setOtherFields(const OtherCalendar::Kind& kind, OtherDays& days, NSUInteger mask,
                    NSDateComponents& fields) {
  if (mask & NSCalendarUnitEra) fields.setEra(days.get(UCAL_ERA));
  if (mask & NSCalendarUnitYear) fields.setYear(days.get(UCAL_YEAR));
  if (mask & NSCalendarUnitMonth) fields.setMonth(days.get(UCAL_MONTH) + 1);
  if (mask & NSCalendarUnitDay) fields.setDay(days.get(UCAL_DATE));
  if (mask & NSCalendarUnitWeekdayOrdinal)
    fields.setWeekdayOrdinal(days.get(UCAL_DAY_OF_WEEK_IN_MONTH));
  if ((mask & NSCalendarUnitQuarter) && kind.hasQuarters)
    fields.setQuarter(days.get(UCAL_MONTH) / 3 + 1);
  if (mask & NSCalendarUnitWeekOfMonth) fields.setWeekOfMonth(days.get(UCAL_WEEK_OF_MONTH));
  if (mask & (NSCalendarUnitWeekOfYear | NSCalendarUnitWeek))
    fields.setWeekOfYear(days.get(UCAL_WEEK_OF_YEAR));
  if (mask & NSCalendarUnitYearForWeekOfYear) fields.setYearForWeekOfYear(days.get(UCAL_YEAR_WOY));
}

}  // namespace ORLFoundation::internal::time
