#include "interchange/number_column.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"
#include "io/text_lines.h"

using namespace orlftool;

namespace {

void require(bool holds) {
  if (!holds) std::abort();
}

/// What a mark makes of an amount has its sign, and reads back from the digits that it prints.
void checkValue(const AmountText& amount, std::string_view text, DecimalMark mark) {
  const auto value = amount.value(mark);
  if (!value) return;
  require(amount.fits(mark));
  require(readColumnNumber(text, mark) == value);
  require(amount.isZero() == (value->doubleValue() == 0));
  require(amount.isZero() || amount.isNegative() == (value->doubleValue() < 0));
  require(readColumnNumber(value->stringValue(), DecimalMark::Point) == value);
}

}  // namespace

/// Lines of amounts and other texts: each is read or not, and their mark is told or asked for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  DecimalMarkJudge judge;
  std::uint64_t line = 0;
  for (const std::string& text :
       linesOfText(std::string_view(reinterpret_cast<const char*>(data), size))) {
    ++line;
    static_cast<void>(readColumnNumber(text, DecimalMark::Comma));
    const auto amount = AmountText::parse(text);
    if (!amount) continue;
    require(amount->fits(DecimalMark::Point) || amount->fits(DecimalMark::Comma));
    checkValue(*amount, text, DecimalMark::Point);
    checkValue(*amount, text, DecimalMark::Comma);
    judge.add(*amount, text, line);
  }
  try {
    const ColumnMark found = columnMark(judge, "a.csv");
    require(found.reason.empty() == (judge.verdict() == DecimalMarkJudge::Verdict::NoMark));
  } catch (const JobFailure& failure) {
    require(std::string_view(failure.what()).starts_with("a.csv: "));
  }
  return 0;
}
