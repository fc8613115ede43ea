#include "cli/table.h"

#include <ORLFoundation/platform/base/UTF8.h>

#include <algorithm>
#include <ostream>

namespace orlftool {

std::size_t characterCount(std::string_view text) {
  using ORLFoundation::internal::base::continuesUTF8Character;
  const auto continued = std::count_if(text.begin(), text.end(), continuesUTF8Character);
  return text.size() - static_cast<std::size_t>(continued);
}

Table::Table(std::vector<Column> columns) : columns_(std::move(columns)) {
  for (const Column& column : columns_) widths_.push_back(characterCount(column.title));
}

void Table::addRow(std::vector<std::string> cells) {
  cells.resize(columns_.size());
  for (std::size_t i = 0; i < cells.size(); ++i)
    widths_[i] = std::max(widths_[i], characterCount(cells[i]));
  rows_.push_back(std::move(cells));
}

void Table::print(std::ostream& out) const {
  std::vector<std::string> titles;
  std::vector<std::string> rules;
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    titles.push_back(columns_[i].title);
    rules.emplace_back(widths_[i], '-');
  }
  printRow(out, titles);
  printRow(out, rules);
  for (const std::vector<std::string>& row : rows_) printRow(out, row);
}

void Table::printRow(std::ostream& out, const std::vector<std::string>& cells) const {
  std::string line;
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const std::string padding(widths_[i] - characterCount(cells[i]), ' ');
    if (i > 0) line += "  ";
    line += columns_[i].alignment == kRight ? padding + cells[i] : cells[i] + padding;
  }
  while (!line.empty() && line.back() == ' ') line.pop_back();
  out << line << '\n';
}

}  // namespace orlftool
