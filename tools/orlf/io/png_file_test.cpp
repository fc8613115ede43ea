#include "io/png_file.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include <tests/support/TemporaryFolder.h>
#include <tests/tool/MadePng.h>
#include "cli/failure.h"

namespace {

using namespace ORLFoundation;
using Bytes = std::vector<std::uint8_t>;

Bytes pixelsOf(const CGImageRef& image) {
  const auto bytes = image->fields().provider->bytes();
  return {bytes.begin(), bytes.end()};
}

std::string failureOf(const std::string& bytes) {
  try {
    (void)orlftool::readPng(bytes, "a.png");
  } catch (const orlftool::JobFailure& failure) {
    return failure.what();
  }
  return "";
}

TEST(PngFile, IsReadWithItsOpacityLast) {
  const Bytes pixels{1, 2, 3, 255, 40, 50, 60, 128};
  const CGImageRef image =
      orlftool::readPng(orlftest::madePng(2, PNG_FORMAT_RGBA, pixels), "a.png");
  EXPECT_EQ(image->width(), 2U);
  EXPECT_EQ(image->height(), 1U);
  EXPECT_EQ(image->alphaInfo(), kCGImageAlphaLast);
  EXPECT_EQ(pixelsOf(image), pixels);
}

TEST(PngFile, IsReadFromOtherForms) {
  EXPECT_EQ(pixelsOf(orlftool::readPng(orlftest::madePng(1, PNG_FORMAT_GRAY, {7, 9}), "a.png")),
            (Bytes{7, 7, 7, 255, 9, 9, 9, 255}));
  EXPECT_EQ(pixelsOf(orlftool::readPng(orlftest::madePng(1, PNG_FORMAT_RGB, {7, 8, 9}), "a.png")),
            (Bytes{7, 8, 9, 255}));
}

TEST(PngFile, RefusesWhatIsNoPng) {
  for (const std::string& bytes : {std::string(), std::string("\x89PNG"), std::string("GIF89a"),
                                   std::string(1000, '\0'), std::string("not\na picture")})
    EXPECT_EQ(failureOf(bytes), "a.png: expected a PNG, got another file");
}

TEST(PngFile, RefusesSizesBeforeItTakesMemory) {
  EXPECT_EQ(failureOf(orlftest::pngHeader(100000, 100000)),
            "a.png: cannot be read as PNG: an image of 100000 x 100000 pixels, expected 1 to "
            "134217728 of them");
  for (const auto& header :
       {orlftest::pngHeader(0, 5), orlftest::pngHeader(5, 0),
        orlftest::pngHeader(0x7FFFFFFF, 0x7FFFFFFF), orlftest::pngHeader(0xFFFFFFFF, 1)})
    EXPECT_TRUE(failureOf(header).starts_with("a.png: cannot be read as PNG: "))
        << failureOf(header);
  const std::string two = orlftest::madePng(1, PNG_FORMAT_GRAY, {7, 9});
  EXPECT_THROW((void)orlftool::readPng(two, "a.png", 1), orlftool::JobFailure);
  EXPECT_TRUE(orlftool::readPng(two, "a.png", 2));
}

TEST(PngFile, RefusesAFileThatIsCutOffAnywhereInItsPixels) {
  const std::string whole = orlftest::madePng(2, PNG_FORMAT_RGBA, Bytes(64, 100));
  ASSERT_EQ(failureOf(whole), "");
  // The end marker, 12 bytes, holds nothing.
  for (std::size_t length = 0; length + 12 < whole.size(); ++length) {
    const std::string failure = failureOf(whole.substr(0, length));
    EXPECT_TRUE(failure.starts_with("a.png: ")) << length;
    EXPECT_EQ(failure.find('\n'), std::string::npos) << length;
  }
}

TEST(PngFile, AnswersOrFailsWhateverByteIsChanged) {
  const std::string whole = orlftest::madePng(2, PNG_FORMAT_RGBA, Bytes(16, 100));
  for (std::size_t place = 0; place < whole.size(); ++place) {
    std::string changed = whole;
    changed[place] = static_cast<char>(changed[place] ^ 0x41);
    const std::string failure = failureOf(changed);
    EXPECT_TRUE(failure.empty() || failure.starts_with("a.png: ")) << place;
  }
}

class PngFileOnDisk : public orlftest::TemporaryFolderTest {};

TEST_F(PngFileOnDisk, IsWrittenAndReadBack) {
  const CGImageRef image =
      CGImage::create({.width = 1,
                       .height = 2,
                       .bytesPerRow = 4,
                       .bitmapInfo = kCGImageAlphaFirst,
                       .provider = CGDataProvider::providerWithBytes({255, 1, 2, 3, 0, 4, 5, 6})});
  orlftool::writePngFile(folder_ / "a.png", *image);
  EXPECT_EQ(pixelsOf(orlftool::readPngFile(folder_ / "a.png")), (Bytes{1, 2, 3, 255, 4, 5, 6, 0}));
  EXPECT_THROW(orlftool::writePngFile(folder_ / "no/a.png", *image), orlftool::JobFailure);
  EXPECT_EQ(names().size(), 1U);
}

}  // namespace
