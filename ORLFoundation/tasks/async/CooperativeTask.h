/// Functions that can wait without holding a thread. One returns a `CooperativeTask`, which begins
/// when it is awaited, or when a job starts it:
///
///     AsyncSemaphore slots(2);
///     const auto fetched = [](AsyncSemaphore& free) -> CooperativeTask<int> {
///       co_await free.wait();
///       const auto context = co_await CurrentContext();
///       const int answer = context->isCancelled() ? 0 : 42;
///       free.signal();
///       co_return answer;
///     };
///     const auto executor = CooperativeExecutorOnGlobalQueue();
///     const auto job = CooperativeJob<int>::start(fetched(slots), executor);
///     show(job->result());   // blocks this thread
///
/// Traps: a coroutine keeps copies of its parameters, but not of what references and a lambda's
/// captures name, so that these must outlive it. A task that nobody awaits or starts never runs.
/// `result` in an item of a serial queue on which the job's steps run never returns.
#pragma once

#include <ORLFoundation/tasks/async/CooperativeContext.h>
#include <ORLFoundation/tasks/async/internal/CooperativePromise.h>

#include <coroutine>
#include <exception>
#include <memory>
#include <type_traits>
#include <utility>

namespace ORLFoundation {

template <class Value = void>
class [[nodiscard]] CooperativeTask {
 public:
  using promise_type = internal::async::TaskPromise<Value>;

  explicit CooperativeTask(std::coroutine_handle<promise_type> coroutine) noexcept
      : coroutine_(coroutine) {}
  CooperativeTask(CooperativeTask&& other) noexcept
      : coroutine_(std::exchange(other.coroutine_, nullptr)) {}
  CooperativeTask& operator=(CooperativeTask&&) = delete;
  ~CooperativeTask() {
    if (coroutine_) coroutine_.destroy();
  }

  /// Runs the task as a part of the one that awaits it, under its context, and gives what it
  /// returns or throws. Once: a task that was awaited or moved from raises
  /// `NSInvalidArgumentException`.
  auto operator co_await() && { return internal::async::TaskAwaiter<Value>(std::move(*this)); }

 private:
  friend internal::async::TaskAwaiter<Value>;

  std::coroutine_handle<promise_type> coroutine_;
};

/// `co_await CurrentContext()` gives the context of the running task, a shared pointer, at once.
class CurrentContext {
 public:
  [[nodiscard]] static bool await_ready() noexcept { return false; }
  template <class Promise>
  bool await_suspend(std::coroutine_handle<Promise> coroutine) noexcept {
    context_ = coroutine.promise().context;
    return false;
  }
  [[nodiscard]] std::shared_ptr<CooperativeContext> await_resume() noexcept {
    return std::move(context_);
  }

 private:
  std::shared_ptr<CooperativeContext> context_;
};

/// A task that runs by itself. It goes on without its handle; one that never ends is never freed.
template <class Value = void>
class CooperativeJob : public internal::async::JobState {
 public:
  /// Hands the first step to the executor, under a context of the job's own.
  static std::shared_ptr<CooperativeJob> start(CooperativeTask<Value> task,
                                               std::shared_ptr<CooperativeExecutor> executor) {
    return start(std::move(task), std::make_shared<CooperativeContext>(std::move(executor)));
  }
  /// The same under a context that other jobs may share, which may be cancelled already.
  static std::shared_ptr<CooperativeJob> start(CooperativeTask<Value> task,
                                               std::shared_ptr<CooperativeContext> context) {
    auto job = std::make_shared<CooperativeJob>(std::move(context));
    launch(drive(job, std::move(task)), job->context());
    return job;
  }
  explicit CooperativeJob(std::shared_ptr<CooperativeContext> context)
      : JobState(std::move(context)) {}

  /// What the task returned, moved out; throws what it threw. Blocks the thread until the task has
  /// ended. Once: a second call for a value gets what moving left of it.
  Value result() {
    waitUntilFinished();
    return outcome_.take();
  }

 private:
  static internal::async::Driver drive(std::shared_ptr<CooperativeJob> job,
                                       CooperativeTask<Value> task) {
    try {
      if constexpr (std::is_void_v<Value>) {
        co_await std::move(task);
        job->outcome_.setValue();
      } else {
        job->outcome_.setValue(co_await std::move(task));
      }
    } catch (...) {
      job->outcome_.setException(std::current_exception());
    }
    job->finish();
  }

  internal::async::Outcome<Value> outcome_;
};

/// What a coroutine without a value gives to its caller.
inline CooperativeTask<void> internal::async::TaskPromise<void>::get_return_object() {
  return CooperativeTask<void>(std::coroutine_handle<TaskPromise>::from_promise(*this));
}

}  // namespace ORLFoundation
