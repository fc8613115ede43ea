/// Random decimals, for tests that sweep them.
#pragma once

#include <ORLFoundation/platform/value/NSDecimal.h>

#include <random>

namespace orlftest {

using namespace ORLFoundation;

/// Random decimals of all lengths, near to one another or anywhere.
class RandomDecimals {
 public:
  explicit RandomDecimals(unsigned seed) : engine_(seed) {}

  NSInteger between(NSInteger from, NSInteger to) {
    return std::uniform_int_distribution<NSInteger>(from, to)(engine_);
  }

  NSDecimal decimalWithExponentBetween(NSInteger from, NSInteger to) {
    return {mantissa(), static_cast<int>(between(from, to)), between(0, 1) == 1};
  }
  NSDecimal moneySized() {
    return {static_cast<Mantissa>(between(0, 9999999999)), static_cast<int>(between(-6, 0)),
            between(0, 1) == 1};
  }
  NSDecimal ofTwoPlaces() {
    return {static_cast<Mantissa>(between(0, 999999999)), -2, between(0, 1) == 1};
  }
  NSDecimal any() {
    switch (between(0, 4)) {
      case 0:
        return moneySized();
      case 1:
      case 2:
        return decimalWithExponentBetween(-20, 5);
      case 3:
        return decimalWithExponentBetween(-60, 40);
      default:
        return decimalWithExponentBetween(-128, 127);
    }
  }
  NSRoundingMode mode() { return static_cast<NSRoundingMode>(between(0, 3)); }

 private:
  using Mantissa = NSDecimal::Mantissa;

  /// Often with runs of zeros and nines, where carries and ties are.
  Mantissa mantissa() {
    const NSInteger digits = between(1, NSDecimal::kMostDigits);
    const NSInteger kind = between(0, 3);
    Mantissa value = 0;
    for (NSInteger i = 0; i < digits; ++i) {
      const NSInteger digit = kind == 0   ? (between(0, 3) == 0 ? 5 : 0)
                              : kind == 1 ? 9
                                          : between(0, 9);
      value = value * 10 + static_cast<Mantissa>(digit);
    }
    return value;
  }

  std::mt19937_64 engine_;
};

}  // namespace orlftest
