

#include <ORLFoundation/platform/archive/internal/DecimalCoding.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ORLFoundation::internal::archive {
namespace {

using Mantissa = NSDecimal::Mantissa;

constexpr std::size_t kWords = 8;
constexpr std::int64_t kLittleEndian = 1;
constexpr std::int64_t kBigEndian = 2;

std::size_t wordsOf(Mantissa mantissa) noexcept {
  std::size_t words = 0;
  for (; mantissa != 0; mantissa >>= 16) ++words;
  return words;
}

NSData bytesOf(Mantissa mantissa) {
  std::vector<std::uint8_t> bytes(2 * kWords);
  for (std::uint8_t& byte : bytes) {
    byte = static_cast<std::uint8_t>(mantissa);
    mantissa >>= 8;
  }
  return NSData(std::move(bytes));
}

Mantissa mantissaOf(const NSData& data, std::size_t words, bool isBigEndian) {
  Mantissa mantissa = 0;
  for (std::size_t word = words; word-- > 0;) {
    const auto first = data.bytes()[2 * word];
    const auto second = data.bytes()[2 * word + 1];
    const unsigned value = isBigEndian ? first * 256U + second : second * 256U + first;
    mantissa = mantissa << 16 | value;
  }
  return mantissa;
}

// A mantissa of 128 bits can have one digit more than a decimal holds.
std::optional<NSDecimal> decimalOf(Mantissa mantissa, std::int64_t exponent, bool isNegative) {
  if (mantissa >= NSDecimal::kMantissaEnd) {
    mantissa = mantissa / 10 + (mantissa % 10 >= 5 ? 1 : 0);
    ++exponent;
  }
  if (exponent < NSDecimal::kSmallestExponent || exponent > NSDecimal::kLargestExponent)
    return std::nullopt;
  return NSDecimal(mantissa, static_cast<int>(exponent), isNegative);
}

}  // namespace

void encodeDecimal(const NSDecimal& decimal, NSCoder& coder) {
  const bool isNumber = !decimal.isNaN();
  const NSDecimal compact = isNumber ? decimal.compacted() : NSDecimal::zero();
  const Mantissa mantissa = compact.mantissa();
  coder.encodeInt32(mantissa == 0 ? 0 : compact.exponent(), "NS.exponent");
  coder.encodeInt32(static_cast<std::int32_t>(wordsOf(mantissa)), "NS.length");
  coder.encodeBool(!isNumber || compact.isNegative(), "NS.negative");
  coder.encodeBool(mantissa != 0, "NS.compact");
  coder.encodeInt32(static_cast<std::int32_t>(kLittleEndian), "NS.mantissa.bo");
  coder.encodeBytes(bytesOf(mantissa), "NS.mantissa");
}

id decodeDecimal(NSCoder& coder) {
  const std::int64_t exponent = coder.decodeInt64("NS.exponent");
  const std::int64_t words = coder.decodeInt64("NS.length");
  const bool isNegative = coder.decodeBool("NS.negative");
  const std::int64_t order = coder.decodeInt64("NS.mantissa.bo");
  const auto data = coder.decodeBytes("NS.mantissa");
  const bool isWhole =
      words >= 0 && words <= static_cast<std::int64_t>(kWords) &&
      (words == 0 || (data && data->length() >= static_cast<NSUInteger>(2 * words)));
  if (!isWhole || order < 0 || order > kBigEndian) {
    coder.failWithError("A decimal is damaged.");
    return {};
  }
  if (words == 0) return isNegative ? NSDecimal::notANumber() : NSDecimal::zero();
  const Mantissa mantissa = mantissaOf(*data, static_cast<std::size_t>(words), order == kBigEndian);
  const auto decimal = decimalOf(mantissa, exponent, isNegative);
  if (!decimal) coder.failWithError("A decimal is out of range.");
  return decimal;
}

}  // namespace ORLFoundation::internal::archive
