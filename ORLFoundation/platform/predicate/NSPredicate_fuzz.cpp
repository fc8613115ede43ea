
#include <ORLFoundation/platform/predicate/NSPredicate.h>

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace ORLFoundation;

// Any text as a format, with arguments for its conversions, read and asked about an object.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const auto& object = *new id(NSDictionary::dictionaryWithEntries(
      {{"name", "Caf\u00E9"},
       {"amount", 12.5},
       {"items", NSArray::arrayWithObjects({"a", 2, NSNull()})},
       {"owner", NSDictionary::dictionaryWithEntries({{"name", "Ann"}})}}));
  const std::string_view format(reinterpret_cast<const char*>(data), size);
  try {
    const auto predicate = NSPredicate::predicateWithFormat(format, "name", "name", 5, 1.5);
    static_cast<void>(predicate->predicateFormat());
    static_cast<void>(predicate->evaluateWithObject(object));
  } catch (const NSException&) {
    // A wrong format, or values that a comparison cannot take.
  }
  return 0;
}
