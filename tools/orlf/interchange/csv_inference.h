/// How a bank's table is to be read: its encoding, separator, header, order of dates, decimal mark
/// and signs. Each is told with the row that decided it, or asked for with the reason why no row
/// did; nothing is guessed.
#pragma once

#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/time/NSCalendar.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct Finding {
  std::string question;  // "separator", "header", "date order", "decimal mark", "sign", "encoding"
  std::string answer;    // empty where it has to be asked
  std::string reason;    // what was seen, or what was not
  std::uint64_t line = 0;  // of the row that decided, 0 for none
};

/// The findings on a file's bytes, in the order of the questions.
///
/// - separator: comma, semicolon or tab. The one that leaves a column of dates; where several or
///   none do, the one that parts most rows, if it is the only one.
/// - header: the line number of the row above the first one with a date, or "none".
/// - date order: dmy, mdy or ymd.
/// - decimal mark: point or comma.
/// - sign: minus, trailing minus, brackets, or "columns A and B" for money out and in that stand in
///   columns of their own.
/// - encoding: that of `--encoding`.
[[nodiscard]] std::vector<Finding> inferTable(
    std::string_view bytes, const std::shared_ptr<ORLFoundation::NSCalendar>& calendar);

}  // namespace orlftool
