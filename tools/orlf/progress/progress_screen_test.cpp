#include "progress/progress_screen.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <ostream>
#include <sstream>
#include <string>

#include "progress/progress_streams.h"

namespace {

using orlftool::LineStreamBuffer;
using orlftool::ProgressPause;
using orlftool::ProgressScreen;
using orlftool::TappedStreamBuffer;

/// A pipe, and what was written into it so far.
class Pipe {
 public:
  Pipe() { EXPECT_EQ(::pipe(ends_.data()), 0); }
  ~Pipe() {
    ::close(ends_[0]);
    ::close(ends_[1]);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;

  [[nodiscard]] int in() const { return ends_[1]; }
  std::string take() {
    EXPECT_EQ(::write(ends_[1], "$", 1), 1);
    std::string text;
    std::array<char, 4096> buffer{};
    while (!text.ends_with('$')) {
      const ssize_t count = ::read(ends_[0], buffer.data(), buffer.size());
      if (count <= 0) break;
      text.append(buffer.data(), static_cast<std::size_t>(count));
    }
    text.pop_back();
    return text;
  }

 private:
  std::array<int, 2> ends_{};
};

TEST(ProgressScreen, WritesItsLineOverAndOver) {
  Pipe pipe;
  {
    ProgressScreen screen(pipe.in());
    screen.show("one");
    EXPECT_EQ(pipe.take(), "one");
    screen.show("one");
    EXPECT_EQ(pipe.take(), "");
    screen.show("two");
    EXPECT_EQ(pipe.take(), "\r\x1B[Ktwo");
  }
  EXPECT_EQ(pipe.take(), "\r\x1B[K");
}

TEST(ProgressScreen, LetsMessagesStandAbove) {
  Pipe pipe;
  ProgressScreen screen(pipe.in());
  screen.print("note\n");
  screen.show("line");
  screen.print("note\n");
  screen.print("note\n");
  EXPECT_EQ(pipe.take(), "note\nline\r\x1B[Knote\nnote\n");
  screen.show("line");
  screen.close();
  screen.show("late");
  screen.print("still\n");
  EXPECT_EQ(pipe.take(), "line\r\x1B[Kstill\n");
}

TEST(ProgressScreen, TakesAwayAllRowsOfALineThatTheTerminalBroke) {
  Pipe pipe;  // says no width: 80 columns
  ProgressScreen screen(pipe.in());
  EXPECT_EQ(screen.columns(), 80U);
  screen.show(std::string(161, 'x'));
  pipe.take();
  screen.close();
  EXPECT_EQ(pipe.take(), "\r\x1B[K\x1B[A\x1B[K\x1B[A\x1B[K");
}

TEST(ProgressScreen, ShowsNothingWhileItIsPaused) {
  { const ProgressPause nothing; }
  Pipe pipe;
  ProgressScreen screen(pipe.in());
  screen.show("line");
  {
    const ProgressPause pause;
    screen.show("next");
    screen.print("note\n");
  }
  EXPECT_EQ(pipe.take(), "line\r\x1B[Knote\n");
  screen.show("next");
  EXPECT_EQ(pipe.take(), "next");
}

TEST(ProgressScreen, TakesItsLineAwayBeforeASignalEndsTheProgram) {
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    Pipe pipe;
    const pid_t child = ::fork();
    if (child == 0) {
      std::signal(number, SIG_DFL);  // a background job may be told to ignore it
      ProgressScreen screen(pipe.in());
      screen.show("line");
      std::raise(number);
      ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == number);
    EXPECT_EQ(pipe.take(), "line\r\x1B[K");
  }
}

TEST(ProgressScreen, LeavesSignalsAsTheyWere) {
  const auto before = std::signal(SIGHUP, SIG_IGN);
  const auto interruptBefore = std::signal(SIGINT, SIG_DFL);
  {
    Pipe pipe;
    const ProgressScreen screen(pipe.in());
    std::raise(SIGHUP);
  }
  EXPECT_EQ(std::signal(SIGHUP, before), SIG_IGN);
  EXPECT_EQ(std::signal(SIGINT, interruptBefore), SIG_DFL);
}

TEST(ProgressStreams, GiveWholeLines) {
  std::string printed;
  {
    LineStreamBuffer buffer([&](std::string_view lines) { printed += std::string(lines) + "|"; });
    std::ostream stream(&buffer);
    stream << "a" << 1 << 'b';
    EXPECT_EQ(printed, "");
    stream << "c\nd\ne" << std::flush;
    EXPECT_EQ(printed, "a1bc\nd\n|");
    stream << "f" << std::endl << "rest";
  }
  EXPECT_EQ(printed, "a1bc\nd\n|ef\n|rest\n|");
}

TEST(ProgressStreams, TellOfTheFirstOutputOnly) {
  std::ostringstream to;
  int calls = 0;
  TappedStreamBuffer buffer(*to.rdbuf(), [&] {
    EXPECT_EQ(to.str(), "");
    ++calls;
  });
  std::ostream stream(&buffer);
  stream << std::flush;
  EXPECT_EQ(calls, 0);
  stream << "rows" << 1 << '\n';
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(to.str(), "rows1\n");
}

}  // namespace
