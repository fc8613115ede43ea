// Delegates that do more than answer, in each place in which they are asked or told.
#include <ORLFoundation/process/engine/ORLFProcess.h>

#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/process/engine/ORLFProcess_testing.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>

namespace ORLFoundation {
namespace {

using orlftest::nameOfStep;
using orlftest::RecordingDelegate;
using orlftest::stepFromDefinition;
using orlftest::Texts;
using orlftest::textsOfHistory;

const std::string kReentrySteps = R"(
  <step id="root" firststep="a">
    <step id="a"><transition value="next" stepid="b"/><transition value="bad" stepid="gone"/>
      <transition value="stop" end="done"/></step>
    <step id="b"><transition value="next" stepid="a"/><transition value="stop" end="done"/></step>
  </step>)";

/// Calls a block in one of its operations, the first time.
class Acting final : public ORLFProcessDelegate {
 public:
  using Block = std::function<void(ORLFProcess&)>;
  std::string operation;
  Block block;

  std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess& process, const Step& step) override {
    act("historyTypeForStep", process);
    return ORLFProcessDelegate::orlfProcessHistoryTypeForStep(process, step);
  }
  bool orlfProcessWillLeaveStep(ORLFProcess& process, const Step&) override {
    return act("willLeaveStep", process);
  }
  bool orlfProcessShouldAdvanceToStep(ORLFProcess& process, const Step&, const id&) override {
    return act("shouldAdvanceToStep", process);
  }
  bool orlfProcessAdvanceWithTransitionShouldFailFromStep(ORLFProcess& process, Transition,
                                                          const Step&, const id&) override {
    return act("shouldFailFromStep", process);
  }
  bool orlfProcessAdvanceWithTransitionShouldEndProcessWithData(ORLFProcess& process, Transition,
                                                                const id&) override {
    return act("shouldEndProcess", process);
  }
  void orlfProcessDidLeaveStep(ORLFProcess& process, const Step&) override {
    act("didLeaveStep", process);
  }
  void orlfProcessDidAdvanceToStep(ORLFProcess& process, const Step&, const id&) override {
    act("didAdvanceToStep", process);
  }
  void orlfProcessDidEndProcessWithTransition(ORLFProcess& process, Transition,
                                              const id&) override {
    act("didEndProcess", process);
  }
  void orlfProcessDidJumpToStep(ORLFProcess& process, const Step&, const id&) override {
    act("didJumpToStep", process);
  }
  void orlfProcessDidBackToStep(ORLFProcess& process, const Step&, const id&) override {
    act("didBackToStep", process);
  }

 private:
  bool act(const std::string& name, ORLFProcess& process) {
    if (name == operation && block) std::exchange(block, nullptr)(process);
    return true;
  }
};

using Move = std::function<void(ORLFProcess&)>;

struct NamedMove {
  const char* name;
  Move move;
};

const std::vector<NamedMove>& moves() {
  static const std::vector<NamedMove> all = {
      {"run", [](ORLFProcess& process) { process.run(); }},
      {"next", [](ORLFProcess& process) { process.advanceWithTransition("next", 1); }},
      {"bad", [](ORLFProcess& process) { process.advanceWithTransition("bad", 2); }},
      {"stop", [](ORLFProcess& process) { process.advanceWithTransition("stop", 3); }},
      {"jump", [](ORLFProcess& process) { process.jumpToStep("b", 4); }},
      {"back", [](ORLFProcess& process) { process.back(); }},
      {"forward", [](ORLFProcess& process) { process.forward(); }},
      {"clear", [](ORLFProcess& process) { process.clearHistory(); }},
      {"noStep", [](ORLFProcess& process) { process.setCurrentStep(nullptr); }},
      {"noDelegate", [](ORLFProcess& process) { process.setDelegate(nullptr); }},
      {"lessTree",
       [](ORLFProcess& process) {
         process.rootStep()->removeChildStepWithIdentifier("a");
         process.rootStep()->removeChildStepWithIdentifier("b");
       }},
      {"throw", [](ORLFProcess&) { throw std::runtime_error("no"); }},
  };
  return all;
}

/// In the middle of a history of three entries, at "root.b".
std::shared_ptr<ORLFProcess> processInTheMiddle() {
  auto process = std::make_shared<ORLFProcess>(stepFromDefinition(kReentrySteps));
  process->run();
  process->advanceWithTransition("next", nullptr);
  process->advanceWithTransition("next", nullptr);
  process->back();
  return process;
}

void expectSoundHistory(const ORLFProcess& process) {
  EXPECT_LE(process.historyIndex(), process.history().size());
  EXPECT_EQ(process.historyIndex() == 0, process.history().empty());
  EXPECT_NO_THROW(static_cast<void>(process.canBack()));
  EXPECT_EQ(process.canForward(), process.historyIndex() < process.history().size());
}

TEST(ORLFProcessReentry, AnyMoveInTheMiddleOfAnyOtherLeavesASoundProcess) {
  int acts = 0;
  for (const NamedMove& outer : moves())
    for (const NamedMove& inner : moves())
      for (const std::string& operation : RecordingDelegate::allOperations()) {
        SCOPED_TRACE(std::string(inner.name) + " in " + operation + " of " + outer.name);
        const auto process = processInTheMiddle();
        const auto delegate = std::make_shared<Acting>();
        delegate->operation = operation;
        delegate->block = [&](ORLFProcess& asking) {
          ++acts;
          inner.move(asking);
        };
        process->setDelegate(delegate);
        try {
          outer.move(*process);
        } catch (const NSException& exception) {
          EXPECT_EQ(exception.name(), NSRangeException);
        } catch (const std::runtime_error&) {
          // What the innermost move threw.
        }
        delegate->block = nullptr;
        expectSoundHistory(*process);
        process->run();
        process->advanceWithTransition("next", nullptr);
        expectSoundHistory(*process);
      }
  EXPECT_GT(acts, 200);
}

TEST(ORLFProcessReentry, ADelegateMayLetGoOfTheProcess) {
  int acts = 0;
  for (const NamedMove& outer : moves())
    for (const std::string& operation : RecordingDelegate::allOperations()) {
      if (std::string_view(outer.name) == "throw") continue;
      SCOPED_TRACE(operation + " of " + outer.name);
      auto process = processInTheMiddle();
      const std::weak_ptr<ORLFProcess> seen = process;
      const auto delegate = std::make_shared<Acting>();
      delegate->operation = operation;
      delegate->block = [&](ORLFProcess&) {
        ++acts;
        process.reset();
      };
      process->setDelegate(delegate);
      outer.move(*process);
      EXPECT_EQ(seen.expired(), process == nullptr);
    }
  EXPECT_GT(acts, 15);
}

/// Clears the history while it is asked whether the step may be left.
class Emptying final : public ORLFProcessDelegate {
 public:
  std::int32_t type = 0;

  std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess&, const Step&) override { return type; }
  bool orlfProcessWillLeaveStep(ORLFProcess& process, const Step&) override {
    process.clearHistory();
    return true;
  }
};

TEST(ORLFProcessReentry, AMoveWhoseHistoryIsEmptiedRaisesAndChangesNothingMore) {
  for (const std::int32_t type : {0, 1}) {
    for (const bool isBack : {true, false}) {
      const auto process = processInTheMiddle();
      const auto delegate = std::make_shared<Emptying>();
      delegate->type = type;
      process->setDelegate(delegate);
      try {
        isBack ? process->back() : process->forward();
        FAIL() << "there was nothing to move to";
      } catch (const NSException& exception) {
        EXPECT_EQ(exception.name(), NSRangeException);
        EXPECT_NE(exception.reason().find(isBack ? "back]: index 0" : "forward]: index "),
                  std::string::npos)
            << exception.reason();
      }
      EXPECT_EQ(textsOfHistory(*process), type == 0 ? Texts{"root.b"} : Texts{});
      EXPECT_EQ(process->historyIndex(), type == 0 ? 1U : 0U);
      EXPECT_EQ(nameOfStep(process->currentStep()), "root.b");
    }
  }
}

TEST(ORLFProcessReentry, AMoveInTheMiddleOfAnAdvanceIsOverriddenByIt) {
  const auto process = processInTheMiddle();
  const auto delegate = std::make_shared<Acting>();
  delegate->operation = "willLeaveStep";
  delegate->block = [](ORLFProcess& asking) { asking.jumpToStep("a", nullptr); };
  process->setDelegate(delegate);
  // The advance starts from where the process stands when it may go on.
  EXPECT_EQ(nameOfStep(process->advanceWithTransition("next", nullptr)), "root.b");
  EXPECT_EQ(textsOfHistory(*process), (Texts{"root.a", "root.b", "root.a", "root.b"}));
}

}  // namespace
}  // namespace ORLFoundation
