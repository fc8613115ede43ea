/// A mutex that is mostly held for less time than it takes to sleep and to be woken: who waits for
/// it tries some times before it sleeps.
///
///     BriefLock<std::mutex> lock;
///     const std::lock_guard guard(lock);
#pragma once

namespace ORLFoundation::internal::base {

template <class Mutex>
class BriefLock {
 public:
  void lock() {
    constexpr int kTries = 100;
    for (int left = kTries; left > 0; --left)
      if (mutex_.try_lock()) return;
    mutex_.lock();
  }
  void unlock() { mutex_.unlock(); }

 private:
  Mutex mutex_;
};

}  // namespace ORLFoundation::internal::base
