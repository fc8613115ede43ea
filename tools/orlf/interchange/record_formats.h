/// How amounts and dates of record files are written whatever the locale is: without grouping, with
/// a point, and as 12/31/2024.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <memory>

namespace ORLFoundation {
class NSDateFormatter;
class NSNumberFormatter;
}  // namespace ORLFoundation

namespace orlftool {

/// The fraction digits that an amount of money is written with at least.
inline constexpr int kCurrencyDigits = 2;

[[nodiscard]] std::shared_ptr<ORLFoundation::NSDateFormatter> newRecordDateFormatter(
    const ORLFoundation::NSCalendar& calendar);
/// No digit is rounded away.
[[nodiscard]] std::shared_ptr<ORLFoundation::NSNumberFormatter> newRecordNumberFormatter(
    int leastFractionDigits);

}  // namespace orlftool
