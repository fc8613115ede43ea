/// A mutex that is mostly held for less time than it takes to sleep and to be woken: who waits for
/// it tries some times before it sleeps.
///
///     BriefLock<std::mutex> lock;
///     const std::lock_guard guard(lock);
#pragma once

namespace ORLFoundation::internal::base {

/// Some ten nanoseconds that leave the processor's other half its units.
inline void rest() noexcept {
#if defined(__x86_64__) || defined(__i386__)
  __builtin_ia32_pause();
#elif defined(__aarch64__)
  asm volatile("yield");
#endif
}

template <class Mutex>
class BriefLock {
 public:
  void lock() {
    constexpr int kTries = 100;
    for (int left = kTries; left > 0; --left) {
      if (mutex_.try_lock()) return;
      pause();
    }
    mutex_.lock();
  }
  void unlock() { mutex_.unlock(); }

 private:
  /// Tries one upon the other would keep the lock's cache line from its owner.
  static void pause() noexcept {
    constexpr int kRests = 4;
    for (int left = kRests; left > 0; --left) rest();
  }

  Mutex mutex_;
};

}  // namespace ORLFoundation::internal::base
