// A template image of a photograph's size: 4000 by 3000 pixels.

#include <ORLFoundation/support/device/ORLFTemplateImage.h>

#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

namespace ORLFoundation {
namespace {

constexpr std::size_t kWidth = 4000, kHeight = 3000;

/// Grays from black to white with every opacity, so that no row is like the one before it.
CGImageRef photograph(CGImageAlphaInfo info) {
  std::vector<std::uint8_t> bytes(kWidth * kHeight * 4);
  for (std::size_t i = 0; i < bytes.size(); ++i)
    bytes[i] = static_cast<std::uint8_t>(i * 2654435761U >> 13);
  // The first pixel is opaque black.
  const std::size_t alpha = info == kCGImageAlphaLast ? 3 : 0;
  for (std::size_t i = 0; i < 4; ++i) bytes[i] = i == alpha ? 255 : 0;
  return CGImage::create({.width = kWidth,
                          .height = kHeight,
                          .bytesPerRow = kWidth * 4,
                          .bitmapInfo = info,
                          .provider = CGDataProvider::providerWithBytes(std::move(bytes))});
}

void makeTemplate(benchmark::State& state, CGImageAlphaInfo info) {
  const CGImageRef image = photograph(info);
  const CGColorRef color = CGColor::colorWithRed(0, 0, 1, 1);
  CGImageRef made;
  for (auto _ : state)
    made = ORLFCGImageRefCreateTemplateImageWithColorAndThreshold(image, color, 0.1);
  const auto first = made->row(0).first(4);
  if (first[0] != 255 || first[1] != 0 || first[3] != 255) state.SkipWithError("wrong pixel");
  std::uint64_t sum = 0;
  for (std::size_t y = 0; y < kHeight; ++y)
    for (std::size_t x = 0; x < kWidth; ++x) sum += made->row(y)[x * 4];
  if (sum < kWidth * kHeight) state.SkipWithError("too clear");
  state.counters["pixels"] =
      benchmark::Counter(kWidth * kHeight, benchmark::Counter::kIsIterationInvariantRate);
}
void ofAlphaLast(benchmark::State& state) { makeTemplate(state, kCGImageAlphaLast); }
BENCHMARK(ofAlphaLast)
    ->Name("templateImageOf12Megapixels/alphaLast/ours")
    ->Unit(benchmark::kMillisecond);

void ofPremultipliedFirst(benchmark::State& state) {
  makeTemplate(state, kCGImageAlphaPremultipliedFirst);
}
BENCHMARK(ofPremultipliedFirst)
    ->Name("templateImageOf12Megapixels/premultipliedFirst/ours")
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace ORLFoundation
