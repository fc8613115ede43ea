
#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <gtest/gtest.h>
#include <tests/support/AllocationCount.h>

#include <array>
#include <cmath>
#include <limits>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

using Bytes = std::vector<std::uint8_t>;

const CGColorRef kBlue = CGColor::colorWithRed(0, 0, 1, 1);

CGImageRef imageOf(const Bytes& rgba, std::size_t width = 0) {
  width = width == 0 ? rgba.size() / 4 : width;
  return CGImage::create({.width = width,
                          .height = rgba.size() / 4 / width,
                          .bytesPerRow = width * 4,
                          .bitmapInfo = kCGImageAlphaLast,
                          .provider = CGDataProvider::providerWithBytes(rgba)});
}

/// A row of opaque gray pixels.
CGImageRef grays(const Bytes& values) {
  Bytes rgba;
  for (const std::uint8_t value : values)
    for (const int byte : {+value, +value, +value, 255})
      rgba.push_back(static_cast<std::uint8_t>(byte));
  return imageOf(rgba);
}

Bytes bytesOf(const CGImageRef& image) {
  const auto bytes = image->fields().provider->bytes();
  return {bytes.begin(), bytes.end()};
}

Bytes alphasOf(const CGImageRef& image) {
  Bytes alphas;
  const Bytes bytes = bytesOf(image);
  for (std::size_t i = 0; i < bytes.size(); i += 4) alphas.push_back(bytes[i]);
  return alphas;
}

TEST(ORLFTemplateImage, TakesItsAlphaFromTheDarknessOfTheSource) {
  const CGImageRef image = ORLFCGImageRefCreateTemplateImageWithColor(
      grays({0, 255, 128, 51}), CGColor::colorWithRed(0.2, 0.4, 0.6, 1));
  EXPECT_EQ(bytesOf(image), (Bytes{255, 51, 102, 153,  //
                                   0, 51, 102, 153,    //
                                   127, 51, 102, 153,  //
                                   204, 51, 102, 153}));
}

TEST(ORLFTemplateImage, HasTheFormOfItsPixels) {
  const CGImageRef image = ORLFCGImageRefCreateTemplateImageWithColor(imageOf(Bytes(24), 3), kBlue);
  const CGImageFields& fields = image->fields();
  EXPECT_EQ(fields.width, 3U);
  EXPECT_EQ(fields.height, 2U);
  EXPECT_EQ(fields.bitsPerComponent, 8U);
  EXPECT_EQ(fields.bitsPerPixel, 32U);
  EXPECT_EQ(fields.bytesPerRow, 12U);
  EXPECT_EQ(fields.bitmapInfo, 4U);
  EXPECT_FALSE(fields.shouldInterpolate);
  EXPECT_EQ(fields.intent, kCGRenderingIntentDefault);
}

TEST(ORLFTemplateImage, GivesTheDarkestPointTheFullAlphaOfTheColor) {
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColor(grays({155, 205, 255}), kBlue)),
            (Bytes{255, 128, 0}));
  const CGColorRef faint = CGColor::colorWithGray(0, 0.5);
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColor(grays({155, 205, 255}), faint)),
            (Bytes{128, 64, 0}));
}

TEST(ORLFTemplateImage, TakesTheLowestComponentForThePixelsLightness) {
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColor(
                imageOf({255, 255, 55, 255, 155, 255, 255, 255, 255, 205, 255, 255}), kBlue)),
            (Bytes{255, 128, 64}));
}

TEST(ORLFTemplateImage, SeesTheSourceOverWhite) {
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColor(
                imageOf({0, 0, 0, 255, 0, 0, 0, 128, 0, 0, 0, 0}), kBlue)),
            (Bytes{255, 128, 0}));
}

struct ThresholdCase {
  std::string_view name;
  double threshold;
  Bytes alphas;  // of the grays 0, 102, 204 and 255
};
const ThresholdCase kThresholdCases[] = {
    {"None", 0, {255, 153, 51, 0}},
    {"TakesTheLightestAway", 0.2, {255, 128, 0, 0}},
    {"TakesAllButTheDarkestAway", 0.6, {255, 0, 0, 0}},
    {"OneIsPassedOver", 1, {255, 153, 51, 0}},
    {"NegativeIsPassedOver", -0.2, {255, 153, 51, 0}},
    {"LargeIsPassedOver", 2, {255, 153, 51, 0}},
    {"NotANumberIsPassedOver", std::nan(""), {255, 153, 51, 0}},
    {"InfinityIsPassedOver", std::numeric_limits<double>::infinity(), {255, 153, 51, 0}},
    {"JustBelowOne", 0x1.fffffffffffffp-1, {255, 0, 0, 0}},
    {"JustAboveZero", 5e-324, {255, 153, 51, 0}},
};

TEST(ORLFTemplateImage, TakesTheThresholdAway) {
  for (const ThresholdCase& row : kThresholdCases)
    EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(
                  grays({0, 102, 204, 255}), kBlue, row.threshold)),
              row.alphas)
        << row.name;
}

TEST(ORLFTemplateImage, ScalesAfterTheThreshold) {
  // Darkness 200 at most: (200 - 51) / 0.8 * 255 / 200.
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(grays({55, 255}), kBlue,
                                                                            0.2)),
            (Bytes{237, 0}));
}

struct ColorCase {
  std::string_view name;
  std::vector<double> components;
  Bytes pixel;  // of a black source
};
const ColorCase kColorCases[] = {
    {"GrayAndAlpha", {0.5, 0.2}, {51, 128, 128, 128}},
    {"RedGreenBlueAndAlpha", {1, 0, 0.5, 0.2}, {51, 255, 0, 128}},
    {"OneComponentIsWhiteWithItAsAlpha", {0.2}, {51, 255, 255, 255}},
    {"ThreeComponentsAreWhite", {0, 0, 0.2}, {51, 255, 255, 255}},
    {"FiveComponentsAreWhite", {0, 0, 0, 0, 0.2}, {51, 255, 255, 255}},
    {"NoComponentsAreOpaqueWhite", {}, {255, 255, 255, 255}},
    {"BeyondTheEnds", {2, -1, 0, 3}, {255, 255, 0, 0}},
    {"NegativeAlpha", {0, 0, 0, -1}, {0, 0, 0, 0}},
    {"NotANumber", {std::nan(""), 0, 0, std::nan("")}, {0, 0, 0, 0}},
};

TEST(ORLFTemplateImage, ReadsColorsByTheCountOfTheirComponents) {
  for (const ColorCase& row : kColorCases) {
    const auto color = std::make_shared<const CGColor>(row.components);
    EXPECT_EQ(bytesOf(ORLFCGImageRefCreateTemplateImageWithColor(grays({0}), color)), row.pixel)
        << row.name;
  }
  EXPECT_EQ(bytesOf(ORLFCGImageRefCreateTemplateImageWithColor(grays({0}), nullptr)),
            (Bytes{255, 255, 255, 255}));
}

TEST(ORLFTemplateImage, OfAWhollyWhiteSourceIsClear) {
  for (const double threshold : {0.0, 0.5})
    EXPECT_EQ(bytesOf(ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(grays({255, 255}),
                                                                             kBlue, threshold)),
              (Bytes{0, 0, 0, 255, 0, 0, 0, 255}))
        << threshold;
  EXPECT_EQ(alphasOf(ORLFCGImageRefCreateTemplateImageWithColor(imageOf({0, 0, 0, 0}), kBlue)),
            (Bytes{0}));
}

TEST(ORLFTemplateImage, OfNilIsNil) {
  EXPECT_EQ(ORLFCGImageRefCreateTemplateImageWithColor(nullptr, kBlue), nullptr);
  EXPECT_EQ(ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(nullptr, kBlue, 0.5), nullptr);
}

TEST(ORLFTemplateImage, IsNilWithoutMemory) {
  const CGImageRef source = grays({0, 100, 255});
  const Bytes expected = bytesOf(ORLFCGImageRefCreateTemplateImageWithColor(source, kBlue));
  CGImageRef image;
  std::size_t failures = 0;
  for (; !image; ++failures) {
    ASSERT_LT(failures, 100U);
    const orlftest::FailingAllocations failing(failures);
    image = ORLFCGImageRefCreateTemplateImageWithColor(source, kBlue);
  }
  EXPECT_GT(failures, 3U);
  EXPECT_EQ(bytesOf(image), expected);
}

TEST(ORLFTemplateImage, AgreesWithTheStepsTakenOneByOne) {
  for (const double threshold : {0.0, 0.1, 0.33, 0.9}) {
    for (unsigned darkest = 0; darkest < 255; darkest += 5) {
      Bytes values;
      for (unsigned value = darkest; value <= 255; ++value)
        values.push_back(static_cast<std::uint8_t>(value));
      const Bytes alphas = alphasOf(ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(
          grays(values), CGColor::colorWithGray(0, 0.7), threshold));
      for (std::size_t i = 0; i < values.size(); ++i) {
        double v = 255 - values[i];
        if (threshold > 0) v = std::max(v - threshold * 255, 0.0) / (1 - threshold);
        ASSERT_EQ(alphas[i], std::round(v * (0.7 * 255) / (255 - darkest))) << darkest << ' ' << i;
      }
    }
  }
}

}  // namespace
}  // namespace ORLFoundation
