/// Instants to calendar fields and back.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>

namespace ORLFoundation::internal::time {

/// Whether a field has a value.
[[nodiscard]] constexpr bool isSet(NSInteger field) noexcept {
  return field != NSDateComponentUndefined;
}

/// The fields that the mask names; the others stay unset.
[[nodiscard]] NSDateComponents fieldsOfInstant(const CalendarRules& rules, NSUInteger mask,
                                               Instant instant) noexcept;
/// One field; `NSDateComponentUndefined` for what is not a single unit.
[[nodiscard]] NSInteger fieldOfInstant(const CalendarRules& rules, NSCalendarUnit unit,
                                       Instant instant) noexcept;
/// None only where a field or the result is beyond the range that is counted with. Fields told as
/// most are, by year, month and day, take `instantFromPlainFields`, which answers alike.
[[nodiscard]] Instant instantFromFields(const CalendarRules& rules,
                                        const NSDateComponents& fields) noexcept;
/// Years, months and days in their usual sizes, with or without a time of day; none for all others.
[[nodiscard]] Instant instantFromPlainFields(const CalendarRules& rules,
                                             const NSDateComponents& fields) noexcept;
[[nodiscard]] Instant instantFromAnyFields(const CalendarRules& rules,
                                           const NSDateComponents& fields) noexcept;
/// The time of day that the fields tell, on a day of the zone's clock.
[[nodiscard]] Instant instantFromDay(const CalendarRules& rules, NSInteger day,
                                     const NSDateComponents& fields) noexcept;
/// Whether the fields tell a day by its week of the year rather than by its month.
[[nodiscard]] bool isNamedByWeekOfYear(const NSDateComponents& fields) noexcept;
/// The instant that the fields resolve to; none unless it shows every set field.
[[nodiscard]] Instant instantIfValid(const CalendarRules& rules,
                                     const NSDateComponents& fields) noexcept;
/// Whether the instant shows every set field.
[[nodiscard]] bool matchesFields(const CalendarRules& rules, const NSDateComponents& fields,
                                 Instant instant) noexcept;

/// A week by number and the year that it is counted in.
struct WeekOfYear {
  std::int32_t year;
  std::int32_t week;
};
[[nodiscard]] WeekOfYear weekOfYear(const CalendarRules& rules, std::int32_t day,
                                    const civil::Date& date) noexcept;
[[nodiscard]] std::int32_t weekOfMonth(const CalendarRules& rules, std::int32_t day,
                                       const civil::Date& date) noexcept;

}  // namespace ORLFoundation::internal::time
