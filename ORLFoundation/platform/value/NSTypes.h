/// The integer types, the comparison results and the "not found" value that every folder shares.
#pragma once

#include <cstdint>
#include <limits>

namespace ORLFoundation {

using NSInteger = std::int64_t;
using NSUInteger = std::uint64_t;
/// A span of time in seconds.
using NSTimeInterval = double;

inline constexpr NSInteger NSIntegerMax = std::numeric_limits<NSInteger>::max();
inline constexpr NSInteger NSIntegerMin = std::numeric_limits<NSInteger>::min();
inline constexpr NSUInteger NSUIntegerMax = std::numeric_limits<NSUInteger>::max();
/// What a search that finds nothing gives in place of an index or a count.
inline constexpr NSInteger NSNotFound = NSIntegerMax;

/// How the receiver stands to the argument of a comparison.
enum NSComparisonResult : NSInteger {
  NSOrderedAscending = -1,
  NSOrderedSame = 0,
  NSOrderedDescending = 1,
};

}  // namespace ORLFoundation
