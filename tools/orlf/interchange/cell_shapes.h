/// What the cells of a bank's table look like: amounts with their signs and marks, dates in numbers
/// or with a month's name. Nothing is decided here that a single cell leaves open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

enum class AmountSign : std::uint8_t { None, Plus, Minus, TrailingMinus, Brackets };

/// The marks that may part the fraction of an amount, as bits.
enum DecimalMarks : std::uint8_t { kPointMark = 1, kCommaMark = 2, kBothMarks = 3 };

struct AmountShape {
  AmountSign sign = AmountSign::None;
  std::uint8_t marks = kBothMarks;
  bool hasMark = false;      // a point or a comma
  bool hasCurrency = false;  // letters or a symbol beside the digits
  std::string core;          // digits and marks

  [[nodiscard]] bool isZero() const { return core.find_first_of("123456789") == core.npos; }
  /// In hundredths, without its sign.
  [[nodiscard]] double hundredths(DecimalMarks mark) const;
};

/// The shape of a cell that holds one amount and nothing else but a sign, brackets and a currency;
/// nil for other cells. "1,234" may have either mark, "1,23" and "1.234,5" have a comma,
/// "1,234,567" has a point.
[[nodiscard]] std::optional<AmountShape> amountShapeOf(std::string_view cell);

struct DateShape {
  /// Three numbers with slashes between, in the cell's order; empty for a date with a month's name.
  std::string numbers;
  /// The orders (1 dmy, 2 mdy, 3 ymd, 5 myd) that a date with a name fits, as bits 1 << order.
  std::uint8_t namedOrders = 0;
};

/// The shape of a cell that holds a date, perhaps with a time behind it; nil for other cells.
/// Numbers stand between slashes, points or dashes, or are eight digits with a year from 1900 to
/// 2099. Months have English names.
[[nodiscard]] std::optional<DateShape> dateShapeOf(std::string_view cell);

}  // namespace orlftool
