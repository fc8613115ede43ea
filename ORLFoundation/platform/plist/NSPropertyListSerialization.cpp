
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <ORLFoundation/platform/plist/PropertyListBytes.h>
#include <ORLFoundation/platform/plist/internal/PropertyListObjects.h>

namespace ORLFoundation {

using namespace internal::plist;

id NSPropertyListSerialization::propertyListWithData(const NSData& data, NSUInteger options,
                                                     NSPropertyListFormat* format,
                                                     NSErrorSlot error) {
  try {
    const PropertyListTable table = readPropertyList(data);
    if (format != nullptr) *format = propertyListFormatOf(data);
    return objectFromTable(table, options != NSPropertyListImmutable);
  } catch (const PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSPropertyListReadCorruptError, fault.what());
    return {};
  }
}

std::optional<NSData> NSPropertyListSerialization::dataWithPropertyList(const id& propertyList,
                                                                        NSPropertyListFormat format,
                                                                        NSUInteger /*options*/,
                                                                        NSErrorSlot error) {
  try {
    return writePropertyList(tableFromObject(propertyList), format);
  } catch (const PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSPropertyListWriteInvalidError, fault.what());
    return std::nullopt;
  }
}

bool NSPropertyListSerialization::propertyListIsValidForFormat(const id& propertyList,
                                                               NSPropertyListFormat format) {
  return dataWithPropertyList(propertyList, format, 0).has_value();
}

}  // namespace ORLFoundation
