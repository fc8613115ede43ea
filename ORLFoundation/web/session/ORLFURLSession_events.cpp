#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/web/session/internal/SessionFields.h>

#include <utility>

namespace ORLFoundation {

template <class Delegate, class Block>
void ORLFURLSession::route(const std::shared_ptr<NSURLSessionTask>& task, const Block& block) {
  const auto session = self();  // whose lock is given back before the last reference goes
  std::shared_ptr<Delegate> receiver;
  const std::lock_guard guard(fields_->tasksLock);
  const auto found = fields_->sessionTasks.find(task->taskIdentifier());
  if (found == fields_->sessionTasks.end()) return;
  receiver = std::dynamic_pointer_cast<Delegate>(found->second);
  if (receiver) block(*receiver);
}

void ORLFURLSession::performRouted(const std::function<void()>& block) {
  const auto session = self();
  const std::lock_guard guard(fields_->tasksLock);
  block();
}

void ORLFURLSession::URLSessionDidBecomeInvalidWithError(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<const NSError>& /*error*/) {
  const auto session = self();
  Receivers left;  // to be let go of outside of the lock
  const std::lock_guard guard(fields_->tasksLock);
  fields_->sessionTasks.swap(left);
}

void ORLFURLSession::URLSessionTaskDidCompleteWithError(
    const std::shared_ptr<NSURLSession>& session, const std::shared_ptr<NSURLSessionTask>& task,
    const std::shared_ptr<const NSError>& error) {
  const auto owner = self();
  Receiver left;
  const std::lock_guard guard(fields_->tasksLock);
  route<NSURLSessionTaskDelegate>(task, [&](NSURLSessionTaskDelegate& receiver) {
    receiver.URLSessionTaskDidCompleteWithError(session, task, error);
  });
  left = takeReceiver(*task);
}

void ORLFURLSession::URLSessionTaskDidSendBodyData(const std::shared_ptr<NSURLSession>& session,
                                                   const std::shared_ptr<NSURLSessionTask>& task,
                                                   const NSURLSessionSentBody& body) {
  route<NSURLSessionTaskDelegate>(task, [&](NSURLSessionTaskDelegate& receiver) {
    receiver.URLSessionTaskDidSendBodyData(session, task, body);
  });
}

void ORLFURLSession::URLSessionDataTaskDidReceiveData(
    const std::shared_ptr<NSURLSession>& session,
    const std::shared_ptr<NSURLSessionDataTask>& dataTask, const NSData& data) {
  route<NSURLSessionDataDelegate>(dataTask, [&](NSURLSessionDataDelegate& receiver) {
    receiver.URLSessionDataTaskDidReceiveData(session, dataTask, data);
  });
}

void ORLFURLSession::URLSessionDownloadTaskDidFinishDownloadingToURL(
    const std::shared_ptr<NSURLSession>& session,
    const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask, const NSURL& location) {
  route<NSURLSessionDownloadDelegate>(downloadTask, [&](NSURLSessionDownloadDelegate& receiver) {
    receiver.URLSessionDownloadTaskDidFinishDownloadingToURL(session, downloadTask, location);
  });
}

void ORLFURLSession::URLSessionDownloadTaskDidWriteData(
    const std::shared_ptr<NSURLSession>& session,
    const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask,
    const NSURLSessionWrittenData& data) {
  route<NSURLSessionDownloadDelegate>(downloadTask, [&](NSURLSessionDownloadDelegate& receiver) {
    receiver.URLSessionDownloadTaskDidWriteData(session, downloadTask, data);
  });
}

void ORLFURLSession::URLSessionDownloadTaskDidResumeAtOffset(
    const std::shared_ptr<NSURLSession>& session,
    const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask, std::int64_t didResumeAtOffset,
    std::int64_t expectedTotalBytes) {
  route<NSURLSessionDownloadDelegate>(downloadTask, [&](NSURLSessionDownloadDelegate& receiver) {
    receiver.URLSessionDownloadTaskDidResumeAtOffset(session, downloadTask, didResumeAtOffset,
                                                     expectedTotalBytes);
  });
}

}  // namespace ORLFoundation
