#include <ORLFoundation/platform/text/NSStringNumbers.h>

namespace ORLFoundation {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";

// Digits as a number with the sign given; ends at the nearest end of 64 bits.
NSInteger digitsValue(std::string_view digits, bool negative) noexcept {
  NSInteger value = 0;
  for (const char character : digits) {
    if (character < '0' || character > '9') break;
    const NSInteger digit = negative ? '0' - character : character - '0';
    if (__builtin_mul_overflow(value, NSInteger{10}, &value) ||
        __builtin_add_overflow(value, digit, &value)) {
      return negative ? NSIntegerMin : NSIntegerMax;
    }
  }
  return value;
}

}  // namespace

NSInteger integerValue(std::string_view text) noexcept {
  const std::size_t start = text.find_first_not_of(kWhiteSpace);
  if (start == std::string_view::npos) return 0;
  const bool negative = text[start] == '-';
  const bool sign = negative || text[start] == '+';
  return digitsValue(text.substr(start + (sign ? 1 : 0)), negative);
}

}  // namespace ORLFoundation
