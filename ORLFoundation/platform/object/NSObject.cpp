#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <cinttypes>
#include <cstdio>
#include <functional>

namespace ORLFoundation {

NSObject::~NSObject() = default;

std::string NSObject::className() const { return "NSObject"; }

bool NSObject::isEqual(const NSObject* other) const { return this == other; }

NSUInteger NSObject::hash() const { return std::hash<const NSObject*>{}(this); }

std::string NSObject::description() const {
  char address[32];
  std::snprintf(address, sizeof address, ": 0x%" PRIxPTR ">",
                reinterpret_cast<std::uintptr_t>(this));
  return "<" + className() + address;
}

std::shared_ptr<NSObject> NSObject::copy() {
  throw NSException(NSInvalidArgumentException,
                    "-[" + className() + " copyWithZone:]: not copyable");
}

std::shared_ptr<NSObject> NSObject::mutableCopy() {
  throw NSException(NSInvalidArgumentException,
                    "-[" + className() + " mutableCopyWithZone:]: not copyable");
}

}  // namespace ORLFoundation
