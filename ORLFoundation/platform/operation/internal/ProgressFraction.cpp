#include <ORLFoundation/platform/operation/internal/ProgressFraction.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace ORLFoundation::internal::operation {
namespace {

__extension__ typedef __int128 Wide;

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

/// The smallest 64-bit integer is left out: every count that comes of a calculation has a negative.
bool fits(Wide number) noexcept { return number >= -Wide{kMost} && number <= Wide{kMost}; }

Wide sizeOf(Wide number) noexcept { return number < 0 ? -number : number; }

/// Euclid's algorithm on truncating remainders. The sign that it leaves decides that of a sum's
/// denominator: what was indeterminate in 1000 parts of -1 stays so beside 1000 parts of 1000.
Wide divisorOf(Wide left, Wide right) noexcept {
  while (right != 0) {
    const Wide rest = left % right;
    left = right;
    right = rest;
  }
  return left;
}

/// The nearest fraction over a power of two; the largest one for what is beyond 64 bits.
ProgressFraction nearest(double value, bool isNegativeTotal) noexcept {
  constexpr int kMostParts = 62;
  const std::int64_t sign = isNegativeTotal ? -1 : 1;
  int exponent = 0;
  std::frexp(value, &exponent);
  if (exponent > kMostParts) return {(value < 0 ? -kMost : kMost) * sign, sign};
  const int parts = kMostParts - std::max(exponent, 0);
  return {std::llround(std::ldexp(value, parts)) * sign, (std::int64_t{1} << parts) * sign};
}

ProgressFraction fitted(Wide completed, Wide total) noexcept {
  if (!fits(completed) || !fits(total)) {
    const Wide divisor = sizeOf(divisorOf(completed, total));
    if (divisor != 0) {
      completed /= divisor;
      total /= divisor;
    }
  }
  if (fits(completed) && fits(total))
    return {static_cast<std::int64_t>(completed), static_cast<std::int64_t>(total)};
  if (total == 0) return {completed < 0 ? -kMost : kMost, 0};
  return nearest(static_cast<double>(completed) / static_cast<double>(total), total < 0);
}

ProgressFraction combined(ProgressFraction left, ProgressFraction right, int sign) noexcept {
  if (right.total == 0) return left;
  const Wide added = Wide{right.completed} * sign;
  if (left.total == 0) return fitted(added, right.total);
  if (left.total == right.total) return fitted(left.completed + added, left.total);
  const Wide divisor = divisorOf(left.total, right.total);
  const Wide ofRight = Wide{right.total} / divisor;
  const Wide common = left.total * ofRight;
  Wide completed = 0;
  if (!__builtin_add_overflow(left.completed * (common / left.total),
                              added * (common / right.total), &completed))
    return fitted(completed, common);
  const double total = static_cast<double>(left.completed) / static_cast<double>(left.total) +
                       static_cast<double>(added) / static_cast<double>(right.total);
  return nearest(total, common < 0);
}

}  // namespace

double ProgressFraction::value() const noexcept {
  if (isIndeterminate()) return 0;
  if (total == 0) return 1;
  return static_cast<double>(completed) / static_cast<double>(total);
}

bool areEqual(ProgressFraction left, ProgressFraction right) noexcept {
  if (left.completed == right.completed && left.total == right.total) return true;
  return left.total != 0 && right.total != 0 &&
         Wide{left.completed} * right.total == Wide{right.completed} * left.total;
}

ProgressFraction sumOf(ProgressFraction left, ProgressFraction right) noexcept {
  return combined(left, right, 1);
}

ProgressFraction differenceOf(ProgressFraction left, ProgressFraction right) noexcept {
  return combined(left, right, -1);
}

ProgressFraction productOf(ProgressFraction left, ProgressFraction right) noexcept {
  return fitted(Wide{left.completed} * right.completed, Wide{left.total} * right.total);
}

}  // namespace ORLFoundation::internal::operation
