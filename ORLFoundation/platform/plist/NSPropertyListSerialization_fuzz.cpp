// Reads any bytes as a property list. What is read is written again in both forms, and what the
// binary form holds is the same after another turn.

#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <span>

using namespace ORLFoundation;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using Serialization = NSPropertyListSerialization;
  std::shared_ptr<const NSError> error;
  const id list =
      Serialization::propertyListWithData(NSData(std::span(data, size)), 0, nullptr, &error);
  if (list.isNil() != (error != nullptr)) std::abort();
  if (list.isNil()) return 0;

  const auto written =
      Serialization::dataWithPropertyList(list, NSPropertyListBinaryFormat_v1_0, 0);
  if (!written) std::abort();
  const id back = Serialization::propertyListWithData(*written, 0);
  if (back.isNil()) std::abort();
  if (Serialization::dataWithPropertyList(back, NSPropertyListBinaryFormat_v1_0, 0) != written)
    std::abort();

  // XML cannot hold everything; what it holds is read.
  const auto xml = Serialization::dataWithPropertyList(list, NSPropertyListXMLFormat_v1_0, 0);
  if (xml && Serialization::propertyListWithData(*xml, 0).isNil()) std::abort();
  return 0;
}
