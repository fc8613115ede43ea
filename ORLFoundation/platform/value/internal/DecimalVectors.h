/// The sum of products of blocks of pairs by vectors of the processor, four pairs at once: what
/// columns of money need, at two thirds of the time of one pair after the other.
///
/// A block is 64 pairs whose mantissas are below 2^32, with one exponent on the left and one on the
/// right. Each of four lanes adds 16 products in 64 bits, so that none may have more than 60: the
/// bits that any mantissa of a lane has are multiplied to see it. Nine digits have 30 bits: pairs
/// of them always go.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <cstddef>
#include <span>

namespace ORLFoundation::internal::value {

__extension__ typedef __int128 Signed;

inline constexpr std::size_t kPairsOfVectors = 64;

struct SumOfPairs {
  /// A multiple of the pairs of a block, 0 where the first block does not go.
  std::size_t count = 0;
  /// The sum of the products of so many mantissas, each under its sign.
  Signed sum = 0;
};

/// Takes blocks from the first on, all of the exponents of the first pair, up to one that does not
/// go. The right range is not the shorter one.
using PairsAdder = SumOfPairs (*)(std::span<const NSDecimal> left,
                                  std::span<const NSDecimal> right) noexcept;

/// Null where the processor has no AVX2.
[[nodiscard]] PairsAdder pairsAdderOfVectors() noexcept;

}  // namespace ORLFoundation::internal::value
