// Any bytes as a decimal: what is read comes back from its text, and its sums keep the laws.
#include <ORLFoundation/platform/value/NSDecimalArithmetic.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

using namespace ORLFoundation;

void require(bool condition) {
  if (!condition) std::abort();
}

void checkLaws(const NSDecimal& left, const NSDecimal& right) {
  const NSDecimalResult sum = NSDecimalAdd(left, right);
  if (sum.error == NSCalculationNoError)
    require(NSDecimalSubtract(sum.value, right).value == left || right.isNaN());
  for (NSUInteger mode = 0; mode < 5; ++mode) {
    const auto rounding = static_cast<NSRoundingMode>(mode);
    static_cast<void>(NSDecimalMultiply(left, right, rounding));
    static_cast<void>(NSDecimalDivide(left, right, rounding));
    static_cast<void>(NSDecimalPower(left, right.exponent(), rounding));
    const NSDecimal rounded = NSDecimalRound(left, right.exponent(), rounding).value;
    require(NSDecimalRound(rounded, right.exponent(), rounding).value == rounded);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t middle = text.find(' ');
  const NSDecimal left = NSDecimal::parse(text.substr(0, middle));
  require(NSDecimal::parse(left.stringValue()) == left);
  require(left.compacted() == left && left.compacted().hash() == left.hash());
  static_cast<void>(left.doubleValue());
  if (middle == std::string_view::npos) return 0;
  const NSDecimal right = NSDecimal::parse(text.substr(middle + 1));
  require(left.compare(right) == -right.compare(left));
  checkLaws(left, right);
  return 0;
}
