#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/object/NSURLErrors.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>
#include <ORLFoundation/web/session/internal/DownloadFiles.h>
#include <ORLFoundation/web/session/internal/StatusError.h>
#include <ORLFoundation/web/session/internal/TaskFields.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {
namespace {

using internal::session::statusOf;

bool isAuthenticationFailure(const std::shared_ptr<const NSError>& error) {
  return error && error->code() == NSURLErrorUserAuthenticationRequired &&
         error->domain() == NSURLErrorDomain;
}

}  // namespace

void ORLFURLSessionTask::URLSessionTaskDidCompleteWithError(
    const std::shared_ptr<NSURLSession>& /*session*/, const std::shared_ptr<NSURLSessionTask>& task,
    const std::shared_ptr<const NSError>& error) {
  {
    const std::lock_guard guard(fields_->lock);
    if (fields_->starts > 0) {
      fields_->held.push_back({task, error});
      return;
    }
  }
  complete(task, error);
}

void ORLFURLSessionTask::complete(const std::shared_ptr<NSURLSessionTask>& task,
                                  const std::shared_ptr<const NSError>& error) {
  const auto failure = error ? error : taskDestinationError();
  changeValue("connection", [this] { fields_->exchange(fields_->connection, {}); });
  processTaskResponse(task ? task->response() : nullptr, failure);
}

void ORLFURLSessionTask::processTaskResponse(const std::shared_ptr<NSURLResponse>& response,
                                             const std::shared_ptr<const NSError>& error) {
  const bool isRefused = isAuthenticationFailure(error);
  if (error && !isRefused) {
    fail(response, error);
  } else if (!isRefused && statusOf(response) != internal::session::kUnauthorized) {
    succeed(response, error);
  } else {
    askForAuthentication(response, error);
  }
}

void ORLFURLSessionTask::fail(const std::shared_ptr<NSURLResponse>& response,
                              const std::shared_ptr<const NSError>& error) {
  fields_->exchange(fields_->taskResponseData, {});
  internal::session::removeDownload(destinationURL());
  session_->sessionTaskLogError(self(), error, statusOf(response), request());
  endWithResult(nullptr, response, error);
}

void ORLFURLSessionTask::succeed(const std::shared_ptr<NSURLResponse>& response,
                                 const std::shared_ptr<const NSError>& error) {
  const auto data = taskResponseData();
  if (data->length() > 0) {
    session_->sessionTaskLogData(self(), *data, statusOf(response), request());
    endWithResult(data, response, error);
    return;
  }
  const auto destination = destinationURL();
  session_->sessionTaskLogDownload(self(), destination, statusOf(response), request());
  endWithResult(destination, response, error);
}

void ORLFURLSessionTask::askForAuthentication(const std::shared_ptr<NSURLResponse>& response,
                                              const std::shared_ptr<const NSError>& error) {
  changeValue("failures", [this] {
    const std::lock_guard guard(fields_->lock);
    ++fields_->failures;
  });
  internal::session::removeDownload(destinationURL());
  const auto task = self();
  completionQueue()->addOperationWithBlock([task, response, error] {
    task->session_->sessionTaskDidFailAuthentication(
        task, [task, response, error](const std::shared_ptr<NSURLRequest>& request,
                                      const std::shared_ptr<const NSError>& given) {
          if (request) return task->retry(request);
          task->session_->sessionTaskLogError(task, error, statusOf(response), task->request());
          task->endWithResult(nullptr, response, given);
        });
  });
}

/// The start begins with the change of the state, so that no waiter finds the task ready.
void ORLFURLSessionTask::retry(const std::shared_ptr<NSURLRequest>& request) {
  auto next = copyOf(request);
  bool begins = false;
  const auto change = [&] {
    const std::lock_guard guard(fields_->lock);
    fields_->request.swap(next);
    fields_->state = ORLURLSessionTaskStateReady;
    begins = !fields_->isStartedElsewhere();
    if (begins) fields_->beginStart();
  };
  changeValue("request", [&] { changeValue("state", change); });
  if (begins) start();
}

struct ORLFURLSessionTask::Ending {
  Completion handler;
  dispatch_semaphore_t lock;
  std::shared_ptr<NSURLRequest> request;
  std::shared_ptr<const NSError> error;
};

void ORLFURLSessionTask::endWithResult(id result, std::shared_ptr<NSURLResponse> response,
                                       std::shared_ptr<const NSError> error) {
  const auto task = self();
  Ending ending;
  ending.error = std::move(error);
  {
    const std::lock_guard guard(fields_->lock);
    ending.handler = fields_->completionHandler;
    ending.lock = fields_->completionLock;
    ending.request = fields_->request;
  }
  setResponse(std::move(response));
  setResult(std::move(result));
  completionQueue()->addOperationWithBlock(
      [task, ending = std::move(ending)] { task->end(ending); });
}

void ORLFURLSessionTask::end(const Ending& ending) {
  const auto me = std::this_thread::get_id();
  {
    const std::lock_guard guard(fields_->lock);
    fields_->handlers.push_back(me);
  }
  if (ending.handler) ending.handler(self(), ending.error);
  std::shared_ptr<const NSError> before = ending.error;
  dispatch_semaphore_t present;
  changeValue("state", [&] {
    const std::lock_guard guard(fields_->lock);
    auto& handlers = fields_->handlers;
    handlers.erase(std::find(handlers.begin(), handlers.end(), me));
    if (fields_->request == ending.request) {
      fields_->state = ORLURLSessionTaskStateCompleted;
      fields_->error.swap(before);
    }
    present = fields_->completionLock;
  });
  if (ending.lock) dispatch_semaphore_signal(ending.lock);
  // One that was made since the end began.
  if (present && present != ending.lock) dispatch_semaphore_signal(present);
}

}  // namespace ORLFoundation
