/// How many of one calendar unit make another, and the words for units.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <optional>
#include <string>

namespace ORLFoundation {

/// `orlfMaximumValueOfUnit:inUnit:forDate:`  How many of `unit`, with a fraction, fit into the very
/// `inUnit` that holds the date: by length in seconds, days counted as full days. 0 for a nil date
/// and for units without a length. The hours of a day, and so on, are those of the calendar that
/// asked first in the process.
[[nodiscard]] double orlfMaximumValueOfUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                                            NSCalendarUnit inUnit,
                                            std::optional<NSDate> forDate) noexcept;

/// `orlfRatioOfCalendarUnit:inUnit:forDate:`  The whole count of `unit` in the date's year over
/// that of `inUnit`, each rounded up first (but for eras): 30.5 days to a month of a leap year. 0
/// when either count is 0.
[[nodiscard]] double orlfRatioOfCalendarUnit(const NSCalendar& calendar, NSCalendarUnit unit,
                                             NSCalendarUnit inUnit,
                                             std::optional<NSDate> forDate) noexcept;

/// `orlfNameForCalendarUnit:plural:`  The main bundle's word for years, quarters, months and weeks;
/// "unknown" for any other unit, days among them.
[[nodiscard]] std::string orlfNameForCalendarUnit(NSCalendarUnit unit, bool plural);

}  // namespace ORLFoundation
