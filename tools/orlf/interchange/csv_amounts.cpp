#include "interchange/csv_amounts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/message_text.h"
#include "interchange/cell_shapes.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

/// One column of amounts.
struct AmountColumn {
  std::size_t column = 0;
  std::vector<std::optional<AmountShape>> shapes;  // one for each row of data
  std::size_t filled = 0;
  bool isMoney = false;
};

/// Columns in which nearly all filled cells are amounts, one of them at least with a mark, a sign
/// or a currency: whole numbers alone may be anything.
std::vector<AmountColumn> amountColumns(const CsvLayout& layout) {
  std::vector<AmountColumn> columns;
  const auto& dates = layout.dateColumns();
  for (std::size_t column = 0; column < layout.columns(); ++column) {
    if (std::find(dates.begin(), dates.end(), column) != dates.end()) continue;
    AmountColumn amounts{.column = column, .shapes = {}};
    std::size_t fitting = 0;
    for (const CsvRow* row : layout.data()) {
      const std::string_view text = trimmed(CsvLayout::cell(*row, column));
      auto shape = amountShapeOf(text);
      amounts.filled += text.empty() ? 0 : 1;
      fitting += shape ? 1 : 0;
      if (shape)
        amounts.isMoney = amounts.isMoney || shape->hasMark || shape->hasCurrency ||
                          shape->sign != AmountSign::None;
      amounts.shapes.push_back(std::move(shape));
    }
    if (amounts.isMoney && 10 * fitting >= 9 * amounts.filled)
      columns.push_back(std::move(amounts));
  }
  return columns;
}

Finding decimalMarkFinding(const CsvLayout& layout, const std::vector<AmountColumn>& columns) {
  Finding finding{"decimal mark", "", "no amount shows one", 0};
  std::array<Finding, 2> deciders;
  bool isOpen = false;
  for (const AmountColumn& amounts : columns) {
    for (std::size_t at = 0; at < amounts.shapes.size(); ++at) {
      const auto& shape = amounts.shapes[at];
      if (!shape || !shape->hasMark) continue;
      const CsvRow& row = *layout.data()[at];
      isOpen = isOpen || shape->marks == kBothMarks;
      if (shape->marks == kBothMarks) continue;
      Finding& decider = deciders.at(shape->marks == kPointMark ? 0 : 1);
      if (decider.line == 0)
        decider = {"decimal mark", shape->marks == kPointMark ? "point" : "comma",
                   quotedForMessage(CsvLayout::cell(row, amounts.column)) + " in " +
                       columnName(amounts.column),
                   row.line};
    }
  }
  if (deciders[0].line != 0 && deciders[1].line != 0) {
    finding.reason = deciders[0].reason + " and " + deciders[1].reason + " contradict each other";
    return finding;
  }
  if (deciders[0].line != 0) return deciders[0];
  if (deciders[1].line != 0) return deciders[1];
  if (isOpen) finding.reason = "every mark may part thousands or a fraction";
  return finding;
}

/// Whether a column is the balance behind the amounts of another: neighbours differ by an amount.
bool isBalanceOf(const AmountColumn& balance, const AmountColumn& amounts, DecimalMarks mark) {
  std::size_t fitting = 0;
  std::size_t pairs = 0;
  const auto signedValue = [mark](const AmountShape& shape) {
    const bool isOut = shape.sign != AmountSign::None && shape.sign != AmountSign::Plus;
    return (isOut ? -1 : 1) * shape.hundredths(mark);
  };
  for (std::size_t at = 1; at < balance.shapes.size(); ++at) {
    const auto& here = balance.shapes[at];
    const auto& before = balance.shapes[at - 1];
    if (!here || !before) continue;
    const double step = std::abs(signedValue(*here) - signedValue(*before));
    for (const std::size_t row : {at, at - 1}) {
      if (!amounts.shapes[row] || std::abs(amounts.shapes[row]->hundredths(mark) - step) > 0.5)
        continue;
      ++fitting;
      break;
    }
    ++pairs;
  }
  return pairs >= 2 && 10 * fitting >= 9 * pairs;
}

void dropBalances(std::vector<AmountColumn>& columns, DecimalMarks mark) {
  std::vector<AmountColumn> kept;
  for (const AmountColumn& column : columns) {
    const bool isBalance =
        std::any_of(columns.begin(), columns.end(), [&](const AmountColumn& other) {
          return other.column != column.column && isBalanceOf(column, other, mark);
        });
    if (!isBalance) kept.push_back(column);
  }
  columns = std::move(kept);
}

const char* nameOfSign(AmountSign sign) {
  switch (sign) {
    case AmountSign::Minus:
      return "minus";
    case AmountSign::TrailingMinus:
      return "trailing minus";
    default:
      return "brackets";
  }
}

/// The signs below zero of a column, each with the first row that has it.
std::map<AmountSign, std::size_t> negativesOf(const AmountColumn& amounts) {
  std::map<AmountSign, std::size_t> negatives;
  for (std::size_t at = 0; at < amounts.shapes.size(); ++at) {
    const auto& shape = amounts.shapes[at];
    if (shape && shape->sign != AmountSign::None && shape->sign != AmountSign::Plus)
      negatives.emplace(shape->sign, at);
  }
  return negatives;
}

/// Whether of two columns each row fills one, and both are filled somewhere.
bool areExclusive(const AmountColumn& left, const AmountColumn& right) {
  const auto isFilled = [](const std::optional<AmountShape>& shape) {
    return shape && !shape->isZero();
  };
  std::size_t lefts = 0;
  std::size_t rights = 0;
  for (std::size_t at = 0; at < left.shapes.size(); ++at) {
    const bool isLeft = isFilled(left.shapes[at]);
    if (isLeft == isFilled(right.shapes[at])) return false;
    (isLeft ? lefts : rights) += 1;
  }
  return lefts > 0 && rights > 0;
}

Finding columnsFinding(const CsvLayout& layout, const std::vector<AmountColumn>& columns) {
  Finding finding{"sign", "", "no amount is below zero, and no two columns share the rows", 0};
  std::size_t pairs = 0;
  for (const AmountColumn& left : columns) {
    for (const AmountColumn& right : columns) {
      if (right.column <= left.column || !areExclusive(left, right)) continue;
      ++pairs;
      finding.answer =
          "columns " + std::to_string(left.column + 1) + " and " + std::to_string(right.column + 1);
      finding.reason = "each row fills one of them";
      finding.line = layout.data().front()->line;
    }
  }
  if (pairs <= 1) return finding;
  return {"sign", "", "several pairs of columns share the rows", 0};
}

Finding signFinding(const CsvLayout& layout, std::vector<AmountColumn> columns,
                    const std::string& decimalMark) {
  if (columns.empty()) return {"sign", "", "no column holds amounts", 0};
  dropBalances(columns, decimalMark == "comma" ? kCommaMark : kPointMark);
  std::map<AmountSign, Finding> found;
  std::size_t signedColumns = 0;
  std::size_t fullColumns = 0;
  for (const AmountColumn& amounts : columns) {
    const auto negatives = negativesOf(amounts);
    signedColumns += negatives.empty() ? 0 : 1;
    fullColumns += negatives.empty() && amounts.filled == amounts.shapes.size() ? 1 : 0;
    for (const auto& [sign, at] : negatives) {
      const CsvRow& row = *layout.data()[at];
      found.emplace(sign, Finding{"sign", nameOfSign(sign),
                                  quotedForMessage(CsvLayout::cell(row, amounts.column)) + " in " +
                                      columnName(amounts.column),
                                  row.line});
    }
  }
  if (found.empty()) return columnsFinding(layout, columns);
  if (found.size() > 1) return {"sign", "", "amounts below zero are written in several ways", 0};
  // A column without signs beside one with them may hold the amounts, and the other a balance.
  if (signedColumns > 1 || fullColumns > 0)
    return {"sign", "",
            signedColumns > 1 ? "several columns hold amounts below zero"
                              : "one column holds amounts below zero and another does not",
            found.begin()->second.line};
  return found.begin()->second;
}

}  // namespace

AmountFindings amountFindings(const CsvLayout& layout) {
  const std::vector<AmountColumn> columns = amountColumns(layout);
  Finding mark = decimalMarkFinding(layout, columns);
  Finding sign = signFinding(layout, columns, mark.answer);
  return {std::move(mark), std::move(sign)};
}

}  // namespace orlftool
