/// What a number formatter is set to, and ICU's formats for it: one a style, made at the first need
/// and kept, since to make one costs more than a hundred uses of it.
#pragma once

#include <ORLFoundation/platform/format/NSLocale.h>
#include <ORLFoundation/platform/format/NSNumberFormatter.h>
#include <ORLFoundation/platform/object/NSNumber.h>
#include <unicode/numfmt.h>

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace ORLFoundation::internal::format {

struct NumberSettings {
  NSNumberFormatterStyle style = NSNumberFormatterNoStyle;
  std::shared_ptr<NSLocale> locale = NSLocale::currentLocale();
  std::optional<NSInteger> minimumFractionDigits;
  std::optional<NSInteger> maximumFractionDigits;
  std::optional<bool> usesGrouping;
  std::optional<std::string> decimalSeparator;
  std::optional<std::string> groupingSeparator;
  bool isLenient = false;
  bool generatesDecimals = false;
  bool localizesFormat = true;
  bool validatesPartialStrings = false;
  std::optional<NSNumber> minimum;
  std::optional<NSNumber> maximum;
};

/// The marks of a style whose plain numbers ("12.50", "1,234") can be read without ICU.
struct PlainMarks {
  /// What plain numbers may hold.
  enum class Reach : std::uint8_t {
    Nothing,   // every number is ICU's
    Words,     // whole digits, of which no sign follows: numbers in words
    Digits,    // whole digits
    Fractions  // with decimal marks, and grouping where there is a mark for it
  };
  Reach reach = Reach::Nothing;
  char16_t decimal = 0;
  char16_t grouping = 0;  // 0 for none
  int exponent = 0;       // -2 for percentages
};

class NumberFormats {
 public:
  /// Changes are followed by `changed...` below.
  NumberSettings settings;

  /// ICU's format of the style.
  [[nodiscard]] icu::NumberFormat& current() const;
  [[nodiscard]] const PlainMarks& plainMarks() const;
  /// Numbers of the style are read from words: also where the locale's digits are such (roman).
  [[nodiscard]] bool readsWords() const;
  /// Such, but no ordinals: these are digits with an ending.
  [[nodiscard]] bool spellsOut() const;

  /// The locale or a separator: formats are made anew.
  void changedLocale() noexcept;
  /// Digits, grouping or leniency: the formats that there are take it on.
  void changedDetails();

 private:
  struct Entry {
    std::unique_ptr<icu::NumberFormat> format;
    PlainMarks plain;
    bool readsWords = false;
    // As the style has them in the locale.
    std::int32_t minimumFractionDigits = 0, maximumFractionDigits = 0;
  };
  static constexpr std::size_t kStyles = 7;

  [[nodiscard]] std::size_t index() const noexcept;
  [[nodiscard]] Entry& entry() const;
  [[nodiscard]] Entry make(std::size_t style) const;
  void apply(Entry& entry, std::size_t style) const;
  [[nodiscard]] PlainMarks marksOf(const icu::NumberFormat& format, std::size_t style) const;

  mutable std::array<Entry, kStyles> entries_;
};

}  // namespace ORLFoundation::internal::format
