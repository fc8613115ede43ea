#include "interchange/number_column.h"

#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <algorithm>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

bool takeFront(std::string_view& text, char front) {
  if (!text.starts_with(front)) return false;
  text.remove_prefix(1);
  return true;
}

std::string_view takeDigits(std::string_view& text) {
  const std::string_view digits =
      text.substr(0, std::min(text.find_first_not_of("0123456789"), text.size()));
  text.remove_prefix(digits.size());
  return digits;
}

/// Whether a text is "1/2", "-50 1/2" or "$7/8": the reader of typed amounts passes over brackets
/// and other signs, drops improper fractions behind a number and takes a missing divisor for 1.
bool isFraction(std::string_view text) {
  constexpr std::size_t kLongest = 200;
  constexpr std::size_t kMostDigits = 9;
  if (text.size() > kLongest) return false;
  text = trimmed(text, " \t");
  if (!takeFront(text, '-')) takeFront(text, '+');
  takeFront(text, '$');
  std::string_view over = takeDigits(text);
  const bool hasWhole = takeFront(text, ' ');
  if (hasWhole && over.empty()) return false;
  if (hasWhole) over = takeDigits(text);
  if (!takeFront(text, '/') || over.empty() || over.size() > kMostDigits) return false;
  const std::string_view under = takeDigits(text);
  if (!text.empty() || under.empty() || under.size() > kMostDigits) return false;
  const int divisor = std::stoi(std::string(under));
  return divisor > 1 && (!hasWhole || std::stoi(std::string(over)) < divisor);
}

void keepFirst(DecimalMarkJudge::Witness& first, const DecimalMarkJudge::Witness& later) {
  if (first.line == 0) first = later;
}

}  // namespace

std::optional<NSDecimalNumber> readColumnNumber(std::string_view text, DecimalMark mark) {
  if (text.find('/') != text.npos)
    return isFraction(text) ? orlfDecimalNumberWithFormattedString(text) : std::nullopt;
  const std::optional<AmountText> amount = AmountText::parse(text);
  return amount ? amount->value(mark) : std::nullopt;
}

void DecimalMarkJudge::add(const AmountText& amount, std::string_view text, std::uint64_t line,
                           std::size_t column) {
  if (!amount.hasMark()) return;
  const bool isPoint = amount.fits(DecimalMark::Point);
  const bool isComma = amount.fits(DecimalMark::Comma);
  Witness& witness = isPoint && isComma ? open_ : isPoint ? point_ : comma_;
  if (witness.line == 0) witness = {std::string(text), line, column};
}

void DecimalMarkJudge::add(const DecimalMarkJudge& later) {
  keepFirst(point_, later.point_);
  keepFirst(comma_, later.comma_);
  keepFirst(open_, later.open_);
}

DecimalMarkJudge::Verdict DecimalMarkJudge::verdict() const {
  if (point_.line != 0 && comma_.line != 0) return Verdict::Contradiction;
  if (point_.line != 0) return Verdict::Point;
  if (comma_.line != 0) return Verdict::Comma;
  return open_.line != 0 ? Verdict::Open : Verdict::NoMark;
}

ColumnMark columnMark(const DecimalMarkJudge& judge, const std::string& name) {
  const auto place = [](const DecimalMarkJudge::Witness& witness) {
    return "line " + std::to_string(witness.line) + ", " + quotedForMessage(witness.text);
  };
  const std::string point = place(judge.witnessOf(DecimalMark::Point));
  const std::string comma = place(judge.witnessOf(DecimalMark::Comma));
  switch (judge.verdict()) {
    case DecimalMarkJudge::Verdict::Point:
      return {DecimalMark::Point, point};
    case DecimalMarkJudge::Verdict::Comma:
      return {DecimalMark::Comma, comma};
    case DecimalMarkJudge::Verdict::NoMark:
      return {};
    case DecimalMarkJudge::Verdict::Contradiction:
      throw JobFailure(name + ": amounts have a point as the decimal mark (" + point +
                       ") and a comma (" + comma + "): --decimal tells which holds");
    case DecimalMarkJudge::Verdict::Open:
      break;
  }
  throw JobFailure(name + ": nothing tells whether " + place(judge.openWitness()) +
                   ", has a decimal mark or groups of three: --decimal point or comma does");
}

}  // namespace orlftool
