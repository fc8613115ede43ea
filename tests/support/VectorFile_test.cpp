#include <tests/support/VectorFile.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <cmath>
#include <limits>
#include <optional>

namespace orlftest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

VectorReport tsv(const std::string& content, const TsvCheck& check) {
  const TemporaryFolder folder;
  return checkTsvFile(folder.write("table.tsv", content), check);
}

VectorReport jsonl(const std::string& content, const JsonChecks& checks) {
  const TemporaryFolder folder;
  return checkJsonFile(folder.write("lines.jsonl", content), checks);
}

const TsvCheck kAgrees = [](const TsvRow&) { return std::string(); };
const JsonChecks kDouble = {{"double", [](const Json& in, const Json& out) {
                               return disagreement(out.get<int>(), in.get<int>() * 2);
                             }}};

TEST(VectorFile, RunsEveryRowOfATable) {
  std::vector<std::string> seen;
  const auto report = tsv("id\ttext\na-1\tone\na-2\ttwo\n", [&](const TsvRow& row) {
    seen.push_back(row.id + "=" + row.text("text"));
    return std::string();
  });
  EXPECT_THAT(seen, ElementsAre("a-1=one", "a-2=two"));
  EXPECT_TRUE(report.passed());
  EXPECT_EQ(report.closingLine(), "table.tsv: 2 rows run, 0 failed");
}

TEST(VectorFile, NamesFileIdExpectedAndGotOfADisagreement) {
  const auto report = tsv("id\tvalue\na-1\t7\n", [](const TsvRow& row) {
    return disagreement(row.integer("value"), std::int64_t{8});
  });
  EXPECT_FALSE(report.passed());
  EXPECT_THAT(report.disagreements, ElementsAre("table.tsv: a-1: expected 7, got 8"));
}

TEST(VectorFile, ToleratesWhatRowsThatFollowOtherDataAnswerButNotWhatTheyThrow) {
  const auto report =
      tsv("id\tcldr_sensitive\tvalue\na-1\ttrue\t7\na-2\tfalse\t7\na-3\ttrue\tx\n",
          [](const TsvRow& row) { return disagreement(row.integer("value"), std::int64_t{8}); });
  EXPECT_EQ(report.failed, 2U);
  EXPECT_THAT(report.tolerated, ElementsAre("table.tsv: a-1: expected 7, got 8"));
  EXPECT_THAT(report.disagreements,
              ElementsAre("table.tsv: a-2: expected 7, got 8", HasSubstr("a-3: exception")));
  const auto lines =
      jsonl(R"({"id": "j-1", "op": "double", "in": 1, "out": 3, "cldr_sensitive": true})"
            "\n"
            R"({"id": "j-2", "op": "double", "in": 1, "out": 3, "cldr_sensitive": false})",
            kDouble);
  EXPECT_EQ(lines.failed, 1U);
  EXPECT_THAT(lines.tolerated, ElementsAre("lines.jsonl: j-1: double: expected 3, got 2"));
}

TEST(VectorFile, TakesEqualInfinitiesAndTwoNumbersThatAreNoneForTheSame) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double nan = std::nan("");
  EXPECT_EQ(realDisagreement(kInfinity, kInfinity, 0), "");
  EXPECT_EQ(realDisagreement(nan, nan, 0), "");
  EXPECT_NE(realDisagreement(kInfinity, -kInfinity, 1), "");
  EXPECT_NE(realDisagreement(kInfinity, 1, 1), "");
  EXPECT_NE(realDisagreement(1, nan, 1), "");
  EXPECT_NE(realDisagreement(nan, 1, 1), "");
  EXPECT_EQ(realDisagreement(2, 2.1, 0.1), "");
  EXPECT_NE(realDisagreement(2, 2.3, 0.1), "");
}

TEST(VectorFile, TellsNilFromEmptyTextAndReadsEscapes) {
  const auto report =
      tsv("id\tnil\tempty\tescaped\na-1\t\\N\t\t\\t\\n\\r\\\\\\u{20AC}\\u{1F600}\\u{e9}\n",
          [](const TsvRow& row) {
            EXPECT_EQ(row["nil"], std::nullopt);
            EXPECT_EQ(row["empty"], "");
            EXPECT_EQ(row["escaped"], "\t\n\r\\\xE2\x82\xAC\xF0\x9F\x98\x80\xC3\xA9");
            return std::string();
          });
  EXPECT_TRUE(report.passed()) << report.disagreements.front();
}

struct BrokenRow {
  const char* name;
  const char* line;
  const char* message;
};
const BrokenRow kBrokenRows[] = {
    {"TooFewFields", "a-1", "table.tsv: line 2: exception: 1 fields, expected 2"},
    {"TooManyFields", "a-1\t1\t2", "line 2: exception: 3 fields, expected 2"},
    {"EmptyLine", "", "line 2: exception: 1 fields, expected 2"},
    {"UnknownEscape", "a-1\t\\x", "unknown escape \\x"},
    {"LoneBackslash", "a-1\t\\", "a backslash ends the field"},
    {"UnbracedCodePoint", "a-1\t\\u20AC", "\\u without {HEX}"},
    {"OpenCodePoint", "a-1\t\\u{20AC", "\\u without {HEX}"},
    {"CodePointTooLarge", "a-1\t\\u{110000}", "holds no code point"},
    {"CodePointWithoutDigits", "a-1\t\\u{}", "holds no code point"},
    {"NilId", "\\N\t1", "id is nil"},
    {"EmptyId", "\t1", "the row has no id"},
};
class BrokenTableRow : public testing::TestWithParam<BrokenRow> {};
TEST_P(BrokenTableRow, Fails) {
  const auto report = tsv(std::string("id\tvalue\n") + GetParam().line + "\n", kAgrees);
  EXPECT_EQ(report.rows, 1u);
  EXPECT_EQ(report.failed, 1u);
  ASSERT_FALSE(report.passed());
  EXPECT_THAT(report.disagreements.front(), HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(VectorFile, BrokenTableRow, testing::ValuesIn(kBrokenRows),
                         [](const auto& row) { return row.param.name; });

TEST(VectorFile, FailsARowThatAsksForAnUnknownColumn) {
  const auto report =
      tsv("id\tvalue\na-1\t7\n", [](const TsvRow& row) { return row["valeu"].value_or(""); });
  EXPECT_THAT(report.disagreements, ElementsAre("table.tsv: a-1: exception: no column valeu"));
}

TEST(VectorFile, FailsANumberThatIsNone) {
  const auto report = tsv("id\tvalue\na-1\t7x\na-2\t\na-3\t99999999999999999999\n",
                          [](const TsvRow& row) { return std::to_string(row.integer("value")); });
  EXPECT_EQ(report.failed, 3u);
  EXPECT_THAT(report.disagreements[0], HasSubstr("value is no whole number: 7x"));
}

TEST(VectorFile, FailsWhatIsNeitherTrueNorFalse) {
  const auto report = tsv("id\tvalue\na-1\tTRUE\n", [](const TsvRow& row) {
    return row.boolean("value") ? std::string("true") : std::string();
  });
  EXPECT_EQ(report.failed, 1u);
}

TEST(VectorFile, FailsAnIdThatComesTwice) {
  const auto report = tsv("id\na-1\na-1\n", kAgrees);
  EXPECT_EQ(report.rows, 2u);
  EXPECT_THAT(report.disagreements, ElementsAre(HasSubstr("the id comes twice")));
}

TEST(VectorFile, FailsAFileThatIsMissingOrHoldsNoRow) {
  EXPECT_FALSE(checkTsvFile("no-such-folder/table.tsv", kAgrees).passed());
  EXPECT_FALSE(checkJsonFile("no-such-folder/lines.jsonl", kDouble).passed());
  EXPECT_FALSE(tsv("id\tvalue\n", kAgrees).passed());
  EXPECT_FALSE(jsonl("", kDouble).passed());
}

TEST(VectorFile, RunsJsonLinesByOperation) {
  const auto report = jsonl(
      "{\"id\":\"d-1\",\"op\":\"double\",\"in\":2,\"out\":4}\n"
      "{\"id\":\"d-2\",\"op\":\"double\",\"in\":2,\"out\":5}\n",
      kDouble);
  EXPECT_EQ(report.rows, 2u);
  EXPECT_THAT(report.disagreements, ElementsAre("lines.jsonl: d-2: double: expected 5, got 4"));
}

const BrokenRow kBrokenLines[] = {
    {"UnknownOperation", R"({"id":"d-1","op":"treble","in":2,"out":6})",
     "d-1: unknown operation treble"},
    {"NotJson", R"({"id":"d-1",)", "line 1: exception"},
    {"EmptyLine", "", "line 1: exception"},
    {"WithoutId", R"({"op":"double","in":2,"out":4})", "line 1: exception"},
    {"WithoutOut", R"({"id":"d-1","op":"double","in":2})", "d-1: exception: the row has no out"},
    {"WrongType", R"({"id":"d-1","op":"double","in":"two","out":4})", "d-1: exception"},
};
class BrokenJsonLine : public testing::TestWithParam<BrokenRow> {};
TEST_P(BrokenJsonLine, Fails) {
  const auto report = jsonl(std::string(GetParam().line) + "\n", kDouble);
  EXPECT_EQ(report.rows, 1u);
  EXPECT_EQ(report.failed, 1u);
  ASSERT_FALSE(report.passed());
  EXPECT_THAT(report.disagreements.front(), HasSubstr(GetParam().message));
}
INSTANTIATE_TEST_SUITE_P(VectorFile, BrokenJsonLine, testing::ValuesIn(kBrokenLines),
                         [](const auto& row) { return row.param.name; });

TEST(VectorFile, GoesOnAfterAThrownThingThatIsNoException) {
  const auto report = tsv("id\na-1\na-2\n", [](const TsvRow& row) -> std::string {
    if (row.id == "a-1") throw 7;
    return {};
  });
  EXPECT_EQ(report.rows, 2u);
  EXPECT_EQ(report.failed, 1u);
}

TEST(VectorFile, DisagreementOfOptionalTextsTellsNilFromEmpty) {
  using Text = std::optional<std::string>;
  EXPECT_THAT(disagreement(Text("a"), Text("a")), IsEmpty());
  EXPECT_EQ(disagreement(Text(), Text("")), "expected nil, got \"\"");
}

TEST(VectorFile, IsTakenFromTheNamedFolderAndElseFromTheRepository) {
  const TemporaryFolder folder;
  const std::string given = folder.write("given.tsv", "id\nrow-1\n");
  const EnvironmentVariable variable("ORLF_VECTORS", folder.path());
  EXPECT_EQ(vectorFile("given.tsv"), given);
  EXPECT_EQ(vectorFile("calendars_offset.tsv"),
            testDataFolder() / "vectors" / "calendars_offset.tsv");
  std::size_t rows = 0;
  const TsvCheck count = [&](const TsvRow&) {
    ++rows;
    return std::string();
  };
  runTsvVectors("given", count);
  EXPECT_EQ(rows, 1U);
  testing::internal::CaptureStdout();
  runTsvVectors("calendars_offset", count);
  EXPECT_THAT(testing::internal::GetCapturedStdout(),
              HasSubstr("calendars_offset.tsv: not in the folder of ORLF_VECTORS"));
  EXPECT_GT(rows, 1U);
}

TEST(VectorFile, IsNotReplacedWhereTheNamedFolderIsAbsent) {
  const TemporaryFolder folder;
  const EnvironmentVariable variable("ORLF_VECTORS", folder.path() / "absent");
  EXPECT_EQ(vectorFile("calendars_offset.tsv"), folder.path() / "absent" / "calendars_offset.tsv");
}

}  // namespace
}  // namespace orlftest
