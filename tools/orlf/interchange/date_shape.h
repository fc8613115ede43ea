/// What dates in the cells of a bank's table look like, in numbers or with a month's name. Nothing
/// is decided here that a single cell leaves open.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orlftool {

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
