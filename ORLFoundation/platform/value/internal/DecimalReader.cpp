#include <ORLFoundation/platform/value/internal/DecimalReader.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

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

  bool take(std::string_view mark) noexcept {
    const auto left = static_cast<std::size_t>(end_ - at_);
    if (mark.empty() || left < mark.size() || std::memcmp(at_, mark.data(), mark.size()) != 0)
      return false;
    at_ += mark.size();
    return true;
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
  [[nodiscard]] Dropped dropped() const noexcept { return dropped_; }

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
    if (surplus_++ != 0)
      dropped_ = withMoreBelow(dropped_, digit != 0);
    else if (digit != 0)
      dropped_ = digit == 5  ? Dropped::kHalf
                 : digit < 5 ? Dropped::kBelowHalf
                             : Dropped::kAboveHalf;
  }

  const char* at_;
  const char* const end_;
  Wide mantissa_ = 0;
  std::uint64_t chunk_ = 0;
  int pending_ = 0;
  bool isFull_ = false;
  std::int64_t surplus_ = 0;
  Dropped dropped_ = Dropped::kNothing;
};

}  // namespace

NSDecimal readDecimal(std::string_view text, std::string_view decimalMark) noexcept {
  Reader reader(text);
  const bool negative = reader.takeSign();
  std::int64_t digits = reader.takeDigits();
  std::int64_t places = 0;
  if (reader.take(decimalMark)) digits += places = reader.takeDigits();
  if (digits == 0) return NSDecimal::notANumber();
  std::int64_t exponent = 0;
  if ((reader.take('e') || reader.take('E')) && !reader.takeExponent(exponent))
    return NSDecimal::notANumber();
  if (!reader.isAtEnd()) return NSDecimal::notANumber();
  exponent += reader.surplus() - places;
  const Wide mantissa = reader.mantissa();
  if (mantissa == 0) return {};
  if (reader.dropped() == Dropped::kNothing && exponent >= NSDecimal::kSmallestExponent &&
      exponent <= NSDecimal::kLargestExponent)
    return {mantissa, static_cast<int>(exponent), negative};
  const auto place = static_cast<int>(std::clamp(exponent, -kFarthestExponent, kFarthestExponent));
  return rounded({{mantissa, 0}, place, negative, reader.dropped()}, NSRoundPlain).value;
}

}  // namespace ORLFoundation::internal::value
