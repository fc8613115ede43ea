
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>

#include <ORLFoundation/platform/plist/PropertyListBytes.h>
#include <ORLFoundation/platform/plist/internal/PropertyListObjects.h>

namespace ORLFoundation {

id NSPropertyListSerialization::propertyListWithData(const NSData& data, NSUInteger options,
                                                     NSPropertyListFormat* format,
                                                     NSErrorSlot error) {
  try {
    const internal::PropertyListTable table = internal::readPropertyList(data);
    if (format != nullptr) *format = internal::propertyListFormatOf(data);
    return internal::objectFromTable(table, options != NSPropertyListImmutable);
  } catch (const internal::PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSPropertyListReadCorruptError, fault.what());
    return {};
  }
}

std::optional<NSData> NSPropertyListSerialization::dataWithPropertyList(const id& propertyList,
                                                                        NSPropertyListFormat format,
                                                                        NSUInteger /*options*/,
                                                                        NSErrorSlot error) {
  try {
    return internal::writePropertyList(internal::tableFromObject(propertyList), format);
  } catch (const internal::PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSPropertyListWriteInvalidError, fault.what());
    return std::nullopt;
  }
}

bool NSPropertyListSerialization::propertyListIsValidForFormat(const id& propertyList,
                                                               NSPropertyListFormat format) {
  return dataWithPropertyList(propertyList, format, 0).has_value();
}

}  // namespace ORLFoundation
