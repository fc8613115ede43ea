/// A text parted by one separator, and what the columns then hold.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orlftool {

struct CsvRow {
  std::vector<std::string> cells;
  std::uint64_t line = 0;
};

struct CsvSeparator {
  char character;
  const char* name;
};
inline constexpr std::array<CsvSeparator, 3> kCsvSeparators{
    {{',', "comma"}, {';', "semicolon"}, {'\t', "tab"}}};

class CsvLayout {
 public:
  CsvLayout(std::string_view text, CsvSeparator separator);

  [[nodiscard]] CsvSeparator separator() const { return separator_; }
  [[nodiscard]] const std::vector<CsvRow>& rows() const { return rows_; }
  [[nodiscard]] std::size_t columns() const { return columns_; }
  /// Columns in which at least half of the rows from the first date on hold one, and at least half
  /// as many as the fullest.
  [[nodiscard]] const std::vector<std::size_t>& dateColumns() const { return dateColumns_; }
  /// The rows with a date in the first of the date columns.
  [[nodiscard]] const std::vector<const CsvRow*>& data() const { return data_; }
  /// Whether most rows have more than one field.
  [[nodiscard]] bool parts() const;
  /// The cell of a row; empty behind the row's last.
  [[nodiscard]] static std::string_view cell(const CsvRow& row, std::size_t column);

 private:
  void findDateColumns();
  void findData();

  CsvSeparator separator_;
  std::vector<CsvRow> rows_;
  std::size_t columns_ = 0;
  std::vector<std::size_t> dateColumns_;
  std::vector<const CsvRow*> data_;
};

/// "column 3" for the column of index 2.
[[nodiscard]] std::string columnName(std::size_t column);

}  // namespace orlftool
