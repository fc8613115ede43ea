/// What the amounts of a bank's table tell: their decimal mark, and how those below zero are
/// written. Rows of data come one by one, once for the amounts and once more for the balances.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "interchange/csv_layout.h"
#include "interchange/finding.h"
#include "interchange/number_column.h"

namespace orlftool {

class AmountColumns {
 public:
  explicit AmountColumns(const std::vector<std::size_t>& dateColumns)
      : dateColumns_(dateColumns.begin(), dateColumns.end()) {}

  void add(CsvFields fields, std::uint64_t line);

  /// Columns in which nearly all filled cells are amounts, one of them at least with a mark, a sign
  /// or a currency: whole numbers alone may be anything.
  [[nodiscard]] std::vector<std::size_t> columns() const;
  [[nodiscard]] Finding decimalMark() const;
  /// Columns of balances are no columns of amounts here.
  [[nodiscard]] Finding sign(const std::set<std::size_t>& balances) const;

 private:
  struct Column {
    std::uint64_t filled = 0;
    std::uint64_t fitting = 0;
    bool isMoney = false;
    DecimalMarkJudge marks;
    /// How amounts below zero are written, each with the first of them.
    std::map<AmountSign, DecimalMarkJudge::Witness> negatives;
    /// Of the rows with an amount other than 0.
    std::uint64_t rows = 0;
    std::uint64_t rowSum = 0;

    [[nodiscard]] bool holdsAmounts() const { return isMoney && 10 * fitting >= 9 * filled; }
  };
  void add(Column& column, std::string_view cell, std::size_t index, std::uint64_t line);
  [[nodiscard]] bool share(const Column& left, const Column& right) const;
  [[nodiscard]] Finding sharingColumns(const std::vector<std::size_t>& columns) const;

  const std::set<std::size_t> dateColumns_;
  std::vector<Column> columns_;
  std::uint64_t rows_ = 0;
  /// The sum of a number for each row that no other row has. Two columns share the rows where
  /// theirs make up all.
  std::uint64_t rowSum_ = 0;
  std::uint64_t rowNumber_ = 0;
  std::uint64_t firstLine_ = 0;
};

/// Looks for columns that hold the balance behind the amounts of another: neighbours differ by an
/// amount.
class BalanceSearch {
 public:
  /// Among more columns than 32 none is looked for.
  BalanceSearch(std::vector<std::size_t> columns, DecimalMark mark);

  [[nodiscard]] bool isNeeded() const { return columns_.size() > 1; }
  void add(CsvFields fields);
  [[nodiscard]] std::set<std::size_t> balances() const;

 private:
  using Hundredths = std::vector<std::optional<double>>;
  struct Steps {
    std::uint64_t all = 0;
    std::uint64_t fitting = 0;
  };

  std::vector<std::size_t> columns_;
  const DecimalMark mark_;
  Hundredths before_;
  std::vector<Steps> steps_;  // of each column as the balance of each
};

}  // namespace orlftool
