/// The order of calendar units by size.
///
///     ORLFCompareCalendarUnits(NSCalendarUnitMonth, NSCalendarUnitQuarter);  // NSOrderedAscending
#pragma once

#include <ORLFoundation/platform/time/NSCalendarUnit.h>

namespace ORLFoundation {

/// `ORLFCompareCalendarUnits`  Ascending when the first unit is the finer one. From coarse to fine:
/// era, year, quarter, month, week (256, 4096 and 8192 alike), day, hour, minute, second. The
/// second argument is taken as a mask and may name several units: a coarser one among them decides
/// first. A first unit outside the ladder is the same as anything; a second one outside it is finer
/// than everything but a second, which is finer than anything else.
[[nodiscard]] NSComparisonResult ORLFCompareCalendarUnits(NSUInteger unit,
                                                          NSUInteger otherUnit) noexcept;

}  // namespace ORLFoundation
