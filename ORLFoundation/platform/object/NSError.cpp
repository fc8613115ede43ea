
#include <ORLFoundation/platform/object/NSError.h>

#include <ORLFoundation/platform/object/NSKeyTable.h>

#include <utility>

namespace ORLFoundation {
namespace {

std::string describe(const NSDictionary& userInfo) {
  std::string out;
  for (const auto& [key, value] : userInfo.entries()) {
    if (!out.empty()) out += ", ";
    out += key.description() + "=" + value.description();
  }
  return "{" + out + "}";
}

}  // namespace

NSError::NSError(std::string_view domain, NSInteger code, std::shared_ptr<NSDictionary> userInfo)
    : domain_(domain),
      code_(code),
      userInfo_(userInfo ? std::static_pointer_cast<NSDictionary>(userInfo->copy())
                         : std::make_shared<NSDictionary>()) {}

std::shared_ptr<NSError> NSError::errorWithDomain(std::string_view domain, NSInteger code,
                                                  std::shared_ptr<NSDictionary> userInfo) {
  return std::make_shared<NSError>(domain, code, std::move(userInfo));
}

std::string NSError::localizedDescription() const {
  if (const auto text = userInfo_->objectForKey(NSLocalizedDescriptionKey).as<std::string>())
    return *text;
  return "The operation couldn’t be completed. (" + domain_ + " error " + std::to_string(code_) +
         ".)";
}

bool NSError::isEqual(const NSObject* other) const {
  const auto* error = dynamic_cast<const NSError*>(other);
  return error && error->code_ == code_ && error->domain_ == domain_ &&
         userInfo_->isEqual(error->userInfo_.get());
}

NSUInteger NSError::hash() const {
  return std::hash<std::string>{}(domain_)*31 + static_cast<NSUInteger>(code_);
}

std::string NSError::description() const {
  return "Error Domain=" + domain_ + " Code=" + std::to_string(code_) + " \"" +
         localizedDescription() + "\" UserInfo=" + describe(*userInfo_);
}

const NSKeyTable& NSError::keyTable() const {
  static const NSKeyTable table(
      NSObject::keyTable(),
      {NSKey::readOnly<&NSError::domain>("domain"), NSKey::readOnly<&NSError::code>("code"),
       NSKey::readOnly<&NSError::userInfo>("userInfo"),
       NSKey::readOnly<&NSError::localizedDescription>("localizedDescription")});
  return table;
}

bool NSFillErrorSlot(NSErrorSlot slot, std::shared_ptr<const NSError> error) {
  if (slot) *slot = std::move(error);
  return false;
}

bool NSFillErrorSlot(NSErrorSlot slot, std::string_view domain, NSInteger code,
                     std::string_view localizedDescription) {
  if (!slot) return false;
  return NSFillErrorSlot(
      slot, NSError::errorWithDomain(domain, code,
                                     NSDictionary::dictionaryWithEntries(
                                         {{NSLocalizedDescriptionKey, localizedDescription}})));
}

}  // namespace ORLFoundation
