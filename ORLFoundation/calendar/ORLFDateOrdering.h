/// The four ordering words on dates. All recurrence and planning code is written in them: a strict
/// and a non-strict choice read differently on purpose. The receiver is the left side.
///
///     if (orlfIsOnOrAfter(date, start) && orlfIsBefore(date, end)) keep(date);
#pragma once

#include <ORLFoundation/platform/value/NSDate.h>

namespace ORLFoundation {

/// `orlfIsOnOrBefore:`  Equal instants count.
[[nodiscard]] constexpr bool orlfIsOnOrBefore(NSDate date, NSDate other) noexcept {
  return date.compare(other) != NSOrderedDescending;
}
/// `orlfIsBefore:`
[[nodiscard]] constexpr bool orlfIsBefore(NSDate date, NSDate other) noexcept {
  return date.compare(other) == NSOrderedAscending;
}
/// `orlfIsOnOrAfter:`  Equal instants count.
[[nodiscard]] constexpr bool orlfIsOnOrAfter(NSDate date, NSDate other) noexcept {
  return date.compare(other) != NSOrderedAscending;
}
/// `orlfIsAfter:`
[[nodiscard]] constexpr bool orlfIsAfter(NSDate date, NSDate other) noexcept {
  return date.compare(other) == NSOrderedDescending;
}

}  // namespace ORLFoundation
