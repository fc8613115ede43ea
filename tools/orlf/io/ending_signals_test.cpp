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
  const auto before = std::signal(SIGHUP, SIG_IGN);
  {
    const EndingSignals signals;
    const EndingSignals again;
    std::raise(SIGHUP);  // who ignored it goes on ignoring it
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
  for (const int number : {SIGINT, SIGTERM}) {
    struct sigaction action {};
    ASSERT_EQ(::sigaction(number, nullptr, &action), 0);
    EXPECT_EQ(action.sa_handler, SIG_DFL);
  }
}

}  // namespace
