/// Async tasks whose waiters can be let go, and threads that wait for them.
#pragma once

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/tasks/async/ORLFAsyncBlockTask.h>
#include <unistd.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace orlftest {

/// Lets go waiters that the task's one signal does not reach.
template <class Task>
class Releasable : public Task {
 public:
  using Task::Task;
  void releaseWaiter() { dispatch_semaphore_signal(Task::completionLock()); }
};

class WorkingTask : public Releasable<ORLFoundation::ORLFAsyncTaskBase> {
 public:
  explicit WorkingTask(std::function<void()> work) : work_(std::move(work)) {}
  void main() override { work_(); }

 private:
  const std::function<void()> work_;
};

/// A thread that waits for something.
class WaitingThread {
 public:
  explicit WaitingThread(std::function<void()> wait)
      : thread_([this, wait = std::move(wait)] {
          number_ = ::gettid();
          wait();
          hasReturned_ = true;
        }) {}
  ~WaitingThread() { thread_.join(); }
  WaitingThread(const WaitingThread&) = delete;
  WaitingThread& operator=(const WaitingThread&) = delete;

  [[nodiscard]] bool hasReturned() const { return hasReturned_; }
  /// Returns when the wait has, or when the kernel says that the thread sleeps.
  void comeToRest() const {
    while (!hasReturned_ && !sleeps()) std::this_thread::yield();
  }

 private:
  [[nodiscard]] bool sleeps() const {
    if (number_ == 0) return false;
    std::ifstream file("/proc/self/task/" + std::to_string(number_) + "/stat");
    std::string line;
    std::getline(file, line);  // Empty when the thread has ended.
    const std::size_t end = line.rfind(") ");
    return end != std::string::npos && line.substr(end + 2, 1) == "S";
  }

  std::atomic<int> number_{0};
  std::atomic<bool> hasReturned_{false};
  std::thread thread_;
};

}  // namespace orlftest
