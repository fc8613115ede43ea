/// A call at a time, once or again and again, made by a run loop on its thread. The loop owns the
/// timer as long as it is valid, and the timer its target.
///
///     const auto show = [view](NSTimer&) { view->show(); };
///     const auto timer = NSTimer::timerWithTimeInterval(0.01, false, show);
///     NSRunLoop::mainRunLoop()->addTimer(timer, NSRunLoopCommonModes);
#pragma once

#include <ORLFoundation/platform/dispatch/NSSelector.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace ORLFoundation {

class NSRunLoop;
class NSTimer;

namespace internal::dispatch {
class Loop;
struct TimedCall;
}  // namespace internal::dispatch

using NSTimerBlock = std::function<void(NSTimer& timer)>;

/// The arguments of the operations that name a target. The selector's argument is the timer.
struct NSTimerArguments {
  NSTimeInterval timeInterval = 0;
  std::shared_ptr<NSObject> target = nullptr;
  NSSelector selector;
  id userInfo = nullptr;
  bool repeats = false;
};

/// May be asked, changed and invalidated on any thread.
class NSTimer final : public NSObject {
 public:
  /// `timerWithTimeInterval:repeats:block:`  A timer that is due so many seconds from now; it fires
  /// once it is on a run loop. Less than 0.0001 seconds, and not-a-number, count as that.
  [[nodiscard]] static std::shared_ptr<NSTimer> timerWithTimeInterval(NSTimeInterval timeInterval,
                                                                      bool repeats,
                                                                      NSTimerBlock block);
  /// `timerWithTimeInterval:target:selector:userInfo:repeats:`
  [[nodiscard]] static std::shared_ptr<NSTimer> timerWithTimeInterval(NSTimerArguments arguments);
  /// `scheduledTimerWithTimeInterval:repeats:block:`,
  /// `scheduledTimerWithTimeInterval:target:selector:userInfo:repeats:`  The same, on the calling
  /// thread's run loop in the default mode.
  static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(NSTimeInterval timeInterval,
                                                                 bool repeats, NSTimerBlock block);
  static std::shared_ptr<NSTimer> scheduledTimerWithTimeInterval(NSTimerArguments arguments);

  /// `fire`  Calls at once, on this thread. A timer that does not repeat is then done; the times of
  /// one that does stay.
  void fire();
  /// `invalidate`  It never fires again, and lets go of its target. A call that runs meanwhile on
  /// another thread goes on.
  void invalidate();
  /// `isValid`  From the making to the end of its only call, or to `invalidate`.
  [[nodiscard]] bool isValid() const;

  /// `timeInterval`  Seconds; 0 for a timer that does not repeat.
  [[nodiscard]] NSTimeInterval timeInterval() const noexcept;
  /// `userInfo`  nil when the timer is not valid.
  [[nodiscard]] id userInfo() const;
  /// `fireDate`, `setFireDate:`  When it is due next. Of times that a busy loop missed a repeating
  /// timer makes up for one, and keeps its beat.
  [[nodiscard]] NSDate fireDate() const;
  void setFireDate(NSDate date);

  [[nodiscard]] std::string className() const override { return "NSTimer"; }

  ~NSTimer() override;

 private:
  friend class NSRunLoop;
  struct State;

  NSTimer(NSTimeInterval timeInterval, bool repeats, NSTimerBlock block, id userInfo);
  static std::shared_ptr<NSTimer> make(NSTimeInterval timeInterval, bool repeats,
                                       NSTimerBlock block, id userInfo);
  void addToLoop(const std::shared_ptr<internal::dispatch::Loop>& loop, const std::string& mode);
  [[nodiscard]] std::shared_ptr<internal::dispatch::TimedCall> call();
  void fireOnLoop();

  const std::unique_ptr<State> state_;
};

}  // namespace ORLFoundation
