// Each operation that a derived class may override is one that the process calls.
#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::stepFromDefinition;
using orlftest::Texts;
using orlftest::textsOfHistory;

const std::string kDerivedSteps = R"(
  <step id="root" firststep="a">
    <step id="a"><transition value="next" stepid="b"/><transition value="bad" stepid="gone"/></step>
    <step id="b"/>
    <step id="c"/>
  </step>)";

/// Notes every call, and answers otherwise where a test says so.
class Derived final : public ORLFProcess {
 public:
  Derived() : ORLFProcess(stepFromDefinition(kDerivedSteps)) {}

  mutable std::set<std::string> called;
  std::optional<std::int32_t> type;
  std::optional<std::int32_t> code;
  std::optional<bool> mayLeave;
  std::optional<bool> inHistory;
  std::optional<std::string> diversion;
  bool records = true;

  using ORLFProcess::setHistory;

  /// What was called by the moves of a block.
  template <class Block>
  std::set<std::string> callsOf(Block&& block) {
    called.clear();
    block();
    return called;
  }
  [[nodiscard]] Step stepNamed(const std::string& name) const {
    return rootStep()->childStepWithIdentifier(name);
  }

  void setCurrentStep(Step value) override {
    called.insert("setCurrentStep");
    ORLFProcess::setCurrentStep(std::move(value));
  }
  std::int32_t historyTypeForStep(const Step& step) override {
    called.insert("historyTypeForStep");
    return type.value_or(ORLFProcess::historyTypeForStep(step));
  }
  void addStateFullIdentifier(std::optional<std::string> fullIdentifier, const id& data,
                              std::int32_t toHistoryWithType) override {
    called.insert("addStateFullIdentifier " + fullIdentifier.value_or("nil") + " " +
                  orlftest::textOfValue(data) + " " + std::to_string(toHistoryWithType));
    if (records)
      ORLFProcess::addStateFullIdentifier(std::move(fullIdentifier), data, toHistoryWithType);
  }
  bool canLeaveCurrentStep() override {
    called.insert("canLeaveCurrentStep");
    return mayLeave.value_or(ORLFProcess::canLeaveCurrentStep());
  }
  Step handleAdvanceFromStepDidSucceedToStep(const Step& from, Transition transition,
                                             const Step& toStep, const id& data) override {
    called.insert("didSucceed " + nameOfStep(from) + " " + orlftest::textOfTransition(transition) +
                  " " + nameOfStep(toStep) + " " + orlftest::textOfValue(data));
    return diverted(
        ORLFProcess::handleAdvanceFromStepDidSucceedToStep(from, transition, toStep, data));
  }
  Step handleAdvanceFromStepDidFailWithData(const Step& from, Transition transition,
                                            const id& data) override {
    called.insert("didFail " + nameOfStep(from) + " " + orlftest::textOfTransition(transition) +
                  " " + orlftest::textOfValue(data));
    return diverted(ORLFProcess::handleAdvanceFromStepDidFailWithData(from, transition, data));
  }
  Step handleAdvanceFromStepDidEndWithData(const Step& from, Transition transition,
                                           const id& data) override {
    called.insert("didEnd " + nameOfStep(from) + " " + orlftest::textOfTransition(transition) +
                  " " + orlftest::textOfValue(data));
    return diverted(ORLFProcess::handleAdvanceFromStepDidEndWithData(from, transition, data));
  }
  Step advanceFromStep(const Step& step, Transition transition, const id& contextData,
                       std::int32_t& result) override {
    called.insert("advanceFromStep " + nameOfStep(step) + " " +
                  orlftest::textOfTransition(transition) + " " +
                  orlftest::textOfValue(contextData) + " " + std::to_string(result));
    if (!code) return ORLFProcess::advanceFromStep(step, transition, contextData, result);
    result = *code;
    return stepNamed("c");
  }
  Step moveToStepForHistoryIndex(NSUInteger index) override {
    called.insert("moveToStepForHistoryIndex " + std::to_string(index));
    return diverted(ORLFProcess::moveToStepForHistoryIndex(index));
  }
  bool isCurrentStepInHistory() const override {
    called.insert("isCurrentStepInHistory");
    return inHistory.value_or(ORLFProcess::isCurrentStepInHistory());
  }
  std::optional<NSData> saveSate() override { return NSData(std::vector<std::uint8_t>{1}); }
  bool loadSateFromData(const std::optional<NSData>& data, NSErrorSlot) override {
    setHistory({"root.a", std::nullopt, "root.b"}, 1);
    return data.has_value();
  }

 private:
  [[nodiscard]] Step diverted(const Step& step) const {
    return diversion ? stepNamed(*diversion) : step;
  }
};

using Calls = std::set<std::string>;

TEST(ORLFProcessDeriving, RunAsksWhatItIsMadeOf) {
  Derived process;
  EXPECT_EQ(process.callsOf([&] { process.run(); }),
            (Calls{"setCurrentStep", "historyTypeForStep", "addStateFullIdentifier root.a nil 0"}));
  EXPECT_EQ(process.callsOf([&] { process.run(); }), Calls{});
}

TEST(ORLFProcessDeriving, AdvanceAsksWhatItIsMadeOf) {
  Derived process;
  process.run();
  EXPECT_EQ(process.callsOf([&] { process.advanceWithTransition("next", 1); }),
            (Calls{"canLeaveCurrentStep", "advanceFromStep root.a next 1 1",
                   "didSucceed root.a next root.b 1", "historyTypeForStep",
                   "addStateFullIdentifier root.b 1 0", "setCurrentStep"}));
  EXPECT_EQ(process.callsOf([&] { process.advanceWithTransition(std::nullopt, 2); }),
            (Calls{"canLeaveCurrentStep", "advanceFromStep root.b nil 2 1", "didEnd root.b nil 2",
                   "historyTypeForStep", "addStateFullIdentifier nil 2 0", "setCurrentStep"}));
  process.run();
  EXPECT_EQ(process.callsOf([&] { process.advanceWithTransition("bad", 3); }),
            (Calls{"canLeaveCurrentStep", "advanceFromStep root.a bad 3 1", "didFail root.a bad 3",
                   "historyTypeForStep", "addStateFullIdentifier nil 3 0", "setCurrentStep"}));
}

TEST(ORLFProcessDeriving, JumpAndClearAskWhatTheyAreMadeOf) {
  Derived process;
  EXPECT_EQ(process.callsOf([&] { process.jumpToStep("b", 4); }),
            (Calls{"setCurrentStep", "historyTypeForStep", "addStateFullIdentifier root.b 4 0"}));
  EXPECT_EQ(process.callsOf([&] { process.clearHistory(); }),
            (Calls{"historyTypeForStep", "addStateFullIdentifier root.b nil 0"}));
}

TEST(ORLFProcessDeriving, BackAndForwardAskWhatTheyAreMadeOf) {
  Derived process;
  process.run();
  process.advanceWithTransition("next", nullptr);
  EXPECT_EQ(process.callsOf([&] { EXPECT_TRUE(process.canBack()); }),
            Calls{"isCurrentStepInHistory"});
  EXPECT_EQ(process.callsOf([&] { process.back(); }),
            (Calls{"isCurrentStepInHistory", "canLeaveCurrentStep", "moveToStepForHistoryIndex 0",
                   "setCurrentStep"}));
  EXPECT_EQ(process.callsOf([&] { process.forward(); }),
            (Calls{"canLeaveCurrentStep", "moveToStepForHistoryIndex 1", "setCurrentStep"}));
}

TEST(ORLFProcessDeriving, TheTypeDecidesWhatIsRecorded) {
  Derived process;
  process.type = 3;
  process.run();
  process.jumpToStep("b", nullptr);
  EXPECT_FALSE(process.hasHistory());
  process.type = 0;
  process.records = false;
  process.jumpToStep("a", nullptr);
  EXPECT_FALSE(process.hasHistory());
}

TEST(ORLFProcessDeriving, WhetherAStepMayBeLeftDecidesMoves) {
  Derived process;
  process.run();
  process.advanceWithTransition("next", nullptr);
  process.mayLeave = false;
  EXPECT_EQ(process.advanceWithTransition("unknown", nullptr), nullptr);
  EXPECT_EQ(process.back(), nullptr);
  EXPECT_EQ(nameOfStep(process.currentStep()), "root.b");
  process.mayLeave = true;
  process.back();
  process.mayLeave = false;
  EXPECT_EQ(process.forward(), nullptr);
  EXPECT_EQ(process.historyIndex(), 1U);
}

TEST(ORLFProcessDeriving, TheHandlersDecideWhereAnAdvanceEnds) {
  for (const char* transition : {"next", "bad", "unknown"}) {
    Derived process;
    process.run();
    process.diversion = "c";
    EXPECT_EQ(nameOfStep(process.advanceWithTransition(transition, nullptr)), "root.c");
    EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "root.c"})) << transition;
  }
}

TEST(ORLFProcessDeriving, TheSearchDecidesByItsCode) {
  struct Case {
    std::int32_t code;
    const char* handler;
    const char* to;
  };
  for (const Case& row :
       {Case{0, "didSucceed root.a next root.c nil", "root.c"},
        Case{1, "didFail root.a next nil", "nil"}, Case{2, "didEnd root.a next nil", "nil"}}) {
    Derived process;
    process.run();
    process.code = row.code;
    const Calls calls = process.callsOf(
        [&] { EXPECT_EQ(nameOfStep(process.advanceWithTransition("next", nullptr)), row.to); });
    EXPECT_EQ(calls.count(row.handler), 1U) << row.code;
  }
}

TEST(ORLFProcessDeriving, TheSearchIsAskedOnceHoweverManyGroupsAreLeft) {
  class Counting final : public ORLFProcess {
   public:
    using ORLFProcess::ORLFProcess;
    int searches = 0;
    Step advanceFromStep(const Step& step, Transition transition, const id& data,
                         std::int32_t& result) override {
      ++searches;
      return ORLFProcess::advanceFromStep(step, transition, data, result);
    }
  };
  Counting process(stepFromDefinition(R"(
    <step id="root" firststep="g"><step id="g" firststep="h"><transition value="up" stepid="b"/>
      <step id="h" firststep="a"><transition value="up" end="up"/>
        <step id="a"><transition value="out" end="up"/></step></step></step><step id="b"/></step>)"));
  process.run();
  EXPECT_EQ(nameOfStep(process.advanceWithTransition("out", nullptr)), "root.b");
  EXPECT_EQ(process.searches, 1);
}

TEST(ORLFProcessDeriving, AnyOtherCodeEndsTheProcessAndNobodyIsAsked) {
  for (const std::int32_t code : {3, -1, 2'147'483'647}) {
    Derived process;
    const auto delegate = std::make_shared<orlftest::RecordingDelegate>();
    delegate->haveAllOperations();
    process.setDelegate(delegate);
    process.run();
    delegate->calls.clear();
    process.code = code;
    EXPECT_EQ(process.advanceWithTransition("next", nullptr), nullptr);
    EXPECT_EQ(delegate->calls, (Texts{"willLeaveStep root.a", "historyTypeForStep nil",
                                      "didLeaveStep root.a", "didEndProcess nil nil"}));
  }
}

TEST(ORLFProcessDeriving, AnEndWithoutAStepHasNoResponse) {
  Derived process;
  const auto delegate = std::make_shared<orlftest::RecordingDelegate>();
  delegate->haveAllOperations();
  process.setDelegate(delegate);
  process.code = 2;
  EXPECT_EQ(process.advanceWithTransition("next", 1), nullptr);
  EXPECT_EQ(delegate->calls,
            (Texts{"shouldEndProcess nil", "didLeaveStep nil", "didEndProcess nil 1"}));
}

TEST(ORLFProcessDeriving, TheMoveInTheHistoryDecidesTheAnswer) {
  Derived process;
  process.run();
  process.advanceWithTransition("next", nullptr);
  process.diversion = "c";
  EXPECT_EQ(nameOfStep(process.back()), "root.c");
  EXPECT_EQ(nameOfStep(process.forward()), "root.c");
}

TEST(ORLFProcessDeriving, WhetherTheStepIsInTheHistoryDecidesTheWayBack) {
  Derived process;
  process.run();
  process.inHistory = false;
  EXPECT_TRUE(process.canBack());
  EXPECT_EQ(nameOfStep(process.back()), "root.a");
  EXPECT_EQ(process.historyIndex(), 1U);
  process.inHistory = true;
  EXPECT_FALSE(process.canBack());
}

TEST(ORLFProcessDeriving, AStateIsKeptAndRestored) {
  Derived process;
  process.run();
  EXPECT_EQ(process.saveSate()->length(), 1U);
  EXPECT_TRUE(process.loadSateFromData(process.saveSate(), nullptr));
  EXPECT_EQ(textsOfHistory(process), (Texts{"root.a", "nil", "root.b"}));
  EXPECT_FALSE(process.canBack());
  EXPECT_EQ(process.forward(), nullptr);
  EXPECT_EQ(nameOfStep(process.forward()), "root.b");
  process.setHistory(process.history(), 3);
  try {
    process.setHistory({"root.a"}, 2);
    FAIL() << "the index lies beyond the entries";
  } catch (const NSException& exception) {
    EXPECT_NE(exception.reason().find("index 2 beyond a history of 1"), std::string::npos);
  }
  EXPECT_EQ(process.historyIndex(), 3U) << "what was refused changes nothing";
}

TEST(ORLFProcessDeriving, AHistoryWithoutAPresentIsOutOfRange) {
  Derived process;
  process.run();
  process.setHistory({"root.a"}, 0);
  try {
    static_cast<void>(process.canBack());
    FAIL() << "the index points at no entry";
  } catch (const NSException& exception) {
    EXPECT_EQ(exception.name(), NSRangeException);
    EXPECT_NE(exception.reason().find("index 0 beyond a history of 1"), std::string::npos);
  }
  EXPECT_FALSE(process.hasHistory());
  EXPECT_EQ(nameOfStep(process.forward()), "root.a");
  EXPECT_FALSE(process.canBack());
}

}  // namespace
}  // namespace ORLFoundation
