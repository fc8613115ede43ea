// Replays the files of tests/tool/cases: command lines, and what each prints and exits with.
//
//     # what the file is about
//     $ orlf round 2.5 --scale 0
//     3
//     $ orlf round x --scale 0
//     ! orlf round: VALUE: expected ...
//     ? 2
//
// Lines after a command are its output, those after "! " its error output, the one after "? " its
// exit code where that is not 0. Words may stand in single or double quotes. "<examples>" is the
// folder of the example plans and "<files>" the folder of broken ones.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <tests/tool/RunTool.h>

namespace {

struct Case {
  std::string place;  // file:line of the command
  std::string command;
  std::string out, err;
  int exitCode = 0;
};

std::string replaceAll(std::string text, const std::string& from, const std::string& to) {
  for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at))
    text.replace(at, from.size(), to);
  return text;
}

std::string withFolders(const std::string& text) {
  const std::string source = ORLF_SOURCE_DIR;
  return replaceAll(replaceAll(text, "<examples>", source + "/examples"), "<files>",
                    source + "/tests/tool/files");
}

const std::filesystem::path kCaseFolder =
    std::filesystem::path(ORLF_SOURCE_DIR) / "tests/tool/cases";

std::vector<Case> readCases(const std::string& name) {
  std::vector<Case> cases;
  std::ifstream file(kCaseFolder / (name + ".case"));
  std::size_t line = 0;
  for (std::string text; std::getline(file, text);) {
    ++line;
    if (text.starts_with("$ orlf")) {
      cases.push_back({name + ".case:" + std::to_string(line), text.substr(6), "", "", 0});
    } else if (cases.empty() || text.starts_with("#")) {
      continue;
    } else if (text.starts_with("! ")) {
      cases.back().err += withFolders(text.substr(2)) + '\n';
    } else if (text.starts_with("? ")) {
      cases.back().exitCode = std::stoi(text.substr(2));
    } else {
      cases.back().out += withFolders(text) + '\n';
    }
  }
  return cases;
}

/// Words between blanks; quotes keep blanks in a word.
std::vector<std::string> wordsOf(const std::string& command) {
  std::vector<std::string> words;
  char quote = '\0';
  bool inWord = false;
  for (const char c : command) {
    if (quote != '\0') {
      if (c == quote) {
        quote = '\0';
      } else {
        words.back() += c;
      }
    } else if (c == ' ') {
      inWord = false;
    } else {
      if (!inWord) words.emplace_back();
      inWord = true;
      if (c == '\'' || c == '"') {
        quote = c;
      } else {
        words.back() += c;
      }
    }
  }
  return words;
}

std::vector<std::string> caseFiles() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kCaseFolder))
    if (entry.path().extension() == ".case") names.push_back(entry.path().stem().string());
  std::sort(names.begin(), names.end());
  return names;
}

/// Blank lines at the end of an output separate commands in the file.
std::string trimmed(std::string text) {
  while (text.ends_with('\n')) text.pop_back();
  return text;
}

class CommandLine : public testing::TestWithParam<std::string> {};

TEST_P(CommandLine, PrintsWhatItsCaseFileSays) {
  const std::vector<Case> cases = readCases(GetParam());
  ASSERT_FALSE(cases.empty());
  for (const Case& row : cases) {
    SCOPED_TRACE(row.place + ": orlf" + row.command);
    const orlftest::ToolRun run = orlftest::runTool(wordsOf(withFolders(row.command)));
    EXPECT_EQ(trimmed(run.out), trimmed(row.out));
    EXPECT_EQ(trimmed(run.err), trimmed(row.err));
    EXPECT_EQ(run.exitCode, row.exitCode);
  }
}

INSTANTIATE_TEST_SUITE_P(Cases, CommandLine, testing::ValuesIn(caseFiles()),
                         [](const auto& row) { return row.param; });

TEST(CommandLineReader, SplitsWordsAtBlanksOutsideOfQuotes) {
  EXPECT_EQ(wordsOf(" a 'b c' \"\" --x=\"1 2\""),
            (std::vector<std::string>{"a", "b c", "", "--x=1 2"}));
}

}  // namespace
