/// Which thread is the main one, its loop, and whether anybody serves it.
#pragma once

#include <ORLFoundation/platform/dispatch/internal/Loop.h>

#include <cstdint>
#include <memory>

namespace ORLFoundation::internal::dispatch {

/// Whether the calling thread is the main one: that of the claim, else the process's first.
[[nodiscard]] bool isMainThread() noexcept;

/// The loop of the main thread, one for the process whichever thread that is. Never destroyed.
[[nodiscard]] const std::shared_ptr<Loop>& mainLoop();

/// Makes the calling thread the main one while it lives; it dies on the same thread. Raises
/// NSGenericException while another claim lives.
class MainThreadClaim {
 public:
  MainThreadClaim();
  ~MainThreadClaim();
  MainThreadClaim(const MainThreadClaim&) = delete;
  MainThreadClaim& operator=(const MainThreadClaim&) = delete;
};

/// The main thread's loop is served while it lives: by a pump, or by a host's loop that is bridged
/// to it.
class ServingMain {
 public:
  ServingMain() noexcept;
  ~ServingMain();
  ServingMain(const ServingMain&) = delete;
  ServingMain& operator=(const ServingMain&) = delete;
};

/// How long others wait for a main thread that nobody serves: before the wait is logged, and before
/// an offered call is taken back. 5 seconds of the system's clock; tests shorten it and put back
/// what they get.
std::int64_t setMainThreadPatience(std::int64_t nanoseconds) noexcept;

/// Runs the call on the main thread, which is another one, while the caller waits. Throws what it
/// throws.
void runOnMainThread(void (*call)(void*), void* argument);
/// The same, but answers false, and the call never runs, when the main thread does not begin with
/// it: at once where nobody has served it for the time of patience, else after that time.
[[nodiscard]] bool offerToMainThread(void (*call)(void*), void* argument);

}  // namespace ORLFoundation::internal::dispatch
