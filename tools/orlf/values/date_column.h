/// The dates of a file's column, and the orders of day, month and year that they leave.
///
///     DateColumn column(calendar, {}, std::nullopt);
///     for (const Row& row : rows) column.add(row.date, row.line);
///     if (column.orders().size() == 1) column.read(text, column.orders().front());
#pragma once

#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

/// An order as the library numbers it, 1 to 6.
using DateOrder = ORLFoundation::NSInteger;

inline constexpr std::array<DateOrder, 6> kDateOrders{1, 2, 3, 4, 5, 6};
/// For messages.
inline constexpr std::string_view kDateOrderWords = "dmy, mdy, ymd, ydm, myd or dym";

/// "dmy" for 1, and so on; empty for what is no order.
[[nodiscard]] std::string_view wordOfDateOrder(DateOrder order);
[[nodiscard]] std::optional<DateOrder> dateOrderNamed(std::string_view word);

/// A text of a column, and the line on which it stands.
struct ColumnText {
  std::string text;
  std::uint64_t line = 0;
};

/// What a text says under an order.
struct ColumnDate {
  /// nil for a text without three numbers, for years from 101 to 999 and for a day that the
  /// calendar does not have, such as 31 February.
  std::optional<ORLFoundation::NSDate> date;
  bool isUnknownDay = false;
};

class DateColumn {
 public:
  /// Favoured orders come before others that the dates leave, the usual dmy, mdy and ymd where none
  /// is named. The year is the one by which years of two digits are read, today's without it. The
  /// calendar is shared.
  DateColumn(std::shared_ptr<ORLFoundation::NSCalendar> calendar,
             const std::vector<DateOrder>& favoured, std::optional<std::uint64_t> currentYear);

  /// Whether the text holds three numbers, which then may exclude orders.
  bool add(std::string_view text, std::uint64_t line);
  /// How many texts held three numbers.
  [[nodiscard]] std::size_t dateCount() const { return dateCount_; }

  /// The favoured of the orders that all dates fit, ascending; where they fit none of these, all
  /// that they fit.
  [[nodiscard]] std::vector<DateOrder> orders() const { return engine_.possibleDateFormats(); }
  /// The text at which an order, one of the six, was excluded; nil while all texts fit it.
  [[nodiscard]] const std::optional<ColumnText>& excludedBy(DateOrder order) const {
    return excludedBy_.at(static_cast<std::size_t>(order - 1));
  }

  [[nodiscard]] ColumnDate read(std::string_view text, DateOrder order);

 private:
  [[nodiscard]] bool isDayOf(ORLFoundation::NSDate date, std::string_view text,
                             DateOrder order) const;

  ORLFoundation::ORLFDateFormatInferenceEngine engine_;
  std::array<std::optional<ColumnText>, kDateOrders.size()> excludedBy_;
  std::size_t dateCount_ = 0;
};

}  // namespace orlftool
