#include "io/ending_signals.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/ChildProcess.h>
#include <tests/support/TemporaryFolder.h>

#include <csignal>
#include <fstream>
#include <string>

#include "io/atomic_file.h"

namespace {

using orlftool::EndingSignals;
using testing::ElementsAre;

class EndingSignalsTest : public orlftest::TemporaryFolderTest {};

TEST_F(EndingSignalsTest, TakeAwayAFileThatIsNotFinished) {
  write("file", "old");
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    const std::string told = orlftest::inChild([&]() -> std::string {
      std::signal(number, SIG_DFL);  // which jobs in the background may begin without
      const EndingSignals signals;
      orlftool::writeFileAtomically(path("file"), [&](const std::string& beside) {
        std::ofstream(beside) << "half";
        std::raise(number);
      });
      return "went on";
    });
    EXPECT_EQ(told, "killed by " + std::to_string(number));
    EXPECT_EQ(read("file"), "old");
    EXPECT_THAT(names(), ElementsAre("file"));
  }
}

TEST_F(EndingSignalsTest, AreAsTheyWereAfterwards) {
  const auto actionOf = [](int number) {
    struct sigaction action {};
    EXPECT_EQ(::sigaction(number, nullptr, &action), 0);
    return action.sa_handler;
  };
  const auto interrupt = actionOf(SIGINT), end = actionOf(SIGTERM);
  const auto before = std::signal(SIGHUP, SIG_IGN);
  {
    const EndingSignals signals;
    const EndingSignals again;
    std::raise(SIGHUP);  // who ignored it goes on ignoring it
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
  EXPECT_EQ(actionOf(SIGINT), interrupt);
  EXPECT_EQ(actionOf(SIGTERM), end);
}

}  // namespace
