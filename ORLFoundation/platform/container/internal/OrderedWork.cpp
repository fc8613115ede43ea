#include <ORLFoundation/platform/container/internal/OrderedWork.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation::internal::container {

unsigned threadsForWork() { return std::clamp(std::thread::hardware_concurrency(), 1U, 4U); }

OrderedWork::OrderedWork(unsigned threads) {
  for (unsigned i = 0; i < threads; ++i) threads_.emplace_back([this] { run(); });
}

OrderedWork::~OrderedWork() {
  {
    const std::lock_guard guard(lock_);
    isEnding_ = true;
  }
  isGiven_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void OrderedWork::add(std::function<void()> work) {
  {
    const std::lock_guard guard(lock_);
    tasks_.push_back({std::move(work), nullptr, false});
    waiting_.push_back(&tasks_.back());
  }
  isGiven_.notify_one();
}

void OrderedWork::takeFirst() {
  std::unique_lock guard(lock_);
  isDone_.wait(guard, [this] { return tasks_.front().isDone; });
  const std::exception_ptr failure = std::move(tasks_.front().failure);
  tasks_.pop_front();
  guard.unlock();
  if (failure) std::rethrow_exception(failure);
}

void OrderedWork::run() {
  std::unique_lock guard(lock_);
  while (true) {
    isGiven_.wait(guard, [this] { return isEnding_ || !waiting_.empty(); });
    if (isEnding_) return;
    Task& task = *waiting_.front();
    waiting_.pop_front();
    guard.unlock();
    std::exception_ptr failure;
    try {
      task.work();
    } catch (...) {
      failure = std::current_exception();
    }
    guard.lock();
    task.failure = std::move(failure);
    task.isDone = true;
    isDone_.notify_one();
  }
}

}  // namespace ORLFoundation::internal::container
