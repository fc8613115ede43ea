
#include <ORLFoundation/platform/log/NSLog.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;

TEST(NSLog, WritesALineToStandardErrorByDefault) {
  testing::internal::CaptureStderr();
  NSLog("100% as it is: %@");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "100% as it is: %@\n");
}

TEST(NSLog, HandsMessagesToTheReplacedSink) {
  LogCapture log;
  NSLog("one");
  NSLog("two");
  EXPECT_THAT(log.lines(), ElementsAre("one", "two"));
  NSLog("one");
  EXPECT_THAT(log.distinctLines(), ElementsAre("one", "two"));
  log.clear();
  EXPECT_TRUE(log.lines().empty());
}

TEST(NSLog, GoesBackToTheSinkBefore) {
  LogCapture outer;
  {
    LogCapture inner;
    NSLog("inner");
    EXPECT_THAT(inner.lines(), ElementsAre("inner"));
  }
  NSLog("outer");
  EXPECT_THAT(outer.lines(), ElementsAre("outer"));
}

TEST(NSLog, SendsWhatASinkLogsToStandardError) {
  int calls = 0;
  const Replaced sink(NSSetLogSink, [&](std::string_view) {
    ++calls;
    NSLog("from the sink");
  });
  testing::internal::CaptureStderr();
  NSLog("message");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "from the sink\n");
  EXPECT_EQ(calls, 1);
}

TEST(NSLog, LetsASinkReplaceItself) {
  std::vector<std::string> heard;
  const Replaced sink(NSSetLogSink, [&heard](std::string_view first) {
    NSSetLogSink(
        [&heard](std::string_view later) { heard.push_back("second " + std::string(later)); });
    heard.push_back("first " + std::string(first));
  });
  NSLog("a");
  NSLog("b");
  EXPECT_THAT(heard, ElementsAre("first a", "second b"));
}

TEST(NSLog, KeepsLinesOfManyThreadsWhole) {
  LogCapture log;
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([] {
      for (int i = 0; i < 250; ++i) NSLog("line");
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(log.lines().size(), 1000U);
}

TEST(ORLFFatalErrorDeathTest, PrintsSourceAndLineAndAborts) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_DEATH(ORLFFatalError("unknown frequency 3", "Rule.cpp", 12),
               "Fatal error: unknown frequency 3: file Rule.cpp, line 12");
}

}  // namespace
}  // namespace ORLFoundation
