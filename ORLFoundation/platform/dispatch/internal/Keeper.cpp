
#include <ORLFoundation/platform/dispatch/internal/Keeper.h>

#include <ORLFoundation/platform/dispatch/internal/WorkerPool.h>
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <thread>

namespace ORLFoundation::internal::dispatch {
namespace {

constexpr std::int64_t kLookNanoseconds = 2'000'000;
/// How long the thread stays with nothing to mind.
constexpr std::int64_t kIdleNanoseconds = 500'000'000;

}  // namespace

Keeper& Keeper::shared() {
  static Keeper& keeper = []() -> Keeper& {
    auto& made = *new Keeper;
    std::atexit([] { Keeper::shared().stop(); });
    return made;
  }();
  return keeper;
}

void Keeper::schedule(const std::shared_ptr<TimedCall>& call, std::int64_t due) {
  loop_.schedule(call, due);
  start();
}

void Keeper::watch(const std::shared_ptr<Watch>& watch) {
  loop_.watch(watch);
  start();
}

void Keeper::unwatch(const std::shared_ptr<Watch>& watch) { loop_.unwatch(watch); }

void Keeper::lookAfter(WorkerPool& pool) {
  {
    const std::lock_guard guard(lock_);
    pools_.push_back(&pool);
  }
  start();
  loop_.wake();
}

bool Keeper::isRunning() const {
  const std::lock_guard guard(lock_);
  return isRunning_;
}

void Keeper::stop() {
  {
    const std::lock_guard guard(lock_);
    isStopped_ = true;
  }
  loop_.wake();
}

void Keeper::start() {
  const std::lock_guard guard(lock_);
  if (isRunning_ || isStopped_) return;
  isRunning_ = true;
  std::thread([this] { serve(); }).detach();
}

void Keeper::serve() {
  ::pthread_setname_np(::pthread_self(), "orlf-keeper");
  std::int64_t idleSince = realNow();
  while (true) {
    const bool isLooking = lookAfterPools();
    const std::int64_t span = isLooking ? kLookNanoseconds : kIdleNanoseconds;
    const bool ran = loop_.runOnce(kDefaultMode, {.at = laterBy(realNow(), span), .isReal = true});
    if (ran || isLooking) idleSince = realNow();
    if (realNow() - idleSince >= kIdleNanoseconds && mayEnd()) return;
    const std::lock_guard guard(lock_);
    if (!isStopped_) continue;
    isRunning_ = false;
    return;
  }
}

/// Answers whether a pool needs another look soon.
bool Keeper::lookAfterPools() {
  std::vector<WorkerPool*> pools;
  {
    const std::lock_guard guard(lock_);
    std::erase_if(pools_, [](WorkerPool* pool) { return !pool->needsLooks(); });
    pools = pools_;
  }
  for (WorkerPool* pool : pools) pool->look();
  return !pools.empty();
}

bool Keeper::mayEnd() {
  const std::lock_guard guard(lock_);
  if (!pools_.empty() || !loop_.isIdle(kDefaultMode)) return false;
  isRunning_ = false;
  return true;
}

}  // namespace ORLFoundation::internal::dispatch
