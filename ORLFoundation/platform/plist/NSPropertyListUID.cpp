#include <ORLFoundation/platform/plist/NSPropertyListUID.h>

namespace ORLFoundation {

bool NSPropertyListUID::isEqual(const NSObject* other) const {
  const auto* uid = dynamic_cast<const NSPropertyListUID*>(other);
  return uid != nullptr && uid->value_ == value_;
}

std::string NSPropertyListUID::description() const { return "UID " + std::to_string(value_); }

}  // namespace ORLFoundation
