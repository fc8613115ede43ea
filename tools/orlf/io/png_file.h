/// Pictures as PNG files.
#pragma once

#include <ORLFoundation/platform/image/CGImage.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace orlftool {

/// The picture in a PNG, with the opacity last, not premultiplied, 8 bits a component in sRGB
/// whatever the file has. `name` stands in the messages. Throws JobFailure for bytes that are no
/// PNG or are damaged or cut off, and, before there is any memory taken for its pixels, for a
/// picture of more pixels than are allowed.
[[nodiscard]] ORLFoundation::CGImageRef readPng(
    std::string_view bytes, const std::string& name,
    std::uint64_t mostPixels = ORLFoundation::kCGImageMostPixels);
[[nodiscard]] ORLFoundation::CGImageRef readPngFile(const std::string& path);

/// Writes an image with the opacity first, not premultiplied, whole or not at all. Throws
/// JobFailure.
void writePngFile(const std::string& path, const ORLFoundation::CGImage& image);

}  // namespace orlftool
