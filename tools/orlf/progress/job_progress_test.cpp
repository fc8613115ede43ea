#include "progress/job_progress.h"

#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>

#include "cli/failure.h"
#include "progress/work_progress.h"
#include "session.h"

namespace {

using namespace orlftool;
using ORLFoundation::ORLFProgressIndicator;
using ORLFoundation::ORLFProgressItem;
using orlftest::VirtualMainLoop;

constexpr std::int64_t kMillisecond = 1'000'000;

/// What a drawer writes, step by step on a clock that the test moves.
class Drawing {
 public:
  explicit Drawing(ProgressKind kind)
      : file_(std::tmpfile()),
        screen_(::fileno(file_)),
        drawer_(std::make_shared<ProgressDrawer>(kind, "csv", screen_)) {
    indicator->setDelegate(drawer_);
    indicator->displayProgressItem(item);
  }
  ~Drawing() {
    indicator->setDelegate(nullptr);
    item->setCurrentIndicator(nullptr);
    loop.advance(2000 * kMillisecond);
    std::fclose(file_);
  }
  Drawing(const Drawing&) = delete;
  Drawing& operator=(const Drawing&) = delete;

  std::string take() {
    std::string text;
    std::fseek(file_, taken_, SEEK_SET);
    for (int c = std::fgetc(file_); c != EOF; c = std::fgetc(file_)) text += static_cast<char>(c);
    taken_ += static_cast<long>(text.size());
    return text;
  }
  void advance(std::int64_t milliseconds) { loop.advance(milliseconds * kMillisecond); }

  VirtualMainLoop loop;
  std::shared_ptr<ORLFProgressItem> item = std::make_shared<ORLFProgressItem>();
  std::shared_ptr<ORLFProgressIndicator> indicator = std::make_shared<ORLFProgressIndicator>();

 private:
  std::FILE* file_;
  long taken_ = 0;
  ProgressScreen screen_;
  std::shared_ptr<ProgressDrawer> drawer_;
};

TEST(ProgressDrawer, DrawsNothingInTheFirstMoments) {
  Drawing drawing(ProgressKind::line);
  drawing.item->setMessage("Reading");
  for (int value = 1; value <= 19; ++value) {
    drawing.item->updateValue(value, 100);
    drawing.advance(10);
  }
  EXPECT_EQ(drawing.take(), "");
  drawing.item->updateValue(20);
  drawing.advance(10);
  EXPECT_TRUE(drawing.take().starts_with("- Reading "));
}

TEST(ProgressDrawer, WritesAPlainLineNowAndThen) {
  Drawing drawing(ProgressKind::plain);
  drawing.item->setMessage("Reading");
  const auto work = [&](double from, double to, int milliseconds) {
    for (int at = 0; at < milliseconds; at += 100) {
      drawing.item->updateValue(from + (to - from) * (at + 100) / milliseconds, 1000);
      drawing.advance(100);
    }
    return drawing.take();
  };
  EXPECT_EQ(work(0, 50, 900), "");
  EXPECT_EQ(work(50, 60, 200), "orlf csv: Reading, 6%, 60 of 1000, 54/s, 1 s\n");
  EXPECT_EQ(work(60, 90, 900), "");
  EXPECT_EQ(work(90, 99, 5000), "");
  const std::string further = work(99, 205, 1000);
  EXPECT_EQ(further.substr(0, 22), "orlf csv: Reading, 10%");
  EXPECT_EQ(further.find('\n'), further.size() - 1);
  EXPECT_EQ(work(205, 210, 900).substr(0, 22), "orlf csv: Reading, 20%");
  EXPECT_EQ(work(210, 220, 29000), "");
  EXPECT_NE(work(220, 221, 2000), "");
}

TEST(ProgressKind, IsNoneForStreamsOfTheTestsAndForQuiet) {
  std::ostringstream out, err;
  EXPECT_EQ(progressKindOf(Session{.out = out, .err = err}), ProgressKind::none);
  Session quiet{.out = out, .err = std::cerr};
  quiet.options.quiet = true;
  EXPECT_EQ(progressKindOf(quiet), ProgressKind::none);
  ::setenv("TERM", "dumb", 1);
  EXPECT_EQ(progressKindOf(Session{.out = out, .err = std::cerr}), ProgressKind::plain);
}

TEST(RunJobWithProgress, GivesOutputMessagesExitCodeAndFailureAsTheJobDoes) {
  std::ostringstream out;
  ::setenv("TERM", "dumb", 1);
  testing::internal::CaptureStderr();
  Session session{.out = out, .err = std::cerr, .command = "csv"};
  runJobWithProgress(
      [](Session& own) {
        const WorkProgress progress("Reading", 10.0);
        const WorkProgress part(progress, "Part", std::nullopt);
        part.update(5);
        own.out << "rows\n";
        printNote(own, "a note");
        own.exitCode = 1;
      },
      session);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "orlf csv: a note\n");
  EXPECT_EQ(out.str(), "rows\n");
  EXPECT_EQ(session.exitCode, 1);
  EXPECT_THROW(runJobWithProgress([](Session&) { throw JobFailure("no"); }, session), JobFailure);
  EXPECT_EQ(jobProgressItem(), nullptr);
}

TEST(WorkProgress, IsAChildOfTheJobsItem) {
  std::ostringstream out;
  Session session{.out = out, .err = std::cerr, .command = "csv"};
  ::setenv("TERM", "dumb", 1);
  runJobWithProgress(
      [](Session&) {
        const auto root = jobProgressItem();
        ASSERT_TRUE(root);
        EXPECT_TRUE(root->currentIndeterminate());
        {
          const WorkProgress progress("Reading", 10.0);
          progress.update(4);
          EXPECT_EQ(root->currentMessage(), "Reading");
          EXPECT_EQ(root->currentValue(), 4);
          EXPECT_EQ(root->currentMaxValue(), 10);
          EXPECT_FALSE(root->currentIndeterminate());
          const WorkProgress part(progress, "Part", std::nullopt);
          part.update(1e6);
          EXPECT_EQ(root->currentValue(), 1e6);
          EXPECT_TRUE(root->currentIndeterminate());
        }
        EXPECT_EQ(root->currentMessage(), std::nullopt);
        EXPECT_TRUE(root->children().empty());
      },
      session);
  const WorkProgress alone("Reading", 10.0);
  alone.update(3);
  EXPECT_EQ(jobProgressItem(), nullptr);
}

}  // namespace
