/// Keeps signals from the calling thread, and for good from the threads that it begins meanwhile,
/// since they take over what is kept from it: the program's handlers run on its own threads, and a
/// connection or pipe that its other end has cut off ends nothing.
///
///     const NoSignals noSignals;
///     std::thread(work).detach();
#pragma once

#include <pthread.h>
#include <csignal>

namespace ORLFoundation::internal::base {

class NoSignals {
 public:
  NoSignals() noexcept {
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before_);
  }
  ~NoSignals() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
  NoSignals(const NoSignals&) = delete;
  NoSignals& operator=(const NoSignals&) = delete;

 private:
  sigset_t before_{};
};

}  // namespace ORLFoundation::internal::base
