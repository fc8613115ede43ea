#include "io/csv_records.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using orlftool::CsvFault;
using orlftool::CsvReader;
using orlftool::CsvRecord;
using Texts = std::vector<std::vector<std::string>>;

struct Fault : std::runtime_error {
  explicit Fault(const CsvFault& what)
      : std::runtime_error(std::to_string(what.line) + "/" + std::to_string(what.field) + " " +
                           std::string(what.expected) + ", " + what.got) {}
};

std::vector<CsvRecord> recordsOf(std::string_view text) {
  CsvReader reader(text, [](const CsvFault& fault) { throw Fault(fault); });
  std::vector<CsvRecord> records;
  CsvRecord record;
  while (reader.next(record)) records.push_back(record);
  return records;
}

Texts textsOf(std::string_view text) {
  Texts texts;
  for (const CsvRecord& record : recordsOf(text)) {
    texts.emplace_back();
    for (const auto& field : record) texts.back().push_back(field.text);
  }
  return texts;
}

struct ReadCase {
  const char* name;
  const char* text;
  Texts fields;
};
const ReadCase kReads[] = {
    {"Nothing", "", {}},
    {"BlankLinesOnly", "\n \r\n\t\r", {}},
    {"ByteOrderMark",
     "\xEF\xBB\xBF"
     "a,b",
     {{"a", "b"}}},
    {"ByteOrderMarkBeforeAQuote", "\xEF\xBB\xBF\"a\",b", {{"a", "b"}}},
    {"ThreeLineEnds", "a\nb\r\nc\rd", {{"a"}, {"b"}, {"c"}, {"d"}}},
    {"NoRecordAfterTheLastLineEnd", "a,b\r\n", {{"a", "b"}}},
    {"EmptyFields", ",a,\n,", {{"", "a", ""}, {"", ""}}},
    {"BlanksAroundFields", " a b ,\tc\t\n", {{"a b", "c"}}},
    {"QuotedComma", "\"a,b\",c", {{"a,b", "c"}}},
    {"QuotedBlanksStay", " \" a \" ,c", {{" a ", "c"}}},
    {"DoubledQuotes", "\"a\"\"b\",\"\"\"\"", {{"a\"b", "\""}}},
    {"EmptyQuotes", "\"\"", {{""}}},
    {"QuotedLineEnds", "\"a\nb\r\nc\",d", {{"a\nb\r\nc", "d"}}},
    {"QuoteInsideOfAPlainField", "a\"b,c", {{"a\"b", "c"}}},
    {"BlankLinesBetween", "a\n\n  \nb", {{"a"}, {"b"}}},
};

TEST(CsvReader, ReadsRecords) {
  for (const ReadCase& row : kReads) EXPECT_EQ(textsOf(row.text), row.fields) << row.name;
}

TEST(CsvReader, TellsTheLineOnWhichAFieldBegins) {
  const auto records = recordsOf("\n\"a\nb\r\nc\rd\",e\r\nf");
  ASSERT_EQ(records.size(), 2U);
  EXPECT_EQ(records[0][0].line, 2U);
  EXPECT_EQ(records[0][1].line, 5U);
  EXPECT_EQ(records[1][0].line, 6U);
}

struct FaultCase {
  const char* text;
  const char* message;
};
const FaultCase kFaults[] = {
    {"a\nb,\"c", "2/1 a closing quote, the end of the file"},
    {"\"", "1/0 a closing quote, the end of the file"},
    {"\"a\"\"", "1/0 a closing quote, the end of the file"},
    {"\"a\nb\" c,d", "2/0 a comma or the end of the line after the closing quote, 'c'"},
};

TEST(CsvReader, TellsWhatIsWrongWithQuotes) {
  for (const FaultCase& row : kFaults) {
    try {
      (void)recordsOf(row.text);
      FAIL() << row.text;
    } catch (const Fault& fault) {
      EXPECT_STREQ(fault.what(), row.message);
    }
  }
}

}  // namespace
