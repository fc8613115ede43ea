#include "io/png_file.h"

#include <png.h>

#include <utility>
#include <vector>

#include "cli/failure.h"
#include "io/atomic_file.h"
#include "io/input_file.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::string_view kSignature{"\x89PNG\r\n\x1A\n", 8};

/// The library's record of one picture, freed on every way out.
struct PngImage : png_image {
  PngImage() : png_image{} { version = PNG_IMAGE_VERSION; }
  ~PngImage() { png_image_free(this); }
  PngImage(const PngImage&) = delete;
  PngImage& operator=(const PngImage&) = delete;

  [[nodiscard]] bool failed() const { return PNG_IMAGE_FAILED(*this); }
};

[[noreturn]] void failToRead(const std::string& name, const std::string& why) {
  throw JobFailure(name + ": cannot be read as PNG: " + why);
}

void requireSize(const PngImage& png, const std::string& name, std::uint64_t mostPixels) {
  if (const auto fault = CGImageSizeFault(png.width, png.height)) failToRead(name, *fault);
  if (std::uint64_t{png.width} * png.height > mostPixels)
    failToRead(name, "more than " + std::to_string(mostPixels) + " pixels");
}

}  // namespace

CGImageRef readPng(std::string_view bytes, const std::string& name, std::uint64_t mostPixels) {
  if (!bytes.starts_with(kSignature)) throw JobFailure(name + ": expected a PNG, got another file");
  PngImage png;
  png_image_begin_read_from_memory(&png, bytes.data(), bytes.size());
  if (png.failed()) failToRead(name, png.message);
  requireSize(png, name, mostPixels);
  png.format = PNG_FORMAT_RGBA;
  std::vector<std::uint8_t> pixels(std::size_t{png.width} * png.height * 4);
  png_image_finish_read(&png, nullptr, pixels.data(), 0, nullptr);
  if (png.failed()) failToRead(name, png.message);
  return CGImage::create({.width = png.width,
                          .height = png.height,
                          .bytesPerRow = std::size_t{png.width} * 4,
                          .bitmapInfo = kCGImageAlphaLast,
                          .provider = CGDataProvider::providerWithBytes(std::move(pixels))});
}

CGImageRef readPngFile(const std::string& path) {
  return readPng(readInputFile(path, "a PNG"), path);
}

void writePngFile(const std::string& path, const CGImage& image) {
  writeFileAtomically(path, [&](const std::string& temporary) {
    PngImage png;
    png.width = static_cast<png_uint_32>(image.width());
    png.height = static_cast<png_uint_32>(image.height());
    png.format = PNG_FORMAT_ARGB;
    png_image_write_to_file(&png, temporary.c_str(), 0, image.fields().provider->bytes().data(),
                            static_cast<png_int_32>(image.fields().bytesPerRow), nullptr);
    if (png.failed()) throw JobFailure(path + ": cannot be written: " + png.message);
  });
}

}  // namespace orlftool
