// The command on dates that others collected, and on the lines of the standard input.
#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <string>
#include <vector>

#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>
#include <tests/tool/RunTool.h>

namespace {

struct TypedDate {
  std::string text, expected;
};

const std::string kUnreadable = "Invalid date format: Please enter a date with the format M/d/yy.";

std::vector<TypedDate> readTypedDates() {
  std::vector<TypedDate> dates;
  for (const auto& row : orlftest::tabbedRows(orlftest::testDataFolder() / "dates/typed_dates.tsv"))
    dates.push_back({row.at(0), row.at(1)});
  return dates;
}

// What the two readers take differently: digits in one run, blanks as marks before the year or the
// day, and a year of four digits below 1900 at the front.
const std::map<std::string, std::string> kOwnReadings = {
    {"20030925", kUnreadable},   {"19760704", kUnreadable}, {"2003 09 25", kUnreadable},
    {"25 09 2003", kUnreadable}, {"25 09 03", kUnreadable}, {"0003-03-04", "2004-03-03"},
};

TEST(DateCommand, ReadsTheDatesOfAnotherReadersTests) {
  const std::vector<TypedDate> dates = readTypedDates();
  EXPECT_EQ(dates.size(), 26U);
  for (const TypedDate& date : dates) {
    const auto run = orlftest::runTool({"date", "--today", "2003-09-25", "--", date.text});
    const auto own = kOwnReadings.find(date.text);
    EXPECT_EQ(run.out, (own == kOwnReadings.end() ? date.expected : own->second) + "\n")
        << date.text;
    EXPECT_EQ(run.exitCode, run.out == kUnreadable + '\n' ? 1 : 0) << date.text;
  }
}

TEST(DateCommand, ReadsALineForEachText) {
  const orlftest::TemporaryFolder folder;
  const auto path = folder.path() / "typed";
  std::ofstream(path) << "2/13/21\r\n5\n\n3/4";
  ASSERT_NE(std::freopen(path.c_str(), "r", stdin), nullptr);
  const auto run = orlftest::runTool({"date", "-", "2021", "--today", "2021-02-10"});
  EXPECT_EQ(run.out,
            "2021-02-13\n2021-02-05\nThis field requires a date.\n2021-03-04\n2021-01-01\n");
  EXPECT_EQ(run.err, "");
  EXPECT_EQ(run.exitCode, 1);
}

TEST(DateCommand, IsNotSilentAboutAnEmptyInput) {
  const orlftest::TemporaryFolder folder;
  const auto path = folder.path() / "empty";
  std::ofstream(path).flush();
  ASSERT_NE(std::freopen(path.c_str(), "r", stdin), nullptr);
  const auto run = orlftest::runTool({"date", "-"});
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "orlf date: the input holds no line\n");
  EXPECT_EQ(run.exitCode, 1);
}

}  // namespace
