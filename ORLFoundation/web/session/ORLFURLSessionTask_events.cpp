#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSMutableData.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>
#include <ORLFoundation/web/session/internal/DownloadFiles.h>
#include <ORLFoundation/web/session/internal/StatusError.h>
#include <ORLFoundation/web/session/internal/TaskFields.h>

#include <utility>

namespace ORLFoundation {

bool ORLFURLSessionTask::canceled() const { return fields_->read(fields_->canceled); }

ORLURLSessionTaskState ORLFURLSessionTask::state() const { return fields_->read(fields_->state); }

std::shared_ptr<NSURLRequest> ORLFURLSessionTask::request() const {
  return fields_->read(fields_->request);
}

void ORLFURLSessionTask::setRequest(const std::shared_ptr<NSURLRequest>& value) {
  changeValue("request", [&] { fields_->exchange(fields_->request, copyOf(value)); });
}

std::shared_ptr<NSURLResponse> ORLFURLSessionTask::response() const {
  return fields_->read(fields_->response);
}

void ORLFURLSessionTask::setResponse(std::shared_ptr<NSURLResponse> value) {
  changeValue("response", [&] { fields_->exchange(fields_->response, std::move(value)); });
}

id ORLFURLSessionTask::result() const { return fields_->read(fields_->result); }

void ORLFURLSessionTask::setResult(id value) {
  changeValue("result", [&] { fields_->exchange(fields_->result, std::move(value)); });
}

NSUInteger ORLFURLSessionTask::failures() const { return fields_->read(fields_->failures); }

std::shared_ptr<ORLFProgressItem> ORLFURLSessionTask::downloadProgressItem() const {
  return fields_->read(fields_->downloadProgressItem);
}

void ORLFURLSessionTask::setDownloadProgressItem(std::shared_ptr<ORLFProgressItem> value) {
  changeValue("downloadProgressItem",
              [&] { fields_->exchange(fields_->downloadProgressItem, std::move(value)); });
}

std::shared_ptr<ORLFProgressItem> ORLFURLSessionTask::uploadProgressItem() const {
  return fields_->read(fields_->uploadProgressItem);
}

void ORLFURLSessionTask::setUploadProgressItem(std::shared_ptr<ORLFProgressItem> value) {
  changeValue("uploadProgressItem",
              [&] { fields_->exchange(fields_->uploadProgressItem, std::move(value)); });
}

std::optional<NSURL> ORLFURLSessionTask::destinationURL() const {
  return fields_->read(fields_->destinationURL);
}

void ORLFURLSessionTask::setDestinationURL(std::optional<NSURL> value) {
  changeValue("destinationURL",
              [&] { fields_->exchange(fields_->destinationURL, std::move(value)); });
}

std::shared_ptr<NSURLSessionTask> ORLFURLSessionTask::connection() const {
  return fields_->read(fields_->connection);
}

std::shared_ptr<NSOperationQueue> ORLFURLSessionTask::completionQueue() const {
  if (auto queue = fields_->read(fields_->completionQueue)) return queue;
  auto made = std::make_shared<NSOperationQueue>();
  made->setMaxConcurrentOperationCount(1);
  const std::lock_guard guard(fields_->lock);
  if (!fields_->completionQueue) fields_->completionQueue = made;
  return fields_->completionQueue;
}

void ORLFURLSessionTask::setCompletionQueue(std::shared_ptr<NSOperationQueue> value) {
  fields_->exchange(fields_->completionQueue, std::move(value));
}

ORLFURLSessionTask::Completion ORLFURLSessionTask::completionHandler() const {
  return fields_->read(fields_->completionHandler);
}

void ORLFURLSessionTask::setCompletionHandler(Completion value) {
  Completion late;
  std::shared_ptr<const NSError> error;
  {
    const std::lock_guard guard(fields_->lock);
    if (fields_->state == ORLURLSessionTaskStateCompleted) {
      late = value;
      error = fields_->error;
    }
    fields_->completionHandler.swap(value);
  }
  if (!late) return;
  completionQueue()->addOperationWithBlock(
      [task = self(), late = std::move(late), error] { late(task, error); });
}

std::shared_ptr<NSMutableData> ORLFURLSessionTask::taskResponseData() {
  const std::lock_guard guard(fields_->lock);
  auto& data = fields_->taskResponseData;
  if (!data) data = std::make_shared<NSMutableData>();
  return data;
}

std::optional<std::string> ORLFURLSessionTask::taskResponsePath() const {
  return fields_->read(fields_->taskResponsePath);
}

void ORLFURLSessionTask::setTaskResponsePath(std::optional<std::string> value) {
  fields_->exchange(fields_->taskResponsePath, std::move(value));
}

std::shared_ptr<const NSError> ORLFURLSessionTask::taskDestinationError() const {
  return fields_->read(fields_->taskDestinationError);
}

void ORLFURLSessionTask::URLSessionTaskDidSendBodyData(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionTask>& /*task*/, const NSURLSessionSentBody& body) {
  if (const auto item = uploadProgressItem())
    item->updateValue(static_cast<double>(body.totalBytesSent),
                      static_cast<double>(body.totalBytesExpectedToSend));
}

void ORLFURLSessionTask::URLSessionDataTaskDidReceiveResponse(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionDataTask>& dataTask,
    const std::shared_ptr<NSURLResponse>& /*response*/,
    const NSURLSessionResponseHandler& completionHandler) {
  fields_->exchange(fields_->taskResponseData, {});
  updateDownload(0, dataTask->countOfBytesExpectedToReceive());
  completionHandler(NSURLSessionResponseAllow);
}

void ORLFURLSessionTask::URLSessionDataTaskDidReceiveData(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionDataTask>& dataTask, const NSData& data) {
  taskResponseData()->appendData(data);
  updateDownload(dataTask->countOfBytesReceived(), dataTask->countOfBytesExpectedToReceive());
}

void ORLFURLSessionTask::URLSessionDownloadTaskDidFinishDownloadingToURL(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionDownloadTask>& downloadTask, const NSURL& location) {
  auto error = internal::session::errorForStatusOf(downloadTask->response());
  if (!error) {
    if (auto placed = internal::session::placeDownload(location, destinationURL(), &error)) {
      setDestinationURL(std::move(placed));
      return;
    }
  }
  fields_->exchange(fields_->taskDestinationError, std::move(error));
}

void ORLFURLSessionTask::URLSessionDownloadTaskDidWriteData(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
    const NSURLSessionWrittenData& data) {
  updateDownload(data.totalBytesWritten, data.totalBytesExpectedToWrite);
}

void ORLFURLSessionTask::URLSessionDownloadTaskDidResumeAtOffset(
    const std::shared_ptr<NSURLSession>& /*session*/,
    const std::shared_ptr<NSURLSessionDownloadTask>& /*downloadTask*/,
    std::int64_t didResumeAtOffset, std::int64_t expectedTotalBytes) {
  updateDownload(didResumeAtOffset, expectedTotalBytes);
}

void ORLFURLSessionTask::updateDownload(std::int64_t value, std::int64_t max) {
  if (const auto item = downloadProgressItem())
    item->updateValue(static_cast<double>(value), static_cast<double>(max));
}

}  // namespace ORLFoundation
