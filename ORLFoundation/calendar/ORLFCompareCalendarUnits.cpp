#include <ORLFoundation/calendar/ORLFCompareCalendarUnits.h>

#include <bit>

namespace ORLFoundation {
namespace {

constexpr NSUInteger kWeeks =
    NSCalendarUnitWeek | NSCalendarUnitWeekOfMonth | NSCalendarUnitWeekOfYear;

constexpr NSUInteger kOverYear = NSCalendarUnitEra;
constexpr NSUInteger kOverQuarter = kOverYear | NSCalendarUnitYear;
constexpr NSUInteger kOverMonth = kOverQuarter | NSCalendarUnitQuarter;
constexpr NSUInteger kOverWeek = kOverMonth | NSCalendarUnitMonth;
constexpr NSUInteger kOverDay = kOverWeek | kWeeks;
constexpr NSUInteger kOverHour = kOverDay | NSCalendarUnitDay;
constexpr NSUInteger kOverMinute = kOverHour | NSCalendarUnitHour;
constexpr NSUInteger kOverSecond = ~static_cast<NSUInteger>(NSCalendarUnitSecond);

/// A rung of the ladder: the units that it holds, those above it, and how it stands to the rest.
struct Rung {
  NSUInteger units;
  NSUInteger coarser;
  NSComparisonResult otherwise;
};

constexpr Rung kLadder[] = {
    {NSCalendarUnitEra, 0, NSOrderedDescending},
    {NSCalendarUnitYear, kOverYear, NSOrderedDescending},
    {NSCalendarUnitQuarter, kOverQuarter, NSOrderedDescending},
    {NSCalendarUnitMonth, kOverMonth, NSOrderedDescending},
    {kWeeks, kOverWeek, NSOrderedDescending},
    {NSCalendarUnitDay, kOverDay, NSOrderedDescending},
    {NSCalendarUnitHour, kOverHour, NSOrderedDescending},
    {NSCalendarUnitMinute, kOverMinute, NSOrderedDescending},
    {NSCalendarUnitSecond, kOverSecond, NSOrderedAscending},
};

}  // namespace

NSComparisonResult ORLFCompareCalendarUnits(NSUInteger unit, NSUInteger otherUnit) noexcept {
  if (!std::has_single_bit(unit)) return NSOrderedSame;
  for (const Rung& rung : kLadder) {
    if ((rung.units & unit) == 0) continue;
    if ((otherUnit & rung.coarser) != 0) return NSOrderedAscending;
    return (otherUnit & rung.units) != 0 ? NSOrderedSame : rung.otherwise;
  }
  return NSOrderedSame;
}

}  // namespace ORLFoundation
