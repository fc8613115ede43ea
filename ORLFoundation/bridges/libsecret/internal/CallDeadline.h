/// The end of an operation's time: what is not finished by then is cancelled.
#pragma once

#include <ORLFoundation/bridges/libsecret/internal/GLibPointers.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace ORLFoundation::internal::libsecret {

class CallDeadline {
 public:
  explicit CallDeadline(std::chrono::milliseconds limit);
  ~CallDeadline();
  CallDeadline(const CallDeadline&) = delete;
  CallDeadline& operator=(const CallDeadline&) = delete;

  /// For every call of the operation.
  [[nodiscard]] GCancellable* cancellable() const { return cancellable_.get(); }
  /// The operation may go on for that long from now.
  void setLimit(std::chrono::milliseconds limit);

 private:
  using Clock = std::chrono::steady_clock;

  void watch();

  const ObjectPointer<GCancellable> cancellable_{g_cancellable_new()};
  std::mutex lock_;
  std::condition_variable changed_;
  Clock::time_point end_;
  bool isDone_ = false;
  std::thread watcher_;
};

}  // namespace ORLFoundation::internal::libsecret
