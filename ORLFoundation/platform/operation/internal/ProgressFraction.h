/// The fraction of a piece of work that is done, in whole numbers, so that parts of many sizes add
/// up to one exactly.
///
/// A fraction of nothing, 0 of 0, weighs nothing in sums. A negative count means that nobody knows
/// how far the work has come. Sums keep such a sign in their denominator: a fraction that was put
/// over a negative total stays indeterminate as long as what it was added to does. Counts that pass
/// 64 bits are reduced; where that does not help, they become the nearest ones that fit.
#pragma once

#include <cstdint>

namespace ORLFoundation::internal::operation {

struct ProgressFraction {
  std::int64_t completed = 0;
  std::int64_t total = 0;

  [[nodiscard]] bool isIndeterminate() const noexcept {
    return completed < 0 || total < 0 || (completed == 0 && total == 0);
  }
  [[nodiscard]] bool isFinished() const noexcept {
    return completed > 0 && total >= 0 && completed >= total;
  }
  /// 0 while it is indeterminate, 1 for something of nothing; above 1 for more than all.
  [[nodiscard]] double value() const noexcept;
};

/// Whether both are the same number, or the same counts.
[[nodiscard]] bool areEqual(ProgressFraction left, ProgressFraction right) noexcept;
[[nodiscard]] ProgressFraction sumOf(ProgressFraction left, ProgressFraction right) noexcept;
[[nodiscard]] ProgressFraction differenceOf(ProgressFraction left, ProgressFraction right) noexcept;
[[nodiscard]] ProgressFraction productOf(ProgressFraction left, ProgressFraction right) noexcept;

}  // namespace ORLFoundation::internal::operation
