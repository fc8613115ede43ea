/// Template images: a picture in one color, whose opacity is the darkness of another picture.
///
///     const CGImageRef icon =
///         ORLFCGImageRefCreateTemplateImageWithColor(scan, CGColor::colorWithRed(0, 0, 1, 1));
///
/// The darkest point of the source gets the full opacity of the color, and white gets none.
#pragma once

#include <ORLFoundation/platform/image/CGColor.h>
#include <ORLFoundation/platform/image/CGImage.h>

#include <cstddef>

namespace ORLFoundation {

/// `ORLFCGImageRefCreateTemplateImageWithColor`  With a threshold of 0.
[[nodiscard]] CGImageRef ORLFCGImageRefCreateTemplateImageWithColor(const CGImageRef& image,
                                                                    const CGColorRef& color);

/// `ORLFCGImageRefCreateTemplateImageWithColorAndThreshold`  Draws the image over white and takes
/// the darkness of each pixel from the lowest of its three components. A threshold strictly between
/// 0 and 1 takes that part of full darkness away first, so that light noise vanishes; any other is
/// passed over. The result has the alpha first, not premultiplied (`kCGImageAlphaFirst`), and owns
/// its pixels. nil for a nil image, and without memory for the pixels.
///
/// A color of two components is gray and alpha, one of four red, green, blue and alpha; one of any
/// other count, and nil, is white, with its last component, if it has one, as alpha.
///
/// Rounding goes to the nearest number from 0 to 255, halves away from 0. A source that is white
/// all over has no darkest point, and its alpha 0 / 0: not-a-number becomes 0, so that the image is
/// clear.
[[nodiscard]] CGImageRef ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(
    const CGImageRef& image, const CGColorRef& color, double threshold);

/// `ORLFReleaseDataProviderData`  Gives back what `std::malloc` or `std::calloc` gave: the release
/// callback of the provider of a template image.
void ORLFReleaseDataProviderData(void* info, const void* data, std::size_t size);

}  // namespace ORLFoundation
