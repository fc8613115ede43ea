

#include <ORLFoundation/platform/image/CGImage.h>

#include <utility>

namespace ORLFoundation {
namespace {

std::optional<std::string> faultOf(const CGImageFields& fields) {
  if (auto fault = CGImageSizeFault(fields.width, fields.height)) return fault;
  if (fields.bitsPerComponent != 8 || fields.bitsPerPixel != 32)
    return "pixels of " + std::to_string(fields.bitsPerPixel) + " bits, expected 32";
  if (fields.bitmapInfo < kCGImageAlphaPremultipliedLast ||
      fields.bitmapInfo > kCGImageAlphaNoneSkipFirst)
    return "unknown bitmap info " + std::to_string(fields.bitmapInfo);
  const std::size_t bytesOfRow = fields.width * 4;
  if (fields.bytesPerRow < bytesOfRow)
    return "rows of " + std::to_string(fields.bytesPerRow) + " bytes, expected at least " +
           std::to_string(bytesOfRow);
  const std::size_t bytes = fields.provider ? fields.provider->bytes().size() : 0;
  // The last row may end with its last pixel.
  if (bytes < bytesOfRow || (bytes - bytesOfRow) / fields.bytesPerRow < fields.height - 1)
    return std::to_string(bytes) + " bytes, which is less than " + std::to_string(fields.height) +
           " rows take";
  return std::nullopt;
}

}  // namespace

std::optional<std::string> CGImageSizeFault(std::uint64_t width, std::uint64_t height) {
  if (width != 0 && height != 0 && width <= kCGImageMostPixels / height) return std::nullopt;
  return "an image of " + std::to_string(width) + " x " + std::to_string(height) +
         " pixels, expected 1 to " + std::to_string(kCGImageMostPixels) + " of them";
}

CGImageRef CGImage::create(CGImageFields fields, NSErrorSlot error) {
  if (const auto fault = faultOf(fields)) {
    NSFillErrorSlot(error, ORLFErrorDomain, 0, *fault);
    return nullptr;
  }
  return std::make_shared<CGImage>(Passkey(), std::move(fields));
}

}  // namespace ORLFoundation
