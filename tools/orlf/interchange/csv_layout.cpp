#include "interchange/csv_layout.h"

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <algorithm>

#include "interchange/cell_shapes.h"

namespace orlftool {

using namespace ORLFoundation;

CsvLayout::CsvLayout(std::string_view text, CsvSeparator separator) : separator_(separator) {
  orlfEnumerateTabularRows(text, separator.character, [this](const ORLFTabularRow& row, bool&) {
    rows_.push_back({{row.fields.begin(), row.fields.end()}, row.lineNumber});
    columns_ = std::max(columns_, row.fields.size());
  });
  findDateColumns();
  if (!dateColumns_.empty()) findData();
}

bool CsvLayout::parts() const {
  const auto parted = std::count_if(rows_.begin(), rows_.end(),
                                    [](const CsvRow& row) { return row.cells.size() > 1; });
  return 2 * static_cast<std::size_t>(parted) > rows_.size();
}

std::string_view CsvLayout::cell(const CsvRow& row, std::size_t column) {
  return column < row.cells.size() ? std::string_view(row.cells[column]) : std::string_view();
}

void CsvLayout::findDateColumns() {
  std::vector<std::size_t> dates(columns_);
  std::vector<std::size_t> counted(columns_);
  for (const CsvRow& row : rows_) {
    for (std::size_t column = 0; column < columns_; ++column) {
      const bool isDate = dateShapeOf(cell(row, column)).has_value();
      dates[column] += isDate ? 1 : 0;
      counted[column] += dates[column] > 0 ? 1 : 0;
    }
  }
  const std::size_t most = columns_ == 0 ? 0 : *std::max_element(dates.begin(), dates.end());
  for (std::size_t column = 0; column < columns_ && most > 0; ++column)
    if (2 * dates[column] >= std::max(counted[column], most)) dateColumns_.push_back(column);
}

void CsvLayout::findData() {
  for (const CsvRow& row : rows_)
    if (dateShapeOf(cell(row, dateColumns_.front()))) data_.push_back(&row);
}

std::string columnName(std::size_t column) { return "column " + std::to_string(column + 1); }

}  // namespace orlftool
