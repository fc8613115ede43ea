// The date columns of real bank exports, whose order is known.
#include <ORLFoundation/datetext/inference/ORLFDateFormatInferenceEngine.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <algorithm>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

struct Column {
  std::string order, source;
  std::vector<std::string> dates;
};

std::vector<std::string> parts(const std::string& text, char separator) {
  std::vector<std::string> found;
  std::istringstream stream(text);
  for (std::string part; std::getline(stream, part, separator);) found.push_back(part);
  return found;
}

std::vector<Column> readColumns() {
  std::vector<Column> columns;
  for (const auto& row :
       orlftest::tabbedRows(orlftest::testDataFolder() / "dates/date_columns.tsv"))
    columns.push_back({row.at(0), row.at(2), parts(row.at(1), '|')});
  return columns;
}

bool isNumeric(const Column& column) { return column.order != "text" && column.order != "packed"; }

const std::map<std::string, NSInteger> kFormatsOfNames{{"dmy", 1}, {"mdy", 2}, {"ymd", 3}};

TEST(ORLFDateFormatInferenceEngine, FindsTheOrderOfRealColumns) {
  const std::vector<Column> columns = readColumns();
  EXPECT_EQ(std::count_if(columns.begin(), columns.end(), &isNumeric), 35);
  for (const Column& column : columns) {
    if (!isNumeric(column)) continue;
    SCOPED_TRACE(column.source);
    const NSInteger known = kFormatsOfNames.at(column.order.substr(0, 3));
    ORLFDateFormatInferenceEngine engine;
    engine.setCurrentYear(2026);
    for (const std::string& date : column.dates)
      EXPECT_TRUE(engine.processDateString(date)) << date;
    const std::vector<NSInteger> formats = engine.possibleDateFormats();
    EXPECT_EQ(formats.size() == 1, !column.order.ends_with('?'));
    EXPECT_EQ(std::count(formats.begin(), formats.end(), known), 1);
    for (const std::string& date : column.dates)
      EXPECT_TRUE(engine.dateFromString(date, known)) << date;
  }
}

TEST(ORLFDateFormatInferenceEngine, TakesNoNamedOrPackedDatesForNumbers) {
  std::size_t count = 0;
  for (const Column& column : readColumns()) {
    if (isNumeric(column)) continue;
    ++count;
    ORLFDateFormatInferenceEngine engine;
    for (const std::string& date : column.dates) {
      EXPECT_FALSE(engine.processDateString(date)) << date;
      EXPECT_FALSE(engine.dateInferredFromString(date)) << date;
    }
    EXPECT_EQ(engine.bits(), 511) << column.source;
  }
  EXPECT_EQ(count, 5U);
}

}  // namespace
}  // namespace ORLFoundation
