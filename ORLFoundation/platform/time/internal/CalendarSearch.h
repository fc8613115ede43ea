/// The nearest instant, before or after a given one, that shows the wanted fields.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>

namespace ORLFoundation::internal::time {

/// The latest (earliest) matching instant before (after) the given one, at the start of the
/// smallest unit that the fields name: a month alone at its first day, a week alone at its first
/// day, else at the start of the day or of the named time. Looks as far as the calendar takes to
/// repeat, 400 years; none when nothing matches by then, and for fields without a value set. A time
/// in the gap of a clock change matches nothing when `strict`, else the clock change stands for it.
[[nodiscard]] Instant nearestMatch(const CalendarRules& rules, const NSDateComponents& fields,
                                   Instant from, bool backward, bool strict) noexcept;
/// The instant itself when it shows the value, else the next instant that does, at the start of the
/// unit. Where the value is a day that the month lacks, `strict` goes on to a month that has it;
/// otherwise the day after the month's end stands for it.
[[nodiscard]] Instant instantBySettingUnit(const CalendarRules& rules, NSCalendarUnit unit,
                                           NSInteger value, Instant of, bool strict) noexcept;

/// The nearest instant of one day before (after) the given one at the time that the fields tell, or
/// at the day's start.
[[nodiscard]] Instant nearestTimeOfDay(const CalendarRules& rules, const NSDateComponents& fields,
                                       std::int32_t day, Instant from, bool backward,
                                       bool strict) noexcept;

}  // namespace ORLFoundation::internal::time
