/// A text parted by one separator, and what the columns then hold.
#pragma once

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "io/byte_source.h"

namespace orlftool {

/// A table's text, read as often as it is asked for.
class CsvText {
 public:
  CsvText(ReopenedBytes bytes, ORLFoundation::NSStringEncoding encoding)
      : bytes_(std::move(bytes)), encoding_(encoding) {}

  /// Gives all rows, of each at most the first thousand fields. Throws JobFailure, with the line,
  /// for a row that is longer than the reader of tables takes.
  void forEachRow(char separator, const ORLFoundation::ORLFTabularRowBlock& block) const;

 private:
  const ReopenedBytes bytes_;
  const ORLFoundation::NSStringEncoding encoding_;
};

struct CsvSeparator {
  char character;
  const char* name;
};
inline constexpr std::array<CsvSeparator, 3> kCsvSeparators{
    {{',', "comma"}, {';', "semicolon"}, {'\t', "tab"}}};

using CsvFields = std::span<const std::string_view>;

class CsvLayout {
 public:
  CsvLayout(const CsvText& text, CsvSeparator separator);

  [[nodiscard]] CsvSeparator separator() const { return separator_; }
  [[nodiscard]] std::size_t columns() const { return dates_.size(); }
  /// Columns in which at least half of the rows from the first date on hold one, and at least half
  /// as many as the fullest.
  [[nodiscard]] const std::vector<std::size_t>& dateColumns() const { return dateColumns_; }
  /// Whether a row holds a date in the first of the date columns.
  [[nodiscard]] bool isData(CsvFields fields) const;
  /// Whether most rows have more than one field.
  [[nodiscard]] bool parts() const { return 2 * partedRows_ > rows_; }
  /// The line of the first row, 0 where there is none.
  [[nodiscard]] std::uint64_t firstLine() const { return firstLine_; }
  /// The cell of a row; empty behind the row's last.
  [[nodiscard]] static std::string_view cell(CsvFields fields, std::size_t column) {
    return column < fields.size() ? fields[column] : std::string_view();
  }

 private:
  struct Dates {
    std::uint64_t count = 0;
    std::uint64_t firstRow = 0;
  };
  void add(CsvFields fields);
  void findDateColumns();

  CsvSeparator separator_;
  std::uint64_t rows_ = 0;
  std::uint64_t partedRows_ = 0;
  std::uint64_t firstLine_ = 0;
  std::vector<Dates> dates_;  // of each column
  std::vector<std::size_t> dateColumns_;
};

/// "column 3" for the column of index 2.
[[nodiscard]] std::string columnName(std::size_t column);

}  // namespace orlftool
