#include <ORLFoundation/platform/dispatch/internal/WorkerPool.h>

#include <ORLFoundation/platform/base/BriefLock.h>
#include <ORLFoundation/platform/dispatch/internal/Keeper.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace ORLFoundation::internal::dispatch {
namespace {

/// How long the process's end waits for work that runs.
constexpr std::chrono::milliseconds kLastWait{50};
/// Looks at which no work waits before they end: to begin with them anew costs more than a look.
constexpr int kMostQuietLooks = 10;
/// How often a worker looks for work, for some microseconds, before it sleeps. To wake it takes as
/// long.
constexpr int kMostGlances = 200;

/// Whether the kernel neither runs the thread nor would if a processor were free. A thread that
/// cannot be asked counts as blocked.
bool isBlocked(int thread) {
  std::array<char, 64> path{};
  std::snprintf(path.data(), path.size(), "/proc/self/task/%d/stat", thread);
  const int file = ::open(path.data(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return true;
  std::array<char, 256> text{};
  const ssize_t size = ::read(file, text.data(), text.size());
  ::close(file);
  const std::string_view line(text.data(), size > 0 ? static_cast<std::size_t>(size) : 0);
  const std::size_t end = line.rfind(") ");  // The name before it may hold anything.
  return end == std::string_view::npos || end + 2 >= line.size() || line[end + 2] != 'R';
}

}  // namespace

WorkerPool::WorkerPool(PoolLimits limits) : limits_(limits) {}

WorkerPool& WorkerPool::shared() {
  static WorkerPool& pool = [&]() -> WorkerPool& {
    auto& made = *new WorkerPool({.width = std::max(1U, std::thread::hardware_concurrency())});
    std::atexit([] { WorkerPool::shared().stop(); });
    return made;
  }();
  return pool;
}

void WorkerPool::submit(Level level, Work* work) {
  std::shared_ptr<Worker> told;
  bool isToBeLookedAfter = false;
  {
    const std::lock_guard guard(lock_);
    List& list = ready_.at(static_cast<std::size_t>(level));
    work->next = nullptr;
    (list.last != nullptr ? list.last->next : list.first) = work;
    list.last = work;
    ++readyCount_;
    noteFirst();
    if (isStopped_) return;
    if (isWatched_ && readyCount_ == 1) return;  // Who watches takes it.
    if (!idle_.empty()) {
      told = std::move(idle_.back());
      idle_.pop_back();
      told->isTold = true;
    } else if (workers_.size() >= limits_.width || !startThread()) {
      isToBeLookedAfter = beginsToNeedLooks();
    }
  }
  if (told) told->hasNews.notify_one();
  if (isToBeLookedAfter) haveItLookedAfter();
}

void WorkerPool::haveItLookedAfter() {
  if (Keeper::shared().lookAfter(*this)) return;
  const std::lock_guard guard(lock_);
  isLookedAfter_ = false;
  if (workers_.empty()) ORLFFatalError("no thread can be made for queues", __FILE__, __LINE__);
}

std::size_t WorkerPool::threadCount() const {
  const std::lock_guard guard(lock_);
  return workers_.size();
}

/// With lock_ held.
bool WorkerPool::beginsToNeedLooks() {
  if (isLookedAfter_ || readyCount_ == 0 || !idle_.empty()) return false;
  isLookedAfter_ = true;
  return true;
}

bool WorkerPool::needsLooks() {
  const std::lock_guard guard(lock_);
  quietLooks_ = readyCount_ > 0 ? 0 : quietLooks_ + 1;
  if (readyCount_ == 0) surplus_ = 0;
  isLookedAfter_ = quietLooks_ < kMostQuietLooks && !isStopped_;
  if (!isLookedAfter_) quietLooks_ = 0;
  return isLookedAfter_;
}

/// With lock_ held. Answers false when the system has no thread.
bool WorkerPool::startThread() {
  const auto worker = std::make_shared<Worker>();
  try {
    std::thread([this, worker] { serve(worker); }).detach();
  } catch (const std::system_error&) {
    return false;
  }
  workers_.push_back(worker);
  return true;
}

/// With lock_ held.
void WorkerPool::noteFirst() {
  const auto first = std::find_if(ready_.begin(), ready_.end(),
                                  [](const List& list) { return list.first != nullptr; });
  first_.store(static_cast<std::size_t>(first - ready_.begin()), std::memory_order_relaxed);
}

/// With lock_ held, and some work there.
Work* WorkerPool::take() {
  for (List& list : ready_) {
    Work* const work = list.first;
    if (work == nullptr) continue;
    list.first = work->next;
    if (list.first == nullptr) list.last = nullptr;
    --readyCount_;
    noteFirst();
    return work;
  }
  return nullptr;
}

bool WorkerPool::takeBack(Level level, Work* work) {
  const std::lock_guard guard(lock_);
  if (!isStopped_) return false;
  List& list = ready_.at(static_cast<std::size_t>(level));
  Work* before = nullptr;
  for (Work* one = list.first; one != nullptr; before = std::exchange(one, one->next)) {
    if (one != work) continue;
    (before != nullptr ? before->next : list.first) = work->next;
    if (list.last == work) list.last = before;
    --readyCount_;
    noteFirst();
    return true;
  }
  return false;
}

/// For a moment, one worker at a time.
void WorkerPool::watchForWork(std::unique_lock<std::mutex>& guard) {
  if (isWatched_ || limits_.width == 1) return;
  isWatched_ = true;
  guard.unlock();
  for (int left = kMostGlances; left > 0 && !hasMoreUrgentThan(kNoLevel); --left) base::rest();
  guard.lock();
  isWatched_ = false;
}

/// Answers false when the thread has been idle for long enough.
bool WorkerPool::waitForWork(std::unique_lock<std::mutex>& guard,
                             const std::shared_ptr<Worker>& self) {
  self->isTold = false;
  idle_.push_back(self);
  const std::chrono::nanoseconds span(limits_.idleNanoseconds);
  if (self->hasNews.wait_for(guard, span, [&] { return self->isTold || isStopped_; })) return true;
  std::erase(idle_, self);
  return false;
}

void WorkerPool::serve(const std::shared_ptr<Worker>& self) {
  ::pthread_setname_np(::pthread_self(), "orlf-worker");
  std::unique_lock guard(lock_);
  self->thread = ::gettid();
  while (!isStopped_) {
    if (readyCount_ == 0) watchForWork(guard);
    if (readyCount_ == 0) {
      if (isStopped_ || !waitForWork(guard, self)) break;
      continue;
    }
    Work* const work = take();
    const bool isToBeLookedAfter = beginsToNeedLooks();
    self->isBusy = true;
    ++self->begun;
    guard.unlock();
    if (isToBeLookedAfter) haveItLookedAfter();
    work->run(work);
    guard.lock();
    self->isBusy = false;
    if (surplus_ > 0) {
      --surplus_;
      break;
    }
  }
  std::erase(workers_, self);
  hasEnded_.notify_all();
}

void WorkerPool::look() {
  std::vector<int> busy;
  {
    const std::lock_guard guard(lock_);
    for (const auto& worker : workers_) {
      if (worker->isBusy && worker->begun == worker->seen) busy.push_back(worker->thread);
      worker->seen = worker->begun;
    }
  }
  const auto blocked = static_cast<std::size_t>(std::count_if(busy.begin(), busy.end(), isBlocked));
  const std::lock_guard guard(lock_);
  if (readyCount_ == 0 || isStopped_) return;
  const std::size_t running = workers_.size() - std::min(workers_.size(), blocked + idle_.size());
  surplus_ = running > limits_.width ? running - limits_.width : 0;
  if (running >= limits_.width) return;
  // Twice as many at each look: what blocked so many is likely to block the next ones too.
  const std::size_t wanted = running == 0 ? workers_.size() + 1 : limits_.width - running;
  const std::size_t room = limits_.most - std::min(limits_.most, workers_.size());
  for (std::size_t left = std::min({wanted, room, readyCount_}); left > 0 && startThread();
       --left) {
  }
}

void WorkerPool::stop() {
  std::unique_lock guard(lock_);
  isStopped_ = true;
  for (const auto& worker : idle_) worker->hasNews.notify_one();
  hasEnded_.wait_for(guard, kLastWait, [&] { return workers_.empty(); });
}

}  // namespace ORLFoundation::internal::dispatch
