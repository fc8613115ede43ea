#include <ORLFoundation/platform/value/NSDecimalSum.h>

#include <ORLFoundation/platform/value/internal/DecimalRounding.h>
#include <ORLFoundation/platform/value/internal/DecimalVectors.h>
#include <ORLFoundation/platform/value/internal/DecimalWords.h>
#include <ORLFoundation/platform/value/internal/WideInteger.h>

#include <algorithm>
#include <bit>
#include <boost/multiprecision/cpp_int.hpp>
#include <cstddef>
#include <optional>

namespace ORLFoundation {

using namespace internal::value;

namespace {

using boost::multiprecision::cpp_int;

constexpr unsigned kWordBits = 64;

/// One word of a magnitude, under the sign of the whole.
Signed signedWord(std::uint64_t word, bool isNegative) noexcept {
  return static_cast<Signed>(withSign(word, isNegative));
}

/// So many values, or pairs, are added in one word without a look at each, where all have one
/// exponent and few bits. Whether they have is told at the end of the block: what is unlike leaves
/// a bit behind.
constexpr std::size_t kBlock = 32;
constexpr std::size_t kBlockOfPairs = 16;
static_assert(std::has_single_bit(kBlock) && std::has_single_bit(kBlockOfPairs));
/// Where vectors do not take a block, what is like it goes without asking them for each.
constexpr std::size_t kPairsBeforeVectorsAgain = 512;

/// A sum of so many magnitudes of that many bits fits a word.
constexpr std::size_t bitsOfBlock(std::size_t count) noexcept {
  return 64 - static_cast<std::size_t>(std::countr_zero(count));
}

/// Twice the exponent of a value.
std::uint64_t placeAboveZero(const NSDecimal& value) noexcept {
  return wordsOf(value).place & ~std::uint64_t{1};
}

/// What a block's values have beside low words of one exponent.
class Unlikeness {
 public:
  /// Gives 1 for a value below zero, 0 for any other, and something else for another exponent than
  /// that of the place.
  std::uint64_t signOf(const DecimalWords& words, std::uint64_t place) noexcept {
    const std::uint64_t sign = words.place - place;
    signs_ |= sign;
    highs_ |= words.high;
    return sign;
  }
  [[nodiscard]] bool isNone() const noexcept { return signs_ <= 1 && highs_ == 0; }

 private:
  std::uint64_t signs_ = 0;
  std::uint64_t highs_ = 0;
};

/// The magnitudes of a block, and of those below zero alone.
struct BlockSum {
  std::uint64_t all = 0;
  std::uint64_t below = 0;

  void add(std::uint64_t magnitude, std::uint64_t sign) noexcept {
    all += magnitude;
    below += magnitude * sign;
  }
  [[nodiscard]] Signed value() const noexcept { return Signed{all} - 2 * Signed{below}; }
};

/// nil for a block that does not go in one word.
std::optional<Signed> sumOfBlock(std::span<const NSDecimal, kBlock> values) noexcept {
  const std::uint64_t place = placeAboveZero(values.front());
  Unlikeness unlikeness;
  BlockSum sum;
  std::uint64_t lows = 0;
#pragma GCC unroll 4
  for (std::size_t i = 0; i < kBlock; ++i) {
    const DecimalWords words = wordsOf(values[i]);
    sum.add(words.low, unlikeness.signOf(words, place));
    lows |= words.low;
  }
  if (!unlikeness.isNone() || std::bit_width(lows) > bitsOfBlock(kBlock)) return std::nullopt;
  return sum.value();
}

std::optional<Signed> sumOfBlock(std::span<const NSDecimal, kBlockOfPairs> left,
                                 std::span<const NSDecimal, kBlockOfPairs> right) noexcept {
  const std::uint64_t leftPlace = placeAboveZero(left.front());
  const std::uint64_t rightPlace = placeAboveZero(right.front());
  Unlikeness unlikeness;
  BlockSum sum;
  std::uint64_t leftLows = 0;
  std::uint64_t rightLows = 0;
#pragma GCC unroll 1
  for (std::size_t i = 0; i < kBlockOfPairs; ++i) {
    const DecimalWords leftWords = wordsOf(left[i]);
    const DecimalWords rightWords = wordsOf(right[i]);
    const std::uint64_t sign =
        unlikeness.signOf(leftWords, leftPlace) ^ unlikeness.signOf(rightWords, rightPlace);
    sum.add(leftWords.low * rightWords.low, sign);
    leftLows |= leftWords.low;
    rightLows |= rightWords.low;
  }
  if (!unlikeness.isNone() ||
      std::bit_width(leftLows) + std::bit_width(rightLows) > bitsOfBlock(kBlockOfPairs))
    return std::nullopt;
  return sum.value();
}

/// The sum of words in one signed integer, where it fits one.
std::optional<Signed> shortTotal(std::span<const Signed, 4> words) noexcept {
  const auto high = static_cast<std::int64_t>(words[1]);
  Signed total = 0;
  if (words[2] != 0 || words[3] != 0 || words[1] != high ||
      __builtin_add_overflow(words[0], static_cast<Signed>(Wide(high) << kWordBits), &total))
    return std::nullopt;
  return total;
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
  const WideInteger wide{static_cast<Wide>(digits), static_cast<Wide>(cpp_int(digits >> 128))};
  return rounded({wide, exponent, sum < 0, below}, mode);
}

}  // namespace

/// The words of the exponent of one block after another, which is mostly the same.
class NSDecimalAccumulator::WordsAtHand {
 public:
  explicit WordsAtHand(NSDecimalAccumulator& accumulator) noexcept : accumulator_(accumulator) {}

  Words& of(int exponent) {
    if (sum_ == nullptr || sum_->first != exponent)
      sum_ = &*accumulator_.sums_.try_emplace(exponent).first;
    return sum_->second;
  }

 private:
  NSDecimalAccumulator& accumulator_;
  Sums::value_type* sum_ = nullptr;
};

void NSDecimalAccumulator::addAll(std::span<const NSDecimal> values) {
  WordsAtHand words(*this);
  while (values.size() >= kBlock) {
    const auto block = values.first<kBlock>();
    if (const auto sum = sumOfBlock(block))
      words.of(block.front().exponent())[0] += *sum;
    else
      addSingly(block);
    values = values.subspan(kBlock);
  }
  addSingly(values);
}

void NSDecimalAccumulator::addProducts(std::span<const NSDecimal> left,
                                       std::span<const NSDecimal> right) {
  left = left.first(std::min(left.size(), right.size()));
  static const PairsAdder addByVectors = pairsAdderOfVectors();
  WordsAtHand words(*this);
  while (addByVectors != nullptr && left.size() >= kPairsOfVectors) {
    const SumOfPairs done = addByVectors(left, right);
    const std::size_t count =
        done.count > 0 ? done.count : std::min(kPairsBeforeVectorsAgain, left.size());
    if (done.count > 0)
      words.of(left.front().exponent() + right.front().exponent())[0] += done.sum;
    else
      addProductsInWords(left.first(count), right.first(count));
    left = left.subspan(count);
    right = right.subspan(count);
  }
  addProductsInWords(left, right);
}

void NSDecimalAccumulator::addProductsInWords(std::span<const NSDecimal> left,
                                              std::span<const NSDecimal> right) {
  WordsAtHand words(*this);
  while (left.size() >= kBlockOfPairs) {
    const auto block = left.first<kBlockOfPairs>();
    const auto factors = right.first<kBlockOfPairs>();
    if (const auto sum = sumOfBlock(block, factors))
      words.of(block.front().exponent() + factors.front().exponent())[0] += *sum;
    else
      addProductsSingly(block, factors);
    left = left.subspan(kBlockOfPairs);
    right = right.subspan(kBlockOfPairs);
  }
  addProductsSingly(left, right);
}

void NSDecimalAccumulator::addSingly(std::span<const NSDecimal> values) {
  while (!values.empty()) {
    const int exponent = values.front().exponent();
    Signed low = 0;
    Signed high = 0;
    std::size_t count = 0;
    for (; count < values.size(); ++count) {
      const NSDecimal& value = values[count];
      if (value.exponent() != exponent && !value.isZero()) break;
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

void NSDecimalAccumulator::addProductsSingly(std::span<const NSDecimal> left,
                                             std::span<const NSDecimal> right) {
  const std::size_t count = left.size();
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
  if (left.isNaN() || right.isNaN()) isNaN_ = true;
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
  if (sums_.size() == 1) {
    const auto& [exponent, words] = *sums_.begin();
    if (const auto total = shortTotal(words)) {
      const bool isNegative = *total < 0;
      return rounded({{withSign(static_cast<Wide>(*total), isNegative), 0}, exponent, isNegative},
                     mode);
    }
  }
  cpp_int sum = 0;
  int exponent = 0;
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
