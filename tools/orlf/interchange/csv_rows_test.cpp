// The command `csv` and the reading of tables below it.
#include "interchange/csv_rows.h"

#include <gtest/gtest.h>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/RunTool.h>
#include <nlohmann/json.hpp>

#include "cli/failure.h"

namespace {

using Json = nlohmann::json;
using orlftest::runTool;
using orlftest::ToolRun;
using namespace std::string_view_literals;

class CsvCommand : public orlftest::TemporaryFolderTest {
 protected:
  ToolRun csv(std::string_view bytes, std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"csv", write("a.csv", bytes)});
    ToolRun run = runTool(options);
    const std::string file = path("a.csv");
    for (std::size_t at = run.err.find(file); at != run.err.npos; at = run.err.find(file))
      run.err.replace(at, file.size(), "FILE");
    return run;
  }
};

struct PrintCase {
  const char* name;
  std::string_view text;
  std::vector<std::string> options;
  const char* out;
  const char* err;
};
const PrintCase kPrints[] = {
    {"Rows", "day,amount\n3/1,\"1,000\"\n\n", {}, "day\tamount\n3/1\t1,000\n", ""},
    {"BetweenCommas", "a;\"b,c\"\n", {"--delimiter", "comma"}, "a,\"b,c\"\n", ""},
    {"Semicolons", "a;b,c\n1;2\n", {}, "a\tb,c\n1\t2\n", ""},
    {"NamedComma", "a;b,c\n", {"--separator", "comma"}, "a;b\tc\n", ""},
    {"NamedTab", "a\t b\t\tc\n", {"--separator", "tab"}, "a\tb\t\tc\n", ""},
    {"TabsUnnoticed",
     "a\tb\n",
     {},
     "\"a\tb\"\n",
     "orlf csv: the first row holds tabs and no separator: --separator tab parts it there\n"},
    {"Marks", "\"say \"\"x\"\"\",b\n", {}, "\"say \"\"x\"\"\"\tb\n", ""},
    {"LineEndsInValues",
     "\"a\r\nb\xE2\x80\xA8\"\"c\",d\n",
     {},
     "\"a  b \"\"c\"\td\n",
     "orlf csv: line ends in 1 value became blanks\n"},
    {"OpenMarks",
     "a\n\"b,c\nd\n",
     {},
     "a\nb,c d \n",
     "orlf csv: line ends in 1 value became blanks\n"
     "orlf csv: FILE:2: the file ends between quotation marks in the row of this line\n"},
    {"Nothing", "", {}, "", "orlf csv: FILE: no row holds anything\n"},
    {"BlankLines", "\n\r\n", {}, "", "orlf csv: FILE: no row holds anything\n"},
    {"ByteOrderMark", "\xEF\xBB\xBF\"a\",b\n", {}, "a\tb\n", ""},
    {"UTF16", "\xFF\xFE\x61\0,\0b\0\n\0"sv, {}, "a\tb\n", ""},
    {"Latin1", "caf\xE9;\x80\n", {"--encoding", "windows-1252"}, "café\t€\n", ""},
    {"ZeroBytes", "a\0b,c\n"sv, {"--json"}, "[\n  [\"a\\u0000b\",\"c\"]\n]\n", ""},
    {"Json",
     "a,b\n\"c\nd\",,e,\n",
     {"--json"},
     "[\n  [\"a\",\"b\"],\n  [\"c\\nd\",\"\",\"e\"]\n]\n",
     ""},
    {"JsonOfNothing", "", {"--json"}, "[]\n", "orlf csv: FILE: no row holds anything\n"},
};

TEST_F(CsvCommand, PrintsRows) {
  for (const PrintCase& each : kPrints) {
    const ToolRun run = csv(each.text, each.options);
    EXPECT_EQ(run.out, each.out) << each.name;
    EXPECT_EQ(run.err, each.err) << each.name;
    EXPECT_EQ(run.exitCode, 0) << each.name;
  }
}

struct FaultCase {
  const char* name;
  std::string_view text;
  std::vector<std::string> options;
  const char* err;
  int exitCode;
};
const FaultCase kFaults[] = {
    {"BrokenBytes",
     "a\nb\xFF\n",
     {},
     "orlf csv: FILE:2: expected utf-8, got other bytes; --encoding names another encoding\n",
     1},
    {"CommaBesideMark",
     "a\n\"b,\"\"\"\n",
     {"--delimiter", "comma"},
     "orlf csv: FILE:2: a comma beside a quotation mark or tab has no place in comma-separated "
     "text: 'b,\"'; --delimiter tab prints it\n",
     1},
    {"CommaBesideTab",
     "\"b,\t\"\n",
     {"--delimiter", "comma"},
     "orlf csv: FILE:1: a comma beside a quotation mark or tab has no place in comma-separated "
     "text: 'b,?'; --delimiter tab prints it\n",
     1},
    {"UnknownDelimiter",
     "a",
     {"--delimiter", "semicolon"},
     "orlf csv: --delimiter: expected comma or tab, got 'semicolon'\n",
     2},
    {"UnknownSeparator",
     "a",
     {"--separator", ";"},
     "orlf csv: --separator: expected comma, semicolon or tab, got ';'\n",
     2},
    {"UnknownEncoding",
     "a",
     {"--encoding", "x"},
     "orlf csv: --encoding: expected utf-8, utf-16, utf-16be, utf-16le, ascii, latin-1, "
     "windows-1252 or mac-roman, got 'x'\n",
     2},
};

TEST_F(CsvCommand, TellsWhatItCannotPrint) {
  for (const FaultCase& each : kFaults) {
    const ToolRun run = csv(each.text, each.options);
    EXPECT_EQ(run.err, each.err) << each.name;
    EXPECT_EQ(run.exitCode, each.exitCode) << each.name;
  }
  EXPECT_EQ(runTool({"csv", path("missing")}).exitCode, 1);
}

TEST_F(CsvCommand, RefusesALongRowWithItsLine) {
  const std::string text = "a\nb\n" + std::string(std::size_t{65} << 20, 'c');
  const ToolRun run = csv(text);
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.out, "a\nb\n");
  EXPECT_EQ(run.err, "orlf csv: FILE: The row on line 3 is longer than 67108864 bytes.\n");
}

TEST_F(CsvCommand, GivesItsTabSeparatedRowsAgain) {
  const char* text = "a, b ,\"c\"\"d\",\"e,f\"\n\"x\ty\",,z\n";
  const ToolRun first = csv(text);
  const ToolRun again = csv(first.out, {"--separator", "tab"});
  EXPECT_EQ(again.out, first.out);
  EXPECT_EQ(Json::parse(csv(first.out, {"--separator", "tab", "--json"}).out),
            Json::parse(R"([["a", "b ", "c\"d", "e,f"], ["x\ty", "", "z"]])"));
}

}  // namespace
