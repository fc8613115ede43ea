

#include <ORLFoundation/platform/image/CGImageDrawing.h>

#include <algorithm>

namespace ORLFoundation::internal::image {
namespace {

enum class Mixing { kOpaque, kPremultiplied, kStraight };

/// x / 255 to the nearest whole number; exact for products of two bytes.
constexpr unsigned divideBy255(unsigned x) { return (x + 128 + ((x + 128) >> 8)) >> 8; }

template <Mixing mixing>
constexpr std::uint8_t overWhite(unsigned color, unsigned alpha) {
  if constexpr (mixing == Mixing::kOpaque) return static_cast<std::uint8_t>(color);
  // A premultiplied color is at most its alpha; more than that is cut off at white.
  if constexpr (mixing == Mixing::kPremultiplied)
    return static_cast<std::uint8_t>(std::min(255U, color + 255 - alpha));
  return static_cast<std::uint8_t>(255 - divideBy255((255 - color) * alpha));
}

/// `color` is the place of red in a pixel, `alpha` that of the opacity.
template <Mixing mixing, std::size_t color, std::size_t alpha>
void drawRow(std::span<const std::uint8_t> from, std::uint8_t* to) {
  for (std::size_t i = 0; i < from.size(); i += 4) {
    to[i] = 255;
    to[i + 1] = overWhite<mixing>(from[i + color], from[i + alpha]);
    to[i + 2] = overWhite<mixing>(from[i + color + 1], from[i + alpha]);
    to[i + 3] = overWhite<mixing>(from[i + color + 2], from[i + alpha]);
  }
}

}  // namespace

void drawRowOverWhite(const CGImage& image, std::size_t row, std::span<std::uint8_t> pixels) {
  const std::span<const std::uint8_t> from = image.row(row);
  std::uint8_t* to = pixels.first(from.size()).data();
  switch (image.alphaInfo()) {
    case kCGImageAlphaPremultipliedLast:
      return drawRow<Mixing::kPremultiplied, 0, 3>(from, to);
    case kCGImageAlphaPremultipliedFirst:
      return drawRow<Mixing::kPremultiplied, 1, 0>(from, to);
    case kCGImageAlphaLast:
      return drawRow<Mixing::kStraight, 0, 3>(from, to);
    case kCGImageAlphaFirst:
      return drawRow<Mixing::kStraight, 1, 0>(from, to);
    case kCGImageAlphaNoneSkipFirst:
      return drawRow<Mixing::kOpaque, 1, 0>(from, to);
    case kCGImageAlphaNoneSkipLast:
    case kCGImageAlphaNone:
      return drawRow<Mixing::kOpaque, 0, 3>(from, to);
  }
}

}  // namespace ORLFoundation::internal::image
