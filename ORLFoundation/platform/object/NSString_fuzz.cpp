
#include <ORLFoundation/platform/object/NSString.h>

#include <ORLFoundation/platform/object/NSArray.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace ORLFoundation;

// Any format with arguments of every sort, and any text as a member of a described list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  static_cast<void>(stringWithFormat(text, 1, -2.5, text, NSNull(), nullptr, true));
  static_cast<void>(NSArray::arrayWithObjects({text})->description());
  return 0;
}
