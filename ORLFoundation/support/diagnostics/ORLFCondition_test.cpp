
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/support/diagnostics/ORLFDebugLog.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(ORLFCondition, LogsAFailedConditionAndGoesOn) {
  LogCapture log;
  bool wentOn = false;
  ORLFConditionAssert(1 > 2, "index <= count", "Should never be index > count");
  wentOn = true;
  EXPECT_TRUE(wentOn);
  EXPECT_THAT(log.lines(),
              ElementsAre("Condition Failed: index <= count Should never be index > count"));
}

TEST(ORLFCondition, SaysNothingOfAConditionThatHolds) {
  LogCapture log;
  int evaluations = 0;
  const auto message = [&] {
    ++evaluations;
    return std::string("message");
  };
  ORLFConditionAssert(1 < 2, "1 < 2", message());
  EXPECT_THAT(log.lines(), IsEmpty());
  EXPECT_EQ(evaluations, 0);
  ORLFConditionAssert(false, "never", message());
  EXPECT_THAT(log.lines(), ElementsAre("Condition Failed: never message"));
}

TEST(ORLFCondition, IsOneStatement) {
  LogCapture log;
  if (log.lines().size() > 3)
    ORLFConditionAssert(false, "a", "b");
  else
    ORLFConditionAssert(false, "c", "d");
  EXPECT_THAT(log.lines(), ElementsAre("Condition Failed: c d"));
}

TEST(ORLFDebugLog, NeverEvaluatesItsArguments) {
  LogCapture log;
  int evaluations = 0;
  _ORLFDebugLog("group %d", ++evaluations);
  _ORLFDebugLog("no arguments");
  EXPECT_EQ(evaluations, 0);
  EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace ORLFoundation
