
#include <ORLFoundation/web/responses/ORLFServiceResponseObject.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>
#include <ORLFoundation/platform/object/NSString.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <ORLFoundation/web/responses/ORLFServiceResponseError.h>

#include <typeinfo>
#include <utility>
#include <vector>

namespace ORLFoundation {

ORLFServiceResponseObject::ORLFServiceResponseObject() : data_(std::make_shared<NSDictionary>()) {}

ORLFServiceResponseObject::ORLFServiceResponseObject(const std::shared_ptr<NSDictionary>& rawData)
    : data_(copyOf(rawData)) {}

std::shared_ptr<NSSet> ORLFServiceResponseObject::requiredDataKeyPaths() const {
  return std::make_shared<NSSet>();
}

bool ORLFServiceResponseObject::hasRequiredData(NSErrorSlot error) const {
  std::vector<id> missing;
  if (const auto required = requiredDataKeyPaths()) {
    for (const id& keyPath : required->allObjects())
      if (!serviceValueForKeyPath(keyPath.description())) missing.push_back(keyPath);
  }
  if (missing.empty()) return true;
  if (!error) return false;
  return NSFillErrorSlot(
      error, orlfServiceResponseErrorForMissingFields(
                 std::make_shared<NSArray>(std::move(missing)),
                 "Data dictionary is missing data for some required key paths of " + className()));
}

id ORLFServiceResponseObject::serviceValueForKeyPath(std::string_view keyPath) const {
  if (!data_) return nullptr;
  try {
    return data_->valueForKeyPath(keyPath);
  } catch (const NSException&) {  // a service may send anything where a dictionary is to stand
    return nullptr;
  }
}

std::shared_ptr<NSDictionary> ORLFServiceResponseObject::rawData() const { return copyOf(data_); }

std::string ORLFServiceResponseObject::description() const {
  return stringWithFormat("<%@ %p>%@", className(), this, data_);
}

bool ORLFServiceResponseObject::isEqual(const NSObject* other) const {
  if (other == this) return true;
  const auto* response = dynamic_cast<const ORLFServiceResponseObject*>(other);
  return response && typeid(*response) == typeid(*this) && id(data_) == id(response->data_);
}

NSUInteger ORLFServiceResponseObject::hash() const { return data_ ? data_->hash() : 0; }

std::shared_ptr<NSObject> ORLFServiceResponseObject::newObjectOfReceiversClass() const {
  return std::make_shared<ORLFServiceResponseObject>();
}

std::shared_ptr<NSObject> ORLFServiceResponseObject::copy() {
  auto other = newObjectAs<ORLFServiceResponseObject>();
  other->data_ = rawData();
  return other;
}

const NSKeyTable& ORLFServiceResponseObject::keyTable() const {
  static const NSKeyTable table(NSObject::keyTable(),
                                {NSKey::readOnly<&ORLFServiceResponseObject::data>("data"),
                                 NSKey::readOnly<&ORLFServiceResponseObject::rawData>("rawData")});
  return table;
}

}  // namespace ORLFoundation
