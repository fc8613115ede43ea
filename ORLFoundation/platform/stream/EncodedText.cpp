#include <ORLFoundation/platform/stream/EncodedText.h>

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/stream/NSOutputStream.h>
#include <ORLFoundation/platform/text/NSStringBytes.h>
#include <ORLFoundation/platform/text/NSStringEncoding.h>

#include <memory>
#include <optional>

namespace ORLFoundation::internal::stream {

bool refuseEncoding(NSUInteger encoding, NSErrorSlot error) {
  return NSFillErrorSlot(
      error, NSError::errorWithDomain(
                 NSCocoaErrorDomain, NSFileWriteInapplicableStringEncodingError,
                 NSDictionary::dictionaryWithEntries({{NSStringEncodingErrorKey, encoding}})));
}

bool writeText(NSOutputStream& stream, std::string_view text, NSUInteger encoding,
               NSErrorSlot error) {
  const std::optional<NSData> data = dataUsingEncoding(text, encoding);
  if (!data) return refuseEncoding(encoding, error);
  if (stream.write(data->bytes()) == -1) return NSFillErrorSlot(error, stream.streamError());
  return true;
}

}  // namespace ORLFoundation::internal::stream
