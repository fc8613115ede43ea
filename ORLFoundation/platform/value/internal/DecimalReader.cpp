#include <ORLFoundation/platform/value/internal/DecimalReader.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace ORLFoundation::internal::value {
namespace {

/// Far past every exponent that gives a number, and far from the end of the integers.
constexpr std::int64_t kFarthestExponent = 1'000'000'000;
constexpr std::int64_t kExponentEnd = 100'000'000'000'000'000;

using base::isDigit;

/// Reads the parts of a decimal's text one after the other.
class Reader {
 public:
  explicit Reader(std::string_view text) noexcept : at_(text.data()), end_(at_ + text.size()) {}

  [[nodiscard]] bool isAtEnd() const noexcept { return at_ == end_; }

  bool take(char c) noexcept {
    if (at_ == end_ || *at_ != c) return false;
    ++at_;
    return true;
  }

  void skip(std::string_view mark) noexcept {
    if (std::string_view(at_, static_cast<std::size_t>(end_ - at_)).starts_with(mark))
      at_ += mark.size();
  }

  /// true for a minus; a plus is taken too.
  bool takeSign() noexcept {
    if (take('-')) return true;
    take('+');
    return false;
  }

  /// Appends a run of digits to the mantissa; gives their count.
  std::int64_t takeDigits() noexcept {
    const char* const start = at_;
    if (chunk_ == 0 && mantissa_ == 0)
      at_ = std::find_if(at_, end_, [](char c) { return c != '0'; });
    while (at_ != end_ && isDigit(*at_)) takeDigit(static_cast<unsigned>(*at_++ - '0'));
    return at_ - start;
  }

  /// false when there is no digit.
  bool takeExponent(std::int64_t& exponent) noexcept {
    const bool negative = takeSign();
    const char* const start = at_;
    std::int64_t value = 0;
    for (; at_ != end_ && isDigit(*at_); ++at_)
      value = std::min(value * 10 + (*at_ - '0'), kExponentEnd);
    exponent = negative ? -value : value;
    return at_ != start;
  }

  /// What `takeDigits` has read; digits past the 38th only count by their place.
  [[nodiscard]] Wide mantissa() const noexcept {
    return mantissa_ * shortPowerOfTen(pending_) + chunk_;
  }
  [[nodiscard]] std::int64_t surplus() const noexcept { return surplus_; }
  /// What is past the 38th digit is half a unit of that digit, or more.
  [[nodiscard]] bool isHalfOrMore() const noexcept { return isHalfOrMore_; }

 private:
  void takeDigit(unsigned digit) noexcept {
    if (pending_ == kMostShortDigits) flush();
    if (isFull_) {
      dropDigit(digit);
    } else {
      chunk_ = chunk_ * 10 + digit;
      ++pending_;
    }
  }

  void flush() noexcept {
    isFull_ = mantissa_ != 0;
    if (isFull_) return;
    mantissa_ = chunk_;
    chunk_ = 0;
    pending_ = 0;
  }

  void dropDigit(unsigned digit) noexcept {
    if (surplus_++ == 0) isHalfOrMore_ = digit >= 5;
  }

  const char* at_;
  const char* const end_;
  Wide mantissa_ = 0;
  std::uint64_t chunk_ = 0;
  int pending_ = 0;
  bool isFull_ = false;
  std::int64_t surplus_ = 0;
  bool isHalfOrMore_ = false;
};

}  // namespace

NSDecimal readDecimal(std::string_view text, std::string_view decimalMark) noexcept {
  Reader reader(text);
  const bool negative = reader.takeSign();
  const std::int64_t digits = reader.takeDigits();
  reader.skip(decimalMark);
  // None where there is no mark: no digit stands behind the digits then.
  const std::int64_t places = reader.takeDigits();
  if (digits + places == 0) return NSDecimal::notANumber();
  std::int64_t exponent = 0;
  if ((reader.take('e') || reader.take('E')) && !reader.takeExponent(exponent))
    return NSDecimal::notANumber();
  if (!reader.isAtEnd()) return NSDecimal::notANumber();
  exponent += reader.surplus() - places;
  const Wide mantissa = reader.mantissa();
  if (mantissa == 0) return {};
  if (!reader.isHalfOrMore() && exponent >= NSDecimal::kSmallestExponent &&
      exponent <= NSDecimal::kLargestExponent)
    return {mantissa, static_cast<int>(exponent), negative};
  const auto place = static_cast<int>(std::clamp(exponent, -kFarthestExponent, kFarthestExponent));
  const Dropped below = reader.isHalfOrMore() ? Dropped::kHalf : Dropped::kNothing;
  return rounded({{mantissa, 0}, place, negative, below}, NSRoundPlain).value;
}

}  // namespace ORLFoundation::internal::value
