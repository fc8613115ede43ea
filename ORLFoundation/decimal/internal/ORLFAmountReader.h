/// Reads an amount character by character into a clean number text.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation::internal::decimal {

class ORLFAmountReader {
 public:
  /// `text` is UTF-8; characters are counted in UTF-16 units.
  explicit ORLFAmountReader(std::string_view text);

  /// nil when the text is no amount.
  [[nodiscard]] std::optional<NSDecimalNumber> read();

 private:
  /// The separators met, "," and "."; none of them is in the buffer.
  struct Separators {
    std::size_t lastPosition = 0;
    char16_t last = 0;
    std::size_t count = 0;
    bool mixed = false;
    /// Digits after the last one, those of an exponent left out.
    std::size_t digitsSince = 0;
  };
  /// A fraction such as 1/2. Its digits stand in the buffer without the "/".
  struct Fraction {
    NSDecimalNumber value;
    std::size_t start = 0;
    std::size_t length = 0;
    bool met = false;
  };

  // One for each kind of character; false ends the reading without an amount.
  bool take(std::size_t index);
  bool takeDigit(char digit);
  bool takeSeparator(char16_t separator);
  bool takeExponent();
  bool takeSlash(std::size_t index);
  bool takeMinus();
  bool takePlus();
  bool takeOther(std::size_t index) const;

  /// The code point that begins here; a second half, which no letter or space is, for itself.
  [[nodiscard]] char32_t codePointAt(std::size_t index) const;
  void rememberEnds(std::size_t index);

  void placeFraction();
  void placePoint();

  /// The last character of the buffer, 0 when it is empty.
  [[nodiscard]] char previous() const noexcept { return buffer_.empty() ? '\0' : buffer_.back(); }

  std::u16string text_;
  std::string buffer_;
  char16_t first_ = 0;
  char16_t last_ = 0;
  bool inExponent_ = false;
  Separators separators_;
  Fraction fraction_;
};

}  // namespace ORLFoundation::internal::decimal
