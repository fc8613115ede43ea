
#include <ORLFoundation/platform/dispatch/internal/Keeper.h>

#include <ORLFoundation/platform/dispatch/internal/WorkerPool.h>
#include <pthread.h>

#include <algorithm>
#include <cstdlib>
#include <system_error>
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

bool Keeper::lookAfter(WorkerPool& pool) {
  {
    const std::lock_guard guard(lock_);
    pools_.push_back(&pool);
  }
  try {
    start();
  } catch (const std::system_error&) {
    const std::lock_guard guard(lock_);
    std::erase(pools_, &pool);
    return false;
  }
  hasNews_ = 1;
  loop_.wake();
  return true;
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
  hasNews_ = 1;
  loop_.wake();
}

void Keeper::start() {
  const std::lock_guard guard(lock_);
  if (isRunning_ || isStopped_) return;
  std::thread([this] { serve(); }).detach();
  isRunning_ = true;
}

/// With nothing but calls and descriptors to mind, only these end the wait.
Deadline Keeper::nextLook(bool isLooking) const {
  if (!isLooking && !loop_.isIdle(kDefaultMode)) return {.isForMore = true, .end = &hasNews_};
  const std::int64_t span = isLooking ? kLookNanoseconds : kIdleNanoseconds;
  return {.at = laterBy(realNow(), span), .isReal = true, .end = &hasNews_};
}

void Keeper::serve() {
  ::pthread_setname_np(::pthread_self(), "orlf-keeper");
  std::int64_t idleSince = realNow();
  while (true) {
    hasNews_ = 0;  // First: what comes from here on is seen or ends the wait.
    const bool isLooking = lookAfterPools();
    const bool ran = loop_.runOnce(kDefaultMode, nextLook(isLooking));
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
