#include "interchange/csv_inference.h"

#include <gtest/gtest.h>

#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>
#include <array>
#include <cstdio>
#include <filesystem>
#include <map>
#include <random>

#include "session.h"

namespace {

using orlftool::Finding;
using Answers = std::map<std::string, std::string>;

std::vector<Finding> findingsOf(std::string_view bytes) {
  static const auto calendar = orlftool::makeCalendar("UTC", "en_US");
  return orlftool::inferTable(bytes, calendar);
}

Answers answersOf(std::string_view bytes) {
  Answers answers;
  for (const Finding& finding : findingsOf(bytes)) {
    EXPECT_NE(finding.reason, "") << finding.question;
    answers[finding.question] = finding.answer;
  }
  return answers;
}

struct Layout {
  const char* separator;
  char character;
  const char* order;
  const char* dateFormat;  // of day, month and year in the places %1$, %2$ and %3$
  const char* mark;
  const char* sign;
  const char* header;  // "line N" or "none"
};

std::string amountText(int hundredths, const Layout& layout) {
  const bool isComma = std::string_view(layout.mark) == "comma";
  const std::string_view sign = layout.sign;
  const int size = std::abs(hundredths);
  std::string whole = std::to_string(size / 100);
  if (whole.size() > 3) whole.insert(whole.size() - 3, isComma ? "." : ",");
  std::array<char, 8> fraction{};
  std::snprintf(fraction.data(), fraction.size(), "%c%02d", isComma ? ',' : '.', size % 100);
  std::string text = whole + fraction.data();
  if (hundredths < 0 && sign == "minus") text.insert(0, "-");
  if (hundredths < 0 && sign == "trailing minus") text += "-";
  if (hundredths < 0 && sign == "brackets") text = "(" + text + ")";
  return "\"" + text + "\"";
}

/// A statement of so many days, one line each, with a balance where the sign has a column.
std::string statementOf(const Layout& layout, int firstDay, int days, std::mt19937& random) {
  const std::string separator(1, layout.character);
  const std::string_view header = layout.header;
  const bool hasColumns = std::string_view(layout.sign).starts_with("columns");
  std::string text;
  if (header == "line 3") text += "Account" + separator + "1234\nStatement\n";
  if (header != "none")
    text += "Booked" + separator + "Text" + separator + "Amount" + separator + "Balance\n";
  int balance = 5'000'00;
  for (int day = firstDay; day < firstDay + days; ++day) {
    std::array<char, 40> date{};
    std::snprintf(date.data(), date.size(), layout.dateFormat, day, 3, 2024);
    const int amount = static_cast<int>(random() % 300'000) - 150'000;
    balance += amount;
    text += date.data();
    text += separator;
    text += "\"Shop " + std::to_string(random() % 90) + ", Main; St\"";
    text += separator;
    if (hasColumns)
      text += (amount < 0 ? amountText(-amount, layout) + separator
                          : separator + amountText(amount, layout));
    else
      text += amountText(amount, layout) + separator + amountText(balance, layout);
    text += "\n";
  }
  return text;
}

constexpr std::array<std::array<const char*, 2>, 7> kDateOrders{{{"dmy", "%1$02d/%2$02d/%3$d"},
                                                                 {"dmy", "%1$02d.%2$02d.%3$d"},
                                                                 {"mdy", "%2$d/%1$d/%3$d"},
                                                                 {"ymd", "%3$d-%2$02d-%1$02d"},
                                                                 {"ymd", "%3$d%2$02d%1$02d"},
                                                                 {"dmy", "%1$d Mar %3$d"},
                                                                 {"mdy", "%2$02d-%1$02d-%3$d"}}};

// Every separator, kind of date, mark, sign and header: 504 layouts, each over a whole month and
// over its first week, whose dates leave the order open.
TEST(InferTable, IsRightOrAsksOnGeneratedLayouts) {
  std::mt19937 random(17);
  std::size_t layouts = 0;
  std::map<std::string, std::size_t> asked;
  for (const auto& [separator, character] :
       {std::pair{"comma", ','}, std::pair{"semicolon", ';'}, std::pair{"tab", '\t'}}) {
    for (const auto& date : kDateOrders) {
      for (const char* mark : {"point", "comma"}) {
        for (const char* sign : {"minus", "trailing minus", "brackets", "columns 3 and 4"}) {
          for (const char* header : {"none", "line 1", "line 3"}) {
            const Layout layout{separator, character, date[0], date[1], mark, sign, header};
            ++layouts;
            for (const int days : {28, 7}) {
              const std::string text = statementOf(layout, 1, days, random);
              const Answers expected{{"separator", separator}, {"header", header},
                                     {"date order", date[0]},  {"decimal mark", mark},
                                     {"sign", sign},           {"encoding", "ascii"}};
              for (const auto& [question, answer] : answersOf(text)) {
                if (answer.empty()) ++asked[question + (days == 28 ? "" : " of a week")];
                EXPECT_TRUE(answer.empty() || answer == expected.at(question))
                    << question << ": " << answer << "\n"
                    << text;
              }
            }
          }
        }
      }
    }
  }
  EXPECT_EQ(layouts, 504U);
  // A month leaves nothing to ask for. A week of March leaves two orders to numbers with four
  // digits at their end.
  EXPECT_EQ(asked["separator"] + asked["header"] + asked["date order"] + asked["decimal mark"], 0U);
  EXPECT_EQ(asked["encoding"], 0U);
  EXPECT_EQ(asked["date order of a week"], 504U * 4 / 7);
  EXPECT_LE(asked["sign"], 25U);
}

// All lengths of statement, all beginnings: an order that is told is the one that was written.
TEST(InferTable, MisdatesNoStatementOfAMonth) {
  std::mt19937 random(3);
  std::size_t told = 0;
  for (const auto& date : kDateOrders) {
    const Layout layout{"comma", ',', date[0], date[1], "point", "minus", "none"};
    for (int days = 1; days <= 31; ++days) {
      for (int first = 1; first + days <= 32; first += 5) {
        const std::string order = answersOf(statementOf(layout, first, days, random))["date order"];
        EXPECT_TRUE(order.empty() || order == date[0]) << order << " for " << date[1];
        told += order.empty() ? 0 : 1;
      }
    }
  }
  EXPECT_GT(told, 400U);
}

struct FindingCase {
  const char* name;
  std::string_view text;
  const char* question;
  const char* answer;
  std::uint64_t line;
  const char* reason;
};
using namespace std::string_view_literals;
const FindingCase kFindings[] = {
    {"SeparatorByDates", "a;b\n1.2.2024;-48,00\n", "separator", "semicolon", 2,
     "'1.2.2024' stands alone in column 1"},
    {"SeparatorWithoutDates", "a,b\nc,d\n", "separator", "comma", 1, "it alone parts most rows"},
    {"TwoSeparators", "a,b;c\nd,e;f\n", "separator", "", 0,
     "comma and semicolon both part the rows"},
    {"NoSeparator", "a\nb\n", "separator", "", 0, "no separator parts most rows"},
    {"Nothing", "", "separator", "", 0, "no separator parts most rows"},
    {"HeaderBelowOtherLines", "Account,12\nDate,Amount\n2024-01-02,5.00\n", "header", "line 2", 2,
     "above the first date stands 'Date'"},
    {"NoHeader", "2024-01-02,5.00\n", "header", "none", 1, "the first row holds '2024-01-02'"},
    {"HeaderOfNumbers", "17,2024\n2024-01-02,5.00\n", "header", "", 1,
     "above the first date stands '17'"},
    {"DatesTooRare", "a,2024-01-02\nb,c\nd,e\n", "header", "", 0, "no row holds a date"},
    {"HeaderWithoutDates", "a,b\nc,d\n", "header", "", 0, "no row holds a date"},
    {"OrderByARow", "01/02/2024,1.00\n03/13/2024,2.00\n", "date order", "mdy", 2, "'03/13/2024'"},
    {"OrderBySecondColumn", "01/02/2024,13/02/2024\n", "date order", "dmy", 1, "'13/02/2024'"},
    {"OrderOfIso", "2024-01-02,1.00\n", "date order", "ymd", 1, "'2024-01-02'"},
    {"OpenOrder", "01/02/2024,1.00\n", "date order", "", 0,
     "all dates fit dmy and mdy, such as '01/02/2024'"},
    {"NoOrder", "13/02/2024,1.00\n02/13/2024,1.00\n", "date order", "", 0,
     "no order fits all dates, such as '13/02/2024'"},
    {"OrderByName", "10-Nov-09,1.00\n09-Nov-2010,1.00\n", "date order", "dmy", 2, "'09-Nov-2010'"},
    {"OpenOrderByName", "10-Nov-09,1.00\n", "date order", "", 0,
     "all dates fit dmy and ymd, such as '10-Nov-09'"},
    {"NamesAndNumbers", "10-Nov-2009,1.00\n2009-11-10,1.00\n", "date order", "", 0,
     "some dates name their month and some do not"},
    {"PointByPlaces", "2024-01-02,1.5\n", "decimal mark", "point", 1, "'1.5' in column 2"},
    {"OpenMark", "2024-01-02,\"1,234\"\n", "decimal mark", "", 0,
     "every mark may part thousands or a fraction"},
    {"MarkByALaterRow", "2024-01-02,\"1,234\"\n2024-01-02,\"1,23\"\n", "decimal mark", "comma", 2,
     "'1,23' in column 2"},
    {"Contradiction", "2024-01-02,1.5\n2024-01-02,\"1,23\"\n", "decimal mark", "", 0,
     "'1.5' in column 2 and '1,23' in column 2 contradict each other"},
    {"WholeNumbers", "2024-01-02,15\n", "decimal mark", "", 0, "no amount shows one"},
    {"Minus", "2024-01-02,1.50\n2024-01-03,-1.50\n", "sign", "minus", 2, "'-1.50' in column 2"},
    {"TrailingMinus", "2024-01-02,1.50-\n", "sign", "trailing minus", 1, "'1.50-' in column 2"},
    {"Brackets", "2024-01-02,($1.50)\n", "sign", "brackets", 1, "'($1.50)' in column 2"},
    {"TwoSigns", "2024-01-02,(1.50)\n2024-01-02,-1.50\n", "sign", "", 0,
     "amounts below zero are written in several ways"},
    {"TwoColumns", "2024-01-02,1.50,\n2024-01-02,,2.50\n", "sign", "columns 2 and 3", 1,
     "each row fills one of them"},
    {"TwoColumnsWithZeros", "2024-01-02,1.50,0.00\n2024-01-02,0.00,2.50\n", "sign",
     "columns 2 and 3", 1, "each row fills one of them"},
    {"TwoColumnsInOneRow", "2024-01-02,1.50,2.50\n2024-01-03\n", "sign", "", 0,
     "no amount is below zero, and no two columns share the rows"},
    {"NumbersOfRows", "2024-01-02,1.,5\n2024-01-03,2.,6\n", "decimal mark", "", 0,
     "no amount shows one"},
    {"WordsForSigns", "2024-01-02,1.50,DEBIT\n2024-01-02,2.50,CREDIT\n", "sign", "", 0,
     "no amount is below zero, and no two columns share the rows"},
    // The amounts are unsigned, and the balance fell below zero.
    {"OverdrawnBalance",
     "2024-01-02,1.50,D,1.00\n2024-01-03,3.00,D,-2.00\n2024-01-04,1.00,D,-3.00\n", "sign", "", 0,
     "no amount is below zero, and no two columns share the rows"},
    {"SignsBesideAnotherColumn", "2024-01-02,-1.50,9.00\n", "sign", "", 1,
     "one column holds amounts below zero and another does not"},
    {"NoAmounts", "2024-01-02,a\n", "sign", "", 0, "no column holds amounts"},
    {"ASCII", "a,b\n", "encoding", "ascii", 0, "no row holds any other character"},
    {"UTF8", "a,b\ncafé,d\n", "encoding", "utf-8", 2, "'café,d'"},
    {"Marked",
     "\xEF\xBB\xBF"
     "a,b\n",
     "encoding", "utf-8", 1, "a byte order mark"},
    {"UTF16",
     "\xFF\xFE"
     "a\0,\0b\0"sv,
     "encoding", "utf-16", 1, "a byte order mark"},
    {"OneByte", "a,b\ncaf\xE9,d\n", "encoding", "", 2,
     "bytes beyond ASCII that are no utf-8; windows-1252 reads 'café,d'; latin-1 reads 'café,d'; "
     "mac-roman reads 'cafÈ,d'"},
    {"Zeros", "a\0,\0b\0"sv, "encoding", "", 0, "it holds zero bytes, as utf-16be and utf-16le do"},
    {"UnknownToWindows", "a,\x81\n", "encoding", "", 1,
     "bytes beyond ASCII that are no utf-8; latin-1 reads 'a,?'; mac-roman reads 'a,Å'"},
};

TEST(InferTable, NamesTheRowThatDecided) {
  for (const FindingCase& each : kFindings) {
    for (const Finding& finding : findingsOf(each.text)) {
      if (finding.question != each.question) continue;
      EXPECT_EQ(finding.answer, each.answer) << each.name;
      EXPECT_EQ(finding.line, each.line) << each.name;
      EXPECT_EQ(finding.reason, each.reason) << each.name;
    }
  }
}

// Bytes come in pieces; line ends of two bytes lie across their edges, too.
TEST(InferTable, FindsTheRowOfTheEncodingBehindManyPieces) {
  constexpr std::size_t kRows = 30'000;
  for (std::size_t shift = 0; shift < 6; ++shift) {
    std::string text(shift + 1, 'a');
    for (std::size_t row = 0; row < kRows; ++row) text += ",b\r\na";
    text += "caf\xC3\xA9,d";
    for (std::size_t row = 0; row < kRows; ++row) text += "\r\na,b";
    for (const Finding& finding : findingsOf(text)) {
      if (finding.question != "encoding") continue;
      EXPECT_EQ(finding.answer, "utf-8");
      EXPECT_EQ(finding.line, kRows + 1) << shift;
      EXPECT_EQ(finding.reason, "'acafé,d'");
    }
  }
}

struct RealFile {
  const char* name;
  // Of the questions below, as the banks' pages and the rows of the file tell; empty for what the
  // file does not hold, so that it has to be asked.
  std::array<const char*, 6> answers;
};
constexpr std::array<const char*, 6> kQuestions{"separator",    "header", "date order",
                                                "decimal mark", "sign",   "encoding"};
const RealFile kRealFiles[] = {
    {"reckon/51-sample", {"comma", "none", "mdy", "point", "", "ascii"}},
    {"reckon/73-sample", {"comma", "line 1", "mdy", "point", "", "ascii"}},
    {"reckon/85-date-example", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"reckon/austrian_example", {"semicolon", "none", "dmy", "comma", "minus", "utf-8"}},
    {"reckon/bom_utf8_file", {"comma", "", "", "", "", "utf-8"}},
    {"reckon/broker_canada_example", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"reckon/chase", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"reckon/danish_kroner_nordea_example",
     {"semicolon", "none", "dmy", "comma", "minus", "ascii"}},
    {"reckon/english_date_example", {"comma", "none", "dmy", "point", "minus", "ascii"}},
    {"reckon/extratofake", {"comma", "line 1", "mdy", "point", "minus", "latin-1"}},
    {"reckon/french_example", {"semicolon", "none", "dmy", "comma", "minus", "ascii"}},
    {"reckon/german_date_example", {"comma", "none", "dmy", "point", "minus", "ascii"}},
    {"reckon/harder_date_example", {"comma", "none", "dmy", "point", "minus", "ascii"}},
    {"reckon/ing", {"comma", "none", "ymd", "comma", "", "ascii"}},
    {"reckon/invalid_header_example", {"semicolon", "line 4", "dmy", "comma", "minus", "utf-8"}},
    {"reckon/inversed_credit_card", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"reckon/multi-line-field", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"reckon/nationwide", {"comma", "none", "dmy", "point", "columns 4 and 5", "utf-8"}},
    {"reckon/simple", {"comma", "", "", "", "", "ascii"}},
    {"reckon/some_other", {"comma", "none", "ymd", "point", "brackets", "ascii"}},
    {"reckon/spanish_date_example", {"comma", "none", "dmy", "point", "minus", "ascii"}},
    {"reckon/suntrust", {"comma", "none", "mdy", "point", "columns 4 and 5", "ascii"}},
    {"reckon/test_money_column", {"comma", "line 1", "ymd", "point", "minus", "ascii"}},
    {"reckon/two_money_columns", {"comma", "none", "mdy", "point", "minus", "ascii"}},
    {"reckon/yyyymmdd_date_example", {"comma", "none", "ymd", "point", "minus", "ascii"}},
    {"csv2ofx/amazon", {"comma", "line 1", "ymd", "point", "", "utf-8"}},
    {"csv2ofx/capitalone", {"comma", "line 1", "ymd", "point", "columns 6 and 7", "ascii"}},
    {"csv2ofx/creditunion", {"comma", "line 1", "mdy", "", "", "utf-8"}},
    {"csv2ofx/default", {"comma", "line 1", "ymd", "", "", "utf-8"}},
    {"csv2ofx/gls", {"semicolon", "line 1", "dmy", "comma", "minus", "latin-1"}},
    {"csv2ofx/ingesp", {"comma", "line 1", "dmy", "point", "minus", "utf-8"}},
    {"csv2ofx/n26-fr", {"comma", "line 1", "ymd", "point", "minus", "ascii"}},
    {"csv2ofx/outbank", {"semicolon", "line 1", "mdy", "comma", "minus", "ascii"}},
    {"csv2ofx/payoneer", {"comma", "line 1", "mdy", "", "columns 6 and 7", "ascii"}},
    {"csv2ofx/pcmastercard", {"comma", "line 1", "mdy", "point", "", "ascii"}},
    {"csv2ofx/schwab-checking", {"comma", "line 1", "mdy", "point", "columns 6 and 7", "ascii"}},
    {"csv2ofx/stripe-all", {"comma", "line 1", "ymd", "point", "", "ascii"}},
    {"csv2ofx/stripe-default", {"comma", "line 1", "ymd", "point", "", "ascii"}},
    {"csv2ofx/ubs-ch-fr_trimmed",
     {"semicolon", "line 1", "dmy", "point", "columns 9 and 10", "utf-8"}},
    {"csv2ofx/xero", {"comma", "line 1", "dmy", "", "minus", "ascii"}},
};

TEST(InferTable, IsRightOrAsksOnRealFiles) {
  std::size_t told = 0;
  for (const RealFile& file : kRealFiles) {
    const std::string bytes =
        orlftest::contentOf(std::string(ORLF_SOURCE_DIR) + "/tests/data/csv/" + file.name + ".csv");
    ASSERT_FALSE(bytes.empty()) << file.name;
    const Answers answers = answersOf(bytes);
    for (std::size_t at = 0; at < kQuestions.size(); ++at) {
      const std::string& answer = answers.at(kQuestions[at]);
      EXPECT_TRUE(answer.empty() || answer == file.answers[at])
          << file.name << ": " << kQuestions[at] << " is told as " << answer;
      told += answer.empty() ? 0 : 1;
    }
  }
  EXPECT_GE(told, 190U);
}

class InferCommand : public orlftest::TemporaryFolderTest {};

TEST_F(InferCommand, PrintsAnswersAndAsks) {
  const std::string file = write("a.csv", "Date,Amount\n01/02/2024,-1.50\n");
  const orlftest::ToolRun run = orlftest::runTool({"csv", "--infer", file});
  EXPECT_EQ(run.exitCode, 0) << run.err;
  EXPECT_EQ(run.out,
            "Question      Answer  Line  Because\n"
            "------------  ------  ----  -----------------------------------------------\n"
            "separator     comma      2  '01/02/2024' stands alone in column 1\n"
            "header        line 1     1  above the first date stands 'Date'\n"
            "date order    ask           all dates fit dmy and mdy, such as '01/02/2024'\n"
            "decimal mark  point      2  '-1.50' in column 2\n"
            "sign          minus      2  '-1.50' in column 2\n"
            "encoding      ascii         no row holds any other character\n");
  const orlftest::ToolRun json = orlftest::runTool({"csv", "--infer", file, "--json"});
  EXPECT_NE(json.out.find("\"answer\": null"), std::string::npos);
  EXPECT_EQ(orlftest::runTool({"csv", "--infer", file, "--delimiter", "tab"}).exitCode, 2);
}

}  // namespace
