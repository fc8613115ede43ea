/// How work gets to the main thread. A host that has a main loop installs an executor that hands
/// blocks to it; without one the headless executor stands in.
///
///     NSSetMainThreadExecutor(std::make_shared<LoopExecutor>(loop));
///     NSPerformOnMainThread([&] { answer = alert->runModal(); }, true);
#pragma once

#include <functional>
#include <memory>

namespace ORLFoundation {

class NSMainThreadExecutor {
 public:
  virtual ~NSMainThreadExecutor() = default;

  /// Whether the calling thread is the one that blocks run on.
  [[nodiscard]] virtual bool isMainThread() const = 0;
  /// Runs the block on the main thread, soon, once, after those given before it. May be called on
  /// any thread. An executor that stops drops its blocks, and nobody waits for them any longer.
  virtual void execute(std::function<void()> block) = 0;
};

/// Needs no loop and no thread: a block runs at once, on the thread that gives it, which counts as
/// the main thread meanwhile. So nobody ever waits for another thread, and two threads may perform
/// main work side by side. The process's first thread is the main one at all times.
class NSHeadlessMainThreadExecutor final : public NSMainThreadExecutor {
 public:
  [[nodiscard]] bool isMainThread() const override;
  void execute(std::function<void()> block) override;
};

/// The executor in use, never null.
[[nodiscard]] std::shared_ptr<NSMainThreadExecutor> NSCurrentMainThreadExecutor();
/// Replaces the executor and gives back the one before it; null stands for the headless one. Safe
/// on any thread; blocks that wait in the old one stay there.
std::shared_ptr<NSMainThreadExecutor> NSSetMainThreadExecutor(
    std::shared_ptr<NSMainThreadExecutor> executor);

/// `performSelectorOnMainThread:withObject:waitUntilDone:`  On the main thread itself, a block that
/// is waited for runs in place. What such a block throws is thrown to the waiting caller. Answers
/// false when the executor drops a block that is waited for, true otherwise. A block that nobody
/// waits for must not throw.
bool NSPerformOnMainThread(std::function<void()> block, bool waitUntilDone);

}  // namespace ORLFoundation
