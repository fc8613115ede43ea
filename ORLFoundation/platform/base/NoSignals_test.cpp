#include <ORLFoundation/platform/base/NoSignals.h>

#include <gtest/gtest.h>
#include <pthread.h>

#include <csignal>
#include <thread>

namespace ORLFoundation::internal::base {
namespace {

/// Whether the calling thread gets the signal.
bool takes(int signal) {
  sigset_t kept;
  ::pthread_sigmask(SIG_SETMASK, nullptr, &kept);
  return ::sigismember(&kept, signal) == 0;
}

TEST(NoSignals, KeepsThemFromThreadsThatBeginMeanwhile) {
  bool givesPipe = true, givesInterrupt = true, isFreeAfterwards = false;
  {
    const NoSignals noSignals;
    EXPECT_FALSE(takes(SIGTERM));
    std::thread([&] {
      givesPipe = takes(SIGPIPE);
      givesInterrupt = takes(SIGINT);
    }).join();
  }
  EXPECT_FALSE(givesPipe);
  EXPECT_FALSE(givesInterrupt);
  std::thread([&] { isFreeAfterwards = takes(SIGPIPE); }).join();
  EXPECT_TRUE(isFreeAfterwards);
}

TEST(NoSignals, LeavesWhatWasKeptBefore) {
  sigset_t one, before;
  ::sigemptyset(&one);
  ::sigaddset(&one, SIGUSR2);
  ::pthread_sigmask(SIG_BLOCK, &one, &before);
  { const NoSignals noSignals; }
  EXPECT_FALSE(takes(SIGUSR2));
  EXPECT_TRUE(takes(SIGTERM));
  ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

}  // namespace
}  // namespace ORLFoundation::internal::base
