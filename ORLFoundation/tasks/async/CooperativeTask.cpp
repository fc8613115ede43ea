#include <ORLFoundation/tasks/async/CooperativeTask.h>

#include <ORLFoundation/platform/dispatch/dispatch_semaphore.h>
#include <ORLFoundation/platform/value/NSException.h>

namespace ORLFoundation::internal::async {
namespace {

/// Where the loop of this thread finds what it resumes next; null outside of one.
thread_local std::coroutine_handle<>* nextOfThread = nullptr;

}  // namespace

void run(std::coroutine_handle<> first) {
  std::coroutine_handle<> next = first;
  std::coroutine_handle<>* const outer = std::exchange(nextOfThread, &next);
  while (next) std::exchange(next, nullptr).resume();
  nextOfThread = outer;
}

void runNext(std::coroutine_handle<> next) noexcept { *nextOfThread = next; }

void raiseAwaitedTask() {
  throw NSException(NSInvalidArgumentException, "the task was awaited or moved before");
}

void Continuation::resume() const {
  const std::shared_ptr<CooperativeExecutor> executor = context->executor();
  executor->execute([next = coroutine] { run(next); });
}

JobState::JobState(std::shared_ptr<CooperativeContext> context) : context_(std::move(context)) {
  if (!context_) throw NSException(NSInvalidArgumentException, "a job needs a context");
}

void JobState::launch(Driver driver, const std::shared_ptr<CooperativeContext>& context) {
  driver.coroutine.promise().context = context;
  Continuation{context.get(), driver.coroutine}.resume();
}

void JobState::whenFinished(std::function<void()> callback) {
  {
    const std::lock_guard guard(lock_);
    if (!isFinished()) return callbacks_.push_back(std::move(callback));
  }
  callback();
}

void JobState::waitUntilFinished() {
  if (isFinished()) return;
  const dispatch_semaphore_t done = dispatch_semaphore_create(0);
  whenFinished([done] { dispatch_semaphore_signal(done); });
  dispatch_semaphore_wait(done, DISPATCH_TIME_FOREVER);
}

void JobState::finish() {
  std::vector<std::function<void()>> callbacks;
  {
    const std::lock_guard guard(lock_);
    isFinished_.store(true, std::memory_order_release);
    callbacks.swap(callbacks_);
  }
  for (const auto& callback : callbacks) callback();
}

}  // namespace ORLFoundation::internal::async
