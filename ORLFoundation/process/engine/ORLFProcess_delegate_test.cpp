// The table of the delegate's operations: each present, absent and answering otherwise.
#include <ORLFoundation/process/engine/ORLFProcess.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::RecordingDelegate;
using orlftest::stepFromDefinition;
using orlftest::Texts;
using orlftest::textsOfHistory;

const std::string kSteps = R"(
  <step id="root" firststep="a">
    <step id="a"><transition value="next" stepid="b"/><transition value="bad" stepid="gone"/>
      <transition value="stop" end="done"/></step>
    <step id="b"/>
  </step>)";

/// Every kind of move, and where each of them led.
Texts tour(ORLFProcess& process) {
  Texts seen;
  const auto note = [&](const std::shared_ptr<ORLFProcessStep>& step) {
    seen.push_back(nameOfStep(step) + " at " + nameOfStep(process.currentStep()) + " of " +
                   std::to_string(process.historyIndex()));
  };
  note(process.run());
  note(process.advanceWithTransition("next", 1));
  note(process.back());
  note(process.forward());
  note(process.jumpToStep("a", 2));
  note(process.advanceWithTransition("bad", 3));
  note(process.run());
  note(process.advanceWithTransition("stop", 4));
  for (const std::string& entry : textsOfHistory(process)) seen.push_back(entry);
  return seen;
}

Texts tourWith(const std::shared_ptr<RecordingDelegate>& delegate) {
  ORLFProcess process(stepFromDefinition(kSteps));
  process.setDelegate(delegate);
  return tour(process);
}

TEST(ORLFProcessDelegate, EachOperationMayBeAbsent) {
  const Texts alone = tourWith(nullptr);
  const auto full = std::make_shared<RecordingDelegate>();
  full->haveAllOperations();
  EXPECT_EQ(tourWith(full), alone);
  for (const std::string& absent : RecordingDelegate::allOperations()) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->haveAllOperations();
    delegate->operations.erase(absent);
    EXPECT_EQ(tourWith(delegate), alone) << absent;
    Texts rest;
    std::copy_if(full->calls.begin(), full->calls.end(), std::back_inserter(rest),
                 [&](const std::string& call) { return call.rfind(absent + " ", 0) != 0; });
    EXPECT_LT(rest.size(), full->calls.size()) << absent << " is never called";
    EXPECT_EQ(delegate->calls, rest) << absent;
  }
}

TEST(ORLFProcessDelegate, EachOperationMayStandAlone) {
  const Texts alone = tourWith(nullptr);
  for (const std::string& present : RecordingDelegate::allOperations()) {
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->operations[present];
    EXPECT_EQ(tourWith(delegate), alone) << present;
    EXPECT_FALSE(delegate->calls.empty()) << present;
  }
}

TEST(ORLFProcessDelegate, HearsOfATourInOrder) {
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  tourWith(delegate);
  EXPECT_EQ(delegate->calls,
            (Texts{"historyTypeForStep root.a",
                   // next
                   "willLeaveStep root.a", "shouldAdvanceToStep root.b",
                   "historyTypeForStep root.b", "didLeaveStep root.a", "didAdvanceToStep root.b 1",
                   // back and forward
                   "willLeaveStep root.b", "didLeaveStep root.b", "didBackToStep root.a nil",
                   "willLeaveStep root.a",
                   // the jump
                   "historyTypeForStep root.a", "didJumpToStep root.a 2",
                   // bad
                   "willLeaveStep root.a", "shouldFailFromStep root.a", "historyTypeForStep nil",
                   "didLeaveStep root.a",
                   // run and stop
                   "historyTypeForStep root.a", "willLeaveStep root.a", "shouldEndProcess root.a",
                   "historyTypeForStep nil", "didLeaveStep root.a", "didEndProcess done 4"}));
  EXPECT_EQ(delegate->details, (Texts{"shouldAdvanceToStep 1", "shouldFailFromStep bad 3",
                                      "shouldEndProcess stop 4"}));
}

struct VetoCase {
  const char* question;
  const char* transition;
  const char* about;
};

const VetoCase kVetoes[] = {
    {"shouldAdvanceToStep", "next", "root.b"},
    {"shouldFailFromStep", "bad", "root.a"},
    {"shouldEndProcess", "stop", "root.a"},
    {"shouldEndProcess", "unknown", "root.a"},
};

TEST(ORLFProcessDelegate, AHeldMoveIsToldWithTheOldStep) {
  for (const VetoCase& row : kVetoes) {
    SCOPED_TRACE(std::string(row.question) + " " + row.transition);
    ORLFProcess process(stepFromDefinition(kSteps));
    process.run();
    const auto delegate = std::make_shared<RecordingDelegate>();
    delegate->haveAllOperations();
    delegate->operations[row.question][row.about] = 0;
    process.setDelegate(delegate);
    EXPECT_EQ(nameOfStep(process.advanceWithTransition(row.transition, 9)), "root.a");
    EXPECT_EQ(nameOfStep(process.currentStep()), "root.a");
    EXPECT_EQ(textsOfHistory(process), Texts{"root.a"});
    EXPECT_EQ(delegate->calls,
              (Texts{"willLeaveStep root.a", std::string(row.question) + " " + row.about,
                     "didLeaveStep root.a", "didAdvanceToStep root.a 9"}));
  }
}

TEST(ORLFProcessDelegate, AStepThatMayNotBeLeftStaysInSilence) {
  ORLFProcess process(stepFromDefinition(kSteps));
  process.run();
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  delegate->operations["willLeaveStep"]["root.a"] = 0;
  process.setDelegate(delegate);
  for (const char* transition : {"next", "bad", "stop"})
    EXPECT_EQ(process.advanceWithTransition(transition, nullptr), nullptr) << transition;
  EXPECT_EQ(delegate->calls, Texts(3, "willLeaveStep root.a"));
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.a");
  EXPECT_EQ(textsOfHistory(process), Texts{"root.a"});
}

TEST(ORLFProcessDelegate, IsAskedAboutTheFailureOfNoStep) {
  ORLFProcess process(stepFromDefinition(kSteps));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  process.setDelegate(delegate);
  EXPECT_EQ(process.advanceWithTransition("next", nullptr), nullptr);
  EXPECT_EQ(delegate->calls, (Texts{"shouldFailFromStep nil", "didLeaveStep nil"}));
}

/// Calls a block from one place of a move.
class Interfering final : public ORLFProcessDelegate {
 public:
  using Block = std::function<void(ORLFProcess&)>;
  Block onHistoryType, onShouldAdvance, onDidLeave, onDidAdvance;
  bool mayAdvance = true;

  std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess& process, const Step&) override {
    if (onHistoryType) onHistoryType(process);
    return 0;
  }
  bool orlfProcessShouldAdvanceToStep(ORLFProcess& process, const Step&, const id&) override {
    if (onShouldAdvance) onShouldAdvance(process);
    return mayAdvance;
  }
  void orlfProcessDidLeaveStep(ORLFProcess& process, const Step&) override {
    if (onDidLeave) onDidLeave(process);
  }
  void orlfProcessDidAdvanceToStep(ORLFProcess& process, const Step&, const id&) override {
    if (onDidAdvance) onDidAdvance(process);
  }
};

TEST(ORLFProcessDelegate, IsAskedForTheTypeBeforeAnAdvanceAndAfterAJump) {
  ORLFProcess process(stepFromDefinition(kSteps));
  const auto delegate = std::make_shared<Interfering>();
  process.setDelegate(delegate);
  Texts current;
  delegate->onHistoryType = [&](ORLFProcess& asking) {
    current.push_back(nameOfStep(asking.currentStep()));
  };
  process.run();
  process.advanceWithTransition("next", nullptr);
  process.jumpToStep("a", nullptr);
  EXPECT_EQ(current, (Texts{"root.a", "root.a", "root.a"}));
}

TEST(ORLFProcessDelegate, AVetoKeepsTheStepThatIsCurrentThen) {
  ORLFProcess process(stepFromDefinition(kSteps));
  const auto delegate = std::make_shared<Interfering>();
  process.setDelegate(delegate);
  process.run();
  delegate->mayAdvance = false;
  delegate->onShouldAdvance = [](ORLFProcess& asking) { asking.jumpToStep("b", nullptr); };
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("next", nullptr)), "root.b");
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.b", "root.b"}));
}

TEST(ORLFProcessDelegate, MayBeReplacedWhileItIsTold) {
  ORLFProcess process(stepFromDefinition(kSteps));
  auto first = std::make_shared<Interfering>();
  const auto second = std::make_shared<RecordingDelegate>();
  second->haveAllOperations();
  process.setDelegate(first);
  process.run();
  first->onDidLeave = [&](ORLFProcess& telling) {
    telling.setDelegate(second);
    first.reset();
  };
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("next", 1)), "root.b");
  EXPECT_EQ(second->calls, Texts{"didAdvanceToStep root.b 1"});
}

TEST(ORLFProcessDelegate, MayMoveOnWhileItIsTold) {
  ORLFProcess process(stepFromDefinition(kSteps));
  const auto delegate = std::make_shared<Interfering>();
  process.setDelegate(delegate);
  process.run();
  delegate->onDidAdvance = [](ORLFProcess& telling) { telling.back(); };
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("next", nullptr)), "root.b");
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.a");
  EXPECT_TRUE(process.canForward());
}

TEST(ORLFProcessDelegate, WhatItThrowsLeavesTheProcessWhereItStands) {
  ORLFProcess process(stepFromDefinition(kSteps));
  const auto delegate = std::make_shared<Interfering>();
  process.setDelegate(delegate);
  process.run();
  delegate->onShouldAdvance = [](ORLFProcess&) { throw std::runtime_error("no"); };
  EXPECT_THROW(process.advanceWithTransition("next", nullptr), std::runtime_error);
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.a");
  EXPECT_EQ(textsOfHistory(process), Texts{"root.a"});
}

}  // namespace
}  // namespace ORLFoundation
