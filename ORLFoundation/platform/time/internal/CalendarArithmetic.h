/// Sums and differences of instants in calendar units.
///
/// Days and larger units keep the time that the zone's clock shows; hours and smaller ones are
/// lengths of time. A sum that lands in the gap of a clock change is moved on by the gap's length;
/// one that lands on a doubled time takes the occurrence that it meets first: the earlier one when
/// counting forward, the later one when counting backward.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <ORLFoundation/platform/time/internal/CalendarInstants.h>

namespace ORLFoundation::internal::time {

/// None when the result is out of range, or for a unit that cannot be added (an era).
[[nodiscard]] Instant addUnit(const CalendarRules& rules, NSCalendarUnit unit, NSInteger value,
                              Instant to) noexcept;
/// As `addUnit`, but without a carry into the next larger unit: December plus 1 is January of the
/// same year.
[[nodiscard]] Instant addUnitWrapping(const CalendarRules& rules, NSCalendarUnit unit,
                                      NSInteger value, Instant to) noexcept;
/// Every set field, from the largest unit to the smallest.
[[nodiscard]] Instant addFields(const CalendarRules& rules, const NSDateComponents& fields,
                                Instant to, bool wrap) noexcept;
/// The masked units from the largest: of each the most whole steps that do not pass the second
/// instant, counted from what the larger ones have reached.
[[nodiscard]] NSDateComponents differenceOfInstants(const CalendarRules& rules, NSUInteger mask,
                                                    Instant from, Instant to) noexcept;

/// As `differenceOfInstants`, for days and weeks: only days that there were count, not those that
/// the zone's clock left out whole between both instants (Apia's 30 December 2011).
[[nodiscard]] NSDateComponents differenceInDaysThatWere(const CalendarRules& rules, NSUInteger mask,
                                                        Instant from, Instant to) noexcept;

}  // namespace ORLFoundation::internal::time
