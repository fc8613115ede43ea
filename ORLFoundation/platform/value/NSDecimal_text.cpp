
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <ORLFoundation/platform/value/internal/TwoWordDivision.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstring>

namespace ORLFoundation {

using namespace internal::value;

namespace {

/// Writes the digits of a mantissa; gives their end.
char* writeDigits(char* text, Wide mantissa) noexcept {
  constexpr std::size_t kChunk = kMostShortDigits;
  char* const limit = text + NSDecimal::kMostDigits;
  if (highWord(mantissa) == 0) return std::to_chars(text, limit, lowWord(mantissa)).ptr;
  const auto parts =
      divideTwoWords(highWord(mantissa), lowWord(mantissa), shortPowerOfTen(kMostShortDigits));
  char* const middle = std::to_chars(text, limit, parts.quotient).ptr;
  char low[kChunk];
  const char* const lowEnd = std::to_chars(low, low + kChunk, parts.remainder).ptr;
  const auto length = static_cast<std::size_t>(lowEnd - low);
  std::memset(middle, '0', kChunk);
  std::memcpy(middle + kChunk - length, low, length);
  return middle + kChunk;
}

/// Puts a point before the last digits, of which there are `places` after it.
char* insertPoint(char* digits, char* end, std::size_t places) noexcept {
  const auto count = static_cast<std::size_t>(end - digits);
  const std::size_t whole = count > places ? count - places : 0;
  // Zeros that the mantissa lacks, and one before the point.
  const std::size_t lead = whole == 0 ? places - count + 1 : 0;
  std::memmove(digits + whole + lead + 1, digits + whole, count - whole);
  std::memset(digits + whole, '0', lead + 1);
  digits[whole == 0 ? 1 : whole] = '.';
  return end + lead + 1;
}

}  // namespace

char* NSDecimal::writeTo(char* text) const noexcept {
  if (isNaN()) return std::copy_n("NaN", 3, text);
  if (isZero()) return *text = '0', text + 1;
  if (isNegative()) *text++ = '-';
  char* end = writeDigits(text, mantissa());
  int exponent = this->exponent();
  for (; exponent < 0 && end[-1] == '0'; ++exponent) --end;
  if (exponent < 0) return insertPoint(text, end, static_cast<std::size_t>(-exponent));
  std::memset(end, '0', static_cast<std::size_t>(exponent));
  return end + exponent;
}

std::string NSDecimal::stringValue() const {
  char text[kLongestText];
  return {text, writeTo(text)};
}

}  // namespace ORLFoundation
