/// The search for the number of contribution periods that bring a balance to a target.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <functional>
#include <optional>

namespace ORLFoundation::internal::amortization {

/// The balance after a number of periods; nil when it cannot be told.
using ORLFBalanceAfterPeriods = std::function<std::optional<NSDecimalNumber>(NSUInteger)>;

/// Doubles from 100 periods until the target is passed, then halves. `NSIntegerMax` when the
/// balance does not move toward the target and when a balance on the way cannot be told.
[[nodiscard]] NSUInteger periodsToReachBalance(const NSDecimalNumber& target,
                                               const NSDecimalNumber& principal,
                                               const ORLFBalanceAfterPeriods& balanceAfter);

}  // namespace ORLFoundation::internal::amortization
