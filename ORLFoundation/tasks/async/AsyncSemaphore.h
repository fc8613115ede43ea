/// A counting semaphore for cooperative tasks: a task that waits is parked and holds no thread.
///
///     AsyncSemaphore slots(2);
///     const auto download = [](AsyncSemaphore& free) -> CooperativeTask<> {
///       co_await free.waitUnlessCancelled();   // throws CancellationError
///       retry();
///       free.signal();
///     };
///     const auto executor = CooperativeExecutorOnGlobalQueue();
///     const auto job = CooperativeJob<>::start(download(slots), executor);
///     job->result();
///
/// Waiters go on in the order in which they came. Traps: a wait that is not awaited takes nothing;
/// a wait is not undone when its task throws later, so that each way out of a task has to signal;
/// the process stops when the semaphore is destroyed while a task is parked, when it is made with a
/// negative value and when its value overflows. Safe on any thread.
#pragma once

#include <ORLFoundation/tasks/async/CooperativeContext.h>
#include <ORLFoundation/tasks/async/internal/CooperativePromise.h>

#include <coroutine>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <vector>

namespace ORLFoundation {

class AsyncSemaphore {
 public:
  enum class State : std::uint8_t {
    suspendedUnlessCancelled,  ///< parked by `waitUnlessCancelled`
    suspended,                 ///< parked by `wait`
    pending,                   ///< `waitUnlessCancelled` has begun and is not parked yet
    cancelled,                 ///< the task was cancelled before it was parked
  };
  class Suspension;
  class Wait;
  class WaitUnlessCancelled;
  /// A parked waiter, for display.
  struct Parked {
    const CooperativeContext* context = nullptr;
    State state = State::suspended;
  };

  /// `init(value:)`  How many tasks may pass before the first `signal`.
  explicit AsyncSemaphore(std::int64_t value);
  ~AsyncSemaphore();
  AsyncSemaphore(const AsyncSemaphore&) = delete;
  AsyncSemaphore& operator=(const AsyncSemaphore&) = delete;

  /// `wait()`  To be awaited. Takes one from the value and goes on at once unless that made it
  /// negative; else the task is parked until a `signal` is its turn, cancelled or not.
  [[nodiscard]] Wait wait() noexcept;
  /// `waitUnlessCancelled()`  To be awaited. The same, and throws `CancellationError`, having taken
  /// nothing, when the task is cancelled before or while it is parked. A cancellation that comes
  /// after the `signal` which lets the task go on changes nothing.
  [[nodiscard]] WaitUnlessCancelled waitUnlessCancelled() noexcept;
  /// `signal()`  Adds one to the value and lets the first parked task go on, through its executor.
  /// Whether there was one.
  bool signal();

  /// Negative by the number of parked tasks.
  [[nodiscard]] std::int64_t value() const;
  /// The parked tasks, the newest first.
  [[nodiscard]] std::vector<Parked> suspensions() const;

 private:
  [[nodiscard]] bool takeOrPark(Suspension& suspension);
  [[nodiscard]] bool takeOrPark(WaitUnlessCancelled& wait);
  void cancel(WaitUnlessCancelled& wait);
  void increase();
  void decrease();
  void insertNewest(Suspension& suspension) noexcept;
  void remove(Suspension& suspension) noexcept;

  /// A handler of cancellation runs inside the wait that installs it, which holds the lock.
  mutable std::recursive_mutex lock_;
  std::int64_t value_;
  Suspension* newest_ = nullptr;
  Suspension* oldest_ = nullptr;
};

/// A waiter. It lives in the waiting coroutine, so that parking costs no memory of its own.
class AsyncSemaphore::Suspension {
 public:
  Suspension(const Suspension&) = delete;
  Suspension& operator=(const Suspension&) = delete;

 protected:
  friend AsyncSemaphore;

  explicit Suspension(AsyncSemaphore& semaphore, State state) noexcept
      : semaphore_(semaphore), state_(state) {}
  ~Suspension() = default;

  AsyncSemaphore& semaphore_;
  State state_;
  bool isListed_ = false;
  internal::async::Continuation continuation_;
  Suspension* newer_ = nullptr;
  Suspension* older_ = nullptr;
};

/// What `wait` gives to `co_await`.
class [[nodiscard]] AsyncSemaphore::Wait : private Suspension {
 public:
  explicit Wait(AsyncSemaphore& semaphore) noexcept : Suspension(semaphore, State::suspended) {}

  [[nodiscard]] static bool await_ready() noexcept { return false; }
  template <class Promise>
  [[nodiscard]] bool await_suspend(std::coroutine_handle<Promise> coroutine) {
    continuation_ = {coroutine.promise().context.get(), coroutine};
    return semaphore_.takeOrPark(*this);
  }
  static void await_resume() noexcept {}
};

/// What `waitUnlessCancelled` gives to `co_await`.
class [[nodiscard]] AsyncSemaphore::WaitUnlessCancelled : private Suspension {
 public:
  explicit WaitUnlessCancelled(AsyncSemaphore& semaphore) noexcept
      : Suspension(semaphore, State::pending) {}

  [[nodiscard]] static bool await_ready() noexcept { return false; }
  template <class Promise>
  [[nodiscard]] bool await_suspend(std::coroutine_handle<Promise> coroutine) {
    continuation_ = {coroutine.promise().context.get(), coroutine};
    return semaphore_.takeOrPark(*this);
  }
  void await_resume() {
    handler_.reset();
    if (state_ == State::cancelled) throw CancellationError();
  }

 private:
  friend AsyncSemaphore;

  struct Handler {
    WaitUnlessCancelled* wait;
    void operator()() const { wait->semaphore_.cancel(*wait); }
  };

  std::optional<std::stop_callback<Handler>> handler_;
};

}  // namespace ORLFoundation
