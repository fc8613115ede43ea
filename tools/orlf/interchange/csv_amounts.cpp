#include "interchange/csv_amounts.h"

#include <cmath>
#include <string_view>
#include <utility>

#include "cli/message_text.h"
#include "interchange/amount_text.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

/// The amount of a cell. "1." may number a row, "INV-1" name a bill.
std::optional<AmountText> amountOf(std::string_view cell) {
  std::optional<AmountText> amount = AmountText::parse(cell);
  if (!amount || amount->endsInMark()) return std::nullopt;
  if (amount->hasTightLetters() && !amount->hasMark()) return std::nullopt;
  return amount;
}

std::string placeOf(const DecimalMarkJudge::Witness& witness) {
  return quotedForMessage(witness.text) + " in " + columnName(witness.column);
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

/// Spreads the bits of a row's number.
std::uint64_t spread(std::uint64_t number) {
  number = (number ^ (number >> 30U)) * 0xBF58476D1CE4E5B9U;
  number = (number ^ (number >> 27U)) * 0x94D049BB133111EBU;
  return number ^ (number >> 31U);
}

}  // namespace

void AmountColumns::add(CsvFields fields, std::uint64_t line) {
  if (rows_++ == 0) firstLine_ = line;
  rowNumber_ = spread(rows_);
  rowSum_ += rowNumber_;
  if (columns_.size() < fields.size()) columns_.resize(fields.size());
  for (std::size_t index = 0; index < fields.size(); ++index)
    if (!dateColumns_.contains(index)) add(columns_[index], trimmed(fields[index]), index, line);
}

void AmountColumns::add(Column& column, std::string_view cell, std::size_t index,
                        std::uint64_t line) {
  if (cell.empty()) return;
  ++column.filled;
  const std::optional<AmountText> amount = amountOf(cell);
  if (!amount) return;
  ++column.fitting;
  column.isMoney = column.isMoney || amount->hasMark() || amount->hasCurrency() ||
                   amount->sign() != AmountSign::None;
  column.marks.add(*amount, cell, line, index);
  if (amount->isNegative())
    column.negatives.try_emplace(amount->sign(),
                                 DecimalMarkJudge::Witness{std::string(cell), line, index});
  if (amount->isZero()) return;
  ++column.rows;
  column.rowSum += rowNumber_;
}

std::vector<std::size_t> AmountColumns::columns() const {
  std::vector<std::size_t> columns;
  for (std::size_t index = 0; index < columns_.size(); ++index)
    if (columns_[index].holdsAmounts()) columns.push_back(index);
  return columns;
}

Finding AmountColumns::decimalMark() const {
  DecimalMarkJudge judge;
  for (const std::size_t index : columns()) judge.add(columns_[index].marks);
  const auto told = [&judge](const char* answer, DecimalMark mark) {
    const DecimalMarkJudge::Witness& witness = judge.witnessOf(mark);
    return Finding{"decimal mark", answer, placeOf(witness), witness.line};
  };
  switch (judge.verdict()) {
    case DecimalMarkJudge::Verdict::Point:
      return told("point", DecimalMark::Point);
    case DecimalMarkJudge::Verdict::Comma:
      return told("comma", DecimalMark::Comma);
    case DecimalMarkJudge::Verdict::Contradiction:
      return {"decimal mark", "",
              placeOf(judge.witnessOf(DecimalMark::Point)) + " and " +
                  placeOf(judge.witnessOf(DecimalMark::Comma)) + " contradict each other",
              0};
    case DecimalMarkJudge::Verdict::Open:
      return {"decimal mark", "", "every mark may part thousands or a fraction", 0};
    case DecimalMarkJudge::Verdict::NoMark:
      break;
  }
  return {"decimal mark", "", "no amount shows one", 0};
}

/// Whether of two columns each row fills one, and both are filled somewhere.
bool AmountColumns::share(const Column& left, const Column& right) const {
  return left.rows > 0 && right.rows > 0 && left.rows + right.rows == rows_ &&
         left.rowSum + right.rowSum == rowSum_;
}

Finding AmountColumns::sharingColumns(const std::vector<std::size_t>& columns) const {
  Finding finding{"sign", "", "no amount is below zero, and no two columns share the rows", 0};
  std::size_t pairs = 0;
  for (const std::size_t left : columns) {
    for (const std::size_t right : columns) {
      if (right <= left || !share(columns_[left], columns_[right])) continue;
      ++pairs;
      finding = {"sign",
                 "columns " + std::to_string(left + 1) + " and " + std::to_string(right + 1),
                 "each row fills one of them", firstLine_};
    }
  }
  if (pairs <= 1) return finding;
  return {"sign", "", "several pairs of columns share the rows", 0};
}

Finding AmountColumns::sign(const std::set<std::size_t>& balances) const {
  std::vector<std::size_t> columns = this->columns();
  if (columns.empty()) return {"sign", "", "no column holds amounts", 0};
  std::erase_if(columns, [&balances](std::size_t index) { return balances.contains(index); });
  std::map<AmountSign, DecimalMarkJudge::Witness> found;
  std::size_t signedColumns = 0;
  std::size_t fullColumns = 0;
  for (const std::size_t index : columns) {
    const Column& column = columns_[index];
    signedColumns += column.negatives.empty() ? 0 : 1;
    fullColumns += column.negatives.empty() && column.filled == rows_ ? 1 : 0;
    found.insert(column.negatives.begin(), column.negatives.end());
  }
  if (found.empty()) return sharingColumns(columns);
  if (found.size() > 1) return {"sign", "", "amounts below zero are written in several ways", 0};
  const auto& [sign, witness] = *found.begin();
  // A column without signs beside one with them may hold the amounts, and the other a balance.
  if (signedColumns > 1)
    return {"sign", "", "several columns hold amounts below zero", witness.line};
  if (fullColumns > 0)
    return {"sign", "", "one column holds amounts below zero and another does not", witness.line};
  return {"sign", nameOfSign(sign), placeOf(witness), witness.line};
}

BalanceSearch::BalanceSearch(std::vector<std::size_t> columns, DecimalMark mark)
    : columns_(std::move(columns)), mark_(mark) {
  constexpr std::size_t kMostBalances = 32;
  if (columns_.size() > kMostBalances) columns_.clear();
  steps_.resize(columns_.size() * columns_.size());
}

void BalanceSearch::add(CsvFields fields) {
  Hundredths here(columns_.size());
  for (std::size_t at = 0; at < columns_.size(); ++at) {
    const auto amount = amountOf(CsvLayout::cell(fields, columns_[at]));
    const auto value = amount ? amount->value(mark_) : std::nullopt;
    if (value) here[at] = 100 * value->doubleValue();
  }
  std::swap(before_, here);
  if (here.empty()) return;
  const auto fits = [](const std::optional<double>& amount, double step) {
    return amount && std::abs(std::abs(*amount) - step) <= 0.5;
  };
  for (std::size_t balance = 0; balance < columns_.size(); ++balance) {
    if (!here[balance] || !before_[balance]) continue;
    const double step = std::abs(*before_[balance] - *here[balance]);
    for (std::size_t other = 0; other < columns_.size(); ++other) {
      Steps& steps = steps_[balance * columns_.size() + other];
      ++steps.all;
      steps.fitting += fits(here[other], step) || fits(before_[other], step) ? 1 : 0;
    }
  }
}

std::set<std::size_t> BalanceSearch::balances() const {
  std::set<std::size_t> found;
  for (std::size_t at = 0; at < steps_.size(); ++at) {
    const std::size_t balance = at / columns_.size();
    const Steps& steps = steps_[at];
    const bool isOther = balance != at % columns_.size();
    if (isOther && steps.all >= 2 && 10 * steps.fitting >= 9 * steps.all)
      found.insert(columns_[balance]);
  }
  return found;
}

}  // namespace orlftool
