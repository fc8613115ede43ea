
#include <ORLFoundation/platform/plist/PropertyListBytes.h>

#include <ORLFoundation/platform/plist/internal/BinaryPropertyListReader.h>
#include <ORLFoundation/platform/plist/internal/BinaryPropertyListWriter.h>
#include <ORLFoundation/platform/plist/internal/XMLPropertyListReader.h>
#include <ORLFoundation/platform/plist/internal/XMLPropertyListWriter.h>

#include <string_view>

namespace ORLFoundation::internal::plist {

NSPropertyListFormat propertyListFormatOf(const NSData& data) noexcept {
  const std::string_view text = data.text();
  if (text.starts_with("bplist")) return NSPropertyListBinaryFormat_v1_0;
  // "<" after blanks and the mark of an encoding, of which UTF-16 and UTF-32 also have zero bytes.
  constexpr std::string_view kBefore("\0\t\n\v\f\r \xEF\xBB\xBF\xFE\xFF", 12);
  const std::size_t first = text.find_first_not_of(kBefore);
  return first != std::string_view::npos && text[first] == '<' ? NSPropertyListXMLFormat_v1_0
                                                               : NSPropertyListOpenStepFormat;
}

PropertyListTable readPropertyList(const NSData& data) {
  switch (propertyListFormatOf(data)) {
    case NSPropertyListBinaryFormat_v1_0:
      return readBinaryPropertyList(data.bytes());
    case NSPropertyListXMLFormat_v1_0:
      return readXMLPropertyList(data.bytes());
    default:
      throw PropertyListFault("The data is neither a binary nor an XML property list.");
  }
}

NSData writePropertyList(const PropertyListTable& table, NSPropertyListFormat format) {
  switch (format) {
    case NSPropertyListBinaryFormat_v1_0:
      return NSData(writeBinaryPropertyList(table));
    case NSPropertyListXMLFormat_v1_0: {
      const base::WipedText text = writeXMLPropertyList(table);
      return NSData::dataWipedAtRelease({text.begin(), text.end()});
    }
    default:
      throw PropertyListFault("Property lists are written in XML or in the binary form.");
  }
}

}  // namespace ORLFoundation::internal::plist
