/// Arithmetic on plain `NSDecimal` values under a behaviour, which may be nullptr for the default
/// one. Each turns its values into `NSDecimalNumber`, calculates, and gives the value back; nil is
/// what a behaviour gives for an error that it answers with nil.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumberBehaviors.h>
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <cstdint>
#include <optional>

namespace ORLFoundation {

/// `adding(_:withBehavior:)`
[[nodiscard]] std::optional<NSDecimal> adding(const NSDecimal& value, const NSDecimal& other,
                                              const NSDecimalNumberBehaviors* withBehavior);
/// `subtracting(_:withBehavior:)`
[[nodiscard]] std::optional<NSDecimal> subtracting(const NSDecimal& value, const NSDecimal& other,
                                                   const NSDecimalNumberBehaviors* withBehavior);
/// `multiplying(by:withBehavior:)`
[[nodiscard]] std::optional<NSDecimal> multiplying(const NSDecimal& value, const NSDecimal& by,
                                                   const NSDecimalNumberBehaviors* withBehavior);
/// `dividing(by:withBehavior:)`
[[nodiscard]] std::optional<NSDecimal> dividing(const NSDecimal& value, const NSDecimal& by,
                                                const NSDecimalNumberBehaviors* withBehavior);
/// `raising(toPower:withBehavior:)`  A negative power divides one by the positive power.
[[nodiscard]] std::optional<NSDecimal> raising(const NSDecimal& value, NSInteger toPower,
                                               const NSDecimalNumberBehaviors* withBehavior);
/// `multiplying(byPowerOf10:withBehavior:)`
[[nodiscard]] std::optional<NSDecimal> multiplyingByPowerOf10(
    const NSDecimal& value, std::int16_t byPowerOf10, const NSDecimalNumberBehaviors* withBehavior);
/// `rounding(accordingToBehavior:)`
[[nodiscard]] std::optional<NSDecimal> rounding(
    const NSDecimal& value, const NSDecimalNumberBehaviors* accordingToBehavior);

}  // namespace ORLFoundation
