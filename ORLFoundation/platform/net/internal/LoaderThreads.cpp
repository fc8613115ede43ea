#include <ORLFoundation/platform/net/internal/LoaderThreads.h>

#include <ORLFoundation/platform/base/NoSignals.h>

#include <curl/curl.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <set>
#include <thread>
#include <utility>
#include <vector>

namespace ORLFoundation::internal::net {
namespace {

/// How long the end of the process waits for threads that are inside of a delegate.
constexpr std::chrono::seconds kPatience{1};

class Threads {
 public:
  void enter(const std::shared_ptr<LoaderWork>& work) {
    const std::lock_guard guard(lock_);
    running_.insert(work);
    ++count_;
  }
  /// The thread has left once it has let go of its work too, which may hold much.
  void leave(std::shared_ptr<LoaderWork> work) {
    std::unique_lock guard(lock_);
    auto kept = running_.extract(running_.find(work));
    guard.unlock();
    kept = {};
    work.reset();
    guard.lock();
    --count_;
    hasLeft_.notify_all();
  }
  void end() {
    if (::getpid() != process_) return;  // A fork has none of the threads.
    std::unique_lock guard(lock_);
    const std::vector<std::shared_ptr<LoaderWork>> works(running_.begin(), running_.end());
    guard.unlock();
    for (const auto& work : works) work->leave();
    guard.lock();
    hasLeft_.wait_for(guard, kPatience, [&] { return count_ == 0; });
  }

 private:
  const pid_t process_ = ::getpid();
  std::mutex lock_;
  std::condition_variable hasLeft_;
  std::size_t count_ = 0;
  /// Twice where work runs again before its thread of before has ended.
  std::multiset<std::shared_ptr<LoaderWork>> running_;
};

Threads* makeThreads() {
  startCurl();
  auto* const threads = new Threads;  // Never destroyed: threads may outlive the end's patience.
  return threads;
}

Threads& threads() {
  static Threads* const threads = makeThreads();
  // Registered after libcurl and OpenSSL have begun, so that it runs before they end.
  [[maybe_unused]] static const int isRegistered = std::atexit([] { threads->end(); });
  return *threads;
}

}  // namespace

void startCurl() {
  static const CURLcode started = curl_global_init(CURL_GLOBAL_DEFAULT);
  static_cast<void>(started);
}

void runOnLoaderThread(const std::shared_ptr<LoaderWork>& work) {
  Threads& all = threads();
  const base::NoSignals noSignals;
  all.enter(work);
  try {
    std::thread([&all, own = work]() mutable {
      own->run();
      all.leave(std::move(own));
    }).detach();
  } catch (...) {
    all.leave(work);
    throw;
  }
}

}  // namespace ORLFoundation::internal::net
