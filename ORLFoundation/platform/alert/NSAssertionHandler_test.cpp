
#include <ORLFoundation/platform/alert/NSAssertionHandler.h>

#include <ORLFoundation/platform/dispatch/NSThread.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace ORLFoundation {
namespace {

using orlftest::raisedBy;
using testing::ElementsAre;

TEST(NSAssertionHandler, IsThereWithoutAWordToTheThreadsDictionary) {
  const auto handler = NSAssertionHandler::currentHandler();
  ASSERT_NE(handler, nullptr);
  EXPECT_EQ(NSAssertionHandler::currentHandler(), handler);
  EXPECT_EQ(NSThread::currentThread()->threadDictionary()->count(), 0U);
  std::thread([&] {
    EXPECT_EQ(NSAssertionHandler::currentHandler(), handler);
    EXPECT_EQ(NSThread::currentThread()->threadDictionary()->count(), 0U);
  }).join();
}

TEST(NSAssertionHandler, CanBeReplacedForAThread) {
  const auto own = std::make_shared<NSAssertionHandler>();
  const auto dictionary = NSThread::currentThread()->threadDictionary();
  dictionary->setObject(own, NSAssertionHandlerKey);
  EXPECT_EQ(NSAssertionHandler::currentHandler(), own);
  dictionary->setObject("no handler", NSAssertionHandlerKey);
  EXPECT_NE(NSAssertionHandler::currentHandler(), nullptr);
  dictionary->removeObjectForKey(NSAssertionHandlerKey);
}

TEST(NSAssertionHandler, LogsAFailureInAMethodAndRaises) {
  LogCapture log;
  NSAssertionHandler handler;
  EXPECT_EQ(raisedBy([&] {
              handler.handleFailureInMethod({.method = "run",
                                             .object = std::make_shared<NSObject>(),
                                             .file = "/x/y.m",
                                             .lineNumber = 7,
                                             .description = "%@ has %ld",
                                             .arguments = {"a", 3}});
            }),
            "NSInternalInconsistencyException: a has 3");
  EXPECT_THAT(log.lines(), ElementsAre("*** Assertion failure in [NSObject run], /x/y.m:7"));
}

TEST(NSAssertionHandler, LogsAFailureInAFunctionAndRaises) {
  LogCapture log;
  NSAssertionHandler handler;
  EXPECT_EQ(raisedBy([&] { handler.handleFailureInFunction("run", "y.m", 7, "no"); }),
            "NSInternalInconsistencyException: no");
  EXPECT_THAT(log.lines(), ElementsAre("*** Assertion failure in run, y.m:7"));
}

}  // namespace
}  // namespace ORLFoundation
