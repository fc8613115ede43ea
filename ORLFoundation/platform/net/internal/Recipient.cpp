#include <ORLFoundation/platform/net/internal/Recipient.h>

#include <ORLFoundation/platform/net/NSURLResponse.h>
#include <ORLFoundation/platform/net/internal/Loader.h>
#include <ORLFoundation/platform/object/NSError.h>

#include <utility>

namespace ORLFoundation::internal::net {
namespace {

/// How many bytes may wait for a delegate before the server has to.
constexpr std::int64_t kMostUndelivered = std::int64_t{4} * 1024 * 1024;

}  // namespace

/// Answers once for a delegate; as its last copy goes, if it never did, with cancelling.
class Recipient::Answer {
 public:
  explicit Answer(std::shared_ptr<Recipient> recipient) : recipient_(std::move(recipient)) {}
  ~Answer() { give(NSURLSessionResponseCancel); }
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;

  void give(NSURLSessionResponseDisposition disposition) {
    if (!isGiven_.exchange(true)) recipient_->answered(disposition);
  }

 private:
  const std::shared_ptr<Recipient> recipient_;
  std::atomic<bool> isGiven_{false};
};

Recipient::Recipient(std::shared_ptr<LoadingTask> task, std::shared_ptr<Loader> loader)
    : loader_(std::move(loader)),
      dataTask_(task->dataTask()),
      downloadTask_(task->downloadTask()),
      mostBytes_(loader_->configuration().maximumBodyLength()),
      task_(std::move(task)) {
  auto [session, delegate] = task_->holders();
  if (delegate) {
    const LoadingSession::DelegateKinds& kinds = session->delegateKinds();
    taskDelegate_ = kinds.ofTasks;
    if (dataTask_) dataDelegate_ = kinds.ofData;
    if (downloadTask_) downloadDelegate_ = kinds.ofDownloads;
  }
  session_ = std::move(session);
  delegate_ = std::move(delegate);
}

void Recipient::sent(std::int64_t total, std::int64_t expected) {
  if (hasBegun_ || total <= sent_) return;
  const NSURLSessionSentBody body{total - std::exchange(sent_, total), total, expected};
  loader_->delivery().deliver([self = shared_from_this(), body] { self->tellSent(body); });
}

void Recipient::tellSent(const NSURLSessionSentBody& body) {
  if (taskDelegate_ && !task_->isCancelled())
    taskDelegate_->URLSessionTaskDidSendBodyData(session_, task_->task(), body);
}

void Recipient::began(std::shared_ptr<NSURLResponse> response) {
  hasBegun_ = true;
  expected_ = response->expectedContentLength();
  task_->setResponse(response, expected_);
  if (dataDelegate_ == nullptr) return;
  isOpen_ = false;
  loader_->delivery().deliver([self = shared_from_this(), response = std::move(response)] {
    if (self->task_->isCancelled()) return;
    const auto answer = std::make_shared<Answer>(self);
    self->dataDelegate_->URLSessionDataTaskDidReceiveResponse(
        self->session_, self->dataTask_, response,
        [answer](NSURLSessionResponseDisposition disposition) { answer->give(disposition); });
  });
}

void Recipient::answered(NSURLSessionResponseDisposition disposition) {
  if (disposition != NSURLSessionResponseAllow) return dataTask_->cancel();
  isOpen_ = true;
  if (isWaiting_.exchange(false)) proceed();
}

void Recipient::proceed() { loader_->give({LoaderOrder::Proceed, task_}); }

Recipient::Taking Recipient::refuse(NSURLError code) noexcept {
  refusal_ = code;
  return Taking::Refused;
}

// The delegate may move between the question and the note that the loader waits: asked again, so
// that one of the two sees the other.
bool Recipient::isOpen() noexcept {
  if (isOpen_) return true;
  isWaiting_ = true;
  return isOpen_;
}

bool Recipient::hasRoom() noexcept {
  if (undelivered_ < kMostUndelivered) return true;
  isWaiting_ = true;
  return undelivered_ < kMostUndelivered / 2;
}

Recipient::Taking Recipient::take(std::span<const std::uint8_t> bytes) {
  if (!isOpen() || !hasRoom()) return Taking::Later;
  const auto count = static_cast<std::int64_t>(bytes.size());
  if (mostBytes_ >= 0 && count > mostBytes_ - received_)
    return refuse(NSURLErrorDataLengthExceedsMaximum);
  if (downloadTask_) return write(bytes);
  received_ += count;
  if (dataDelegate_ == nullptr) {
    task_->setReceived(received_);
    return Taking::Taken;
  }
  if (loader_->delivery().isElsewhere()) undelivered_ += count;
  loader_->delivery().deliver([self = shared_from_this(), data = NSData(bytes), total = received_] {
    self->tellData(data, total);
  });
  return Taking::Taken;
}

void Recipient::tellData(const NSData& data, std::int64_t total) {
  task_->setReceived(total);
  if (!task_->isCancelled())
    dataDelegate_->URLSessionDataTaskDidReceiveData(session_, dataTask_, data);
  if (!loader_->delivery().isElsewhere()) return;
  const auto left = undelivered_ -= static_cast<std::int64_t>(data.length());
  if (left < kMostUndelivered / 2 && isWaiting_.exchange(false)) proceed();
}

Recipient::Taking Recipient::write(std::span<const std::uint8_t> bytes) {
  if (!file_) file_ = TemporaryFile::make();
  if (!file_) return refuse(NSURLErrorCannotCreateFile);
  if (!file_->write(bytes)) return refuse(NSURLErrorCannotWriteToFile);
  received_ += static_cast<std::int64_t>(bytes.size());
  writtenTotal_ = received_;
  // One event at a time waits; it tells of all that is written until it runs.
  if (isWrittenTold_.exchange(false))
    loader_->delivery().deliver([self = shared_from_this()] { self->tellWritten(); });
  return Taking::Taken;
}

void Recipient::tellWritten() {
  isWrittenTold_ = true;
  const std::int64_t total = writtenTotal_;
  const std::int64_t before = std::exchange(toldTotal_, total);
  task_->setReceived(total);
  if (total == before || downloadDelegate_ == nullptr || task_->isCancelled()) return;
  downloadDelegate_->URLSessionDownloadTaskDidWriteData(session_, downloadTask_,
                                                        {total - before, total, expected_});
}

void Recipient::ended(std::shared_ptr<const NSError> error) {
  if (!error && downloadTask_) {
    if (!file_) file_ = TemporaryFile::make();
    if (!file_) {
      error = failure(NSURLErrorCannotCreateFile);
    } else if (!file_->close()) {
      error = failure(NSURLErrorCannotWriteToFile);
    }
  }
  loader_->delivery().deliver(
      [self = shared_from_this(), error = std::move(error)] { self->tellEnd(error); });
}

void Recipient::tellDownload() {
  if (downloadDelegate_)
    downloadDelegate_->URLSessionDownloadTaskDidFinishDownloadingToURL(
        session_, downloadTask_, NSURL::fileURLWithPath(file_->path()));
}

void Recipient::tellEnd(const std::shared_ptr<const NSError>& error) {
  std::shared_ptr<const NSError> told = error;
  if (!told && task_->isCancelled()) told = failure(NSURLErrorCancelled);
  if (!told && downloadTask_) tellDownload();
  file_.reset();
  const auto held = task_->end();
  if (taskDelegate_)
    taskDelegate_->URLSessionTaskDidCompleteWithError(session_, task_->task(), told);
  session_.reset();
  delegate_.reset();
}

}  // namespace ORLFoundation::internal::net
