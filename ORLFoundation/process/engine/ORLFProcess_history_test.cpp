#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::RecordingDelegate;
using orlftest::stepFromDefinition;
using orlftest::Texts;
using orlftest::textsOfHistory;

const std::string kThreeSteps = R"(
  <step id="root" firststep="a">
    <step id="a"><transition value="next" stepid="b"/></step>
    <step id="b"><transition value="next" stepid="c"/></step>
    <step id="c"/>
  </step>)";

/// A running process whose delegate has all operations.
struct Walk {
  explicit Walk(const std::string& definition = kThreeSteps)
      : process(stepFromDefinition(definition)) {
    delegate->haveAllOperations();
    process.setDelegate(delegate);
    process.run();
    delegate->calls.clear();
  }
  void next() {
    process.advanceWithTransition("next", nullptr);
    delegate->calls.clear();
  }

  const std::shared_ptr<RecordingDelegate> delegate = std::make_shared<RecordingDelegate>();
  ORLFProcess process;
};

TEST(ORLFProcessHistory, BackKeepsTheWayForward) {
  Walk walk;
  walk.next();
  EXPECT_EQ(nameOfStep(walk.process.back()), "root.a");
  EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.a");
  EXPECT_EQ(walk.process.historyIndex(), 1U);
  EXPECT_TRUE(walk.process.canForward());
  EXPECT_FALSE(walk.process.canBack());
  EXPECT_TRUE(walk.process.hasHistory());
  EXPECT_EQ(textsOfHistory(walk.process), (Texts{"root.a", "root.b"}));
  EXPECT_EQ(walk.delegate->calls,
            (Texts{"willLeaveStep root.b", "didLeaveStep root.b", "didBackToStep root.a nil"}));
}

TEST(ORLFProcessHistory, ForwardTellsNobody) {
  Walk walk;
  walk.next();
  walk.process.back();
  walk.delegate->calls.clear();
  EXPECT_EQ(nameOfStep(walk.process.forward()), "root.b");
  EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.b");
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_FALSE(walk.process.canForward());
  EXPECT_EQ(walk.delegate->calls, Texts{"willLeaveStep root.a"});
}

TEST(ORLFProcessHistory, ANewMoveDiscardsTheWayForward) {
  Walk walk;
  walk.next();
  walk.next();
  walk.process.back();
  walk.process.back();
  EXPECT_EQ(nameOfStep(walk.process.advanceWithTransition("next", nullptr)), "root.b");
  EXPECT_EQ(textsOfHistory(walk.process), (Texts{"root.a", "root.b"}));
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_FALSE(walk.process.canForward());
}

TEST(ORLFProcessHistory, ThereIsNoWayBackFromTheFirstNorForwardFromTheLast) {
  Walk walk;
  EXPECT_EQ(walk.process.back(), nullptr);
  EXPECT_EQ(walk.process.forward(), nullptr);
  EXPECT_TRUE(walk.delegate->calls.empty()) << "nobody is asked to leave";
  EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.a");
}

TEST(ORLFProcessHistory, BackAndForwardCanBeVetoed) {
  Walk walk;
  walk.next();
  walk.next();
  walk.process.back();
  walk.delegate->operations["willLeaveStep"]["root.b"] = 0;
  walk.delegate->calls.clear();
  EXPECT_EQ(walk.process.back(), nullptr);
  EXPECT_EQ(walk.process.forward(), nullptr);
  EXPECT_EQ(walk.delegate->calls, (Texts{"willLeaveStep root.b", "willLeaveStep root.b"}));
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.b");
}

TEST(ORLFProcessHistory, AStepLeftOutGoesBackToTheLastRecordedOne) {
  for (const std::int32_t type : {1, -1, 2'000'000'000}) {
    Walk walk;
    walk.delegate->operations["historyTypeForStep"]["root.b"] = type;
    walk.next();
    EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.b");
    EXPECT_EQ(textsOfHistory(walk.process), Texts{"root.a"});
    EXPECT_FALSE(walk.process.isCurrentStepInHistory());
    EXPECT_TRUE(walk.process.canBack());
    EXPECT_EQ(nameOfStep(walk.process.back()), "root.a");
    EXPECT_EQ(walk.process.historyIndex(), 1U);
    EXPECT_FALSE(walk.process.canForward());
  }
}

TEST(ORLFProcessHistory, AStepLeftOutKeepsTheWayForward) {
  Walk walk;
  walk.next();
  walk.process.back();
  walk.delegate->operations["historyTypeForStep"]["root.c"] = 1;
  walk.process.jumpToStep("c", nullptr);
  EXPECT_EQ(textsOfHistory(walk.process), (Texts{"root.a", "root.b"}));
  EXPECT_TRUE(walk.process.canForward());
  EXPECT_EQ(nameOfStep(walk.process.forward()), "root.b");
}

TEST(ORLFProcessHistory, AfterTheEndTheMarkerIsAllThatBackFinds) {
  Walk walk;
  walk.process.advanceWithTransition("unknown", nullptr);
  walk.delegate->calls.clear();
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_FALSE(walk.process.isCurrentStepInHistory());
  EXPECT_TRUE(walk.process.canBack());
  EXPECT_EQ(walk.process.back(), nullptr);
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_EQ(walk.process.currentStep(), nullptr);
  EXPECT_EQ(walk.delegate->calls, Texts{"didLeaveStep nil"});
}

TEST(ORLFProcessHistory, AMarkerOnTheWayKeepsTheStep) {
  Walk walk;
  walk.process.advanceWithTransition("unknown", nullptr);
  walk.process.run();
  ASSERT_EQ(textsOfHistory(walk.process), (Texts{"root.a", "nil", "root.a"}));
  walk.delegate->calls.clear();
  EXPECT_EQ(walk.process.back(), nullptr);
  EXPECT_EQ(nameOfStep(walk.process.currentStep()), "root.a");
  EXPECT_EQ(walk.process.historyIndex(), 2U);
  EXPECT_EQ(walk.delegate->calls, (Texts{"willLeaveStep root.a", "didLeaveStep root.a"}));
  EXPECT_EQ(nameOfStep(walk.process.forward()), "root.a");
}

TEST(ORLFProcessHistory, AnEndCanBeLeftOut) {
  Walk walk;
  walk.delegate->operations["historyTypeForStep"]["nil"] = 1;
  walk.process.advanceWithTransition("unknown", nullptr);
  EXPECT_EQ(textsOfHistory(walk.process), Texts{"root.a"});
  EXPECT_EQ(nameOfStep(walk.process.back()), "root.a");
  EXPECT_EQ(walk.process.historyIndex(), 1U);
}

TEST(ORLFProcessHistory, AStepThatTheTreeHasLostLeavesNone) {
  Walk walk;
  walk.next();
  walk.process.rootStep()->removeChildStepWithIdentifier("a");
  walk.delegate->calls.clear();
  EXPECT_EQ(walk.process.back(), nullptr);
  EXPECT_EQ(walk.process.currentStep(), nullptr);
  EXPECT_EQ(walk.process.historyIndex(), 1U);
  EXPECT_EQ(walk.delegate->calls, (Texts{"willLeaveStep root.b", "didLeaveStep root.b"}));
}

TEST(ORLFProcessHistory, TheRootAloneIsLookedForAmongItsChildren) {
  Walk walk(R"(<step id="root"><step id="root"/><step id="b"/></step>)");
  ASSERT_EQ(textsOfHistory(walk.process), Texts{"root"});
  walk.process.jumpToStep("b", nullptr);
  EXPECT_EQ(nameOfStep(walk.process.back()), "root.root");
}

TEST(ORLFProcessHistory, TheFirstNameIsCutEvenWhereTheRootStandsLower) {
  const auto top = stepFromDefinition(
      R"(<step id="top"><step id="g" firststep="a"><step id="a"><transition value="n" stepid="b"/>
         </step><step id="b"/></step></step>)");
  ORLFProcess process(top->childStepWithIdentifier("g"));
  process.run();
  process.advanceWithTransition("n", nullptr);
  EXPECT_EQ(textsOfHistory(process), (Texts{"top.g.a", "top.g.b"}));
  EXPECT_EQ(process.back(), nullptr);
  EXPECT_EQ(process.currentStep(), nullptr);
}

TEST(ORLFProcessHistory, ClearingKeepsTheCurrentStep) {
  Walk walk;
  walk.next();
  walk.process.back();
  walk.delegate->calls.clear();
  walk.process.clearHistory();
  EXPECT_EQ(textsOfHistory(walk.process), Texts{"root.a"});
  EXPECT_EQ(walk.process.historyIndex(), 1U);
  EXPECT_EQ(walk.delegate->calls, Texts{"historyTypeForStep root.a"});
}

TEST(ORLFProcessHistory, ClearingLeavesOutWhatIsNotRecorded) {
  Walk walk;
  walk.delegate->operations["historyTypeForStep"]["root.a"] = 1;
  walk.process.clearHistory();
  EXPECT_FALSE(walk.process.hasHistory());
  EXPECT_TRUE(walk.process.history().empty());
  EXPECT_FALSE(walk.process.isCurrentStepInHistory());
  EXPECT_FALSE(walk.process.canBack());
  walk.delegate->calls.clear();
  walk.process.clearHistory();
  EXPECT_TRUE(walk.delegate->calls.empty()) << "without a history nothing happens";
}

TEST(ORLFProcessHistory, ClearingAfterTheEndLeavesNothing) {
  Walk walk;
  walk.process.advanceWithTransition("unknown", nullptr);
  walk.process.clearHistory();
  EXPECT_FALSE(walk.process.hasHistory());
  EXPECT_FALSE(walk.process.canBack());
  EXPECT_TRUE(walk.process.history().empty());
}

TEST(ORLFProcessHistory, ClearingBeforeRunDoesNothing) {
  ORLFProcess process(stepFromDefinition(kThreeSteps));
  process.setCurrentStep(process.rootStep()->childStepWithIdentifier("b"));
  process.clearHistory();
  EXPECT_FALSE(process.hasHistory());
  EXPECT_EQ(nameOfStep(process.run()), "root.b");
  EXPECT_TRUE(process.history().empty());
}

TEST(ORLFProcessHistory, AddingRecordsOnlyType0) {
  ORLFProcess process(stepFromDefinition(kThreeSteps));
  process.addStateFullIdentifier("root.x", "data", 1);
  EXPECT_FALSE(process.hasHistory());
  process.addStateFullIdentifier("root.x", "data", 0);
  process.addStateFullIdentifier(std::nullopt, nullptr, 0);
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.x", "nil"}));
  EXPECT_EQ(process.historyIndex(), 2U);
  EXPECT_FALSE(process.isCurrentStepInHistory()) << "no step is not the marker";
}

std::string reasonOfMoving(ORLFProcess& process, NSUInteger index) {
  try {
    process.moveToStepForHistoryIndex(index);
  } catch (const NSException& exception) {
    return exception.name() + exception.reason();
  }
  return {};
}

TEST(ORLFProcessHistory, IndicesBeyondItRaise) {
  Walk walk;
  EXPECT_EQ(reasonOfMoving(walk.process, 7),
            "NSRangeException-[ORLFProcess moveToStepForHistoryIndex:]: index 7 beyond a history "
            "of 1");
  for (const NSUInteger index : {NSUInteger{1}, NSUInteger{2}, ~NSUInteger{0}})
    EXPECT_THROW(walk.process.moveToStepForHistoryIndex(index), NSException) << index;
  EXPECT_EQ(nameOfStep(walk.process.moveToStepForHistoryIndex(0)), "root.a");
  ORLFProcess fresh(stepFromDefinition(kThreeSteps));
  EXPECT_THROW(fresh.moveToStepForHistoryIndex(0), NSException);
}

/// Clears the history while it is asked whether the step may be left.
class Clearing final : public ORLFProcessDelegate {
 public:
  bool orlfProcessWillLeaveStep(ORLFProcess& process, const Step&) override {
    process.clearHistory();
    return true;
  }
};

TEST(ORLFProcessHistory, AHistoryClearedInTheMiddleOfAMoveRaises) {
  Walk walk;
  walk.next();
  walk.next();
  walk.process.back();
  const auto clearing = std::make_shared<Clearing>();
  walk.process.setDelegate(clearing);
  EXPECT_THROW(walk.process.forward(), NSException);
  walk.process.setDelegate(nullptr);
  walk.process.addStateFullIdentifier("root.b", nullptr, 0);
  walk.process.setDelegate(clearing);
  EXPECT_THROW(walk.process.back(), NSException);
}

}  // namespace
}  // namespace ORLFoundation
