#include <ORLFoundation/interchange/tabular/ORLFTabularRows.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <utility>

namespace ORLFoundation {
namespace {

std::string joined(ORLFTabularRows::Row row) {
  std::string text;
  for (const std::string_view field : row) text.append("[").append(field).append("]");
  return text;
}

TEST(ORLFTabularRows, ReadLikeAnArrayOfArrays) {
  const ORLFTabularRows rows("a;b\n\n;c;\n", ';');
  ASSERT_EQ(rows.size(), 2U);
  EXPECT_FALSE(rows.empty());
  EXPECT_EQ(joined(rows[0]), "[a][b]");
  EXPECT_EQ(joined(rows[1]), "[][c]");
  EXPECT_EQ(std::distance(rows.begin(), rows.end()), 2);
}

TEST(ORLFTabularRows, AreEmptyForATextWithoutFields) {
  EXPECT_TRUE(ORLFTabularRows("", ',').empty());
  EXPECT_TRUE(ORLFTabularRows("\n\"\"\n", ',').empty());
}

TEST(ORLFTabularRows, OutliveTheirText) {
  std::string text = "plain,\"in \"\"two\"\" pieces\",tail\n";
  const ORLFTabularRows rows(text, ',');
  std::ranges::fill(text, '!');
  ASSERT_EQ(rows.size(), 1U);
  EXPECT_EQ(joined(rows[0]), "[plain][in \"two\" pieces][tail]");
}

TEST(ORLFTabularRows, KeepJoinedFieldsOfEveryRowApart) {
  std::string text;
  for (int row = 0; row < 1000; ++row) text += "\"" + std::to_string(row) + "\"\"x\",b\n";
  const ORLFTabularRows rows(text, ',');
  ASSERT_EQ(rows.size(), 1000U);
  for (std::size_t row = 0; row < rows.size(); ++row)
    EXPECT_EQ(rows[row][0], std::to_string(row) + "\"x");
}

TEST(ORLFTabularRows, KeepRowsOfAnyWidthInOnePiece) {
  for (const std::size_t width : {1U, 1000U, 4095U, 4096U, 4097U, 10000U}) {
    std::string line;
    for (std::size_t i = 0; i < width; ++i) line += std::to_string(i) + ",";
    const ORLFTabularRows rows("first,row\n" + line + "\n" + line + "\nlast\n", ',');
    ASSERT_EQ(rows.size(), 4U) << width;
    for (const std::size_t row : {1U, 2U}) {
      ASSERT_EQ(rows[row].size(), width);
      EXPECT_EQ(rows[row].front(), "0");
      EXPECT_EQ(rows[row].back(), std::to_string(width - 1));
    }
    EXPECT_EQ(joined(rows[0]) + joined(rows[3]), "[first][row][last]");
  }
}

TEST(ORLFTabularRows, KeepTheirViewsWhenTheyAreMoved) {
  ORLFTabularRows first("short,\"a\"\"b\"", ',');
  const ORLFTabularRows second = std::move(first);
  EXPECT_EQ(joined(second[0]), "[short][a\"b]");
  ORLFTabularRows third("other", ',');
  third = ORLFTabularRows("x,\"1\"\"2\"", ',');
  EXPECT_EQ(joined(third[0]), "[x][1\"2]");
}

TEST(ORLFTabularRows, RefuseASeparatorThatIsNone) {
  EXPECT_THROW(ORLFTabularRows("a", '"'), NSException);
  EXPECT_THROW(ORLFTabularRows("a", '\n'), NSException);
}

}  // namespace
}  // namespace ORLFoundation
