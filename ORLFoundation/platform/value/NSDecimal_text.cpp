
#include <ORLFoundation/platform/value/NSDecimal.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/value/internal/DecimalRounding.h>
#include <ORLFoundation/platform/value/internal/TwoWordDivision.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstddef>
#include <cstring>

namespace ORLFoundation {

using namespace internal::value;

namespace {

/// Far past every exponent that gives a number, and far from the end of the integers.
constexpr std::int64_t kFarthestExponent = 1'000'000'000;
constexpr std::int64_t kExponentEnd = 100'000'000'000'000'000;

using internal::base::isDigit;

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
    while (at_ != end_) {
      if (pending_ == kMostShortDigits) flush();
      if (hasBlock() ? takeBlock() < kBlock : !takeDigit()) break;
    }
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
  /// Digits that are read at a time, a byte of a word for each.
  static constexpr int kBlock = 8;

  /// Whether so many bytes are left, of which the first becomes the lowest of a word, and there is
  /// room for their digits.
  [[nodiscard]] bool hasBlock() const noexcept {
    return std::endian::native == std::endian::little && end_ - at_ >= kBlock &&
           pending_ + kBlock <= kMostShortDigits && !isFull_;
  }

  /// Appends the digits that the next bytes begin with; gives their count.
  int takeBlock() noexcept {
    constexpr std::uint64_t kEach = 0x0101010101010101;
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, at_, sizeof bytes);
    const std::uint64_t digits = bytes ^ (kEach * '0');
    // The top bit of each byte above 9; what a carry adds lies behind the first of them.
    const std::uint64_t others = ((digits + kEach * 0x76) | digits) & (kEach * 0x80);
    const int count = std::countr_zero(others) / 8;
    if (count == 0) return 0;
    const std::uint64_t value = valueOfDigits(digits << 8 * (kBlock - count));
    chunk_ = chunk_ * shortPowerOfTen(count) + value;
    pending_ += count;
    at_ += count;
    return count;
  }

  /// Of eight bytes from 0 to 9, the lowest of which is the first digit: pairs, then fours, then
  /// all.
  [[nodiscard]] static std::uint64_t valueOfDigits(std::uint64_t digits) noexcept {
    constexpr std::uint64_t kFirstOfFour = 0x000000FF000000FF;
    const std::uint64_t pairs = digits * 10 + (digits >> 8);
    const std::uint64_t upper = (pairs & kFirstOfFour) * ((std::uint64_t{1'000'000} << 32) + 100);
    const std::uint64_t lower =
        ((pairs >> 16) & kFirstOfFour) * ((std::uint64_t{10'000} << 32) + 1);
    return (upper + lower) >> 32;
  }

  bool takeDigit() noexcept {
    if (!isDigit(*at_)) return false;
    const auto digit = static_cast<unsigned>(*at_++ - '0');
    if (isFull_) {
      dropDigit(digit);
    } else {
      chunk_ = chunk_ * 10 + digit;
      ++pending_;
    }
    return true;
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
  std::memset(middle, '0', kChunk - length);
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

NSDecimal NSDecimal::parse(std::string_view text, std::string_view decimalMark) noexcept {
  Reader reader(text);
  const bool negative = reader.takeSign();
  std::int64_t digits = reader.takeDigits();
  std::int64_t places = 0;
  if (reader.take(decimalMark)) digits += places = reader.takeDigits();
  if (digits == 0) return notANumber();
  std::int64_t exponent = 0;
  if ((reader.take('e') || reader.take('E')) && !reader.takeExponent(exponent)) return notANumber();
  if (!reader.isAtEnd()) return notANumber();
  exponent += reader.surplus() - places;
  const Wide mantissa = reader.mantissa();
  if (mantissa == 0) return {};
  if (reader.dropped() == Dropped::kNothing && exponent >= kSmallestExponent &&
      exponent <= kLargestExponent)
    return {mantissa, static_cast<int>(exponent), negative};
  const auto place = static_cast<int>(std::clamp(exponent, -kFarthestExponent, kFarthestExponent));
  return rounded({{mantissa, 0}, place, negative, reader.dropped()}, NSRoundPlain).value;
}

char* NSDecimal::writeTo(char* text) const noexcept {
  if (isNaN()) return std::copy_n("NaN", 3, text);
  if (isZero()) return *text = '0', text + 1;
  if (negative_) *text++ = '-';
  char* end = writeDigits(text, mantissa());
  int exponent = exponent_;
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
