#include "io/png_file.h"

#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"

/// Whatever the bytes, they are a picture, of which a template image can be made, or a failure of
/// one line.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace ORLFoundation;
  constexpr std::uint64_t kMostPixels = 1 << 16;
  try {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const CGImageRef image = orlftool::readPng(bytes, "a.png", kMostPixels);
    const CGImageRef made = ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(
        image, CGColor::colorWithGray(0, 1), 0.25);
    if (!made || made->width() != image->width() || made->height() != image->height()) std::abort();
  } catch (const orlftool::JobFailure& failure) {
    if (std::string_view(failure.what()).find('\n') != std::string_view::npos) std::abort();
  }
  return 0;
}
