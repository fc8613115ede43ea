/// Days of one of ICU's calendars: day numbers to its fields and back. For this room's sources
/// alone, as it names ICU.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>
#include <ORLFoundation/platform/time/internal/OtherCalendar.h>
#include <unicode/calendar.h>

#include <memory>
#include <optional>

namespace ORLFoundation::internal::time {

struct OtherCalendar::Kind {
  const char* identifier;
  bool hasQuarters;     // twelve months in every year
  double daysOfYear;    // on average
  double monthsOfYear;  // on average
};

/// A calendar of one operation's own, standing at a day.
class OtherDays {
 public:
  OtherDays(const OtherCalendar::Kind& kind, const CalendarRules& rules);
  ~OtherDays();
  OtherDays(const OtherDays&) = delete;
  OtherDays& operator=(const OtherDays&) = delete;

  /// Whether ICU could make the calendar, and all was well so far.
  [[nodiscard]] bool isGood() const noexcept { return calendar_ && U_SUCCESS(status_); }
  [[nodiscard]] static bool isInRange(std::int64_t day) noexcept;

  void goTo(std::int32_t day);
  /// The number of the day at which the calendar stands.
  [[nodiscard]] std::int32_t day();
  [[nodiscard]] std::int32_t get(UCalendarDateFields field);
  [[nodiscard]] std::int32_t actualMaximum(UCalendarDateFields field);
  /// How many days the month has that begins on the day.
  [[nodiscard]] std::int32_t monthFrom(std::int32_t first);
  void add(UCalendarDateFields field, std::int32_t amount);
  void roll(UCalendarDateFields field, std::int32_t amount);
  [[nodiscard]] std::int32_t limit(UCalendarDateFields field, bool greatest, bool ofMaximum) const;

  /// The first day of a month (1 is the first) of a year counted through the eras.
  [[nodiscard]] std::int32_t firstOfMonth(std::int32_t extendedYear, std::int32_t month);
  /// The same of a year of an era, where both are as the fields tell them.
  [[nodiscard]] std::int32_t firstOfMonth(const NSDateComponents& fields, std::int32_t month);
  /// The first day of week 1 of a year counted in weeks.
  [[nodiscard]] std::int32_t firstOfWeekYear(std::int32_t extendedYear);

 private:
  const CalendarRules& rules_;
  std::unique_ptr<icu::Calendar> calendar_;
  UErrorCode status_ = U_ZERO_ERROR;
};

/// The day that the fields name; nil for values beyond what is counted with.
[[nodiscard]] std::optional<std::int64_t> dayOfFields(const OtherCalendar::Kind& kind,
                                                      const CalendarRules& rules,
                                                      const NSDateComponents& fields);
/// The fields of the day at which the calendar stands, of those that the mask names.
void setOtherFields(const OtherCalendar::Kind& kind, OtherDays& days, NSUInteger mask,
                    NSDateComponents& fields);

}  // namespace ORLFoundation::internal::time
