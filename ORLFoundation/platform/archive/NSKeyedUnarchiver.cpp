
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>

#include <ORLFoundation/platform/archive/internal/ArchiveReader.h>

namespace ORLFoundation {

using internal::archive::ArchiveReader;
using internal::plist::PropertyListFault;
using internal::plist::PropertyListKind;

NSKeyedUnarchiver::NSKeyedUnarchiver(const NSData& data)
    : reader_(std::make_unique<ArchiveReader>(*this, data)) {}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

std::shared_ptr<NSKeyedUnarchiver> NSKeyedUnarchiver::initForReadingFromData(const NSData& data,
                                                                             NSErrorSlot error) {
  try {
    return std::shared_ptr<NSKeyedUnarchiver>(new NSKeyedUnarchiver(data));
  } catch (const PropertyListFault& fault) {
    NSFillErrorSlot(error, NSCocoaErrorDomain, NSCoderReadCorruptError, fault.what());
    return nullptr;
  }
}

id NSKeyedUnarchiver::unarchivedObject(NSCodingClasses ofClasses, const NSData& fromData,
                                       NSErrorSlot error) {
  const auto coder = initForReadingFromData(fromData, error);
  if (!coder) return {};
  id root = coder->decodeObject(ofClasses, NSKeyedArchiveRootObjectKey);
  if (root.isNil()) coder->failWithError("The archive holds no object.");
  if (!coder->error()) return root;
  if (error != nullptr) *error = coder->error();
  return {};
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return reader_->value(key).has_value();
}
std::int64_t NSKeyedUnarchiver::decodeInt64(std::string_view forKey) {
  return reader_->run([&] { return reader_->integer(forKey); });
}
bool NSKeyedUnarchiver::decodeBool(std::string_view forKey) {
  return reader_->run([&] { return reader_->boolean(forKey); });
}
double NSKeyedUnarchiver::decodeDouble(std::string_view forKey) {
  return reader_->run([&] { return reader_->real(forKey); });
}
std::optional<NSData> NSKeyedUnarchiver::decodeBytes(std::string_view forKey) {
  return reader_->run([&]() -> std::optional<NSData> {
    const auto bytes = reader_->text(forKey, PropertyListKind::Data);
    return bytes ? std::optional<NSData>(NSData(*bytes)) : std::nullopt;
  });
}
std::optional<std::string> NSKeyedUnarchiver::decodeText(std::string_view forKey) {
  return reader_->run([&]() -> std::optional<std::string> {
    const auto text = reader_->text(forKey, PropertyListKind::String);
    return text ? std::optional<std::string>(*text) : std::nullopt;
  });
}
std::optional<std::vector<id>> NSKeyedUnarchiver::decodeObjects(std::string_view forKey) {
  return reader_->run([&] { return reader_->objects(forKey, false); });
}
std::optional<std::vector<id>> NSKeyedUnarchiver::decodeKeys(std::string_view forKey) {
  return reader_->run([&] { return reader_->objects(forKey, true); });
}
id NSKeyedUnarchiver::decodeObject(NSCodingClasses ofClasses, std::string_view forKey) {
  return reader_->run([&] { return reader_->object(ofClasses, forKey); });
}
void NSKeyedUnarchiver::setObjectBeingDecoded(const std::shared_ptr<NSObject>& object) {
  reader_->announce(object);
}
void NSKeyedUnarchiver::failWithError(std::string_view localizedDescription) {
  reader_->fail(localizedDescription);
}
std::shared_ptr<const NSError> NSKeyedUnarchiver::error() const { return reader_->error(); }

}  // namespace ORLFoundation
