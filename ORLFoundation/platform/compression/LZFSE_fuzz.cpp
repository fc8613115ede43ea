#include <ORLFoundation/platform/compression/LZFSE.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <vector>

using namespace ORLFoundation::internal::compression;

// Any bytes give a result or nil; what was packed comes back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static auto& encoder = *new LZFSEEncoder;
  static auto& decoder = *new LZFSEDecoder;
  const std::span bytes(data, size);
  static_cast<void>(decoder.decoded(bytes, std::size_t{1} << 20));
  std::vector<std::uint8_t> stream;
  encoder.append(bytes, stream);
  const auto back = decoder.decoded(stream, size);
  if (!back || !std::equal(back->begin(), back->end(), bytes.begin(), bytes.end())) std::abort();
  return 0;
}
