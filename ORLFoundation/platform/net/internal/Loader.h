/// The worker of a session: a thread that runs all its transfers through one libcurl multi handle.
/// It is there from the first task until the session dies or is invalidated.
#pragma once

#include <ORLFoundation/platform/net/NSURLSessionConfiguration.h>
#include <ORLFoundation/platform/net/internal/CurlHandle.h>
#include <ORLFoundation/platform/net/internal/CurlMulti.h>
#include <ORLFoundation/platform/net/internal/Delivery.h>
#include <ORLFoundation/platform/net/internal/LoaderThreads.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace ORLFoundation {
class NSError;
class NSOperationQueue;
class NSURLSessionDelegate;
}  // namespace ORLFoundation

namespace ORLFoundation::internal::net {

class LoadingSession;
class LoadingTask;
class LocalLoad;
class Transfer;

struct LoaderOrder {
  enum Kind : std::uint8_t { Start, Stop, Proceed, Invalidate, Close };
  Kind kind = Close;
  std::shared_ptr<LoadingTask> task = nullptr;
  /// Of an invalidation: who is told, and of whom.
  std::shared_ptr<LoadingSession> session = nullptr;
  std::shared_ptr<NSURLSessionDelegate> delegate = nullptr;
};

class Loader final : public LoaderWork, public std::enable_shared_from_this<Loader> {
 public:
  Loader(std::shared_ptr<NSURLSessionConfiguration> configuration,
         std::shared_ptr<NSOperationQueue> delegateQueue);
  ~Loader() override;

  /// Any thread; orders are done in turn. Throws `std::system_error` where the first one gets no
  /// thread.
  void give(LoaderOrder order);
  void run() override;
  void leave() override;

  [[nodiscard]] const NSURLSessionConfiguration& configuration() const noexcept {
    return *configuration_;
  }
  [[nodiscard]] Delivery& delivery() const noexcept { return *delivery_; }

  // For transfers, on the loader's thread.
  [[nodiscard]] CURLM* multi() const noexcept { return multi_->get(); }
  /// What the handles of requests are copied from.
  [[nodiscard]] const CurlPattern& pattern() const noexcept { return *pattern_; }
  /// A transfer is to be asked at this time whether it is due.
  void askAt(std::chrono::steady_clock::time_point time) noexcept;
  /// Ends the task's transfer, for which there is no memory, soon: nothing may end while it begins.
  void cannotSend(std::shared_ptr<LoadingTask> task);
  /// Ends the task's transfer and destroys it.
  void finish(const std::shared_ptr<LoadingTask>& task, std::shared_ptr<const NSError> error);

 private:
  /// What runs and waits at one server.
  struct Server {
    std::size_t running = 0;
    std::list<std::shared_ptr<LoadingTask>> waiting;
  };

  void wake() noexcept;
  [[nodiscard]] bool hasMore();
  [[nodiscard]] bool hasOrders();
  [[nodiscard]] bool isDone() const noexcept;
  [[nodiscard]] bool mayEnd();
  void doOrders();
  void doOrder(const LoaderOrder& order);
  void start(const std::shared_ptr<LoadingTask>& task);
  void admit(Transfer& transfer);
  void leaveServer(const Transfer& transfer);
  [[nodiscard]] std::size_t mostAtOnce(const std::string& origin) const noexcept;
  void endTransfers();
  void stepLocalLoads();
  void endSilentOnes();
  void tellInvalidation();
  [[nodiscard]] bool fallAsleep();
  void sleep();
  void openMulti();
  void closeMulti();

  const std::shared_ptr<const NSURLSessionConfiguration> configuration_;
  const std::shared_ptr<Delivery> delivery_;

  std::mutex lock_;
  std::vector<LoaderOrder> orders_;
  bool hasThread_ = false;
  bool isLeaving_ = false;
  bool isAsleep_ = false;  ///< Whether an order has to wake the thread.

  // The loader's thread alone.
  std::optional<CurlMulti> multi_;      ///< While the thread runs; anybody may wake it that sleeps.
  std::optional<CurlPattern> pattern_;  ///< While the thread runs, too.
  std::vector<LoaderOrder> taken_;      ///< Orders that are being done.
  bool isClosed_ = false;
  bool isInvalidated_ = false;
  std::vector<LoaderOrder> invalidations_;
  std::unordered_map<const LoadingTask*, std::unique_ptr<Transfer>> transfers_;
  std::map<std::string, Server> servers_;
  std::vector<LocalLoad*> localLoads_;
  std::vector<std::shared_ptr<LoadingTask>> unsent_;  ///< Tasks that cannot be sent.
  std::chrono::steady_clock::time_point lookedAt_;    ///< When sockets were last asked for news.
  std::chrono::steady_clock::time_point nextQuestion_ =
      std::chrono::steady_clock::time_point::max();
};

}  // namespace ORLFoundation::internal::net
