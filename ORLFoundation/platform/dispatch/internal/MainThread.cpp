
#include <ORLFoundation/platform/dispatch/internal/MainThread.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/internal/Queue.h>
#include <ORLFoundation/platform/dispatch/internal/QueueFrame.h>
#include <ORLFoundation/platform/log/NSLog.h>
#include <ORLFoundation/platform/log/ORLFFatalError.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <utility>

namespace ORLFoundation::internal::dispatch {
namespace {

constexpr std::int64_t kNeverServed = -1;

// 0: nobody claims to be the main thread.
std::atomic<::pthread_t> claimant{0};
std::atomic<int> serving{0};
std::atomic<std::int64_t> lastServed{kNeverServed};
std::atomic<std::int64_t> patience{5'000'000'000};

/// A call that one thread waits for and the main thread makes.
class AwaitedCall {
 public:
  AwaitedCall(void (*call)(void*), void* argument)
      : call_(call), argument_(argument), outer_(innermostFrame()) {}

  /// On the main thread.
  void run() {
    {
      const std::lock_guard guard(lock_);
      if (state_ != State::waiting) return;
      state_ = State::running;
    }
    {
      const InQueue inside(dispatch_get_main_queue().get(), outer_);
      try {
        call_(argument_);
      } catch (...) {
        failure_ = std::current_exception();
      }
    }
    const std::lock_guard guard(lock_);
    state_ = State::done;
    changed_.notify_one();
  }

  /// Until it is done.
  void wait() {
    std::unique_lock guard(lock_);
    changed_.wait(guard, [this] { return state_ == State::done; });
  }
  /// Answers whether the call has begun before the span is over.
  [[nodiscard]] bool waitToBegin(std::int64_t span) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, std::chrono::nanoseconds(span), [this] {
      return state_ == State::done;
    }) || state_ == State::running;
  }
  /// Answers false when it is too late.
  [[nodiscard]] bool takeBack() {
    const std::lock_guard guard(lock_);
    if (state_ != State::waiting) return false;
    state_ = State::takenBack;
    return true;
  }
  void rethrow() {
    if (failure_) std::rethrow_exception(std::exchange(failure_, nullptr));
  }

 private:
  enum class State : std::uint8_t { waiting, running, done, takenBack };

  void (*const call_)(void*);
  void* const argument_;
  const QueueFrame* const outer_;
  std::mutex lock_;
  std::condition_variable changed_;
  State state_ = State::waiting;
  std::exception_ptr failure_;
};

std::shared_ptr<AwaitedCall> postCall(void (*call)(void*), void* argument) {
  auto awaited = std::make_shared<AwaitedCall>(call, argument);
  mainLoop()->post([awaited] { awaited->run(); });
  return awaited;
}

/// How long an offered call may wait.
std::int64_t spanOfOffer() {
  if (serving > 0) return patience;
  const std::int64_t last = lastServed;
  if (last == kNeverServed) return 0;
  return std::max<std::int64_t>(last + patience - realNow(), 0);
}

}  // namespace

bool isMainThread() noexcept {
  thread_local const bool isFirst = ::getpid() == ::gettid();
  const ::pthread_t claim = claimant.load(std::memory_order_acquire);
  return claim == 0 ? isFirst : claim == ::pthread_self();
}

const std::shared_ptr<Loop>& mainLoop() {
  static const auto& loop = *new auto(std::make_shared<Loop>());
  return loop;
}

MainThreadClaim::MainThreadClaim() {
  ::pthread_t nobody = 0;
  if (!claimant.compare_exchange_strong(nobody, ::pthread_self()))
    throw NSException(NSGenericException, "another thread is the main thread");
}

MainThreadClaim::~MainThreadClaim() { claimant = 0; }

ServingMain::ServingMain() noexcept { ++serving; }

ServingMain::~ServingMain() {
  lastServed = realNow();
  --serving;
  // What a pump has seen and not run is not lost to a bridge.
  if (mainLoop()->isBridged()) mainLoop()->wake();
}

std::int64_t setMainThreadPatience(std::int64_t nanoseconds) noexcept {
  return patience.exchange(nanoseconds);
}

void runOnMainThread(void (*call)(void*), void* argument) {
  const auto awaited = postCall(call, argument);
  bool isLogged = false;
  while (!isLogged && !awaited->waitToBegin(patience)) {
    if (serving > 0) continue;  // It is at other work.
    NSLog("A thread waits for the main thread, which nobody serves.");
    isLogged = true;
  }
  awaited->wait();
  awaited->rethrow();
}

bool offerToMainThread(void (*call)(void*), void* argument) {
  const std::int64_t span = spanOfOffer();
  if (span == 0) return false;
  const auto awaited = postCall(call, argument);
  if (!awaited->waitToBegin(span) && awaited->takeBack()) return false;
  awaited->wait();
  awaited->rethrow();
  return true;
}

MainQueue::MainQueue() : Queue("main") { mainLoop()->setQueue(this); }

void MainQueue::async(dispatch_block_t block) { mainLoop()->post(std::move(block)); }

void MainQueue::after(std::int64_t due, dispatch_block_t block) {
  const auto call = std::make_shared<TimedCall>();
  call->kind = TimedKind::item;
  call->modes.emplace_back(kCommonModes);
  call->run = std::move(block);
  mainLoop()->schedule(call, due);
}

void MainQueue::run(void (*call)(void*), void* argument) {
  if (isMainThread() || isWithinQueue(this))
    ORLFFatalError("dispatch_sync called on the main queue by the main thread", __FILE__, __LINE__);
  runOnMainThread(call, argument);
}

}  // namespace ORLFoundation::internal::dispatch
