#include "interchange/column_map.h"

#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "cli/failure.h"

namespace orlftool {
namespace {

constexpr std::array<FieldRule, 3> kRules{{{"date", FieldType::Date, true, "date|day"},
                                           {"amount", FieldType::Number, true, "amount|sum"},
                                           {"memo", FieldType::Text, false, "memo"}}};
using Row = std::vector<std::string_view>;

std::string faultOf(const std::optional<std::string>& map, const Row& headings) {
  try {
    ColumnMap columns(kRules, map);
    columns.takeHeadings(headings, "f");
    return "none";
  } catch (const std::exception& failure) {
    return failure.what();
  }
}

TEST(ColumnMap, TakesColumnsByNumber) {
  const ColumnMap columns(kRules, "date=2, amount=1");
  EXPECT_FALSE(columns.needsHeadings());
  const Row row{"5", "today"};
  EXPECT_EQ(columns.text(0, row), "today");
  EXPECT_EQ(columns.text(1, row), "5");
  EXPECT_FALSE(columns.has(2));
  EXPECT_EQ(columns.text(2, row), "");
  EXPECT_EQ(columns.text(0, Row{"5"}), "");
}

TEST(ColumnMap, TakesColumnsByHeading) {
  ColumnMap columns(kRules, "date=Booking Date,amount=3");
  EXPECT_TRUE(columns.needsHeadings());
  columns.takeHeadings(Row{"x", " booking date ", "y"}, "f");
  EXPECT_EQ(columns.text(0, Row{"a", "b", "c"}), "b");
  EXPECT_EQ(columns.text(1, Row{"a", "b", "c"}), "c");
}

TEST(ColumnMap, KnowsHeadingsWithoutAMap) {
  ColumnMap columns(kRules, std::nullopt);
  EXPECT_TRUE(columns.needsHeadings());
  columns.takeHeadings(Row{"SUM", "Day"}, "f");
  EXPECT_EQ(columns.text(0, Row{"1", "2"}), "2");
  EXPECT_EQ(columns.text(1, Row{"1", "2"}), "1");
  EXPECT_FALSE(columns.has(2));
}

TEST(ColumnMap, NeedsAColumnForEachRequiredField) {
  EXPECT_EQ(faultOf("date=1,memo=2", {}), "--map: expected a column for amount, got none");
  EXPECT_EQ(faultOf("amount=1", {}), "--map: expected a column for date, got none");
  EXPECT_EQ(faultOf("amount=Sum,date=Day", {"Day", "Sum"}), "none");
}

TEST(ColumnMap, NamesWhatItCannotTake) {
  EXPECT_EQ(faultOf("day=1", {}), "--map: expected fields of date, amount, memo, got 'day'");
  EXPECT_EQ(faultOf("date=1,date=2", {}), "--map: date is named twice");
  EXPECT_EQ(faultOf("date=A,date=2", {"A"}), "--map: date is named twice");
  EXPECT_NE(faultOf("date=0", {}).find("--map"), std::string::npos);
  EXPECT_EQ(faultOf("date", {}),
            "--map: expected a list such as date=1,payee=Description, got 'date'");
  EXPECT_EQ(faultOf("", {}), "--map: expected a list such as date=1,payee=Description, got ''");
  EXPECT_EQ(faultOf("date=Day,amount=2", {"A", "B"}),
            "f: no column has the heading 'Day'; there are 'A', 'B'");
  EXPECT_EQ(faultOf("date=A,amount=2", {"a", "A"}),
            "f: two columns have the heading 'A': --map takes numbers, too");
  EXPECT_EQ(faultOf(std::nullopt, {"date", "x"}),
            "f: no column is known for amount; there are 'date', 'x': --map names columns");
}

}  // namespace
}  // namespace orlftool
