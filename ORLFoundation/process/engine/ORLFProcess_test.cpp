#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/platform/object/NSKeyValueObserving.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::RecordingDelegate;
using orlftest::stepFromDefinition;
using orlftest::Texts;
using orlftest::textsOfHistory;

const std::string kTwoSteps = R"(
  <step id="root" firststep="a">
    <step id="a"><transition value="next" stepid="b"/></step>
    <step id="b"><transition value="stop" end="done"/><transition value="bad" stepid="gone"/></step>
  </step>)";

// Groups with their ways out: g hands "finish" on to h, d hands on what g does not know.
const std::string kGroups = R"(
  <step id="root" firststep="g">
    <transition value="over" end="all"/>
    <step id="g" firststep="c">
      <transition value="finish" stepid="h"/>
      <transition value="lost" stepid="gone"/>
      <transition value="dead" stepid="e"/>
      <transition value="leave" end="over"/>
      <step id="c">
        <transition value="done" end="finish"/>
        <transition value="astray" end="lost"/>
        <transition value="dead" end="dead"/>
        <transition value="unknown" end="nothing"/>
        <transition value="mute"/>
        <transition value="leave" end="leave"/>
      </step>
    </step>
    <step id="e" firststep="missing"/>
    <step id="h" firststep="i"><step id="i" firststep="j"><step id="j"/></step></step>
  </step>)";

TEST(ORLFProcess, BeginsWithoutStepAndHistory) {
  const auto root = stepFromDefinition(kTwoSteps);
  const ORLFProcess process(root);
  EXPECT_EQ(process.rootStep(), root);
  EXPECT_EQ(process.currentStep(), nullptr);
  EXPECT_EQ(process.delegate(), nullptr);
  EXPECT_TRUE(process.history().empty());
  EXPECT_EQ(process.historyIndex(), 0U);
  EXPECT_FALSE(process.hasHistory());
  EXPECT_FALSE(process.canBack());
  EXPECT_FALSE(process.canForward());
  EXPECT_EQ(process.className(), "ORLFProcess");
}

TEST(ORLFProcess, RunGoesToTheInitialStepOnce) {
  ORLFProcess process(stepFromDefinition(kGroups));
  EXPECT_EQ(nameOfStep(process.run()), "root.g.c");
  EXPECT_EQ(nameOfStep(process.run()), "root.g.c");
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.g.c");
  EXPECT_EQ(textsOfHistory(process), Texts{"root.g.c"});
  EXPECT_EQ(process.historyIndex(), 1U);
}

TEST(ORLFProcess, RunWithoutAnInitialStepRecordsTheMarkerEachTime) {
  const auto root = stepFromDefinition(kTwoSteps);
  root->setIntialStepIdentifier("gone");
  ORLFProcess process(root);
  EXPECT_EQ(process.run(), nullptr);
  EXPECT_EQ(process.run(), nullptr);
  EXPECT_EQ(textsOfHistory(process), (Texts{"nil", "nil"}));
}

TEST(ORLFProcess, AProcessWithoutARootHasNowhereToGo) {
  ORLFProcess process(nullptr);
  EXPECT_EQ(process.run(), nullptr);
  EXPECT_EQ(process.jumpToStep("a", nullptr), nullptr);
  EXPECT_EQ(process.advanceWithTransition("next", nullptr), nullptr);
  EXPECT_EQ(process.back(), nullptr);
  EXPECT_EQ(textsOfHistory(process), Texts{"nil"});
}

TEST(ORLFProcess, AdvancesToASibling) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  process.run();
  const auto step = process.advanceWithTransition("next", nullptr);
  EXPECT_EQ(nameOfStep(step), "root.b");
  EXPECT_EQ(process.currentStep(), step);
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.b"}));
}

TEST(ORLFProcess, AdvanceBeforeRunFailsWithoutATrace) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  EXPECT_EQ(process.advanceWithTransition("next", nullptr), nullptr);
  EXPECT_TRUE(process.history().empty());
}

struct SearchCase {
  const char* name;
  const char* from;
  std::optional<std::string> transition;
  std::int32_t result;
  const char* found;
};

const SearchCase kSearches[] = {
    {"NoStepFails", "", "done", 1, "nil"},
    {"AnUnknownTransitionEnds", "root.g.c", "x", 2, "nil"},
    {"NoTransitionEnds", "root.g.c", std::nullopt, 2, "nil"},
    {"TheMarkerAboveTheRootEnds", "root", "over", 2, "nil"},
    {"ASiblingOfTheRootFails", "root", "aside", 1, "nil"},
    {"ASiblingIsEnteredToItsInitialStep", "root.g", "finish", 0, "root.h.i.j"},
    {"AMissingSiblingFails", "root.g", "lost", 1, "nil"},
    {"ASiblingWithoutInitialStepFails", "root.g", "dead", 1, "nil"},
    {"TheResponseIsTheTransitionOfTheParent", "root.g.c", "done", 0, "root.h.i.j"},
    {"AFailureOfTheParentIsTheAnswer", "root.g.c", "astray", 1, "nil"},
    {"AMissingInitialStepBeyondTheParentFails", "root.g.c", "dead", 1, "nil"},
    {"AResponseThatTheParentDoesNotKnowEnds", "root.g.c", "unknown", 2, "nil"},
    {"NoResponseEnds", "root.g.c", "mute", 2, "nil"},
    {"ResponsesLeadOutOfSeveralParents", "root.g.c", "leave", 2, "nil"},
    {"AnEntryOfAnotherKindIsNobodysName", "root.g.c", "number", 1, "nil"},
    {"AnEntryOfNilIsNone", "root.g.c", "nothing", 2, "nil"},
};

TEST(ORLFProcess, SearchesTheNextStep) {
  const auto root = stepFromDefinition(kGroups);
  root->setSiblingIdentifier("g", "aside");
  auto& entries = *root->childStepWithIdentifierPath("g.c")->transitionMapCreate(true);
  entries["number"] = 7;
  entries["nothing"] = nullptr;
  ORLFProcess process(root);
  for (const SearchCase& row : kSearches) {
    const std::string from = row.from;
    auto step = from.empty() ? nullptr : root;
    if (from.size() > 5) step = root->childStepWithIdentifierPath(from.substr(5));
    std::int32_t result = 77;
    const auto found = process.advanceFromStep(step, row.transition, nullptr, result);
    EXPECT_EQ(result, row.result) << row.name;
    EXPECT_EQ(nameOfStep(found), row.found) << row.name;
  }
  EXPECT_EQ(process.currentStep(), nullptr);
}

TEST(ORLFProcess, LeavesTenNestedGroupsByTheirResponses) {
  std::string text = R"(<step id="root" firststep="g0"><step id="end"/>)";
  for (int i = 0; i < 10; ++i) {
    const std::string out = i == 0 ? R"(stepid="end")" : "end=\"up" + std::to_string(i - 1) + "\"";
    const std::string first = i == 9 ? "leaf" : "g" + std::to_string(i + 1);
    text += "<step id=\"g" + std::to_string(i) + "\" firststep=\"" + first +
            "\"><transition value=\"up" + std::to_string(i) + "\" " + out + "/>";
  }
  text += R"(<step id="leaf"><transition value="out" end="up9"/></step>)";
  for (int i = 0; i < 10; ++i) text += "</step>";
  ORLFProcess process(stepFromDefinition(text + "</step>"));
  EXPECT_EQ(nameOfStep(process.run()), "root.g0.g1.g2.g3.g4.g5.g6.g7.g8.g9.leaf");
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("out", nullptr)), "root.end");
}

TEST(ORLFProcess, AnEndLeavesTheMarkerAndRunStartsOver) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->operations["didEndProcess"];
  process.setDelegate(delegate);
  process.run();
  process.advanceWithTransition("next", nullptr);
  EXPECT_EQ(process.advanceWithTransition("stop", 5), nullptr);
  EXPECT_EQ(process.currentStep(), nullptr);
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.b", "nil"}));
  EXPECT_EQ(delegate->calls, Texts{"didEndProcess done 5"});
  EXPECT_EQ(nameOfStep(process.run()), "root.a");
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.b", "nil", "root.a"}));
}

TEST(ORLFProcess, AnUnknownTransitionEndsWithoutAResponse) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->operations["didEndProcess"];
  process.setDelegate(delegate);
  process.run();
  EXPECT_EQ(process.advanceWithTransition("unknown", nullptr), nullptr);
  EXPECT_EQ(delegate->calls, Texts{"didEndProcess nil nil"});
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "nil"}));
}

TEST(ORLFProcess, TheResponseOfAnEndIsThatOfTheStepLeft) {
  ORLFProcess process(stepFromDefinition(kGroups));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->operations["didEndProcess"];
  process.setDelegate(delegate);
  process.run();
  EXPECT_EQ(process.advanceWithTransition("leave", nullptr), nullptr);
  EXPECT_EQ(delegate->calls, Texts{"didEndProcess leave nil"});
}

TEST(ORLFProcess, AFailureLeavesNoStepAndIsNotTold) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  process.setDelegate(delegate);
  process.run();
  process.advanceWithTransition("next", nullptr);
  delegate->calls.clear();
  EXPECT_EQ(process.advanceWithTransition("bad", 3), nullptr);
  EXPECT_EQ(process.currentStep(), nullptr);
  EXPECT_EQ(delegate->calls, (Texts{"willLeaveStep root.b", "shouldFailFromStep root.b",
                                    "historyTypeForStep nil", "didLeaveStep root.b"}));
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.b", "nil"}));
}

TEST(ORLFProcess, AnAdvanceToTheSameStepIsToldAndNotRecorded) {
  const auto root = stepFromDefinition(kTwoSteps);
  root->childStepWithIdentifier("a")->setSiblingIdentifier("a", "again");
  ORLFProcess process(root);
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  process.run();
  process.setDelegate(delegate);
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("again", 1)), "root.a");
  EXPECT_EQ(delegate->calls, (Texts{"willLeaveStep root.a", "shouldAdvanceToStep root.a",
                                    "didLeaveStep root.a", "didAdvanceToStep root.a 1"}));
  EXPECT_EQ(textsOfHistory(process), Texts{"root.a"});
}

TEST(ORLFProcess, JumpsByPathWithoutAskingToLeave) {
  ORLFProcess process(stepFromDefinition(kGroups));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  delegate->operations["willLeaveStep"]["root.g.c"] = 0;
  process.run();
  process.setDelegate(delegate);
  // A jump to a group stays at the group.
  EXPECT_EQ(nameOfStep(process.jumpToStep("h", "data")), "root.h");
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.h");
  EXPECT_EQ(delegate->calls, (Texts{"historyTypeForStep root.h", "didJumpToStep root.h data"}));
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.g.c", "root.h"}));
  EXPECT_EQ(nameOfStep(process.jumpToStep("h", nullptr)), "root.h");
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.g.c", "root.h", "root.h"}));
}

TEST(ORLFProcess, AJumpToNowhereChangesNothing) {
  ORLFProcess process(stepFromDefinition(kGroups));
  const auto delegate = std::make_shared<RecordingDelegate>();
  delegate->haveAllOperations();
  process.run();
  process.setDelegate(delegate);
  for (const char* path : {"", "nowhere", "root", "root.h", ".h", "h.nowhere"})
    EXPECT_EQ(process.jumpToStep(path, nullptr), nullptr) << path;
  EXPECT_TRUE(delegate->calls.empty());
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.g.c");
  EXPECT_EQ(process.historyIndex(), 1U);
}

TEST(ORLFProcess, AJumpIsPossibleBeforeRun) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  EXPECT_EQ(nameOfStep(process.jumpToStep("b", nullptr)), "root.b");
  EXPECT_EQ(nameOfStep(process.run()), "root.b");
  EXPECT_EQ(textsOfHistory(process), Texts{"root.b"});
}

TEST(ORLFProcess, HasNoFormOfItsState) {
  ORLFProcess process(stepFromDefinition(kTwoSteps));
  process.run();
  EXPECT_EQ(process.saveSate(), std::nullopt);
  std::shared_ptr<const NSError> error;
  EXPECT_FALSE(process.loadSateFromData(NSData(), &error));
  EXPECT_FALSE(process.loadSateFromData(std::nullopt, &error));
  EXPECT_FALSE(process.loadSateFromData(std::nullopt));
  EXPECT_EQ(error, nullptr);
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.a");
}

TEST(ORLFProcess, HoldsItsRootAndNotItsDelegate) {
  auto root = stepFromDefinition(kTwoSteps);
  ORLFProcess process(root);
  root.reset();
  auto delegate = std::make_shared<RecordingDelegate>();
  process.setDelegate(delegate);
  EXPECT_EQ(process.delegate(), delegate);
  delegate.reset();
  EXPECT_EQ(process.delegate(), nullptr);
  EXPECT_EQ(nameOfStep(process.run()), "root.a");
}

TEST(ORLFProcess, ItsCurrentStepIsObserved) {
  const auto process = std::make_shared<ORLFProcess>(stepFromDefinition(kTwoSteps));
  Texts seen;
  const auto token = process->addObserver(
      "currentStep", NSKeyValueObservingOptionNew,
      [&](const NSKeyValueChange&) { seen.push_back(nameOfStep(process->currentStep())); });
  process->run();
  process->advanceWithTransition("next", nullptr);
  process->back();
  process->forward();
  process->jumpToStep("a", nullptr);
  process->advanceWithTransition("unknown", nullptr);
  EXPECT_EQ(seen, (Texts{"root.a", "root.b", "root.a", "root.b", "root.a", "nil"}));
  EXPECT_EQ(process->valueForKeyPath("rootStep.identifier"), id("root"));
}

}  // namespace
}  // namespace ORLFoundation
