#include "cli/command_line.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using orlftool::CommandLine;
using orlftool::Options;

/// A program with one command of every kind of option.
class CommandLineOptions : public testing::Test {
 protected:
  CommandLine::Reading read(const std::vector<std::string>& words) {
    CommandLine line("tool", "Does things.", "tool 1.2");
    line.commonOptions().flag("--loud", loud_, "Loud");
    Options options = line.addCommand("take", "The footer.");
    options.describe("Takes things.");
    options.required("THING", thing_, "What to take");
    options.text("--times", times_, "How often");
    options.text("--until", until_, "When to end");
    options.list("--days", days_, "Days");
    options.exclude("--until", "--days");
    line.addCommand("give", "").requiredList("TEXT", texts_, "Texts");
    return line.read(words, out_);
  }

  bool loud_ = false;
  std::string thing_, times_ = "12";
  std::optional<std::string> until_;
  std::vector<std::string> days_, texts_;
  std::ostringstream out_;
};

TEST_F(CommandLineOptions, KeepTextsAsTheyWereTyped) {
  const auto reading = read({"take", "--times", "007", "x y", "--until=", "--loud"});
  EXPECT_EQ(reading.command, "take");
  EXPECT_EQ(reading.fault, "");
  EXPECT_EQ(thing_, "x y");
  EXPECT_EQ(times_, "007");
  EXPECT_EQ(until_, "");
  EXPECT_TRUE(loud_);
}

TEST_F(CommandLineOptions, StayAsTheyAreWhereNothingIsGiven) {
  EXPECT_EQ(read({"take", "x"}).fault, "");
  EXPECT_EQ(times_, "12");
  EXPECT_EQ(until_, std::nullopt);
  EXPECT_TRUE(days_.empty());
  EXPECT_FALSE(loud_);
}

TEST_F(CommandLineOptions, PartListsAtCommasAndBlanks) {
  EXPECT_EQ(read({"take", "x", "--days", "1,-2", "3"}).fault, "");
  EXPECT_EQ(days_, (std::vector<std::string>{"1", "-2", "3"}));
}

TEST_F(CommandLineOptions, KeepArgumentsWhole) {
  EXPECT_EQ(read({"give", "a,b", "[c, d]", "[]", "take", "-5", "-.5", "--", "-x"}).fault, "");
  EXPECT_EQ(texts_, (std::vector<std::string>{"a,b", "[c, d]", "[]", "take", "-5", "-.5", "-x"}));
}

TEST_F(CommandLineOptions, SayWhatIsWrongInOneLine) {
  EXPECT_EQ(read({"take"}).fault, "THING is required (--help tells more)");
  EXPECT_EQ(read({"take", "x", "--until", "1", "--days", "2"}).fault,
            "--until excludes --days (--help tells more)");
  EXPECT_EQ(read({"[it]"}).fault, "unknown command or option '[it]' (--help tells more)");
  EXPECT_EQ(read({}).fault, "A subcommand is required (--help tells more)");
  EXPECT_EQ(out_.str(), "");
}

TEST_F(CommandLineOptions, AreToldByHelp) {
  EXPECT_TRUE(read({"take", "--help"}).isAnswered);
  const std::string help = out_.str();
  for (const char* part :
       {"Takes things.", "THING", "What to take", "--times", "12", "How often", "The footer."})
    EXPECT_NE(help.find(part), std::string::npos) << part << " in " << help;
  out_.str("");
  EXPECT_TRUE(read({"--version"}).isAnswered);
  EXPECT_EQ(out_.str(), "tool 1.2\n");
}

}  // namespace
