/// Work that threads of its own do, whose results are taken in the order in which it was given.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <exception>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace ORLFoundation::internal::container {

/// As many threads as processors, 4 at most; each has two pieces of work at hand.
[[nodiscard]] unsigned threadsForWork();

class OrderedWork {
 public:
  explicit OrderedWork(unsigned threads = threadsForWork());
  /// Drops what no thread has begun, and waits for what one has.
  ~OrderedWork();
  OrderedWork(const OrderedWork&) = delete;
  OrderedWork& operator=(const OrderedWork&) = delete;

  /// How much was given and not taken.
  [[nodiscard]] std::size_t count() const noexcept { return tasks_.size(); }
  void add(std::function<void()> work);
  /// Waits for the piece of work that was given first, and throws what it threw.
  void takeFirst();

 private:
  struct Task {
    std::function<void()> work;
    std::exception_ptr failure;
    bool isDone = false;
  };

  void run();

  std::mutex lock_;
  std::condition_variable isGiven_, isDone_;
  // Only the owner changes the list's ends; a deque leaves the other tasks where they are.
  std::deque<Task> tasks_;
  std::deque<Task*> waiting_;
  bool isEnding_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace ORLFoundation::internal::container
