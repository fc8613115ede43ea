
#include <ORLFoundation/security/primitives/ORLFDataCompression.h>

#include <cstdint>
#include <cstdlib>
#include <span>

using namespace ORLFoundation;

// Any bytes give a result or nil; what was packed comes back.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSData bytes(std::span(data, size));
  static_cast<void>(gunzippedData(bytes));
  if (size == 0) return 0;
  const float level = static_cast<float>(data[0] % 10) / 9;
  const auto packed = gzippedDataWithCompressionLevel(bytes, level);
  if (!packed || gunzippedData(*packed) != bytes) std::abort();
  return 0;
}
