#include "interchange/number_column.h"

#include <gtest/gtest.h>

#include <string>

#include "cli/failure.h"

namespace orlftool {
namespace {

using ORLFoundation::NSDecimalNumber;

std::string read(std::string_view text, DecimalMark mark = DecimalMark::Point) {
  const std::optional<NSDecimalNumber> number = readColumnNumber(text, mark);
  return number ? number->stringValue() : "nil";
}

struct NumberRow {
  std::string_view text, underPoint, underComma;
};

TEST(NumberColumn, ReadsAmountsUnderTheMarkOfTheColumn) {
  const NumberRow rows[] = {{"12", "12", "12"},
                            {"1,234.50", "1234.5", "nil"},
                            {"1.234,50", "nil", "1234.5"},
                            {"1.234", "1.234", "1234"},
                            {"1,234", "1234", "1.234"},
                            {"-$1,750.06", "-1750.06", "nil"},
                            {"$-5.00", "-5", "nil"},
                            {"- $21.59", "-21.59", "nil"},
                            {"($85.00)", "-85", "nil"},
                            {"£20.00", "20", "nil"},
                            {"12,50 EUR", "nil", "12.5"},
                            {"CHF 12'345.60", "12345.6", "nil"},
                            {"1 234,5", "nil", "1234.5"},
                            {"1\u00A0234,5", "nil", "1234.5"},
                            {"100.00-", "-100", "nil"},
                            {"\u2212"
                             "3,5",
                             "nil", "-3.5"},
                            {"+120,00", "nil", "120"},
                            {"1,23,456.7", "123456.7", "nil"},
                            {".5", "0.5", "nil"},
                            {"5.", "5", "nil"},
                            {"50 1/2", "50.5", "50.5"},
                            {"-50 1/2", "-50.5", "-50.5"},
                            {"$7/8", "0.875", "0.875"},
                            {"-1/2", "-0.5", "-0.5"},
                            {"+7/2", "3.5", "3.5"},
                            {" 1/3 ", "0.3333", "0.3333"},
                            {"-7/2", "nil", "nil"},
                            {"(12 1/2)", "nil", "nil"},
                            {"\u2212"
                             "1/2",
                             "nil", "nil"},
                            {"12 1/2-", "nil", "nil"},
                            {"3 7/2", "nil", "nil"},
                            {"3 2/2", "nil", "nil"},
                            {" /2", "nil", "nil"},
                            {"5/0", "nil", "nil"},
                            {"5/1", "nil", "nil"},
                            {"5/", "nil", "nil"},
                            {"/5", "nil", "nil"},
                            {"1.5 1/2", "nil", "nil"},
                            {"1/2/3", "nil", "nil"},
                            {"1/2 EUR", "nil", "nil"},
                            {"1/1234567890", "nil", "nil"},
                            {"1234567890/2", "nil", "nil"},
                            {"12,5 kr", "nil", "12.5"},
                            {"1234.567.890", "nil", "nil"},
                            {"0.125", "0.125", "nil"},
                            {"0,125", "nil", "0.125"},
                            {"EUR +5", "5", "5"},
                            {"5+", "5", "5"},
                            {"1,23", "nil", "1.23"},
                            {"5 DR", "nil", "nil"},
                            {"12%", "nil", "nil"},
                            {"--5", "nil", "nil"},
                            {"(-5)", "nil", "nil"},
                            {"1e5", "nil", "nil"},
                            {"$5 EUR", "nil", "nil"},
                            {"", "nil", "nil"},
                            {"-", "nil", "nil"},
                            {"EUR", "nil", "nil"},
                            {"1 2", "nil", "nil"},
                            {"1234567890123456789012345678901234567890", "nil", "nil"}};
  for (const NumberRow& row : rows) {
    EXPECT_EQ(read(row.text), row.underPoint) << row.text;
    EXPECT_EQ(read(row.text, DecimalMark::Comma), row.underComma) << row.text;
  }
  EXPECT_EQ(read(std::string(100'000, '1')), "nil");
}

DecimalMarkJudge judgeOf(std::initializer_list<std::string_view> texts) {
  DecimalMarkJudge judge;
  std::uint64_t line = 0;
  for (const std::string_view text : texts) {
    ++line;
    if (const auto amount = AmountText::parse(text)) judge.add(*amount, text, line, 7);
  }
  return judge;
}

std::string markOf(std::initializer_list<std::string_view> texts) {
  try {
    const ColumnMark found = columnMark(judgeOf(texts), "f");
    return (found.mark == DecimalMark::Point ? "point " : "comma ") + found.reason;
  } catch (const JobFailure& failure) {
    return failure.what();
  }
}

TEST(NumberColumn, FindsTheMarkOrAsks) {
  EXPECT_EQ(markOf({}), "point ");
  EXPECT_EQ(markOf({"12", "x", "5"}), "point ");
  EXPECT_EQ(markOf({"1,234", "12.50"}), "point line 2, '12.50'");
  EXPECT_EQ(markOf({"1.234", "12,50"}), "comma line 2, '12,50'");
  EXPECT_EQ(markOf({"1.234.567"}), "comma line 1, '1.234.567'");
  EXPECT_EQ(markOf({"1,234,567"}), "point line 1, '1,234,567'");
  EXPECT_EQ(markOf({"1,234.5"}), "point line 1, '1,234.5'");
  EXPECT_EQ(markOf({"1234,567"}), "comma line 1, '1234,567'");
  EXPECT_EQ(markOf({"0.125"}), "point line 1, '0.125'");
  EXPECT_EQ(markOf({"1.5", "2.5"}), "point line 1, '1.5'");
  // What is no amount tells nothing.
  EXPECT_EQ(markOf({"24.12.2009", "1.2.3,4", "5.5 DR"}), "point ");
  EXPECT_EQ(markOf({"5", "1,234"}),
            "f: nothing tells whether line 2, '1,234', has a decimal mark or groups of three: "
            "--decimal point or comma does");
  EXPECT_EQ(markOf({"1.5", "2,25"}),
            "f: amounts have a point as the decimal mark (line 1, '1.5') and a comma (line 2, "
            "'2,25'): --decimal tells which holds");
}

TEST(NumberColumn, JoinsWhatJudgesHaveSeen) {
  using Verdict = DecimalMarkJudge::Verdict;
  struct Joined {
    std::initializer_list<std::string_view> first, later;
    Verdict verdict;
  };
  const Joined rows[] = {{{}, {}, Verdict::NoMark},
                         {{"5"}, {"1,234"}, Verdict::Open},
                         {{"1,234"}, {"1.5"}, Verdict::Point},
                         {{"1,5"}, {"1,234"}, Verdict::Comma},
                         {{"1,5"}, {"1.5"}, Verdict::Contradiction}};
  for (const Joined& row : rows) {
    DecimalMarkJudge judge = judgeOf(row.first);
    judge.add(judgeOf(row.later));
    EXPECT_EQ(judge.verdict(), row.verdict);
  }
  DecimalMarkJudge judge = judgeOf({"5", "1.5"});
  judge.add(judgeOf({"2.5", "1,234"}));
  EXPECT_EQ(judge.witnessOf(DecimalMark::Point).text, "1.5");
  EXPECT_EQ(judge.witnessOf(DecimalMark::Point).line, 2U);
  EXPECT_EQ(judge.witnessOf(DecimalMark::Point).column, 7U);
  EXPECT_EQ(judge.openWitness().text, "1,234");
}

}  // namespace
}  // namespace orlftool
