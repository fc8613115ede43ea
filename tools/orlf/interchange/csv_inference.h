/// How a bank's table is to be read: its encoding, separator, header, order of dates, decimal mark
/// and signs. Each is told with the row that decided it, or asked for with the reason why no row
/// did; nothing is guessed.
#pragma once

#include <ORLFoundation/platform/time/NSCalendar.h>

#include <memory>
#include <string_view>
#include <vector>

#include "interchange/finding.h"
#include "io/byte_source.h"

namespace orlftool {

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
///
/// The bytes are read some times; memory does not grow with them. Columns behind the thousandth are
/// not judged. Throws JobFailure, with the line, for a row that the reader of tables refuses.
[[nodiscard]] std::vector<Finding> inferTable(
    const ReopenedBytes& bytes, const std::shared_ptr<ORLFoundation::NSCalendar>& calendar);
[[nodiscard]] std::vector<Finding> inferTable(
    std::string_view bytes, const std::shared_ptr<ORLFoundation::NSCalendar>& calendar);

}  // namespace orlftool
