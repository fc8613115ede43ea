
#include <ORLFoundation/decimal/ORLFDecimal.h>

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

namespace ORLFoundation {
namespace {

std::optional<NSDecimal> valueOf(const std::optional<NSDecimalNumber>& number) {
  if (!number) return std::nullopt;
  return number->decimalValue();
}

}  // namespace

std::optional<NSDecimal> adding(const NSDecimal& value, const NSDecimal& other,
                                const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberByAdding(NSDecimalNumber(other), withBehavior));
}

std::optional<NSDecimal> subtracting(const NSDecimal& value, const NSDecimal& other,
                                     const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberBySubtracting(NSDecimalNumber(other), withBehavior));
}

std::optional<NSDecimal> multiplying(const NSDecimal& value, const NSDecimal& by,
                                     const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberByMultiplyingBy(NSDecimalNumber(by), withBehavior));
}

std::optional<NSDecimal> dividing(const NSDecimal& value, const NSDecimal& by,
                                  const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberByDividingBy(NSDecimalNumber(by), withBehavior));
}

std::optional<NSDecimal> raising(const NSDecimal& value, NSInteger toPower,
                                 const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(NSDecimalNumber(value).decimalNumberByRaisingToPower(toPower, withBehavior));
}

std::optional<NSDecimal> multiplyingByPowerOf10(const NSDecimal& value, std::int16_t byPowerOf10,
                                                const NSDecimalNumberBehaviors* withBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberByMultiplyingByPowerOf10(byPowerOf10, withBehavior));
}

std::optional<NSDecimal> rounding(const NSDecimal& value,
                                  const NSDecimalNumberBehaviors* accordingToBehavior) {
  return valueOf(
      NSDecimalNumber(value).decimalNumberByRoundingAccordingToBehavior(accordingToBehavior));
}

}  // namespace ORLFoundation
