#include "cli/table.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using orlftool::Table;

std::string printed(const Table& table) {
  std::ostringstream out;
  table.print(out);
  return out.str();
}

TEST(Table, AlignsColumnsToTheirWidestCell) {
  Table table({{"Date", Table::kLeft}, {"Balance", Table::kRight}});
  table.addRow({"2024-01-31", "5"});
  table.addRow({"b", "-1,250,000.00"});
  EXPECT_EQ(printed(table),
            "Date              Balance\n"
            "----------  -------------\n"
            "2024-01-31              5\n"
            "b           -1,250,000.00\n");
}

TEST(Table, CountsCharactersAndNotBytes) {
  Table table({{"Größe", Table::kRight}, {"x", Table::kLeft}});
  table.addRow({"1 234", "y"});
  EXPECT_EQ(printed(table),
            "Größe  x\n"
            "-----  -\n"
            "1 234  y\n");
}

TEST(Table, LeavesNoBlanksAtLineEndsAndFillsMissingCells) {
  Table table({{"a", Table::kLeft}, {"wide", Table::kLeft}});
  table.addRow({"1"});
  table.addRow({"2", "3", "dropped"});
  EXPECT_EQ(printed(table), "a  wide\n-  ----\n1\n2  3\n");
}

TEST(Table, WithoutRowsShowsItsTitles) {
  EXPECT_EQ(printed(Table({{"Date", Table::kLeft}})), "Date\n----\n");
}

}  // namespace
