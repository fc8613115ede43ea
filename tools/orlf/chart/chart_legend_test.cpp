#include "chart/chart_legend.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "chart/chart_testing.h"

namespace {

using namespace orlftool;

LegendRequest requestOf(std::vector<std::string> names, std::size_t reference) {
  LegendRequest request{.width = 400, .mostRows = 2, .swatch = 20, .gap = 8, .style = {12}};
  request.names = std::move(names);
  request.isReference.resize(request.names.size());
  if (reference < request.names.size()) request.isReference[reference] = true;
  return request;
}

std::vector<std::string> textsOf(const std::vector<LegendEntry>& entries) {
  std::vector<std::string> texts;
  for (const LegendEntry& entry : entries) texts.push_back(entry.text);
  return texts;
}

using Texts = std::vector<std::string>;

TEST(ChartLegend, KeepsTheOrderWhereAllFit) {
  const auto entries = layOutLegend(requestOf({"One", "Two", "Three"}, 2), SquareRuler());
  EXPECT_EQ(textsOf(entries), (Texts{"One", "Two", "Three"}));
  for (std::size_t i = 0; i < entries.size(); ++i) {
    EXPECT_EQ(entries[i].line, i);
    EXPECT_EQ(entries[i].row, 0);
  }
  EXPECT_EQ(entries[0].left, 0);
  EXPECT_EQ(entries[1].left, 20 + 8 + 18 + 16);
}

TEST(ChartLegend, CountsWhatItLeavesOutAndKeepsReferences) {
  std::vector<std::string> names(30, "A segment");
  names.emplace_back("Reference");
  const auto entries = layOutLegend(requestOf(names, 30), SquareRuler());
  ASSERT_GE(entries.size(), 3U);
  EXPECT_EQ(entries.front().text, "Reference");
  EXPECT_EQ(entries.front().line, 30U);
  EXPECT_EQ(entries.back().line, std::nullopt);
  EXPECT_EQ(entries.back().text, "and " + std::to_string(31 - (entries.size() - 1)) + " more");
  for (const LegendEntry& entry : entries) {
    EXPECT_LE(entry.row, 1);
    EXPECT_LE(entry.left + (entry.line ? 28 : 0) + SquareRuler().width(entry.text, {12}), 400);
  }
}

TEST(ChartLegend, CutsLongNamesSoThatTwoGoIntoARow) {
  const auto entries =
      layOutLegend(requestOf({std::string(200, 'x'), std::string(200, 'y')}, 9), SquareRuler());
  ASSERT_EQ(entries.size(), 2U);
  EXPECT_EQ(entries[1].row, 0);
  for (const LegendEntry& entry : entries) {
    EXPECT_TRUE(entry.text.ends_with("…"));
    EXPECT_LE(28 + SquareRuler().width(entry.text, {12}), 200);
  }
}

TEST(ChartLegend, IsEmptyWithoutNames) {
  EXPECT_TRUE(layOutLegend(requestOf({}, 0), SquareRuler()).empty());
}

}  // namespace
