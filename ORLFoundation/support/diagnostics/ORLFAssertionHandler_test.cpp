
#include <ORLFoundation/support/diagnostics/ORLFAssertionHandler.h>

#include <ORLFoundation/platform/alert/NSAlertPresenter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/defaults/NSUserDefaults.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>
#include <ORLFoundation/platform/dispatch/NSMainQueue_testing.h>
#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/support/diagnostics/ORLFAssertionHandler_testing.h>
#include <ORLFoundation/support/diagnostics/ORLFProcessDoor.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::kContinue;
using orlftest::kQuit;
using orlftest::threadDictionary;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

constexpr const char* kTraced = "TracerPid:\t7\n";
constexpr const char* kNotTraced = "TracerPid:\t0\n";

class A : public NSObject {
 public:
  [[nodiscard]] std::string className() const override { return "A"; }
};

NSMethodFailure failureOfA() {
  return {.method = "run",
          .object = std::make_shared<A>(),
          .file = "/x/y.m",
          .lineNumber = 7,
          .description = "%@ has %ld",
          .arguments = {"list", 3}};
}

/// A process, a user who answers, and a log, all in memory.
class ORLFAssertionHandlerTest : public testing::Test {
 protected:
  void use(const char* status, std::vector<NSInteger> answers) {
    door_ = std::make_shared<ORLFRecordingProcessDoor>(status);
    presenter_ = std::make_shared<NSScriptedAlertPresenter>(std::move(answers));
    ORLFSetProcessDoor(door_);
    NSSetAlertPresenter(presenter_);
  }

  std::shared_ptr<ORLFAssertionHandler> handler_ = std::make_shared<ORLFAssertionHandler>();
  std::shared_ptr<ORLFRecordingProcessDoor> door_;
  std::shared_ptr<NSScriptedAlertPresenter> presenter_;
  const Replaced<std::shared_ptr<ORLFProcessDoor>> doorBefore_{ORLFSetProcessDoor, nullptr};
  const Replaced<std::shared_ptr<NSAlertPresenter>> presenterBefore_{NSSetAlertPresenter, nullptr};
  LogCapture log_;
};

TEST_F(ORLFAssertionHandlerTest, MakesTheErrorOfAnAssertion) {
  use(kNotTraced, {});
  const auto error = handler_->errorWithAssertion("count > 0", "[A run] at y.m:7");
  EXPECT_EQ(error->domain(), "ORLFErrorDomain");
  EXPECT_EQ(error->code(), 1);
  EXPECT_EQ(error->localizedDescription(), "The following error occurred:");
  const auto& userInfo = *error->userInfo();
  EXPECT_EQ(userInfo.count(), 4U);
  EXPECT_EQ(userInfo.objectForKey(NSLocalizedRecoverySuggestionErrorKey),
            id("count > 0\n\n[A run] at y.m:7"));
  EXPECT_EQ(userInfo.objectForKey(NSLocalizedRecoveryOptionsErrorKey),
            id(NSArray::arrayWithObjects({"Quit", "Continue"})));
  EXPECT_EQ(userInfo.objectForKey(NSRecoveryAttempterErrorKey).object(), handler_);
}

TEST_F(ORLFAssertionHandlerTest, OffersTheDebuggerThatIsThere) {
  use(kTraced, {});
  const auto error = handler_->errorWithAssertion("a", "b");
  EXPECT_EQ(error->userInfo()->objectForKey(NSLocalizedRecoveryOptionsErrorKey),
            id(NSArray::arrayWithObjects({"Quit", "Debug"})));
}

TEST_F(ORLFAssertionHandlerTest, LogsAFailureInAMethodAndShowsIt) {
  use(kNotTraced, {kQuit});
  handler_->handleFailureInMethod(failureOfA());
  ASSERT_EQ(log_.lines().size(), 2U);
  EXPECT_EQ(log_.lines()[0], "ASSERTION failure: <list has 3> in [A run] at y.m:7");
  EXPECT_THAT(presenter_->shown(), ElementsAre("The following error occurred:\nlist has 3\n\n"
                                               "[A run] at y.m:7\nQuit\nContinue"));
  EXPECT_THAT(door_->calls(), ElementsAre("quit"));
}

TEST_F(ORLFAssertionHandlerTest, LogsAFailureInAFunctionAndShowsIt) {
  use(kNotTraced, {kContinue});
  handler_->handleFailureInFunction("run", "y.m", 7, "%@ has %ld", {"list", 3});
  ASSERT_EQ(log_.lines().size(), 2U);
  EXPECT_EQ(log_.lines()[0], "ASSERTION failure: <list has 3> in run at y.m:7");
  EXPECT_THAT(presenter_->shown(), ElementsAre("The following error occurred:\nlist has 3\n\n"
                                               "run at y.m:7\nQuit\nContinue"));
  EXPECT_THAT(door_->calls(), ElementsAre("trap"));
}

struct ContextCase {
  std::string_view name;
  id object;
  std::string_view file, place;
};

TEST_F(ORLFAssertionHandlerTest, NamesThePlaceOfAFailure) {
  const ContextCase rows[] = {
      {"Path", std::make_shared<A>(), "/x/y.m", "[A run] at y.m:7"},
      {"Name", std::make_shared<A>(), "y.m", "[A run] at y.m:7"},
      {"SlashAtTheEnd", std::make_shared<A>(), "/x/y.m/", "[A run] at y.m:7"},
      {"Root", std::make_shared<A>(), "/", "[A run] at /:7"},
      {"NoFile", std::make_shared<A>(), "", "[A run] at :7"},
      {"PlainValue", "text", "y.m", "[NSString run] at y.m:7"},
      {"Nil", nullptr, "y.m", "[(null) run] at y.m:7"},
  };
  for (const ContextCase& row : rows) {
    use(kTraced, {});
    log_.clear();
    NSMethodFailure failure = failureOfA();
    failure.object = row.object;
    failure.file = row.file;
    handler_->handleFailureInMethod(failure);
    EXPECT_EQ(log_.lines()[0], "ASSERTION failure: <list has 3> in " + std::string(row.place))
        << row.name;
  }
}

TEST_F(ORLFAssertionHandlerTest, LeavesTheFirstTwoCallsOutOfTheLog) {
  use(kTraced, {});
  const std::size_t depth = NSThread::callStackSymbols().size();
  handler_->handleFailureInMethod(failureOfA());
  const std::string calls = log_.lines()[1];
  EXPECT_THAT(calls, StartsWith("(\n    \"2   "));
  EXPECT_THAT(calls, HasSubstr("\n    \"" + std::to_string(depth + 1) + " "));
  EXPECT_THAT(calls, Not(HasSubstr("\n    \"" + std::to_string(depth + 2) + " ")));
}

TEST_F(ORLFAssertionHandlerTest, TrapsInPlaceUnderADebuggerAndGoesOn) {
  use(kTraced, {kQuit});
  handler_->handleFailureInMethod(failureOfA());
  handler_->handleFailureInFunction("run", "y.m", 7, "no");
  EXPECT_THAT(presenter_->shown(), IsEmpty());
  EXPECT_THAT(door_->calls(), ElementsAre("trap", "trap"));
}

TEST_F(ORLFAssertionHandlerTest, EndsOrTrapsByTheAnswer) {
  use(kNotTraced, {kQuit, kContinue, 2, -1});
  const NSError error("ORLFErrorDomain", 1);
  for (int i = 0; i < 4; ++i) handler_->presentModalAlert(error);
  EXPECT_THAT(door_->calls(), ElementsAre("quit", "trap", "quit", "quit"));
}

TEST_F(ORLFAssertionHandlerTest, LogsTheAlertAndQuitsWithNoOneToAsk) {
  use(kNotTraced, {});
  NSSetAlertPresenter(std::make_shared<NSTerminalAlertPresenter>(-1, -1));
  handler_->handleFailureInMethod(failureOfA());
  ASSERT_EQ(log_.lines().size(), 3U);
  EXPECT_EQ(log_.lines()[2], "The following error occurred:\nlist has 3\n\n[A run] at y.m:7");
  EXPECT_THAT(door_->calls(), ElementsAre("quit"));
}

/// Counts as the main thread while it presents.
class MainThreadHandler final : public ORLFAssertionHandler {
 public:
  void presentModalAlert(const NSError& error) override {
    presentedOnMain = NSThread::isMainThread();
    ORLFAssertionHandler::presentModalAlert(error);
  }
  bool presentedOnMain = false;
};

TEST_F(ORLFAssertionHandlerTest, PresentsOnTheMainThreadWhileTheFailingThreadWaits) {
  use(kNotTraced, {kContinue});
  const auto handler = std::make_shared<MainThreadHandler>();
  pumpMainQueue(0);  // From here on the main thread counts as served.
  std::thread failing([&] {
    handler->handleFailureInMethod(failureOfA());
    EXPECT_THAT(door_->calls(), ElementsAre("trap"));
  });
  EXPECT_TRUE(pumpMainQueue(10));
  failing.join();
  EXPECT_TRUE(handler->presentedOnMain);
}

TEST_F(ORLFAssertionHandlerTest, PresentsInPlaceWhereNobodyServesTheMainThread) {
  use(kNotTraced, {kContinue});
  const auto handler = std::make_shared<MainThreadHandler>();
  const orlftest::MainThreadPatience impatient(std::chrono::milliseconds(10));
  std::thread([&] {
    handler->handleFailureInMethod(failureOfA());
    EXPECT_THAT(door_->calls(), ElementsAre("trap"));
  }).join();
  EXPECT_FALSE(handler->presentedOnMain);
}

/// Meets another failure while it presents the first.
class NestingHandler final : public ORLFAssertionHandler {
 public:
  void presentModalAlert(const NSError& error) override {
    if (depth++ == 0) handleFailureInFunction("inner", "y.m", 8, "nested");
    ORLFAssertionHandler::presentModalAlert(error);
  }
  int depth = 0;
};

TEST_F(ORLFAssertionHandlerTest, AFailureDuringAnAlertNests) {
  use(kNotTraced, {kContinue, kContinue});
  const auto handler = std::make_shared<NestingHandler>();
  handler->handleFailureInFunction("outer", "y.m", 7, "first");
  ASSERT_EQ(presenter_->shown().size(), 2U);
  EXPECT_THAT(presenter_->shown()[0], HasSubstr("inner at y.m:8"));
  EXPECT_THAT(presenter_->shown()[1], HasSubstr("outer at y.m:7"));
}

TEST_F(ORLFAssertionHandlerTest, FailuresOfManyThreadsAreAllShown) {
  use(kNotTraced, {});
  const orlftest::MainThreadPatience impatient(std::chrono::milliseconds(10));
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t)
    threads.emplace_back([&] {
      for (int i = 0; i < 20; ++i) handler_->handleFailureInFunction("run", "y.m", 7, "no");
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(presenter_->shown().size(), 80U);
  EXPECT_EQ(door_->calls().size(), 80U);
}

TEST_F(ORLFAssertionHandlerTest, KeepsAFieldThatNothingReads) {
  EXPECT_FALSE(handler_->showingAlert());
  handler_->setShowingAlert(true);
  EXPECT_TRUE(handler_->showingAlert());
}

class Account : public NSObject {
 public:
  explicit Account(int count) : count_(count) {}
  void audit(int& evaluations) const {
    ORLFAssert(count_ > 0, "%@ has %ld members", "list", (++evaluations, count_));
  }
  [[nodiscard]] std::string className() const override { return "Account"; }

 private:
  int count_;
};

void auditFreely(bool holds) { ORLFCAssert(holds, "it does not hold"); }

/// Collects what the macros hand over.
class CollectingHandler final : public NSAssertionHandler {
 public:
  void handleFailureInMethod(const NSMethodFailure& failure) override {
    heard.push_back(failure.object.className() + " " + std::string(failure.method) + " " +
                    std::string(failure.description) + " " +
                    std::to_string(failure.arguments.size()));
    EXPECT_THAT(std::string(failure.file), HasSubstr("ORLFAssertionHandler_test.cpp"));
    EXPECT_GT(failure.lineNumber, 0);
  }
  void handleFailureInFunction(std::string_view function, std::string_view, NSInteger,
                               std::string_view description,
                               const std::vector<id>& arguments) override {
    heard.push_back(std::string(function) + " " + std::string(description) + " " +
                    std::to_string(arguments.size()));
  }
  std::vector<std::string> heard;
};

TEST(ORLFAssert, HandsAFailureToTheHandlerOfTheThread) {
  const NSStandardUserDefaultsInMemory defaults;
  const auto handler = std::make_shared<CollectingHandler>();
  threadDictionary()->setObject(handler, NSAssertionHandlerKey);
  int evaluations = 0;
  std::make_shared<Account>(1)->audit(evaluations);
  auditFreely(true);
  EXPECT_THAT(handler->heard, IsEmpty());
  EXPECT_EQ(evaluations, 0);
  std::make_shared<Account>(0)->audit(evaluations);
  Account(0).audit(evaluations);  // Held by no shared pointer.
  auditFreely(false);
  EXPECT_THAT(handler->heard,
              ElementsAre("Account audit %@ has %ld members 2",
                          "Account audit %@ has %ld members 2", "auditFreely it does not hold 0"));
  EXPECT_EQ(evaluations, 2);
  threadDictionary()->removeObjectForKey(NSAssertionHandlerKey);
}

}  // namespace
}  // namespace ORLFoundation
