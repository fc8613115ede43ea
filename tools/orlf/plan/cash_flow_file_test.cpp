#include "plan/cash_flow_file.h"

#include <ORLFoundation/platform/time/NSCalendar_testing.h>
#include <gtest/gtest.h>

#include "cli/failure.h"
#include "values/date_text.h"

namespace {

using namespace ORLFoundation;
using orlftest::newYorkCalendar;
using orlftool::readGroupedDecimal;
using Flows = std::vector<std::string>;

/// "2024-01-01 -100" for each flow.
Flows flowsOf(std::string_view text) {
  Flows flows;
  for (const auto& flow : orlftool::parseCashFlows(text, "flows.csv", newYorkCalendar()))
    flows.push_back(orlftool::shortDateText(flow.date, newYorkCalendar()) + " " +
                    flow.amount.stringValue());
  return flows;
}

struct ReadCase {
  const char* name;
  const char* text;
  Flows flows;
};
const ReadCase kReads[] = {
    {"NoHeader", "2024-01-01,-100\n2024-07-01,110.5", {"2024-01-01 -100", "2024-07-01 110.5"}},
    {"Header", "Date,Amount\n2024-01-01,-100\n", {"2024-01-01 -100"}},
    {"QuotedHeader", "\"When\",\"How much\"\r\n2024-01-01,-100\r\n", {"2024-01-01 -100"}},
    {"HeaderAlone", "date,amount", {}},
    {"Nothing", "", {}},
    {"ByteOrderMark",
     "\xEF\xBB\xBF"
     "2024-01-01,5",
     {"2024-01-01 5"}},
    {"QuotedFields", "\"2024-01-01\",\"-1,234.50\"", {"2024-01-01 -1234.5"}},
    {"BlanksAndEmptyLines",
     "\n 2024-01-01 , +5 \n\n\n2024-01-02,6",
     {"2024-01-01 5", "2024-01-02 6"}},
    {"LocalTimes", "2024-01-01T09:30,5", {"2024-01-01T09:30:00-05:00 5"}},
    {"TimesWithAnOffset", "2024-01-01T05:00:00Z,5", {"2024-01-01 5"}},
    {"OrderStays", "2025-01-01,1\n2024-01-01,2", {"2025-01-01 1", "2024-01-01 2"}},
    {"TrailingComma", "2024-01-01,5,\n", {"2024-01-01 5"}},
    {"LineEndsOfThreeKinds",
     "2024-01-01,5\r2024-01-02,6\r\n2024-01-03,7",
     {"2024-01-01 5", "2024-01-02 6", "2024-01-03 7"}},
    {"Exponents", "2024-01-01,1.5e3", {"2024-01-01 1500"}},
};

TEST(CashFlowFile, ReadsFlows) {
  for (const ReadCase& row : kReads) EXPECT_EQ(flowsOf(row.text), row.flows) << row.name;
}

struct FlowFault {
  const char* name;
  const char* text;
  const char* message;
};
const FlowFault kFlowFaults[] = {
    {"DateThatDoesNotExist", "2024-02-30,5",
     "flows.csv:1: date: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got '2024-02-30'"},
    {"FirstLineWithADateIsNoHeader", "2024-01-01,five",
     "flows.csv:1: amount: expected a decimal text such as -1250.75, got 'five'"},
    {"FirstLineWithAnAmountIsNoHeader", "someday,5",
     "flows.csv:1: date: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got 'someday'"},
    {"SecondHeader", "date,amount\ndate,amount\n",
     "flows.csv:2: date: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got 'date'"},
    {"EmptyAmount", "2024-01-01, \n",
     "flows.csv:1: expected 2 fields, a date and an amount, got 1"},
    {"BlankAmount", "2024-01-01,\"\t \"\n",
     "flows.csv:1: amount: expected a decimal text such as -1250.75, got ''"},
    {"TextBehindQuotes", "\"2024-01-01\"x,5\n",
     "flows.csv:1: date: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got '2024-01-01x'"},
    {"NotANumber", "2024-01-01,NaN",
     "flows.csv:1: amount: expected a decimal text such as -1250.75, got 'NaN'"},
    {"OneField", "2024-01-01\n", "flows.csv:1: expected 2 fields, a date and an amount, got 1"},
    {"ThreeFields", "2024-01-01,5,6\n",
     "flows.csv:1: expected 2 fields, a date and an amount, got 3"},
    {"OtherMarks", "2024-01-01;5\n", "flows.csv:1: expected 2 fields, a date and an amount, got 1"},
    {"OpenQuote", "\n\n2024-01-01,\"5\n",
     "flows.csv:3: amount: expected a closing quote, got the end of the file"},
    {"ThirdFieldWithAnOpenQuote", "a,b,\"c",
     "flows.csv:1: field 3: expected a closing quote, got the end of the file"},
    {"LineOfAFieldAfterQuotedLineEnds", "\"2024-01-01\n\",5",
     "flows.csv:1: date: expected an ISO 8601 date or date-time such as 2024-01-31 or "
     "2024-01-31T09:30:00-05:00, got '2024-01-01?'"},
};

TEST(CashFlowFile, TellsFileLineAndFieldOfWhatItCannotRead) {
  for (const FlowFault& row : kFlowFaults) {
    try {
      (void)flowsOf(row.text);
      ADD_FAILURE() << row.name;
    } catch (const orlftool::JobFailure& failure) {
      EXPECT_STREQ(failure.what(), row.message) << row.name;
    }
  }
}

TEST(ReadGroupedDecimal, TakesGroupsOfThree) {
  for (const auto& [text, number] :
       std::vector<std::pair<const char*, const char*>>{{"1,234", "1234"},
                                                        {"-12,345.678", "-12345.678"},
                                                        {"+123,456,789", "123456789"},
                                                        {"1,234.", "1234"},
                                                        {"1234", "1234"},
                                                        {".5", "0.5"}}) {
    const auto read = readGroupedDecimal(text);
    ASSERT_TRUE(read) << text;
    EXPECT_EQ(read->stringValue(), number);
  }
}

TEST(ReadGroupedDecimal, RefusesOtherGroups) {
  for (const char* text : {"1,23", "1,2345", "1234,567", ",123", "1,,234", "1,234,5", "1,234.5,6",
                           "1,23a", "-,123", ",", "", "-", "1,234 ", "1 234", "$5"})
    EXPECT_FALSE(readGroupedDecimal(text)) << text;
}

}  // namespace
