#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/internal/SessionFields.h>

#include <array>
#include <cstdio>
#include <utility>

namespace ORLFoundation {
namespace {

std::shared_ptr<NSOperationQueue> queueOr(std::shared_ptr<NSOperationQueue> queue) {
  if (queue) return queue;
  queue = std::make_shared<NSOperationQueue>();
  queue->setMaxConcurrentOperationCount(1);
  return queue;
}

}  // namespace

std::shared_ptr<ORLFURLSession> ORLFURLSession::initWithConfiguration(
    std::shared_ptr<NSURLSessionConfiguration> configuration,
    std::shared_ptr<ORLFURLSessionDelegate> delegate,
    std::shared_ptr<NSOperationQueue> delegateQueue) {
  if (!configuration) configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  auto made = std::make_shared<ORLFURLSession>(Passkey(), std::move(delegate),
                                               queueOr(std::move(delegateQueue)));
  made->session_ = NSURLSession::sessionWithConfiguration(std::move(configuration), made, nullptr);
  return made;
}

ORLFURLSession::ORLFURLSession(Passkey /*passkey*/,
                               std::shared_ptr<ORLFURLSessionDelegate> delegate,
                               std::shared_ptr<NSOperationQueue> delegateQueue)
    : fields_(std::make_unique<Fields>()) {
  fields_->delegate = std::move(delegate);
  fields_->delegateQueue = std::move(delegateQueue);
}

ORLFURLSession::~ORLFURLSession() = default;

std::shared_ptr<ORLFURLSession> ORLFURLSession::self() {
  return std::static_pointer_cast<ORLFURLSession>(shared_from_this());
}

void ORLFURLSession::invalidateSessionCancelingTasks(bool cancelingTasks) {
  if (cancelingTasks) {
    session_->invalidateAndCancel();
  } else {
    session_->finishTasksAndInvalidate();
  }
  std::shared_ptr<ORLFURLSessionDelegate> before;
  const std::lock_guard guard(fields_->lock);
  fields_->sessionInvalidated = true;
  fields_->delegate.swap(before);
}

std::shared_ptr<NSURLSessionDataTask> ORLFURLSession::dataTaskWithRequest(
    const std::shared_ptr<NSURLRequest>& request, const Receiver& delegate) {
  if (sessionInvalidated()) return nullptr;
  // Within the lock: where another thread invalidates the session the task may end at once.
  const std::lock_guard guard(fields_->tasksLock);
  auto task = session_->dataTaskWithRequest(request);
  if (task) addReceiver(*task, delegate);
  return task;
}

std::shared_ptr<NSURLSessionDownloadTask> ORLFURLSession::downloadTaskWithRequest(
    const std::shared_ptr<NSURLRequest>& request, const Receiver& delegate) {
  if (sessionInvalidated()) return nullptr;
  const std::lock_guard guard(fields_->tasksLock);
  auto task = session_->downloadTaskWithRequest(request);
  if (task) addReceiver(*task, delegate);
  return task;
}

void ORLFURLSession::addReceiver(const NSURLSessionTask& task, const Receiver& receiver) {
  if (!receiver) return;
  Receiver stored = receiver;
  const std::lock_guard guard(fields_->tasksLock);
  fields_->sessionTasks[task.taskIdentifier()].swap(stored);
}

ORLFURLSession::Receiver ORLFURLSession::takeReceiver(const NSURLSessionTask& task) {
  const std::lock_guard guard(fields_->tasksLock);
  const auto found = fields_->sessionTasks.find(task.taskIdentifier());
  if (found == fields_->sessionTasks.end()) return nullptr;
  Receiver receiver = std::move(found->second);
  fields_->sessionTasks.erase(found);
  return receiver;
}

void ORLFURLSession::taskDidFailAuthentication(const std::shared_ptr<ORLFURLSessionTask>& task,
                                               ORLFURLSessionDelegate::Answer callback) {
  auto asked = delegate();
  if (!asked || !asked->hasSessionDidFail()) {
    callback(nullptr,
             NSError::errorWithDomain(NSURLErrorDomain, NSURLErrorUserAuthenticationRequired));
    return;
  }
  delegateQueue()->addOperationWithBlock(
      [session = self(), task, asked = std::move(asked), callback = std::move(callback)] {
        asked->sessionDidFail(session, task->failures(), callback);
      });
}

void ORLFURLSession::sessionTaskDidFailAuthentication(
    const std::shared_ptr<ORLFURLSessionTask>& task, ORLFURLSessionDelegate::Answer callback) {
  taskDidFailAuthentication(task, std::move(callback));
}

std::string ORLFURLSession::uniqueIDForTask(const std::shared_ptr<ORLFURLSessionTask>& task) const {
  std::array<char, 64> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%p-%p", static_cast<const void*>(this),
                    static_cast<const void*>(task.get()));
  return {text.data(), static_cast<std::size_t>(length)};
}

bool ORLFURLSession::sessionInvalidated() const {
  return fields_->read(fields_->sessionInvalidated);
}

std::shared_ptr<ORLFURLSessionDelegate> ORLFURLSession::delegate() const {
  return fields_->read(fields_->delegate);
}

void ORLFURLSession::setDelegate(std::shared_ptr<ORLFURLSessionDelegate> value) {
  fields_->exchange(fields_->delegate, std::move(value));
}

std::shared_ptr<NSOperationQueue> ORLFURLSession::delegateQueue() const {
  return fields_->read(fields_->delegateQueue);
}

void ORLFURLSession::setDelegateQueue(std::shared_ptr<NSOperationQueue> value) {
  fields_->exchange(fields_->delegateQueue, queueOr(std::move(value)));
}

std::shared_ptr<ORLFURLSessionLogger> ORLFURLSession::logger() const {
  return fields_->read(fields_->logger);
}

void ORLFURLSession::setLogger(std::shared_ptr<ORLFURLSessionLogger> value) {
  fields_->exchange(fields_->logger, std::move(value));
}

ORLFURLSession::Receivers ORLFURLSession::sessionTasks() const {
  const std::lock_guard guard(fields_->tasksLock);
  return fields_->sessionTasks;
}

}  // namespace ORLFoundation
