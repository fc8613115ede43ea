#include "cli/progress_line.h"

#include <gtest/gtest.h>

#include <iostream>
#include <sstream>

namespace {

using orlftool::ProgressLine;

TEST(ProgressLine, TellsEverySixteenMegabytesAndGoesAtTheEnd) {
  std::ostringstream err;
  {
    ProgressLine progress(err, 100'000'000, true);
    for (std::uint64_t done = 0; done <= 50'000'000; done += 1'000'000) progress.update(done);
  }
  EXPECT_EQ(err.str(),
            "\r16 MB of 100 MB, 16%\r32 MB of 100 MB, 32%\r48 MB of 100 MB, 48%\r\x1B[K");
}

TEST(ProgressLine, TellsNoShareOfAnUnknownLength) {
  std::ostringstream err;
  {
    ProgressLine progress(err, std::nullopt, true);
    progress.update(40'000'000);
    progress.update(41'000'000);
    progress.clear();
    progress.clear();
  }
  EXPECT_EQ(err.str(), "\r40 MB\r\x1B[K");
}

TEST(ProgressLine, StaysAwayFromShortJobsAndFromWhatIsNoTerminal) {
  std::ostringstream err;
  { ProgressLine(err, 1000, true).update(1000); }
  { ProgressLine(err, 1'000'000'000, false).update(1'000'000'000); }
  { ProgressLine(err, 1'000'000'000).update(1'000'000'000); }
  EXPECT_EQ(err.str(), "");
}

}  // namespace
