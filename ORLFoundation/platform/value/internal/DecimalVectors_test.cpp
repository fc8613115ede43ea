#include <ORLFoundation/platform/value/internal/DecimalVectors.h>

#include <ORLFoundation/platform/value/internal/PowersOfTen.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <random>
#include <vector>

namespace ORLFoundation::internal::value {
namespace {

using Block = std::vector<NSDecimal>;

constexpr std::size_t kLanes = 4;

/// The bits that any mantissa of a lane has; nil where one does not go, or an exponent differs.
std::optional<std::uint64_t> bitsOf(const Block& block, std::size_t lane) {
  std::uint64_t bits = 0;
  for (std::size_t i = lane; i < block.size(); i += kLanes) {
    if (block[i].isNaN() || !block[i].isShort() || block[i].shortMantissa() >> 32 != 0 ||
        block[i].exponent() != block.front().exponent())
      return std::nullopt;
    bits |= block[i].shortMantissa();
  }
  return bits;
}

/// One pair after the other, as the header tells it.
std::optional<Signed> sumOfPairsSingly(const Block& left, const Block& right) {
  for (std::size_t lane = 0; lane < kLanes; ++lane) {
    const auto leftBits = bitsOf(left, lane), rightBits = bitsOf(right, lane);
    if (!leftBits || !rightBits || *leftBits * *rightBits >> 60 != 0) return std::nullopt;
  }
  Signed sum = 0;
  for (std::size_t i = 0; i < left.size(); ++i) {
    const Signed product = Signed{left[i].shortMantissa()} * right[i].shortMantissa();
    sum += left[i].isNegative() == right[i].isNegative() ? product : -product;
  }
  return sum;
}

/// Compares both, and tells whether the block had a sum.
bool hasTheSumOfSingles(const Block& left, const Block& right) {
  const auto expected = sumOfPairsSingly(left, right);
  if (const PairsAdder add = pairsAdderOfVectors()) {
    const SumOfPairs done = add(left, right);
    EXPECT_EQ(done.count, expected ? kPairsOfVectors : 0);
    EXPECT_TRUE(done.sum == expected.value_or(0));
  }
  return expected.has_value();
}

NSDecimal amount(std::mt19937_64& engine, int bits, int exponent) {
  return {engine() >> (64 - bits), exponent, engine() % 2 == 1};
}
Block amounts(std::mt19937_64& engine, int bits, int exponent) {
  Block block;
  for (std::size_t i = 0; i < kPairsOfVectors; ++i) block.push_back(amount(engine, bits, exponent));
  return block;
}

TEST(DecimalVectors, AreThereWhereTheProcessorHasThem) {
#if defined(__x86_64__)
  EXPECT_EQ(pairsAdderOfVectors() != nullptr, __builtin_cpu_supports("avx2") != 0);
#else
  EXPECT_EQ(pairsAdderOfVectors(), nullptr);
#endif
}

TEST(DecimalVectors, GiveTheSumOfRandomPairs) {
  std::mt19937_64 engine(1);
  int sums = 0;
  for (int round = 0; round < 5000; ++round) {
    const int leftBits = static_cast<int>(engine() % 34) + 1;
    const int rightBits = static_cast<int>(engine() % 34) + 1;
    const int leftExponent = static_cast<int>(engine() % 256) - 128;
    const int rightExponent = static_cast<int>(engine() % 256) - 128;
    sums += hasTheSumOfSingles(amounts(engine, leftBits, leftExponent),
                               amounts(engine, rightBits, rightExponent))
                ? 1
                : 0;
  }
  EXPECT_GT(sums, 4000);
}

TEST(DecimalVectors, GiveTheSumOfTheLargestPairsOfEachLength) {
  const auto largest = [](int bits, bool isNegative) {
    return Block(kPairsOfVectors, NSDecimal((Wide{1} << bits) - 1, -2, isNegative));
  };
  for (int left = 0; left <= 66; ++left) {
    for (int right = 0; right <= 66; ++right) {
      const bool fits = left <= 32 && right <= 32 && left + right <= 60;
      for (const bool isNegative : {false, true}) {
        EXPECT_EQ(hasTheSumOfSingles(largest(left, isNegative), largest(right, false)), fits);
        EXPECT_EQ(hasTheSumOfSingles(largest(left, true), largest(right, isNegative)), fits);
      }
    }
  }
}

TEST(DecimalVectors, FindWhatDoesNotGoAtEachPlace) {
  constexpr Wide kWord = Wide{1} << 64;
  constexpr Wide kHalfWord = Wide{1} << 32;
  const Block strangers = {NSDecimal::notANumber(),
                           {1, -1, false},
                           {1, -1, true},
                           {1, -3, false},
                           {1, -3, true},
                           {1, 0, false},
                           {1, 127, true},
                           {1, -128, false},
                           {kHalfWord, -2, false},
                           {kHalfWord, -2, true},
                           {kHalfWord * 3, -2, false},
                           {kWord >> 1, -2, false},
                           {kWord - 1, -2, true},
                           {kWord, -2, false},
                           {kWord + 1, -2, true},
                           {NSDecimal::kMantissaEnd - 1, -2, false}};
  std::mt19937_64 engine(2);
  const Block left = amounts(engine, 20, -2), right = amounts(engine, 20, -2);
  ASSERT_TRUE(hasTheSumOfSingles(left, right));
  for (std::size_t place = 0; place < kPairsOfVectors; ++place) {
    for (const NSDecimal& stranger : strangers) {
      Block strange = left;
      strange[place] = stranger;
      EXPECT_FALSE(hasTheSumOfSingles(strange, right)) << place;
      EXPECT_FALSE(hasTheSumOfSingles(right, strange)) << place;
      EXPECT_FALSE(hasTheSumOfSingles(strange, strange)) << place;
    }
  }
}

TEST(DecimalVectors, AddTheLongestAndZeroAtEachPlace) {
  constexpr Wide kMost = (Wide{1} << 32) - 1;
  std::mt19937_64 engine(3);
  // Zeros have the exponent 0.
  const Block left = amounts(engine, 20, 0), right = amounts(engine, 20, -2);
  for (std::size_t place = 0; place < kPairsOfVectors; ++place) {
    for (const NSDecimal& value : {NSDecimal(kMost, 0, false), NSDecimal(kMost, 0, true),
                                   NSDecimal(), NSDecimal(0, 0, true)}) {
      Block changed = left;
      changed[place] = value;
      EXPECT_TRUE(hasTheSumOfSingles(changed, right)) << place;
      EXPECT_TRUE(hasTheSumOfSingles(right, changed)) << place;
    }
  }
}

/// Blocks of like pairs up to the first other one, wherever it is, and no part of a block.
TEST(DecimalVectors, TakeBlocksUpToOneThatDoesNotGo) {
  const PairsAdder add = pairsAdderOfVectors();
  for (std::size_t count = 0; count <= 260; ++count) {
    const Block factors(count, {7, -4, false});
    for (std::size_t change = 0; change <= count; ++change) {
      Block values(change, {125, -2, true});
      values.insert(values.end(), count - change, {125, -3, true});
      const std::size_t like = change == 0 ? count : change;
      const std::size_t blocks = like / kPairsOfVectors * kPairsOfVectors;
      if (add == nullptr) continue;
      const SumOfPairs done = add(values, factors);
      ASSERT_EQ(done.count, blocks) << count << ", " << change;
      ASSERT_TRUE(done.sum == Signed{-125 * 7} * static_cast<Signed>(blocks)) << count;
    }
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::value
