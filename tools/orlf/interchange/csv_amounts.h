/// What the amounts of a bank's table tell: their decimal mark, and how those below zero are
/// written.
#pragma once

#include "interchange/csv_inference.h"
#include "interchange/csv_layout.h"

namespace orlftool {

struct AmountFindings {
  Finding decimalMark;
  Finding sign;
};

/// The findings on the amounts of a layout's rows of data. A column that holds the balance behind
/// another is no column of amounts where the sign is asked for.
[[nodiscard]] AmountFindings amountFindings(const CsvLayout& layout);

}  // namespace orlftool
