// Bodies that servers may send as gzip and deflate. The first byte says in what pieces they come
// and how often nobody takes what they hold.
#include <ORLFoundation/platform/net/internal/BodyDecoder.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>

namespace {

using namespace ORLFoundation::internal::net;

struct Decoded {
  std::string text;
  bool isBroken = false;
  bool isWhole = false;
};

Decoded decoded(std::span<const std::uint8_t> bytes, BodyEncoding encoding, std::size_t piece,
                unsigned refuses) {
  const auto decoder = std::make_unique<BodyDecoder>(encoding);
  Decoded result;
  unsigned calls = 0;
  const auto receive = [&](std::span<const std::uint8_t> next) {
    if (refuses > 1 && ++calls % refuses == 0) return false;
    result.text.append(next.begin(), next.end());
    return true;
  };
  while (!bytes.empty() && !result.isBroken) {
    const auto next = bytes.first(std::min(bytes.size(), piece));
    const auto outcome = decoder->decode(next, receive);
    if (outcome == BodyDecoder::Outcome::Read) bytes = bytes.subspan(next.size());
    result.isBroken = outcome == BodyDecoder::Outcome::Broken;
  }
  result.isWhole = decoder->isWhole();
  return result;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const std::size_t piece = 1 + bytes[0] % 32;
  const unsigned refuses = bytes[0] / 32;
  const std::span<const std::uint8_t> body(bytes + 1, size - 1);
  for (const BodyEncoding encoding : {BodyEncoding::Gzip, BodyEncoding::Deflate}) {
    const Decoded whole = decoded(body, encoding, std::size_t{16384}, 0);
    const Decoded pieces = decoded(body, encoding, piece, refuses);
    // Of a broken body how much is decoded before depends on the pieces.
    if (whole.isBroken != pieces.isBroken) std::abort();
    if (whole.isBroken) continue;
    if (whole.isWhole != pieces.isWhole || whole.text != pieces.text) std::abort();
  }
  return 0;
}
