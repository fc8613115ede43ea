// How the members of an array are visited, on one thread or on several.

#include <ORLFoundation/platform/object/NSArray.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace ORLFoundation {
namespace {

/// Members that a thread takes at a time, where there are enough for all.
constexpr std::size_t kMostTaken = 64;
constexpr std::size_t kTakesPerThread = 4;

/// One visit on several threads, the caller's among them.
class ConcurrentVisit {
 public:
  ConcurrentVisit(const std::vector<id>& members, const NSArray::Visitor& visitor)
      : members_(members),
        visitor_(visitor),
        workers_(std::min<std::size_t>(members.size(),
                                       std::max(2U, std::thread::hardware_concurrency()))),
        taken_(std::clamp<std::size_t>(
            members.size() / std::max<std::size_t>(1, workers_ * kTakesPerThread), 1, kMostTaken)) {
  }

  void run() {
    std::vector<std::jthread> helpers;
    startHelpers(helpers);
    takeMembers();
    helpers.clear();  // waits for all of them
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  /// Where the system has no more threads, fewer do the same work.
  void startHelpers(std::vector<std::jthread>& helpers) {
    helpers.reserve(workers_);
    try {
      while (helpers.size() + 1 < workers_) helpers.emplace_back([this] { takeMembers(); });
    } catch (const std::system_error&) {
      workers_ = helpers.size() + 1;
    }
  }

  void takeMembers() noexcept {
    try {
      for (std::size_t begin = next_.fetch_add(taken_); begin < members_.size() && !stopped_;
           begin = next_.fetch_add(taken_)) {
        visit(begin, std::min(begin + taken_, members_.size()));
      }
    } catch (...) {
      stopped_ = true;
      const std::lock_guard lock(failureMutex_);
      if (!failure_) failure_ = std::current_exception();
    }
  }

  void visit(std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end && !stopped_; ++i) {
      bool stop = false;
      visitor_(members_[i], i, stop);
      if (stop) stopped_ = true;
    }
  }

  const std::vector<id>& members_;
  const NSArray::Visitor& visitor_;
  std::size_t workers_;
  std::size_t taken_;
  std::atomic<std::size_t> next_{0};
  std::atomic<bool> stopped_{false};
  std::mutex failureMutex_;
  std::exception_ptr failure_;
};

}  // namespace

void NSArray::enumerateObjectsWithOptions(NSUInteger options, const Visitor& usingBlock) const {
  if ((options & NSEnumerationConcurrent) != 0) {
    ConcurrentVisit(members_, usingBlock).run();
    return;
  }
  const bool isReverse = (options & NSEnumerationReverse) != 0;
  const std::size_t count = members_.size();
  bool stop = false;
  for (std::size_t i = 0; i < count && !stop; ++i) {
    const std::size_t index = isReverse ? count - 1 - i : i;
    usingBlock(members_[index], index, stop);
  }
}

}  // namespace ORLFoundation
