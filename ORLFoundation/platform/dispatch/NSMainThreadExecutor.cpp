
#include <ORLFoundation/platform/dispatch/NSMainThreadExecutor.h>

#include <ORLFoundation/platform/base/Replaceable.h>
#include <unistd.h>

#include <future>
#include <utility>

namespace ORLFoundation {
namespace {

thread_local int mainWorkDepth = 0;

class MainWork {
 public:
  MainWork() { ++mainWorkDepth; }
  ~MainWork() { --mainWorkDepth; }
  MainWork(const MainWork&) = delete;
  MainWork& operator=(const MainWork&) = delete;
};

constinit internal::base::Replaceable<NSMainThreadExecutor> executors(
    []() -> std::shared_ptr<NSMainThreadExecutor> {
      return std::make_shared<NSHeadlessMainThreadExecutor>();
    });

}  // namespace

bool NSHeadlessMainThreadExecutor::isMainThread() const {
  return mainWorkDepth > 0 || ::getpid() == ::gettid();
}

void NSHeadlessMainThreadExecutor::execute(std::function<void()> block) {
  const MainWork work;
  block();
}

std::shared_ptr<NSMainThreadExecutor> NSCurrentMainThreadExecutor() { return executors.current(); }

std::shared_ptr<NSMainThreadExecutor> NSSetMainThreadExecutor(
    std::shared_ptr<NSMainThreadExecutor> executor) {
  return executors.exchangeMade(std::move(executor));
}

bool NSPerformOnMainThread(std::function<void()> block, bool waitUntilDone) {
  const std::shared_ptr<NSMainThreadExecutor> executor = NSCurrentMainThreadExecutor();
  if (!waitUntilDone) {
    executor->execute(std::move(block));
    return true;
  }
  if (executor->isMainThread()) {
    block();
    return true;
  }
  auto task = std::make_shared<std::packaged_task<void()>>(std::move(block));
  std::future<void> done = task->get_future();
  // The executor holds the task alone: when it drops the block, the wait ends.
  executor->execute([task = std::move(task)] { (*task)(); });
  try {
    done.get();
  } catch (const std::future_error& error) {
    if (error.code() != std::future_errc::broken_promise) throw;
    return false;
  }
  return true;
}

}  // namespace ORLFoundation
