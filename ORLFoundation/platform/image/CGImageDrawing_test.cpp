
#include <ORLFoundation/platform/image/CGImageDrawing.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>
#include <vector>

namespace ORLFoundation::internal::image {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes drawn(CGImageAlphaInfo info, const Bytes& pixels) {
  const CGImageRef image = CGImage::create({.width = pixels.size() / 4,
                                            .height = 1,
                                            .bytesPerRow = pixels.size(),
                                            .bitmapInfo = info,
                                            .provider = CGDataProvider::providerWithBytes(pixels)});
  Bytes row(pixels.size());
  drawRowOverWhite(*image, 0, row);
  return row;
}

struct PixelCase {
  std::string_view name;
  CGImageAlphaInfo info;
  Bytes pixel, drawn;
};
const PixelCase kPixelCases[] = {
    {"Opaque", kCGImageAlphaLast, {10, 20, 30, 255}, {255, 10, 20, 30}},
    {"Clear", kCGImageAlphaLast, {10, 20, 30, 0}, {255, 255, 255, 255}},
    {"Half", kCGImageAlphaLast, {0, 100, 255, 128}, {255, 127, 177, 255}},
    {"AlphaFirst", kCGImageAlphaFirst, {128, 0, 100, 255}, {255, 127, 177, 255}},
    {"Premultiplied", kCGImageAlphaPremultipliedLast, {0, 50, 128, 128}, {255, 127, 177, 255}},
    {"PremultipliedFirst",
     kCGImageAlphaPremultipliedFirst,
     {128, 0, 50, 128},
     {255, 127, 177, 255}},
    {"PremultipliedTooBright",
     kCGImageAlphaPremultipliedLast,
     {9, 9, 200, 9},
     {255, 255, 255, 255}},
    {"WithoutAlpha", kCGImageAlphaNoneSkipLast, {1, 2, 3, 0}, {255, 1, 2, 3}},
    {"WithoutAlphaFirst", kCGImageAlphaNoneSkipFirst, {0, 1, 2, 3}, {255, 1, 2, 3}},
};

TEST(CGImageDrawing, MixesEachFormOfPixelWithWhite) {
  for (const PixelCase& row : kPixelCases)
    EXPECT_EQ(drawn(row.info, row.pixel), row.drawn) << row.name;
}

TEST(CGImageDrawing, MixesToTheNearestWholeNumber) {
  Bytes pixels;
  for (unsigned alpha = 0; alpha < 256; ++alpha)
    for (unsigned color = 0; color < 256; ++color)
      for (const unsigned byte : {color, color, color, alpha})
        pixels.push_back(static_cast<std::uint8_t>(byte));
  const Bytes row = drawn(kCGImageAlphaLast, pixels);
  for (std::size_t i = 0; i < row.size(); i += 4) {
    const double color = pixels[i], alpha = pixels[i + 3];
    ASSERT_EQ(row[i + 1], std::lround((color * alpha + 255 * (255 - alpha)) / 255))
        << color << ' ' << alpha;
  }
}

}  // namespace
}  // namespace ORLFoundation::internal::image
