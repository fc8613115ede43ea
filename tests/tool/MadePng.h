/// Tiny PNG files, made in the test that reads them.
#pragma once

#include <png.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace orlftest {

/// A PNG of the width given, of pixels in the format given ("PNG_FORMAT_RGBA").
inline std::string madePng(std::uint32_t width, png_uint_32 format,
                           const std::vector<std::uint8_t>& pixels) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = width;
  png.height = static_cast<png_uint_32>(pixels.size()) / width / PNG_IMAGE_PIXEL_SIZE(format);
  png.format = format;
  std::string bytes(4096 + 2 * pixels.size(), '\0');
  png_alloc_size_t size = bytes.size();
  if (png_image_write_to_memory(&png, bytes.data(), &size, 0, pixels.data(), 0, nullptr) == 0)
    throw std::runtime_error(png.message);
  bytes.resize(size);
  return bytes;
}

/// One chunk with the checksum that belongs to it.
inline std::string pngChunk(const std::string& type, const std::string& content) {
  const std::string checked = type + content;
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char c : checked) {
    sum ^= static_cast<std::uint8_t>(c);
    for (int bit = 0; bit < 8; ++bit) sum = (sum >> 1) ^ ((sum & 1U) != 0 ? 0xEDB88320U : 0U);
  }
  const auto word = [](std::uint32_t value) {
    std::string text;
    for (int shift = 24; shift >= 0; shift -= 8) text += static_cast<char>(value >> shift & 0xFFU);
    return text;
  };
  return word(static_cast<std::uint32_t>(content.size())) + checked + word(~sum);
}

/// The start of a PNG, up to the first of its pixels: a size of one's choice, 8 bits of gray.
inline std::string pngHeader(std::uint32_t width, std::uint32_t height) {
  std::string fields;
  for (const std::uint32_t side : {width, height})
    for (int shift = 24; shift >= 0; shift -= 8) fields += static_cast<char>(side >> shift & 0xFFU);
  fields += std::string("\x08\x00\x00\x00\x00", 5);
  return std::string("\x89PNG\r\n\x1A\n") + pngChunk("IHDR", fields) + pngChunk("IDAT", "x");
}

}  // namespace orlftest
