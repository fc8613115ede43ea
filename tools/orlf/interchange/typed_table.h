/// A table of dates, amounts and texts, read twice: once to learn how its dates and amounts are
/// written, once to take its rows. Memory does not grow with its length.
///
///     TypedTable table(session, request, kRules);
///     table.judge();
///     table.forEach([](const TypedRow& row) { write(row.date(kDate), row.text(kPayee)); });
#pragma once

#include <ORLFoundation/platform/number/NSDecimalNumber.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "interchange/column_map.h"
#include "interchange/date_reading.h"
#include "interchange/number_column.h"
#include "session.h"

namespace orlftool {

class Options;
class TypedTable;

/// How a table is to be read, as it was typed.
struct TableRequest {
  std::string file;
  std::optional<std::string> map, separator, encoding, decimal;
  std::string dateFormat = "auto";
  std::string skipLines = "0";
  bool allOrders = false;
  bool skipBad = false;
};

/// Declares the options of a table.
void declareTableOptions(Options& options, TableRequest& request);

/// A text as records hold it: line ends and other control characters, which would begin another
/// line, are blanks, and none stand around it.
[[nodiscard]] std::string inOneLine(std::string_view text);

/// What is wrong with a row. Thrown, it refuses the row.
struct BadRow {
  std::string field;
  std::string expected;
  std::string got;
};

/// One row. Fields are told by their places among the rules.
class TypedRow {
 public:
  [[nodiscard]] std::uint64_t line() const noexcept { return line_; }
  /// As `inOneLine` gives it.
  [[nodiscard]] std::string text(std::size_t field) const;
  /// The same, nil for an empty one.
  [[nodiscard]] std::optional<std::string> textIfAny(std::size_t field) const;
  /// nil for an empty field. Throws BadRow for what cannot be read, and for an empty field that is
  /// required.
  [[nodiscard]] std::optional<ORLFoundation::NSDate> date(std::size_t field) const;
  [[nodiscard]] std::optional<ORLFoundation::NSDecimalNumber> number(std::size_t field) const;
  /// Remembers, where the field is not empty, that the record has no place for it: `record` says
  /// what it is. Told in notes behind the last row.
  void leaveOut(std::size_t field, std::string_view record) const;
  /// Throws BadRow that names the field and what stands in it.
  [[noreturn]] void refuse(std::size_t field, std::string_view expected) const;

 private:
  friend class TypedTable;
  TypedRow(TypedTable& table, std::span<const std::string_view> fields, std::uint64_t line)
      : table_(table), fields_(fields), line_(line) {}
  /// Whether the field is empty; throws BadRow where it must not be.
  [[nodiscard]] bool isEmpty(std::size_t field, const std::string& text,
                             std::string_view expected) const;

  TypedTable& table_;
  const std::span<const std::string_view> fields_;
  const std::uint64_t line_;
};

class TypedTable {
 public:
  /// Throws UsageFailure for words that make no sense.
  TypedTable(Session& session, const TableRequest& request, std::span<const FieldRule> rules);

  /// Reads the table to settle columns, the order of its dates and its decimal mark; notes tell the
  /// rows that decided. Throws JobFailure where they leave doubt.
  void judge();
  [[nodiscard]] bool has(std::size_t field) const { return map_.has(field); }

  struct Counts {
    std::uint64_t taken = 0, skipped = 0;
  };
  /// Gives the rows in their order. A row that the block refuses by BadRow is named and passed over
  /// where that was asked for; else JobFailure is thrown.
  Counts forEach(const std::function<void(const TypedRow& row)>& block);

 private:
  friend class TypedRow;

  /// What had no place in records of a kind: in how many rows, and the line of the first.
  struct LeftOut {
    std::uint64_t rows = 0;
    std::uint64_t line = 0;
  };

  void tellLeftOut() const;
  void readRows(const std::function<void(const TypedRow& row)>& block);
  [[nodiscard]] bool isHeading(const TypedRow& row) const;
  void settle();

  Session& session_;
  const TableRequest request_;
  const std::span<const FieldRule> rules_;
  ColumnMap map_;
  DateReading dates_;
  DecimalMarkJudge marks_;
  DecimalMark mark_ = DecimalMark::Point;
  std::uint64_t skipLines_ = 0;
  std::uint64_t headingLine_ = 0;                                        // 0 for none
  std::map<std::pair<std::string_view, std::string>, LeftOut> leftOut_;  // by field and record
};

/// Tells how many rows a file was made of, as text or JSON.
void printCounts(Session& session, const std::string& output, const TypedTable::Counts& counts);

}  // namespace orlftool
