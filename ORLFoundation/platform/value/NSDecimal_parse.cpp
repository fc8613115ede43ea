#include <ORLFoundation/platform/value/NSDecimal.h>

#include <ORLFoundation/platform/value/internal/DecimalReader.h>
#include <ORLFoundation/platform/value/internal/DigitWords.h>
#include <ORLFoundation/platform/value/internal/PowersOfTen.h>

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

namespace ORLFoundation {

using namespace internal::value;

namespace {

/// A mark and all digits fit so many words.
constexpr std::size_t kMostWords = 5;
/// What one word, what one word without a digit and what two words count to.
constexpr std::uint64_t kWord = 100'000'000;
constexpr std::uint64_t kWordWithMark = kWord / 10;
constexpr Wide kTwoWords = Wide{kWord} * kWord;

/// What a text of digits with at most one mark reads as.
template <class Digits>
struct Amount {
  Digits mantissa;
  std::size_t places;
  bool isRead;
};

/// A word without the one byte that is no digit, where that is the mark: those before it move up.
/// Stands where it is called, whatever else is compiled with it: a call costs a sixth of a number.
[[gnu::always_inline]] inline Amount<std::uint64_t> withoutMark(std::uint64_t word,
                                                                std::uint64_t others,
                                                                char mark) noexcept {
  const int bit = std::countr_zero(others) & ~7;
  const auto other = static_cast<char>((word >> bit & 0xFF) ^ '0');
  if (other != mark || (others & (others - 1)) != 0) return {};
  const std::uint64_t kept = ~std::uint64_t{0} << bit << 8;
  const std::uint64_t digits = (word & kept) | ((word << 8) & ~kept);
  return {valueOfDigits(digits), kDigitsOfWord - 1 - static_cast<std::size_t>(bit) / 8, true};
}

/// Four to eight characters.
inline Amount<std::uint64_t> readWord(const char* text, std::size_t size, char mark) noexcept {
  const std::uint64_t word = digitWord(text, size);
  const std::uint64_t others = othersIn(word);
  if (others == 0) return {valueOfDigits(word), 0, true};
  return withoutMark(word, others, mark);
}

/// Nine to sixteen characters.
inline Amount<std::uint64_t> readTwoWords(const char* text, std::size_t size, char mark) noexcept {
  const std::uint64_t first = (wordAt<std::uint64_t>(text) ^ kZeroDigits)
                              << 8 * (2 * kDigitsOfWord - size);
  const std::uint64_t last = wordAt<std::uint64_t>(text + size - kDigitsOfWord) ^ kZeroDigits;
  const std::uint64_t firstOthers = othersIn(first);
  const std::uint64_t lastOthers = othersIn(last);
  if (firstOthers == 0) {
    const std::uint64_t upper = valueOfDigits(first);
    if (lastOthers == 0) return {upper * kWord + valueOfDigits(last), 0, true};
    const auto lower = withoutMark(last, lastOthers, mark);
    return {upper * kWordWithMark + lower.mantissa, lower.places, lower.isRead};
  }
  if (lastOthers != 0) return {};
  const auto upper = withoutMark(first, firstOthers, mark);
  return {upper.mantissa * kWord + valueOfDigits(last), upper.places + kDigitsOfWord, upper.isRead};
}

using Words = std::array<std::uint64_t, kMostWords>;

/// Takes the byte at a bit of a word out: those before it, of all words, move up by one.
void takeOut(Words& words, std::size_t at, int bit) noexcept {
  const std::uint64_t kept = ~std::uint64_t{0} << bit << 8;
  words[at] = (words[at] & kept) | ((words[at] << 8) & ~kept);
  for (; at > 0; --at) {
    words[at] |= words[at - 1] >> 56;
    words[at - 1] <<= 8;
  }
}

Wide valueOf(const Words& words) noexcept {
  const std::uint64_t middle = valueOfDigits(words[1]) * kWord + valueOfDigits(words[2]);
  const std::uint64_t last = valueOfDigits(words[3]) * kWord + valueOfDigits(words[4]);
  return (Wide{valueOfDigits(words[0])} * kTwoWords + middle) * kTwoWords + last;
}

/// More than sixteen characters that fit the words.
Amount<Wide> readWords(const char* text, std::size_t size, char mark) noexcept {
  auto words = digitWords<kMostWords>(text, size);
  std::size_t marked = kMostWords;
  std::size_t places = 0;
  for (std::size_t i = 0; i < kMostWords; ++i) {
    const std::uint64_t others = othersIn(words[i]);
    if (others == 0) continue;
    const int bit = std::countr_zero(others) & ~7;
    const auto other = static_cast<char>((words[i] >> bit & 0xFF) ^ '0');
    if (marked != kMostWords || other != mark || (others & (others - 1)) != 0) return {};
    marked = i;
    places = (kMostWords - i) * kDigitsOfWord - static_cast<std::size_t>(bit) / 8 - 1;
    takeOut(words, i, bit);
  }
  if (size - (marked == kMostWords ? 0 : 1) > NSDecimal::kMostDigits) return {};
  return {valueOf(words), places, true};
}

template <class Digits>
NSDecimal decimalOf(const Amount<Digits>& amount, bool isNegative) noexcept {
  if (amount.mantissa == 0) return {};
  return {amount.mantissa, -static_cast<int>(amount.places), isNegative};
}

/// The length of a sign.
std::size_t signIn(std::string_view text) noexcept { return text[0] == '-' || text[0] == '+'; }

/// Any text but an empty one, with a mark of one byte. Stands apart, so that amounts of a few
/// digits need not save the registers that this takes.
[[gnu::noinline]] NSDecimal parseLong(std::string_view text,
                                      std::string_view decimalMark) noexcept {
  const std::size_t sign = signIn(text);
  const char* const start = text.data() + sign;
  const std::size_t size = text.size() - sign;
  if (size > kDigitsOfWord && size <= 2 * kDigitsOfWord) {
    const auto amount = readTwoWords(start, size, decimalMark[0]);
    if (amount.isRead) return decimalOf(amount, text[0] == '-');
  } else if (size > kDigitsOfWord && size <= kMostWords * kDigitsOfWord) {
    const auto amount = readWords(start, size, decimalMark[0]);
    if (amount.isRead) return decimalOf(amount, text[0] == '-');
  }
  return readDecimal(text, decimalMark);
}

}  // namespace

NSDecimal NSDecimal::parse(std::string_view text, std::string_view decimalMark) noexcept {
  if (!hasDigitWords || text.empty() || decimalMark.size() != 1)
    return readDecimal(text, decimalMark);
  const std::size_t sign = signIn(text);
  const std::size_t size = text.size() - sign;
  if (size >= kHalfWord && size <= kDigitsOfWord) {
    const auto amount = readWord(text.data() + sign, size, decimalMark[0]);
    if (amount.isRead) return decimalOf(amount, text[0] == '-');
  }
  return parseLong(text, decimalMark);
}

}  // namespace ORLFoundation
