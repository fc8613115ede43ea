#include <ORLFoundation/support/diagnostics/ORLFAssertionHandler.h>

#include <ORLFoundation/platform/alert/NSAlertPresenter.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/support/diagnostics/ORLFAssertionHandler_testing.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <mutex>
#include <set>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

using orlftest::kContinue;
using orlftest::kQuit;
using orlftest::threadDictionary;

// What is found out once for the process, and what ends it, is tested in processes of their own.
class ORLFAssertionHandlerDeathTest : public testing::Test {
 protected:
  ORLFAssertionHandlerDeathTest() { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

void check(bool holds, const char* text) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", text);
  ::_exit(1);
}
#define CHECK_IN_CHILD(condition) check(condition, #condition)

void useCustomHandlerOnTwoThreads() {
  const NSStandardUserDefaultsInMemory defaults;
  const auto handler = customHandler();
  CHECK_IN_CHILD(dynamic_cast<ORLFAssertionHandler*>(handler.get()) != nullptr);
  CHECK_IN_CHILD(threadDictionary()->objectForKey(NSAssertionHandlerKey).object() == handler);
  CHECK_IN_CHILD(customHandler() == handler);
  std::thread([&] {
    CHECK_IN_CHILD(threadDictionary()->count() == 0);
    CHECK_IN_CHILD(customHandler() == handler);
    CHECK_IN_CHILD(threadDictionary()->objectForKey(NSAssertionHandlerKey).object() == handler);
    const auto own = std::make_shared<NSAssertionHandler>();
    threadDictionary()->setObject(own, NSAssertionHandlerKey);
    CHECK_IN_CHILD(customHandler() == own);
  }).join();
  CHECK_IN_CHILD(customHandler() == handler);
  ::_exit(0);
}

TEST_F(ORLFAssertionHandlerDeathTest, CustomHandlerIsInstalledForEachThreadThatAsks) {
  EXPECT_EXIT(useCustomHandlerOnTwoThreads(), testing::ExitedWithCode(0), "");
}

void useCustomHandlerUnderTest() {
  const NSStandardUserDefaultsInMemory defaults;
  NSUserDefaults::standardUserDefaults()->setObject("", "XCTest");
  const auto own = std::make_shared<NSAssertionHandler>();
  threadDictionary()->setObject(own, NSAssertionHandlerKey);
  CHECK_IN_CHILD(customHandler() == own);
  threadDictionary()->removeAllObjects();
  const auto handler = customHandler();
  CHECK_IN_CHILD(threadDictionary()->count() == 0);
  CHECK_IN_CHILD(handler == NSAssertionHandler::currentHandler());
  CHECK_IN_CHILD(dynamic_cast<ORLFAssertionHandler*>(handler.get()) == nullptr);
  std::thread([] {
    CHECK_IN_CHILD(customHandler() != nullptr);
    CHECK_IN_CHILD(threadDictionary()->count() == 0);
  }).join();
  // Found out once: the value may go.
  NSUserDefaults::standardUserDefaults()->removeObjectForKey("XCTest");
  threadDictionary()->removeAllObjects();
  CHECK_IN_CHILD(dynamic_cast<ORLFAssertionHandler*>(customHandler().get()) == nullptr);
  ::_exit(0);
}

TEST_F(ORLFAssertionHandlerDeathTest, CustomHandlerIsThePlatformsUnderTest) {
  EXPECT_EXIT(useCustomHandlerUnderTest(), testing::ExitedWithCode(0), "");
}

void useCustomHandlerBeforeTheValueComes() {
  const NSStandardUserDefaultsInMemory defaults;
  const auto handler = customHandler();
  NSUserDefaults::standardUserDefaults()->setObject(1, "XCTest");
  threadDictionary()->removeAllObjects();
  CHECK_IN_CHILD(customHandler() == handler);
  ::_exit(0);
}

TEST_F(ORLFAssertionHandlerDeathTest, CustomHandlerAsksOnceForTheProcess) {
  EXPECT_EXIT(useCustomHandlerBeforeTheValueComes(), testing::ExitedWithCode(0), "");
}

void useCustomHandlerOnManyThreads() {
  const NSStandardUserDefaultsInMemory defaults;
  std::mutex lock;
  std::set<std::shared_ptr<NSAssertionHandler>> handlers;
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t)
    threads.emplace_back([&] {
      const auto handler = customHandler();
      const std::lock_guard guard(lock);
      handlers.insert(handler);
    });
  for (auto& thread : threads) thread.join();
  CHECK_IN_CHILD(handlers.size() == 1);
  ::_exit(0);
}

TEST_F(ORLFAssertionHandlerDeathTest, CustomHandlerIsOneForManyThreads) {
  EXPECT_EXIT(useCustomHandlerOnManyThreads(), testing::ExitedWithCode(0), "");
}

void answerWith(NSInteger button) {
  NSSetAlertPresenter(std::make_shared<NSScriptedAlertPresenter>(std::vector<NSInteger>{button}));
  ORLFAssertionHandler().presentModalAlert(NSError("ORLFErrorDomain", 1));
}

TEST_F(ORLFAssertionHandlerDeathTest, QuitEndsTheProcessWithSignal9) {
  EXPECT_EXIT(answerWith(kQuit), testing::KilledBySignal(SIGKILL), "");
}

TEST_F(ORLFAssertionHandlerDeathTest, ContinueEndsAProcessWithoutADebuggerByATrap) {
  EXPECT_EXIT(answerWith(kContinue), testing::KilledBySignal(SIGTRAP), "");
}

#if defined(__x86_64__)
TEST_F(ORLFAssertionHandlerDeathTest, TheTrapCannotBeIgnored) {
  EXPECT_EXIT(
      {
        std::signal(SIGTRAP, SIG_IGN);
        answerWith(kContinue);
      },
      testing::KilledBySignal(SIGTRAP), "");
}
#endif

}  // namespace
}  // namespace ORLFoundation
