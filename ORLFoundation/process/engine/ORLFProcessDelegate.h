/// What a program is asked and told while a process walks its steps. Every operation is optional;
/// one that is not overridden answers as stated.
///
///     class Wizard : public ORLFProcessDelegate {
///       bool orlfProcessWillLeaveStep(ORLFProcess&, const Step& step) override {
///         return pageOf(step).isComplete();
///       }
///       void orlfProcessDidAdvanceToStep(ORLFProcess&, const Step& step, const id&) override {
///         show(pageOf(step));
///       }
///     };
///
/// A step may be null where no step is meant: no step is left, or none is reached. `ORLFProcess`
/// tells the order of the calls. They come on the thread of the caller, from within the move; what
/// they throw ends it where it stands.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

namespace ORLFoundation {

class id;
class ORLFProcess;
class ORLFProcessStep;

class ORLFProcessDelegate : public NSObject {
 public:
  using Step = std::shared_ptr<ORLFProcessStep>;
  using Transition = std::optional<std::string_view>;

  /// `orlfProcess:historyTypeForStep:`  0, the default, records the step in the history; every
  /// other value leaves it out. Asked with null where the process ends.
  [[nodiscard]] virtual std::int32_t orlfProcessHistoryTypeForStep(ORLFProcess& process,
                                                                   const Step& step);
  /// `orlfProcess:willLeaveStep:`  Whether the step may be left, forwards or backwards; true by
  /// default. Not asked by a jump.
  [[nodiscard]] virtual bool orlfProcessWillLeaveStep(ORLFProcess& process, const Step& step);
  /// `orlfProcess:shouldAdvanceToStep:withContextData:`  false keeps the process where it stands;
  /// true by default.
  [[nodiscard]] virtual bool orlfProcessShouldAdvanceToStep(ORLFProcess& process, const Step& step,
                                                            const id& contextData);
  /// `orlfProcess:advanceWithTransition:shouldFailFromStep:withData:`  Asked when the transition
  /// leads to a step that does not exist. true, the default, leaves the process without a step;
  /// false keeps it where it stands.
  [[nodiscard]] virtual bool orlfProcessAdvanceWithTransitionShouldFailFromStep(
      ORLFProcess& process, Transition transition, const Step& step, const id& data);
  /// `orlfProcess:advanceWithTransition:shouldEndProcessWithData:`  Asked when the transition leads
  /// out of the process. true by default; false keeps the process where it stands.
  [[nodiscard]] virtual bool orlfProcessAdvanceWithTransitionShouldEndProcessWithData(
      ORLFProcess& process, Transition transition, const id& data);

  /// `orlfProcess:didLeaveStep:`  Told by every advance that was allowed to leave, even when it was
  /// held back afterwards, and by `back`.
  virtual void orlfProcessDidLeaveStep(ORLFProcess& process, const Step& step);
  /// `orlfProcess:didAdvanceToStep:withContextData:`  Told of the old step where an advance was
  /// held back.
  virtual void orlfProcessDidAdvanceToStep(ORLFProcess& process, const Step& step,
                                           const id& contextData);
  /// `orlfProcess:didEndProcessWithTransition:data:`  With the response of the step that was left,
  /// not of a group around it; nil when it has none.
  virtual void orlfProcessDidEndProcessWithTransition(ORLFProcess& process, Transition response,
                                                      const id& data);
  /// `orlfProcess:didJumpToStep:withContextData:`
  virtual void orlfProcessDidJumpToStep(ORLFProcess& process, const Step& step,
                                        const id& contextData);
  /// `orlfProcess:didBackToStep:withContextData:`  The data is nil.
  virtual void orlfProcessDidBackToStep(ORLFProcess& process, const Step& step,
                                        const id& contextData);

  [[nodiscard]] std::string className() const override { return "ORLFProcessDelegate"; }
};

}  // namespace ORLFoundation
