
#include <ORLFoundation/platform/image/CGImage.h>

#include <gtest/gtest.h>

#include <limits>

namespace ORLFoundation {
namespace {

CGImageFields fieldsOf(std::size_t width, std::size_t height, std::size_t bytes) {
  return {.width = width,
          .height = height,
          .bytesPerRow = width * 4,
          .bitmapInfo = kCGImageAlphaLast,
          .provider = CGDataProvider::providerWithBytes(std::vector<std::uint8_t>(bytes))};
}

std::string faultOf(CGImageFields fields) {
  std::shared_ptr<const NSError> error;
  if (CGImage::create(std::move(fields), &error)) return "";
  EXPECT_EQ(CGImage::create(CGImageFields()), nullptr);
  return error->localizedDescription();
}

TEST(CGImage, HasRowsOfPixels) {
  CGImageFields fields = fieldsOf(1, 2, 0);
  fields.bytesPerRow = 6;
  fields.provider = CGDataProvider::providerWithBytes({1, 2, 3, 4, 0, 0, 5, 6, 7, 8});
  const CGImageRef image = CGImage::create(fields);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->width(), 1U);
  EXPECT_EQ(image->height(), 2U);
  EXPECT_EQ(image->alphaInfo(), kCGImageAlphaLast);
  EXPECT_EQ(image->row(1).size(), 4U);
  EXPECT_EQ(image->row(1)[0], 5);
  EXPECT_EQ(image->row(1)[3], 8);
}

TEST(CGImage, RefusesSizesThatAnImageMayNotHave) {
  constexpr std::size_t kHuge = std::numeric_limits<std::size_t>::max();
  EXPECT_EQ(faultOf(fieldsOf(0, 5, 0)),
            "an image of 0 x 5 pixels, expected 1 to 134217728 of them");
  EXPECT_EQ(faultOf(fieldsOf(5, 0, 0)),
            "an image of 5 x 0 pixels, expected 1 to 134217728 of them");
  EXPECT_EQ(faultOf(fieldsOf(100000, 100000, 0)),
            "an image of 100000 x 100000 pixels, expected 1 to 134217728 of them");
  EXPECT_NE(faultOf(fieldsOf(kHuge, kHuge, 0)), "");
  EXPECT_NE(faultOf(fieldsOf(kHuge, 1, 0)), "");
  EXPECT_FALSE(CGImageSizeFault(kCGImageMostPixels, 1));
  EXPECT_TRUE(CGImageSizeFault(kCGImageMostPixels + 1, 1));
  EXPECT_FALSE(CGImageSizeFault(4000, 3000));
}

TEST(CGImage, RefusesPixelsOfAnotherForm) {
  for (std::uint32_t info = 1; info <= 6; ++info) {
    CGImageFields fields = fieldsOf(1, 1, 4);
    fields.bitmapInfo = info;
    EXPECT_EQ(faultOf(fields), "") << info;
  }
  for (const std::uint32_t info : {0U, 7U, 0x1003U}) {
    CGImageFields fields = fieldsOf(1, 1, 4);
    fields.bitmapInfo = info;
    EXPECT_EQ(faultOf(fields), "unknown bitmap info " + std::to_string(info));
  }
  CGImageFields fields = fieldsOf(1, 1, 4);
  fields.bitsPerPixel = 24;
  EXPECT_EQ(faultOf(fields), "pixels of 24 bits, expected 32");
  fields = fieldsOf(1, 1, 4);
  fields.bitsPerComponent = 16;
  EXPECT_NE(faultOf(fields), "");
}

TEST(CGImage, RefusesRowsThatItsBytesDoNotHold) {
  EXPECT_EQ(faultOf(fieldsOf(2, 2, 16)), "");
  EXPECT_EQ(faultOf(fieldsOf(2, 2, 15)), "15 bytes, which is less than 2 rows take");
  CGImageFields fields = fieldsOf(2, 2, 16);
  fields.bytesPerRow = 7;
  EXPECT_EQ(faultOf(fields), "rows of 7 bytes, expected at least 8");
  fields.bytesPerRow = std::numeric_limits<std::size_t>::max();
  EXPECT_NE(faultOf(fields), "");
  fields = fieldsOf(2, 2, 16);
  fields.provider = nullptr;
  EXPECT_EQ(faultOf(fields), "0 bytes, which is less than 2 rows take");
}

TEST(CGImage, CopiesToItselfAndOneOnTheStackToOneOfTheSamePixels) {
  CGImage image({}, fieldsOf(3, 2, 24));
  const auto copy = std::dynamic_pointer_cast<CGImage>(image.copy());
  ASSERT_TRUE(copy);
  EXPECT_NE(copy.get(), &image);
  EXPECT_EQ(copy->width(), 3U);
  EXPECT_EQ(copy->height(), 2U);
  EXPECT_EQ(copy->row(1).data(), image.row(1).data());
  EXPECT_EQ(copy->copy(), copy);
}

}  // namespace
}  // namespace ORLFoundation
