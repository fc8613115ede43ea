/// Helpers on top of `NSDecimalNumber`: sign tests, construction from integers, doubles and text,
/// arithmetic that tolerates a missing operand. ORLFDecimalAmount.h reads amounts as people type
/// them, ORLFDecimalSolver.h searches for a decimal.
///
///     auto paid = orlfDecimalNumberByAddingTo(fee, balance);  // either may be absent
///     if (paid && orlfIsNegativeNumber(*paid)) overdrawn();
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/object/NSNumber.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace ORLFoundation {

/// `orlfCompareWithZero`  -1, 0 or 1; not-a-number compares less, as with every number. The sign
/// tests below follow from it: `orlfIsPositiveNumber`, `orlfIsNegitiveNumber`, `orlfIsZero`,
/// `orlfIsPositiveNumberOrZero`, `orlfIsNegitiveNumberOrZero`.
[[nodiscard]] NSComparisonResult orlfCompareWithZero(const NSNumber& number);
[[nodiscard]] bool orlfIsPositiveNumber(const NSNumber& number);
[[nodiscard]] bool orlfIsNegitiveNumber(const NSNumber& number);
[[nodiscard]] bool orlfIsZero(const NSNumber& number);
[[nodiscard]] bool orlfIsPositiveNumberOrZero(const NSNumber& number);
[[nodiscard]] bool orlfIsNegitiveNumberOrZero(const NSNumber& number);

/// The same on decimals, with `orlfIsNegativeNumber` and `orlfIsNegativeNumberOrZero`, which the
/// older spellings forward to.
[[nodiscard]] NSComparisonResult orlfCompareWithZero(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsPositiveNumber(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsNegativeNumber(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsNegitiveNumber(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsZero(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsPositiveNumberOrZero(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsNegativeNumberOrZero(const NSDecimalNumber& number) noexcept;
[[nodiscard]] bool orlfIsNegitiveNumberOrZero(const NSDecimalNumber& number) noexcept;

/// `orlfOne`
[[nodiscard]] NSDecimalNumber orlfOne() noexcept;
/// `orlfDecimalNumberWithInteger:`  Takes the 64 bits as they are for the mantissa and the sign bit
/// for the sign, without the absolute value; this is required. So -1 is -18446744073709551615.
/// Values from 0 on come out as expected.
[[nodiscard]] NSDecimalNumber orlfDecimalNumberWithInteger(std::int64_t value) noexcept;
/// `orlfDecimalNumberWithLong:`  As `orlfDecimalNumberWithInteger`.
[[nodiscard]] NSDecimalNumber orlfDecimalNumberWithLong(std::int64_t value) noexcept;
/// `orlfDecimalNumberWithInt:`  The same after sign extension to 64 bits.
[[nodiscard]] NSDecimalNumber orlfDecimalNumberWithInt(std::int32_t value) noexcept;
/// `orlfDecimalNumberWithDouble:`  The double with six digits after the point, as "%f" writes it in
/// any locale: 1.23456789 is 1.234568 and 0.1 is exactly 0.1. This is the only way for a binary
/// result into decimals. A double that is not finite gives not-a-number.
[[nodiscard]] NSDecimalNumber orlfDecimalNumberWithDouble(double value) noexcept;
/// `orlfDecimalNumberWithString:`  nil for nil and for text that is no number.
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberWithString(
    std::optional<std::string_view> text) noexcept;

/// `orlfAbsoluteValue`
[[nodiscard]] NSDecimalNumber orlfAbsoluteValue(const NSDecimalNumber& number);
/// `orlfDecimalNumberByNegatingNumber`
[[nodiscard]] NSDecimalNumber orlfDecimalNumberByNegatingNumber(const NSDecimalNumber& number);
/// `orlfLargerDecimalNumber:`  On a tie the receiver.
[[nodiscard]] NSDecimalNumber orlfLargerDecimalNumber(const NSDecimalNumber& number,
                                                      const NSDecimalNumber& other) noexcept;
/// `orlfSmallerDecimalNumber:`  On a tie the receiver.
[[nodiscard]] NSDecimalNumber orlfSmallerDecimalNumber(const NSDecimalNumber& number,
                                                       const NSDecimalNumber& other) noexcept;

/// `orlfDecimalNumberByAdding:`, `orlfDecimalNumberByAdding:withBehavior:`  This and the next three
/// give nil when the receiver or the argument is nil, else what the operation of that name without
/// the prefix gives; without a behaviour they can raise.
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberByAdding(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& other,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);
/// `orlfDecimalNumberBySubtracting:`, `orlfDecimalNumberBySubtracting:withBehavior:`
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberBySubtracting(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& other,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);
/// `orlfDecimalNumberByMultiplyingBy:`, `orlfDecimalNumberByMultiplyingBy:withBehavior:`
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberByMultiplyingBy(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& other,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);
/// `orlfDecimalNumberByDividingBy:`, `orlfDecimalNumberByDividingBy:withBehavior:`
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberByDividingBy(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& other,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);

/// `orlfDecimalNumberByAdding:to:`, `orlfDecimalNumberByAdding:to:withBehavior:`  A missing operand
/// is absent, not a failure: the other one comes back as it is, unrounded. nil when both are.
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberByAddingTo(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& to,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);
/// `orlfDecimalNumberBySubtracting:from:`, `orlfDecimalNumberBySubtracting:from:withBehavior:`
/// Without `from` the number
/// negated, unrounded; without the number `from` as it is; nil when both are missing.
[[nodiscard]] std::optional<NSDecimalNumber> orlfDecimalNumberBySubtractingFrom(
    const std::optional<NSDecimalNumber>& number, const std::optional<NSDecimalNumber>& from,
    const NSDecimalNumberBehaviors* withBehavior = nullptr);

}  // namespace ORLFoundation
