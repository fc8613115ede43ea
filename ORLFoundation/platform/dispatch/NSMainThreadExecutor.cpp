
#include <ORLFoundation/platform/dispatch/NSMainThreadExecutor.h>

#include <unistd.h>

#include <future>
#include <mutex>
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

struct Current {
  std::mutex lock;
  std::shared_ptr<NSMainThreadExecutor> executor = std::make_shared<NSHeadlessMainThreadExecutor>();
};

// Never destroyed: what runs while the process ends still finds it.
Current& current() {
  static Current& current = *new Current;
  return current;
}

}  // namespace

bool NSHeadlessMainThreadExecutor::isMainThread() const {
  return mainWorkDepth > 0 || ::getpid() == ::gettid();
}

void NSHeadlessMainThreadExecutor::execute(std::function<void()> block) {
  const MainWork work;
  block();
}

std::shared_ptr<NSMainThreadExecutor> NSCurrentMainThreadExecutor() {
  const std::lock_guard guard(current().lock);
  return current().executor;
}

std::shared_ptr<NSMainThreadExecutor> NSSetMainThreadExecutor(
    std::shared_ptr<NSMainThreadExecutor> executor) {
  if (!executor) executor = std::make_shared<NSHeadlessMainThreadExecutor>();
  const std::lock_guard guard(current().lock);
  return std::exchange(current().executor, std::move(executor));
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
