/// Who hears of one task: its delegate, told through the session's delivery in the order that was
/// promised. Bodies are counted, limited and, for downloads, written here.
#pragma once

#include <ORLFoundation/platform/net/NSURLSessionDelegate.h>
#include <ORLFoundation/platform/net/internal/LoadErrors.h>
#include <ORLFoundation/platform/net/internal/LoadingSession.h>
#include <ORLFoundation/platform/net/internal/LoadingTask.h>
#include <ORLFoundation/platform/net/internal/TemporaryFile.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

namespace ORLFoundation::internal::net {

/// Made and called on the loader's thread.
class Recipient : public std::enable_shared_from_this<Recipient> {
 public:
  enum class Taking : std::uint8_t {
    Taken,
    Later,    ///< Nothing was taken; the loader is given `LoaderOrder::Proceed` when to go on.
    Refused,  ///< Nothing will be; `refusal` says why.
  };

  Recipient(std::shared_ptr<LoadingTask> task, std::shared_ptr<Loader> loader);

  /// Bytes of the request's body that have been sent. Told once for each total.
  void sent(std::int64_t total, std::int64_t expected);
  /// The answer's beginning. Nothing of the body's sending is told afterwards.
  void began(std::shared_ptr<NSURLResponse> response);
  /// Whether the delegate has let the body come, or the end of one without any.
  /// Where not, the loader is given `LoaderOrder::Proceed` when it has.
  [[nodiscard]] bool isOpen() noexcept;
  [[nodiscard]] Taking take(std::span<const std::uint8_t> bytes);
  [[nodiscard]] NSURLError refusal() const noexcept { return refusal_; }
  /// The end, nil for a good one. Session and delegate are let go of when it is told.
  void ended(std::shared_ptr<const NSError> error);

 private:
  class Answer;

  void answered(NSURLSessionResponseDisposition disposition);
  [[nodiscard]] bool hasRoom() noexcept;
  [[nodiscard]] Taking refuse(NSURLError code) noexcept;
  [[nodiscard]] Taking write(std::span<const std::uint8_t> bytes);
  void proceed();
  void tellSent(const NSURLSessionSentBody& body);
  void tellData(const NSData& data, std::int64_t total);
  void tellWritten();
  void tellDownload();
  void tellEnd(const std::shared_ptr<const NSError>& error);

  const std::shared_ptr<Loader> loader_;
  const std::shared_ptr<NSURLSessionDataTask> dataTask_;
  const std::shared_ptr<NSURLSessionDownloadTask> downloadTask_;
  const std::int64_t mostBytes_;
  const std::shared_ptr<LoadingTask> task_;
  std::shared_ptr<NSURLSession> session_;
  std::shared_ptr<NSURLSessionDelegate> delegate_;
  NSURLSessionTaskDelegate* taskDelegate_ = nullptr;
  NSURLSessionDataDelegate* dataDelegate_ = nullptr;
  NSURLSessionDownloadDelegate* downloadDelegate_ = nullptr;

  std::int64_t sent_ = 0;
  bool hasBegun_ = false;
  std::int64_t received_ = 0;
  std::int64_t expected_ = -1;
  NSURLError refusal_ = NSURLErrorUnknown;
  std::unique_ptr<TemporaryFile> file_;
  std::atomic<bool> isOpen_{true};
  std::atomic<bool> isWaiting_{false};         ///< Whether the loader waits for the delegate.
  std::atomic<std::int64_t> undelivered_{0};   ///< Bytes of data events.
  std::atomic<std::int64_t> writtenTotal_{0};  ///< Bytes in the file.
  std::atomic<bool> isWrittenTold_{true};
  std::int64_t toldTotal_ = 0;  ///< Of them, on the delegate's queue.
};

}  // namespace ORLFoundation::internal::net
