
#include <ORLFoundation/amortization/internal/ORLFBalanceSearch.h>

#include <ORLFoundation/decimal/ORLFDecimalNumber.h>
#include <ORLFoundation/platform/base/CheckedArithmetic.h>

namespace ORLFoundation::internal::amortization {
namespace {

constexpr NSUInteger kFirstGuess = 100;

struct Bounds {
  NSUInteger low = 0;
  NSUInteger high = kFirstGuess;
};

class Search {
 public:
  Search(const NSDecimalNumber& target, bool falling, const ORLFBalanceAfterPeriods& balanceAfter)
      : target_(target), falling_(falling), balanceAfter_(balanceAfter) {}

  /// Doubles the upper bound until the target does not lie beyond it. No limit but that of the
  /// dates: nil when a balance cannot be told.
  [[nodiscard]] std::optional<Bounds> passTarget() const {
    const NSComparisonResult beyond = falling_ ? NSOrderedAscending : NSOrderedDescending;
    Bounds bounds;
    for (;;) {
      const auto side = sideOfTarget(bounds.high);
      if (!side) return std::nullopt;
      if (*side != beyond) return bounds;
      const auto doubled = base::checkedProduct(bounds.high, 2);
      if (!doubled) return std::nullopt;
      bounds = {.low = bounds.high, .high = *doubled};
    }
  }

  /// The answer is the last point tried, and the next one when the target is above its balance,
  /// for falling balances too; required.
  [[nodiscard]] std::optional<NSUInteger> bisect(Bounds bounds) const {
    for (;;) {
      const NSUInteger middle = bounds.low + (bounds.high - bounds.low) / 2;
      const auto side = sideOfTarget(middle);
      if (!side) return std::nullopt;
      const bool targetIsLater = falling_ == (*side == NSOrderedAscending);
      (targetIsLater ? bounds.low : bounds.high) = middle;
      if (*side == NSOrderedSame || bounds.low + 1 >= bounds.high) {
        return *side == NSOrderedDescending ? middle + 1 : middle;
      }
    }
  }

 private:
  /// How the target compares with the balance after a number of periods.
  [[nodiscard]] std::optional<NSComparisonResult> sideOfTarget(NSUInteger periods) const {
    const auto balance = balanceAfter_(periods);
    if (!balance) return std::nullopt;
    return target_.compare(*balance);
  }

  const NSDecimalNumber& target_;
  const bool falling_;
  const ORLFBalanceAfterPeriods& balanceAfter_;
};

}  // namespace

NSUInteger periodsToReachBalance(const NSDecimalNumber& target, const NSDecimalNumber& principal,
                                 const ORLFBalanceAfterPeriods& balanceAfter) {
  const auto later = balanceAfter(kFirstGuess);
  if (!later) return NSIntegerMax;
  const auto wanted = orlfCompareWithZero(target.decimalNumberBySubtracting(principal));
  const auto moved = orlfCompareWithZero(later->decimalNumberBySubtracting(principal));
  if (wanted != moved) return NSIntegerMax;
  const Search search(target, wanted == NSOrderedAscending, balanceAfter);
  const auto bounds = search.passTarget();
  if (!bounds) return NSIntegerMax;
  return search.bisect(*bounds).value_or(NSIntegerMax);
}

}  // namespace ORLFoundation::internal::amortization
