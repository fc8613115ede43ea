/// A text that numbers are read from in place, one after the other: its UTF-16 units, made once,
/// and how much of it may still be looked at as words.
///
///     NSNumberText text("12 and 13");
///     NSRange range{7, 2};
///     formatter->getObjectValue(&value, text, &range);  // 13
#pragma once

#include <ORLFoundation/platform/value/NSRange.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace ORLFoundation {

class NSNumberText {
 public:
  /// A number that takes more UTF-16 units than this is none, in digits or in words.
  static constexpr NSUInteger kMostUnitsOfNumber = 256;
  /// So many units of one text are looked at as words (styles spelled out and ordinal), counted
  /// once for each number that may begin there; a lenient formatter counts each sixteen times.
  /// Numbers in words behind them are none. To read words costs some ten microseconds a unit,
  /// leniently hundreds.
  static constexpr NSUInteger kMostUnitsInWords = 8192;

  /// Of UTF-8, where each broken sequence of bytes becomes U+FFFD.
  explicit NSNumberText(std::string_view text);
  explicit NSNumberText(std::u16string units) : long_(std::move(units)), units_(long_) {}
  NSNumberText(const NSNumberText&) = delete;
  NSNumberText& operator=(const NSNumberText&) = delete;

  [[nodiscard]] std::u16string_view units() const noexcept { return units_; }
  /// All of it.
  [[nodiscard]] NSRange range() const noexcept { return {0, units_.size()}; }
  /// A range cut to what the text holds of it.
  [[nodiscard]] NSRange rangeWithin(NSRange range) const noexcept;
  /// Takes units from those that may be looked at as words; false when so many are not left.
  bool spendUnitsInWords(NSUInteger count) noexcept;

 private:
  std::array<char16_t, 64> short_ = {};  // Of texts that fit, so that an amount allocates nothing.
  std::u16string long_;
  std::u16string_view units_;
  NSUInteger unitsInWordsLeft_ = kMostUnitsInWords;
};

}  // namespace ORLFoundation
