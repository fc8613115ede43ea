/// The machinery under CooperativeTask.h. A coroutine never resumes another one on its own stack:
/// it names the next one and suspends, and the loop that resumed it goes on with that. So the stack
/// does not grow however many tasks follow each other, in every build.
#pragma once

#include <ORLFoundation/tasks/async/CooperativeContext.h>

#include <atomic>
#include <coroutine>
#include <exception>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

namespace ORLFoundation {

template <class Value>
class CooperativeTask;

namespace internal::async {

/// Resumes the coroutine, then the one that it named, and so on.
void run(std::coroutine_handle<> first);
/// Names the coroutine that goes on once the running one has suspended.
void runNext(std::coroutine_handle<> next) noexcept;
/// Raises that the task has no coroutine any longer.
[[noreturn]] void raiseAwaitedTask();

/// A suspended coroutine with the executor that it goes on with.
struct Continuation {
  CooperativeContext* context = nullptr;
  std::coroutine_handle<> coroutine;

  /// Hands the coroutine to its executor. When this returns, it may have ended, and its context
  /// too.
  void resume() const;
};

/// What a task returned or threw.
template <class Value>
class Outcome {
 public:
  void setValue(Value value) { value_.emplace(std::move(value)); }
  void setException(std::exception_ptr exception) { exception_ = std::move(exception); }
  Value take() {
    if (exception_) std::rethrow_exception(exception_);
    return std::move(*value_);
  }

 private:
  std::optional<Value> value_;
  std::exception_ptr exception_;
};

template <>
class Outcome<void> {
 public:
  static void setValue() noexcept {}
  void setException(std::exception_ptr exception) { exception_ = std::move(exception); }
  void take() const {
    if (exception_) std::rethrow_exception(exception_);
  }

 private:
  std::exception_ptr exception_;
};

struct FinalAwaiter {
  [[nodiscard]] static bool await_ready() noexcept { return false; }
  template <class Promise>
  void await_suspend(std::coroutine_handle<Promise> coroutine) const noexcept {
    runNext(coroutine.promise().continuation);
  }
  static void await_resume() noexcept {}
};

struct PromiseBase {
  std::shared_ptr<CooperativeContext> context;
  std::coroutine_handle<> continuation;

  [[nodiscard]] static std::suspend_always initial_suspend() noexcept { return {}; }
  [[nodiscard]] static FinalAwaiter final_suspend() noexcept { return {}; }
};

template <class Value>
struct TaskPromise : PromiseBase {
  Outcome<Value> outcome;

  CooperativeTask<Value> get_return_object() {
    return CooperativeTask<Value>(std::coroutine_handle<TaskPromise>::from_promise(*this));
  }
  template <class Returned>
  void return_value(Returned&& value) {
    outcome.setValue(std::forward<Returned>(value));
  }
  void unhandled_exception() { outcome.setException(std::current_exception()); }
};

template <>
struct TaskPromise<void> : PromiseBase {
  Outcome<void> outcome;

  CooperativeTask<void> get_return_object();
  static void return_void() noexcept {}
  void unhandled_exception() { outcome.setException(std::current_exception()); }
};

/// Owns the awaited task until the awaiting one has gone on.
template <class Value>
class TaskAwaiter {
 public:
  explicit TaskAwaiter(CooperativeTask<Value> task) : task_(std::move(task)) {
    if (!task_.coroutine_) raiseAwaitedTask();
  }

  [[nodiscard]] static bool await_ready() noexcept { return false; }
  template <class Promise>
  void await_suspend(std::coroutine_handle<Promise> awaiting) noexcept {
    auto& promise = task_.coroutine_.promise();
    promise.context = awaiting.promise().context;
    promise.continuation = awaiting;
    runNext(task_.coroutine_);
  }
  Value await_resume() { return task_.coroutine_.promise().outcome.take(); }

 private:
  CooperativeTask<Value> task_;
};

/// The coroutine that owns a job's task; it frees itself at its end.
struct Driver {
  struct promise_type : PromiseBase {
    Driver get_return_object() {
      return {std::coroutine_handle<promise_type>::from_promise(*this)};
    }
    [[nodiscard]] static std::suspend_never final_suspend() noexcept { return {}; }
    static void return_void() noexcept {}
    [[noreturn]] static void unhandled_exception() noexcept { std::terminate(); }
  };

  std::coroutine_handle<promise_type> coroutine;
};

/// The part of a job that does not depend on its value.
class JobState {
 public:
  JobState(const JobState&) = delete;
  JobState& operator=(const JobState&) = delete;

  [[nodiscard]] const std::shared_ptr<CooperativeContext>& context() const noexcept {
    return context_;
  }
  /// Cancels the context.
  void cancel() { context_->cancel(); }
  [[nodiscard]] bool isFinished() const noexcept {
    return isFinished_.load(std::memory_order_acquire);
  }
  /// Blocks the thread until the task has ended.
  void waitUntilFinished();
  /// Calls back once, where the task ends, or at once when it has ended.
  void whenFinished(std::function<void()> callback);

 protected:
  explicit JobState(std::shared_ptr<CooperativeContext> context);
  ~JobState() = default;

  static void launch(Driver driver, const std::shared_ptr<CooperativeContext>& context);
  void finish();

 private:
  const std::shared_ptr<CooperativeContext> context_;
  std::atomic<bool> isFinished_{false};
  std::mutex lock_;
  std::vector<std::function<void()>> callbacks_;
};

}  // namespace internal::async
}  // namespace ORLFoundation
