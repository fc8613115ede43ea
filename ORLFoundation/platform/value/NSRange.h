/// A run of values or characters: where it begins and how many it holds.
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

struct NSRange {
  NSUInteger location = 0;
  NSUInteger length = 0;

  friend constexpr bool operator==(const NSRange&, const NSRange&) = default;
};

/// The first value after the range.
[[nodiscard]] constexpr NSUInteger NSMaxRange(NSRange range) noexcept {
  return range.location + range.length;
}

}  // namespace ORLFoundation
