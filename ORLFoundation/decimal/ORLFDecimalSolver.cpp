#include <ORLFoundation/decimal/ORLFDecimalSolver.h>

namespace ORLFoundation {
namespace {

using Optional = std::optional<NSDecimalNumber>;

/// One search: the bounds as they stand, what the test last said, and the answer once there is one.
class Search {
 public:
  Search(const Optional& lower, const Optional& upper, const NSDecimalNumberBehaviors* behavior,
         const ORLFDecimalSolverTest& test)
      : callersLower_(lower),
        callersUpper_(upper),
        lower_(lower),
        upper_(upper),
        behavior_(behavior),
        test_(test) {}

  Optional solve() {
    if (!lower_) findLower();
    if (isOpen() && !upper_) findUpper();
    if (isOpen()) bisect();
    return answer_;
  }

 private:
  [[nodiscard]] bool isOpen() const noexcept { return !answer_ && !stop_; }

  /// Asks about a candidate, and takes it when it is the answer.
  void ask(const NSDecimalNumber& candidate) {
    said_ = test_(candidate, stop_);
    if (said_ == 0) answer_ = candidate;
  }

  /// Stops where the powers of ten end.
  void askAboutPower(std::int16_t exponent, bool isNegative) {
    const auto candidate = NSDecimalNumber::decimalNumberWithMantissa(1, exponent, isNegative);
    stop_ = candidate == NSDecimalNumber::notANumber();
    if (stop_) return;
    candidate_ = candidate;
    ask(candidate);
  }

  /// 0, -10, -100, ... while they are too high; each of these is an upper bound.
  void findLower() {
    ask(candidate_);
    for (std::int16_t exponent = 1; isOpen() && said_ > 0; ++exponent) {
      upper_ = candidate_;
      askAboutPower(exponent, true);
    }
    lower_ = candidate_;
  }

  /// 10, 100, ... while they are too low.
  void findUpper() {
    std::int16_t exponent = 1;
    do {
      askAboutPower(exponent++, false);
    } while (isOpen() && said_ < 0);
    upper_ = candidate_;
  }

  [[nodiscard]] Optional midpoint() const {
    const auto half = NSDecimalNumber::decimalNumberWithMantissa(5, -1, false);
    return upper_->decimalNumberByAdding(*lower_).decimalNumberByMultiplyingBy(half, behavior_);
  }

  void bisect() {
    while (isOpen()) {
      const Optional middle = midpoint();
      if (!middle) return;
      ask(*middle);
      if (middle->isEqualToNumber(*upper_) || middle->isEqualToNumber(*lower_)) {
        answer_ = isOutside(*middle) ? std::nullopt : middle;
        return;
      }
      if (stop_) answer_.reset();
      (said_ < 1 ? lower_ : upper_) = middle;
    }
  }

  /// The search came to rest at a bound of the caller's, and the target lies past it.
  [[nodiscard]] bool isOutside(const NSDecimalNumber& middle) const {
    return (said_ == -1 && callersUpper_ && middle.isEqualToNumber(*callersUpper_)) ||
           (said_ == 1 && callersLower_ && middle.isEqualToNumber(*callersLower_));
  }

  const Optional& callersLower_;
  const Optional& callersUpper_;
  Optional lower_;
  Optional upper_;
  const NSDecimalNumberBehaviors* behavior_;
  const ORLFDecimalSolverTest& test_;
  /// The last one tried of the powers of ten; zero comes first.
  NSDecimalNumber candidate_;
  NSInteger said_ = 0;
  bool stop_ = false;
  Optional answer_;
};

}  // namespace

Optional aproximateValueUsingLinearRegressionLowerBound(
    const Optional& lowerBound, const Optional& upperBound,
    const NSDecimalNumberBehaviors* roundingBehavior, const ORLFDecimalSolverTest& test) {
  if (lowerBound && upperBound) {
    const NSComparisonResult order = lowerBound->compare(*upperBound);
    if (order == NSOrderedDescending) return std::nullopt;
    if (order == NSOrderedSame) return lowerBound;
  }
  return Search(lowerBound, upperBound, roundingBehavior, test).solve();
}

}  // namespace ORLFoundation
