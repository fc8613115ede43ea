#include <ORLFoundation/tasks/async/CooperativeContext.h>

#include <ORLFoundation/platform/value/NSException.h>

#include <utility>

namespace ORLFoundation {
namespace {

class QueueExecutor final : public CooperativeExecutor {
 public:
  explicit QueueExecutor(dispatch_queue_t queue) : queue_(std::move(queue)) {}

  void execute(std::function<void()> step) override { dispatch_async(queue_, std::move(step)); }

 private:
  const dispatch_queue_t queue_;
};

}  // namespace

std::shared_ptr<CooperativeExecutor> CooperativeExecutorOnQueue(dispatch_queue_t queue) {
  return std::make_shared<QueueExecutor>(std::move(queue));
}

std::shared_ptr<CooperativeExecutor> CooperativeExecutorOnGlobalQueue() {
  return CooperativeExecutorOnQueue(dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0));
}

CooperativeContext::CooperativeContext(std::shared_ptr<CooperativeExecutor> executor)
    : executor_(std::move(executor)) {
  if (!executor_) throw NSException(NSInvalidArgumentException, "a task needs an executor");
}

void CooperativeContext::checkCancellation() const {
  if (isCancelled()) throw CancellationError();
}

}  // namespace ORLFoundation
