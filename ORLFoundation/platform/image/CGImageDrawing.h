/// What an image looks like on white paper.
#pragma once

#include <ORLFoundation/platform/image/CGImage.h>

#include <cstddef>
#include <cstdint>
#include <span>

namespace ORLFoundation::internal::image {

/// Draws a row of the image over opaque white, into a row of a bitmap context with 8 bits a
/// component and the opacity first (`kCGImageAlphaPremultipliedFirst`): four bytes a pixel, 255,
/// red, green, blue. Colors are mixed to the nearest whole number. The row must be below the
/// image's height, and there must be room for its width.
void drawRowOverWhite(const CGImage& image, std::size_t row, std::span<std::uint8_t> pixels);

}  // namespace ORLFoundation::internal::image
