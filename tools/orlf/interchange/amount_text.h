/// Amounts as banks write them: digits in groups with a mark before the fraction, a sign at either
/// end or brackets, a currency beside them. What the mark is, one amount may leave open.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

enum class DecimalMark : std::uint8_t { Point, Comma };
enum class AmountSign : std::uint8_t { None, Plus, Minus, TrailingMinus, Brackets };

class AmountText {
 public:
  /// nil for a text that holds anything but one amount under either mark: "5 DR", "12:30",
  /// "1.2.3", two signs, more than 200 bytes.
  [[nodiscard]] static std::optional<AmountText> parse(std::string_view text);

  [[nodiscard]] AmountSign sign() const { return sign_; }
  [[nodiscard]] bool isNegative() const {
    return sign_ != AmountSign::None && sign_ != AmountSign::Plus;
  }
  [[nodiscard]] bool hasCurrency() const { return hasCurrency_; }
  /// Whether letters stand right beside the digits or their sign, as in "INV-1".
  [[nodiscard]] bool hasTightLetters() const { return hasTightLetters_; }
  /// Whether a point or a comma stands in it.
  [[nodiscard]] bool hasMark() const { return digits_.find_first_of(".,") != std::string::npos; }
  /// Whether the last of its digits is followed by a mark.
  [[nodiscard]] bool endsInMark() const { return digits_.ends_with('.') || digits_.ends_with(','); }
  [[nodiscard]] bool isZero() const { return digits_.find_first_of("123456789") == digits_.npos; }

  /// Whether it is an amount under a mark. Groups have three digits, in India all but the last two,
  /// and the first of them is not 0: "1,234" fits both marks, "1,23" and "0,234" a comma alone,
  /// "1,234,567" a point alone.
  [[nodiscard]] bool fits(DecimalMark mark) const { return plain(mark).has_value(); }
  /// nil where it does not fit the mark or has more than 38 digits.
  [[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> value(DecimalMark mark) const;

 private:
  AmountText() = default;
  bool takeSign(std::string_view& text);
  bool takeCurrency(std::string_view& text);
  bool takeDigits(std::string_view text);
  /// Digits with a point, without a sign.
  [[nodiscard]] std::optional<std::string> plain(DecimalMark mark) const;

  AmountSign sign_ = AmountSign::None;
  bool hasCurrency_ = false;
  bool hasTightLetters_ = false;
  std::string digits_;  // with points and commas; what else parts groups is an apostrophe
};

}  // namespace orlftool
