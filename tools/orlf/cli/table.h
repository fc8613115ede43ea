/// A table for a terminal: columns as wide as their widest cell, two blanks between them.
#pragma once

#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

class Table {
 public:
  enum Alignment { kLeft, kRight };
  struct Column {
    std::string title;
    Alignment alignment = kLeft;
  };

  explicit Table(std::vector<Column> columns);

  /// One cell a column. Missing cells stay empty, further ones are dropped.
  void addRow(std::vector<std::string> cells);
  /// Titles, a rule below them, the rows; no line ends in blanks.
  void print(std::ostream& out) const;

 private:
  void printRow(std::ostream& out, const std::vector<std::string>& cells) const;

  std::vector<Column> columns_;
  std::vector<std::size_t> widths_;
  std::vector<std::vector<std::string>> rows_;
};

/// Characters of a UTF-8 text.
[[nodiscard]] std::size_t characterCount(std::string_view text);

}  // namespace orlftool
