/// Walks a tree of steps: the client names a transition, the process finds the next step. A history
/// gives back and forward; a delegate may hold back each move and is told about each.
///
///     ORLFProcess process(root);
///     process.setDelegate(wizard);
///     process.run();                                // the initial step of the root
///     process.advanceWithTransition("next", answers);
///     if (process.canBack()) process.back();
///     process.advanceWithTransition("quit", nullptr);  // null: the process has ended
///
/// There are no errors: a move that failed answers null. A delegate may move the process from
/// within a call, replace itself, and let go of the process; where it empties the history in the
/// middle of `back` or `forward`, that move raises `NSRangeException` and changes nothing. One
/// thread at a time.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/process/engine/ORLFProcessDelegate.h>
#include <ORLFoundation/process/engine/ORLFProcessStep.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFProcess : public NSObject {
 public:
  using Step = std::shared_ptr<ORLFProcessStep>;
  using Transition = std::optional<std::string_view>;
  /// Full identifiers; nil marks that there was no step.
  using History = std::vector<std::optional<std::string>>;

  /// `initWithRootStep:`
  explicit ORLFProcess(Step rootStep);

  [[nodiscard]] const Step& rootStep() const noexcept { return rootStep_; }
  /// Null before `run` and after the end. Setting it records nothing and tells the delegate
  /// nothing.
  [[nodiscard]] const Step& currentStep() const noexcept { return currentStep_; }
  virtual void setCurrentStep(Step value);
  /// Held weakly.
  [[nodiscard]] std::shared_ptr<ORLFProcessDelegate> delegate() const { return delegate_.lock(); }
  void setDelegate(const std::shared_ptr<ORLFProcessDelegate>& value) { delegate_ = value; }

  /// `run`  Goes to the initial step of the root and records it, unless there is a current step.
  /// Answers the current step. The delegate is only asked for the history type.
  Step run();
  /// `advanceWithTransition:contextData:`  Answers the new current step, null at the end and after
  /// a failure. In this order: the delegate may refuse to leave, and then nothing happens and null
  /// is answered; it may hold the move back, which then goes to the current step; the new step,
  /// null too, is recorded and becomes current if it is another; `didLeaveStep` is told in any
  /// case, then `didAdvanceToStep` with the step where the process stands, or
  /// `didEndProcessWithTransition` at the end. A failure is not told.
  Step advanceWithTransition(Transition transition, const id& contextData);
  /// `jumpToStep:withContextData:`  Takes a path from the root, without the root's name. Null, and
  /// no change, where there is no such step. The delegate cannot refuse, and hears nothing of the
  /// step that is left.
  Step jumpToStep(std::string_view identifierPath, const id& contextData);

  /// `canBack`  Whether something recorded lies behind the current step. One that was left out of
  /// the history can go back to the last one recorded.
  [[nodiscard]] bool canBack() const;
  /// `back`  To the entry of the history before the current step. Tells `didLeaveStep`, then
  /// `didBackToStep`. Null where the way back is barred, and where the entry marks no step: the
  /// current step then stays. Null too for a step that the tree has lost, and no step is current
  /// then.
  Step back();
  /// `canForward`  Whether entries lie ahead, as after `back`.
  [[nodiscard]] bool canForward() const;
  /// `forward`  To the entry ahead, as `back` does; but the delegate is told nothing: this
  /// asymmetry is required.
  Step forward();
  /// `hasHistory`
  [[nodiscard]] bool hasHistory() const noexcept { return historyIndex_ != 0; }
  /// `clearHistory`  Drops the history and records the current step anew, if there is one. Nothing
  /// happens without a history.
  void clearHistory();
  /// Entries up to the present, and those ahead of it.
  [[nodiscard]] const History& history() const noexcept { return history_; }
  /// The count of the entries behind and at the present.
  [[nodiscard]] NSUInteger historyIndex() const noexcept { return historyIndex_; }

  /// `saveSate`  nil: there is no form of the state here. For derived classes to override, as is
  /// `loadSateFromData`.
  [[nodiscard]] virtual std::optional<NSData> saveSate();
  /// `loadSateFromData:error:`  false, and no error.
  virtual bool loadSateFromData(const std::optional<NSData>& data, NSErrorSlot error = nullptr);

  // What the operations above are made of, for derived classes to override.

  /// `historyTypeForStep:`  The delegate's answer, 0 without one.
  [[nodiscard]] virtual std::int32_t historyTypeForStep(const Step& step);
  /// `addStateFullIdentifier:data:toHistoryWithType:`  Drops what lies ahead and records the
  /// identifier, nil too. Does nothing for a type other than 0. The data is not kept.
  virtual void addStateFullIdentifier(std::optional<std::string> fullIdentifier, const id& data,
                                      std::int32_t toHistoryWithType);
  /// `canLeaveCurrentStep`  true without a current step, else the delegate's answer.
  [[nodiscard]] virtual bool canLeaveCurrentStep();
  /// `handleAdvanceFromStep:withTransition:didSucceedToStep:withData:`  Decides where an advance
  /// ends that found a step: there, or at the current step if the delegate holds it back.
  [[nodiscard]] virtual Step handleAdvanceFromStepDidSucceedToStep(const Step& from,
                                                                   Transition transition,
                                                                   const Step& toStep,
                                                                   const id& data);
  /// `handleAdvanceFromStep:withTransition:didFailWithData:`  The same for a transition to a step
  /// that does not exist: null, or the current step.
  [[nodiscard]] virtual Step handleAdvanceFromStepDidFailWithData(const Step& from,
                                                                  Transition transition,
                                                                  const id& data);
  /// `handleAdvanceFromStep:withTransition:didEndWithData:`  The same for a transition that leads
  /// out of the process.
  [[nodiscard]] virtual Step handleAdvanceFromStepDidEndWithData(const Step& from,
                                                                 Transition transition,
                                                                 const id& data);
  /// `advanceFromStep:withTransition:contextData:result:`  Finds the next step. The result is 0 for
  /// a step that was found, 1 for a failure, 2 for the end; it comes in as 1. A step that leaves
  /// its parent hands on its response, nil too, as the parent's transition; an override is called
  /// once for each advance, not for each group that is left. After any other result of an override,
  /// the process ends and nobody is asked.
  [[nodiscard]] virtual Step advanceFromStep(const Step& step, Transition transition,
                                             const id& contextData, std::int32_t& result);
  /// `moveToStepForHistoryIndex:`  Makes the step of that entry current, null when the tree has
  /// lost it; an entry that marks no step changes nothing. Raises `NSRangeException` for an index
  /// beyond the history.
  virtual Step moveToStepForHistoryIndex(NSUInteger index);
  /// `isCurrentStepInHistory`  Whether the entry of the present is that of the current step; false
  /// without a step or a history. Raises `NSRangeException` where the index points at no entry,
  /// which no operation here leaves behind.
  [[nodiscard]] virtual bool isCurrentStepInHistory() const;

  [[nodiscard]] std::string className() const override { return "ORLFProcess"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  /// For a derived class that keeps and restores the state. Raises `NSRangeException` for an index
  /// beyond the entries.
  void setHistory(History history, NSUInteger historyIndex);

 private:
  void record(const Step& step, const id& data);
  [[nodiscard]] Step finalStepOfAdvance(const Step& from, Transition transition, const id& data,
                                        std::int32_t result, const Step& found);
  void tellOfAdvance(const Step& from, Transition transition, const id& data, std::int32_t result,
                     const Step& to);

  std::weak_ptr<ORLFProcessDelegate> delegate_;
  const Step rootStep_;
  Step currentStep_;
  NSUInteger historyIndex_ = 0;
  History history_;
};

}  // namespace ORLFoundation
