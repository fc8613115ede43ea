/// The calendar units and the option bits of calendar operations. The numbers are stored and
/// compared by callers and so are fixed; units combine into masks.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

enum NSCalendarUnit : NSUInteger {
  NSCalendarUnitEra = 2,
  NSCalendarUnitYear = 4,
  NSCalendarUnitMonth = 8,
  NSCalendarUnitDay = 16,
  NSCalendarUnitHour = 32,
  NSCalendarUnitMinute = 64,
  NSCalendarUnitSecond = 128,
  /// The retired week unit: another name of `NSCalendarUnitWeekOfYear`.
  NSCalendarUnitWeek = 256,
  NSCalendarUnitWeekday = 512,
  NSCalendarUnitWeekdayOrdinal = 1024,
  NSCalendarUnitQuarter = 2048,
  NSCalendarUnitWeekOfMonth = 4096,
  NSCalendarUnitWeekOfYear = 8192,
  NSCalendarUnitYearForWeekOfYear = 16384,
  NSCalendarUnitNanosecond = 32768,
};

/// A mask of units.
[[nodiscard]] constexpr NSCalendarUnit operator|(NSCalendarUnit left,
                                                 NSCalendarUnit right) noexcept {
  return static_cast<NSCalendarUnit>(static_cast<NSUInteger>(left) |
                                     static_cast<NSUInteger>(right));
}

enum NSCalendarOptions : NSUInteger {
  NSCalendarWrapComponents = 1,
  NSCalendarMatchStrictly = 2,
  NSCalendarSearchBackwards = 4,
  NSCalendarMatchPreviousTimePreservingSmallerUnits = 256,
  NSCalendarMatchNextTimePreservingSmallerUnits = 512,
  NSCalendarMatchNextTime = 1024,
};

}  // namespace ORLFoundation
