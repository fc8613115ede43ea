/// What the steps of one cooperative task have in common: where they run, and whether the task was
/// cancelled. A task that waits holds no thread; its next step is handed to the executor.
///
///     const auto executor = CooperativeExecutorOnGlobalQueue();
///     const auto context = std::make_shared<CooperativeContext>(executor);
///     const std::stop_callback stop(context->stopToken(), [] { report("cancelled"); });
///     context->cancel();   // runs the callback before it returns
///
/// A callback that is installed on a cancelled context runs at once, inside its constructor, on the
/// thread that installs it: whoever holds a lock there must be able to take it again. One that is
/// dropped while another thread runs it waits for the end of that run.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>

#include <functional>
#include <memory>
#include <stdexcept>
#include <stop_token>

namespace ORLFoundation {

/// What a cancelled wait throws.
class CancellationError : public std::runtime_error {
 public:
  CancellationError() : std::runtime_error("The task was cancelled.") {}
};

/// Where the steps of tasks run.
class CooperativeExecutor {
 public:
  virtual ~CooperativeExecutor() = default;

  /// Calls the step once, after those given before it where the executor keeps an order. It should
  /// not be called in place: whoever hands a task on would then stand on the stack below it, with
  /// whatever locks it holds. Safe on any thread; steps do not throw.
  virtual void execute(std::function<void()> step) = 0;
};

/// Steps as items of a queue.
[[nodiscard]] std::shared_ptr<CooperativeExecutor> CooperativeExecutorOnQueue(
    dispatch_queue_t queue);
/// Steps as items of the global queue of the default quality of service.
[[nodiscard]] std::shared_ptr<CooperativeExecutor> CooperativeExecutorOnGlobalQueue();

class CooperativeContext {
 public:
  /// Raises `NSInvalidArgumentException` without an executor.
  explicit CooperativeContext(std::shared_ptr<CooperativeExecutor> executor);
  CooperativeContext(const CooperativeContext&) = delete;
  CooperativeContext& operator=(const CooperativeContext&) = delete;

  /// Never null.
  [[nodiscard]] const std::shared_ptr<CooperativeExecutor>& executor() const noexcept {
    return executor_;
  }

  /// Sets the flag for good and runs the callbacks that are installed, on the calling thread. A
  /// task has to look at the flag; only `waitUnlessCancelled` ends by it. The second call does
  /// nothing.
  void cancel() { stop_.request_stop(); }
  [[nodiscard]] bool isCancelled() const noexcept { return stop_.stop_requested(); }
  /// Throws `CancellationError` when the task is cancelled.
  void checkCancellation() const;
  /// For callbacks.
  [[nodiscard]] std::stop_token stopToken() const noexcept { return stop_.get_token(); }

 private:
  const std::shared_ptr<CooperativeExecutor> executor_;
  std::stop_source stop_;
};

}  // namespace ORLFoundation
