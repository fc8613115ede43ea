/// A thread's loop: timers, delayed and ordered performs and descriptors, each served in some modes
/// and called on the loop's thread when that runs the loop. The main thread's loop also serves the
/// main queue (NSMainQueue.h).
///
///     const auto loop = NSRunLoop::currentRunLoop();
///     const auto source = loop->addDescriptor(
///         descriptor, NSRunLoopDescriptorRead, NSDefaultRunLoopMode, [&](short) { drain(); });
///     loop->runUntilDate(NSDate::date().dateByAddingTimeInterval(1));
#pragma once

#include <ORLFoundation/platform/dispatch/NSSelector.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSDate.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ORLFoundation {

class NSTimer;

namespace internal::dispatch {
class Loop;
struct Watch;
/// What stands behind the calling thread's run loop.
[[nodiscard]] std::shared_ptr<Loop> currentLoop();
}  // namespace internal::dispatch

/// The mode in which loops mostly run.
extern const std::string NSDefaultRunLoopMode;
/// Stands for all modes that are common: the default one and those that were added to them.
extern const std::string NSRunLoopCommonModes;

/// Events of a descriptor, as poll(2) has them.
inline constexpr short NSRunLoopDescriptorRead = 0x1;
inline constexpr short NSRunLoopDescriptorWrite = 0x4;

/// A descriptor on a run loop. Dropping the last reference takes it off, as `invalidate` does; the
/// descriptor stays open.
class NSRunLoopDescriptor {
 public:
  NSRunLoopDescriptor(std::weak_ptr<internal::dispatch::Loop> loop,
                      std::shared_ptr<internal::dispatch::Watch> watch);
  ~NSRunLoopDescriptor();
  NSRunLoopDescriptor(const NSRunLoopDescriptor&) = delete;
  NSRunLoopDescriptor& operator=(const NSRunLoopDescriptor&) = delete;

  /// No call begins afterwards on the loop's thread. Any thread.
  void invalidate();
  [[nodiscard]] bool isValid() const noexcept;

 private:
  const std::weak_ptr<internal::dispatch::Loop> loop_;
  const std::shared_ptr<internal::dispatch::Watch> watch_;
};

/// The arguments of `performSelector:target:argument:order:modes:`.
struct NSOrderedPerform {
  NSSelector selector;
  std::shared_ptr<NSObject> target = nullptr;
  id argument = nullptr;
  NSUInteger order = 0;
  std::vector<std::string> modes = {};
};

/// What adds and cancels may be called on any thread, what runs the loop on its own.
class NSRunLoop final : public NSObject {
 public:
  /// `currentRunLoop`  The calling thread's, made at first need and dropped when the thread ends.
  [[nodiscard]] static std::shared_ptr<NSRunLoop> currentRunLoop();
  /// `mainRunLoop`
  [[nodiscard]] static const std::shared_ptr<NSRunLoop>& mainRunLoop();

  /// `addTimer:forMode:`  Further modes may be added; a timer that is on another loop stays there
  /// alone.
  void addTimer(const std::shared_ptr<NSTimer>& timer, const std::string& forMode);
  /// Calls the block, with what poll(2) reports, each time the loop finds the descriptor ready for
  /// one of the events, hung up or in error. An empty block is not called; nothing comes for a
  /// negative descriptor.
  [[nodiscard]] std::shared_ptr<NSRunLoopDescriptor> addDescriptor(
      int descriptor, short events, const std::string& forMode,
      std::function<void(short events)> block);
  /// `performSelector:target:argument:order:modes:`  Once, at the next turn in one of the modes;
  /// those of lower order first, those of one order as they came.
  void performSelector(NSOrderedPerform perform);
  /// `cancelPerformSelector:target:argument:`  Equal arguments fit.
  void cancelPerformSelector(const NSSelector& selector, const std::shared_ptr<NSObject>& target,
                             const id& argument);
  /// `cancelPerformSelectorsWithTarget:`
  void cancelPerformSelectorsWithTarget(const std::shared_ptr<NSObject>& target);

  /// Makes a mode one of the common modes.
  void addCommonMode(const std::string& mode);
  /// `currentMode`  The mode in which the loop runs, the innermost one; nil when it does not.
  [[nodiscard]] std::optional<std::string> currentMode() const;

  /// `runMode:beforeDate:`  Runs what is ready; when nothing is, waits until something has run, or
  /// until the date or until nothing is left to wait for. Answers false at once where there is
  /// nothing to wait for in the mode.
  bool runMode(const std::string& mode, NSDate beforeDate);
  /// `runUntilDate:`  Runs in the default mode until the date, or until there is nothing to wait
  /// for.
  void runUntilDate(NSDate date);
  /// `run`  The same without an end. The main loop never lacks something to wait for.
  void run();

  [[nodiscard]] std::string className() const override { return "NSRunLoop"; }

  /// For the library: a thread has the loop that `currentRunLoop` answers.
  explicit NSRunLoop(std::shared_ptr<internal::dispatch::Loop> loop);
  ~NSRunLoop() override;

 private:
  friend std::shared_ptr<internal::dispatch::Loop> internal::dispatch::currentLoop();
  struct State;

  bool runUntil(const std::string& mode, std::int64_t until);

  const std::unique_ptr<State> state_;
};

}  // namespace ORLFoundation
