#include <ORLFoundation/security/primitives/ORLFDataBase64.h>

#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>
#include <string_view>

using namespace ORLFoundation;

// Any text is read; what was written comes back, in lines or not.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const NSData bytes(std::span(data, size));
  if (dataFromBase64String(bytes.text()).length() > size / 4 * 3 + 3) std::abort();
  for (const bool lines : {false, true})
    if (dataFromBase64String(base64EncodedStringWithLineBreaks(bytes, lines)) != bytes)
      std::abort();
  return 0;
}
