#include <ORLFoundation/interchange/tabular/ORLFScannerUtilities.h>

#include <ORLFoundation/platform/text/NSStringSearch.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <array>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using TextRows = std::vector<std::vector<std::string>>;

TextRows textsOf(const ORLFTabularRows& rows) {
  TextRows texts;
  for (const ORLFTabularRows::Row row : rows) texts.emplace_back(row.begin(), row.end());
  return texts;
}

TextRows rowsOf(std::string text) {
  NSScanner scanner(std::move(text));
  return textsOf(csvRows(scanner));
}

std::shared_ptr<NSCharacterSet> setOf(std::string_view characters) {
  return NSCharacterSet::characterSetWithCharactersInString(characters);
}

/// The reading of rows step by step, on the scanner alone.
class PlainReader {
 public:
  explicit PlainReader(std::string text) : scanner_(std::move(text)) {}

  TextRows rows() {
    std::string_view firstLine;
    scanner_.scanUpToCharactersFromSet(*lineEnds_, &firstLine);
    separator_ = firstLine.find("\";\"") != firstLine.npos ? ";"
                 : firstLine.find(';') != firstLine.npos   ? ";"
                                                           : ",";
    stops_ = setOf("\"\n\v\f\r\xC2\x85\xE2\x80\xA8\xE2\x80\xA9" + separator_);
    scanner_.setScanLocation(0);
    scanner_.setCharactersToBeSkipped(nullptr);
    TextRows rows;
    while (!scanner_.isAtEnd()) {
      const auto row = readRow();
      if (!row.empty()) rows.push_back(row);
    }
    return rows;
  }

 private:
  std::vector<std::string> readRow() {
    std::vector<std::string> row;
    std::string field;
    bool isQuoted = false;
    for (;;) {
      std::string_view found;
      if (scanner_.scanUpToCharactersFromSet(*stops_, &found)) field += found;
      if (scanner_.isAtEnd()) break;
      if (scanner_.scanCharactersFromSet(*lineEnds_, &found)) {
        if (!isQuoted) break;
        field += found;
      }
      if (scanner_.scanString("\"")) {
        if (isQuoted && scanner_.scanString("\"")) {
          field += '"';
          continue;
        }
        isQuoted = !isQuoted;
      }
      if (scanner_.scanString(separator_)) {
        if (isQuoted) {
          field += separator_;
        } else {
          row.push_back(field);
          field.clear();
          isQuoted = false;
          scanner_.scanCharactersFromSet(*NSCharacterSet::whitespaceCharacterSet());
        }
      }
    }
    if (!field.empty()) row.push_back(field);
    return row;
  }

  NSScanner scanner_;
  std::string separator_;
  std::shared_ptr<NSCharacterSet> stops_;
  std::shared_ptr<NSCharacterSet> lineEnds_ = NSCharacterSet::newlineCharacterSet();
};

TEST(CsvRows, AgreesWithVectors) {
  orlftest::runJsonVectors("interchange_csv_read",
                           {{"csvRows", [](const Json& in, const Json& out) {
                               return disagreement(out, Json(rowsOf(in.get<std::string>())));
                             }}});
}

TEST(CsvRows, AgreesWithTheStepsOnRandomTexts) {
  constexpr std::array<std::string_view, 24> kPieces{"a",
                                                     "bc",
                                                     ",",
                                                     ";",
                                                     "\"",
                                                     "\"\"",
                                                     "\n",
                                                     "\r\n",
                                                     "\r",
                                                     " ",
                                                     "\t",
                                                     "\v",
                                                     "\f",
                                                     "\xC2\x85",
                                                     "\xE2\x80\xA8",
                                                     "\xE2\x80\xA9",
                                                     "\xC2\xA0",
                                                     "\xE2\x80\x8B",
                                                     "\xE3\x80\x80",
                                                     "€",
                                                     "\xC2",
                                                     "\xE2\x80",
                                                     "😀",
                                                     "\";\""};
  std::mt19937 random(20240229);
  std::uniform_int_distribution<std::size_t> piece(0, kPieces.size() - 1);
  std::uniform_int_distribution<int> length(0, 90);
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int left = length(random); left > 0; --left) text += kPieces[piece(random)];
    ASSERT_EQ(rowsOf(text), PlainReader(text).rows()) << Json(text);
  }
}

TEST(CsvRows, TakeASemicolonWhereverTheFirstLineHoldsOne) {
  EXPECT_EQ(rowsOf("\"a\";\"b\"\n"), (TextRows{{"a", "b"}}));
  EXPECT_EQ(rowsOf("a,b;c\n1,2;3"), (TextRows{{"a,b", "c"}, {"1,2", "3"}}));
  EXPECT_EQ(rowsOf("a,b\n1;2,3"), (TextRows{{"a", "b"}, {"1;2", "3"}}));
  EXPECT_EQ(rowsOf("\n \n a;b"), (TextRows{{" "}, {" a", "b"}}));
  EXPECT_EQ(rowsOf("a\tb\n"), (TextRows{{"a\tb"}}));
}

TEST(CsvRows, ReadTwoMarksInsideMarksAsOne) {
  EXPECT_EQ(rowsOf("\"a\"\"b\""), (TextRows{{"a\"b"}}));
}

TEST(CsvRows, KeepALineBreakInsideMarks) {
  EXPECT_EQ(rowsOf("\"a\r\nb\",c"), (TextRows{{"a\r\nb", "c"}}));
}

TEST(CsvRows, DropATrailingEmptyFieldAndBlankLines) {
  EXPECT_EQ(rowsOf("a,b,\n\n\na,,b\n"), (TextRows{{"a", "b"}, {"a", "", "b"}}));
}

TEST(CsvRows, KeepWhiteSpaceButBehindASeparator) {
  EXPECT_EQ(rowsOf(" a ,\t b "), (TextRows{{" a ", "b "}}));
}

TEST(CsvRows, LoseMarksInTheMiddleOfAField) {
  EXPECT_EQ(rowsOf("x\"y,z\"w"), (TextRows{{"xy,zw"}}));
}

TEST(CsvRows, LeaveTheScannerAtItsEndSkippingNothing) {
  NSScanner scanner("a\nb ");
  EXPECT_EQ(textsOf(csvRows(scanner)), (TextRows{{"a"}, {"b "}}));
  EXPECT_TRUE(scanner.isAtEnd());
  EXPECT_EQ(scanner.charactersToBeSkipped(), nullptr);
}

TEST(CsvRows, TakeTheSeparatorFromTheLineAtTheScannersPlace) {
  NSScanner scanner("a,b\nc;d");
  scanner.setScanLocation(4);
  EXPECT_EQ(textsOf(csvRows(scanner)), (TextRows{{"a,b"}, {"c", "d"}}));
}

TEST(ScanHexDigits, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "interchange_hex",
      {{"orlfScanHexDigits", [](const Json& in, const Json& out) {
          constexpr std::uint32_t kUntouched = 0xDEADBEEF;
          NSScanner scanner(in.at("text").get<std::string>());
          scanner.setScanLocation(in.at("location").get<NSUInteger>());
          std::uint32_t value = kUntouched;
          const bool ok = orlfScanHexDigits(scanner, in.at("count").get<std::int32_t>(), &value);
          Json result{{"ok", ok}, {"location", scanner.scanLocation()}, {"value", nullptr}};
          if (value != kUntouched) result["value"] = value;
          return disagreement(out, result);
        }}});
}

TEST(ScanHexDigits, LeavesPlaceAndSlotWhereItFails) {
  NSScanner scanner("x12G4");
  scanner.setScanLocation(1);
  std::uint32_t value = 7;
  EXPECT_FALSE(orlfScanHexDigits(scanner, 3, &value));
  EXPECT_FALSE(orlfScanHexDigits(scanner, 5, &value));
  EXPECT_EQ(value, 7U);
  EXPECT_EQ(scanner.scanLocation(), 1U);
  EXPECT_TRUE(orlfScanHexDigits(scanner, 2, &value));
  EXPECT_EQ(value, 0x12U);
  EXPECT_EQ(scanner.scanLocation(), 3U);
}

TEST(ScanHexDigits, SkipsNothing) {
  NSScanner scanner(" 12");
  EXPECT_FALSE(orlfScanHexDigits(scanner, 2, nullptr));
}

TEST(ScanHexDigits, KeepsTheLast32Bits) {
  NSScanner scanner("123456789aBc");
  std::uint32_t value = 0;
  EXPECT_TRUE(orlfScanHexDigits(scanner, 12, &value));
  EXPECT_EQ(value, 0x56789ABCU);
}

TEST(ScanHexDigits, TakesNothingForACountOfZeroOrBelow) {
  NSScanner scanner("12");
  for (const std::int32_t count : {0, -1, std::numeric_limits<std::int32_t>::min()}) {
    std::uint32_t value = 7;
    EXPECT_TRUE(orlfScanHexDigits(scanner, count, &value));
    EXPECT_EQ(value, 0U);
    EXPECT_EQ(scanner.scanLocation(), 0U);
  }
}

TEST(ScanHexDigits, GoesWithoutASlot) {
  NSScanner scanner("12");
  EXPECT_TRUE(orlfScanHexDigits(scanner, 1, nullptr));
  EXPECT_EQ(scanner.scanLocation(), 1U);
}

}  // namespace
}  // namespace ORLFoundation
