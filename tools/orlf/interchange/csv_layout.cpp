#include "interchange/csv_layout.h"

#include <algorithm>
#include <memory>

#include "cli/failure.h"
#include "interchange/date_shape.h"
#include "io/text_input.h"

namespace orlftool {

using namespace ORLFoundation;

namespace {

constexpr std::size_t kMostColumnsJudged = 1000;

}  // namespace

void CsvText::forEachRow(char separator, const ORLFTabularRowBlock& block) const {
  TextInput input(bytes_(), encoding_);
  const auto source = [&input](std::span<char> buffer) { return input.read(buffer); };
  const auto taken = [&block](const ORLFTabularRow& row, bool& stop) {
    ORLFTabularRow judged = row;
    judged.fields = row.fields.first(std::min(row.fields.size(), kMostColumnsJudged));
    block(judged, stop);
  };
  std::shared_ptr<const NSError> error;
  if (!orlfEnumerateTabularRowsOfSource(source, separator, taken, {}, &error))
    throw JobFailure(input.name() + ": " + error->localizedDescription());
}

CsvLayout::CsvLayout(const CsvText& text, CsvSeparator separator) : separator_(separator) {
  text.forEachRow(separator.character, [this](const ORLFTabularRow& row, bool&) {
    if (rows_ == 0) firstLine_ = row.lineNumber;
    add(row.fields);
    ++rows_;
  });
  findDateColumns();
}

void CsvLayout::add(CsvFields fields) {
  partedRows_ += fields.size() > 1 ? 1 : 0;
  if (dates_.size() < fields.size()) dates_.resize(fields.size());
  for (std::size_t column = 0; column < fields.size(); ++column) {
    if (!dateShapeOf(fields[column])) continue;
    if (dates_[column].count++ == 0) dates_[column].firstRow = rows_;
  }
}

void CsvLayout::findDateColumns() {
  std::uint64_t most = 0;
  for (const Dates& dates : dates_) most = std::max(most, dates.count);
  for (std::size_t column = 0; column < dates_.size() && most > 0; ++column) {
    const Dates& dates = dates_[column];
    const std::uint64_t rows = dates.count == 0 ? 0 : rows_ - dates.firstRow;
    if (2 * dates.count >= std::max(rows, most)) dateColumns_.push_back(column);
  }
}

bool CsvLayout::isData(CsvFields fields) const {
  return !dateColumns_.empty() && dateShapeOf(cell(fields, dateColumns_.front()));
}

std::string columnName(std::size_t column) { return "column " + std::to_string(column + 1); }

}  // namespace orlftool
