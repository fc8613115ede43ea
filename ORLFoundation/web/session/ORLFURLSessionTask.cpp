#include <ORLFoundation/web/session/ORLFURLSessionTask.h>

#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/platform/notification/NSNotificationCenter.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/operation/NSOperationQueue.h>
#include <ORLFoundation/support/diagnostics/ORLFCondition.h>
#include <ORLFoundation/tasks/progress/ORLFProgressItem.h>
#include <ORLFoundation/web/session/ORLFURLSession.h>
#include <ORLFoundation/web/session/internal/TaskFields.h>

#include <algorithm>
#include <utility>

namespace ORLFoundation {

namespace internal::session {

bool TaskFields::isUnderway() const {
  if (state == ORLURLSessionTaskStateRunning || state == ORLURLSessionTaskStateCanceling)
    return true;
  const auto me = std::this_thread::get_id();
  return isStartedElsewhere() ||
         (!handlers.empty() && std::find(handlers.begin(), handlers.end(), me) == handlers.end());
}

}  // namespace internal::session

ORLFURLSessionTask::ORLFURLSessionTask(std::shared_ptr<ORLFURLSession> session,
                                       const std::shared_ptr<NSURLRequest>& request,
                                       Completion completion)
    : ORLFURLSessionTask(std::move(session), request, std::nullopt, std::move(completion)) {}

ORLFURLSessionTask::ORLFURLSessionTask(std::shared_ptr<ORLFURLSession> session,
                                       const std::shared_ptr<NSURLRequest>& request,
                                       std::optional<NSURL> destination, Completion completion)
    : session_(std::move(session)), fields_(std::make_unique<Fields>()) {
  fields_->request = copyOf(request);
  fields_->destinationURL = std::move(destination);
  fields_->completionHandler = std::move(completion);
  fields_->completionQueue = session_->delegateQueue();
}

ORLFURLSessionTask::~ORLFURLSessionTask() = default;

std::shared_ptr<ORLFURLSessionTask> ORLFURLSessionTask::self() {
  return std::static_pointer_cast<ORLFURLSessionTask>(shared_from_this());
}

void ORLFURLSessionTask::resume() {
  {
    const std::lock_guard guard(fields_->lock);
    if (fields_->state != ORLURLSessionTaskStateReady || fields_->isStartedElsewhere()) return;
    fields_->beginStart();
  }
  start();
}

void ORLFURLSessionTask::clearOutcome() {
  fields_->exchange(fields_->taskDestinationError, {});
  fields_->exchange(fields_->taskResponseData, {});
  setTaskResponsePath(std::nullopt);
  setResponse(nullptr);
  setResult(nullptr);
  changeValue("canceled", [this] { fields_->exchange(fields_->canceled, false); });
  const std::lock_guard guard(fields_->lock);
  if (!fields_->completionLock) fields_->completionLock = dispatch_semaphore_create(0);
}

/// What the platform answers before the state is running is held back until it is: an answer that
/// comes at once would find, and leave behind, the wrong state.
void ORLFURLSessionTask::start() {
  struct End {
    ~End() { task.endStart(isRunning); }
    ORLFURLSessionTask& task;
    bool isRunning = false;
  };
  const auto task = self();
  End end{*this};
  clearOutcome();
  const auto asked = request();
  std::shared_ptr<NSURLSessionTask> made;
  if (destinationURL()) {
    made = session_->downloadTaskWithRequest(asked, task);
    if (made) session_->sessionTaskLogDownloadRequest(task, asked);
  } else {
    made = session_->dataTaskWithRequest(asked, task);
    if (made) session_->sessionTaskLogDataRequest(task, asked);
  }
  if (made) {
    changeValue("connection", [&] { fields_->exchange(fields_->connection, made); });
    try {
      made->resume();
    } catch (...) {
      session_->takeReceiver(*made);
      changeValue("connection", [this] { fields_->exchange(fields_->connection, {}); });
      throw;
    }
  }
  if (!connection()) return;
  NSNotificationCenter::defaultCenter()->postNotificationName(
      ORLFURLSessionDidResumeTaskNotification, session_,
      NSDictionary::dictionaryWithEntries({{ORLFURLSessionNotificationUserInfoTaskKey, task}}));
  end.isRunning = true;
}

void ORLFURLSessionTask::endStart(bool isRunning) {
  std::vector<Fields::Held> held;
  dispatch_semaphore_t left;
  const auto change = [&] {
    const std::lock_guard guard(fields_->lock);
    if (isRunning) fields_->state = ORLURLSessionTaskStateRunning;
    if (--fields_->starts > 0) return;
    held.swap(fields_->held);
    // Those who waited for a retry that cannot be sent have nothing to wait for.
    if (!isRunning && fields_->waiters > 0) left = fields_->completionLock;
  };
  if (isRunning) {
    changeValue("state", change);
  } else {
    change();
  }
  if (left) dispatch_semaphore_signal(left);
  for (const Fields::Held& completion : held)
    session_->performRouted([&] { complete(completion.task, completion.error); });
}

void ORLFURLSessionTask::cancel() {
  if (state() != ORLURLSessionTaskStateRunning) return;
  std::shared_ptr<NSURLSessionTask> running;
  const auto change = [&] {
    const std::lock_guard guard(fields_->lock);
    if (fields_->state != ORLURLSessionTaskStateRunning) return;
    fields_->canceled = true;
    fields_->state = ORLURLSessionTaskStateCanceling;
    running = fields_->connection;
  };
  changeValue("canceled", [&] { changeValue("state", change); });
  if (running) running->cancel();
}

/// A signal wakes one thread, which wakes the next one when it leaves. Who leaves last clears the
/// lock, so that nobody is left with one that no end of an exchange signals.
void ORLFURLSessionTask::waitUntilFinished() {
  bool wasWoken = false;
  dispatch_semaphore_t completed;
  for (;;) {
    {
      const std::lock_guard guard(fields_->lock);
      if (wasWoken) --fields_->waiters;
      if (!fields_->isUnderway()) {
        if (fields_->waiters == 0) {
          fields_->completionLock = nullptr;
          return;
        }
        break;
      }
      if (!fields_->completionLock) fields_->completionLock = dispatch_semaphore_create(0);
      completed = fields_->completionLock;
      ++fields_->waiters;
    }
    dispatch_semaphore_wait(completed, DISPATCH_TIME_FOREVER);
    wasWoken = true;
  }
  if (wasWoken) dispatch_semaphore_signal(completed);
}

void ORLFURLSessionTask::forwardDownload(const std::shared_ptr<NSURLRequest>& request,
                                         std::optional<NSURL> download, Completion completion) {
  auto next = copyOf(request);
  bool isForwarded = false;
  const auto change = [&] {
    const std::lock_guard guard(fields_->lock);
    isForwarded = fields_->state == ORLURLSessionTaskStateRunning;
    if (!isForwarded) return;
    fields_->completionHandler.swap(completion);
    fields_->request.swap(next);
    fields_->destinationURL.swap(download);
    fields_->state = ORLURLSessionTaskStateReady;
  };
  changeValue("request",
              [&] { changeValue("destinationURL", [&] { changeValue("state", change); }); });
  ORLFConditionAssert(isForwarded, "state == ORLURLSessionTaskStateRunning",
                      "This should only be called for running tasks");
}

void ORLFURLSessionTask::forwardCompletion(const std::shared_ptr<NSURLRequest>& request,
                                           const Completion& /*completion*/) {
  forwardDownload(request, std::nullopt, completionHandler());
}

void ORLFURLSessionTask::forward(const std::shared_ptr<NSURLRequest>& request) {
  forwardCompletion(request, completionHandler());
}

const NSKeyTable& ORLFURLSessionTask::keyTable() const {
  using Task = ORLFURLSessionTask;
  static const NSKeyTable table(
      NSObject::keyTable(),
      {
          NSKey::readOnly<&Task::canceled>("canceled"),
          NSKey::readOnly<&Task::connection>("connection"),
          NSKey::readWrite<&Task::destinationURL, &Task::setDestinationURL>("destinationURL"),
          NSKey::readWrite<&Task::downloadProgressItem, &Task::setDownloadProgressItem>(
              "downloadProgressItem"),
          NSKey::readOnly<&Task::failures>("failures"),
          NSKey::readWrite<&Task::request, &Task::setRequest>("request"),
          NSKey::readWrite<&Task::response, &Task::setResponse>("response"),
          NSKey::readWrite<&Task::result, &Task::setResult>("result"),
          NSKey::readOnly<&Task::state>("state"),
          NSKey::readWrite<&Task::uploadProgressItem, &Task::setUploadProgressItem>(
              "uploadProgressItem"),
      });
  return table;
}

}  // namespace ORLFoundation
