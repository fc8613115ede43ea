#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/files/NSURLResourceValues.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>
#include <ORLFoundation/web/session/ORLFHTTPURLResponse.h>
#include <ORLFoundation/web/session/internal/StatusError.h>

#include <utility>

namespace ORLFoundation {
namespace {

constexpr NSTimeInterval kDateTimeout = 5.0;  // in seconds

std::optional<NSDate> modificationDateOf(const NSURL& file, NSErrorSlot error) {
  id value;
  if (!getResourceValue(file, value, NSURLContentModificationDateKey, error)) return std::nullopt;
  return value.as<NSDate>();
}

/// `earlierDate:`  The receiver of two that are equal.
bool isEarlierDate(NSDate receiver, NSDate other) {
  return receiver.compare(other) != NSOrderedDescending;
}

std::shared_ptr<NSURLRequest> headOf(const std::shared_ptr<NSURLRequest>& request) {
  const auto head = std::static_pointer_cast<NSMutableURLRequest>(request->mutableCopy());
  head->setHTTPMethod("HEAD");
  return copyOf<NSURLRequest>(head);
}

}  // namespace

id ORLFURLSession::sendRequest(const std::shared_ptr<NSURLRequest>& request,
                               std::shared_ptr<NSURLResponse>* returningResponse,
                               NSErrorSlot error) {
  const auto configuration = NSURLSessionConfiguration::defaultSessionConfiguration();
  if (request) {
    configuration->setRequestCachePolicy(request->cachePolicy());
    configuration->setTimeoutIntervalForRequest(request->timeoutInterval());
  }
  const auto session = initWithConfiguration(configuration);
  const auto outcome = std::make_shared<std::shared_ptr<const NSError>>();
  const auto task = session->taskWithRequest(
      request, [outcome](const std::shared_ptr<ORLFURLSessionTask>& /*task*/,
                         const std::shared_ptr<const NSError>& failure) { *outcome = failure; });
  task->resume();
  task->waitUntilFinished();
  session->invalidateSessionCancelingTasks(false);
  if (returningResponse != nullptr) *returningResponse = task->response();
  if (error != nullptr) *error = *outcome;
  return task->result();
}

std::optional<NSDate> ORLFURLSession::fetchLastModifiedDateForContentsOfURL(const NSURL& url,
                                                                            NSErrorSlot error) {
  if (url.isFileURL()) return modificationDateOf(url, error);
  const auto request = NSMutableURLRequest::requestWithURL(url);
  request->setHTTPMethod("HEAD");
  request->setTimeoutInterval(kDateTimeout);
  request->setCachePolicy(NSURLRequestReloadIgnoringLocalCacheData);
  std::shared_ptr<NSURLResponse> response;
  sendRequest(copyOf<NSURLRequest>(request), &response, error);
  const auto http = orlfHTTPURLResponse(response);
  if (!http) return std::nullopt;
  auto failure = internal::session::errorForStatusOf(response);
  if (!failure) return orlfLastModifiedDate(*http);
  NSFillErrorSlot(error, std::move(failure));
  return std::nullopt;
}

std::shared_ptr<ORLFURLSessionTask> ORLFURLSession::taskWithRequest(
    const std::shared_ptr<NSURLRequest>& request, Completion completion) {
  return taskWithRequestDestination(request, std::nullopt, std::move(completion));
}

std::shared_ptr<ORLFURLSessionTask> ORLFURLSession::taskWithRequestDestination(
    const std::shared_ptr<NSURLRequest>& request, std::optional<NSURL> destination,
    Completion completion) {
  if (sessionInvalidated()) return nullptr;
  return std::make_shared<ORLFURLSessionTask>(self(), request, std::move(destination),
                                              std::move(completion));
}

std::shared_ptr<ORLFURLSessionTask> ORLFURLSession::taskWithRequestToUpdateFile(
    const std::shared_ptr<NSURLRequest>& request, const std::optional<NSURL>& toUpdateFile,
    Completion completion) {
  const bool isFile = toUpdateFile && toUpdateFile->isFileURL();
  ORLFConditionAssert(isFile, "destinationURL.isFileURL", "destinationURL must be a fileURL");
  if (!isFile) return nullptr;
  const auto date = modificationDateOf(*toUpdateFile, nullptr);
  if (!date || !request)
    return taskWithRequestDestination(request, toUpdateFile, std::move(completion));
  const auto hear = [request = copyOf(request), file = *toUpdateFile, date = *date,
                     completion = std::move(completion)](
                        const std::shared_ptr<ORLFURLSessionTask>& task,
                        const std::shared_ptr<const NSError>& error) {
    const auto http = error ? nullptr : orlfHTTPURLResponse(task->response());
    const auto offered = http ? orlfLastModifiedDate(*http) : std::nullopt;
    if (offered && isEarlierDate(date, *offered)) {
      task->forwardDownload(request, file, completion);
      task->resume();
      return;
    }
    if (!error) task->setResult(file);
    if (completion) completion(task, error);
  };
  return taskWithRequest(headOf(request), hear);
}

}  // namespace ORLFoundation
