#include <ORLFoundation/platform/container/internal/Pieces.h>

namespace ORLFoundation::internal::container {

std::size_t mostPiecesOf(std::size_t bytes) {
  constexpr std::size_t kMostAtHand = std::size_t{128} << 20;
  return std::clamp<std::size_t>(kMostAtHand / (2 * bytes), 1, std::size_t{2} * threadsForWork());
}

}  // namespace ORLFoundation::internal::container
