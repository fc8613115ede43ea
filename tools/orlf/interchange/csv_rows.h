/// The rows of a separated text, printed again one by one.
#pragma once

#include <ORLFoundation/interchange/tabular/ORLFTabularRowReader.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "io/text_input.h"
#include "session.h"

namespace orlftool {

/// The separators that a caller may name.
inline constexpr std::string_view kSeparatorNames = "comma, semicolon or tab";
/// The character of a separator's name; nil for other words.
[[nodiscard]] std::optional<char> separatorNamed(std::string_view name);
/// The separator that the value of an option names; nil where it was not given. Throws
/// UsageFailure.
[[nodiscard]] std::optional<char> readSeparatorOption(const std::optional<std::string>& name);

/// Gives all rows of a file to a block. The separator is
/// that of the first line where none is given. Throws JobFailure for a row that has more bytes or
/// fields than the reader's limits allow, with its line. Lines to skip at the beginning count in
/// the numbers of lines and in nothing else.
void readTable(TextInput& input, std::optional<char> separator,
               const ORLFoundation::ORLFTabularRowBlock& usingBlock, std::uint64_t skipLines = 0);

/// Prints rows as they come, as text or as a JSON array of arrays. What a row cannot show is told
/// in notes at the end.
class RowPrinter {
 public:
  /// `delimiterType` is that of the library's writer. Throws JobFailure, with the line, for a value
  /// that comma-separated text of the writer cannot hold.
  RowPrinter(Session& session, std::string name, std::int64_t delimiterType);

  void print(const ORLFoundation::ORLFTabularRow& row);
  /// To be called behind the last row.
  void finish();

 private:
  void printText(const ORLFoundation::ORLFTabularRow& row);
  void printJsonRow(const ORLFoundation::ORLFTabularRow& row);

  Session& session_;
  const std::string name_;
  const std::int64_t delimiterType_;
  std::uint64_t rows_ = 0;
  std::uint64_t brokenValues_ = 0;
  std::uint64_t openLine_ = 0;
};

}  // namespace orlftool
