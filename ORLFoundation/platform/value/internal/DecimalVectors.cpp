#include <ORLFoundation/platform/value/internal/DecimalVectors.h>

#if defined(__x86_64__)

#include <ORLFoundation/platform/value/internal/DecimalWords.h>

#include <immintrin.h>

#include <array>
#include <bit>
#include <cstdint>

#define ORLF_AVX2 __attribute__((target("avx2")))

namespace ORLFoundation::internal::value {

namespace {

constexpr std::size_t kLanes = 4;
constexpr int kMostBitsOfProduct = 64 - std::countr_zero(kPairsOfVectors / kLanes);
static_assert(kMostBitsOfProduct == 60);
static_assert(sizeof(NSDecimal) == 3 * sizeof(std::uint64_t));

/// The words of four decimals as they lie in memory:
///     first   low0    high0  place0  low1
///     second  high1   place1 low2    high2
///     third   place2  low3   high3   place3
struct FourDecimals {
  __m256i first;
  __m256i second;
  __m256i third;
};

ORLF_AVX2 inline FourDecimals fourAt(const NSDecimal* values) noexcept {
  const auto* const words = reinterpret_cast<const __m256i*>(values);
  return {_mm256_loadu_si256(words), _mm256_loadu_si256(words + 1), _mm256_loadu_si256(words + 2)};
}

ORLF_AVX2 inline void gather(FourDecimals& bits, const FourDecimals& values) noexcept {
  bits.first = _mm256_or_si256(bits.first, values.first);
  bits.second = _mm256_or_si256(bits.second, values.second);
  bits.third = _mm256_or_si256(bits.third, values.third);
}

/// Of the values 0, 3, 2, 1.
ORLF_AVX2 inline __m256i lowsOf(const FourDecimals& values) noexcept {
  return _mm256_blend_epi32(_mm256_blend_epi32(values.first, values.second, 0b00110000),
                            values.third, 0b00001100);
}
/// Of the values 1, 0, 3, 2.
ORLF_AVX2 inline __m256i highsOf(const FourDecimals& values) noexcept {
  return _mm256_blend_epi32(_mm256_blend_epi32(values.first, values.second, 0b11000011),
                            values.third, 0b00110000);
}
/// Of the values 2, 1, 0, 3.
ORLF_AVX2 inline __m256i placesOf(const FourDecimals& values) noexcept {
  return _mm256_blend_epi32(_mm256_blend_epi32(values.first, values.second, 0b00001100),
                            values.third, 0b11000011);
}
/// From the values 2, 1, 0, 3 to 0, 3, 2, 1.
ORLF_AVX2 inline __m256i asLows(__m256i places) noexcept {
  return _mm256_permute4x64_epi64(places, 0b01001110);
}

/// The exponent of a value above zero, in each lane.
ORLF_AVX2 inline __m256i placeAboveZero(const NSDecimal& value) noexcept {
  return _mm256_set1_epi64x(static_cast<std::int64_t>(wordsOf(value).place & ~std::uint64_t{1}));
}

ORLF_AVX2 inline std::array<std::uint64_t, kLanes> lanesOf(__m256i vector) noexcept {
  std::array<std::uint64_t, kLanes> lanes;
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(lanes.data()), vector);
  return lanes;
}
/// Sums of words in four lanes, in halves of a word.
struct LaneSums {
  __m256i lows;
  __m256i highs;
};

ORLF_AVX2 inline void add(LaneSums& sums, __m256i words) noexcept {
  const __m256i lowHalf = _mm256_set1_epi64x(0xFFFFFFFF);
  sums.lows = _mm256_add_epi64(sums.lows, _mm256_and_si256(words, lowHalf));
  sums.highs = _mm256_add_epi64(sums.highs, _mm256_srli_epi64(words, 32));
}
ORLF_AVX2 inline Signed totalOf(const LaneSums& sums) noexcept {
  constexpr Signed kHalf = Signed{1} << 32;
  Signed total = 0;
  for (const std::uint64_t low : lanesOf(sums.lows)) total += low;
  for (const std::uint64_t high : lanesOf(sums.highs)) total += high * kHalf;
  return total;
}

/// The exponents of both sides, above zero.
struct Places {
  __m256i left;
  __m256i right;
};

/// Adds the products of one block and tells whether it goes. Multiplies whatever the values are:
/// the bits that all leave behind tell at the end whether the sum counts.
ORLF_AVX2 inline bool addBlock(const NSDecimal* left, const NSDecimal* right, const Places& places,
                               LaneSums& allSums, LaneSums& belowSums) noexcept {
  const __m256i none = _mm256_setzero_si256();
  FourDecimals leftBits{none, none, none}, rightBits{none, none, none};
  __m256i signBits = none, all = none, below = none;
#pragma GCC unroll 2
  for (std::size_t i = 0; i < kPairsOfVectors; i += kLanes) {
    const FourDecimals values = fourAt(left + i), factors = fourAt(right + i);
    gather(leftBits, values);
    gather(rightBits, factors);
    // 0 or 1 in each lane, and something else for another exponent.
    const __m256i leftSigns = _mm256_xor_si256(placesOf(values), places.left);
    const __m256i rightSigns = _mm256_xor_si256(placesOf(factors), places.right);
    signBits = _mm256_or_si256(signBits, _mm256_or_si256(leftSigns, rightSigns));
    const __m256i signs = asLows(_mm256_xor_si256(leftSigns, rightSigns));
    const __m256i products = _mm256_mul_epu32(lowsOf(values), lowsOf(factors));
    all = _mm256_add_epi64(all, products);
    below = _mm256_add_epi64(below, _mm256_and_si256(products, _mm256_sub_epi64(none, signs)));
  }
  const __m256i leftLows = lowsOf(leftBits), rightLows = lowsOf(rightBits);
  const __m256i highs = _mm256_or_si256(highsOf(leftBits), highsOf(rightBits));
  const __m256i surplus = _mm256_srli_epi64(_mm256_or_si256(leftLows, rightLows), 32);
  const __m256i surplusOfProducts =
      _mm256_srli_epi64(_mm256_mul_epu32(leftLows, rightLows), kMostBitsOfProduct);
  const __m256i strange =
      _mm256_or_si256(_mm256_or_si256(highs, surplus),
                      _mm256_or_si256(_mm256_srli_epi64(signBits, 1), surplusOfProducts));
  if (_mm256_testz_si256(strange, strange) == 0) return false;
  add(allSums, all);
  add(belowSums, below);
  return true;
}

ORLF_AVX2 SumOfPairs addPairs(std::span<const NSDecimal> left,
                              std::span<const NSDecimal> right) noexcept {
  SumOfPairs done;
  if (left.empty()) return done;
  const Places places{placeAboveZero(left.front()), placeAboveZero(right.front())};
  const __m256i none = _mm256_setzero_si256();
  LaneSums all{none, none}, below{none, none};
  while (left.size() - done.count >= kPairsOfVectors &&
         addBlock(&left[done.count], &right[done.count], places, all, below))
    done.count += kPairsOfVectors;
  done.sum = totalOf(all) - 2 * totalOf(below);
  return done;
}

}  // namespace

PairsAdder pairsAdderOfVectors() noexcept {
  return __builtin_cpu_supports("avx2") ? addPairs : nullptr;
}

}  // namespace ORLFoundation::internal::value

#else

namespace ORLFoundation::internal::value {

PairsAdder pairsAdderOfVectors() noexcept { return nullptr; }

}  // namespace ORLFoundation::internal::value

#endif
