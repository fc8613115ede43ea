/// Dated cash flows from comma-separated text: a date and an amount on each line.
///
///     date,amount
///     2024-01-01,-1000
///     2025-01-01,"1,100.50"
///
/// The first line may name the columns: it does when it begins with no digit and its second field
/// is no amount. Fields may stand in double quotes, with doubled quotes for one; blanks around a
/// field, an empty third one, empty lines and a byte order mark at the start are passed over. The
/// line of a message is that on which the row begins. Amounts are decimal texts
/// whose digits before the point may be grouped in threes by commas.
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct CashFlow {
  ORLFoundation::NSDate date;
  ORLFoundation::NSDecimalNumber amount;
};

/// "1100.5", "-1,100.50"; nil for other text, for groups of other lengths too.
[[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> readGroupedDecimal(
    std::string_view text);

/// The flows of a text in their order. Local dates are those of the calendar. `name` stands for the
/// file in messages. Throws JobFailure with one line, "name:line: field: expected ..., got ...".
[[nodiscard]] std::vector<CashFlow> parseCashFlows(std::string_view text, const std::string& name,
                                                   const ORLFoundation::NSCalendar& calendar);

}  // namespace orlftool
