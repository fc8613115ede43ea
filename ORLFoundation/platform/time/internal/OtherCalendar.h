/// The calendars beyond the Gregorian one, over ICU's. ICU is asked about days alone: it counts on
/// a clock of GMT that shows the zone's own days, so that offsets come from the zone's table as
/// everywhere. Each operation works on a calendar of its own, which makes these slow beside the
/// Gregorian ones, and safe on any thread.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/internal/CalendarRanges.h>
#include <ORLFoundation/platform/time/internal/CalendarRules.h>
#include <ORLFoundation/platform/value/NSRange.h>

#include <memory>
#include <string_view>

namespace ORLFoundation::internal::time {

class OtherDays;

/// The operations answer as their Gregorian namesakes do. Dates more than some ten thousand years
/// from 1970 have no fields, and give none.
class OtherCalendar {
 public:
  /// Null for an identifier that is none of these calendars'.
  [[nodiscard]] static std::shared_ptr<const OtherCalendar> withIdentifier(
      std::string_view identifier);

  [[nodiscard]] NSDateComponents fieldsOfInstant(const CalendarRules& rules, NSUInteger mask,
                                                 Instant instant) const;
  [[nodiscard]] Instant instantFromFields(const CalendarRules& rules,
                                          const NSDateComponents& fields) const;
  [[nodiscard]] bool areFieldsValid(const CalendarRules& rules,
                                    const NSDateComponents& fields) const;
  [[nodiscard]] bool matchesFields(const CalendarRules& rules, const NSDateComponents& fields,
                                   Instant instant) const;
  [[nodiscard]] Instant addUnit(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                                Instant to, bool wrap) const;
  [[nodiscard]] Instant addFields(const CalendarRules& rules, const NSDateComponents& fields,
                                  Instant to, bool wrap) const;
  [[nodiscard]] NSDateComponents differenceOfInstants(const CalendarRules& rules, NSUInteger mask,
                                                      Instant from, Instant to) const;
  [[nodiscard]] InstantRange rangeAroundInstant(const CalendarRules& rules, NSCalendarUnit unit,
                                                Instant instant) const;
  [[nodiscard]] NSRange rangeWithin(const CalendarRules& rules, NSCalendarUnit unit,
                                    NSCalendarUnit larger, Instant instant) const;
  [[nodiscard]] NSRange largestRange(const CalendarRules& rules, NSCalendarUnit unit) const;
  [[nodiscard]] NSRange smallestRange(const CalendarRules& rules, NSCalendarUnit unit) const;
  [[nodiscard]] Instant nearestMatch(const CalendarRules& rules, const NSDateComponents& fields,
                                     Instant from, bool backward, bool strict) const;
  [[nodiscard]] Instant instantBySettingUnit(const CalendarRules& rules, NSCalendarUnit unit,
                                             NSInteger value, Instant of, bool strict) const;

  struct Kind;
  explicit OtherCalendar(const Kind& kind) noexcept : kind_(&kind) {}

 private:
  [[nodiscard]] NSInteger countSteps(const CalendarRules& rules, NSCalendarUnit unit, Instant from,
                                     Instant to) const;
  [[nodiscard]] DayRange daysAround(OtherDays& days, NSCalendarUnit unit, std::int32_t day) const;
  [[nodiscard]] NSRange limits(const CalendarRules& rules, NSCalendarUnit unit, bool largest) const;
  [[nodiscard]] bool isPossible(const CalendarRules& rules, const NSDateComponents& fields) const;

  const Kind* kind_;
};

}  // namespace ORLFoundation::internal::time
