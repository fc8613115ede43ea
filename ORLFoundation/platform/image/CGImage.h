/// An image in memory: rows of pixels of four bytes each, in the device's red, green and blue, read
/// from a data provider that it shares.
///
///     std::shared_ptr<const NSError> error;
///     const CGDataProviderRef provider = CGDataProvider::providerWithBytes(rgba);
///     const CGImageRef image = CGImage::create({.width = 2,
///                                               .height = 1,
///                                               .bytesPerRow = 8,
///                                               .bitmapInfo = kCGImageAlphaLast,
///                                               .provider = provider},
///                                              &error);
#pragma once

#include <ORLFoundation/platform/image/CGDataProvider.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

namespace ORLFoundation {

/// Where the opacity stands in a pixel, and whether the other three were multiplied by it.
enum CGImageAlphaInfo : std::uint32_t {
  kCGImageAlphaNone = 0,  // three components only; not among the four-byte pixels of this class
  kCGImageAlphaPremultipliedLast = 1,
  kCGImageAlphaPremultipliedFirst = 2,
  kCGImageAlphaLast = 3,
  kCGImageAlphaFirst = 4,
  kCGImageAlphaNoneSkipLast = 5,
  kCGImageAlphaNoneSkipFirst = 6,
};

enum CGColorRenderingIntent : std::int32_t {
  kCGRenderingIntentDefault = 0,
  kCGRenderingIntentAbsoluteColorimetric = 1,
  kCGRenderingIntentRelativeColorimetric = 2,
  kCGRenderingIntentPerceptual = 3,
  kCGRenderingIntentSaturation = 4,
};

/// What `CGImageCreate` takes, less the color space, which is the device's, and the decode array,
/// which there never is.
struct CGImageFields {
  std::size_t width = 0;
  std::size_t height = 0;
  std::size_t bitsPerComponent = 8;
  std::size_t bitsPerPixel = 32;
  /// At least four a pixel; what is left over in a row is passed over.
  std::size_t bytesPerRow = 0;
  /// One of `CGImageAlphaInfo`, nothing else.
  std::uint32_t bitmapInfo = kCGImageAlphaNone;
  CGDataProviderRef provider;
  bool shouldInterpolate = false;
  CGColorRenderingIntent intent = kCGRenderingIntentDefault;
};

/// The most pixels of one image, 512 MB of them.
inline constexpr std::size_t kCGImageMostPixels = std::size_t{1} << 27;

/// What is wrong with the size of an image, for people; nil for a size that an image may have. Ask
/// before allocating: neither side may be 0, and there is a limit to their product.
[[nodiscard]] std::optional<std::string> CGImageSizeFault(std::uint64_t width,
                                                          std::uint64_t height);

class CGImage final : public NSObject {
 public:
  /// `CGImageCreate`  null for a size that an image may not have, for pixels of another form, and
  /// for a provider with fewer bytes than the rows take; the error says which.
  [[nodiscard]] static std::shared_ptr<const CGImage> create(CGImageFields fields,
                                                             NSErrorSlot error = nullptr);

  [[nodiscard]] std::size_t width() const noexcept { return fields_.width; }
  [[nodiscard]] std::size_t height() const noexcept { return fields_.height; }
  [[nodiscard]] CGImageAlphaInfo alphaInfo() const noexcept {
    return static_cast<CGImageAlphaInfo>(fields_.bitmapInfo);
  }
  [[nodiscard]] const CGImageFields& fields() const noexcept { return fields_; }
  /// The bytes of a row's pixels. The row must be below the height.
  [[nodiscard]] std::span<const std::uint8_t> row(std::size_t row) const noexcept {
    return fields_.provider->bytes().subspan(row * fields_.bytesPerRow, fields_.width * 4);
  }

  [[nodiscard]] std::string className() const override { return "CGImage"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([this] { return std::make_shared<CGImage>(Passkey(), fields_); });
  }

 private:
  struct Passkey {};

 public:
  CGImage(Passkey, CGImageFields fields) : fields_(std::move(fields)) {}

 private:
  const CGImageFields fields_;
};

using CGImageRef = std::shared_ptr<const CGImage>;

}  // namespace ORLFoundation
