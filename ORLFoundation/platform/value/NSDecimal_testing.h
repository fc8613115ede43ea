/// How tests write and compare decimals.
#pragma once

#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <string_view>

namespace orlftest {

inline ORLFoundation::NSDecimal decimal(std::string_view text) {
  return ORLFoundation::NSDecimal::parse(text);
}

/// Whether two results are equal in that many digits, which is what all can promise of a quotient.
inline bool agreesIn(int digits, const ORLFoundation::NSDecimal& expected,
                     const ORLFoundation::NSDecimal& actual) {
  const ORLFoundation::NSDecimal off = ORLFoundation::NSDecimalSubtract(expected, actual).value;
  const ORLFoundation::NSDecimal size = expected.isNegative() ? expected.negated() : expected;
  const ORLFoundation::NSDecimal bound =
      ORLFoundation::NSDecimalMultiplyByPowerOf10(size, -digits).value;
  return off.compare(bound) != ORLFoundation::NSOrderedDescending &&
         off.negated().compare(bound) != ORLFoundation::NSOrderedDescending;
}

}  // namespace orlftest
