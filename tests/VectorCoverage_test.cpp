// Every vector file is run by a test or stands in the list of those that wait for theirs, so that
// none is passed over in silence.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/VectorFile.h>

#include <filesystem>
#include <fstream>
#include <set>
#include <string>

namespace {

namespace fs = std::filesystem;
const fs::path kSource = ORLF_SOURCE_DIR;

bool callsTheRunner(const std::string& source) {
  for (const char* call : {"runTsvVectors(", "runJsonVectors(", "runJsonRows("})
    if (source.find(call) != std::string::npos) return true;
  return false;
}

/// The sources of tests that run vectors, joined; this one only names the runner.
std::string sourcesThatRunVectors() {
  std::string joined;
  for (const char* folder : {"ORLFoundation", "tests", "tools"}) {
    for (const auto& entry : fs::recursive_directory_iterator(kSource / folder)) {
      const std::string name = entry.path().filename().string();
      if (!name.ends_with("_test.cpp") || name == "VectorCoverage_test.cpp") continue;
      const std::string content = orlftest::contentOf(entry.path());
      if (callsTheRunner(content)) joined += content;
    }
  }
  return joined;
}

/// Stems at the head of the lines of untested_vectors.txt; '#' begins a remark.
std::set<std::string> untestedStems() {
  std::set<std::string> stems;
  std::ifstream stream(kSource / "tests" / "untested_vectors.txt");
  EXPECT_TRUE(stream.good()) << "tests/untested_vectors.txt cannot be read";
  for (std::string line; std::getline(stream, line);) {
    const std::string stem = line.substr(0, line.find_first_of(" #"));
    if (!stem.empty()) stems.insert(stem);
  }
  return stems;
}

std::set<std::string> vectorStems() {
  std::set<std::string> stems;
  for (const auto& entry : fs::directory_iterator(orlftest::vectorFolder())) {
    const std::string kind = entry.path().extension().string();
    if (kind == ".tsv" || kind == ".jsonl") stems.insert(entry.path().stem().string());
  }
  return stems;
}

bool isRun(const std::string& sources, const std::string& stem) {
  return sources.find('"' + stem + '"') != std::string::npos;
}

TEST(VectorCoverage, EveryFileIsRunOrListedAsUntested) {
  const std::string sources = sourcesThatRunVectors();
  const std::set<std::string> untested = untestedStems();
  const std::set<std::string> stems = vectorStems();
  EXPECT_FALSE(stems.empty());
  for (const std::string& stem : stems)
    EXPECT_TRUE(isRun(sources, stem) || untested.count(stem) == 1)
        << stem << ": no test names this file and tests/untested_vectors.txt does not list it";
}

TEST(VectorCoverage, TheListOfUntestedFilesNamesNoneThatIsRun) {
  const std::string sources = sourcesThatRunVectors();
  for (const std::string& stem : untestedStems())
    EXPECT_FALSE(isRun(sources, stem)) << stem << ": a test runs it; strike it from the list";
}

TEST(VectorCoverage, FindsAStemOnlyWhole) {
  EXPECT_TRUE(isRun("runTsvVectors(\"rules_dates\", check)", "rules_dates"));
  EXPECT_FALSE(isRun("runTsvVectors(\"rules_dates_older\", check)", "rules_dates"));
}

}  // namespace
