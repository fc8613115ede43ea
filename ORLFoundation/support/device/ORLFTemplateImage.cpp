
#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <ORLFoundation/platform/image/CGImageDrawing.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <vector>

namespace ORLFoundation {
namespace {

using Pixel = std::array<std::uint8_t, 4>;

/// The nearest byte; not-a-number is 0.
std::uint8_t roundedByte(double value) {
  if (!(value > 0)) return 0;
  return static_cast<std::uint8_t>(std::lround(std::min(value, 255.0)));
}

/// The source as one byte a pixel: the lowest component of each, over white.
struct Lightness {
  std::vector<std::uint8_t> pixels;
  std::uint8_t darkest = 255;
};

Lightness lightnessOf(const CGImage& image) {
  const std::size_t width = image.width();
  Lightness lightness{std::vector<std::uint8_t>(width * image.height())};
  std::vector<std::uint8_t> row(width * 4);
  std::uint8_t* out = lightness.pixels.data();
  for (std::size_t y = 0; y < image.height(); ++y, out += width) {
    internal::image::drawRowOverWhite(image, y, row);
    const std::uint8_t* in = row.data();
    std::uint8_t darkest = lightness.darkest;
    for (std::size_t x = 0; x < width; ++x) {
      const std::uint8_t lowest = std::min({in[4 * x + 1], in[4 * x + 2], in[4 * x + 3]});
      out[x] = lowest;
      darkest = std::min(darkest, lowest);
    }
    lightness.darkest = darkest;
  }
  return lightness;
}

struct TemplateColor {
  std::array<std::uint8_t, 3> components{255, 255, 255};
  double alpha = 255;
};

TemplateColor templateColor(const CGColor* color) {
  TemplateColor result;
  if (color == nullptr || color->components().empty()) return result;
  const std::vector<double>& components = color->components();
  result.alpha = components.back() * 255;
  if (components.size() == 2) result.components.fill(roundedByte(components[0] * 255));
  if (components.size() == 4) {
    for (std::size_t i = 0; i < 3; ++i) result.components[i] = roundedByte(components[i] * 255);
  }
  return result;
}

/// The opacity that a pixel takes from its lightness.
double alphaOf(std::uint8_t lightness, double threshold, double alpha, double scale) {
  double darkness = 255 - lightness;
  if (threshold > 0 && threshold < 1)
    darkness = std::max(darkness - threshold * 255, 0.0) / (1 - threshold);
  return scale == 0 ? 0 : darkness * alpha / scale;
}

/// The pixel that each lightness becomes.
std::array<Pixel, 256> pixelTable(const TemplateColor& color, double threshold,
                                  std::uint8_t darkest) {
  std::array<Pixel, 256> table{};
  for (std::size_t i = 0; i < table.size(); ++i) {
    const double alpha =
        alphaOf(static_cast<std::uint8_t>(i), threshold, color.alpha, 255 - darkest);
    table[i] = {roundedByte(alpha), color.components[0], color.components[1], color.components[2]};
  }
  return table;
}

struct Freed {
  void operator()(Pixel* pixels) const noexcept { std::free(pixels); }
};

/// Throws without memory.
CGImageRef templateImage(const CGImage& image, const CGColor* color, double threshold) {
  const std::size_t pixels = image.width() * image.height();
  std::unique_ptr<Pixel, Freed> buffer(static_cast<Pixel*>(std::calloc(pixels, sizeof(Pixel))));
  if (!buffer) throw std::bad_alloc();
  const Lightness lightness = lightnessOf(image);
  const auto table = pixelTable(templateColor(color), threshold, lightness.darkest);
  for (std::size_t i = 0; i < pixels; ++i) buffer.get()[i] = table[lightness.pixels[i]];
  const auto provider = std::make_shared<CGDataProvider>(
      nullptr, buffer.get(), pixels * sizeof(Pixel), &ORLFReleaseDataProviderData);
  static_cast<void>(buffer.release());
  return CGImage::create({.width = image.width(),
                          .height = image.height(),
                          .bytesPerRow = image.width() * sizeof(Pixel),
                          .bitmapInfo = kCGImageAlphaFirst,
                          .provider = provider});
}

}  // namespace

CGImageRef ORLFCGImageRefCreateTemplateImageWithColor(const CGImageRef& image,
                                                      const CGColorRef& color) {
  return ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(image, color, 0);
}

CGImageRef ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(const CGImageRef& image,
                                                                  const CGColorRef& color,
                                                                  double threshold) {
  if (!image) return nullptr;
  try {
    return templateImage(*image, color.get(), threshold);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

void ORLFReleaseDataProviderData(void* /*info*/, const void* data, std::size_t /*size*/) {
  std::free(const_cast<void*>(data));
}

}  // namespace ORLFoundation
