/// A task whose work, `main`, runs once on the global queue for what the user asked for. Subclasses
/// override `main`; for a single block there is ORLFAsyncBlockTask.
///
///     class Scan final : public ORLFAsyncTaskBase {
///      public:
///       void main() override {
///         while (!canceled() && readRecord()) continue;
///       }
///     };
///     ...
///     const auto scan = std::make_shared<Scan>();
///     scan->resume();
///     scan->waitUntilFinished();
///
/// A task is held by a shared pointer, and holds itself while it runs. Any thread. Traps: of
/// several threads that wait while the task runs one wakes, the others never, so one thread waits;
/// a wait for a task that nobody resumes never ends, nor does one inside its own `main`.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/tasks/async/ORLFAsyncTask.h>

#include <cstdint>
#include <mutex>
#include <string>

namespace ORLFoundation {

class ORLFAsyncTaskBase : public NSObject, public ORLFAsyncTask {
 public:
  enum State : std::int64_t {
    notStarted = -1,
    running = 0,
    cancelledWhileRunning = 1,
    finished = 2
  };

  /// `main`  Does nothing here. Nothing may throw out of it.
  virtual void main();

  /// `resume`  Nothing for a task that was resumed before.
  void resume() override;
  /// `cancel`  Sets the flag of a task that runs, which then ends like any other. Nothing for one
  /// that was not resumed, which can still be, and for one that has finished.
  void cancel() override;
  /// `waitUntilFinished`  At once for a task that has finished.
  void waitUntilFinished() override;
  [[nodiscard]] bool canceled() const override;
  [[nodiscard]] std::int64_t state() const;

  [[nodiscard]] std::string className() const override { return "ORLFAsyncTaskBase"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 protected:
  /// The semaphore that the end of the work signals once, made at first need.
  [[nodiscard]] const dispatch_semaphore_t& completionLock();

 private:
  void run();

  mutable std::recursive_mutex lock_;
  bool canceled_ = false;
  std::int64_t state_ = notStarted;
  dispatch_semaphore_t completionLock_;
};

}  // namespace ORLFoundation
