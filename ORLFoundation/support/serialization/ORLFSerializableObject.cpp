
#include <ORLFoundation/support/serialization/ORLFSerializableObject.h>

#include <ORLFoundation/platform/archive/NSCoder.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/recurrence/ORLFDateRecurrenceRule.h>

#include <typeinfo>
#include <utility>

namespace ORLFoundation {
namespace {

constexpr std::string_view kDataKey = "data";

std::shared_ptr<NSMutableDictionary> mutableCopyOf(const std::shared_ptr<NSDictionary>& data) {
  return data ? std::static_pointer_cast<NSMutableDictionary>(data->mutableCopy()) : nullptr;
}

}  // namespace

ORLFSerializableObject::ORLFSerializableObject(const std::shared_ptr<NSDictionary>& data)
    : data_(mutableCopyOf(data)) {}

NSCodingClasses ORLFSerializableObject::allowedTopLevelClasses() {
  return NSCodingClassesOf<NSArray, NSDictionary, NSSet, std::string, NSNumber, NSDate, NSData,
                           NSURL, NSUUID, NSNull, ORLFDateRecurrenceRule>();
}

const std::shared_ptr<NSMutableDictionary>& ORLFSerializableObject::data() const {
  if (!data_) data_ = std::make_shared<NSMutableDictionary>();
  return data_;
}

void ORLFSerializableObject::setData(std::shared_ptr<NSMutableDictionary> data) {
  changeValue(kDataKey, [&] { data_ = std::move(data); });
}

std::shared_ptr<ORLFSerializableObject> ORLFSerializableObject::initWithCoder(NSCoder& coder) {
  auto object = std::make_shared<ORLFSerializableObject>();
  object->decodeData(coder, allowedTopLevelClasses());
  return object;
}

void ORLFSerializableObject::decodeData(NSCoder& coder, NSCodingClasses classes) {
  const id value = coder.decodeObject(classes, kDataKey);
  const auto data = value.as<NSDictionary>();
  if (!data && !value.isNil())
    coder.failWithError("The data of a serializable object is no dictionary.");
  data_ = mutableCopyOf(data);
}

void ORLFSerializableObject::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(data(), kDataKey);
}

const NSCodingClass& ORLFSerializableObject::codingClass() {
  static const NSCodingClass& record =
      NSCodingClass::define<ORLFSerializableObject>("ORLFSerializableObject");
  return record;
}

id ORLFSerializableObject::valueForUndefinedKey(std::string_view key) const {
  return data()->valueForKey(key);
}

void ORLFSerializableObject::setValueForUndefinedKey(const id& value, std::string_view key) {
  changeValue(key, [&] { data()->setValueForKey(value, key); });
}

bool ORLFSerializableObject::isEqual(const NSObject* other) const {
  if (this == other) return true;
  if (other == nullptr || typeid(*other) != typeid(*this)) return false;
  return data()->isEqual(static_cast<const ORLFSerializableObject*>(other)->data().get());
}

NSUInteger ORLFSerializableObject::hash() const { return data()->hash(); }

std::string ORLFSerializableObject::description() const {
  std::string text = NSObject::description();
  text.pop_back();
  return text + ", data: " + data()->description() + ">";
}

std::shared_ptr<NSObject> ORLFSerializableObject::copy() {
  const auto copy = newObjectAs<ORLFSerializableObject>();
  if (data_) copy->data_ = mutableCopyOf(data_);
  return copy;
}

std::shared_ptr<NSObject> ORLFSerializableObject::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFSerializableObject>();
}

const NSKeyTable& ORLFSerializableObject::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readWrite<&ORLFSerializableObject::data, &ORLFSerializableObject::setData>("data")});
  return table;
}

}  // namespace ORLFoundation
