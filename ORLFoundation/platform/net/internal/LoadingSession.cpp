#include <ORLFoundation/platform/net/internal/LoadingSession.h>

#include <utility>

namespace ORLFoundation::internal::net {

LoadingSession::LoadingSession(const std::shared_ptr<NSURLSessionConfiguration>& configuration,
                               const std::shared_ptr<NSURLSessionDelegate>& delegate,
                               std::shared_ptr<NSOperationQueue> delegateQueue)
    : delegate_(delegate),
      kinds_{dynamic_cast<NSURLSessionTaskDelegate*>(delegate.get()),
             dynamic_cast<NSURLSessionDataDelegate*>(delegate.get()),
             dynamic_cast<NSURLSessionDownloadDelegate*>(delegate.get())},
      loader_(std::make_shared<Loader>(
          configuration ? copyOf(configuration)
                        : NSURLSessionConfiguration::defaultSessionConfiguration(),
          std::move(delegateQueue))) {}

LoadingSession::~LoadingSession() { loader_->give({LoaderOrder::Close}); }

template <class Task>
std::shared_ptr<Task> LoadingSession::makeTask(const std::shared_ptr<NSURLRequest>& request) {
  if (!request) return nullptr;
  auto frozen = copyOf(request);
  auto self = std::static_pointer_cast<LoadingSession>(shared_from_this());
  const std::lock_guard guard(lock_);
  if (isClosed_) return nullptr;
  auto task = std::make_shared<Task>(std::move(self), ++lastIdentifier_, std::move(frozen));
  tasks_.emplace(lastIdentifier_, task);
  return task;
}

std::shared_ptr<NSURLSessionDataTask> LoadingSession::dataTaskWithRequest(
    const std::shared_ptr<NSURLRequest>& request) {
  return makeTask<LoadingDataTask>(request);
}

std::shared_ptr<NSURLSessionDownloadTask> LoadingSession::downloadTaskWithRequest(
    const std::shared_ptr<NSURLRequest>& request) {
  return makeTask<LoadingDownloadTask>(request);
}

void LoadingSession::forget(NSUInteger identifier) {
  const std::lock_guard guard(lock_);
  tasks_.erase(identifier);
}

void LoadingSession::invalidate() {
  {
    const std::lock_guard guard(lock_);
    if (std::exchange(isInvalidated_, true)) return;
  }
  LoaderOrder order{LoaderOrder::Invalidate};
  order.session = std::static_pointer_cast<LoadingSession>(shared_from_this());
  order.delegate = delegate();
  loader_->give(std::move(order));
}

std::vector<std::shared_ptr<LoadingTask>> LoadingSession::close() {
  std::vector<std::shared_ptr<LoadingTask>> tasks;
  const std::lock_guard guard(lock_);
  isClosed_ = true;
  for (const auto& [identifier, task] : tasks_)
    if (auto living = task.lock()) tasks.push_back(std::move(living));
  return tasks;
}

// Closed first: a task that another thread makes meanwhile would not be cancelled.
void LoadingSession::invalidateAndCancel() {
  for (const auto& task : close()) task->stop(task);
  invalidate();
}

// One that began later would end after the last event.
void LoadingSession::finishTasksAndInvalidate() {
  for (const auto& task : close()) task->stopUnlessBegun(task);
  invalidate();
}

}  // namespace ORLFoundation::internal::net
