#include "io/child_program.h"

#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>

#include <string>

namespace {

using orlftool::ChildRun;
using orlftool::runProgram;

class ChildProgram : public orlftest::TemporaryFolderTest {};

TEST_F(ChildProgram, GetsItsInputAndTellsItsEnd) {
  const ChildRun run = runProgram({"sh", "-c", "cat >&2; echo dropped; exit 3"}, "a\nb");
  EXPECT_TRUE(run.isFound);
  EXPECT_EQ(run.exitCode, 3);
  EXPECT_EQ(run.errors, "a\nb");
}

TEST_F(ChildProgram, TakesMoreThanAPipeHolds) {
  const std::string input(1 << 20, 'x');
  const ChildRun run = runProgram({"sh", "-c", "cat >&2"}, input);
  EXPECT_EQ(run.exitCode, 0);
  EXPECT_EQ(run.errors, input);
  EXPECT_EQ(runProgram({"true"}, input).exitCode, 0) << "nobody reads it";
}

TEST_F(ChildProgram, GetsItsWordsAsTheyAre) {
  const std::string word = path("a b;touch c $(touch d)'\"");
  EXPECT_EQ(runProgram({"touch", word}, "").exitCode, 0);
  EXPECT_EQ(names(), std::vector<std::string>{"a b;touch c $(touch d)'\""});
}

TEST_F(ChildProgram, MayBeMissing) {
  const ChildRun run = runProgram({"no-such-program-of-orlf"}, "x");
  EXPECT_FALSE(run.isFound);
  EXPECT_EQ(run.errors, "");
}

TEST_F(ChildProgram, MayEndByASignal) {
  EXPECT_EQ(runProgram({"sh", "-c", "kill -9 $$"}, "").exitCode, 137);
}

}  // namespace
