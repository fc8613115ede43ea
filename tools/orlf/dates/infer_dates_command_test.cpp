// The command on the date columns of real bank exports, whose order is known.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>
#include <tests/tool/RunTool.h>

namespace {

using orlftest::ToolRun;

struct Column {
  std::string order, lines, source;
};

std::vector<Column> readColumns() {
  std::vector<Column> columns;
  for (const auto& row :
       orlftest::tabbedRows(orlftest::testDataFolder() / "dates/date_columns.tsv")) {
    columns.push_back({row.at(0), row.at(1), row.at(2)});
    std::ranges::replace(columns.back().lines, '|', '\n');
  }
  return columns;
}

class InferDates : public testing::Test {
 protected:
  ToolRun run(const std::string& text, std::vector<std::string> options) {
    const std::string path = (folder_.path() / "dates.txt").string();
    std::ofstream(path, std::ios::binary) << text;
    options.insert(options.begin(), {"infer-dates", path, "--year", "2026"});
    return orlftest::runTool(options);
  }

 private:
  const orlftest::TemporaryFolder folder_;
};

TEST_F(InferDates, FindsTheOrderOfRealColumns) {
  std::size_t numeric = 0;
  for (const Column& column : readColumns()) {
    SCOPED_TRACE(column.source);
    const ToolRun done = run(column.lines, {"--json"});
    if (column.order == "text" || column.order == "packed") {
      EXPECT_EQ(done.exitCode, 1);
      EXPECT_EQ(done.out, "");
      EXPECT_NE(done.err.find("expected dates of three numbers"), std::string::npos) << done.err;
      continue;
    }
    ++numeric;
    const auto answer = nlohmann::json::parse(done.out);
    const std::string known = column.order.substr(0, 3);
    const bool isOpen = column.order.ends_with('?');
    EXPECT_EQ(done.exitCode, isOpen ? 1 : 0) << done.err;
    EXPECT_EQ(answer.at("orders").size() == 1, !isOpen);
    for (const auto& row : answer.at("dates")) EXPECT_TRUE(row.at(known).is_string()) << row;
    EXPECT_EQ(run(column.lines, {"--orders", known}).exitCode, 0);
  }
  EXPECT_EQ(numeric, 35U);
}

TEST_F(InferDates, TakesEveryLineEndAndAByteOrderMark) {
  for (const char* text : {"\xEF\xBB\xBF"
                           "13/02/2021\n14/02/2021",
                           "\r\n13/02/2021\r\n14/02/2021\r\n", "13/02/2021\r14/02/2021\r"}) {
    const ToolRun done = run(text, {});
    EXPECT_EQ(done.exitCode, 0) << done.err;
    EXPECT_NE(done.out.find("2021-02-14"), std::string::npos) << done.out;
  }
}

TEST_F(InferDates, ALongLineTakesNoRoomInTheTable) {
  const std::string digits(1 << 20, '1');
  const ToolRun done = run("13/02/2021\n1/2/" + digits + "\n" + digits + "\n", {});
  EXPECT_LT(done.out.size() + done.err.size(), 2000U);
  EXPECT_EQ(done.exitCode, 1);
}

TEST_F(InferDates, BytesThatAreNoTextAreShownAsSuch) {
  const ToolRun done = run("13/02/2021\n\xFF\x1B[2J/1/2\n", {});
  EXPECT_EQ(done.out.find('\x1B'), std::string::npos);
  EXPECT_EQ(run("13/02/2021\n\xFF\n", {"--json"}).exitCode, 0);
}

}  // namespace
