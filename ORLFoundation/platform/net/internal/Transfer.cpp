#include <ORLFoundation/platform/net/internal/Transfer.h>

namespace ORLFoundation::internal::net {

LoadTime timeAfter(LoadTime start, double seconds) noexcept {
  constexpr double kLongest = 1e9;  // Some thirty years.
  if (!(seconds < kLongest)) return kNeverDue;
  return start + std::chrono::duration_cast<LoadTime::duration>(
                     std::chrono::duration<double>(seconds < 0 ? 0 : seconds));
}

}  // namespace ORLFoundation::internal::net
