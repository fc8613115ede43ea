
#include <ORLFoundation/platform/dispatch/NSMainQueue.h>

#include <ORLFoundation/platform/dispatch/dispatch_queue.h>
#include <ORLFoundation/platform/dispatch/internal/MainThread.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <atomic>
#include <exception>
#include <future>
#include <optional>
#include <thread>
#include <utility>

namespace ORLFoundation {

using internal::dispatch::Deadline;
using internal::dispatch::kDefaultMode;
using internal::dispatch::mainLoop;
using internal::dispatch::realNow;
using internal::dispatch::ServingMain;

namespace {

std::atomic<int> stopsAsked{0};

bool takeStop() {
  int asked = stopsAsked;
  while (asked > 0)
    if (stopsAsked.compare_exchange_weak(asked, asked - 1)) return true;
  return false;
}

void checkMainThread() {
  if (!internal::dispatch::isMainThread())
    throw NSException(NSGenericException, "only the main thread serves the main queue");
}

void callBlock(void* block) { (*static_cast<const std::function<void()>*>(block))(); }

void* argumentOf(const std::function<void()>& block) {
  return const_cast<std::function<void()>*>(&block);
}

}  // namespace

bool pumpMainQueue(NSTimeInterval timeout) {
  checkMainThread();
  const ServingMain serving;
  const Deadline deadline{
      .at = internal::dispatch::laterBy(realNow(), internal::dispatch::nanosecondsOf(timeout)),
      .isReal = true};
  do {
    if (mainLoop()->runOnce(kDefaultMode, deadline)) return true;
  } while (realNow() < deadline.at);
  return false;
}

void runMainQueue() {
  checkMainThread();
  const ServingMain serving;
  while (!takeStop()) mainLoop()->runOnce(kDefaultMode, {.end = &stopsAsked});
}

void stopMainQueue() {
  ++stopsAsked;
  mainLoop()->wake();
}

struct NSMainQueueThread::State {
  std::atomic<int> isEnded{0};
  std::thread thread;
};

NSMainQueueThread::NSMainQueueThread() : state_(std::make_unique<State>()) {
  std::promise<void> begun;
  std::future<void> hasBegun = begun.get_future();
  state_->thread = std::thread([begun = std::move(begun), &isEnded = state_->isEnded]() mutable {
    std::optional<internal::dispatch::MainThreadClaim> claim;
    try {
      claim.emplace();
    } catch (...) {
      return begun.set_exception(std::current_exception());
    }
    const ServingMain serving;
    begun.set_value();
    while (isEnded == 0) mainLoop()->runOnce(kDefaultMode, {.end = &isEnded});
  });
  try {
    hasBegun.get();
  } catch (...) {
    state_->thread.join();
    throw;
  }
}

NSMainQueueThread::~NSMainQueueThread() {
  state_->isEnded = 1;
  mainLoop()->wake();
  state_->thread.join();
}

void NSPerformOnMainThread(std::function<void()> block, bool waitUntilDone) {
  if (!waitUntilDone) return dispatch_async(dispatch_get_main_queue(), std::move(block));
  if (internal::dispatch::isMainThread()) return block();
  internal::dispatch::runOnMainThread(callBlock, argumentOf(block));
}

bool NSTryOnMainThread(const std::function<void()>& block) {
  if (!internal::dispatch::isMainThread())
    return internal::dispatch::offerToMainThread(callBlock, argumentOf(block));
  block();
  return true;
}

}  // namespace ORLFoundation
