#include <ORLFoundation/platform/events/internal/SettledTracker.h>

#include <sys/inotify.h>

namespace ORLFoundation::internal::events {

bool SettledTracker::take(std::uint32_t mask) noexcept {
  if ((mask & IN_OPEN) != 0) ++open_;
  if ((mask & IN_MODIFY) != 0) isWritten_ = true;
  if ((mask & IN_CLOSE) == 0) return false;
  const bool isKnown = open_ > 0;
  const bool isSettled = (mask & IN_CLOSE_WRITE) != 0 && (isWritten_ || !isKnown);
  if (isKnown && --open_ == 0) isWritten_ = false;
  return isSettled;
}

}  // namespace ORLFoundation::internal::events
