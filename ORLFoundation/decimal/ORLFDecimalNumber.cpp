

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>

#include <ORLFoundation/platform/base/FixedText.h>

namespace ORLFoundation {
namespace {

using Optional = std::optional<NSDecimalNumber>;

constexpr int kDoublePlaces = 6;  // "%f"

const NSDecimalNumber& minusOne() {
  static const NSDecimalNumber number("-1");
  return number;
}

}  // namespace

NSComparisonResult orlfCompareWithZero(const NSNumber& number) {
  return number.compare(NSNumber(0));
}
bool orlfIsPositiveNumber(const NSNumber& number) {
  return orlfCompareWithZero(number) == NSOrderedDescending;
}
bool orlfIsNegitiveNumber(const NSNumber& number) {
  return orlfCompareWithZero(number) == NSOrderedAscending;
}
bool orlfIsZero(const NSNumber& number) { return orlfCompareWithZero(number) == NSOrderedSame; }
bool orlfIsPositiveNumberOrZero(const NSNumber& number) {
  return orlfCompareWithZero(number) >= NSOrderedSame;
}
bool orlfIsNegitiveNumberOrZero(const NSNumber& number) {
  return orlfCompareWithZero(number) <= NSOrderedSame;
}

NSComparisonResult orlfCompareWithZero(const NSDecimalNumber& number) noexcept {
  return number.compare(NSDecimalNumber::zero());
}
bool orlfIsPositiveNumber(const NSDecimalNumber& number) noexcept {
  return orlfCompareWithZero(number) == NSOrderedDescending;
}
bool orlfIsNegativeNumber(const NSDecimalNumber& number) noexcept {
  return orlfCompareWithZero(number) == NSOrderedAscending;
}
bool orlfIsNegitiveNumber(const NSDecimalNumber& number) noexcept {
  return orlfIsNegativeNumber(number);
}
bool orlfIsZero(const NSDecimalNumber& number) noexcept {
  return orlfCompareWithZero(number) == NSOrderedSame;
}
bool orlfIsPositiveNumberOrZero(const NSDecimalNumber& number) noexcept {
  return orlfCompareWithZero(number) >= NSOrderedSame;
}
bool orlfIsNegativeNumberOrZero(const NSDecimalNumber& number) noexcept {
  return orlfCompareWithZero(number) <= NSOrderedSame;
}
bool orlfIsNegitiveNumberOrZero(const NSDecimalNumber& number) noexcept {
  return orlfIsNegativeNumberOrZero(number);
}

NSDecimalNumber orlfOne() noexcept { return NSDecimalNumber::one(); }

NSDecimalNumber orlfDecimalNumberWithInteger(std::int64_t value) noexcept {
  return NSDecimalNumber::decimalNumberWithMantissa(static_cast<std::uint64_t>(value), 0,
                                                    value < 0);
}
NSDecimalNumber orlfDecimalNumberWithLong(std::int64_t value) noexcept {
  return orlfDecimalNumberWithInteger(value);
}
NSDecimalNumber orlfDecimalNumberWithInt(std::int32_t value) noexcept {
  return orlfDecimalNumberWithInteger(value);
}

NSDecimalNumber orlfDecimalNumberWithDouble(double value) noexcept {
  return NSDecimalNumber(internal::base::FixedText<kDoublePlaces>(value).view());
}

Optional orlfDecimalNumberWithString(std::optional<std::string_view> text) noexcept {
  if (!text) return std::nullopt;
  const NSDecimalNumber number(*text);
  if (number == NSDecimalNumber::notANumber()) return std::nullopt;
  return number;
}

NSDecimalNumber orlfAbsoluteValue(const NSDecimalNumber& number) {
  return orlfIsNegativeNumber(number) ? orlfDecimalNumberByNegatingNumber(number) : number;
}
NSDecimalNumber orlfDecimalNumberByNegatingNumber(const NSDecimalNumber& number) {
  return number.decimalNumberByMultiplyingBy(minusOne());
}
NSDecimalNumber orlfLargerDecimalNumber(const NSDecimalNumber& number,
                                        const NSDecimalNumber& other) noexcept {
  return number.compare(other) == NSOrderedAscending ? other : number;
}
NSDecimalNumber orlfSmallerDecimalNumber(const NSDecimalNumber& number,
                                         const NSDecimalNumber& other) noexcept {
  return number.compare(other) == NSOrderedDescending ? other : number;
}

Optional orlfDecimalNumberByAdding(const Optional& number, const Optional& other,
                                   const NSDecimalNumberBehaviors* withBehavior) {
  if (!number || !other) return std::nullopt;
  return number->decimalNumberByAdding(*other, withBehavior);
}
Optional orlfDecimalNumberBySubtracting(const Optional& number, const Optional& other,
                                        const NSDecimalNumberBehaviors* withBehavior) {
  if (!number || !other) return std::nullopt;
  return number->decimalNumberBySubtracting(*other, withBehavior);
}
Optional orlfDecimalNumberByMultiplyingBy(const Optional& number, const Optional& other,
                                          const NSDecimalNumberBehaviors* withBehavior) {
  if (!number || !other) return std::nullopt;
  return number->decimalNumberByMultiplyingBy(*other, withBehavior);
}
Optional orlfDecimalNumberByDividingBy(const Optional& number, const Optional& other,
                                       const NSDecimalNumberBehaviors* withBehavior) {
  if (!number || !other) return std::nullopt;
  return number->decimalNumberByDividingBy(*other, withBehavior);
}

Optional orlfDecimalNumberByAddingTo(const Optional& number, const Optional& to,
                                     const NSDecimalNumberBehaviors* withBehavior) {
  if (!to) return number;
  if (!number) return to;
  return to->decimalNumberByAdding(*number, withBehavior);
}
Optional orlfDecimalNumberBySubtractingFrom(const Optional& number, const Optional& from,
                                            const NSDecimalNumberBehaviors* withBehavior) {
  if (!number) return from;
  if (!from) return orlfDecimalNumberByNegatingNumber(*number);
  return from->decimalNumberBySubtracting(*number, withBehavior);
}

}  // namespace ORLFoundation
