#include <ORLFoundation/platform/value/NSDecimalSum.h>

#include <ORLFoundation/platform/value/internal/DecimalRounding.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <algorithm>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstddef>

namespace ORLFoundation {

using namespace internal::value;

namespace {

using boost::multiprecision::cpp_int;
__extension__ typedef __int128 Signed;

constexpr unsigned kWordBits = 64;

/// One word of a magnitude, under the sign of the whole.
Signed signedWord(std::uint64_t word, bool isNegative) noexcept {
  return static_cast<Signed>(withSign(word, isNegative));
}

/// The words of a sum overlap: each holds what was carried too.
cpp_int wholeOf(std::span<const Signed> words) {
  cpp_int whole = 0;
  for (std::size_t i = words.size(); i-- > 0;) whole = (whole << kWordBits) + cpp_int(words[i]);
  return whole;
}

cpp_int powerOfTenWithoutEnd(int exponent) {
  return boost::multiprecision::pow(cpp_int(10), static_cast<unsigned>(exponent));
}

Wide lowWordsOf(const cpp_int& value) {
  constexpr std::uint64_t kWord = ~std::uint64_t{0};
  const auto low = static_cast<std::uint64_t>(cpp_int(value & kWord));
  const auto high = static_cast<std::uint64_t>(cpp_int(value >> kWordBits & kWord));
  return Wide{high} << kWordBits | low;
}

/// What one rounding makes of an exact sum of any length.
NSDecimalResult roundedSum(const cpp_int& sum, int exponent, NSRoundingMode mode) {
  cpp_int digits = abs(sum);
  const int surplus = static_cast<int>(digits.str().size()) - kMostWideDigits;
  Dropped below = Dropped::kNothing;
  if (surplus > 0) {
    cpp_int rest;
    divide_qr(cpp_int(digits), powerOfTenWithoutEnd(surplus), digits, rest);
    if (!rest.is_zero()) below = Dropped::kBelowHalf;
    exponent += surplus;
  }
  const WideInteger wide{lowWordsOf(digits), lowWordsOf(digits >> 2 * kWordBits)};
  return rounded({wide, exponent, sum < 0, below}, mode);
}

}  // namespace

void NSDecimalAccumulator::addAll(std::span<const NSDecimal> values) {
  while (!values.empty()) {
    const int exponent = values.front().exponent();
    Signed low = 0;
    Signed high = 0;
    std::size_t count = 0;
    for (; count < values.size() && values[count].exponent() == exponent; ++count) {
      const NSDecimal& value = values[count];
      if (value.isNaN()) isNaN_ = true;
      low += signedWord(value.shortMantissa(), value.isNegative());
      high += signedWord(highWord(value.mantissa()), value.isNegative());
    }
    Words& words = sums_[exponent];
    words[0] += low;
    words[1] += high;
    values = values.subspan(count);
  }
}

void NSDecimalAccumulator::addProducts(std::span<const NSDecimal> left,
                                       std::span<const NSDecimal> right) {
  const std::size_t count = std::min(left.size(), right.size());
  for (std::size_t at = 0; at < count;) {
    const int exponent = left[at].exponent() + right[at].exponent();
    Words& words = sums_[exponent];
    Signed low = 0;
    Signed high = 0;
    for (; at < count && left[at].exponent() + right[at].exponent() == exponent; ++at) {
      const bool isNegative = left[at].isNegative() != right[at].isNegative();
      if (left[at].isShort() && right[at].isShort()) {
        const Wide product = Wide{left[at].shortMantissa()} * right[at].shortMantissa();
        low += signedWord(lowWord(product), isNegative);
        high += signedWord(highWord(product), isNegative);
      } else {
        addLongProduct(left[at], right[at], words);
      }
    }
    words[0] += low;
    words[1] += high;
  }
}

void NSDecimalAccumulator::addLongProduct(const NSDecimal& left, const NSDecimal& right,
                                          Words& words) {
  if (left.isNaN() || right.isNaN()) {
    isNaN_ = true;
    return;
  }
  const bool isNegative = left.isNegative() != right.isNegative();
  const WideInteger digits = product(left.mantissa(), right.mantissa());
  words[0] += signedWord(lowWord(digits.low), isNegative);
  words[1] += signedWord(highWord(digits.low), isNegative);
  words[2] += signedWord(lowWord(digits.high), isNegative);
  words[3] += signedWord(highWord(digits.high), isNegative);
}

NSDecimalResult NSDecimalAccumulator::sum(NSRoundingMode mode) const {
  if (isNaN_) return {NSDecimal::notANumber()};
  if (sums_.empty()) return {};
  cpp_int sum = 0;
  int exponent = sums_.begin()->first;
  for (const auto& [lower, words] : sums_) {
    if (!sum.is_zero()) sum *= powerOfTenWithoutEnd(exponent - lower);
    exponent = lower;
    sum += wholeOf(words);
  }
  return roundedSum(sum, exponent, mode);
}

NSDecimalResult NSDecimalSum(std::span<const NSDecimal> values, NSRoundingMode mode) {
  NSDecimalAccumulator accumulator;
  accumulator.addAll(values);
  return accumulator.sum(mode);
}

NSDecimalResult NSDecimalSumOfProducts(std::span<const NSDecimal> left,
                                       std::span<const NSDecimal> right, NSRoundingMode mode) {
  NSDecimalAccumulator accumulator;
  accumulator.addProducts(left, right);
  return accumulator.sum(mode);
}

}  // namespace ORLFoundation
