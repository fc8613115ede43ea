/// Sums of many decimals and of many products, rounded once at their end from the exact value: the
/// total of a list of payments, or the worth of shares at their prices.
///
///     NSDecimalSum(amounts).value;  // of a vector<NSDecimal>
///     NSDecimalSumOfProducts(quantities, prices, NSRoundBankers).value;
///
///     NSDecimalAccumulator total;
///     for (const NSDecimal& amount : amounts) total.add(amount);
///     total.sum().value;
///
/// Ranges of values of one exponent cost least, a fifth of single additions. Nothing that is added
/// can overflow: only the rounded sum can. One operand that is not-a-number makes the sum
/// not-a-number, without an error.
#pragma once

#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <span>

namespace ORLFoundation {

class NSDecimalAccumulator {
 public:
  NSDecimalAccumulator() = default;

  void add(const NSDecimal& value) { addAll({&value, 1}); }
  void addAll(std::span<const NSDecimal> values);
  void addProduct(const NSDecimal& left, const NSDecimal& right) {
    addProducts({&left, 1}, {&right, 1});
  }
  /// The product of each pair at one place of both ranges; what is longer ends with the other.
  void addProducts(std::span<const NSDecimal> left, std::span<const NSDecimal> right);

  /// What has been added so far, rounded once: errors are those of an addition. Zero for nothing.
  [[nodiscard]] NSDecimalResult sum(NSRoundingMode mode = NSRoundPlain) const;

 private:
  __extension__ typedef __int128 Signed;
  /// The sum of what has one exponent, in words of 64 bits that are added each for itself: more
  /// than 2^62 values fit.
  using Words = std::array<Signed, 4>;
  using Sums = std::map<int, Words, std::greater<>>;

  class WordsAtHand;

  /// Each value for itself; ranges are added in blocks where they can be.
  void addSingly(std::span<const NSDecimal> values);
  void addProductsInWords(std::span<const NSDecimal> left, std::span<const NSDecimal> right);
  void addProductsSingly(std::span<const NSDecimal> left, std::span<const NSDecimal> right);
  void addLongProduct(const NSDecimal& left, const NSDecimal& right, Words& words);

  Sums sums_;  // by exponent, the largest first
  bool isNaN_ = false;
};

/// The sum of a range.
[[nodiscard]] NSDecimalResult NSDecimalSum(std::span<const NSDecimal> values,
                                           NSRoundingMode mode = NSRoundPlain);
/// The sum of the products of each pair at one place of two ranges of one length.
[[nodiscard]] NSDecimalResult NSDecimalSumOfProducts(std::span<const NSDecimal> left,
                                                     std::span<const NSDecimal> right,
                                                     NSRoundingMode mode = NSRoundPlain);

}  // namespace ORLFoundation
