/// The words of the command line and of plan files, and the codes that they stand for.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/time/NSCalendarUnit.h>

#include <optional>
#include <string_view>

namespace orlftool {

/// "daily", "weekly", "monthly", "quarterly" and "yearly"; nil for other words.
[[nodiscard]] std::optional<ORLFoundation::NSCalendarUnit> frequencyNamed(std::string_view word);
/// "day", "week", "month", "quarter" and "year"; nil for other words.
[[nodiscard]] std::optional<ORLFoundation::NSCalendarUnit> unitNamed(std::string_view word);
/// "plain", "down", "up" and "bankers"; nil for other words.
[[nodiscard]] std::optional<ORLFoundation::NSRoundingMode> roundingModeNamed(std::string_view word);

}  // namespace orlftool
