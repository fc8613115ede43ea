#include <ORLFoundation/platform/net/internal/LoadingTask.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/LoadingSession.h>

namespace ORLFoundation::internal::net {

LoadingTask::LoadingTask(std::shared_ptr<LoadingSession> session, NSUInteger identifier,
                         std::shared_ptr<NSURLRequest> request)
    : identifier_(identifier), request_(std::move(request)), session_(std::move(session)) {}

LoadingTask::~LoadingTask() {
  if (session_) session_->forget(identifier_);
}

std::shared_ptr<NSURLSessionTask> LoadingTask::task() {
  if (auto task = dataTask()) return task;
  return downloadTask();
}

std::shared_ptr<NSURLResponse> LoadingTask::response() const {
  const std::lock_guard guard(lock_);
  return response_;
}

void LoadingTask::setResponse(std::shared_ptr<NSURLResponse> response, std::int64_t expected) {
  expected_ = expected;
  const std::lock_guard guard(lock_);
  response_.swap(response);
}

std::pair<std::shared_ptr<LoadingSession>, std::shared_ptr<NSURLSessionDelegate>>
LoadingTask::holders() const {
  const std::lock_guard guard(lock_);
  return {session_, delegate_};
}

std::pair<std::shared_ptr<LoadingSession>, std::shared_ptr<NSURLSessionDelegate>>
LoadingTask::end() {
  const std::lock_guard guard(lock_);
  state_ = State::Ended;
  if (session_) session_->forget(identifier_);
  return {std::move(session_), std::move(delegate_)};
}

void LoadingTask::begin(const std::shared_ptr<LoadingTask>& self) {
  std::shared_ptr<NSURLSessionDelegate> left;  // Outlives the lock.
  const std::lock_guard guard(lock_);
  if (state_ != State::Made) return;
  state_ = State::Running;
  delegate_ = session_->delegate();
  try {
    // Within the lock: who finds the task running finds it ordered too.
    session_->loader().give({LoaderOrder::Start, self});
  } catch (...) {
    state_ = State::Made;
    left.swap(delegate_);
    throw;
  }
}

void LoadingTask::stop(const std::shared_ptr<LoadingTask>& self) {
  std::shared_ptr<LoadingSession> session;
  {
    const std::lock_guard guard(lock_);
    if (state_ == State::Ended || isCancelled_.exchange(true)) return;
    session = session_;
  }
  begin(self);
  session->loader().give({LoaderOrder::Stop, self});
}

void LoadingTask::stopUnlessBegun(const std::shared_ptr<LoadingTask>& self) {
  {
    const std::lock_guard guard(lock_);
    if (state_ != State::Made) return;
    isCancelled_ = true;
  }
  begin(self);
}

}  // namespace ORLFoundation::internal::net
