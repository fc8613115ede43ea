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
/// What one word and what two words count to.
constexpr std::uint64_t kWord = 100'000'000;
constexpr Wide kTwoWords = Wide{kWord} * kWord;

/// What a text of digits with at most one mark reads as.
struct Amount {
  Wide mantissa = 0;
  std::size_t places = 0;
  bool isRead = false;
};

/// Takes the byte at a bit of a word out: those before it, of all words, move up by one.
template <std::size_t kWords>
void takeOut(std::array<std::uint64_t, kWords>& words, std::size_t at, int bit) noexcept {
  const std::uint64_t kept = ~std::uint64_t{0} << bit << 8;
  words[at] = (words[at] & kept) | ((words[at] << 8) & ~kept);
  for (; at > 0; --at) {
    words[at] |= words[at - 1] >> 56;
    words[at - 1] <<= 8;
  }
}

template <std::size_t kWords>
Wide valueOf(const std::array<std::uint64_t, kWords>& words) noexcept {
  if constexpr (kWords == 1) return valueOfDigits(words[0]);
  if constexpr (kWords == 2) return valueOfDigits(words[0]) * kWord + valueOfDigits(words[1]);
  if constexpr (kWords == kMostWords) {
    const std::uint64_t middle = valueOfDigits(words[1]) * kWord + valueOfDigits(words[2]);
    const std::uint64_t last = valueOfDigits(words[3]) * kWord + valueOfDigits(words[4]);
    return (Wide{valueOfDigits(words[0])} * kTwoWords + middle) * kTwoWords + last;
  }
}

/// The digits of a text that fits the words.
template <std::size_t kWords>
Amount amountOf(const char* text, std::size_t size, char mark) noexcept {
  auto words = digitWords<kWords>(text, size);
  std::size_t marked = kWords;
  std::size_t places = 0;
  for (std::size_t i = 0; i < kWords; ++i) {
    const std::uint64_t others = othersIn(words[i]);
    if (others == 0) continue;
    const int bit = std::countr_zero(others) & ~7;
    const auto other = static_cast<char>((words[i] >> bit & 0xFF) ^ '0');
    if (marked != kWords || other != mark || (others & (others - 1)) != 0) return {};
    marked = i;
    places = (kWords - i) * kDigitsOfWord - static_cast<std::size_t>(bit) / 8 - 1;
    takeOut(words, i, bit);
  }
  const std::size_t digits = size - (marked == kWords ? 0 : 1);
  if (digits == 0 || digits > NSDecimal::kMostDigits) return {};
  return {valueOf(words), places, true};
}

Amount readAmount(const char* text, std::size_t size, char mark) noexcept {
  if (size <= kDigitsOfWord) return amountOf<1>(text, size, mark);
  if (size <= 2 * kDigitsOfWord) return amountOf<2>(text, size, mark);
  return amountOf<kMostWords>(text, size, mark);
}

}  // namespace

NSDecimal NSDecimal::parse(std::string_view text, std::string_view decimalMark) noexcept {
  if (!hasDigitWords || text.empty() || decimalMark.size() != 1)
    return readDecimal(text, decimalMark);
  const bool isNegative = text[0] == '-';
  const std::size_t sign = isNegative || text[0] == '+' ? 1 : 0;
  const std::size_t size = text.size() - sign;
  if (size == 0 || size > kMostWords * kDigitsOfWord) return readDecimal(text, decimalMark);
  const Amount amount = readAmount(text.data() + sign, size, decimalMark[0]);
  if (!amount.isRead) return readDecimal(text, decimalMark);
  if (amount.mantissa == 0) return {};
  return {amount.mantissa, -static_cast<int>(amount.places), isNegative};
}

}  // namespace ORLFoundation
