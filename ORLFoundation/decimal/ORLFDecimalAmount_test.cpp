
#include <ORLFoundation/decimal/ORLFDecimalAmount.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/number/NSDecimalNumber_testing.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <nlohmann/json.hpp>
#include <regex>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

struct AmountCase {
  std::string text;
  std::string value;
};

std::string read(std::optional<std::string_view> text) {
  const Optional amount = orlfDecimalNumberWithFormattedString(text);
  return textOf(amount);
}

void expectAll(const std::vector<AmountCase>& rows) {
  const LogCapture log;
  for (const AmountCase& row : rows) EXPECT_EQ(read(row.text), row.value) << row.text;
  EXPECT_TRUE(log.lines().empty());
}

TEST(ORLFDecimalAmount, GivesNilForNothing) {
  EXPECT_EQ(read(std::nullopt), "nil");
  // What an emptied text held before does not count.
  std::optional<std::string_view> text = "5";
  text.reset();
  EXPECT_EQ(read(text), "nil");
  expectAll({{"", "nil"}, {"   ", "nil"}, {"$", "nil"}, {"()", "nil"}, {"-", "nil"}});
}

TEST(ORLFDecimalAmount, SkipsWhatStandsBeforeTheNumberAndSomeOfWhatFollows) {
  expectAll({{"$1,000.50", "1000.5"},
             {"USD 5", "5"},
             {"5 USD", "nil"},
             {"5 \u20AC", "5"},
             {"1 000", "1000"},
             {"1\u00A0000", "1000"},
             {"12%", "12"},
             {"5\n", "5"},
             {"5\u00E9", "nil"},
             {"5e\u0301", "nil"},
             {"5\U0001F600", "5"},
             {"5\U0001D400", "nil"},
             {"5\U0001F600e+3", "5000"},
             {"(5\U0001F600)", "-5"},
             {"5\U0001F600\U0001D400", "nil"},
             {"\U0001D400(5)", "5"},
             {"\U0001D7D95", "5"},
             {"5\xFF", "5"}});
}

TEST(ORLFDecimalAmount, NeedsTheSignOfAnExponent) {
  expectAll({{"1e+3", "1000"},
             {"1E-2", "0.01"},
             {"1e3", "nil"},
             {"1e3+5", "nil"},
             {"1e+", "nil"},
             {"1e", "nil"},
             {"e+3", "nil"},
             {"1e+1e+1", "nil"},
             {"1e+1/2", "nil"},
             {"1/2e+1", "5"},
             {"1e+164", "1" + std::string(164, '0')},
             {"1e+999", "nil"}});
}

TEST(ORLFDecimalAmount, TakesASignAtTheBeginningOnly) {
  expectAll({{"-5", "-5"},
             {"+5", "5"},
             {"5-", "nil"},
             {"5+", "nil"},
             {"--5", "nil"},
             {"+-5", "-5"},
             {"-+5", "nil"},
             {"$-5", "-5"}});
}

TEST(ORLFDecimalAmount, NegatesBetweenAPairOfBrackets) {
  expectAll({{"(12.50)", "-12.5"},
             {" ( 12.50 ) ", "-12.5"},
             {"\t(12.50)\t", "-12.5"},
             {"\r(12.50)\n", "-12.5"},
             {"\u0085(12.50)\u00A0", "-12.5"},
             {"\b(12.50)", "12.5"},
             {"\x0E(12.50)", "12.5"},
             {"(12.50", "12.5"},
             {"12.50)", "12.5"},
             {"(-12.50)", "12.5"},
             {"(0)", "0"}});
}

TEST(ORLFDecimalAmount, TellsThousandsFromDecimalsByTheirPlaces) {
  expectAll({{"1,234", "1234"},
             {"1.234", "1.234"},
             {"1,234,567", "1234567"},
             {"1.234.567", "1234567"},
             {"1,23", "1.23"},
             {"1,234.56", "1234.56"},
             {"1.234,567", "1234.567"},
             {"1,23,456", "123456"},
             {"1,,2", "nil"},
             {"1,2,3", "nil"},
             {"1,2e+3,4", "nil"},
             {"1e+3,4", "nil"},
             {"1e+3.", "nil"},
             {"1e,+3", "nil"},
             {"1e+3,456", "nil"},
             {"1,234e+3,456", "nil"},
             {"1.23,", "123"},
             {",5", "0.5"},
             {".", "nil"}});
}

TEST(ORLFDecimalAmount, ReadsOneFraction) {
  expectAll({{"1/2", "0.5"},
             {"1/3", "0.3333"},
             {"3 1/2", "3.5"},
             {"-1/2", "-0.5"},
             {"7/2", "3.5"},
             {"1/0", "1"},
             {"5/", "5"},
             {"/2", "0"},
             {"/", "nil"},
             {"1/2/3", "nil"},
             {"99999/100000", "1"},
             {"3 99999/100000", "4"},
             {"-3 99999/100000", "-4"},
             {"9 99999/100000", "10"},
             {"-199 99999/100000", "-200"},
             {"(3 99999/100000)", "-4"},
             {"- 99999/100000", "-1"},
             {"3 9999/10000", "3.9999"},
             {"9223372036854775807/1", "9223372036854775808"},
             {"99999999999999999999/1", "9223372036854775808"},
             {"99999999999999999999/99999999999999999999", "1"}});
}

TEST(ORLFDecimalAmount, EndsAtTheFirstCharacterThatFitsNoAmount) {
  // Read on, the improper fraction would leave the rest alone, and a line in the log.
  expectAll({{"7/2-5", "nil"},
             {"7/2+5", "nil"},
             {"3 7/2e+1e+1", "nil"},
             {"3 7/2 x", "nil"},
             {"3 7/2e1", "nil"}});
}

TEST(ORLFDecimalAmount, IgnoresTheFractionBehindASeparator) {
  expectAll({{"1.5 1/2", "1.512"}, {"1,000/2", "1.0002"}});
}

TEST(ORLFDecimalAmount, LeavesAnImproperFractionOutWithALineInTheLog) {
  const LogCapture log;
  EXPECT_EQ(read("3 7/2"), "3");
  EXPECT_EQ(read("-7/2"), "nil");
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{"Cannot append improper fraction to end of amount: 3",
                                      "Cannot append improper fraction to end of amount: -"}));
}

TEST(ORLFDecimalAmount, ReadsLongTextsInOnePass) {
  EXPECT_EQ(read(std::string(1000000, ' ') + "7"), "7");
  EXPECT_EQ(read("7" + std::string(1000000, '%')), "7");
  EXPECT_EQ(read(std::string(1000000, '9')), "nil");
  EXPECT_EQ(read("1/" + std::string(1000000, '9')), "0");
}

/// Texts of one number with its marks and a currency sign: no letters, brackets or slashes, and no
/// single "." before three digits, which other readers take for thousands.
bool isPlainAmount(const std::string& text) {
  static const std::regex kForm(
      R"([^0-9A-Za-z.,/()+-]*-?[^0-9A-Za-z.,/()+-]*[0-9][0-9 .,]*( *€)?)");
  static const std::regex kSinglePoint(R"([^.,]*\.[0-9]{3}[^0-9.,]*)");
  return std::regex_match(text, kForm) && !std::regex_match(text, kSinglePoint);
}

TEST(ORLFDecimalAmount, AgreesWithOtherReadersOnPlainAmountsAsTyped) {
  int texts = 0, plain = 0;
  for (const auto& row : orlftest::tabbedRows(std::string(ORLF_SOURCE_DIR) +
                                              "/tests/data/amounts/amounts_typed.tsv")) {
    const std::string text = nlohmann::json::parse(row.at(0)).get<std::string>();
    const std::string& expected = row.at(1);
    const std::string value = read(text);
    ++texts;
    if (!isPlainAmount(text)) continue;
    ++plain;
    EXPECT_EQ(value, expected) << text;
  }
  EXPECT_EQ(texts, 537);
  RecordProperty("plain_amounts", plain);
  std::cout << "amounts_typed.tsv: " << texts << " texts read, " << plain << " compared\n";
  EXPECT_GT(plain, 300);
}

}  // namespace
}  // namespace ORLFoundation
